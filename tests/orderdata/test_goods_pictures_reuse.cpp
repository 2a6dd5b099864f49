// A picture made earlier in the session is kept when the same attachment
// comes again and the file is still the one made from it; anything else
// writes and decompresses again, as the first time.
#include "middle_tier_fakes.h"
#include "orderdata/goods_pictures.h"
#include "orderdata/order_goods.h"
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QThread>

namespace {

struct CountingZipLog {
    QStringList calls;
};

// Decompresses for real (the built-in object), counting the calls.
class CountingZip : public IZip {
public:
    CountingZip(std::shared_ptr<CountingZipLog> log, std::shared_ptr<ServerObject> real)
        : m_log(std::move(log)), m_real(std::move(real)) {}
    void DeCompress(const QString& source, const QString& target) override
    {
        m_log->calls << target;
        std::dynamic_pointer_cast<IZip>(m_real)->DeCompress(source, target);
    }

private:
    std::shared_ptr<CountingZipLog> m_log;
    std::shared_ptr<ServerObject> m_real;
};

class GoodsPicturesReuse : public HostFixture {
protected:
    void SetUp() override
    {
        HostFixture::SetUp();
        ASSERT_TRUE(folder.isValid());
        SetComponentFolder(folder.path());
        publishProps(Props);
        accessory = useFakeAccessoryView();
        RestoreBuiltInServerObjects(ProgIds::Zip);
        auto real = CreateServerObject(ProgIds::Zip);
        RegisterServerObject(ProgIds::Zip, [this, real] { return std::make_shared<CountingZip>(zip, real); });
        SetClearPictureFolder(true);
        temp = PictureTempFolder();
    }

    QStringList filesInTemp() const { return QDir(temp).entryList(QDir::Files, QDir::Name); }

    const QString Props = QStringLiteral("UserID=1;");
    QTemporaryDir folder;
    QString temp;
    std::shared_ptr<AccessoryLog> accessory;
    std::shared_ptr<CountingZipLog> zip = std::make_shared<CountingZipLog>();
};

} // namespace

TEST_F(GoodsPicturesReuse, TheSameAttachmentAgainKeepsTheFileItMade)
{
    accessory->attachments.insert(7, gzipBytes("seven"));
    accessory->attachments.insert(8, gzipBytes("eight, another picture"));
    ASSERT_TRUE(WriteGoodsPicture(Props, 7, QStringLiteral("101")));
    const QString picture = temp + "Tmp_101";
    const QDateTime stamp = QFileInfo(picture).lastModified();
    ASSERT_EQ(zip->calls, QStringList({picture}));

    // A re-pick of the same order: the store is asked again, the file stays.
    QThread::msleep(20);
    EXPECT_TRUE(WriteGoodsPicture(Props, 7, QStringLiteral("101")));
    EXPECT_EQ(accessory->ids, QList<int>({7, 7}));
    EXPECT_EQ(zip->calls.size(), 1);
    EXPECT_EQ(readFile(picture), "seven");
    EXPECT_EQ(QFileInfo(picture).lastModified(), stamp);
    EXPECT_EQ(filesInTemp(), QStringList({"Tmp_101"}));

    // Other bytes for the item: written and decompressed again, the second overwrites.
    EXPECT_TRUE(WriteGoodsPicture(Props, 8, QStringLiteral("101")));
    EXPECT_EQ(zip->calls.size(), 2);
    EXPECT_EQ(readFile(picture), "eight, another picture");
    EXPECT_TRUE(WriteGoodsPicture(Props, 7, QStringLiteral("101")));
    EXPECT_EQ(zip->calls.size(), 3);
    EXPECT_EQ(readFile(picture), "seven");

    // The same attachment for another item is another file.
    EXPECT_TRUE(WriteGoodsPicture(Props, 7, QStringLiteral("102")));
    EXPECT_EQ(zip->calls.size(), 4);
    EXPECT_EQ(filesInTemp(), QStringList({"Tmp_101", "Tmp_102"}));
}

TEST_F(GoodsPicturesReuse, AFileThatChangedOrWentIsMadeAgain)
{
    accessory->attachments.insert(7, gzipBytes("seven"));
    const QString picture = temp + "Tmp_101";
    ASSERT_TRUE(WriteGoodsPicture(Props, 7, QStringLiteral("101")));

    // Overwritten by someone else (other size): made again from the attachment.
    ASSERT_TRUE(writeFile(picture, "scribbled over"));
    EXPECT_TRUE(WriteGoodsPicture(Props, 7, QStringLiteral("101")));
    EXPECT_EQ(zip->calls.size(), 2);
    EXPECT_EQ(readFile(picture), "seven");

    // Deleted: made again.
    ASSERT_TRUE(QFile::remove(picture));
    EXPECT_TRUE(WriteGoodsPicture(Props, 7, QStringLiteral("101")));
    EXPECT_EQ(zip->calls.size(), 3);
    EXPECT_EQ(readFile(picture), "seven");

    // Decompressed directly in between: the next write does the whole work.
    ASSERT_TRUE(writeFile(temp + "101", gzipBytes("other")));
    EXPECT_TRUE(DecompressGoodsPicture(QStringLiteral("101")));
    EXPECT_EQ(readFile(picture), "other");
    EXPECT_TRUE(WriteGoodsPicture(Props, 7, QStringLiteral("101")));
    EXPECT_EQ(readFile(picture), "seven");
    EXPECT_EQ(zip->calls.size(), 5);
}

TEST_F(GoodsPicturesReuse, ANewSessionForgetsWhatTheFolderHeld)
{
    accessory->attachments.insert(7, gzipBytes("seven"));
    accessory->attachments.insert(9, QByteArray("no gzip at all"));
    ASSERT_TRUE(WriteGoodsPicture(Props, 7, QStringLiteral("101")));
    ResetSessionState();   // the station closed; the next one empties the folder first
    EXPECT_TRUE(WriteGoodsPicture(Props, 7, QStringLiteral("101")));
    EXPECT_EQ(zip->calls.size(), 2);
    EXPECT_EQ(readFile(temp + "Tmp_101"), "seven");

    // A failed decompression leaves nothing remembered: the next good write decompresses.
    EXPECT_FALSE(WriteGoodsPicture(Props, 9, QStringLiteral("101")));
    EXPECT_EQ(readFile(temp + "Tmp_101"), "seven");
    EXPECT_TRUE(WriteGoodsPicture(Props, 7, QStringLiteral("101")));
    EXPECT_EQ(zip->calls.size(), 4);
    EXPECT_EQ(filesInTemp(), QStringList({"Tmp_101"}));
}
