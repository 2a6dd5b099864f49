#include "tiles/goods_big_view.h"
#include "host/error_reporter.h"
#include "host/host_error.h"
#include "host/platform.h"
#include "host/record_keys.h"
#include "tiles/goods_list_model.h"
#include "tiles/tile_parts.h"
#include "tiles/tile_pictures.h"
#include <QDesktopServices>
#include <QLabel>
#include <QMouseEvent>
#include <QResizeEvent>
#include <QUrl>
#include <exception>

namespace {

constexpr int Gap = 60;
constexpr int PictureGap = 120;
constexpr int CaptionHeight = 330;
constexpr int CountHeight = 640;

QFont sizedFont(const QFont& base, int heightTwips, bool bold)
{
    QFont f(base);
    f.setPixelSize(qMax(6, TwipsToPixels(heightTwips)));
    f.setBold(bold);
    return f;
}

QRect toPixels(const QRect& twips)
{
    const int left = TwipsToPixels(twips.x());
    const int top = TwipsToPixels(twips.y());
    return QRect(left, top, TwipsToPixels(twips.x() + twips.width()) - left,
                 TwipsToPixels(twips.y() + twips.height()) - top);
}

void setTextColour(QLabel* label, const QColor& colour)
{
    QPalette pal = label->palette();
    if (pal.color(QPalette::WindowText) == colour)
        return;
    pal.setColor(QPalette::WindowText, colour);
    label->setPalette(pal);
}

} // namespace

GoodsBigView::GoodsBigView(QWidget* parent) : QWidget(parent)
{
    PicBack = new QWidget(this);
    PicBack->setObjectName(QStringLiteral("PicBack"));
    PicBack->setAutoFillBackground(true);
    QPalette back = PicBack->palette();
    back.setColor(QPalette::Window, QColor(0xf4, 0xf5, 0xf7));
    PicBack->setPalette(back);
    imgMain = new TilePicture(this);
    imgMain->setObjectName(QStringLiteral("imgMain"));
    lblCheckedCnt = new QLabel(QStringLiteral("0"), this);
    lblCheckedCnt->setObjectName(QStringLiteral("lblCheckedCnt"));
    lblOrderCnt = new QLabel(QStringLiteral("0"), this);
    lblOrderCnt->setObjectName(QStringLiteral("lblOrderCnt"));
    lblGoodsName = new TileNameLabel(2, this);
    lblGoodsName->setObjectName(QStringLiteral("lblGoodsName"));
    lblOrderCaption = new QLabel(QStringLiteral("订购"), this);
    lblOrderCaption->setObjectName(QStringLiteral("lblOrderCaption"));
    lblCheckedCaption = new QLabel(QStringLiteral("已拣"), this);
    lblCheckedCaption->setObjectName(QStringLiteral("lblCheckedCaption"));

    const QFont base = font();
    for (QLabel* l : {lblOrderCnt, lblCheckedCnt}) {
        l->setFont(sizedFont(base, 540, true));
        l->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    }
    for (QLabel* l : {lblOrderCaption, lblCheckedCaption}) {
        l->setFont(sizedFont(base, 240, false));
        l->setAlignment(Qt::AlignLeft | Qt::AlignBottom);
        setTextColour(l, TileColours::Caption);
    }
    lblGoodsName->setFont(sizedFont(base, 255, true));
    lblGoodsName->setCursor(Qt::PointingHandCursor);
    imgMain->setCursor(Qt::PointingHandCursor);
    imgMain->installEventFilter(this);
    lblGoodsName->installEventFilter(this);
    updateCheckedColour();

    setMinimumWidth(TwipsToPixels(MinimumWidth));
    resize(TwipsToPixels(MinimumWidth), TwipsToPixels(DesignPicture + PictureGap + NameHeight + Gap / 2));
    layoutChildren();
    imgMain->showDesignPicture();
}

GoodsBigView::~GoodsBigView() = default;

QString GoodsBigView::GoodsName() const { return lblGoodsName->text(); }

void GoodsBigView::setGoodsName(const QString& name)
{
    if (lblGoodsName->text() != name)
        lblGoodsName->setText(name);
}

void GoodsBigView::setGoodsCheckedCnt(qint32 count)
{
    m_checkedCnt = count;
    lblCheckedCnt->setText(QString::number(count));
    updateCheckedColour();
}

void GoodsBigView::setGoodsOrderCnt(qint32 count)
{
    m_orderCnt = count;
    lblOrderCnt->setText(QString::number(count));
    updateCheckedColour();
}

void GoodsBigView::updateCheckedColour()
{
    QColor colour = TileColours::Count;
    if (m_checkedCnt > m_orderCnt)
        colour = TileColours::Excess;
    else if (m_checkedCnt == m_orderCnt && m_orderCnt > 0)
        colour = TileColours::Complete;
    setTextColour(lblCheckedCnt, colour);
    setTextColour(lblOrderCnt, TileColours::Count);
}

void GoodsBigView::setGoodsPicture(const QString& path)
{
    try {
        const TilePictures::Resolved r = TilePictures::resolve(path, imgMain->size());
        if (r.changed)
            imgMain->showFile(r.path, r.pixmap);
    } catch (...) {
        // A picture never fails its caller.
    }
}

void GoodsBigView::SetPicture(const QPixmap& picture)
{
    imgMain->showPixmap(picture);
}

QPixmap GoodsBigView::shownPicture() const { return imgMain->shown(); }

void GoodsBigView::SetSelected(bool bSelected)
{
    m_selected = bSelected;
    layoutChildren();
}

void GoodsBigView::showGoodsLine(const GoodsRecord& line)
{
    if (line.isNone())
        return;
    try {
        if (line.Exists(RecordKeys::GoodsID))
            setGoodsID(line.GetValue(RecordKeys::GoodsID).toString());
        if (line.Exists(RecordKeys::GoodsName))
            setGoodsName(line.GetValue(RecordKeys::GoodsName).toString());
        if (line.Exists(RecordKeys::GoodsURL))
            setGoodsURL(line.GetValue(RecordKeys::GoodsURL).toString());
        if (line.Exists(RecordKeys::GoodsOrderCnt))
            setGoodsOrderCnt(GoodsListModel::toInt32(line.GetValue(RecordKeys::GoodsOrderCnt)));
        if (line.Exists(RecordKeys::GoodsCheckedCnt))
            setGoodsCheckedCnt(GoodsListModel::toInt32(line.GetValue(RecordKeys::GoodsCheckedCnt)));
        if (line.Exists(RecordKeys::GoodsPicture)) {
            // Another goods' picture must not stay on screen for this one.
            imgMain->showDesignPicture();
            setGoodsPicture(line.GetValue(RecordKeys::GoodsPicture).toString());
        }
    } catch (...) {
        // A malformed line shows what could be read.
    }
}

GoodsBigView::Layout GoodsBigView::layoutFor(int widthPixels, int heightPixels) const
{
    const int w = qMax(PixelsToTwips(widthPixels), 0);
    const int h = qMax(PixelsToTwips(heightPixels), 0);
    Layout l;
    l.back = QRect(0, 0, w, h);
    l.name = QRect(Gap / 2, h - NameHeight - Gap / 2, qMax(0, w - Gap), NameHeight);
    // The picture takes the room above the name, less the 120 gap, that the
    // counts leave: beside it in a column, or under it in a row when that
    // gives the larger picture (a narrow, tall control).
    const int room = qMax(0, l.name.top() - PictureGap);
    const int countsRow = CaptionHeight + CountHeight;
    const int besideWidth = qMax(0, w - CountsColumn);
    const int belowHeight = qMax(0, room - countsRow - Gap);
    l.countsBelow = qMin(w, belowHeight) > qMin(besideWidth, room);
    // Beside the counts the picture is no wider than high: what width is
    // left goes to the counts.
    const QRect box = l.countsBelow ? QRect(0, 0, w, belowHeight) : QRect(0, 0, qMin(besideWidth, room), room);
    l.picture = m_selected ? box.adjusted(SelectInset, SelectInset, -SelectInset, -SelectInset) : box;
    if (l.picture.width() < 0 || l.picture.height() < 0)
        l.picture = QRect(box.topLeft(), QSize(0, 0));
    if (l.countsBelow) {
        l.counts = QRect(Gap / 2, box.bottom() + 1 + Gap, qMax(0, w - Gap), countsRow);
    } else {
        const int countsLeft = box.right() + 1 + Gap * 2;
        l.counts = QRect(countsLeft, Gap, qMax(0, w - countsLeft - Gap), qMax(0, l.name.top() - Gap));
    }
    return l;
}

void GoodsBigView::layoutChildren()
{
    const Layout l = layoutFor(width(), height());
    PicBack->setGeometry(toPixels(l.back));
    imgMain->setGeometry(toPixels(l.picture));
    lblGoodsName->setGeometry(toPixels(l.name));
    const int x = l.counts.left();
    const int y = l.counts.top();
    if (l.countsBelow) {
        // Ordered and checked side by side.
        const int half = l.counts.width() / 2;
        lblOrderCaption->setGeometry(toPixels(QRect(x, y, half, CaptionHeight)));
        lblOrderCnt->setGeometry(toPixels(QRect(x, y + CaptionHeight, half, CountHeight)));
        lblCheckedCaption->setGeometry(toPixels(QRect(x + half, y, l.counts.width() - half, CaptionHeight)));
        lblCheckedCnt->setGeometry(toPixels(QRect(x + half, y + CaptionHeight, l.counts.width() - half, CountHeight)));
        return;
    }
    const int cw = l.counts.width();
    lblOrderCaption->setGeometry(toPixels(QRect(x, y, cw, CaptionHeight)));
    lblOrderCnt->setGeometry(toPixels(QRect(x, y + CaptionHeight, cw, CountHeight)));
    const int checkedTop = y + CaptionHeight + CountHeight + Gap * 2;
    lblCheckedCaption->setGeometry(toPixels(QRect(x, checkedTop, cw, CaptionHeight)));
    lblCheckedCnt->setGeometry(toPixels(QRect(x, checkedTop + CaptionHeight, cw, CountHeight)));
}

void GoodsBigView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    // Each step goes on whatever the one before did.
    try {
        if (PixelsToTwips(width()) < MinimumWidth)
            resize(TwipsToPixels(MinimumWidth), height());
    } catch (...) {
    }
    try {
        layoutChildren();
    } catch (...) {
    }
}

bool GoodsBigView::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::MouseButtonRelease
        || static_cast<QMouseEvent*>(event)->button() != Qt::LeftButton)
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
        }
        ReportingErrors(nullptr, [this] { emit GoodsNameClick(m_goodsId); });
        return true;
    }
    return QWidget::eventFilter(watched, event);
}
