#include "tiles/goods_view.h"
#include "host/error_reporter.h"
#include "host/host_error.h"
#include "host/platform.h"
#include "tiles/tile_parts.h"
#include "tiles/tile_pictures.h"
#include <QDesktopServices>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QUrl>
#include <exception>

namespace {

// Label places in twips, relative to the tile (design-time data).
constexpr int CaptionWidth = 300;
constexpr int HalfWidth = GoodsView::TileWidth / 2;
constexpr int MarkInset = 40;

QFont sizedFont(const QFont& base, int heightTwips, bool bold)
{
    QFont f(base);
    f.setPixelSize(qMax(6, TwipsToPixels(heightTwips)));
    f.setBold(bold);
    return f;
}

bool isLeftClick(QEvent* event)
{
    if (event->type() != QEvent::MouseButtonRelease)
        return false;
    auto* mouse = static_cast<QMouseEvent*>(event);
    return mouse->button() == Qt::LeftButton;
}

} // namespace

QRect GoodsView::picBackGeometryFor(bool selected)
{
    return selected ? QRect(-60, -60, 2460, 2460) : QRect(60, 60, 2380, 2380);
}

QRect GoodsView::imgMainGeometryFor(bool selected)
{
    // Not centred in the selected frame: that is how the tile was designed.
    return selected ? QRect(-30, -30, 2430, 2430) : QRect(0, 0, 2380, 2380);
}

QString GoodsView::defaultPicturePath() { return TilePictures::defaultPath(); }

GoodsView::GoodsView(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent, false);

    // Created in the order of their creation identifiers.
    PicBack = new TileFrame(this);
    PicBack->setObjectName(QStringLiteral("PicBack"));
    lblOrderCnt = new QLabel(this);
    lblOrderCnt->setObjectName(QStringLiteral("lblOrderCnt"));
    lblCheckedCnt = new QLabel(this);
    lblCheckedCnt->setObjectName(QStringLiteral("lblCheckedCnt"));
    imgOK = new TileMark(TileMark::Ok, this);
    imgOK->setObjectName(QStringLiteral("imgOK"));
    imgAlter = new TileMark(TileMark::Alter, this);
    imgAlter->setObjectName(QStringLiteral("imgAlter"));
    imgMain = new TilePicture(this);
    imgMain->setObjectName(QStringLiteral("imgMain"));
    lblGoodsName = new TileNameLabel(2, this);
    lblGoodsName->setObjectName(QStringLiteral("lblGoodsName"));
    lblOrderCaption = new QLabel(QStringLiteral("订"), this);
    lblOrderCaption->setObjectName(QStringLiteral("lblOrderCaption"));
    lblCheckedCaption = new QLabel(QStringLiteral("拣"), this);
    lblCheckedCaption->setObjectName(QStringLiteral("lblCheckedCaption"));
    // The marks sit over the picture's corners, the selection ring over all.
    imgOK->raise();
    imgAlter->raise();
    m_ring = new TileRing(TwipsToPixels(TileBleed), this);
    m_ring->hide();

    const QFont base = font();
    const QFont countFont = sizedFont(base, 390, true);
    const QFont captionFont = sizedFont(base, 225, false);
    for (QLabel* l : {lblOrderCnt, lblCheckedCnt}) {
        l->setFont(countFont);
        l->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    }
    for (QLabel* l : {lblOrderCaption, lblCheckedCaption}) {
        l->setFont(captionFont);
        l->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        QPalette pal = l->palette();
        pal.setColor(QPalette::WindowText, TileColours::Caption);
        l->setPalette(pal);
    }
    lblGoodsName->setFont(sizedFont(base, 200, false));
    lblGoodsName->setCursor(Qt::PointingHandCursor);
    imgMain->setCursor(Qt::PointingHandCursor);
    // Design-time captions until the container fills the tile.
    lblOrderCnt->setText(QStringLiteral("0"));
    lblCheckedCnt->setText(QStringLiteral("0"));
    updateCheckedColour();

    imgMain->installEventFilter(this);
    lblGoodsName->installEventFilter(this);

    // Initialise: both marks hidden, normal geometry, the design-time picture.
    imgOK->setVisible(false);
    imgAlter->setVisible(false);
    m_picBackTwips = picBackGeometryFor(false);
    m_imgMainTwips = imgMainGeometryFor(false);
    resize(TwipsToPixels(TileWidth + 2 * TileBleed), TwipsToPixels(TileHeight + 2 * TileBleed));
    placeChildren();
    imgMain->showDesignPicture();
}

GoodsView::~GoodsView() = default;

QSize GoodsView::imgMainPixelSize(bool selected)
{
    const QRect twips = imgMainGeometryFor(selected);
    return QSize(TwipsToPixels(twips.x() + twips.width() + TileBleed) - TwipsToPixels(twips.x() + TileBleed),
                 TwipsToPixels(twips.y() + twips.height() + TileBleed) - TwipsToPixels(twips.y() + TileBleed));
}

QRect GoodsView::toPixels(const QRect& twips) const
{
    // Edges are converted, not sizes, so neighbouring parts meet exactly.
    const int left = TwipsToPixels(twips.x() + TileBleed);
    const int top = TwipsToPixels(twips.y() + TileBleed);
    const int right = TwipsToPixels(twips.x() + twips.width() + TileBleed);
    const int bottom = TwipsToPixels(twips.y() + twips.height() + TileBleed);
    return QRect(left, top, right - left, bottom - top);
}

void GoodsView::placeChildren()
{
    m_ring->setGeometry(toPixels(QRect(-TileBleed, -TileBleed, TileWidth + 2 * TileBleed, TileHeight + 2 * TileBleed)));
    PicBack->setGeometry(toPixels(m_picBackTwips));
    PicBack->setHighlighted(m_selected);
    imgMain->setGeometry(toPixels(m_imgMainTwips));
    imgOK->setGeometry(toPixels(QRect(MarkInset, MarkInset, MarkSize, MarkSize)));
    imgAlter->setGeometry(toPixels(QRect(PictureSize - MarkInset - MarkSize, MarkInset, MarkSize, MarkSize)));
    lblOrderCaption->setGeometry(toPixels(QRect(0, CountsTop, CaptionWidth, CountsHeight)));
    lblOrderCnt->setGeometry(toPixels(QRect(CaptionWidth + 60, CountsTop, HalfWidth - CaptionWidth - 60, CountsHeight)));
    lblCheckedCaption->setGeometry(toPixels(QRect(HalfWidth, CountsTop, CaptionWidth, CountsHeight)));
    lblCheckedCnt->setGeometry(toPixels(QRect(HalfWidth + CaptionWidth + 60, CountsTop,
                                              TileWidth - HalfWidth - CaptionWidth - 60, CountsHeight)));
    lblGoodsName->setGeometry(toPixels(QRect(60, NameTop, TileWidth - 120, NameHeight)));
}

void GoodsView::moveTileTo(int leftTwips, int topTwips)
{
    m_tilePos = QPoint(leftTwips, topTwips);
    const QPoint at(TwipsToPixels(leftTwips - TileBleed), TwipsToPixels(topTwips - TileBleed));
    if (pos() != at)
        move(at);
}

QString GoodsView::GoodsName() const { return lblGoodsName->text(); }

void GoodsView::setGoodsName(const QString& name)
{
    if (lblGoodsName->text() != name)
        lblGoodsName->setText(name);
}

void GoodsView::setGoodsCheckedCnt(qint32 count)
{
    m_checkedCnt = count;
    const QString text = QString::number(count);
    if (lblCheckedCnt->text() != text)
        lblCheckedCnt->setText(text);
    updateCheckedColour();
}

void GoodsView::setGoodsOrderCnt(qint32 count)
{
    m_orderCnt = count;
    const QString text = QString::number(count);
    if (lblOrderCnt->text() != text)
        lblOrderCnt->setText(text);
    updateCheckedColour();
}

void GoodsView::updateCheckedColour()
{
    // Green when the line is complete, red when it is over-picked: readable
    // from a step away without looking at the marks.
    QColor colour = TileColours::Count;
    if (m_checkedCnt > m_orderCnt)
        colour = TileColours::Excess;
    else if (m_checkedCnt == m_orderCnt && m_orderCnt > 0)
        colour = TileColours::Complete;
    QPalette pal = lblCheckedCnt->palette();
    if (pal.color(QPalette::WindowText) != colour) {
        pal.setColor(QPalette::WindowText, colour);
        lblCheckedCnt->setPalette(pal);
    }
    QPalette orderPal = lblOrderCnt->palette();
    if (orderPal.color(QPalette::WindowText) != TileColours::Count) {
        orderPal.setColor(QPalette::WindowText, TileColours::Count);
        lblOrderCnt->setPalette(orderPal);
    }
}

void GoodsView::setGoodsPicture(const QString& path)
{
    try {
        const TilePictures::Resolved r = TilePictures::resolve(path, imgMain->size());
        if (!r.changed)
            return;
        imgMain->showFile(r.path, r.pixmap);
        m_picturePath = r.path;
    } catch (...) {
        // A picture never fails its caller; the tile keeps what it had.
    }
}

void GoodsView::clearPicture()
{
    m_picturePath.clear();
    imgMain->showDesignPicture();
}

QPixmap GoodsView::shownPicture() const { return imgMain->shown(); }

void GoodsView::SetOKVisible(bool visible) { imgOK->setVisible(visible); }
void GoodsView::SetAlterVisible(bool visible) { imgAlter->setVisible(visible); }
bool GoodsView::OKShow() const { return imgOK->isVisibleTo(this); }
bool GoodsView::WarningShow() const { return imgAlter->isVisibleTo(this); }

void GoodsView::SetSelected(bool bSelected)
{
    m_selected = bSelected;
    m_ring->setVisible(bSelected);
    const QRect back = picBackGeometryFor(bSelected);
    const QRect main = imgMainGeometryFor(bSelected);
    if (back == m_picBackTwips && main == m_imgMainTwips && PicBack->isHighlighted() == bSelected)
        return;
    m_picBackTwips = back;
    m_imgMainTwips = main;
    PicBack->setGeometry(toPixels(m_picBackTwips));
    PicBack->setHighlighted(bSelected);
    imgMain->setGeometry(toPixels(m_imgMainTwips));
    update();
}

void GoodsView::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.fillRect(toPixels(QRect(0, TileWidth, TileWidth, TileHeight - TileWidth)), Qt::white);
}

bool GoodsView::eventFilter(QObject* watched, QEvent* event)
{
    if (!isLeftClick(event))
        return QWidget::eventFilter(watched, event);
    if (watched == imgMain) {
        ReportingErrors(nullptr, [this] { emit GoodsImageClick(m_goodsId); });
        return true;
    }
    if (watched == lblGoodsName) {
        try {
            if (!m_goodsUrl.isEmpty())
                QDesktopServices::openUrl(QUrl::fromUserInput(m_goodsUrl));
        } catch (...) {
            // The shell failing to open the page is no reason to stop.
        }
        ReportingErrors(nullptr, [this] { emit GoodsNameClick(m_goodsId); });
        return true;
    }
    return QWidget::eventFilter(watched, event);
}
