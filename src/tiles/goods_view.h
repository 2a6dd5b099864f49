#pragma once
// GoodsView: one goods line of the order as a square tile (picture, name,
// ordered and checked count, OK and alter marks). The tile keeps no picking
// logic: its container tells it everything and hears its two clicks.
//
// All geometry is in twips; pixels only appear where widgets are placed.
// The widget reaches TileBleed twips past the tile on every side so that the
// selected frame, which bleeds past the tile's edges, is not clipped: place it
// with moveTileTo(), which takes the tile's own left/top in twips.
#include <QPixmap>
#include <QRect>
#include <QString>
#include <QWidget>

class QLabel;
class TileFrame;
class TileMark;
class TilePicture;
class TileRing;

class GoodsView : public QWidget {
    Q_OBJECT

public:
    // Design sizes in twips.
    static constexpr int PictureSize = 2380;    // the picture square
    static constexpr int FrameOffset = 60;      // the frame sits 60 below/right of it
    static constexpr int TileWidth = PictureSize + FrameOffset;           // 2440
    static constexpr int CountsTop = TileWidth + 30;                      // counts row under the picture
    static constexpr int CountsHeight = 470;
    static constexpr int NameTop = CountsTop + CountsHeight;
    static constexpr int NameHeight = 600;                                // two lines of name
    static constexpr int TileHeight = NameTop + NameHeight;               // 3540
    static constexpr int TileBleed = 60;       // the selected frame reaches this far out
    static constexpr int MarkSize = 540;

    // PicBack and imgMain as left, top, width, height relative to the tile.
    static QRect picBackGeometryFor(bool selected);
    static QRect imgMainGeometryFor(bool selected);
    // The size in pixels that imgMain has in either state.
    static QSize imgMainPixelSize(bool selected);

    explicit GoodsView(QWidget* parent = nullptr);
    ~GoodsView() override;

    // 1-2: stored fields, not shown.
    QString GoodsID() const { return m_goodsId; }
    void setGoodsID(const QString& goodsId) { m_goodsId = goodsId; }
    QString EntryID() const { return m_entryId; }
    void setEntryID(const QString& entryId) { m_entryId = entryId; }
    // 3: the caption of lblGoodsName is the value.
    QString GoodsName() const;
    void setGoodsName(const QString& name);
    // 4: opened on a click on the name.
    QString GoodsURL() const { return m_goodsUrl; }
    void setGoodsURL(const QString& url) { m_goodsUrl = url; }
    // 5-6: stored and shown as plain decimal text ("-1" stays "-1").
    qint32 GoodsCheckedCnt() const { return m_checkedCnt; }
    void setGoodsCheckedCnt(qint32 count);
    qint32 GoodsOrderCnt() const { return m_orderCnt; }
    void setGoodsOrderCnt(qint32 count);
    // 7: write loads the picture: an empty path or a missing file changes
    // nothing; a file that is no picture gives the default picture. Read gives
    // the path of the picture actually loaded ("" while none was written).
    QString GoodsPicture() const { return m_picturePath; }
    void setGoodsPicture(const QString& path);

    // 8-11: the marks; OKShow/WarningShow are the marks' visibility itself.
    void SetOKVisible(bool visible);
    void SetAlterVisible(bool visible);
    bool OKShow() const;
    void setOKShow(bool show) { SetOKVisible(show); }
    bool WarningShow() const;
    void setWarningShow(bool show) { SetAlterVisible(show); }

    // 12: moves PicBack and imgMain to the selected or the normal geometry.
    void SetSelected(bool bSelected);
    bool isSelected() const { return m_selected; }

    // Current geometry in twips, relative to the tile (what the widgets show).
    QRect picBackGeometry() const { return m_picBackTwips; }
    QRect imgMainGeometry() const { return m_imgMainTwips; }

    // Places the tile so that its own top-left corner is at (left, top) twips
    // of the parent (the widget itself starts TileBleed earlier).
    void moveTileTo(int leftTwips, int topTwips);
    QPoint tilePosition() const { return m_tilePos; }

    // Puts the design-time picture back and forgets the loaded path; used when
    // a pooled tile is handed to another line.
    void clearPicture();
    // What imgMain currently shows (tests and the enlarged tile).
    QPixmap shownPicture() const;

    // The default picture under the component's folder.
    static QString defaultPicturePath();

signals:
    void GoodsNameClick(const QString& goodsId);
    void GoodsImageClick(const QString& goodsId);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void placeChildren();
    void updateCheckedColour();
    QRect toPixels(const QRect& twips) const;

    QString m_goodsId;
    QString m_entryId;
    QString m_goodsUrl;
    qint32 m_checkedCnt = 0;
    qint32 m_orderCnt = 0;
    QString m_picturePath;
    bool m_selected = false;
    QRect m_picBackTwips;
    QRect m_imgMainTwips;
    QPoint m_tilePos;

    TileFrame* PicBack = nullptr;
    QLabel* lblOrderCnt = nullptr;
    QLabel* lblCheckedCnt = nullptr;
    TileMark* imgOK = nullptr;
    TileMark* imgAlter = nullptr;
    TilePicture* imgMain = nullptr;
    QLabel* lblGoodsName = nullptr;
    QLabel* lblOrderCaption = nullptr;
    QLabel* lblCheckedCaption = nullptr;
    TileRing* m_ring = nullptr;
};
