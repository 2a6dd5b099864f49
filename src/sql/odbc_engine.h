#pragma once
// QODBC: SQL Server, where the system's statements pass unchanged, or a
// SQLite file through the SQLite ODBC driver, where they go through the
// T-SQL bridge as on the embedded engine.
#include "sql/qt_sql_engine.h"

class OdbcEngine : public QtSqlEngine {
public:
    explicit OdbcEngine(ConnectionTarget target);

    RecordsetPtr executeBatch(const QString& tsql) override;

protected:
    void configure(QSqlDatabase& db) override;
    QString displayName() const override;
    bool connectionLost(const QSqlError& error) const override;
    void checkConnection() override;
    bool reusesPrepared() const override;
    QString maskSecrets(const QString& text) const override;

private:
    RecordsetPtr runBatch(const QString& tsql);
    ConnectionTarget m_target;
    QString m_password;   // only to blank it out of driver messages
};
