// The order's line set, its failures and its picture folder, with the middle
// tier and the attachment store answering as told; the lines themselves are
// checked on the demo.
#include "session/host_fakes.h"
#include "host/error_reporter.h"
#include "host/host_error.h"
#include "host/recordset.h"
#include "orderdata/goods_pictures.h"
#include "orderdata/order_goods.h"
#include <QDir>
#include <QFile>
#include <QHash>
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

class OrderGoods : public HostFixture {
protected:
    void SetUp() override
    {
        HostFixture::SetUp();
        ASSERT_TRUE(folder.isValid());
        SetComponentFolder(folder.path());
        publishProps(Props);
        RegisterServerObject(ProgIds::GetData, [c = canned] { return std::make_shared<FakeGetData>(c); });
        RegisterServerObject(ProgIds::AccessoryView, [c = canned] { return std::make_shared<FakeAccessoryView>(c); });
        boxes = recordMessageBoxes();
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
    QTemporaryDir folder;
    QString temp;
    std::shared_ptr<Canned> canned = std::make_shared<Canned>();
    std::shared_ptr<HostRecorder> boxes;
};

} // namespace

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
