#include "tiles/tile_pictures.h"
#include "host/platform.h"
#include <QBuffer>
#include <QCache>
#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QImageReader>

namespace TilePictures {

namespace {

// Cost in KiB: about 64 MB of decoded tiles, the rows in view many times
// over; an order of more lines than that holds gets room for all of its
// pictures, up to a bound.
constexpr int kTileBudgetKb = 64 * 1024;
constexpr int kTileBudgetCapKb = 256 * 1024;

QCache<QString, QPixmap>& tileCache()
{
    static QCache<QString, QPixmap> tiles(kTileBudgetKb);
    return tiles;
}

// The size (device pixels) of a tile's picture when not selected: those
// fill the tile cache. The selected tile's and the enlarged tile's pictures
// change with every scan and are kept apart, so they never push tiles out.
QSize& tilePictureSize()
{
    static QSize size;
    return size;
}

QCache<QString, QPixmap>& cache(const QSize& size)
{
    static QCache<QString, QPixmap> others(32 * 1024);
    return size == tilePictureSize() ? tileCache() : others;
}

qreal pixelRatio()
{
    if (auto* app = qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return app->devicePixelRatio();
    return 1.0;
}

} // namespace

QString defaultPath() { return ComponentPath(QStringLiteral("\\images\\default.jpg")); }

bool fileExists(const QString& path)
{
    return !path.isEmpty() && QFileInfo(path).isFile();
}

QPixmap load(const QString& path, const QSize& size)
{
    if (path.isEmpty() || size.width() < 1 || size.height() < 1)
        return QPixmap();
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return QPixmap();
    QByteArray bytes = file.readAll();
    file.close();
    const qreal ratio = pixelRatio();
    // Keyed by the picture's bytes: every order load writes the "Tmp_" files
    // again, mostly with the same pictures, which then need no new decode.
    const QString key = QStringLiteral("%1|%2|%3x%4@%5")
                            .arg(QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha1).toHex()))
                            .arg(bytes.size())
                            .arg(size.width())
                            .arg(size.height())
                            .arg(ratio);
    const QSize target = (size * ratio);
    if (QPixmap* hit = cache(target).object(key))
        return *hit;

    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    const QSize source = reader.size();
    const QSize fitted = source.isValid() ? source.scaled(target, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)) : QSize();
    // JPEG decodes straight at the smaller size; the PNG reader's own
    // scaling averages row by row and takes several times a whole decode,
    // so a PNG is decoded whole and scaled after.
    const bool scaleAfter = fitted.isValid() && reader.format() == "png";
    if (fitted.isValid() && !scaleAfter)
        reader.setScaledSize(fitted);
    QImage image = reader.read();
    if (scaleAfter && !image.isNull() && image.size() != fitted)
        image = image.scaled(fitted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    if (image.isNull())
        return QPixmap();
    if (!source.isValid() && (image.width() > target.width() || image.height() > target.height()))
        image = image.scaled(target, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QPixmap pixmap = QPixmap::fromImage(image);
    pixmap.setDevicePixelRatio(ratio);
    const int costKb = qMax(1, int(qint64(pixmap.width()) * pixmap.height() * 4 / 1024));
    cache(target).insert(key, new QPixmap(pixmap), costKb);
    return pixmap;
}

Resolved resolve(const QString& path, const QSize& size)
{
    Resolved result;
    if (path.isEmpty() || !fileExists(path))
        return result;
    QPixmap pixmap = load(path, size);
    if (!pixmap.isNull()) {
        result.changed = true;
        result.path = path;
        result.pixmap = pixmap;
        return result;
    }
    const QString fallback = defaultPath();
    pixmap = load(fallback, size);
    if (!pixmap.isNull()) {
        result.changed = true;
        result.path = fallback;
        result.pixmap = pixmap;
    }
    return result;
}

void reserveTiles(int count, const QSize& size)
{
    const QSize pixels = size * pixelRatio();
    if (pixels != tilePictureSize())
        tileCache().clear();
    tilePictureSize() = pixels;
    const qint64 perTileKb = qMax<qint64>(1, qint64(pixels.width()) * pixels.height() * 4 / 1024);
    const qint64 wanted = qint64(qMax(0, count)) * perTileKb * 11 / 10;
    tileCache().setMaxCost(int(qBound(qint64(kTileBudgetKb), wanted, qint64(kTileBudgetCapKb))));
}

void clearCache()
{
    tileCache().clear();
    cache(QSize()).clear();
}

} // namespace TilePictures
