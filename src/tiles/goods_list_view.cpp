#include "tiles/goods_list_view.h"
#include "host/error_reporter.h"
#include "host/host_error.h"
#include "host/object_factory.h"
#include "host/platform.h"
#include "host/record_keys.h"
#include "orderdata/goods_pictures.h"
#include "orderdata/order_goods.h"
#include "session/host_session.h"
#include "tiles/goods_view.h"
#include "tiles/tile_parts.h"
#include "tiles/tile_pictures.h"
#include <QResizeEvent>
#include <QScrollBar>
#include <QWheelEvent>
#include <exception>

namespace {

constexpr int AreaMargin = 120;     // room for the selected frame of the first row/column
constexpr int SideWidth = 420;      // the column of ImgUp, VScMain and ImgDown

QRect toPixels(const QRect& twips)
{
    const int left = TwipsToPixels(twips.x());
    const int top = TwipsToPixels(twips.y());
    return QRect(left, top, TwipsToPixels(twips.x() + twips.width()) - left,
                 TwipsToPixels(twips.y() + twips.height()) - top);
}

} // namespace

GoodsListView::GoodsListView(QWidget* parent) : QWidget(parent)
{
    m_area = new QWidget(this);
    m_area->setObjectName(QStringLiteral("PicTiles"));
    m_area->setAutoFillBackground(true);
    QPalette pal = m_area->palette();
    pal.setColor(QPalette::Window, QColor(0xee, 0xf0, 0xf3));
    m_area->setPalette(pal);

    VScMain = new QScrollBar(Qt::Vertical, this);
    VScMain->setObjectName(QStringLiteral("VScMain"));
    VScMain->setRange(0, 0);
    ImgUp = new TileArrow(TileArrow::Up, this);
    ImgUp->setObjectName(QStringLiteral("ImgUp"));
    ImgDown = new TileArrow(TileArrow::Down, this);
    ImgDown->setObjectName(QStringLiteral("ImgDown"));

    connect(VScMain, &QScrollBar::valueChanged, this, [this](int value) {
        if (!m_syncingScroll)
            setScrollTop(value, true);
    });
    connect(ImgUp, &TileArrow::clicked, this, &GoodsListView::scrollUp);
    connect(ImgDown, &TileArrow::clicked, this, &GoodsListView::scrollDown);

    TilePictures::reserveTiles(0, GoodsView::imgMainPixelSize(false));
    // Tile 0 exists from the start, as the first line's tile.
    m_free.push_back(takeTile());
    m_free.back()->hide();

    resize(TwipsToPixels(3 * GoodsListModel::columnPitch() + AreaMargin + SideWidth + 60),
           TwipsToPixels(2 * GoodsListModel::rowPitch() + AreaMargin));
    layoutChildren();
    syncScrollRange();
}

GoodsListView::~GoodsListView() = default;

// ---------------------------------------------------------------------------
// loading

void GoodsListView::LoadPickingGoods()
{
    ReportingErrors(this, [this] {
        const RecordList set = GetGoodsLineSet();
        if (set.isNone() || set.UpperBound() < set.LowerBound())
            return;
        clearLines();
        setScrollTop(0, false);
        try {
            for (int i = set.LowerBound(); i <= set.UpperBound(); ++i)
                addLine(set.Item(i));
        } catch (...) {
            showPartialLoad();
            throw;
        }
        m_model.setRowCountFromLines();
        finishLoading();
    });
}

void GoodsListView::LoadWebOrderGoods(const GoodsRecord& set)
{
    loadWebOrder(set, false);
}

void GoodsListView::LoadWebOrderGoodsNew(const GoodsRecord& set)
{
    bool perEntry = false;
    if (!set.isNone() && set.Exists(QStringLiteral("ScanMode"))) {
        try {
            perEntry = GoodsListModel::toInt32(set.GetValue(QStringLiteral("ScanMode"))) != 0;
        } catch (const HostError&) {
            perEntry = set.GetValue(QStringLiteral("ScanMode")).toBool();
        }
    }
    loadWebOrder(set, perEntry);
}

void GoodsListView::loadWebOrder(const GoodsRecord& set, bool perEntry)
{
    if (set.isNone() || !set.Exists(QStringLiteral("PorpsString")) || !set.Exists(QStringLiteral("KeyCode")))
        return;
    ReportingErrors(this, [&] {
        ClearGoods();
        try {
            const QString props = set.GetValue(QStringLiteral("PorpsString")).toString();
            const QString code = set.GetValue(QStringLiteral("KeyCode")).toString();
            auto data = CreateServerObjectAs<IGetData>(ProgIds::GetData);
            const QString sql = perEntry ? GoodsListModel::webOrderEntryGoodsSql(code)
                                         : GoodsListModel::webOrderGoodsSql(code);
            RecordsetPtr rs = data->ExecuteSQL(props, sql);
            while (rs && !rs->isEOF()) {
                GoodsRecord line;
                const QVariant itemId = rs->Fields(RecordKeys::FItemID);
                line.SetValue(RecordKeys::GoodsID, itemId);
                if (perEntry)
                    line.SetValue(RecordKeys::FEntryID, rs->Fields(RecordKeys::FEntryID));
                line.SetValue(RecordKeys::GoodsName, rs->Fields(RecordKeys::FItemName));
                line.SetValue(RecordKeys::GoodsOrderCnt, rs->Fields(RecordKeys::FQuantity));
                line.SetValue(RecordKeys::GoodsCheckedCnt, 0);
                const QVariant picId = rs->Fields(RecordKeys::FPicID);
                if (!picId.isNull() && IsNumeric(picId.toString())) {
                    const QString item = itemId.toString();
                    if (WriteGoodsPicture(props, GoodsListModel::toInt32(picId), item))
                        line.SetValue(RecordKeys::GoodsPicture, PictureTempFolder() + QStringLiteral("Tmp_") + item);
                }
                addLine(line);
                rs->MoveNext();
            }
        } catch (...) {
            showPartialLoad();
            throw;
        }
        m_model.setRowCountFromLines();
        finishLoading();
    });
}

int GoodsListView::addLine(const GoodsRecord& record)
{
    const int index = m_model.addGoods(record);
    m_lineWidget.push_back(nullptr);
    return index;
}

int GoodsListView::AddGoods(const GoodsRecord& record)
{
    const int index = addLine(record);
    m_model.setRowCountFromLines();
    syncScrollRange();
    // Only a tile that lands in view needs a widget now.
    const int row = m_model.rowOf(index) - m_model.topRow();
    if (row >= 0 && row <= visibleRows())
        syncTiles();
    return index;
}

void GoodsListView::finishLoading()
{
    TilePictures::reserveTiles(m_model.count(), GoodsView::imgMainPixelSize(false));
    // The first line is the station's current goods until the first scan.
    if (m_model.count() > 0) {
        const GoodsRecord first = m_model.record(0);
        SetCurrentGoodsID(QString::number(GoodsListModel::toInt32(first.GetValue(RecordKeys::GoodsID))));
        selectIndex(0);
    } else {
        syncScrollRange();
        syncTiles();
    }
}

void GoodsListView::showPartialLoad()
{
    // The lines read before the error stay, in place but without a selection.
    m_model.setRowCountFromLines();
    m_model.placeTiles();
    syncScrollRange();
    syncTiles();
}

void GoodsListView::clearLines()
{
    unbindAll();
    m_model.clear();
    m_lineWidget.clear();
    m_model.setRowCountFromLines();
}

void GoodsListView::RemoveGoods(int index)
{
    if (!m_model.hasLine(index))
        return;
    unbindAll();
    m_model.removeGoods(index);
    m_lineWidget.erase(m_lineWidget.begin() + index);
    m_model.setRowCountFromLines();
    m_model.placeTiles();
    syncScrollRange();
    syncTiles();
}

void GoodsListView::ClearGoods()
{
    clearLines();
    setScrollTop(0, true);
}

void GoodsListView::ClearGoodsNew()
{
    TilePictures::reserveTiles(0, GoodsView::imgMainPixelSize(false));
    clearLines();
    m_model.setSelectedGoodsID(QString());
    dropAllTiles();
    setScrollTop(0, true);
}

bool GoodsListView::IsLoadGoods() const { return m_model.count() > 0; }

void GoodsListView::Refresh()
{
    syncTiles();
    update();
}

void GoodsListView::RefreshGoods()
{
    ReportingErrors(this, [this] {
        for (int i = 0; i < m_model.count(); ++i)
            m_model.refreshFromRecord(i);
        m_model.placeTiles();
        syncTiles();
    });
}

void GoodsListView::RefreshGoodsNew(qint32 goodsId, qint32 entryId)
{
    ReportingErrors(this, [&] {
        const int index = m_model.findLine(goodsId, entryId);
        if (index < 0)
            return;
        m_model.refreshFromRecord(index);
        selectIndex(index);
    });
}

// ---------------------------------------------------------------------------
// counts

void GoodsListView::PickingGoods(int index)
{
    m_model.PickingGoods(index);
    syncLine(index);
}

qint32 GoodsListView::GetExcessCnt(int index) const { return m_model.GetExcessCnt(index); }
qint32 GoodsListView::GetPickedCnt(int index) const { return m_model.GetPickedCnt(index); }

void GoodsListView::ClearCheckedCnt(int index)
{
    m_model.ClearCheckedCnt(index);
    syncLine(index);
}

qint16 GoodsListView::IsPicked(int index)
{
    const qint16 status = m_model.IsPicked(index);
    syncLine(index);
    return status;
}

void GoodsListView::GetCheckCnt(GoodsRecord& table) const { m_model.GetCheckCnt(table); }

void GoodsListView::SetCheckCnt(const GoodsRecord& table)
{
    try {
        m_model.SetCheckCnt(table);
    } catch (...) {
        syncTiles();
        throw;
    }
    syncTiles();
}

void GoodsListView::GetCheckCntNew(GoodsRecord& table) const { m_model.GetCheckCntNew(table); }

void GoodsListView::SetCheckCntNew(const GoodsRecord& table)
{
    try {
        m_model.SetCheckCntNew(table);
    } catch (...) {
        syncTiles();
        throw;
    }
    syncTiles();
}

// ---------------------------------------------------------------------------
// look-ups

bool GoodsListView::GoodsIDExists(const QString& goodsId) const { return m_model.GoodsIDExists(goodsId); }
qint32 GoodsListView::GetGoodsIndex(const QString& goodsId) const { return m_model.GetGoodsIndex(goodsId); }

qint32 GoodsListView::GetGoodsIndexNew(const QString& goodsId, qint32 entryId) const
{
    return m_model.GetGoodsIndexNew(goodsId, entryId);
}

qint32 GoodsListView::GetGoodsIndexByBarCode(const QString& orderKey, const QString& barCode)
{
    Q_UNUSED(orderKey);   // the barcode is looked up over every order
    auto data = CreateServerObjectAs<IGetData>(ProgIds::GetData);
    RecordsetPtr rs = data->ExecuteSQL(GetPropsString(), GoodsListModel::goodsIndexByBarCodeSql(barCode));
    QString itemId;
    while (rs && !rs->isEOF()) {
        // The last row read wins.
        itemId = rs->Fields(RecordKeys::FItemID).toString();
        rs->MoveNext();
    }
    return m_model.GetGoodsIndex(itemId);
}

// ---------------------------------------------------------------------------
// selection

void GoodsListView::SelectedGoodsByIndex(qint16 index)
{
    selectIndex(index);
}

void GoodsListView::selectIndex(int index)
{
    if (index < 0 || !m_model.hasLine(index))
        return;
    const GoodsRecord line = m_model.record(index);
    m_model.setSelectedGoodsID(line.GetValue(RecordKeys::GoodsID).toString());
    m_model.arrange(index);
    setScrollTop(0, false);
    bringIntoView(index);
    emit GoodsSelected(line);
}

void GoodsListView::SelectedGoodsSerilNumNew(qint32 goodsId, qint32 entryId)
{
    if (goodsId == 0)
        return;
    int remembered = -1;
    for (int i = 0; i < m_model.count(); ++i) {
        const bool match = m_model.lineMatches(i, goodsId, entryId);
        m_model.tile(i).selected = match;
        // Two matching lines: the later one is the one shown.
        if (match)
            remembered = i;
    }
    if (remembered < 0) {
        syncTiles();
        return;
    }
    const GoodsRecord line = m_model.record(remembered);
    m_model.setSelectedGoodsID(line.GetValue(RecordKeys::GoodsID).toString());
    setScrollTop(0, false);
    m_model.arrange(remembered);
    bringIntoView(remembered);
    emit GoodsSelected(line);
}

qint32 GoodsListView::SelectedGoodsNew(qint32 goodsId, qint32 entryId)
{
    if (goodsId == 0)
        return -2;
    const int index = m_model.findLine(goodsId, entryId);
    if (index >= 0)
        selectIndex(index);
    return index;
}

void GoodsListView::onTileClicked(const QString& goodsId)
{
    ReportingErrors(this, [&] {
        const int index = m_model.GetGoodsIndex(goodsId);
        if (index < 0)
            return;
        const GoodsRecord line = m_model.record(index);
        const QVariant id = line.GetValue(RecordKeys::GoodsID);
        m_model.setSelectedGoodsID(id.toString());
        SetCurrentGoodsID(QString::number(GoodsListModel::toInt32(id)));
        // Selection only: the tiles stay where they are.
        m_model.selectOnly(index);
        syncTiles();
        emit GoodsSelected(line);
    });
}

// ---------------------------------------------------------------------------
// scrolling

void GoodsListView::scrollUp()
{
    if (m_model.canScrollUp())
        setScrollTop(m_model.topRow() - 1, true);
}

void GoodsListView::scrollDown()
{
    if (m_model.canScrollDown())
        setScrollTop(m_model.topRow() + 1, true);
}

void GoodsListView::setColumnCount(int columns)
{
    m_model.setColumnCount(columns);
    m_model.setRowCountFromLines();
    m_model.placeTiles();
    syncScrollRange();
    syncTiles();
}

int GoodsListView::visibleRows() const
{
    // From the control's own height: a hidden control gets its resize event late.
    const int height = PixelsToTwips(this->height()) - AreaMargin + GoodsListModel::TileGap;
    return qMax(1, height / GoodsListModel::rowPitch());
}

void GoodsListView::setScrollTop(int row, bool sync)
{
    m_model.setTopRow(row);
    m_model.placeTiles();
    syncScrollRange();
    if (sync)
        syncTiles();
}

void GoodsListView::bringIntoView(int index)
{
    setScrollTop(m_model.topRowShowing(m_model.rowOf(index), visibleRows()), true);
}

void GoodsListView::syncScrollRange()
{
    m_syncingScroll = true;
    const int top = m_model.topRow();
    VScMain->setRange(0, qMax(0, qMax(m_model.rowCount() - 2, top)));
    // Setting the page step repaints the bar even when it stays the same.
    if (VScMain->pageStep() != visibleRows())
        VScMain->setPageStep(visibleRows());
    VScMain->setValue(top);
    m_syncingScroll = false;
    ImgUp->setActive(m_model.canScrollUp());
    ImgDown->setActive(m_model.canScrollDown());
}

void GoodsListView::wheelEvent(QWheelEvent* event)
{
    const int delta = event->angleDelta().y();
    if (delta > 0)
        scrollUp();
    else if (delta < 0)
        scrollDown();
    event->accept();
}

void GoodsListView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    layoutChildren();
    syncScrollRange();
    syncTiles();
}

void GoodsListView::layoutChildren()
{
    const int w = PixelsToTwips(width());
    const int h = PixelsToTwips(height());
    const int areaWidth = qMax(0, w - SideWidth);
    m_area->setGeometry(toPixels(QRect(0, 0, areaWidth, h)));
    ImgUp->setGeometry(toPixels(QRect(areaWidth, 0, SideWidth, SideWidth)));
    VScMain->setGeometry(toPixels(QRect(areaWidth, SideWidth, SideWidth, qMax(0, h - 2 * SideWidth))));
    ImgDown->setGeometry(toPixels(QRect(areaWidth, qMax(0, h - SideWidth), SideWidth, SideWidth)));
}

// ---------------------------------------------------------------------------
// the tiles in view

GoodsView* GoodsListView::tileWidget(int index) const
{
    if (index < 0 || index >= int(m_lineWidget.size()))
        return nullptr;
    return m_lineWidget[size_t(index)];
}

QString GoodsListView::goodsPictureOf(int index)
{
    if (index < 0 || index >= m_model.count())
        return QString();
    GoodsTileState& t = m_model.tile(index);
    if (!t.pendingPicture.isEmpty()) {
        const QSize size = toPixels(GoodsView::imgMainGeometryFor(t.selected)).size();
        const TilePictures::Resolved r = TilePictures::resolve(t.pendingPicture, size);
        if (r.changed)
            t.picture = r.path;
        t.pendingPicture.clear();
    }
    return t.picture;
}

GoodsView* GoodsListView::takeTile()
{
    if (!m_free.empty()) {
        GoodsView* view = m_free.back();
        m_free.pop_back();
        return view;
    }
    auto* view = new GoodsView(m_area);
    connect(view, &GoodsView::GoodsImageClick, this, &GoodsListView::onTileClicked);
    connect(view, &GoodsView::GoodsNameClick, this, &GoodsListView::onTileClicked);
    m_pool.push_back(view);
    return view;
}

void GoodsListView::unbindAll()
{
    for (GoodsView*& view : m_lineWidget) {
        if (view) {
            view->hide();
            m_free.push_back(view);
            view = nullptr;
        }
    }
}

void GoodsListView::dropAllTiles()
{
    unbindAll();
    for (GoodsView* view : m_pool) {
        view->hide();
        // The click that asked for this may still be running inside a tile.
        view->deleteLater();
    }
    m_pool.clear();
    m_free.clear();
}

void GoodsListView::syncTiles()
{
    const int n = m_model.count();
    const int columns = m_model.columnCount();
    // A part-shown row at the bottom gets its tiles too.
    const int first = m_model.topRow() * columns;
    const int end = qMin(n, (m_model.topRow() + visibleRows() + 1) * columns);
    for (int i = 0; i < int(m_lineWidget.size()); ++i) {
        GoodsView*& view = m_lineWidget[size_t(i)];
        if (view && (i < first || i >= end)) {
            view->hide();
            m_free.push_back(view);
            view = nullptr;
        }
    }
    for (int i = first; i < end; ++i) {
        GoodsView*& view = m_lineWidget[size_t(i)];
        if (!view)
            view = takeTile();
        bindTile(view, i);
        if (!view->isVisible())
            view->show();
    }
}

void GoodsListView::syncLine(int index)
{
    if (GoodsView* view = tileWidget(index))
        bindTile(view, index);
}

void GoodsListView::bindTile(GoodsView* view, int index)
{
    const GoodsTileState& t = m_model.tile(index);
    view->setGoodsID(t.goodsId);
    view->setEntryID(t.entryId);
    view->setGoodsName(t.name);
    view->setGoodsURL(t.url);
    view->setGoodsOrderCnt(t.orderCnt);
    view->setGoodsCheckedCnt(t.checkedCnt);
    view->SetOKVisible(t.okShow);
    view->SetAlterVisible(t.warningShow);
    view->SetSelected(t.selected);
    view->moveTileTo(AreaMargin + t.left, AreaMargin + t.top);
    applyPicture(view, index);
}

void GoodsListView::applyPicture(GoodsView* view, int index)
{
    GoodsTileState& t = m_model.tile(index);
    if (!t.pendingPicture.isEmpty()) {
        // First time in view: decode now, and remember what the tile really loaded.
        view->clearPicture();
        view->setGoodsPicture(t.pendingPicture);
        t.picture = view->GoodsPicture();
        t.pendingPicture.clear();
        return;
    }
    if (view->GoodsPicture() == t.picture)
        return;
    view->clearPicture();
    if (!t.picture.isEmpty())
        view->setGoodsPicture(t.picture);
}
