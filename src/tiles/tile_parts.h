#pragma once
// The painted parts of the goods tiles: the frame box, the picture box, the
// OK and alter marks and the scroll arrows. Drawn with QPainter, no files.
#include <QColor>
#include <QLabel>
#include <QPixmap>
#include <QString>
#include <QWidget>

// PicBack: a plain box; a soft shadow normally, the selection colour when selected.
class TileFrame : public QWidget {
    Q_OBJECT
public:
    explicit TileFrame(QWidget* parent = nullptr);
    void setHighlighted(bool highlighted);
    bool isHighlighted() const { return m_highlighted; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool m_highlighted = false;
};

// The selection ring of a tile: a thick frame drawn over the tile's edges,
// half outside the tile and half over the picture, so the selected tile is
// seen from a step away. Clicks go through it.
class TileRing : public QWidget {
    Q_OBJECT
public:
    TileRing(int outsidePixels, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int m_outside;
};

// imgMain: shows a picture fitted to the box. A picture file is fetched
// from the picture cache at the box's size; a pixmap handed over is scaled
// once per resize, never per paint.
class TilePicture : public QWidget {
    Q_OBJECT
public:
    explicit TilePicture(QWidget* parent = nullptr);
    // Shows the file; `fitted` is the file already fitted to this box.
    void showFile(const QString& path, const QPixmap& fitted);
    void showPixmap(const QPixmap& picture);
    // The design-time picture: the default picture, or an empty box.
    void showDesignPicture();
    QPixmap shown() const { return m_fitted; }
    QString shownFile() const { return m_file; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void refit();
    QString m_file;        // the file shown, when it came from a file
    QPixmap m_original;    // a pixmap handed over as it is
    QPixmap m_fitted;      // what is painted
};

// imgOK (green disc with a tick) and imgAlter (orange triangle with "!").
class TileMark : public QWidget {
    Q_OBJECT
public:
    enum Kind { Ok, Alter };
    explicit TileMark(Kind kind, QWidget* parent = nullptr);
    Kind kind() const { return m_kind; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Kind m_kind;
};

// ImgUp / ImgDown: arrow buttons drawn as images; clicked() on a left click.
class TileArrow : public QWidget {
    Q_OBJECT
public:
    enum Direction { Up, Down };
    explicit TileArrow(Direction direction, QWidget* parent = nullptr);
    void setActive(bool active);   // greyed out when it can't move
    bool isActive() const { return m_active; }

signals:
    void clicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    Direction m_direction;
    bool m_active = true;
};

// lblGoodsName: the caption is the whole name; it is painted on at most
// `maxLines` lines, the last one elided, so a long name is never cut mid-line.
class TileNameLabel : public QLabel {
    Q_OBJECT
public:
    explicit TileNameLabel(int maxLines, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int m_maxLines;
};

namespace TileColours {
inline const QColor Selected(0x1e, 0x64, 0xd2);    // the selection frame
inline const QColor Shadow(0xc8, 0xcc, 0xd2);
inline const QColor Complete(0x00, 0x80, 0x00);    // 32768, the system's green
inline const QColor Excess(0xff, 0x00, 0x00);      // 255, the system's red
inline const QColor Count(0x20, 0x20, 0x20);
inline const QColor Caption(0x70, 0x74, 0x7a);
}
