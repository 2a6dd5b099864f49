#include "tiles/tile_pictures.h"
#include "host/platform.h"
#include <QCache>
#include <QDateTime>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QImageReader>

namespace TilePictures {

namespace {

QCache<QString, QPixmap>& cache()
{
    // Cost in KiB: about 64 MB of decoded tiles, the rows in view many times over.
    static QCache<QString, QPixmap> pictures(64 * 1024);
    return pictures;
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
    const QFileInfo info(path);
    if (!info.isFile())
        return QPixmap();
    const qreal ratio = pixelRatio();
    // The file's stamp is part of the key: an order load rewrites "Tmp_" files.
    const QString key = QStringLiteral("%1|%2|%3|%4x%5@%6")
                            .arg(info.absoluteFilePath())
                            .arg(info.lastModified().toMSecsSinceEpoch())
                            .arg(info.size())
                            .arg(size.width())
                            .arg(size.height())
                            .arg(ratio);
    if (QPixmap* hit = cache().object(key))
        return *hit;

    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QSize source = reader.size();
    const QSize target = (size * ratio);
    if (source.isValid()) {
        // Let the decoder scale (JPEG decodes straight at the smaller size).
        reader.setScaledSize(source.scaled(target, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
    }
    QImage image = reader.read();
    if (image.isNull())
        return QPixmap();
    if (!source.isValid() && (image.width() > target.width() || image.height() > target.height()))
        image = image.scaled(target, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QPixmap pixmap = QPixmap::fromImage(image);
    pixmap.setDevicePixelRatio(ratio);
    const int costKb = qMax(1, int(qint64(pixmap.width()) * pixmap.height() * 4 / 1024));
    cache().insert(key, new QPixmap(pixmap), costKb);
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

void clearCache() { cache().clear(); }

} // namespace TilePictures
