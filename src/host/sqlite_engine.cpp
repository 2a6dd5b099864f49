#include "host/sqlite_engine.h"
#include "host/host_error.h"
#include "host/sql_statement_trace.h"
#include "host/text_collation.h"
#include "host/tsql_bridge.h"
#include <QElapsedTimer>
#include <QFileInfo>
#include <QUrl>

namespace {

// How long a statement waits for another connection's write lock.
constexpr int kBusyTimeoutMs = 5000;

} // namespace

SqliteEngine::SqliteEngine(QString file)
    : QtSqlEngine(QStringLiteral("QSQLITE"), QStringLiteral("rnw_sqlite_")), m_file(std::move(file))
{
}

void SqliteEngine::configure(QSqlDatabase& db)
{
    // mode=rw: a missing file is an error, never a new empty database
    db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_URI;QSQLITE_BUSY_TIMEOUT=%1").arg(kBusyTimeoutMs));
    const QString absolute = QFileInfo(m_file).absoluteFilePath();
    db.setDatabaseName(QUrl::fromLocalFile(absolute).toString(QUrl::FullyEncoded) + QStringLiteral("?mode=rw"));
}

void SqliteEngine::checkConnection()
{
    // An open handle keeps working on a file that was deleted or moved away,
    // and whatever it writes then is lost: let go of it instead.
    if (!QFileInfo::exists(m_file))
        close();
}

void SqliteEngine::prepareConnection(QSqlDatabase& db)
{
    // Text compares as on the ERP's server, on every connection.
    RegisterTextCollation(db);
}

bool SqliteEngine::connectionLost(const QSqlError& error) const
{
    if (!QFileInfo::exists(m_file))
        return true;
    bool ok = false;
    const int code = error.nativeErrorCode().toInt(&ok) & 0xff;
    if (!ok)
        return false;
    // I/O error, corrupt file, cannot open, not a database
    return code == 10 || code == 11 || code == 14 || code == 26;
}

void SqliteEngine::execPlain(const QString& sql)
{
    QSqlQuery query(database());
    QElapsedTimer timer;
    timer.start();
    const bool ok = query.exec(sql);
    SqlStatementTrace::recordStatement(sql, {}, timer.nsecsElapsed(), -1);
    if (!ok) {
        const QSqlError error = query.lastError();
        query = QSqlQuery();
        raise(error);
    }
}

void SqliteEngine::beginTransaction()
{
    // takes the write lock at once, so two writers wait for each other
    // (busy timeout) instead of failing halfway through a batch
    execPlain(QStringLiteral("BEGIN IMMEDIATE"));
}

void SqliteEngine::commitTransaction()
{
    execPlain(QStringLiteral("COMMIT"));
}

void SqliteEngine::rollbackTransaction()
{
    if (!isOpen())
        return;
    QSqlQuery query(currentConnection());
    query.exec(QStringLiteral("ROLLBACK"));
}

RecordsetPtr SqliteEngine::executeBatch(const QString& tsql)
{
    QElapsedTimer bridgeTimer;
    bridgeTimer.start();
    std::vector<SqliteStatement> statements;
    try {
        statements = RewriteTsqlForSqlite(tsql);
    } catch (...) {
        SqlStatementTrace::recordBatch(bridgeTimer.nsecsElapsed());
        throw;
    }
    for (SqliteStatement& statement : statements) {
        // every parameter is a string literal: '' is an empty text, and a
        // null QString would bind as SQL NULL
        for (QVariant& param : statement.params) {
            if (param.isNull() || (param.typeId() == QMetaType::QString && param.toString().isNull()))
                param = QString(QLatin1String(""));
        }
    }
    SqlStatementTrace::recordBatch(bridgeTimer.nsecsElapsed());
    RecordsetPtr result;
    auto runAll = [&] {
        for (const SqliteStatement& statement : statements) {
            if (RecordsetPtr rows = runPrepared(statement.sql, statement.params))
                result = rows;
        }
    };
    if (statements.size() > 1)
        inTransaction(runAll);
    else
        runAll();
    return result ? result : std::make_shared<Recordset>();
}
