#pragma once
// SQL Server through QODBC: the system's statements pass unchanged.
#include "host/qt_sql_engine.h"

class OdbcEngine : public QtSqlEngine {
public:
    explicit OdbcEngine(ConnectionTarget target);

    RecordsetPtr executeBatch(const QString& tsql) override;

protected:
    void configure(QSqlDatabase& db) override;
    QString displayName() const override;
    bool connectionLost(const QSqlError& error) const override;
    QString maskSecrets(const QString& text) const override;

private:
    RecordsetPtr runBatch(const QString& tsql);
    ConnectionTarget m_target;
    QString m_password;   // only to blank it out of driver messages
};
