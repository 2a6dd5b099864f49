#pragma once
// The embedded engine: a SQLite file reached through QSQLITE. The system's
// T-SQL goes through the bridge first; the file must exist (opening never
// creates it).
#include "sql/qt_sql_engine.h"

class SqliteEngine : public QtSqlEngine {
public:
    explicit SqliteEngine(QString file);

    RecordsetPtr executeBatch(const QString& tsql) override;
    const QString& file() const { return m_file; }

protected:
    void configure(QSqlDatabase& db) override;
    QString displayName() const override { return m_file; }
    bool connectionLost(const QSqlError& error) const override;
    void checkConnection() override;
    void prepareConnection(QSqlDatabase& db) override;
    void beginTransaction() override;
    void commitTransaction() override;
    void rollbackTransaction() override;

private:
    void execPlain(const QString& sql);
    QString m_file;
};
