#pragma once
// What both engines share: one Qt SQL connection per engine, opened on first
// use and closed again when it breaks, prepared statements kept per text,
// transactions that nest by joining, rows read in full into a Recordset.
#include "sql/sql_engine.h"
#include <QHash>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <memory>

class QtSqlEngine : public SqlEngine {
public:
    ~QtSqlEngine() override;

    RecordsetPtr executeBound(const QString& sql, const QVariantList& params = {}) override;
    void inTransaction(const std::function<void()>& work) override;
    int preparedCount() const override { return int(m_prepared.size()); }
    bool isOpen() const override { return m_open; }
    void close() override;

protected:
    QtSqlEngine(QString driver, QString connectionPrefix);

    // Sets the database name and options of a new connection.
    virtual void configure(QSqlDatabase& db) = 0;
    // What the errors name the database by (never holds a password).
    virtual QString displayName() const = 0;
    // True when the failure means the connection is no longer usable.
    virtual bool connectionLost(const QSqlError& error) const = 0;
    // Runs before every use of an open connection (a file that is gone).
    virtual void checkConnection() {}
    // Runs once on every connection just opened, before its first statement.
    virtual void prepareConnection(QSqlDatabase&) {}
    virtual void beginTransaction();
    virtual void commitTransaction();
    virtual void rollbackTransaction();
    virtual QString maskSecrets(const QString& text) const;
    // False when a prepared statement must not run twice: a driver that
    // settles the kinds of its computed columns at the first run would read
    // later rows by that run's first row.
    virtual bool reusesPrepared() const { return true; }

    // The connection, opened when it is not.
    QSqlDatabase& database();
    // The connection as it is, open or not (rollback must not reopen).
    QSqlDatabase& currentConnection() { return m_db; }
    // One statement, prepared once per text and reused; null when the
    // statement produced no result set.
    RecordsetPtr runPrepared(const QString& sql, const QVariantList& params);
    // Raises the engine's error as a HostError; closes a broken connection.
    [[noreturn]] void raise(const QSqlError& error);
    static RecordsetPtr readRows(QSqlQuery& query);
    int transactionDepth() const { return m_depth; }
    // A batch of the system's T-SQL through the bridge, for the engines that
    // reach a SQLite file: one transaction for several statements, the rows
    // of the last statement that has rows.
    RecordsetPtr executeBridged(const QString& tsql);
    // True while the database file is there and this program may read it; an
    // open handle would go on working on a file removed or locked away from
    // the station, and whatever it wrote then would be lost.
    static bool fileReachable(const QString& file);

private:
    void clearPrepared();

    QString m_driver;
    QString m_connectionName;
    QSqlDatabase m_db;
    bool m_open = false;
    int m_depth = 0;
    QHash<QString, std::shared_ptr<QSqlQuery>> m_prepared;
};
