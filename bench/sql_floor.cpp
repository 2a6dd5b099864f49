#include "sql_floor.h"
#include "bench_stats.h"
#include "sql/text_collation.h"
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>
#include <algorithm>

SqlFloor::SqlFloor(const QString& databaseFile)
    : m_connection(QStringLiteral("rnw_bench_floor_%1").arg(quintptr(this)))
{
    m_db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    m_db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000"));
    m_db.setDatabaseName(databaseFile);
    m_open = m_db.open();
    if (!m_open)
        m_error = m_db.lastError().text();
    else
        RegisterTextCollation(m_db);
}

SqlFloor::~SqlFloor()
{
    m_queries.clear();
    m_db.close();
    m_db = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_connection);
}

QSqlQuery* SqlFloor::prepared(const QString& sql)
{
    auto it = m_queries.constFind(sql);
    if (it != m_queries.constEnd())
        return it->get();
    auto query = std::make_shared<QSqlQuery>(m_db);
    query->setForwardOnly(true);
    if (!query->prepare(sql)) {
        m_error = query->lastError().text() + QStringLiteral(": ") + sql.left(200);
        return nullptr;
    }
    m_queries.insert(sql, query);
    return query.get();
}

qint64 SqlFloor::run(const std::vector<SqlTraceStatement>& statements)
{
    if (!m_open)
        return -1;
    // Prepared outside the clock: the engine keeps its statements prepared too.
    std::vector<QSqlQuery*> queries;
    queries.reserve(statements.size());
    for (const SqlTraceStatement& s : statements) {
        QSqlQuery* q = prepared(s.sql);
        if (!q)
            return -1;
        queries.push_back(q);
    }
    BenchClock clock;
    for (size_t i = 0; i < statements.size(); ++i) {
        QSqlQuery& q = *queries[i];
        const QVariantList& params = statements[i].params;
        for (int p = 0; p < params.size(); ++p)
            q.bindValue(p, params[p]);
        if (!q.exec()) {
            m_error = q.lastError().text() + QStringLiteral(": ") + statements[i].sql.left(200);
            q.finish();
            QSqlQuery(m_db).exec(QStringLiteral("ROLLBACK"));
            return -1;
        }
        if (q.isSelect()) {
            const int columns = q.record().count();
            while (q.next()) {
                for (int c = 0; c < columns; ++c) {
                    const QVariant v = q.value(c);
                    Q_UNUSED(v);
                }
            }
        }
        q.finish();
    }
    return clock.nanoseconds();
}

double SqlFloor::medianMs(const std::vector<SqlTraceStatement>& statements, int repetitions)
{
    Sample sample;
    for (int r = 0; r < std::max(1, repetitions); ++r) {
        const qint64 ns = run(statements);
        if (ns < 0)
            return -1;
        sample.add(double(ns) / 1e6);
    }
    return sample.median();
}
