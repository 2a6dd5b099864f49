#pragma once
// Where the database time of a scan goes. The engines count every statement
// they hand to the database and the time it took (prepare, bind, execute,
// read the rows): two relaxed atomic adds per statement, always on. On
// request they also keep each statement as the database saw it (after the
// T-SQL bridge), so that it can be run again straight on the database and
// the station's own overhead told apart from the database's.
#include <QString>
#include <QVariantList>
#include <QtGlobal>
#include <vector>

struct SqlTraceCounters {
    qint64 statements = 0;          // statements run by the database
    qint64 engineNanoseconds = 0;   // their time inside the database calls
    qint64 batches = 0;             // ExecuteSQL batches handed to an engine
    qint64 bridgeNanoseconds = 0;   // time spent rewriting T-SQL for SQLite

    SqlTraceCounters operator-(const SqlTraceCounters& earlier) const
    {
        return {statements - earlier.statements, engineNanoseconds - earlier.engineNanoseconds,
                batches - earlier.batches, bridgeNanoseconds - earlier.bridgeNanoseconds};
    }
};

struct SqlTraceStatement {
    QString sql;             // as the database ran it
    QVariantList params;     // bound values in order ('?' placeholders)
    qint64 nanoseconds = 0;
    int rows = -1;           // rows read; -1 for a statement without a result set
};

class SqlStatementTrace {
public:
    static SqlTraceCounters counters();
    // Counters back to 0 and the captured statements dropped.
    static void reset();

    // Keeps the statements run from now on (off by default). Turning it off
    // keeps what was captured until takeCaptured().
    static void setCapturing(bool on);
    static bool isCapturing();
    static std::vector<SqlTraceStatement> takeCaptured();

    // Called by the engines.
    static void recordStatement(const QString& sql, const QVariantList& params, qint64 nanoseconds, int rows);
    static void recordBatch(qint64 bridgeNanoseconds);
};
