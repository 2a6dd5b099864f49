// A site's database holds the tables the station's statements name and the
// middle tier's own tables exactly as documented, nothing more. A whole
// session runs on such a database, built here from that list alone.
#include "support/replay_harness.h"
#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <gtest/gtest.h>

namespace {

struct Table {
    const char* name;
    const char* columns;   // the documented columns, as the site declares them
};

// Text compares without regard to case, as on the ERP's server.
const Table kDocumentedTables[] = {
    {"IC_Web2ERPOrders",
     "FID INTEGER PRIMARY KEY, FUniqueCode TEXT COLLATE NOCASE, FLogisticsOrder TEXT COLLATE NOCASE,"
     " FLogisticsComp TEXT COLLATE NOCASE, FWebshopID INTEGER, FOrderStatus INTEGER, FPIckingGoodsStatus INTEGER,"
     " FPickingGoodMan INTEGER, FSendDate TEXT, FDeliveryStatus INTEGER"},
    {"IC_Web2ERPOrdersEntry",
     "FEntryID INTEGER PRIMARY KEY, FID INTEGER, FItemID INTEGER, FQuantity REAL, FStockID INTEGER, FSPID INTEGER,"
     " FBatchNo TEXT COLLATE NOCASE"},
    {"IC_Web2ERPOrdersEx", "FID INTEGER, FIsLock INTEGER"},
    {"IC_WebshopToStorage", "FWebshopID INTEGER, FWebshopName TEXT COLLATE NOCASE"},
    {"IC_GoodsToMateriel", "FWebshopID INTEGER, FMaterielCode TEXT COLLATE NOCASE, FIsPriceChange INTEGER"},
    {"IC_Web2ErpOrderSerial",
     "FID INTEGER, FEntryID INTEGER, FSerialNumber TEXT COLLATE NOCASE, FBatchNo TEXT COLLATE NOCASE, FStockID INTEGER,"
     " FStockPlace INTEGER, FSerialID TEXT COLLATE NOCASE, FKFDate TEXT COLLATE NOCASE, FKFPeriod INTEGER"},
    {"IC_Web2ERPReturnBills", "FBillID INTEGER PRIMARY KEY, FID INTEGER, FStatus INTEGER"},
    {"t_ICItem",
     "FItemID INTEGER PRIMARY KEY, FNumber TEXT COLLATE NOCASE, FName TEXT COLLATE NOCASE, FModel TEXT COLLATE NOCASE,"
     " FBarcode TEXT COLLATE NOCASE, FSerialClassID INTEGER, FIsSnManage INTEGER"},
    {"t_Barcode", "FItemID INTEGER, FBarCode TEXT COLLATE NOCASE"},
    {"t_Accessory", "FID INTEGER PRIMARY KEY, FItemID INTEGER, FFileName TEXT, FData BLOB"},
    {"t_AuxItem", "FItemID INTEGER, FName TEXT COLLATE NOCASE"},
    {"t_Stock", "FItemID INTEGER, FNumber TEXT COLLATE NOCASE, FName TEXT COLLATE NOCASE"},
    {"t_StockPlace", "FSPID INTEGER, FNumber TEXT COLLATE NOCASE, FName TEXT COLLATE NOCASE"},
    {"t_Supplier", "FItemID INTEGER, FName TEXT COLLATE NOCASE"},
    {"t_Organization", "FItemID INTEGER, FName TEXT COLLATE NOCASE"},
    {"ICSerial",
     "FSerialID INTEGER, FSerialClassID INTEGER, FSerialNum TEXT COLLATE NOCASE, FItemID INTEGER, FAuxPropID INTEGER,"
     " FStockID INTEGER, FStockPlace INTEGER, FOutStockID INTEGER, FOutStockPlace INTEGER, FBatchNo TEXT COLLATE NOCASE,"
     " FKFPeriod INTEGER, FKFDate TEXT COLLATE NOCASE, FTranTypeID INTEGER, FValid INTEGER, FInterID INTEGER,"
     " FSNListID INTEGER"},
    {"ICSerial_F1", "FSerialClassID INTEGER, FSerialID INTEGER, F_S001 TEXT COLLATE NOCASE"},
    {"ICStockBill", "FInterID INTEGER, FRob INTEGER, FSupplyID INTEGER"},
    {"IcInvInitial", "FSNListID INTEGER"},
    {"t_Emp", "FItemID INTEGER, FNumber TEXT COLLATE NOCASE, FShortNumber TEXT COLLATE NOCASE, FName TEXT COLLATE NOCASE"},
    {"t_User", "FUserID INTEGER, FEmpID INTEGER"},
    {"t_SystemProfile", "FCategory TEXT COLLATE NOCASE, FKey TEXT COLLATE NOCASE, FValue TEXT COLLATE NOCASE"},
    {"t_UserProfile",
     "FUserID INTEGER, FCategory TEXT COLLATE NOCASE, FKey TEXT COLLATE NOCASE, FName TEXT COLLATE NOCASE,"
     " FValue TEXT COLLATE NOCASE"},
};

// Makes a database of the documented tables and fills it with the demo
// warehouse's rows, documented columns only; then puts it in the demo's place.
void replaceWithDocumentedTables(const ReplayHarness& h)
{
    const QString file = QDir(h.folder()).filePath(QStringLiteral("documented.db"));
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("documented"));
        db.setDatabaseName(file);
        ASSERT_TRUE(db.open());
        QSqlQuery q(db);
        ASSERT_TRUE(q.exec(QStringLiteral("ATTACH DATABASE '%1' AS demo").arg(h.databaseFile()))) << q.lastError().text().toStdString();
        for (const Table& t : kDocumentedTables) {
            QStringList columns;   // the names alone
            for (const QString& part : QString::fromLatin1(t.columns).split(QLatin1Char(',')))
                columns << part.trimmed().section(QLatin1Char(' '), 0, 0);
            ASSERT_TRUE(q.exec(QStringLiteral("CREATE TABLE main.%1 (%2)").arg(QLatin1String(t.name), QLatin1String(t.columns))))
                << t.name << q.lastError().text().toStdString();
            ASSERT_TRUE(q.exec(QStringLiteral("INSERT INTO main.%1 (%2) SELECT %2 FROM demo.%1")
                                   .arg(QLatin1String(t.name), columns.join(QLatin1Char(',')))))
                << t.name << q.lastError().text().toStdString();
        }
        q.exec(QStringLiteral("DETACH DATABASE demo"));
        db.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("documented"));
    ASSERT_TRUE(QFile::remove(h.databaseFile()));
    ASSERT_TRUE(QFile::rename(file, h.databaseFile()));
}

} // namespace

TEST(DocumentedTablesReplay, WholeSessionRunsOnTheDocumentedTablesAlone)
{
    ReplayHarness h;
    replaceWithDocumentedTables(h);
    if (::testing::Test::HasFatalFailure())
        return;

    // Options chosen, an order of serial goods passed, the station closed.
    const ReplayRun first = h.play({{"click chkShowText", {}},
                                    {"click chkHaveSerial", {}},
                                    {"scan TxtID 10021", {}},
                                    {"scan TxtItemID W1-0001", {}},
                                    {"scan TxtItemID W1-0002", {}},
                                    {"scan TxtItemID PAD-0001", {{"ImgSuccess", "yes"}}},
                                    {"close", {}}});
    EXPECT_EQ(h.orders("'10021'"), "10021:1/201/1/1");
    EXPECT_EQ(h.serials(), "53|W1-0001 53|W1-0002 54|PAD-0001");

    // The next start comes back in the grid with serial scanning on; a re-pick
    // of the order and a second pass replace its serial rows.
    const ReplayRun second = h.play({{"state", {{"view", "grid"}}},
                                     {"type TxtID 10021", {}},
                                     {"click CmdBtnRePick", {{"lblPickedNum", "0/"}}},
                                     // a serial: serial mode is on
                                     {"scan TxtItemID W1-0003", {{"lblPickedNum", "1/3"}}},
                                     {"scan TxtItemID W1-0001", {}},
                                     {"scan TxtItemID PAD-0002", {{"ImgSuccess", "yes"}}}});
    for (const QJsonObject& step : first.steps + second.steps)
        EXPECT_EQ(shown(step, "boxes"), QString()) << shown(step, "command").toStdString();
    EXPECT_EQ(h.orders("'10021'"), "10021:1/201/1/1");
    EXPECT_EQ(h.serials(), "53|W1-0001 53|W1-0003 54|PAD-0002");
    EXPECT_EQ(h.sql(QStringLiteral("SELECT count(*) FROM t_UserProfile WHERE FUserID = 1")).toInt(), 3);
}
