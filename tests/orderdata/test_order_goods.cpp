// The order's line set, its failures and its picture folder, with the middle
// tier answering as told; the lines themselves are checked on the demo.
#include "middle_tier_fakes.h"
#include "host/error_reporter.h"
#include "orderdata/order_goods.h"
#include <QTemporaryDir>

namespace {

class OrderGoods : public HostFixture {
protected:
    void SetUp() override
    {
        HostFixture::SetUp();
        ASSERT_TRUE(folder.isValid());
        SetComponentFolder(folder.path());
        publishProps(QStringLiteral("UserID=7;"));
        getData = useFakeGetData();
        useFakeAccessoryView();
        boxes = recordMessageBoxes();
    }

    // Answers the order statement with these rows (entry, goods, picture id).
    void answerOrder(const std::vector<std::array<QVariant, 3>>& rows)
    {
        getData->answer = [rows](const QString&) { return orderGoodsRows(rows); };
    }

    QTemporaryDir folder;
    std::shared_ptr<GetDataLog> getData;
    std::shared_ptr<HostRecorder> boxes;
};

} // namespace

TEST_F(OrderGoods, TheOneSetIsEmptiedInPlaceAndDroppedAtTheEnd)
{
    EXPECT_TRUE(LoadOrderGoods(QString()).isNone());      // nothing loaded yet, nothing asked
    EXPECT_TRUE(getData->sqls.isEmpty());

    answerOrder({{1, 101, 0}, {2, 102, 0}});
    const RecordList first = LoadOrderGoods(QStringLiteral("SF1"));
    EXPECT_EQ(getData->sqls.value(0), BuildOrderGoodsSql(QStringLiteral("SF1")));
    const GoodsRecord oldLine = first.Item(0);
    answerOrder({{3, 103, 0}});
    EXPECT_TRUE(LoadOrderGoods(QStringLiteral("SF2")).sameList(first));   // the views keep seeing the set
    ASSERT_EQ(first.Count(), 1);
    EXPECT_EQ(first.Item(0).GetValue("GoodsID").toInt(), 103);
    EXPECT_EQ(oldLine.GetValue("GoodsID").toInt(), 101);  // lines are new records, not reused
    EXPECT_EQ(GetWebshopName().toString(), "Shop A");

    // An empty code changes nothing but the shop name.
    EXPECT_TRUE(LoadOrderGoods(QString()).sameList(first));
    EXPECT_EQ(first.Count(), 1);
    EXPECT_EQ(getData->sqls.size(), 2);
    EXPECT_EQ(GetWebshopName().typeId(), QMetaType::QString);
    EXPECT_FALSE(GetWebshopName().toString().isNull());

    answerOrder({});
    EXPECT_EQ(LoadOrderGoods(QStringLiteral("SF4")).UpperBound(), -1);
    EXPECT_FALSE(HasGoodsLines());

    SetCurrentGoodsID(QStringLiteral("101"));
    SetClearPictureFolder(false);
    ResetSessionState();
    EXPECT_TRUE(GetGoodsLineSet().isNone());
    EXPECT_FALSE(HasGoodsLines());
    EXPECT_EQ(CurrentGoodsID(), "0");
    EXPECT_TRUE(ClearPictureFolderPending());
    answerOrder({{5, 105, 0}});
    EXPECT_FALSE(LoadOrderGoods(QStringLiteral("SF5")).sameList(first));
    EXPECT_EQ(first.Count(), 0);                          // the old set is left as it was
}

TEST_F(OrderGoods, AFailureKeepsTheLinesReadSoFarAndIsReportedOnce)
{
    // The third picture id does not fit the attachment id's 32 bits.
    answerOrder({{1, 101, 1}, {2, 102, 0}, {3, 103, QStringLiteral("3000000000")}, {4, 104, 0}});
    const RecordList lines = LoadOrderGoods(QStringLiteral("20240001"));
    EXPECT_EQ(lines.Count(), 2);
    EXPECT_EQ(lines.Item(1).GetValue("GoodsID").toInt(), 102);
    EXPECT_TRUE(HasGoodsLines());
    EXPECT_EQ(boxes->texts(), QStringList{"Overflow"});
    EXPECT_EQ(boxes->titles().value(0), VeltoTitle);

    getData->answer = [](const QString&) -> RecordsetPtr {
        throw HostError(HostErrors::Database, QStringLiteral("no such table: IC_Web2ERPOrdersEntry"));
    };
    EXPECT_TRUE(LoadOrderGoods(QStringLiteral("SF1")).sameList(lines));
    EXPECT_EQ(lines.Count(), 0);
    EXPECT_EQ(boxes->texts().value(1), "no such table: IC_Web2ERPOrdersEntry");

    RegisterServerObject(ProgIds::GetData, nullptr);
    LoadOrderGoods(QStringLiteral("SF1"));
    ASSERT_EQ(boxes->texts().size(), 3);
    EXPECT_TRUE(boxes->texts()[2].contains(ProgIds::GetData));
}

// Lines are matched to goods by the text of their goods id; integers take a
// shortcut that must answer exactly as the text would.
TEST_F(OrderGoods, LinesAreFoundByGoodsAndEntryComparedAsText)
{
    for (const QVariant& v : {QVariant(50001), QVariant(qlonglong(50001)), QVariant::fromValue<qint16>(1001),
                              QVariant(uint(50001)), QVariant(50001.0), QVariant(QStringLiteral("50001"))}) {
        SCOPED_TRACE(v.toString().toStdString());
        const qint32 id = v.toInt();
        EXPECT_TRUE(SameIdText(v, id));
        EXPECT_FALSE(SameIdText(v, id + 1));
    }
    EXPECT_TRUE(SameIdText(QVariant(-7), -7));
    EXPECT_FALSE(SameIdText(QVariant(qlonglong(4294967297LL)), 1)) << "no wrap-around";
    // text compares as written: blanks or a fraction are another text
    EXPECT_FALSE(SameIdText(QVariant(QStringLiteral(" 12")), 12));
    EXPECT_FALSE(SameIdText(QVariant(12.5), 12));
    EXPECT_FALSE(SameIdText(QVariant(true), 1));
    EXPECT_FALSE(SameIdText(QVariant(), 0)) << "NULL reads as the empty text";

    EXPECT_EQ(FindGoodsLineIndex(0, QStringLiteral("1")), -2);   // no set needed for this answer
    EXPECT_THROW(FindGoodsLineIndex(5, QStringLiteral("1")), HostError);
    // Ids as engines hand them out: 64-bit, floating, or text.
    answerOrder({{qlonglong(1), qlonglong(101), 0}, {2, 101.0, 0}, {3, QStringLiteral("102"), 0}, {4, 101, 0}});
    LoadOrderGoods(QStringLiteral("SF1"));
    const struct {
        qint32 goods;
        const char* entry;
        qint32 index;
    } cases[] = {{101, "1", 0}, {101, "2", 1}, {102, "3", 2}, {101, "4", 3}, {102, "1", -1},
                 {101, "01", -1}, {101, "", -1}, {103, "1", -1}, {0, "1", -2}};
    for (const auto& c : cases)
        EXPECT_EQ(FindGoodsLineIndex(c.goods, QString::fromUtf8(c.entry)), c.index) << c.goods << "/" << c.entry;
}

TEST_F(OrderGoods, PicturesGoToTheUsersCacheWhenTheComponentFolderCannotHoldThem)
{
    EXPECT_EQ(PictureTempFolder(), QDir(folder.path()).absolutePath() + "/temp/");
    EXPECT_FALSE(PictureTempFolderIsPerUser());
    // A plain file where the folder should be: not even root can create temp/ in it.
    const QString blocked = folder.path() + "/component";
    ASSERT_TRUE(writeFile(blocked, "not a folder"));
    SetComponentFolder(blocked);
    answerOrder({{1, 101, 0}});
    LoadOrderGoods(QStringLiteral("SF1"));
    EXPECT_TRUE(PictureTempFolderIsPerUser());
    EXPECT_TRUE(PictureTempFolder().endsWith("/temp/"));
    EXPECT_FALSE(PictureTempFolder().startsWith(blocked));
    EXPECT_TRUE(QFileInfo(PictureTempFolder()).isDir());
    EXPECT_EQ(GetGoodsLineSet().Item(0).GetValue("GoodsPicture").toString(), PictureTempFolder() + "Tmp_101");

    SetComponentFolder(folder.path());
    LoadOrderGoods(QStringLiteral("SF1"));
    EXPECT_FALSE(PictureTempFolderIsPerUser());
}
