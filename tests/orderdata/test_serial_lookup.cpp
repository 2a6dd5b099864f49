#include "middle_tier_fakes.h"
#include "orderdata/serial_lookup.h"

namespace {

class SerialLookup : public HostFixture {
protected:
    void SetUp() override
    {
        HostFixture::SetUp();
        publishProps(QStringLiteral("UserID=3;"));
        getData = useFakeGetData();
    }
    std::shared_ptr<GetDataLog> getData;
};

// The statement's columns, in its own order, around the ones that are read.
RecordsetPtr serialRow(const QVariant& period, const QVariant& date = QStringLiteral("2024-01-10"))
{
    const QStringList columns = {"FSerialID", "FSerialNum", "FItemID", "FStockID", "FStockPlace", "FBatchNo",
                                 "FStockName", "FKFPeriod", "FKFDate", "FLimitDate", "FSerialClassID", "FStatus"};
    std::vector<std::vector<QVariant>> rows = {
        {55, "SN-1", 101, 2, 9, "B7", "Main", period, date, "2025/01/09", 1, "在库"}};
    return std::make_shared<Recordset>(columns, std::move(rows));
}

} // namespace

TEST_F(SerialLookup, FoundSerialGivesItsEntriesInOrderWithShelfLifeZeroAsInteger)
{
    getData->answer = [](const QString&) { return serialRow(QStringLiteral("")); };
    const GoodsRecord serial = FindSerialNumber(QStringLiteral("SN-1"));
    EXPECT_EQ(getData->sqls.value(0), BuildSerialLookupSql(QStringLiteral("SN-1")));
    EXPECT_EQ(getData->props.value(0), "UserID=3;");
    QStringList shown;
    for (int i = 0; i < serial.Count(); ++i)
        shown << serial.KeyAt(i) + "=" + serial.ValueAt(i).toString();
    EXPECT_EQ(shown, QStringList({"FItemID=101", "FSerialNum=SN-1", "FSerialID=55", "FBatchNo=B7", "FStockID=2",
                                  "FStockPlace=9", "FKFPeriod=0", "FKFDate=2024-01-10"}));
    EXPECT_EQ(serial.GetValue("FKFPeriod").typeId(), QMetaType::Short);
    EXPECT_EQ(serial.GetValue("FKFPeriod").toInt(), 0);
    EXPECT_EQ(serial.GetValue("FKFDate").toString(), "2024-01-10");

    // A real shelf life stays the text the statement made of it.
    getData->answer = [](const QString&) { return serialRow(QStringLiteral("365")); };
    const GoodsRecord dated = FindSerialNumber(QStringLiteral("SN-1"));
    EXPECT_EQ(dated.GetValue("FKFPeriod").typeId(), QMetaType::QString);
    EXPECT_EQ(dated.GetValue("FKFPeriod").toString(), "365");
    // NULL is not the empty text.
    getData->answer = [](const QString&) { return serialRow(QVariant()); };
    EXPECT_TRUE(FindSerialNumber(QStringLiteral("SN-1")).GetValue("FKFPeriod", 1).isNull());
    EXPECT_EQ(getData->created, 3);                      // one object per lookup
}

TEST_F(SerialLookup, UnknownSerialGivesAnEmptyRecordAndFailuresReachTheCaller)
{
    getData->answer = [](const QString&) {
        return std::make_shared<Recordset>(QStringList{"FItemID", "FKFPeriod"}, std::vector<std::vector<QVariant>>{});
    };
    const GoodsRecord unknown = FindSerialNumber(QStringLiteral("NOPE"));
    EXPECT_FALSE(unknown.isNone());
    EXPECT_EQ(unknown.Count(), 0);
    EXPECT_FALSE(unknown.Exists("FItemID"));

    getData->answer = [](const QString& sql) -> RecordsetPtr {
        if (sql.contains("='A'B'"))
            throw HostError(HostErrors::Database, QStringLiteral("Incorrect syntax near 'B'"));
        return std::make_shared<Recordset>();
    };
    EXPECT_THROW(FindSerialNumber(QStringLiteral("A'B")), HostError);
    RegisterServerObject(ProgIds::GetData, nullptr);
    EXPECT_THROW(FindSerialNumber(QStringLiteral("SN-1")), HostError);
}
