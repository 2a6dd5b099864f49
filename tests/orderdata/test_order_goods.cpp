// The order's line set, its serials, its line states and its picture folder:
// over the demo warehouse through the built-in middle tier, and with the
// middle tier and the attachment store answering as told.
#include "session/host_fakes.h"
#include "host/error_reporter.h"
#include "host/host_error.h"
#include "host/record_keys.h"
#include "host/recordset.h"
#include "orderdata/goods_pictures.h"
#include "orderdata/line_picking_state.h"
#include "orderdata/order_goods.h"
#include "orderdata/serial_lookup.h"
#include "support/demo_database_fixture.h"
#include "support/expected_statements.h"
#include <QDir>
#include <QFile>
#include <QHash>
#include <QImage>
#include <QMap>
#include <QProcess>
#include <QTemporaryDir>
#include <array>
#include <functional>

namespace {

// What the middle tier and the attachment store were asked, and what they answer.
struct Canned {
    QStringList sqls;
    std::function<RecordsetPtr(const QString& sql)> answer;   // may throw
    QList<int> ids;
    QHash<int, QByteArray> attachments;
    bool storeDown = false;
};

class FakeGetData : public IGetData {
public:
    explicit FakeGetData(std::shared_ptr<Canned> c) : m_c(std::move(c)) {}
    RecordsetPtr ExecuteSQL(const QString&, const QString& sql) override
    {
        m_c->sqls << sql;
        return m_c->answer ? m_c->answer(sql) : std::make_shared<Recordset>();
    }
    std::optional<GoodsRecord> CheckReturnBills(const GoodsRecord&) override { return std::nullopt; }

private:
    std::shared_ptr<Canned> m_c;
};

class FakeAccessoryView : public IAccessoryView {
public:
    explicit FakeAccessoryView(std::shared_ptr<Canned> c) : m_c(std::move(c)) {}
    QByteArray GetID(const QString&, int attachmentId) override
    {
        m_c->ids << attachmentId;
        if (m_c->storeDown)
            throw HostError(HostErrors::Database, QStringLiteral("attachment store down"));
        return m_c->attachments.value(attachmentId);
    }

private:
    std::shared_ptr<Canned> m_c;
};

// A real gzip stream of the bytes, as the attachment store keeps pictures.
QByteArray gzipBytes(const QByteArray& data)
{
    QProcess gzip;
    gzip.start(QStringLiteral("gzip"), {QStringLiteral("-c")});
    gzip.waitForStarted();
    gzip.write(data);
    gzip.closeWriteChannel();
    gzip.waitForFinished();
    return gzip.readAllStandardOutput();
}

QByteArray readFile(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}

// The component in a folder of its own, message boxes recorded.
class OrderFolder : public HostFixture {
protected:
    void SetUp() override
    {
        HostFixture::SetUp();
        ASSERT_TRUE(folder.isValid());
        SetComponentFolder(folder.path());
        boxes = recordMessageBoxes();
    }

    QTemporaryDir folder;
    std::shared_ptr<HostRecorder> boxes;
};

class OrderGoods : public OrderFolder {
protected:
    void SetUp() override
    {
        OrderFolder::SetUp();
        publishProps(Props);
        auto c = canned;
        RegisterServerObject(ProgIds::GetData, [c] { return std::make_shared<FakeGetData>(c); });
        RegisterServerObject(ProgIds::AccessoryView, [c] { return std::make_shared<FakeAccessoryView>(c); });
        temp = PictureTempFolder();
        ASSERT_TRUE(QDir().mkpath(temp));
    }

    // Answers the order statement with these rows (entry, goods, picture id)
    // in its column order, the rest as the statement's ISNULLs make them.
    void answerOrder(const std::vector<std::array<QVariant, 3>>& rows)
    {
        canned->answer = [rows](const QString&) {
            std::vector<std::vector<QVariant>> data;
            for (const auto& [entry, item, picId] : rows)
                data.push_back({entry, "", 0, 0, item, "", "", "", 0, picId, "Shop A", 1});
            return std::make_shared<Recordset>(QStringList{"FEntryID", "FBatchNo", "FSPID", "FStockID", "FItemID",
                                                           "FModel", "FItemName", "FBarCode", "FSerialClassID",
                                                           "FPicID", "FWebshopName", "FQuantity"},
                                               std::move(data));
        };
    }
    QStringList filesInTemp() const { return QDir(temp).entryList(QDir::Files, QDir::Name); }

    const QString Props = QStringLiteral("UserID=7;");
    QString temp;
    std::shared_ptr<Canned> canned = std::make_shared<Canned>();
};

// The orders are only read: all tests share the one demo database.
class DemoOrders : public OrderFolder {
protected:
    static void TearDownTestSuite() { SqlEngine::closeAll(); }
    void SetUp() override
    {
        OrderFolder::SetUp();
        publishProps(DemoPropsString(pristineDemo()));
    }

    static QStringList values(const RecordList& lines, const char* key)
    {
        QStringList all;
        for (int i = lines.LowerBound(); i <= lines.UpperBound(); ++i)
            all << lines.Item(i).GetValue(key).toString();
        return all;
    }
    static QStringList goodsIds(const RecordList& lines) { return values(lines, "GoodsID"); }
};


} // namespace

TEST_F(DemoOrders, OrdersLoadByCodeWithTheirPicturesOnDiskReleasedOrdersOnly)
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
    for (const char* key : {"FSeriNum", "FSerialID", "FKFPeriod", "FKFDate", "GoodsPickCnt",
                            "GoodsCheckedCnt"}) {
        const bool count = QByteArray(key).endsWith("Cnt");
        EXPECT_EQ(earphones.GetValue(key).typeId(), count ? QMetaType::Short : QMetaType::QString) << key;
        EXPECT_EQ(earphones.GetValue(key).toString(), count ? "0" : "") << key;
        EXPECT_FALSE(earphones.GetValue(key).toString().isNull()) << key;
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

    EXPECT_EQ(LoadOrderGoods(QStringLiteral("10007")).Count(), 0);          // status 3: not picked
    // The glass is a price-change product of the first shop only.
    EXPECT_EQ(goodsIds(LoadOrderGoods(QStringLiteral("10030"))), QStringList({"1010", "1005"}));
    // An item without a row of its own reads as empty texts.
    LoadOrderGoods(QStringLiteral("10010"));
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
    auto stateOf = [](const GoodsRecord& line) {
        QStringList values;
        for (const QString& key : {RecordKeys::GoodsCheckedCnt, RecordKeys::GoodsPickCnt, RecordKeys::FSeriNum,
                                   RecordKeys::FSerialID, RecordKeys::FKFPeriod, RecordKeys::FKFDate})
            values << line.GetValue(key).toString();
        return values;
    };
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
            picked.insert(LineIdentity(line), stateOf(line));
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
            EXPECT_EQ(stateOf(line), picked.value(LineIdentity(line))) << LineIdentity(line).toStdString();
        }
    }
}

TEST_F(OrderGoods, TheOneSetIsEmptiedInPlaceAndDroppedAtTheEnd)
{
    EXPECT_TRUE(LoadOrderGoods(QString()).isNone());      // nothing loaded yet, nothing asked
    EXPECT_TRUE(canned->sqls.isEmpty());

    answerOrder({{1, 101, 0}, {2, 102, 0}});
    const RecordList first = LoadOrderGoods(QStringLiteral("SF1"));
    EXPECT_EQ(canned->sqls.value(0), BuildOrderGoodsSql(QStringLiteral("SF1")));
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
    EXPECT_EQ(canned->sqls.size(), 2);
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

    canned->answer = [](const QString&) -> RecordsetPtr {
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

TEST_F(OrderGoods, FolderIsEmptiedOnceASessionAndEachItemHasOnePicture)
{
    // No attachment: the store is asked once, nothing is written, the cleaning still happens.
    ASSERT_TRUE(writeFile(temp + "Tmp_99", "old session"));
    ASSERT_TRUE(QDir(temp).mkdir("keep"));              // folders are not files: left alone
    EXPECT_TRUE(ClearPictureFolderPending());
    EXPECT_FALSE(WriteGoodsPicture(Props, 0, QStringLiteral("55")));
    EXPECT_EQ(canned->ids, QList<int>({0}));
    EXPECT_FALSE(ClearPictureFolderPending());
    EXPECT_TRUE(filesInTemp().isEmpty());
    EXPECT_TRUE(QFileInfo(temp + "keep").isDir());

    // The same item twice overwrites its picture; the compressed file goes.
    canned->attachments.insert(1, gzipBytes("one"));
    canned->attachments.insert(2, gzipBytes("two, longer than one"));
    EXPECT_TRUE(WriteGoodsPicture(Props, 2, QStringLiteral("101")));
    EXPECT_TRUE(WriteGoodsPicture(Props, 1, QStringLiteral("101")));
    EXPECT_EQ(readFile(temp + "Tmp_101"), "one");
    EXPECT_EQ(filesInTemp(), QStringList({"Tmp_101"}));

    // A second order of the same session: the folder is not emptied again.
    ASSERT_TRUE(writeFile(temp + "Tmp_98", "same session"));
    EXPECT_TRUE(WriteGoodsPicture(Props, 1, QStringLiteral("102")));
    EXPECT_EQ(filesInTemp(), QStringList({"Tmp_101", "Tmp_102", "Tmp_98"}));

    SetClearPictureFolder(true);
    EXPECT_TRUE(WriteGoodsPicture(Props, 1, QStringLiteral("103")));
    EXPECT_EQ(filesInTemp(), QStringList({"Tmp_103"}));

    // The folder is made again when someone removed it.
    ASSERT_TRUE(QDir(temp).removeRecursively());
    SetClearPictureFolder(true);
    EXPECT_TRUE(WriteGoodsPicture(Props, 1, QStringLiteral("104")));
    EXPECT_EQ(filesInTemp(), QStringList({"Tmp_104"}));
}

TEST_F(OrderGoods, FailuresGiveFalseAndKeepTheLastGoodPicture)
{
    canned->attachments.insert(1, gzipBytes("good"));
    canned->attachments.insert(2, "this is not gzip");
    canned->attachments.insert(3, gzipBytes("truncated picture data").left(12));
    ASSERT_TRUE(WriteGoodsPicture(Props, 1, QStringLiteral("101")));
    EXPECT_FALSE(WriteGoodsPicture(Props, 2, QStringLiteral("101")));
    EXPECT_EQ(readFile(temp + "Tmp_101"), "good");
    EXPECT_FALSE(WriteGoodsPicture(Props, 3, QStringLiteral("101")));
    EXPECT_EQ(readFile(temp + "Tmp_101"), "good");
    // The decompressor leaves no temporary file behind; the source stays for a look.
    EXPECT_EQ(filesInTemp(), QStringList({"101", "Tmp_101"}));

    canned->storeDown = true;
    EXPECT_FALSE(WriteGoodsPicture(Props, 1, QStringLiteral("102")));
    EXPECT_FALSE(QFile::exists(temp + "Tmp_102"));
    canned->storeDown = false;

    // Every line asks the store again, even for the same item.
    canned->ids.clear();
    for (int line = 0; line < 2; ++line)
        EXPECT_TRUE(WriteGoodsPicture(Props, 1, QStringLiteral("101")));
    EXPECT_EQ(canned->ids, QList<int>({1, 1}));

    // Decompressed on its own, a picture replaces its source only when whole.
    ASSERT_TRUE(writeFile(temp + "103", "this is not gzip"));
    EXPECT_THROW(DecompressGoodsPicture(QStringLiteral("103")), HostError);
    ASSERT_TRUE(writeFile(temp + "103", gzipBytes("whole")));
    EXPECT_TRUE(DecompressGoodsPicture(QStringLiteral("103")));
    EXPECT_FALSE(QFile::exists(temp + "103"));
    EXPECT_EQ(readFile(temp + "Tmp_103"), "whole");

    RegisterServerObject(ProgIds::AccessoryView, nullptr);
    EXPECT_FALSE(WriteGoodsPicture(Props, 1, QStringLiteral("104")));
}

TEST_F(OrderGoods, BuiltInDecompressorReplacesTheTargetOnlyWithAWholeStream)
{
    auto zip = CreateServerObjectAs<IZip>(ProgIds::Zip);
    // Concatenated members read as one stream, as gzip does.
    ASSERT_TRUE(writeFile(temp + "src", gzipBytes("ab") + gzipBytes("cd")));
    zip->DeCompress(temp + "src", temp + "out");
    EXPECT_EQ(readFile(temp + "out"), "abcd");

    ASSERT_TRUE(writeFile(temp + "src", QByteArray()));
    EXPECT_THROW(zip->DeCompress(temp + "src", temp + "out"), HostError);
    ASSERT_TRUE(writeFile(temp + "src", gzipBytes("ab") + "trailing junk"));
    EXPECT_THROW(zip->DeCompress(temp + "src", temp + "out"), HostError);
    EXPECT_EQ(readFile(temp + "out"), "abcd");
    EXPECT_THROW(zip->DeCompress(temp + "missing", temp + "out"), HostError);
    EXPECT_THROW(zip->DeCompress(temp + "src", folder.path() + "/no/such/folder/out"), HostError);
    EXPECT_EQ(filesInTemp(), QStringList({"out", "src"}));
}

// The statements as the server receives them, to the character.
TEST(Statements, EachLookupIsSentAsTheServerExpectsIt)
{
    using namespace ExpectedSql;
    // Numeric: unique code or logistics number, the filter follows on the same line.
    EXPECT_EQ(BuildOrderGoodsSql(QStringLiteral("20240001")), orderGoods(QStringLiteral("20240001"), true));
    // Letters: logistics number only, and a line break before the filter.
    EXPECT_EQ(BuildOrderGoodsSql(QStringLiteral("SF1234567")), orderGoods(QStringLiteral("SF1234567"), false));
    // The runtime's numeric test decides, and the code goes in as scanned.
    EXPECT_TRUE(BuildOrderGoodsSql(QStringLiteral(" 12 ")).contains("(t2.FUniqueCode =' 12 ' OR t2.FLogisticsOrder =' 12 ')"));
    EXPECT_TRUE(BuildOrderGoodsSql(QStringLiteral("1.5E3")).contains("FUniqueCode ='1.5E3'"));
    EXPECT_TRUE(BuildOrderGoodsSql(QStringLiteral("12-34")).contains(" Where t2.FLogisticsOrder ='12-34'\r\n"));
    EXPECT_TRUE(BuildOrderGoodsSql(QStringLiteral("0x1F")).contains(" Where t2.FLogisticsOrder ='0x1F'\r\n"));
    EXPECT_TRUE(BuildOrderGoodsSql(QStringLiteral("a'b")).contains("FLogisticsOrder ='a'b'"));
    EXPECT_EQ(PriceChangeFilterSql(), priceChangeFilter());

    // The barcode lookup reads the barcode table of all web orders.
    EXPECT_EQ(BuildBarCodeLookupSql(QStringLiteral("6901234567892")), barcodeLookup(QStringLiteral("6901234567892")));

    // The serial lookup is the three-branch union, line by line.
    const QString sn = QStringLiteral("SN-0001");
    const QStringList expected = serialLookupLines(sn);
    ASSERT_EQ(expected.size(), 84);
    const QString sql = BuildSerialLookupSql(sn);
    EXPECT_EQ(sql, eachLine(expected));
    // The serial is pasted as scanned: a quote in it reaches the server unchanged.
    EXPECT_EQ(BuildSerialLookupSql(QStringLiteral("A'B")).count("='A'B'"), 3);
}
