#pragma once
// Goods pictures for the tiles: decoded once at the size they are shown and
// kept in a cache, so painting and scrolling never decode or rescale.
#include <QPixmap>
#include <QSize>
#include <QString>

namespace TilePictures {

// The default picture, "\images\default.jpg" under the component's folder.
QString defaultPath();

// The picture in `path` fitted into `size` device-independent pixels (aspect
// ratio kept), from the cache when the same bytes were decoded at that size
// before (under any file name). A null pixmap when the file can't be read or
// is no picture.
QPixmap load(const QString& path, const QSize& size);

// The outcome of writing a picture path to a tile.
struct Resolved {
    bool changed = false;   // false: the tile keeps its picture and its path
    QString path;           // the path now loaded (the default one after a fallback)
    QPixmap pixmap;
};
// Empty path or no file at the path: nothing changes. A file that can't be
// loaded gives the default picture; when that is missing too, nothing changes.
Resolved resolve(const QString& path, const QSize& size);

// True when a file (not a folder) is at the path.
bool fileExists(const QString& path);

// Room for `count` tile pictures of `size` (device-independent pixels, a
// tile's picture box when not selected) in the cache, so that a big order
// scanned in any order decodes each picture once; bounded, and never below
// the usual budget (count 0 gives it back). Pictures of other sizes (the
// selected tile, the enlarged tile) have a cache of their own.
void reserveTiles(int count, const QSize& size);

// Forgets every cached picture.
void clearCache();

} // namespace TilePictures
