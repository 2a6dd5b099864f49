#pragma once
// GoodsBigView: the goods line in hand, large: picture, name, ordered and
// checked count. Same value properties as the tile, no entry id, no marks; the
// picture can also be handed over as a ready pixmap, and the layout follows
// the control's size (never narrower than MinimumWidth twips).
#include "host/goods_record.h"
#include <QPixmap>
#include <QRect>
#include <QString>
#include <QWidget>

class QLabel;
class TilePicture;

class GoodsBigView : public QWidget {
    Q_OBJECT

public:
    static constexpr int MinimumWidth = 4000;   // twips
    static constexpr int DesignPicture = 2400;  // the picture side at design size
    static constexpr int SelectInset = 30;      // selection insets the picture by this
    static constexpr int CountsColumn = 1600;   // the counts right of the picture, with their gaps
    static constexpr int NameHeight = 600;

    explicit GoodsBigView(QWidget* parent = nullptr);
    ~GoodsBigView() override;

    QString GoodsID() const { return m_goodsId; }
    void setGoodsID(const QString& goodsId) { m_goodsId = goodsId; }
    QString GoodsURL() const { return m_goodsUrl; }
    void setGoodsURL(const QString& url) { m_goodsUrl = url; }
    // The caption of lblGoodsName.
    QString GoodsName() const;
    void setGoodsName(const QString& name);
    // Stored and shown as plain decimal text.
    qint32 GoodsCheckedCnt() const { return m_checkedCnt; }
    void setGoodsCheckedCnt(qint32 count);
    qint32 GoodsOrderCnt() const { return m_orderCnt; }
    void setGoodsOrderCnt(qint32 count);
    // Write only: loads a picture file as the tile does (empty path or missing
    // file: nothing; not a picture: the default picture).
    void setGoodsPicture(const QString& path);
    // Shows a picture held in memory as it is: no file, no fallback.
    void SetPicture(const QPixmap& picture);
    // Selection insets the picture by 30 twips and shrinks it by 60; the
    // background box stays where it is.
    void SetSelected(bool bSelected);
    bool isSelected() const { return m_selected; }

    // Fills every value from a goods line (GoodsID, GoodsName, GoodsURL, the
    // two counts and GoodsPicture); missing keys leave their value as it is,
    // and a line whose picture does not load shows the default picture.
    // Convenience for the form's GoodsSelected handler.
    void showGoodsLine(const GoodsRecord& line);

    // Geometry in twips for the control's present size (also before a
    // hidden control has had its resize event).
    QRect imgMainGeometry() const { return layoutFor(width(), height()).picture; }
    QRect picBackGeometry() const { return layoutFor(width(), height()).back; }
    QRect nameGeometry() const { return layoutFor(width(), height()).name; }
    QPixmap shownPicture() const;

signals:
    void GoodsNameClick(const QString& goodsId);
    void GoodsImageClick(const QString& goodsId);

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Layout {
        QRect back;
        QRect picture;
        QRect name;
        QRect counts;   // right of the picture, or a row under it
        bool countsBelow = false;
    };
    Layout layoutFor(int widthPixels, int heightPixels) const;
    void layoutChildren();
    void updateCheckedColour();

    QString m_goodsId;
    QString m_goodsUrl;
    qint32 m_checkedCnt = 0;
    qint32 m_orderCnt = 0;
    bool m_selected = false;

    QWidget* PicBack = nullptr;
    TilePicture* imgMain = nullptr;
    QLabel* lblCheckedCnt = nullptr;
    QLabel* lblOrderCnt = nullptr;
    QLabel* lblGoodsName = nullptr;
    QLabel* lblOrderCaption = nullptr;
    QLabel* lblCheckedCaption = nullptr;
};
