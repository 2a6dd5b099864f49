#include "sql/sqlite_engine.h"
#include "host/host_error.h"
#include "sql/sql_statement_trace.h"
#include "sql/text_collation.h"
#include <QElapsedTimer>
#include <QFileInfo>
#include <QUrl>

SqliteEngine::SqliteEngine(QString file)
    : QtSqlEngine(QStringLiteral("QSQLITE"), QStringLiteral("rnw_sqlite_")), m_file(std::move(file))
{
}

void SqliteEngine::configure(QSqlDatabase& db)
{
    // mode=rw: a missing file is an error, never a new empty database
    db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_URI;QSQLITE_BUSY_TIMEOUT=%1").arg(kSqliteBusyTimeoutMs));
    const QString absolute = QFileInfo(m_file).absoluteFilePath();
    db.setDatabaseName(QUrl::fromLocalFile(absolute).toString(QUrl::FullyEncoded) + QStringLiteral("?mode=rw"));
}

void SqliteEngine::checkConnection()
{
    if (!fileReachable(m_file))
        close();
}

void SqliteEngine::prepareConnection(QSqlDatabase& db)
{
    // Text compares as on the ERP's server, on every connection.
    RegisterTextCollation(db);
}

bool SqliteEngine::connectionLost(const QSqlError& error) const
{
    if (!fileReachable(m_file))
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
    return executeBridged(tsql);
}
