#include "tiles/tile_parts.h"
#include "tiles/tile_pictures.h"
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QTextLayout>

TileFrame::TileFrame(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void TileFrame::setHighlighted(bool highlighted)
{
    if (m_highlighted == highlighted)
        return;
    m_highlighted = highlighted;
    update();
}

void TileFrame::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.fillRect(rect(), m_highlighted ? TileColours::Selected : TileColours::Shadow);
}

// ---------------------------------------------------------------------------

TileRing::TileRing(int outsidePixels, QWidget* parent) : QWidget(parent), m_outside(outsidePixels)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_TranslucentBackground);
}

void TileRing::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const qreal width = m_outside * 1.75;
    QPen pen(TileColours::Selected, width);
    pen.setJoinStyle(Qt::RoundJoin);
    p.setPen(pen);
    p.setBrush(Qt::NoBrush);
    const qreal half = width / 2.0;
    p.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), m_outside, m_outside);
}

// ---------------------------------------------------------------------------

TilePicture::TilePicture(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void TilePicture::showFile(const QString& path, const QPixmap& fitted)
{
    m_file = path;
    m_original = QPixmap();
    m_fitted = fitted;
    update();
}

void TilePicture::showPixmap(const QPixmap& picture)
{
    m_file.clear();
    m_original = picture;
    refit();
    update();
}

void TilePicture::showDesignPicture()
{
    const QString path = TilePictures::defaultPath();
    if (m_file == path && !m_fitted.isNull())
        return;
    m_original = QPixmap();
    m_file = path;
    m_fitted = TilePictures::load(path, size());
    update();
}

void TilePicture::refit()
{
    if (!m_file.isEmpty()) {
        const QPixmap fitted = TilePictures::load(m_file, size());
        if (!fitted.isNull())
            m_fitted = fitted;
    } else if (!m_original.isNull() && width() > 0 && height() > 0) {
        const qreal ratio = devicePixelRatioF();
        m_fitted = m_original.scaled(size() * ratio, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        m_fitted.setDevicePixelRatio(ratio);
    } else {
        m_fitted = m_original;
    }
}

void TilePicture::resizeEvent(QResizeEvent*)
{
    refit();
}

void TilePicture::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.fillRect(rect(), Qt::white);
    if (!m_fitted.isNull()) {
        const QSizeF logical = m_fitted.deviceIndependentSize();
        const QPointF at((width() - logical.width()) / 2.0, (height() - logical.height()) / 2.0);
        p.drawPixmap(at, m_fitted);
    }
}

// ---------------------------------------------------------------------------

TileMark::TileMark(Kind kind, QWidget* parent) : QWidget(parent), m_kind(kind)
{
    setAttribute(Qt::WA_TranslucentBackground);
}

void TileMark::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const qreal s = qMin(width(), height());
    const QRectF box(1, 1, s - 2, s - 2);
    if (m_kind == Ok) {
        p.setPen(QPen(Qt::white, s / 14.0));
        p.setBrush(QColor(0x1f, 0x9d, 0x3a));
        p.drawEllipse(box);
        QPainterPath tick;
        tick.moveTo(box.left() + s * 0.26, box.top() + s * 0.52);
        tick.lineTo(box.left() + s * 0.43, box.top() + s * 0.68);
        tick.lineTo(box.left() + s * 0.74, box.top() + s * 0.33);
        QPen pen(Qt::white, s / 8.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
        p.setPen(pen);
        p.setBrush(Qt::NoBrush);
        p.drawPath(tick);
    } else {
        QPainterPath triangle;
        triangle.moveTo(box.center().x(), box.top() + s * 0.04);
        triangle.lineTo(box.right(), box.bottom() - s * 0.06);
        triangle.lineTo(box.left(), box.bottom() - s * 0.06);
        triangle.closeSubpath();
        p.setPen(QPen(Qt::white, s / 16.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.setBrush(QColor(0xf0, 0x6a, 0x00));
        p.drawPath(triangle);
        QPen bar(Qt::white, s / 9.0, Qt::SolidLine, Qt::RoundCap);
        p.setPen(bar);
        const qreal cx = box.center().x();
        p.drawLine(QPointF(cx, box.top() + s * 0.36), QPointF(cx, box.top() + s * 0.64));
        p.drawPoint(QPointF(cx, box.top() + s * 0.79));
    }
}

// ---------------------------------------------------------------------------

TileArrow::TileArrow(Direction direction, QWidget* parent) : QWidget(parent), m_direction(direction)
{
    setCursor(Qt::PointingHandCursor);
}

void TileArrow::setActive(bool active)
{
    if (m_active == active)
        return;
    m_active = active;
    update();
}

void TileArrow::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF r = QRectF(rect()).adjusted(1, 1, -1, -1);
    p.setPen(Qt::NoPen);
    p.setBrush(m_active ? TileColours::Selected : TileColours::Shadow);
    p.drawRoundedRect(r, 4, 4);
    QPainterPath arrow;
    const qreal cx = r.center().x(), w = r.width() * 0.30, h = r.height() * 0.18;
    const qreal cy = r.center().y();
    if (m_direction == Up) {
        arrow.moveTo(cx, cy - h);
        arrow.lineTo(cx + w, cy + h);
        arrow.lineTo(cx - w, cy + h);
    } else {
        arrow.moveTo(cx, cy + h);
        arrow.lineTo(cx + w, cy - h);
        arrow.lineTo(cx - w, cy - h);
    }
    arrow.closeSubpath();
    p.setBrush(Qt::white);
    p.drawPath(arrow);
}

void TileArrow::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        emit clicked();
}

// ---------------------------------------------------------------------------

TileNameLabel::TileNameLabel(int maxLines, QWidget* parent) : QLabel(parent), m_maxLines(qMax(1, maxLines))
{
}

void TileNameLabel::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.setPen(palette().color(foregroundRole()));
    const QFontMetricsF fm(font());
    const QString text = this->text();
    const qreal width = contentsRect().width();
    qreal y = contentsRect().top();
    QTextLayout layout(text, font());
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    int lines = 0;
    while (lines < m_maxLines) {
        QTextLine line = layout.createLine();
        if (!line.isValid())
            break;
        line.setLineWidth(width);
        ++lines;
        const bool last = lines == m_maxLines;
        const int end = line.textStart() + line.textLength();
        if (last && end < text.size()) {
            // The rest of the name does not fit: the last line ends with "…".
            const QString rest = text.mid(line.textStart());
            p.drawText(QPointF(contentsRect().left(), y + fm.ascent()),
                       fm.elidedText(rest, Qt::ElideRight, width));
        } else {
            p.drawText(QPointF(contentsRect().left(), y + fm.ascent()),
                       text.mid(line.textStart(), line.textLength()).trimmed());
        }
        y += fm.lineSpacing();
    }
    layout.endLayout();
}
