// The middle-tier objects on a generated demo database, reached through the
// host object factory as the station reaches them; and the statements the
// station sends (written out once in the test support) run through
// clsGetData.ExecuteSQL, with the rows a hand check of the demo data expects.
#include "host/host_error.h"
#include "host/object_factory.h"
#include "host/platform.h"
#include "support/demo_database_fixture.h"
#include "support/expected_statements.h"
#include "support/qt_print.h"
#include <QDateTime>

namespace {

using namespace ExpectedSql;

class MiddleTierTest : public DemoDatabaseTest {
protected:
    RecordsetPtr sql(const QString& statement)
    {
        return CreateServerObjectAs<IGetData>(ProgIds::GetData)->ExecuteSQL(m_props, statement);
    }
    QVariant value(const QString& statement)
    {
        auto rs = sql(statement);
        return rs->isEOF() ? QVariant() : rs->Fields(rs->columns().first());
    }
    GoodsRecord record(std::initializer_list<std::pair<const char*, QVariant>> entries)
    {
        GoodsRecord r;
        for (const auto& [key, v] : entries)
            r.Add(key, v);
        return r;
    }
    // The rows of the columns named, one text per row with '|' between values, sorted.
    QStringList table(const QString& statement, const QString& columns)
    {
        QStringList rows;
        for (auto rs = sql(statement); !rs->isEOF(); rs->MoveNext()) {
            QStringList values;
            for (const QString& c : columns.split(QLatin1Char(',')))
                values << (rs->Fields(c).isNull() ? QStringLiteral("NULL") : rs->Fields(c).toString());
            rows << values.join(QLatin1Char('|'));
        }
        rows.sort();
        return rows;
    }
    double total(const QString& statement)
    {
        double sum = 0;
        for (auto rs = sql(statement); !rs->isEOF(); rs->MoveNext())
            sum += rs->Fields("FQuantity").toDouble();
        return sum;
    }
};

QString orderGoodsSql(const QString& code) { return orderGoods(code, IsNumeric(code)); }

QString goodsQuantitySql(const QString& code, bool hasSerialGoods, bool chkBarCode, bool chkHaveSerial)
{
    return goodsQuantity(code, IsNumeric(code), hasSerialGoods, chkBarCode, chkHaveSerial);
}

} // namespace

TEST_F(MiddleTierTest, CheckReturnBillsAnswersTheNewestBill)
{
    auto getData = CreateServerObjectAs<IGetData>(ProgIds::GetData);
    auto check = [&](const QVariant& fid) { return getData->CheckReturnBills(record({{"sDSN", m_props}, {"FID", fid}})); };

    auto refund = check(4);
    ASSERT_TRUE(refund.has_value());
    EXPECT_EQ(refund->GetValue("FStatus").toInt(), 1);
    // order 5: bill 3 applied for a refund, the later bill 7 closed it
    auto superseded = check(QString("5"));
    ASSERT_TRUE(superseded.has_value());
    EXPECT_EQ(superseded->GetValue("FStatus").toInt(), 2);
    EXPECT_EQ(superseded->GetValue("FBillID").toInt(), 7);
    EXPECT_EQ(check(28)->GetValue("FStatus").toInt(), 0);
    EXPECT_FALSE(check(1).has_value());
    EXPECT_FALSE(check(QVariant()).has_value());

    EXPECT_THROW(getData->CheckReturnBills(GoodsRecord::none()), HostError);
    // a property string without a connection is refused
    EXPECT_THROW(getData->CheckReturnBills(record({{"sDSN", "UserID=1;"}, {"FID", 4}})), HostError);
}

TEST_F(MiddleTierTest, SavesMarkTheOrderByEitherCodeAndStampItsDelivery)
{
    auto save = [&](const QVariant& picker, const char* code, int status) {
        CreateServerObjectAs<ISaveData>(ProgIds::SaveData)
            ->SavePickingGoods(record({{"FPickingGoodMan", picker}, {"FLogisticsOrder", code},
                                       {"sProps", m_props}, {"FPickingGoodsstatus", status}}));
    };
    auto status = [&](int fid) {
        return table(QString("select * from IC_Web2ERPOrders where FID=%1").arg(fid),
                     "FPIckingGoodsStatus,FPickingGoodMan");
    };
    save(202, "10001", 1);   // by unique code
    EXPECT_EQ(status(1), QStringList{"1|202"});
    save("203", "sn10021", 1);   // by logistics number, in other letter case, picker as text
    EXPECT_EQ(status(21), QStringList{"1|203"});
    // the reset of a fresh load: status 0, picker 0 (an empty tag counts as 0)
    save("", "SF10001", 0);
    EXPECT_EQ(status(1), QStringList{"0|0"});
    // nobody else was touched
    EXPECT_EQ(value("select COUNT(*) from IC_Web2ERPOrders where FPIckingGoodsStatus = 1").toInt(), 3);
    EXPECT_EQ(status(6), QStringList{"1|201"});
    // a picker that is no number writes nothing
    EXPECT_THROW(save("张伟", "10002", 1), HostError);
    EXPECT_EQ(status(2), QStringList{"0|0"});

    // delivery stamps the order
    const QDateTime before = QDateTime::currentDateTime().addSecs(-1);
    CreateServerObjectAs<ISaveData>(ProgIds::SaveData)->UpdateDeliveryData(m_props, 13);
    const QDateTime after = QDateTime::currentDateTime().addSecs(1);

    EXPECT_EQ(value("select FDeliveryStatus from IC_Web2ERPOrders where FID=13").toInt(), 1);
    const QString sentText = value("select FSendDate from IC_Web2ERPOrders where FID=13").toString();
    const QDateTime sent = QDateTime::fromString(sentText, Qt::ISODate);
    ASSERT_TRUE(sent.isValid()) << sentText.toStdString();
    EXPECT_GE(sent, before.addMSecs(-before.time().msec()));
    EXPECT_LE(sent, after);
    EXPECT_EQ(value("select COUNT(*) from IC_Web2ERPOrders where FDeliveryStatus = 1").toInt(), 2);   // and the shipped order 16
    EXPECT_TRUE(value("select FSendDate from IC_Web2ERPOrders where FID=12").isNull());
}

TEST_F(MiddleTierTest, GetSingleSqlDataGivesTheFirstRowOrNothing)
{
    auto info = CreateServerObjectAs<IWebOrderInfo>(ProgIds::WebOrderInfo);
    auto row = info->GetSingleSQLData(m_props, "select FNumber, FName, FItemID, FBarcode from t_ICItem "
                                               "where FItemID >= 1022 order by FItemID");
    ASSERT_TRUE(row.has_value());
    EXPECT_EQ(row->Keys(), QStringList({"FNumber", "FName", "FItemID", "FBarcode"}));
    EXPECT_EQ(row->GetValue("FName").toString(), "运动袜");
    EXPECT_EQ(row->GetValue("fitemid").toInt(), 1022);

    // a name given twice keeps its first column
    row = info->GetSingleSQLData(m_props, "select FName as A, FNumber as A from t_Stock where FItemID = 2");
    ASSERT_TRUE(row.has_value());
    EXPECT_EQ(row->Count(), 1);
    EXPECT_EQ(row->GetValue("A").toString(), "电商仓");
    EXPECT_FALSE(info->GetSingleSQLData(m_props, "select FID from IC_Web2ERPOrders where FUniqueCode ='nope'").has_value());
    // what the engine's complaint says, and that it leaves the engine usable: test_sql_engine.cpp
    EXPECT_THROW(info->GetSingleSQLData(m_props, "select FNoSuchColumn from t_ICItem"), HostError);
}

TEST_F(MiddleTierTest, UserProfilesAreKeptPerUserCategoryAndKey)
{
    auto profile = CreateServerObjectAs<IUserProfile>(ProgIds::UserProfile);
    EXPECT_EQ(profile->LoadUserProfile(m_props, "EC", "PickGoods_chkShowText").Count(), 0);

    profile->SaveUserProfile(m_props, "EC", "PickGoods_chkShowText",
                             record({{"chkShowText", 1}, {"chkHaveSerial", 0}, {"Note", QVariant()}}));
    const GoodsRecord other = record({{"chkBarCode", 0}});
    profile->SaveUserProfile(m_props, "EC", "PickGoods_chkBarCode", other);
    profile->SaveUserProfile(DemoPropsString(m_file, 2), "EC", "PickGoods_chkShowText", other);

    GoodsRecord loaded = profile->LoadUserProfile(m_props, "ec", "PICKGOODS_CHKSHOWTEXT");
    EXPECT_EQ(loaded.Keys(), QStringList({"chkShowText", "chkHaveSerial", "Note"}));
    EXPECT_EQ(loaded.GetValue("chkShowText").toInt(), 1);
    EXPECT_EQ(loaded.GetValue("chkHaveSerial").toString(), "0");
    EXPECT_TRUE(loaded.GetValue("Note").isNull());
    EXPECT_EQ(profile->LoadUserProfile(m_props, "EC", "PickGoods_chkBarCode").GetValue("chkBarCode").toString(), "0");

    // saving again replaces the profile's entries
    profile->SaveUserProfile(m_props, "EC", "PickGoods_chkShowText", record({{"chkShowText", 0}}));
    loaded = profile->LoadUserProfile(m_props, "EC", "PickGoods_chkShowText");
    EXPECT_EQ(loaded.Keys(), QStringList({"chkShowText"}));
    EXPECT_EQ(loaded.GetValue("chkShowText").toString(), "0");
    // user 2 kept their own
    EXPECT_EQ(profile->LoadUserProfile(DemoPropsString(m_file, 2), "EC", "PickGoods_chkShowText").Keys(),
              QStringList({"chkBarCode"}));
    EXPECT_EQ(value("select COUNT(*) from t_UserProfile").toInt(), 3);

    EXPECT_THROW(profile->LoadUserProfile("ConnectString={Provider=SQLite;Data Source=" + m_file + "};", "EC", "k"), HostError);
    EXPECT_THROW(profile->SaveUserProfile(m_props, "EC", "k", GoodsRecord::none()), HostError);
}

TEST_F(MiddleTierTest, EveryLookupFindsTheRowsOfTheDemoWarehouse)
{
    const QString goods = QStringLiteral("FEntryID,FBatchNo,FSPID,FStockID,FItemID,FModel,FItemName,FBarCode,FSerialClassID,FPicID,FWebshopName,FQuantity");
    const QString serial = QStringLiteral("FItemID,FSerialNum,FSerialID,FBatchNo,FStockID,FStockPlace,FKFPeriod,FKFDate,FLimitDate,FStatus");
    const struct {
        QString sql, columns;
        QStringList rows;
    } cases[] = {
        // the price-change cup of the Tmall order is left out
        {orderGoodsSql("10008"), goods,
         {"13||0|2|1024|1.2kg|坚果礼盒|6931000010246|0|23|天猫旗舰店|1", "14||0|2|1025|250g 明前|绿茶|6931000010253|0|24|天猫旗舰店|2"}},
        // an item without a t_ICItem row, in a shop without a name
        {orderGoodsSql("SF10010"), goods, {"18||0|2|1099||||0|0|NULL|1", "19||0|2|1017|软毛 4支装|牙刷|6931000010178|0|17|NULL|1"}},
        // serial lines carry their stock, place and batch
        {orderGoodsSql("sn10024"), "FEntryID,FBatchNo,FSPID,FItemID,FSerialClassID",
         {"57|G2405|5|1038|1", "58|T2401|1|1034|1", "59|T2402|2|1034|1"}},
        // a code with letters is a logistics number only
        {orderGoodsSql("TB10027"), "FEntryID", {}},
        {orderGoodsSql("YT10027"), "FEntryID,FItemID", {"63|1016"}},
        {barcodeLookup("6931000010017"), "FBarCode,FItemID,FSerialClassID", {"6931000010017|1001|0"}},
        {barcodeLookup("6931000010314"), "FBarCode,FItemID,FSerialClassID", {"6931000010314|1031|1"}},
        // the inner-pack code of the cable, in other letter case
        {barcodeLookup("dx-usbc-1m"), "FItemID", {"1005"}},
        // the slippers are web-order goods only as a price-change product: not found
        {barcodeLookup("6931000010406"), "FItemID", {}},
        // shelf life 0 comes back as ''; with a shelf life, the limit date the statement computes
        {serialLookup("w1-0001"), serial, {"1031|W1-0001|1|W2405|2|1||||在库"}},
        {serialLookup("MF-0001"), serial, {"1033|MF-0001|8|M2403|2|3|720|2024-03-01|2026/02/19|在库"}},
        {serialLookup("MF-0004"), "FKFDate,FLimitDate", {"2024-04-15|2026/04/05"}},
        // opening balance only (third branch); a transfer not yet valid, at its target stock and place
        {serialLookup("RT-0001"), serial, {"1035|RT-0001|15||2|4||||在库"}},
        {serialLookup("RT-0002"), "FItemID,FStockID,FStockPlace", {"1035|2|4"}},
        {DeliverOnPick, "FValue", {"1"}},
        {picker(3), "FItemID,FNumber,FShortNumber,FName", {"203|E003|wf|王芳"}},
        {picker(4), "FItemID", {}},   // a user without employee
        // one tile per item, quantities of its entries summed; no price-change filter here
        {tileGoods("10009", true), "FItemID,FItemName,FQuantity,FPicID", {"1006|充电头|3|6", "1010|玻璃水杯|1|10"}},
        {tileGoods("SF10008", false), "FItemID,FQuantity", {"1010|1", "1024|1", "1025|2"}},
        {tileGoods("10010", true), "FItemID,FItemName,FPicID", {"1017|牙刷|17", "1099|NULL|NULL"}},
        // every entry with these goods in any order, Tmall's price-change line left out
        {tileGoodsIndexByBarCode("6931000010109"), "FItemID", {"1010", "1010"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.sql.left(300).toStdString());
        EXPECT_EQ(table(c.sql, c.columns), c.rows);
    }

    auto info = CreateServerObjectAs<IWebOrderInfo>(ProgIds::WebOrderInfo);
    auto header = [&](const QString& code) {
        auto r = info->GetSingleSQLData(m_props, orderHeader(code));
        return r ? QStringList{r->KeyAt(0), r->ValueAt(0).toString(), r->ValueAt(1).toString(), r->ValueAt(2).toString()}.join('|')
                 : QStringLiteral("nothing");
    };
    EXPECT_EQ(header("10003"), "FID|3|0|1");
    EXPECT_EQ(header("SF10006"), "FID|6|1|0");
    EXPECT_EQ(header("10014"), "FID|14|0|0");   // NULL status reads 0
    EXPECT_EQ(header("10099"), "nothing");
}

TEST_F(MiddleTierTest, GoodsTotalsUnderEveryOption)
{
    EXPECT_EQ(sql(serialGoods("10012", true))->RecordCount(), 2);
    EXPECT_EQ(sql(serialGoods("SN10021", false))->RecordCount(), 2);
    EXPECT_EQ(sql(serialGoods("10001", true))->RecordCount(), 0);
    const struct {
        const char* code;
        bool serialGoods, chkBarCode, chkHaveSerial;
        double total;
    } cases[] = {
        // plain goods: the barcode option drops goods without a barcode
        {"10001", false, true, false, 4}, {"10011", false, false, false, 4}, {"10011", false, true, false, 0},
        {"SF10010", false, true, false, 1}, {"10008", false, false, false, 3}, {"10007", false, false, false, 0},
        // serial goods: with the serial option, serial goods count without a barcode
        {"10012", true, false, false, 4}, {"10012", true, true, false, 2}, {"10012", true, true, true, 3},
        {"SN10021", true, true, false, 2}, {"SN10021", true, true, true, 3},
    };
    for (const auto& c : cases)
        EXPECT_EQ(total(goodsQuantitySql(c.code, c.serialGoods, c.chkBarCode, c.chkHaveSerial)), c.total)
            << c.code << c.serialGoods << c.chkBarCode << c.chkHaveSerial;
    // one item on two entries is one group
    EXPECT_EQ(table(goodsQuantitySql("10009", false, false, false), "FItemID,FQuantity"), QStringList({"1006|3", "1010|1"}));
}

TEST_F(MiddleTierTest, SerialRowsAreReplacedPerLine)
{
    const QString batch = QStringList{serialRowsDelete(53), serialRowsInsert("53,'W1-0001','W2405',2,1,'1','',0"),
                                      serialRowsInsert("53,'W1-0002','W2405',2,1,'2','',0"), serialRowsDelete(56),
                                      serialRowsInsert("56,'MF-0001','M2403',2,3,'8','2024-03-01',720")}
                              .join(CrLf);
    sql(batch);
    sql(batch);   // verified a second time: replaced, not doubled
    EXPECT_EQ(table("select * from IC_Web2ErpOrderSerial", "FID,FEntryID,FSerialNumber,FBatchNo,FStockID,FStockPlace,FSerialID,FKFDate,FKFPeriod"),
              QStringList({"0|53|W1-0001|W2405|2|1|1||0", "0|53|W1-0002|W2405|2|1|2||0", "0|56|MF-0001|M2403|2|3|8|2024-03-01|720"}));
}
