#include "middle_tier_fakes.h"
#include "orderdata/goods_pictures.h"
#include <QDir>
#include <QTemporaryDir>

namespace {

class GoodsPictures : public HostFixture {
protected:
    void SetUp() override
    {
        HostFixture::SetUp();
        ASSERT_TRUE(folder.isValid());
        SetComponentFolder(folder.path());
        publishProps(Props);
        accessory = useFakeAccessoryView();
        temp = PictureTempFolder();
        ASSERT_TRUE(QDir().mkpath(temp));
    }

    QStringList filesInTemp() const { return QDir(temp).entryList(QDir::Files, QDir::Name); }

    const QString Props = QStringLiteral("UserID=1;");
    QTemporaryDir folder;
    QString temp;
    std::shared_ptr<AccessoryLog> accessory;
};

} // namespace

TEST_F(GoodsPictures, FolderIsEmptiedOnceASessionAndEachItemHasOnePicture)
{
    // No attachment: the store is asked once, nothing is written, the cleaning still happens.
    ASSERT_TRUE(writeFile(temp + "Tmp_99", "old session"));
    ASSERT_TRUE(QDir(temp).mkdir("keep"));              // folders are not files: left alone
    EXPECT_TRUE(ClearPictureFolderPending());
    EXPECT_FALSE(WriteGoodsPicture(Props, 0, QStringLiteral("55")));
    EXPECT_EQ(accessory->ids, QList<int>({0}));
    EXPECT_FALSE(ClearPictureFolderPending());
    EXPECT_TRUE(filesInTemp().isEmpty());
    EXPECT_TRUE(QFileInfo(temp + "keep").isDir());

    // The same item twice overwrites its picture; the compressed file goes.
    accessory->attachments.insert(1, gzipBytes("one"));
    accessory->attachments.insert(2, gzipBytes("two, longer than one"));
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

TEST_F(GoodsPictures, FailuresGiveFalseAndKeepTheLastGoodPicture)
{
    accessory->attachments.insert(1, gzipBytes("good"));
    accessory->attachments.insert(2, "this is not gzip");
    accessory->attachments.insert(3, gzipBytes("truncated picture data").left(12));
    ASSERT_TRUE(WriteGoodsPicture(Props, 1, QStringLiteral("101")));
    EXPECT_FALSE(WriteGoodsPicture(Props, 2, QStringLiteral("101")));
    EXPECT_EQ(readFile(temp + "Tmp_101"), "good");
    EXPECT_FALSE(WriteGoodsPicture(Props, 3, QStringLiteral("101")));
    EXPECT_EQ(readFile(temp + "Tmp_101"), "good");
    // The decompressor leaves no temporary file behind; the source stays for a look.
    EXPECT_EQ(filesInTemp(), QStringList({"101", "Tmp_101"}));

    accessory->fail = true;
    EXPECT_FALSE(WriteGoodsPicture(Props, 1, QStringLiteral("102")));
    EXPECT_FALSE(QFile::exists(temp + "Tmp_102"));
    accessory->fail = false;

    // Every line asks the store again, even for the same item.
    accessory->ids.clear();
    for (int line = 0; line < 2; ++line)
        EXPECT_TRUE(WriteGoodsPicture(Props, 1, QStringLiteral("101")));
    EXPECT_EQ(accessory->ids, QList<int>({1, 1}));

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

TEST_F(GoodsPictures, BuiltInDecompressorReplacesTheTargetOnlyWithAWholeStream)
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
