// Every statement the station sends, assembled here from its pieces exactly
// as the station writes them, run through clsGetData.ExecuteSQL on the demo
// database, with the rows a hand check of the demo data expects.
#include "demo/demo_database.h"
#include "host/host_error.h"
#include "host/object_factory.h"
#include "host/platform.h"
#include "sql/sql_engine.h"
#include "support/demo_database_fixture.h"
#include "support/expected_statements.h"
#include "support/qt_print.h"
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <gtest/gtest.h>
#include <ostream>

namespace {

using namespace ExpectedSql;

// The demo codes are numeric exactly when the runtime's numeric test says so.
QString orderGoodsSql(const QString& code) { return orderGoods(code, IsNumeric(code)); }

// One branch of the union on its own (lines first..last, counted from 1).
QString serialBranchSql(const QString& serial, int first, int last)
{
    QStringList lines = serialLookupLines(serial).mid(first - 1, last - first + 1);
    lines[0].replace(" (Select ", " Select ");
    return eachLine(lines);
}

QString serialGoodsTestSql(const QString& code) { return serialGoods(code, IsNumeric(code)); }

QString goodsQuantitySql(const QString& code, bool hasSerialGoods, bool chkBarCode, bool chkHaveSerial)
{
    return goodsQuantity(code, IsNumeric(code), hasSerialGoods, chkBarCode, chkHaveSerial);
}

struct SerialRow {
    int entry;
    QString serial, batch;
    int stock, place;
    QString serialId, kfDate;
    int kfPeriod;
};

QString serialRowsSql(const QList<QPair<int, QList<SerialRow>>>& lines)
{
    QStringList batch;
    for (const auto& [entry, rows] : lines) {
        batch << serialRowsDelete(entry);
        for (const SerialRow& r : rows) {
            batch << serialRowsInsert(QString::number(r.entry) + ",'" + r.serial + "','" + r.batch + "'," + QString::number(r.stock) + ","
                                      + QString::number(r.place) + ",'" + r.serialId + "','" + r.kfDate + "'," + QString::number(r.kfPeriod));
        }
    }
    return batch.join(CrLf);
}

QString tileListSql(const QString& code) { return tileGoods(code, IsNumeric(code)); }

QString cell(const QVariant& v)
{
    return v.isNull() ? QStringLiteral("NULL") : v.toString();
}

// The rows of the columns named, one text per row with '|' between values.
QStringList table(const RecordsetPtr& rs, const QStringList& columns, bool sorted = false)
{
    QStringList rows;
    for (; !rs->isEOF(); rs->MoveNext()) {
        QStringList values;
        for (const QString& c : columns)
            values << cell(rs->Fields(c));
        rows << values.join('|');
    }
    if (sorted)
        rows.sort();
    return rows;
}

class StatementProof : public DemoDatabaseTest {
protected:
    RecordsetPtr run(const QString& sql)
    {
        return CreateServerObjectAs<IGetData>(ProgIds::GetData)->ExecuteSQL(m_props, sql);
    }
    double total(const QString& sql)
    {
        double sum = 0;
        for (auto rs = run(sql); !rs->isEOF(); rs->MoveNext())
            sum += rs->Fields("FQuantity").toDouble();
        return sum;
    }
};

const QStringList kGoodsColumns = {"FEntryID", "FBatchNo", "FSPID", "FStockID", "FItemID", "FModel", "FItemName",
                                   "FBarCode", "FSerialClassID", "FPicID", "FWebshopName", "FQuantity"};

} // namespace

TEST_F(StatementProof, OrderGoodsByNumericAndOtherCodes)
{
    // the price-change cup of the Tmall order is left out
    EXPECT_EQ(table(run(orderGoodsSql("10008")), kGoodsColumns, true),
              QStringList({"13||0|2|1024|1.2kg|坚果礼盒|6931000010246|0|23|天猫旗舰店|1",
                           "14||0|2|1025|250g 明前|绿茶|6931000010253|0|24|天猫旗舰店|2"}));
    // a numeric code also matches a numeric logistics number
    EXPECT_EQ(table(run(orderGoodsSql("773000000002")), kGoodsColumns, true),
              QStringList({"4||0|2|1005|USB-C 1米|数据线|6931000010055|0|5|京东自营店|3",
                           "5||0|2|1016|120g 薄荷|牙膏|6931000010161|0|16|京东自营店|1"}));
    // an item without a t_ICItem row, in a shop without a name
    EXPECT_EQ(table(run(orderGoodsSql("SF10010")), kGoodsColumns, true),
              QStringList({"18||0|2|1099||||0|0|NULL|1",
                           "19||0|2|1017|软毛 4支装|牙刷|6931000010178|0|17|NULL|1"}));
    // serial lines carry their stock, place and batch
    EXPECT_EQ(table(run(orderGoodsSql("sn10024")), kGoodsColumns, true),
              QStringList({"57|G2405|5|2|1038|G3 静音|无线鼠标|6931000010383|1|36|天猫旗舰店|1",
                           "58|T2401|1|2|1034|S3 声波|电动牙刷||1|32|天猫旗舰店|1",
                           "59|T2402|2|2|1034|S3 声波|电动牙刷||1|32|天猫旗舰店|1"}));
    // a code with letters is a logistics number only; other statuses are not picked
    EXPECT_TRUE(run(orderGoodsSql("TB10027"))->isEOF());
    EXPECT_EQ(table(run(orderGoodsSql("YT10027")), {"FEntryID", "FItemID"}), QStringList({"63|1016"}));
    EXPECT_TRUE(run(orderGoodsSql("10007"))->isEOF());
    EXPECT_TRUE(run(orderGoodsSql("SF10007"))->isEOF());
    EXPECT_EQ(table(run(orderGoodsSql("10017")), {"FEntryID", "FItemID", "FQuantity"}), QStringList({"46|1026|3"}));
}

TEST_F(StatementProof, BarcodeLookupOverAllWebOrders)
{
    const QStringList columns = {"FBarCode", "FItemID", "FSerialClassID"};
    EXPECT_EQ(table(run(barcodeLookup("6931000010017")), columns), QStringList({"6931000010017|1001|0"}));
    EXPECT_EQ(table(run(barcodeLookup("6931000010314")), columns), QStringList({"6931000010314|1031|1"}));
    // the inner-pack code of the cable, in other letter case
    EXPECT_EQ(table(run(barcodeLookup("dx-usbc-1m")), {"FItemID"}), QStringList({"1005"}));
    // goods of an order in another status still count as web-order goods
    EXPECT_EQ(table(run(barcodeLookup("6931000010130")), {"FItemID"}), QStringList({"1013"}));
    // the cup is a price-change product in the Tmall shop only
    EXPECT_EQ(table(run(barcodeLookup("6931000010109")), {"FItemID"}), QStringList({"1010"}));
    // the slippers are web-order goods only as a price-change product: not found
    EXPECT_TRUE(run(barcodeLookup("6931000010406"))->isEOF());
    EXPECT_TRUE(run(barcodeLookup("6930000000000"))->isEOF());
}

TEST_F(StatementProof, SerialLookupFindsEachBranch)
{
    const QStringList columns = {"FItemID", "FSerialNum", "FSerialID", "FBatchNo", "FStockID", "FStockPlace",
                                 "FKFPeriod", "FKFDate", "FLimitDate", "FStatus"};
    // shelf life 0 comes back as ''
    EXPECT_EQ(table(run(serialLookup("W1-0001")), columns), QStringList({"1031|W1-0001|1|W2405|2|1||||在库"}));
    EXPECT_EQ(table(run(serialLookup("w1-0001")), {"FSerialNum"}), QStringList({"W1-0001"}));
    // shelf life and production date, with the limit date the statement computes
    EXPECT_EQ(table(run(serialLookup("MF-0001")), columns),
              QStringList({"1033|MF-0001|8|M2403|2|3|720|2024-03-01|2026/02/19|在库"}));
    EXPECT_EQ(table(run(serialLookup("MF-0003")), {"FKFPeriod", "FLimitDate"}), QStringList({"540|2025/08/23"}));
    EXPECT_EQ(table(run(serialLookup("MF-0004")), {"FKFDate", "FLimitDate"}), QStringList({"2024-04-15|2026/04/05"}));
    // opening balance only (third branch)
    EXPECT_EQ(table(run(serialLookup("RT-0001")), columns), QStringList({"1035|RT-0001|15||2|4||||在库"}));
    EXPECT_EQ(table(run(serialLookup("RT-0004")), {"FStatus"}), QStringList({"预入库"}));
    // a transfer not yet valid: found, at its target stock and place
    EXPECT_EQ(table(run(serialLookup("RT-0002")), {"FItemID", "FStockID", "FStockPlace"}), QStringList({"1035|2|4"}));
    // the batch that only the order's second toothbrush line has
    EXPECT_EQ(table(run(serialLookup("ET-0002")), {"FItemID", "FBatchNo", "FStockPlace"}), QStringList({"1034|T2402|2"}));
    // another serial class, or no such serial: no row
    EXPECT_TRUE(run(serialLookup("SPK-0001"))->isEOF());
    EXPECT_TRUE(run(serialLookup("NOPE-0001"))->isEOF());
    // a quote in the serial breaks the statement; the caller gets the error
    try {
        run(serialLookup("W1'0001"));
        FAIL() << "a quote must break the statement";
    } catch (const HostError& e) {
        EXPECT_TRUE(e.number() == HostErrors::Database || e.number() == HostErrors::Unsupported);
    }
}

TEST_F(StatementProof, SerialBranchesGiveTheStatusTable)
{
    const QStringList columns = {"FSerialNum", "FStatus", "FLasttranType", "FStockName", "FStockPlaceName", "FWanglaiName", "FOrder"};
    // branch 2, serial by serial, against the status table
    const QMap<QString, QString> branch2 = {
        {"W1-0001", "W1-0001|在库|外购入库|电商仓|A区-01货架|深圳华强电子有限公司|0"},
        {"PAD-0003", "PAD-0003|预出库|仓库调拨|成品仓|B区-01货架|杭州云仓电子商务有限公司|0"},
        {"MF-0003", "MF-0003|在库|外购入库|电商仓|B区-01货架|深圳华强电子有限公司|0"},
        {"ET-0003", "ET-0003|在库|其他入库|电商仓|B区-01货架|深圳华强电子有限公司|0"},
        {"RT-0002", "RT-0002|预出库|仓库调拨|成品仓|B区-01货架|杭州云仓电子商务有限公司|0"},
        {"RT-0003", "RT-0003|在库|外购入库|电商仓|B区-02货架|深圳华强电子有限公司|0"},
        {"KB01-B0", "KB01-B0|预入库|外购入库|电商仓|C区-01货架|深圳华强电子有限公司|0"},
        {"KB02-B1", "KB02-B1|在库|产品入库|电商仓|C区-01货架|深圳华强电子有限公司|0"},
        {"KB05-R0", "KB05-R0|预退库|委外加工入库|电商仓|C区-01货架|深圳华强电子有限公司|0"},
        {"KB10-R1", "KB10-R1|退库|其他入库|电商仓|C区-01货架|深圳华强电子有限公司|0"},
        {"KB40-B1", "KB40-B1|在库|盘盈入库|电商仓|C区-01货架|深圳华强电子有限公司|0"},
        {"KB21-R0", "KB21-R0|预入库|销售出库|电商仓|C区-01货架|杭州云仓电子商务有限公司|0"},
        {"KB24-R1", "KB24-R1|在库|生产领料|电商仓|C区-01货架|杭州云仓电子商务有限公司|0"},
        {"KB28-B0", "KB28-B0|预出库|委外加工发出|电商仓|C区-01货架|杭州云仓电子商务有限公司|0"},
        {"KB29-B1", "KB29-B1|出库|其他出库|电商仓|C区-01货架|杭州云仓电子商务有限公司|0"},
        {"KB43-B1", "KB43-B1|出库|盘亏毁损|电商仓|C区-01货架|杭州云仓电子商务有限公司|0"},
        {"KB41-B1", "KB41-B1|在库|仓库调拨|电商仓|C区-01货架|杭州云仓电子商务有限公司|0"},
        // an invalid transfer shows the outgoing stock and place
        {"KB41-R0", "KB41-R0|预出库|仓库调拨|成品仓|B区-01货架|杭州云仓电子商务有限公司|0"},
    };
    const QMap<QString, QString> branch1 = {
        {"PAD-0003", "PAD-0003|预入库|仓库调拨|电商仓|A区-02货架|杭州云仓电子商务有限公司|1"},
        {"RT-0002", "RT-0002|预入库|仓库调拨|电商仓|B区-02货架|杭州云仓电子商务有限公司|1"},
        {"KB41-R0", "KB41-R0|预入库|仓库调拨|电商仓|C区-01货架|杭州云仓电子商务有限公司|1"},
    };
    const QMap<QString, QString> branch3 = {
        {"PAD-0001", "PAD-0001|在库|初始化|电商仓|A区-02货架|NULL|0"},
        {"PAD-0002", "PAD-0002|在库|初始化|电商仓|A区-02货架|NULL|0"},
        {"RT-0001", "RT-0001|在库|初始化|电商仓|B区-02货架|NULL|0"},
        {"RT-0004", "RT-0004|预入库|初始化|电商仓|B区-02货架|NULL|0"},
    };
    int serials = 0;
    for (auto all = run("select FSerialNum from ICSerial where FSerialClassID=1"); !all->isEOF(); all->MoveNext()) {
        const QString serial = all->Fields("FSerialNum").toString();
        ++serials;
        SCOPED_TRACE(serial.toStdString());
        const QStringList one = table(run(serialBranchSql(serial, 2, 21)), columns);
        const QStringList two = table(run(serialBranchSql(serial, 23, 62)), columns);
        const QStringList three = table(run(serialBranchSql(serial, 64, 83)), columns);
        EXPECT_EQ(one, branch1.contains(serial) ? QStringList{branch1[serial]} : QStringList());
        EXPECT_EQ(three, branch3.contains(serial) ? QStringList{branch3[serial]} : QStringList());
        if (branch2.contains(serial)) {
            EXPECT_EQ(two, QStringList{branch2[serial]});
        } else if (!branch3.contains(serial)) {
            // the remaining serials were bought in and sit in stock
            ASSERT_EQ(two.size(), 1);
            EXPECT_TRUE(two[0].startsWith(serial + "|在库|")) << two[0].toStdString();
        } else {
            EXPECT_TRUE(two.isEmpty());
        }
        // whatever wins the union, the station reads the same stock values
        const QStringList outer = table(run(serialLookup(serial)), {"FItemID", "FStockID", "FStockPlace", "FBatchNo"});
        EXPECT_EQ(outer.size(), 1);
    }
    EXPECT_EQ(serials, 33);
}

TEST_F(StatementProof, OrderHeaderThroughGetSingleSqlData)
{
    auto info = CreateServerObjectAs<IWebOrderInfo>(ProgIds::WebOrderInfo);
    auto header = [&](const QString& code) {
        auto r = info->GetSingleSQLData(m_props, orderHeader(code));
        return r ? QStringList({r->KeyAt(0), r->KeyAt(1), r->KeyAt(2)}).join(',') + "=" + cell(r->ValueAt(0)) + "|"
                       + cell(r->ValueAt(1)) + "|" + cell(r->ValueAt(2))
                 : QString("nothing");
    };
    EXPECT_EQ(header("10003"), "FID,FPIckingGoodsStatus,FIsLock=3|0|1");
    EXPECT_EQ(header("SF10006"), "FID,FPIckingGoodsStatus,FIsLock=6|1|0");
    EXPECT_EQ(header("10014"), "FID,FPIckingGoodsStatus,FIsLock=14|0|0");   // NULL status reads 0
    EXPECT_EQ(header("10019"), "FID,FPIckingGoodsStatus,FIsLock=19|0|0");
    EXPECT_EQ(header("TB10027"), "FID,FPIckingGoodsStatus,FIsLock=27|0|0");  // the header query takes any unique code
    EXPECT_EQ(header("773000000002"), "FID,FPIckingGoodsStatus,FIsLock=2|0|0");
    EXPECT_EQ(header("10099"), "nothing");
}

TEST_F(StatementProof, GoodsTotalsUnderEveryOption)
{
    auto hasSerialGoods = [&](const QString& code) { return run(serialGoodsTestSql(code))->RecordCount() > 0; };
    EXPECT_TRUE(hasSerialGoods("10021"));
    EXPECT_TRUE(hasSerialGoods("SN10021"));
    EXPECT_EQ(run(serialGoodsTestSql("10012"))->RecordCount(), 2);
    EXPECT_FALSE(hasSerialGoods("10001"));
    EXPECT_FALSE(hasSerialGoods("10011"));

    // plain goods: the barcode option drops goods without a barcode
    EXPECT_EQ(total(goodsQuantitySql("10001", false, false, false)), 4);
    EXPECT_EQ(total(goodsQuantitySql("10001", false, true, false)), 4);
    EXPECT_EQ(total(goodsQuantitySql("10011", false, false, false)), 4);
    EXPECT_EQ(total(goodsQuantitySql("10011", false, true, false)), 0);
    EXPECT_EQ(total(goodsQuantitySql("SF10010", false, false, false)), 2);
    EXPECT_EQ(total(goodsQuantitySql("SF10010", false, true, false)), 1);   // the unknown item has no barcode
    // one item on two entries is one group
    EXPECT_EQ(table(run(goodsQuantitySql("10009", false, false, false)), {"FItemID", "FItemName", "FQuantity"}, true),
              QStringList({"1006|充电头|3", "1010|玻璃水杯|1"}));
    EXPECT_EQ(total(goodsQuantitySql("10008", false, false, false)), 3);   // price-change cup left out
    EXPECT_EQ(total(goodsQuantitySql("10007", false, false, false)), 0);   // not status 6
    EXPECT_EQ(total(goodsQuantitySql("TB10027", false, false, false)), 0);

    // serial goods: with the serial option, serial goods count without a barcode
    EXPECT_EQ(total(goodsQuantitySql("10012", true, false, false)), 4);
    EXPECT_EQ(total(goodsQuantitySql("10012", true, true, false)), 2);
    EXPECT_EQ(total(goodsQuantitySql("10012", true, true, true)), 3);
    EXPECT_EQ(total(goodsQuantitySql("SN10021", true, true, false)), 2);
    EXPECT_EQ(total(goodsQuantitySql("SN10021", true, true, true)), 3);
    EXPECT_EQ(total(goodsQuantitySql("10024", true, true, false)), 1);
    EXPECT_EQ(total(goodsQuantitySql("10024", true, true, true)), 3);
}

TEST_F(StatementProof, SettingsAndPicker)
{
    EXPECT_EQ(table(run(DeliverOnPick), {"FValue"}), QStringList({"1"}));
    EXPECT_EQ(table(run(CreateStockBill), {"FValue"}), QStringList({"1"}));
    SqlEngine::closeAll();
    SetDemoSystemProfile(m_file, "DeliveryWhenWeightedOrPick", "0");
    EXPECT_EQ(table(run(DeliverOnPick), {"FValue"}), QStringList({"0"}));
    EXPECT_EQ(table(run(CreateStockBill), {"FValue"}), QStringList({"1"}));

    const QStringList columns = {"FItemID", "FNumber", "FShortNumber", "FName"};
    EXPECT_EQ(table(run(picker(1)), columns), QStringList({"201|E001|zw|张伟"}));
    EXPECT_EQ(table(run(picker(3)), columns), QStringList({"203|E003|wf|王芳"}));
    EXPECT_EQ(run(picker(4))->RecordCount(), 0);   // a user without employee
    EXPECT_EQ(run(picker(77))->RecordCount(), 0);
}

TEST_F(StatementProof, SerialRowsAreReplacedPerLine)
{
    const QString batch = serialRowsSql({
        {53, {{53, "W1-0001", "W2405", 2, 1, "1", "", 0}, {53, "W1-0002", "W2405", 2, 1, "2", "", 0}}},
        {54, {{54, "PAD-0001", "P2404", 2, 2, "5", "", 0}}},
    });
    ASSERT_TRUE(batch.contains(CrLf));
    run(batch);
    run(batch);   // verified a second time: replaced, not doubled
    const QStringList columns = {"FID", "FEntryID", "FSerialNumber", "FBatchNo", "FStockID", "FStockPlace", "FSerialID", "FKFDate", "FKFPeriod"};
    EXPECT_EQ(table(run("select * from IC_Web2ErpOrderSerial"), columns, true),
              QStringList({"0|53|W1-0001|W2405|2|1|1||0", "0|53|W1-0002|W2405|2|1|2||0", "0|54|PAD-0001|P2404|2|2|5||0"}));

    // with shelf life
    run(serialRowsSql({{56, {{56, "MF-0001", "M2403", 2, 3, "8", "2024-03-01", 720}}}}));
    EXPECT_EQ(table(run("select FSerialNumber, FKFDate, FKFPeriod from IC_Web2ErpOrderSerial where FEntryID=56"),
                    {"FSerialNumber", "FKFDate", "FKFPeriod"}),
              QStringList({"MF-0001|2024-03-01|720"}));
    EXPECT_EQ(run("select COUNT(*) AS N from IC_Web2ErpOrderSerial")->Fields("N").toInt(), 4);
}

TEST_F(StatementProof, TileListAndBarcodeIndexStatements)
{
    const QStringList columns = {"FItemID", "FItemName", "FQuantity", "FPicID"};
    // one tile per item, quantities of its entries summed
    EXPECT_EQ(table(run(tileListSql("10009")), columns, true), QStringList({"1006|充电头|3|6", "1010|玻璃水杯|1|10"}));
    // no price-change filter in this statement
    EXPECT_EQ(table(run(tileListSql("SF10008")), columns, true),
              QStringList({"1010|玻璃水杯|1|10", "1024|坚果礼盒|1|23", "1025|绿茶|2|24"}));
    // an item without a picture, and an item without a t_ICItem row
    EXPECT_EQ(table(run(tileListSql("10020")), columns, true), QStringList({"1023|棒球帽|1|NULL", "1039|雨伞|1|37"}));
    EXPECT_EQ(table(run(tileListSql("10010")), columns, true), QStringList({"1017|牙刷|1|17", "1099|NULL|1|NULL"}));
    EXPECT_TRUE(run(tileListSql("10007"))->isEOF());
    EXPECT_TRUE(run(tileListSql("TB10027"))->isEOF());

    auto lastItem = [&](const QString& barcode) {
        QString item;
        for (auto rs = run(tileGoodsIndexByBarCode(barcode)); !rs->isEOF(); rs->MoveNext())
            item = rs->Fields("FItemID").toString();
        return item;
    };
    // every entry with these goods in any order
    EXPECT_EQ(run(tileGoodsIndexByBarCode("6931000010017"))->RecordCount(), 2);
    EXPECT_EQ(lastItem("6931000010017"), "1001");
    EXPECT_EQ(run(tileGoodsIndexByBarCode("6931000010109"))->RecordCount(), 2);   // Tmall's price-change line left out
    EXPECT_EQ(lastItem("6931000010406"), "");
    EXPECT_EQ(lastItem("0000"), "");
}

// The generated order of the benchmark: every line found by either code and by its barcode.
TEST_F(StatementProof, TheBenchOrderIsFoundWholeByEveryStatement)
{
    const QString bench = m_dir.filePath("bench.db");
    CreateDemoDatabase(bench, 500);
    m_props = DemoPropsString(bench);
    SqlEngine::closeAll();

    EXPECT_EQ(run(orderGoodsSql("BENCH500"))->RecordCount(), 500);
    EXPECT_EQ(run(orderGoodsSql(BenchUniqueCode(500)))->RecordCount(), 500);

    EXPECT_GT(total(goodsQuantitySql("BENCH500", false, true, false)), 0);

    int found = 0;
    for (int i = 1; i <= 200; ++i) {
        const QString twelve = "69399" + QString("%1").arg(i, 7, 10, QChar('0'));
        int sum = 0;
        for (int d = 0; d < 12; ++d)
            sum += twelve.at(d).digitValue() * (d % 2 ? 3 : 1);
        found += run(barcodeLookup(twelve + QString::number((10 - sum % 10) % 10)))->RecordCount();
    }
    EXPECT_EQ(found, 200);
}
