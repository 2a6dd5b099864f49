// End to end over the demo warehouse: the built-in middle tier, the SQLite
// engine behind it, real gzip attachments and picture files on disk.
#include "session/host_fakes.h"
#include "host/host_error.h"
#include "host/record_keys.h"
#include "orderdata/line_picking_state.h"
#include "orderdata/order_goods.h"
#include "orderdata/serial_lookup.h"
#include "support/demo_database_fixture.h"
#include <QImage>
#include <QMap>
#include <QTemporaryDir>

namespace {

// The orders are only read: all tests share the one demo database.
class DemoOrders : public HostFixture {
protected:
    static void TearDownTestSuite() { SqlEngine::closeAll(); }
    void SetUp() override
    {
        HostFixture::SetUp();
        ASSERT_TRUE(folder.isValid());
        SetComponentFolder(folder.path());
        publishProps(DemoPropsString(pristineDemo()));
        boxes = recordMessageBoxes();
    }

    static QStringList values(const RecordList& lines, const char* key)
    {
        QStringList all;
        for (int i = lines.LowerBound(); i <= lines.UpperBound(); ++i)
            all << lines.Item(i).GetValue(key).toString();
        return all;
    }
    static QStringList goodsIds(const RecordList& lines) { return values(lines, "GoodsID"); }

    QTemporaryDir folder;
    std::shared_ptr<HostRecorder> boxes;
};

} // namespace

TEST_F(DemoOrders, OrdersLoadByCodeWithTheirPicturesOnDisk)
{
    EXPECT_TRUE(GetGoodsLineSet().isNone());
    EXPECT_FALSE(HasGoodsLines());
    const RecordList lines = LoadOrderGoods(QStringLiteral("10001"));
    ASSERT_TRUE(boxes->texts().isEmpty()) << boxes->texts().join('\n').toStdString();
    EXPECT_TRUE(lines.sameList(GetGoodsLineSet()));
    EXPECT_EQ(goodsIds(lines), QStringList({"1001", "1008", "1014"}));
    EXPECT_EQ(values(lines, "GoodsOrderCnt"), QStringList({"1", "1", "2"}));
    EXPECT_EQ(GetWebshopName().toString(), "天猫旗舰店");
    const GoodsRecord earphones = lines.Item(0);
    EXPECT_EQ(earphones.Keys(), QStringList({"FEntryID", "FSeriNum", "FBatchNo", "FSPID", "FStockID", "FSerialID",
                                             "FKFPeriod", "FKFDate", "GoodsID", "GoodsName", "GoodsOrderCnt",
                                             "GoodsPickCnt", "GoodsBarCode", "GoodsCheckedCnt", "FSerialClassID",
                                             "FModel", "FPicID", "GoodsPicture"}));
    EXPECT_EQ(earphones.GetValue("GoodsName").toString(), "蓝牙耳机");
    EXPECT_EQ(earphones.GetValue("FModel").toString(), "BT-520 黑色");
    EXPECT_EQ(earphones.GetValue("GoodsBarCode").toString().size(), 13);
    // The serial state starts as the empty text (a null string would bind as NULL),
    // the counts as 16-bit zeros.
    for (const char* key : {"FSeriNum", "FSerialID", "FKFPeriod", "FKFDate"}) {
        EXPECT_EQ(earphones.GetValue(key).typeId(), QMetaType::QString) << key;
        EXPECT_FALSE(earphones.GetValue(key).toString().isNull()) << key;
        EXPECT_TRUE(earphones.GetValue(key).toString().isEmpty()) << key;
    }
    for (const char* key : {"GoodsPickCnt", "GoodsCheckedCnt"}) {
        EXPECT_EQ(earphones.GetValue(key).typeId(), QMetaType::Short) << key;
        EXPECT_EQ(earphones.GetValue(key).toInt(), 0) << key;
    }
    for (const QString& picture : values(lines, "GoodsPicture")) {
        const QImage image(picture);
        EXPECT_FALSE(image.isNull()) << picture.toStdString();
        EXPECT_EQ(image.size(), QSize(160, 160));
    }
    // Only the pictures are left in the folder, no compressed files.
    EXPECT_EQ(QDir(PictureTempFolder()).entryList(QDir::Files, QDir::Name),
              QStringList({"Tmp_1001", "Tmp_1008", "Tmp_1014"}));

    // By logistics number, an order of one line; a second load empties the same set.
    const RecordList again = LoadOrderGoods(QStringLiteral("SF10003"));
    EXPECT_TRUE(again.sameList(lines));
    EXPECT_EQ(goodsIds(lines), QStringList({"1003"}));
    EXPECT_TRUE(HasGoodsLines());
    EXPECT_TRUE(QFile::exists(PictureTempFolder() + "Tmp_1001"));   // not emptied for the second order
    EXPECT_EQ(goodsIds(LoadOrderGoods(QStringLiteral("773000000002"))), QStringList({"1005", "1016"}));
    EXPECT_TRUE(boxes->texts().isEmpty());
}

TEST_F(DemoOrders, StatusFilterCodeKindsAndMissingItems)
{
    EXPECT_EQ(LoadOrderGoods(QStringLiteral("10007")).Count(), 0);          // status 3
    // The glass is a price-change product of the first shop only.
    EXPECT_EQ(goodsIds(LoadOrderGoods(QStringLiteral("10030"))), QStringList({"1010", "1005"}));

    const RecordList lines = LoadOrderGoods(QStringLiteral("10010"));
    ASSERT_EQ(goodsIds(lines), QStringList({"1099", "1017"}));
    const GoodsRecord unknown = lines.Item(0);
    for (const char* key : {"GoodsName", "FModel", "GoodsBarCode"}) {
        EXPECT_FALSE(unknown.GetValue(key).isNull()) << key;      // the empty text, not NULL
        EXPECT_EQ(unknown.GetValue(key).toString(), "") << key;
    }
    EXPECT_EQ(unknown.GetValue("FSerialClassID").toInt(), 0);
    EXPECT_EQ(unknown.GetValue("FPicID").toInt(), 0);
    EXPECT_FALSE(QFile::exists(unknown.GetValue("GoodsPicture").toString()));
    EXPECT_EQ(GetWebshopName().toString(), "");               // shop 99 is not mapped
    EXPECT_TRUE(boxes->texts().isEmpty()) << boxes->texts().join('\n').toStdString();

    // A quote in the code breaks the statement: reported, nothing loaded.
    EXPECT_EQ(LoadOrderGoods(QStringLiteral("SF'1")).Count(), 0);
    EXPECT_EQ(boxes->texts().size(), 1);
}

// Order 10009 holds the same charger on two entries: a scan is counted on its
// own entry, found by goods and entry.
TEST_F(DemoOrders, BarcodesSerialsAndLinesAreFoundWhereTheyStand)
{
    const RecordList lines = LoadOrderGoods(QStringLiteral("10009"));
    ASSERT_EQ(goodsIds(lines), QStringList({"1010", "1006", "1006"}));
    for (int i = 0; i < 3; ++i) {
        const GoodsRecord line = lines.Item(i);
        EXPECT_EQ(FindGoodsLineIndex(line.GetValue("GoodsID").toInt(), line.GetValue("FEntryID").toString()), i);
    }
    EXPECT_EQ(FindGoodsLineIndex(1010, lines.Item(1).GetValue("FEntryID").toString()), -1);

    const GoodsRecord goods = FindWebOrderGoodsByBarCode(lines.Item(1).GetValue("GoodsBarCode").toString());
    EXPECT_EQ(goods.Keys(), QStringList({"FItemID", "FSerialClassID"}));
    EXPECT_EQ(goods.GetValue("FItemID").toInt(), 1006);
    EXPECT_EQ(goods.GetValue("FSerialClassID").toInt(), 0);
    const GoodsRecord none = FindWebOrderGoodsByBarCode(QStringLiteral("0000000000000"));
    EXPECT_FALSE(none.isNone());
    EXPECT_EQ(none.Count(), 0);
    // No handler here: the goods scan reports the failure.
    EXPECT_THROW(FindWebOrderGoodsByBarCode(QStringLiteral("69'1")), HostError);

    const GoodsRecord milk = FindSerialNumber(QStringLiteral("MF-0001"));
    EXPECT_EQ(milk.Keys(), QStringList({"FItemID", "FSerialNum", "FSerialID", "FBatchNo", "FStockID", "FStockPlace",
                                        "FKFPeriod", "FKFDate"}));
    EXPECT_EQ(milk.GetValue("FItemID").toInt(), 1033);
    EXPECT_EQ(milk.GetValue("FBatchNo").toString(), "M2403");
    EXPECT_EQ(milk.GetValue("FStockPlace").toInt(), 3);
    EXPECT_EQ(milk.GetValue("FKFPeriod").toString(), "720");   // the text the statement made of it
    EXPECT_EQ(milk.GetValue("FKFDate").toString().left(10), "2024-03-01");
    // No shelf life: the statement's empty text becomes the integer 0.
    const GoodsRecord mouse = FindSerialNumber(QStringLiteral("MS-0001"));
    EXPECT_EQ(mouse.GetValue("FKFPeriod").typeId(), QMetaType::Short);
    EXPECT_EQ(mouse.GetValue("FKFPeriod").toInt(), 0);

    const GoodsRecord speaker = FindSerialNumber(QStringLiteral("SPK-0001"));   // serial class 2
    EXPECT_FALSE(speaker.isNone());
    EXPECT_EQ(speaker.Count(), 0);
    EXPECT_EQ(FindSerialNumber(QStringLiteral("NO-SUCH")).Count(), 0);
    EXPECT_THROW(FindSerialNumber(QStringLiteral("MF'1")), HostError);
    EXPECT_TRUE(boxes->texts().isEmpty());
}

// An order left and loaded again: each line's whole picking state comes back
// on that very line, found by goods and entry, whatever order the reloaded
// lines stand in. Order 10009 holds the same charger on two entries; 10021 is
// a serial order, whose lines carry serials with their ids, shelf lives and
// production dates as the serial scan appends them.
TEST_F(DemoOrders, ALineStateComesBackWholeOnItsOwnLineWhateverTheOrderOfTheReload)
{
    const QStringList keys{RecordKeys::GoodsCheckedCnt, RecordKeys::GoodsPickCnt, RecordKeys::FSeriNum,
                           RecordKeys::FSerialID, RecordKeys::FKFPeriod, RecordKeys::FKFDate};
    for (const QString& code : {QStringLiteral("10009"), QStringLiteral("10021")}) {
        SCOPED_TRACE(code.toStdString());
        const bool serials = code == QLatin1String("10021");
        RecordList lines = LoadOrderGoods(code);
        ASSERT_GE(lines.Count(), 2);
        QMap<QString, QStringList> picked;
        for (int i = lines.LowerBound(); i <= lines.UpperBound(); ++i) {
            GoodsRecord line = lines.Item(i);
            const int n = i - lines.LowerBound() + 1;
            line.SetValue(RecordKeys::GoodsCheckedCnt, QVariant::fromValue<qint16>(qint16(n)));
            line.SetValue(RecordKeys::GoodsPickCnt, QVariant::fromValue<qint16>(qint16(n)));
            if (serials) {
                line.SetValue(RecordKeys::FSeriNum, QStringLiteral(",W1-000%1").arg(n));
                line.SetValue(RecordKeys::FSerialID, QStringLiteral(",%1").arg(900 + n));
                line.SetValue(RecordKeys::FKFPeriod, QStringLiteral(",%1").arg(360 + n));
                line.SetValue(RecordKeys::FKFDate, QStringLiteral(",2026-0%1-15").arg(n));
            }
            QStringList values;
            for (const QString& key : keys)
                values << line.GetValue(key).toString();
            picked.insert(LineIdentity(line), values);
        }
        ASSERT_EQ(picked.size(), lines.Count()) << "two lines share an identity";
        GoodsRecord states;
        CaptureLineStates(lines, states);

        const RecordList fresh = LoadOrderGoods(code);
        RecordList reversed;
        for (int i = fresh.UpperBound(); i >= fresh.LowerBound(); --i)
            reversed.Add(fresh.Item(i));
        EXPECT_EQ(RestoreLineStates(reversed, states), picked.size());
        for (int i = reversed.LowerBound(); i <= reversed.UpperBound(); ++i) {
            const GoodsRecord line = reversed.Item(i);
            QStringList values;
            for (const QString& key : keys)
                values << line.GetValue(key).toString();
            EXPECT_EQ(values, picked.value(LineIdentity(line))) << LineIdentity(line).toStdString();
        }
    }
}
