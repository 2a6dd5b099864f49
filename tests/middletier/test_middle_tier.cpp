// The middle-tier objects on a generated demo database, reached through the
// host object factory as the station reaches them.
#include "demo/demo_database.h"
#include "host/host_error.h"
#include "host/object_factory.h"
#include "sql/sql_engine.h"
#include "support/demo_database_fixture.h"
#include "support/qt_print.h"
#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <ostream>

namespace {

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
};

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
    try {
        getData->CheckReturnBills(record({{"sDSN", "UserID=1;"}, {"FID", 4}}));
        FAIL() << "a property string without a connection must be refused";
    } catch (const HostError& e) {
        EXPECT_TRUE(e.description().contains("ConnectString"));
    }
}

TEST_F(MiddleTierTest, SavePickingGoodsMarksTheOrderByEitherCode)
{
    auto save = CreateServerObjectAs<ISaveData>(ProgIds::SaveData);
    auto status = [&](int fid) {
        auto rs = sql(QString("select FPIckingGoodsStatus, FPickingGoodMan from IC_Web2ERPOrders where FID=%1").arg(fid));
        return std::make_pair(rs->Fields("FPIckingGoodsStatus").toInt(), rs->Fields("FPickingGoodMan").toInt());
    };

    // by unique code
    save->SavePickingGoods(record({{"FPickingGoodMan", 202}, {"FLogisticsOrder", "10001"},
                                   {"sProps", m_props}, {"FPickingGoodsstatus", 1}}));
    EXPECT_EQ(status(1), std::make_pair(1, 202));
    // by logistics number, in other letter case, picker as text
    save->SavePickingGoods(record({{"FPickingGoodMan", "203"}, {"FLogisticsOrder", "sn10021"},
                                   {"sProps", m_props}, {"FPickingGoodsstatus", 1}}));
    EXPECT_EQ(status(21), std::make_pair(1, 203));
    // the reset of a fresh load: status 0, picker 0 (an empty tag counts as 0)
    save->SavePickingGoods(record({{"FPickingGoodMan", ""}, {"FLogisticsOrder", "SF10001"},
                                   {"sProps", m_props}, {"FPickingGoodsstatus", 0}}));
    EXPECT_EQ(status(1), std::make_pair(0, 0));
    // nobody else was touched
    EXPECT_EQ(value("select COUNT(*) from IC_Web2ERPOrders where FPIckingGoodsStatus = 1").toInt(), 3);
    EXPECT_EQ(status(6), std::make_pair(1, 201));

    // a picker that is no number writes nothing
    try {
        save->SavePickingGoods(record({{"FPickingGoodMan", "张伟"}, {"FLogisticsOrder", "10002"},
                                       {"sProps", m_props}, {"FPickingGoodsstatus", 1}}));
        FAIL();
    } catch (const HostError& e) {
        EXPECT_EQ(e.number(), HostErrors::TypeMismatch);
    }
    EXPECT_EQ(status(2), std::make_pair(0, 0));
}

TEST_F(MiddleTierTest, UpdateDeliveryDataStampsTheOrder)
{
    auto save = CreateServerObjectAs<ISaveData>(ProgIds::SaveData);
    const QDateTime before = QDateTime::currentDateTime().addSecs(-1);
    save->UpdateDeliveryData(m_props, 13);
    const QDateTime after = QDateTime::currentDateTime().addSecs(1);

    auto rs = sql("select FDeliveryStatus, FSendDate from IC_Web2ERPOrders where FID=13");
    EXPECT_EQ(rs->Fields("FDeliveryStatus").toInt(), 1);
    const QDateTime sent = QDateTime::fromString(rs->Fields("FSendDate").toString(), Qt::ISODate);
    ASSERT_TRUE(sent.isValid()) << rs->Fields("FSendDate").toString().toStdString();
    EXPECT_GE(sent, before.addMSecs(-before.time().msec()));
    EXPECT_LE(sent, after);
    EXPECT_EQ(value("select COUNT(*) from IC_Web2ERPOrders where FDeliveryStatus = 1").toInt(), 2);   // and the shipped order 16
    EXPECT_TRUE(value("select FSendDate from IC_Web2ERPOrders where FID=12").isNull());
}

TEST_F(MiddleTierTest, GetSingleSqlDataGivesTheFirstRowOrNothing)
{
    auto info = CreateServerObjectAs<IWebOrderInfo>(ProgIds::WebOrderInfo);
    auto row = info->GetSingleSQLData(m_props, "select FNumber, FName, FItemID, FBarcode from t_ICItem where FItemID >= 1022 order by FItemID");
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
    EXPECT_THROW(info->GetSingleSQLData(m_props, "select nothing from nowhere"), HostError);
}

TEST_F(MiddleTierTest, UserProfilesAreKeptPerUserCategoryAndKey)
{
    auto profile = CreateServerObjectAs<IUserProfile>(ProgIds::UserProfile);
    EXPECT_EQ(profile->LoadUserProfile(m_props, "EC", "PickGoods_chkShowText").Count(), 0);

    GoodsRecord saved;
    saved.Add("chkShowText", 1);
    saved.Add("chkHaveSerial", 0);
    saved.Add("Note", QVariant());
    profile->SaveUserProfile(m_props, "EC", "PickGoods_chkShowText", saved);
    GoodsRecord other;
    other.Add("chkBarCode", 0);
    profile->SaveUserProfile(m_props, "EC", "PickGoods_chkBarCode", other);
    profile->SaveUserProfile(DemoPropsString(m_file, 2), "EC", "PickGoods_chkShowText", other);

    GoodsRecord loaded = profile->LoadUserProfile(m_props, "ec", "PICKGOODS_CHKSHOWTEXT");
    EXPECT_EQ(loaded.Keys(), QStringList({"chkShowText", "chkHaveSerial", "Note"}));
    EXPECT_EQ(loaded.GetValue("chkShowText").toInt(), 1);
    EXPECT_EQ(loaded.GetValue("chkHaveSerial").toString(), "0");
    EXPECT_TRUE(loaded.GetValue("Note").isNull());
    EXPECT_EQ(profile->LoadUserProfile(m_props, "EC", "PickGoods_chkBarCode").GetValue("chkBarCode").toString(), "0");

    // saving again replaces the profile's entries
    GoodsRecord smaller;
    smaller.Add("chkShowText", 0);
    profile->SaveUserProfile(m_props, "EC", "PickGoods_chkShowText", smaller);
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

TEST_F(MiddleTierTest, FailuresEndTheCallAndLeaveTheTierUsable)
{
    auto getData = CreateServerObjectAs<IGetData>(ProgIds::GetData);
    try {
        getData->ExecuteSQL(m_props, "select FNoSuchColumn from t_ICItem");
        FAIL();
    } catch (const HostError& e) {
        EXPECT_EQ(e.number(), HostErrors::Database);
        EXPECT_TRUE(e.description().contains("FNoSuchColumn"));
    }
    EXPECT_EQ(value("select COUNT(*) from t_ICItem").toInt(), 40);

    // the database goes away and comes back
    ASSERT_TRUE(QFile::rename(m_file, m_file + ".away"));
    EXPECT_THROW(getData->ExecuteSQL(m_props, "select COUNT(*) from t_ICItem"), HostError);
    EXPECT_FALSE(QFile::exists(m_file));
    ASSERT_TRUE(QFile::rename(m_file + ".away", m_file));
    EXPECT_EQ(value("select COUNT(*) from t_ICItem").toInt(), 40);
}
