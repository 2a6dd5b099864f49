#include "orderdata/goods_pictures.h"
#include "host/host_error.h"
#include "host/object_factory.h"
#include "orderdata/order_goods.h"
#include <QDir>
#include <QFile>

namespace {

// Once per station session: the pictures of the last session go. Files that
// are held open elsewhere are simply left.
void clearPictureFolder(const QString& folder)
{
    QDir dir;
    if (!dir.mkpath(folder))
        return;
    // Files are removed by full path; the process's working folder is the
    // host's, not ours to change.
    dir.setPath(folder);
    const QStringList files = dir.entryList(QDir::Files);
    for (const QString& name : files)
        QFile::remove(dir.filePath(name));
}

void writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)
        || file.write(bytes) != bytes.size() || !file.flush())
        throw HostError(HostErrors::FileError, QStringLiteral("Write to file failed: %1").arg(path));
}

} // namespace

bool WriteGoodsPicture(const QString& props, qint32 attachmentId, const QString& itemId)
{
    try {
        const QString folder = PictureTempFolder();
        if (ClearPictureFolderPending()) {
            try {
                clearPictureFolder(folder);
            } catch (...) {
            }
            SetClearPictureFolder(false);
        }
        // The attachment component is asked even for id 0, as the host expects one call per line.
        auto accessory = CreateServerObjectAs<IAccessoryView>(ProgIds::AccessoryView);
        const QByteArray bytes = accessory->GetID(props, attachmentId);
        if (attachmentId < 1)
            return false;
        // Every line writes its picture afresh, also the second line of an
        // item: the file on disk is always the one this load fetched.
        writeBytes(folder + itemId, bytes);
        return DecompressGoodsPicture(itemId);
    } catch (...) {
        // A picture that cannot be had leaves the tile on its default picture.
        return false;
    }
}

bool DecompressGoodsPicture(const QString& itemId)
{
    const QString folder = PictureTempFolder();
    auto zip = CreateServerObjectAs<IZip>(ProgIds::Zip);
    zip->DeCompress(folder + itemId, folder + QStringLiteral("Tmp_") + itemId);
    QFile::remove(folder + itemId);
    return true;
}
