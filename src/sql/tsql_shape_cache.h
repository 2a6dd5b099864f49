#pragma once
// The rewrites of the T-SQL bridge, kept by statement shape (the token
// sequence with string literals taken out), least recently used out. The
// system sends the same few statements with other codes pasted in, so after
// the first scan a rewrite is a lookup.
#include "sql/tsql_rewriter.h"

#include <QHash>
#include <QString>
#include <list>
#include <memory>
#include <mutex>
#include <vector>

// The rule work for one batch shape: its statements, or the refusal.
struct TsqlRewrite {
    std::vector<TsqlTemplate> statements;
    std::vector<int> likeSlots;
    bool failed = false;
    long errorNumber = 0;
    QString errorText;
};

class TsqlShapeCache {
public:
    explicit TsqlShapeCache(int capacity);

    // The rewrite of this shape, or null (counted as a miss).
    std::shared_ptr<const TsqlRewrite> find(const QString& shape);
    void insert(const QString& shape, std::shared_ptr<const TsqlRewrite> rewrite);
    void clear();

    qint64 hits() const;
    qint64 misses() const;
    int size() const;

private:
    using Entry = std::pair<QString, std::shared_ptr<const TsqlRewrite>>;
    mutable std::mutex m_mutex;
    int m_capacity;
    std::list<Entry> m_order; // most recently used first
    QHash<QString, std::list<Entry>::iterator> m_index;
    qint64 m_hits = 0;
    qint64 m_misses = 0;
};
