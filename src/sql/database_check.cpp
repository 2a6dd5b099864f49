#include "sql/database_check.h"
#include "host/host_error.h"
#include "host/props_text.h"
#include "sql/sql_engine.h"
#include "sql/text_collation.h"
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUrl>
#include <QUuid>

namespace {

constexpr int SqliteBusy = 5;
constexpr int SqliteLocked = 6;

HostError unusable(const QString& name, const QString& problem)
{
    return HostError(HostErrors::Database, QStringLiteral("%1 is not a usable database: %2").arg(name, problem));
}

QString engineText(const QSqlError& error)
{
    return error.databaseText().isEmpty() ? error.text() : error.databaseText();
}

bool lockedElsewhere(const QSqlError& error)
{
    bool ok = false;
    const int code = error.nativeErrorCode().toInt(&ok) & 0xff;
    return ok && (code == SqliteBusy || code == SqliteLocked);
}

QString missingTablesText(const QStringList& missing)
{
    return missing.size() == 1 ? QStringLiteral("it has no table %1").arg(missing.first())
                               : QStringLiteral("it has none of the tables %1").arg(missing.join(QStringLiteral(", ")));
}

// A connection of the check's own that never waits for a lock: the whole
// file is read once, every table looked for.
class SqliteCheck {
public:
    explicit SqliteCheck(const QString& file)
        : m_file(file), m_name(QStringLiteral("rnw_check_") + QUuid::createUuid().toString(QUuid::WithoutBraces))
    {
    }
    ~SqliteCheck() { QSqlDatabase::removeDatabase(m_name); }
    SqliteCheck(const SqliteCheck&) = delete;
    SqliteCheck& operator=(const SqliteCheck&) = delete;

    void run()
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
        db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_URI;QSQLITE_BUSY_TIMEOUT=0"));
        // mode=rw: never create the file; a hot journal is rolled back as the engine would
        const QString absolute = QFileInfo(m_file).absoluteFilePath();
        db.setDatabaseName(QUrl::fromLocalFile(absolute).toString(QUrl::FullyEncoded) + QStringLiteral("?mode=rw"));
        if (!db.open())
            throw unusable(m_file, engineText(db.lastError()));
        try {
            RegisterTextCollation(db);
            checkPages(db);
            checkTables(db);
        } catch (...) {
            db.close();
            throw;
        }
        db.close();
    }

private:
    void checkPages(const QSqlDatabase& db)
    {
        QSqlQuery check(db);
        if (!check.exec(QStringLiteral("PRAGMA quick_check(1)"))) {
            if (lockedElsewhere(check.lastError()))
                return;
            throw unusable(m_file, engineText(check.lastError()));
        }
        if (check.next() && check.value(0).toString() != QLatin1String("ok"))
            throw unusable(m_file, QStringLiteral("database disk image is malformed (%1)").arg(check.value(0).toString()));
    }

    void checkTables(const QSqlDatabase& db)
    {
        QStringList missing;
        for (const QString& table : StationTableNames()) {
            QSqlQuery probe(db);
            if (probe.exec(QStringLiteral("SELECT 1 FROM %1 WHERE 0 = 1").arg(table)))
                continue;
            if (lockedElsewhere(probe.lastError()))
                return;
            missing << table;
        }
        if (!missing.isEmpty())
            throw unusable(m_file, missingTablesText(missing));
    }

    QString m_file;
    QString m_name;
};

void checkServer(const QString& connectString)
{
    auto engine = SqlEngine::forConnectString(connectString);
    // Opening it names the server when it cannot be reached.
    engine->executeBound(QStringLiteral("SELECT 1"));
    QStringList missing;
    QString firstError;
    for (const QString& table : StationTableNames()) {
        try {
            engine->executeBound(QStringLiteral("SELECT 1 FROM %1 WHERE 0 = 1").arg(table));
        } catch (const HostError& e) {
            missing << table;
            if (firstError.isEmpty())
                firstError = e.description();
        }
    }
    if (!missing.isEmpty()) {
        const QString name = MaskPasswords(MapConnectString(connectString).odbcConnectString);
        throw unusable(name, missingTablesText(missing) + QStringLiteral(" (") + firstError + QLatin1Char(')'));
    }
}

} // namespace

QStringList StationTableNames()
{
    return {QStringLiteral("IC_Web2ERPOrders"),      QStringLiteral("IC_Web2ERPOrdersEntry"),
            QStringLiteral("IC_Web2ERPOrdersEx"),    QStringLiteral("IC_WebshopToStorage"),
            QStringLiteral("IC_GoodsToMateriel"),    QStringLiteral("IC_Web2ErpOrderSerial"),
            QStringLiteral("IC_Web2ERPReturnBills"), QStringLiteral("t_ICItem"),
            QStringLiteral("t_Barcode"),             QStringLiteral("t_Accessory"),
            QStringLiteral("t_AuxItem"),             QStringLiteral("t_Stock"),
            QStringLiteral("t_StockPlace"),          QStringLiteral("t_Supplier"),
            QStringLiteral("t_Organization"),        QStringLiteral("ICSerial"),
            QStringLiteral("ICSerial_F1"),           QStringLiteral("ICStockBill"),
            QStringLiteral("IcInvInitial"),          QStringLiteral("t_Emp"),
            QStringLiteral("t_User"),                QStringLiteral("t_SystemProfile"),
            QStringLiteral("t_UserProfile")};
}

void CheckStationDatabase(const QString& connectString)
{
    const ConnectionTarget target = MapConnectString(connectString);
    // A SQLite file, whether the embedded engine or the SQLite ODBC driver opens it.
    const bool sqliteFile = target.kind == ConnectionTarget::Sqlite || target.tsqlBridge;
    if (sqliteFile && !QFileInfo(target.sqliteFile).isFile())
        throw HostError(HostErrors::Database, QStringLiteral("database not found: %1").arg(target.sqliteFile));
    if (target.kind != ConnectionTarget::Sqlite) {
        checkServer(connectString);
        return;
    }
    SqliteCheck(target.sqliteFile).run();
}
