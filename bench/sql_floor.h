#pragma once
// The floor of a scan or a load: the statements the station's engine ran
// (as SQLite saw them, after the T-SQL bridge), executed again straight
// through QSqlQuery on the same file, without the form, the middle tier or
// the bridge. Each text is prepared once and reused, every row is read.
#include "sql/sql_statement_trace.h"
#include <QHash>
#include <QSqlDatabase>
#include <QString>
#include <memory>
#include <vector>

class QSqlQuery;

class SqlFloor {
public:
    explicit SqlFloor(const QString& databaseFile);
    ~SqlFloor();
    SqlFloor(const SqlFloor&) = delete;
    SqlFloor& operator=(const SqlFloor&) = delete;

    bool isOpen() const { return m_open; }
    QString lastError() const { return m_error; }

    // Runs the statements once, in order; nanoseconds taken, or -1 on a
    // failure (lastError() says which).
    qint64 run(const std::vector<SqlTraceStatement>& statements);
    // The median of `repetitions` runs, in milliseconds; -1 on a failure.
    double medianMs(const std::vector<SqlTraceStatement>& statements, int repetitions);

private:
    QSqlQuery* prepared(const QString& sql);

    QString m_connection;
    QSqlDatabase m_db;
    bool m_open = false;
    QString m_error;
    QHash<QString, std::shared_ptr<QSqlQuery>> m_queries;
};
