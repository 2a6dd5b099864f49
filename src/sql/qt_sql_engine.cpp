#include "sql/qt_sql_engine.h"
#include "host/host_error.h"
#include "host/props_text.h"
#include "sql/sql_statement_trace.h"
#include "sql/tsql_bridge.h"
#include <QAtomicInt>
#include <QElapsedTimer>
#include <QFile>
#include <QSqlRecord>

namespace {

// The scan's statements come in a few dozen shapes; numbers pasted into a
// statement make new texts, so the cache is bounded and starts over when full.
constexpr int kMaxPrepared = 128;

QAtomicInt connectionSerial;

} // namespace

QtSqlEngine::QtSqlEngine(QString driver, QString connectionPrefix)
    : m_driver(std::move(driver)),
      m_connectionName(connectionPrefix + QString::number(connectionSerial.fetchAndAddRelaxed(1)))
{
}

QtSqlEngine::~QtSqlEngine()
{
    close();
}

void QtSqlEngine::clearPrepared()
{
    m_prepared.clear();
}

void QtSqlEngine::close()
{
    clearPrepared();
    const bool existed = m_db.isValid();
    if (existed) {
        m_db.close();
        m_db = QSqlDatabase();
    }
    if (existed || QSqlDatabase::contains(m_connectionName))
        QSqlDatabase::removeDatabase(m_connectionName);
    m_open = false;
    m_depth = 0;
}

QSqlDatabase& QtSqlEngine::database()
{
    if (m_open)
        checkConnection();
    if (m_open)
        return m_db;
    close();
    m_db = QSqlDatabase::addDatabase(m_driver, m_connectionName);
    if (!m_db.isValid()) {
        close();
        throw HostError(HostErrors::Database, QStringLiteral("The database driver %1 is not available.").arg(m_driver));
    }
    configure(m_db);
    if (!m_db.open()) {
        const QSqlError error = m_db.lastError();
        close();
        const QString engineText = error.databaseText().isEmpty() ? error.text() : error.databaseText();
        throw HostError(HostErrors::Database,
                        maskSecrets(QStringLiteral("Cannot open the database %1: %2").arg(displayName(), engineText)));
    }
    try {
        prepareConnection(m_db);
    } catch (...) {
        close();
        throw;
    }
    m_open = true;
    return m_db;
}

QString QtSqlEngine::maskSecrets(const QString& text) const
{
    return MaskPasswords(text);
}

void QtSqlEngine::raise(const QSqlError& error)
{
    const QString engineText = error.databaseText().isEmpty() ? error.text() : error.databaseText();
    // judged before closing: the check may look at the open connection
    if (connectionLost(error))
        close();
    throw HostError(HostErrors::Database, maskSecrets(engineText));
}

RecordsetPtr QtSqlEngine::readRows(QSqlQuery& query)
{
    const QSqlRecord record = query.record();
    QStringList columns;
    columns.reserve(record.count());
    for (int c = 0; c < record.count(); ++c)
        columns << record.fieldName(c);
    std::vector<std::vector<QVariant>> rows;
    while (query.next()) {
        std::vector<QVariant> row;
        row.reserve(size_t(columns.size()));
        for (int c = 0; c < columns.size(); ++c)
            row.push_back(query.isNull(c) ? QVariant() : query.value(c));
        rows.push_back(std::move(row));
    }
    return std::make_shared<Recordset>(std::move(columns), std::move(rows));
}

RecordsetPtr QtSqlEngine::runPrepared(const QString& sql, const QVariantList& params)
{
    QSqlDatabase& db = database();
    QElapsedTimer timer;
    timer.start();
    std::shared_ptr<QSqlQuery> query = m_prepared.value(sql);
    if (!query) {
        auto fresh = std::make_shared<QSqlQuery>(db);
        fresh->setForwardOnly(true);
        if (!fresh->prepare(sql)) {
            const QSqlError error = fresh->lastError();
            fresh.reset();   // no query may outlive a connection that raise() closes
            SqlStatementTrace::recordStatement(sql, params, timer.nsecsElapsed(), -1);
            raise(error);
        }
        if (reusesPrepared()) {
            if (m_prepared.size() >= kMaxPrepared)
                clearPrepared();
            m_prepared.insert(sql, fresh);
        }
        query = fresh;
    }
    for (int i = 0; i < params.size(); ++i)
        query->bindValue(i, params[i]);
    if (!query->exec()) {
        const QSqlError error = query->lastError();
        query->finish();
        query.reset();
        SqlStatementTrace::recordStatement(sql, params, timer.nsecsElapsed(), -1);
        raise(error);
    }
    RecordsetPtr rows = query->isSelect() ? readRows(*query) : nullptr;
    // releases the statement's read lock; the text stays prepared
    query->finish();
    SqlStatementTrace::recordStatement(sql, params, timer.nsecsElapsed(), rows ? rows->RecordCount() : -1);
    return rows;
}

RecordsetPtr QtSqlEngine::executeBound(const QString& sql, const QVariantList& params)
{
    RecordsetPtr rows = runPrepared(sql, params);
    return rows ? rows : std::make_shared<Recordset>();
}

void QtSqlEngine::beginTransaction()
{
    QSqlDatabase& db = database();
    QElapsedTimer timer;
    timer.start();
    const bool ok = db.transaction();
    SqlStatementTrace::recordStatement(QStringLiteral("BEGIN"), {}, timer.nsecsElapsed(), -1);
    if (!ok)
        raise(m_db.lastError());
}

void QtSqlEngine::commitTransaction()
{
    QElapsedTimer timer;
    timer.start();
    const bool ok = m_db.commit();
    SqlStatementTrace::recordStatement(QStringLiteral("COMMIT"), {}, timer.nsecsElapsed(), -1);
    if (!ok)
        raise(m_db.lastError());
}

void QtSqlEngine::rollbackTransaction()
{
    if (m_open)
        m_db.rollback();
}

void QtSqlEngine::inTransaction(const std::function<void()>& work)
{
    if (m_depth > 0) {
        // joins the transaction already running: its owner commits or rolls back
        work();
        return;
    }
    beginTransaction();
    m_depth = 1;
    try {
        work();
    } catch (...) {
        if (m_depth > 0) {
            m_depth = 0;
            rollbackTransaction();
        }
        throw;
    }
    m_depth = 0;
    try {
        commitTransaction();
    } catch (...) {
        rollbackTransaction();
        throw;
    }
}

RecordsetPtr QtSqlEngine::executeBridged(const QString& tsql)
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

bool QtSqlEngine::fileReachable(const QString& file)
{
    QFile probe(file);
    return probe.exists() && probe.open(QIODevice::ReadOnly);
}
