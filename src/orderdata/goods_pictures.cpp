#include "orderdata/goods_pictures.h"
#include "host/host_error.h"
#include "host/object_factory.h"
#include "orderdata/order_goods.h"
#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>

namespace {

// A picture produced earlier in this session: what it was made from, and
// the file as the decompressor left it.
struct WrittenPicture {
    QByteArray digest;   // of the attachment's compressed bytes
    qint64 size = -1;
    QDateTime modified;
};

// Keyed by the picture's full path; forgotten when the folder is emptied.
QHash<QString, WrittenPicture>& writtenPictures()
{
    static QHash<QString, WrittenPicture> written;
    return written;
}

QByteArray digestOf(const QByteArray& bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha1);
}

// Re-picking an order fetches the same attachments again: when the file on
// disk is still the one made from these very bytes, writing and
// decompressing them again would give it back byte for byte.
bool stillWritten(const QString& picture, const QByteArray& digest)
{
    const auto it = writtenPictures().constFind(picture);
    if (it == writtenPictures().constEnd() || it->digest != digest)
        return false;
    const QFileInfo info(picture);
    return info.isFile() && info.size() == it->size && info.lastModified() == it->modified;
}

void rememberWritten(const QString& picture, const QByteArray& digest)
{
    const QFileInfo info(picture);
    if (info.isFile())
        writtenPictures().insert(picture, {digest, info.size(), info.lastModified()});
    else
        writtenPictures().remove(picture);
}

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
            writtenPictures().clear();
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
        const QString picture = folder + QStringLiteral("Tmp_") + itemId;
        const QByteArray digest = digestOf(bytes);
        if (stillWritten(picture, digest))
            return true;
        writtenPictures().remove(picture);
        writeBytes(folder + itemId, bytes);
        const bool written = DecompressGoodsPicture(itemId);
        rememberWritten(picture, digest);
        return written;
    } catch (...) {
        // A picture that cannot be had leaves the tile on its default picture.
        return false;
    }
}

bool DecompressGoodsPicture(const QString& itemId)
{
    const QString folder = PictureTempFolder();
    // Whatever comes out now is no longer the picture remembered for this item.
    writtenPictures().remove(folder + QStringLiteral("Tmp_") + itemId);
    auto zip = CreateServerObjectAs<IZip>(ProgIds::Zip);
    zip->DeCompress(folder + itemId, folder + QStringLiteral("Tmp_") + itemId);
    QFile::remove(folder + itemId);
    return true;
}
