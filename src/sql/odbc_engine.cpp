#include "sql/odbc_engine.h"
#include "host/host_error.h"
#include "host/props_text.h"
#include "sql/sql_statement_trace.h"
#include <QElapsedTimer>
#include <QRegularExpression>

namespace {

// A batch that writes runs in a transaction, so that a failing statement
// takes the ones before it back with it.
bool writes(const QString& tsql)
{
    static const QRegularExpression verbs(QStringLiteral("\\b(insert|update|delete|merge|exec|execute)\\b"),
                                          QRegularExpression::CaseInsensitiveOption);
    return tsql.contains(verbs);
}

} // namespace

OdbcEngine::OdbcEngine(ConnectionTarget target)
    : QtSqlEngine(QStringLiteral("QODBC"), QStringLiteral("rnw_odbc_")), m_target(std::move(target))
{
    for (const auto& pair : SplitPropsText(m_target.odbcConnectString)) {
        if (pair.first.compare(QLatin1String("PWD"), Qt::CaseInsensitive) == 0
            || pair.first.compare(QLatin1String("Password"), Qt::CaseInsensitive) == 0)
            m_password = pair.second;
    }
}

void OdbcEngine::configure(QSqlDatabase& db)
{
    db.setConnectOptions(QStringLiteral("SQL_ATTR_LOGIN_TIMEOUT=%1").arg(m_target.loginTimeoutSeconds));
    db.setDatabaseName(m_target.odbcConnectString);
}

QString OdbcEngine::displayName() const
{
    // a file says more to the worker than the driver's options around it
    if (m_target.tsqlBridge)
        return m_target.sqliteFile;
    return MaskPasswords(m_target.odbcConnectString);
}

QString OdbcEngine::maskSecrets(const QString& text) const
{
    QString masked = MaskPasswords(text);
    if (m_password.size() >= 3)
        masked.replace(m_password, QStringLiteral("***"));
    return masked;
}

void OdbcEngine::checkConnection()
{
    if (m_target.tsqlBridge && !fileReachable(m_target.sqliteFile))
        close();
}

bool OdbcEngine::reusesPrepared() const
{
    // The SQLite driver gives a computed column (ISNULL(...), 1, COUNT) the
    // kind of its value in the first row of the statement's first run, and
    // text when that run had no rows; prepared afresh, each run reads its
    // numbers as numbers.
    return !m_target.tsqlBridge;
}

bool OdbcEngine::connectionLost(const QSqlError& error) const
{
    if (m_target.tsqlBridge && !fileReachable(m_target.sqliteFile))
        return true;
    // SQLSTATE class 08: connection exception
    return error.type() == QSqlError::ConnectionError
        || error.nativeErrorCode().startsWith(QLatin1String("08"))
        || error.nativeErrorCode().contains(QLatin1String(";08"));
}

RecordsetPtr OdbcEngine::runBatch(const QString& tsql)
{
    QSqlQuery query(database());
    query.setForwardOnly(true);
    QElapsedTimer timer;
    timer.start();
    if (!query.exec(tsql)) {
        const QSqlError error = query.lastError();
        query = QSqlQuery();
        SqlStatementTrace::recordStatement(tsql, {}, timer.nsecsElapsed(), -1);
        raise(error);
    }
    // the rows of the last statement that returns any
    RecordsetPtr result;
    do {
        if (query.isSelect())
            result = readRows(query);
    } while (query.nextResult());
    SqlStatementTrace::recordStatement(tsql, {}, timer.nsecsElapsed(), result ? result->RecordCount() : -1);
    return result ? result : std::make_shared<Recordset>();
}

RecordsetPtr OdbcEngine::executeBatch(const QString& tsql)
{
    if (m_target.tsqlBridge)
        return executeBridged(tsql);
    // passed unchanged: no bridge time
    SqlStatementTrace::recordBatch(0);
    if (!writes(tsql))
        return runBatch(tsql);
    RecordsetPtr result;
    inTransaction([&] { result = runBatch(tsql); });
    return result;
}
