#include "grid/goods_text_view.h"
#include "host/error_reporter.h"
#include "host/host_error.h"
#include "host/platform.h"
#include "host/record_keys.h"
#include "orderdata/line_picking_state.h"
#include "orderdata/order_goods.h"
#include "session/language.h"
#include <QAbstractButton>
#include <QHBoxLayout>
#include <QHash>
#include <QHeaderView>
#include <QStyleOptionHeader>
#include <QLabel>
#include <QPainter>
#include <QResizeEvent>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <QTableWidget>
#include <cmath>
#include <exception>
#include <limits>

namespace {

struct ColumnDef {
    const char* title;   // UTF-8
    int widthTwips;
    Qt::Alignment align;
};

// Grid columns 1..6; column 0 is the row-number column.
const ColumnDef kColumns[] = {
    {"商品名称", 2900, Qt::AlignLeft | Qt::AlignVCenter},
    {"商品条码", 1242, Qt::AlignCenter},
    {"规格型号", 1442, Qt::AlignCenter},
    {"商品数量", 850, Qt::AlignCenter},
    {"已拣数量", 850, Qt::AlignCenter},
    {"序列号管理", 1012, Qt::AlignCenter},
};

constexpr int kRowHeightTwips = 560;
constexpr int kKeyRole = Qt::UserRole;

const QColor kBlack(0, 0, 0);
const QColor kGreen(0x00, 0x80, 0x00);   // 32768
const QColor kRed(0xFF, 0x00, 0x00);     // 255

QColor colourOf(qint16 status)
{
    switch (status) {
    case GoodsTextModel::Short: return kBlack;
    case GoodsTextModel::Complete: return kGreen;
    default: return kRed;
    }
}

// Grid row r shows the set's r-th line.
GoodsRecord lineOfRow(const RecordList& list, int row)
{
    return list.Item(list.LowerBound() + row - 1);
}

constexpr int kDataPointSize = 15;
constexpr int kTitlePointSize = 11;

QString lookUp(const char* text)
{
    return LoadString(QString::fromUtf8(text));
}

// Number cells: no decimals, never below 0 nor above a Long.
QString numberCellText(const QVariant& value)
{
    bool ok = false;
    const double d = value.toString().trimmed().toDouble(&ok);
    if (!ok)
        return QString();
    return QString::number(qint64(qBound(0.0, std::nearbyint(d), 2147483647.0)));
}

// The row keeps its green or red text when selected, and counts are bold,
// so a worker reads the state of the highlighted line from a step away.
class GoodsCellDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        const QVariant fg = index.data(Qt::ForegroundRole);
        if (fg.canConvert<QBrush>())
            option->palette.setBrush(QPalette::HighlightedText, fg.value<QBrush>());
        const int gridCol = index.column() + 1;
        if (gridCol == GoodsTextView::ColOrderCnt || gridCol == GoodsTextView::ColCheckedCnt)
            option->font.setBold(true);
        // A barcode too long for its column keeps its last digits, the ones a worker compares.
        if (gridCol == GoodsTextView::ColBarCode)
            option->textElideMode = Qt::ElideLeft;
    }
};

// The row numbers take their row's colour. The header hands that colour to
// the style in a palette made afresh for every section it paints, and the
// style keys its cached section pictures by palette: every paint added a new
// picture and a new key. One palette per colour keeps the keys the same.
class RowNumberHeader : public QHeaderView {
public:
    using QHeaderView::QHeaderView;

protected:
    void initStyleOptionForIndex(QStyleOptionHeader* option, int logicalIndex) const override
    {
        QHeaderView::initStyleOptionForIndex(option, logicalIndex);
        // A section's palette is the header's with its text (and background)
        // brushes: the same brushes, the same palette.
        QString key = QString::number(palette().cacheKey());
        for (QPalette::ColorRole role : {QPalette::ButtonText, QPalette::Button, QPalette::Window}) {
            const QBrush& brush = option->palette.brush(role);
            if (brush.style() != Qt::SolidPattern)
                return;
            key += QLatin1Char(':') + QString::number(brush.color().rgba(), 16);
        }
        auto it = m_palettes.constFind(key);
        if (it == m_palettes.constEnd()) {
            if (m_palettes.size() > 64)
                m_palettes.clear();
            it = m_palettes.insert(key, option->palette);
        }
        option->palette = *it;
    }

private:
    mutable QHash<QString, QPalette> m_palettes;
};

// Keeps the grid hidden from repaints while many cells change at once.
class UpdatesOff {
public:
    explicit UpdatesOff(QTableWidget* grid) : m_grid(grid), m_was(grid->updatesEnabled())
    {
        m_grid->setUpdatesEnabled(false);
    }
    ~UpdatesOff() { m_grid->setUpdatesEnabled(m_was); }
    UpdatesOff(const UpdatesOff&) = delete;
    UpdatesOff& operator=(const UpdatesOff&) = delete;

private:
    QTableWidget* m_grid;
    bool m_was;
};

} // namespace

// A refresh changes many cells at once: the model keeps quiet cell by cell
// (each cell's notice would re-measure the row header), and the rows that
// changed are repainted together afterwards, when they are in view.
class GoodsTextView::QuietRows {
public:
    explicit QuietRows(GoodsTextView& view) : m_view(view), m_blocker(view.m_grid->model())
    {
        m_view.m_quiet = this;
    }
    ~QuietRows()
    {
        m_view.m_quiet = nullptr;
        m_blocker.unblock();
        if (m_last < m_first)
            return;
        QTableWidget* grid = m_view.m_grid;
        const int top = grid->rowViewportPosition(m_first - 1);
        const int bottom = grid->rowViewportPosition(m_last - 1) + grid->rowHeight(m_last - 1);
        const QRect band(0, top, grid->viewport()->width(), bottom - top);
        if (band.intersects(grid->viewport()->rect()))
            grid->viewport()->update(band);
        QWidget* header = grid->verticalHeader()->viewport();
        const QRect headerBand(0, top, header->width(), bottom - top);
        if (headerBand.intersects(header->rect()))
            header->update(headerBand);
    }
    QuietRows(const QuietRows&) = delete;
    QuietRows& operator=(const QuietRows&) = delete;

    void changed(int row)
    {
        m_first = qMin(m_first, row);
        m_last = qMax(m_last, row);
    }

private:
    GoodsTextView& m_view;
    QSignalBlocker m_blocker;
    int m_first = std::numeric_limits<int>::max();
    int m_last = 0;
};

namespace {

} // namespace

GoodsTextView::GoodsTextView(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("GoodsTextView"));
    m_grid = new QTableWidget(this);
    m_grid->setObjectName(QStringLiteral("fpGoods"));
    setUpGrid();
    layOut();
    connect(m_grid, &QTableWidget::cellClicked, this,
            [this](int tableRow, int tableCol) { fpGoodsClick(tableCol + 1, tableRow + 1); });
    connect(m_grid->verticalHeader(), &QHeaderView::sectionClicked, this,
            [this](int tableRow) { fpGoodsClick(ColNumber, tableRow + 1); });
}

GoodsTextView::~GoodsTextView() = default;

void GoodsTextView::setUpGrid()
{
    m_grid->setVerticalHeader(new RowNumberHeader(Qt::Vertical, m_grid));
    // The columns are fixed in twips, the font is not: each font is the
    // largest, up to kDataPointSize, whose text shows whole in its column (a
    // cell draws inside the column less the grid line and a margin on either
    // side). The data font is sized to a 13-digit barcode; the counts keep a
    // font of their own, large and bold, for four digits.
    const int cellMargins = 2 * (m_grid->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, m_grid) + 1) + 1;
    const auto fitted = [cellMargins](QFont font, const QString& text, int columnTwips) {
        font.setPointSizeF(kDataPointSize);
        while (font.pointSizeF() > 6
               && std::ceil(QFontMetricsF(font).horizontalAdvance(text)) + cellMargins > TwipsToPixels(columnTwips))
            font.setPointSizeF(font.pointSizeF() - 0.5);
        return font;
    };
    const QFont dataFont = fitted(m_grid->font(), QStringLiteral("6931000010086"), kColumns[ColBarCode - 1].widthTwips);
    m_grid->setFont(dataFont);
    QFont countFont = dataFont;
    countFont.setBold(true);
    countFont = fitted(countFont, QStringLiteral("8888"), kColumns[ColOrderCnt - 1].widthTwips);
    class CountCellDelegate : public GoodsCellDelegate {
    public:
        CountCellDelegate(const QFont& font, QObject* parent) : GoodsCellDelegate(parent), m_font(font) {}

    protected:
        void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
        {
            GoodsCellDelegate::initStyleOption(option, index);
            option->font = m_font;
            option->fontMetrics = QFontMetrics(m_font);
        }

    private:
        QFont m_font;
    };
    for (int col : {int(ColOrderCnt), int(ColCheckedCnt)})
        m_grid->setItemDelegateForColumn(col - 1, new CountCellDelegate(countFont, m_grid));

    m_grid->setColumnCount(0);
    m_grid->setRowCount(0);
    m_grid->setSortingEnabled(false);
    // Clicks still select rows; the keyboard stays with the scan fields, where the scanner types.
    m_grid->setFocusPolicy(Qt::NoFocus);
    m_grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_grid->setSelectionMode(QAbstractItemView::SingleSelection);
    m_grid->setWordWrap(false);
    m_grid->setTextElideMode(Qt::ElideRight);
    m_grid->setAlternatingRowColors(true);
    m_grid->setItemDelegate(new GoodsCellDelegate(m_grid));

    QPalette pal = m_grid->palette();
    pal.setColor(QPalette::Base, QColor(0xFF, 0xFF, 0xFF));
    pal.setColor(QPalette::AlternateBase, QColor(0xEE, 0xF2, 0xF7));
    pal.setColor(QPalette::Highlight, QColor(0xFF, 0xE0, 0x8A));
    pal.setColor(QPalette::HighlightedText, kBlack);
    pal.setColor(QPalette::Inactive, QPalette::Highlight, QColor(0xFF, 0xE0, 0x8A));
    pal.setColor(QPalette::Inactive, QPalette::HighlightedText, kBlack);
    m_grid->setPalette(pal);

    QFont titleFont = dataFont;
    titleFont.setPointSize(kTitlePointSize);
    titleFont.setBold(true);

    QHeaderView* top = m_grid->horizontalHeader();
    top->setFont(titleFont);
    top->setSectionsClickable(false);
    top->setHighlightSections(false);
    top->setSectionResizeMode(QHeaderView::Fixed);
    top->setDefaultAlignment(Qt::Alignment(Qt::AlignCenter) | Qt::Alignment(Qt::TextWordWrap));
    top->setStretchLastSection(false);

    QHeaderView* side = m_grid->verticalHeader();
    side->setFont(titleFont);
    side->setSectionResizeMode(QHeaderView::Fixed);
    side->setDefaultSectionSize(TwipsToPixels(kRowHeightTwips));
    side->setMinimumSectionSize(1);
    side->setDefaultAlignment(Qt::Alignment(Qt::AlignCenter));
    side->setHighlightSections(true);

    // Column 0's title sits in the grid's corner, above the row numbers.
    m_cornerTitle = new QLabel(lookUp("序号"));
    m_cornerTitle->setObjectName(QStringLiteral("fpGoodsCornerTitle"));
    m_cornerTitle->setFont(titleFont);
    m_cornerTitle->setAlignment(Qt::AlignCenter);
    m_cornerTitle->setAttribute(Qt::WA_TransparentForMouseEvents);
    if (auto* corner = m_grid->findChild<QAbstractButton*>()) {
        auto* box = new QHBoxLayout(corner);
        box->setContentsMargins(0, 0, 0, 0);
        box->addWidget(m_cornerTitle);
    } else {
        m_cornerTitle->setParent(m_grid);
    }
    side->setMinimumWidth(QFontMetrics(titleFont).horizontalAdvance(m_cornerTitle->text()) + 12);

    for (int c = 1; c < ColumnCount; ++c) {
        const ColumnDef& def = kColumns[c - 1];
        m_grid->setColumnCount(c);
        m_grid->setColumnWidth(c - 1, TwipsToPixels(def.widthTwips));
        m_grid->setHorizontalHeaderItem(c - 1, new QTableWidgetItem(lookUp(def.title)));
    }
    // Two title lines where a title is wider than its column.
    top->setFixedHeight(2 * QFontMetrics(titleFont).height() + 8);
}

void GoodsTextView::layOut()
{
    const int w = width();
    const int h = height();
    if (w < 1 || h < 1)
        return;
    m_grid->setGeometry(0, 0, w - 1, h - 1);
}

void GoodsTextView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    layOut();
}

QTableWidgetItem* GoodsTextView::cell(int row, int col) const
{
    if (row < 1 || row > m_grid->rowCount() || col < ColNumber || col >= ColumnCount)
        return nullptr;
    return col == ColNumber ? m_grid->verticalHeaderItem(row - 1) : m_grid->item(row - 1, col - 1);
}

void GoodsTextView::forgetRowStates()
{
    m_rowStates.assign(size_t(qMax(0, m_grid->rowCount())), RowState());
}

GoodsTextView::RowState& GoodsTextView::rowState(int row)
{
    if (m_rowStates.size() != size_t(qMax(0, m_grid->rowCount())))
        forgetRowStates();
    return m_rowStates[size_t(row - 1)];
}

bool GoodsTextView::rowShows(int row, const GoodsRecord& line)
{
    const RowState& state = rowState(row);
    return state.filled && state.line.sameRecord(line) && state.version == line.version();
}

void GoodsTextView::fillRow(int row, const GoodsRecord& line)
{
    bool created = false;
    const auto text = [&line](const char* key, const char* fallback) {
        return line.GetValue(QString::fromLatin1(key), QString::fromLatin1(fallback)).toString();
    };
    const auto put = [this, row, &created](int col, const QString& value, const QVariant& tag = QVariant()) {
        QTableWidgetItem* item = cell(row, col);
        if (!item) {
            created = true;
            item = new QTableWidgetItem;
            item->setForeground(kBlack);
            // Every cell is locked: the grid only shows.
            item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
            item->setTextAlignment(col == ColNumber ? Qt::Alignment(Qt::AlignCenter) : kColumns[col - 1].align);
            if (col == ColNumber)
                m_grid->setVerticalHeaderItem(row - 1, item);
            else
                m_grid->setItem(row - 1, col - 1, item);
        }
        item->setText(value);
        if (tag.isValid())
            item->setData(kKeyRole, tag);
    };

    // The row key lives beside the row, not in the row-number cell: a tag
    // written there makes the grid look the header cell up among all rows.
    const QString key = GoodsTextModel::rowKey(line);
    put(ColNumber, QString::number(row));
    rowState(row).key = key;
    put(ColName, text("GoodsName", ""), text("GoodsID", "0"));
    put(ColBarCode, text("GoodsBarCode", ""));
    put(ColModel, text("FModel", ""));
    put(ColOrderCnt, numberCellText(line.GetValue(RecordKeys::GoodsOrderCnt, QStringLiteral("0"))));
    put(ColCheckedCnt, numberCellText(line.GetValue(RecordKeys::GoodsCheckedCnt, QStringLiteral("0"))));
    const bool serial = GoodsTextModel::wholeNumber(line.GetValue(RecordKeys::FSerialClassID, 0)) != 0;
    put(ColSerial, serial ? QStringLiteral("Y") : QString());

    RowState& state = rowState(row);
    state.line = line;
    state.version = line.version();
    state.filled = true;
    if (created)
        state.colour = QColor();
    if (m_quiet)
        m_quiet->changed(row);
}

void GoodsTextView::paintRow(int row, const QColor& color)
{
    RowState& state = rowState(row);
    if (state.colour.isValid() && state.colour == color)
        return;
    bool whole = true;
    for (int col = ColNumber; col < ColumnCount; ++col) {
        if (QTableWidgetItem* item = cell(row, col))
            item->setForeground(color);
        else
            whole = false;
    }
    state.colour = whole ? color : QColor();
    if (m_quiet)
        m_quiet->changed(row);
}

void GoodsTextView::setCountCell(int row, const QVariant& count)
{
    if (QTableWidgetItem* item = cell(row, ColCheckedCnt)) {
        item->setText(numberCellText(count));
        rowState(row).filled = false;
    }
}

void GoodsTextView::setActiveRow(int row)
{
    if (row >= 1 && row <= m_grid->rowCount())
        m_grid->setCurrentCell(row - 1, ColName - 1);
}

void GoodsTextView::select(const GoodsRecord& line, qint32 goodsId)
{
    SetCurrentGoodsID(QString::number(goodsId));
    emit GoodsSelected(line);
}

// --- Loading ---------------------------------------------------------------

void GoodsTextView::LoadPickingGoods()
{
    ReportingErrors(this, [this] {
        const RecordList list = GetGoodsLineSet();
        if (list.isNone())
            return;
        m_model.setList(list);
        // Row r shows the set's r-th line.
        const int n = list.Count();
        {
            UpdatesOff off(m_grid);
            m_grid->setRowCount(n);
            forgetRowStates();
            for (int r = 1; r <= n; ++r) {
                fillRow(r, lineOfRow(list, r));
                paintRow(r, kBlack);
            }
        }
        if (n >= 1) {
            const GoodsRecord first = lineOfRow(list, 1);
            SetCurrentGoodsID(first.GetValue(RecordKeys::GoodsID, QStringLiteral("0")).toString());
            setActiveRow(1);
            emit GoodsSelected(first);
        }
    });
}

void GoodsTextView::ClearGoods()
{
    m_grid->setRowCount(0);
    forgetRowStates();
}

void GoodsTextView::RefreshGoods()
{
    ReportingErrors(this, [this] {
        const GoodsRecord current = CurrentGoodsLine();
        const QVariant itemId = current.isNone() ? QVariant(QStringLiteral("0"))
                                                 : current.GetValue(RecordKeys::FItemID, QStringLiteral("0"));
        refresh(false, qint32(GoodsTextModel::wholeNumber(itemId)), 0);
    });
}

void GoodsTextView::RefreshGoodsNew(qint32 goodsId, qint32 entryId)
{
    ReportingErrors(this, [this, goodsId, entryId] { refresh(true, goodsId, entryId); });
}

void GoodsTextView::refresh(bool withEntry, qint32 goodsId, qint32 entryId)
{
    if (m_model.upperBound() < 0)
        return;
    m_model.partitionUnfinishedFirst();
    const RecordList list = m_model.list();
    const int rows = qMin(int(list.Count()), m_grid->rowCount());
    GoodsRecord selected = GoodsRecord::none();
    {
        QuietRows quiet(*this);
        // Only the rows whose line moved or was written are rewritten; a row
        // that shows its line as it is now would get the same texts again.
        for (int r = 1; r <= rows; ++r) {
            const GoodsRecord line = lineOfRow(list, r);
            if (!rowShows(r, line))
                fillRow(r, line);
        }
        // Without a current goods the refresh ends with the refill, colours as they were.
        if (rows < 1 || goodsId <= 0)
            return;
        SetCurrentGoodsID(QString::number(goodsId));
        for (int r = 1; r <= rows; ++r) {
            const GoodsRecord line = lineOfRow(list, r);
            const bool match = selected.isNone()
                && GoodsTextModel::wholeNumber(line.GetValue(RecordKeys::GoodsID, 0)) == goodsId
                && (!withEntry || GoodsTextModel::wholeNumber(line.GetValue(RecordKeys::FEntryID, 0)) == entryId);
            if (match) {
                selected = line;
                setActiveRow(r);
            }
            paintRow(r, colourOf(m_model.knownStatus(line)));
        }
    }
    if (!selected.isNone())
        emit GoodsSelected(selected);
}

// --- Counting --------------------------------------------------------------

int GoodsTextView::rowOfWholeKey(qint32 goodsId) const
{
    for (int r = 1; r <= m_grid->rowCount(); ++r) {
        const QString key = rowKey(r);
        if (!key.isEmpty() && GoodsTextModel::wholeNumber(key) == goodsId)
            return r;
    }
    return 0;
}

int GoodsTextView::rowOfKey(const QString& key) const
{
    for (int r = 1; r <= m_grid->rowCount(); ++r) {
        if (rowKey(r) == key)
            return r;
    }
    return 0;
}

void GoodsTextView::PickingGoods(qint32 goodsId)
{
    if (goodsId == 0 || !m_model.hasList())
        return;
    GoodsRecord line = m_model.firstLine(goodsId);
    if (line.isNone())
        return;
    const qint32 count = GoodsTextModel::addOne(line);
    // The row key is goods id and entry id run together, read whole against
    // the bare goods id: ordinary rows never match, and the cell waits for the
    // next refresh. Kept as the grid has always counted; PickingGoodsNew is
    // the call that keeps the cell in step.
    if (const int r = rowOfWholeKey(goodsId))
        setCountCell(r, count);
}

void GoodsTextView::PickingGoodsNew(qint32 goodsId, qint32 entryId)
{
    if (goodsId == 0 || !m_model.hasList())
        return;
    GoodsRecord line = m_model.lineOf(goodsId, entryId);
    if (line.isNone())
        return;
    const qint32 count = GoodsTextModel::addOne(line);
    if (const int r = rowOfKey(QString::number(goodsId) + QString::number(entryId)))
        setCountCell(r, count);
}

qint16 GoodsTextView::IsPicked(qint32 goodsId) const { return m_model.IsPicked(goodsId); }

qint16 GoodsTextView::IsPickedNew(qint32 goodsId, qint32 entryId) const
{
    return m_model.IsPickedNew(goodsId, entryId);
}

qint32 GoodsTextView::GetPickedCnt(qint32 goodsId) const { return m_model.GetPickedCnt(goodsId); }

qint32 GoodsTextView::GetExcessCnt(qint32 goodsId) const { return m_model.GetExcessCnt(goodsId); }

void GoodsTextView::ClearCheckedCnt(qint32 goodsId)
{
    if (goodsId == 0 || !m_model.hasList())
        return;
    // Same whole-key reading as PickingGoods: kept so both find the same row.
    if (const int r = rowOfWholeKey(goodsId))
        setCountCell(r, 0);
    GoodsRecord line = m_model.firstLine(goodsId);
    if (!line.isNone())
        line.SetValue(RecordKeys::GoodsCheckedCnt, 0);
}

qint32 GoodsTextView::GetPickedCntNew(qint32 goodsId, qint32 entryId) const
{
    return m_model.GetPickedCntNew(goodsId, entryId);
}

qint32 GoodsTextView::GetExcessCntNew(qint32 goodsId, qint32 entryId) const
{
    return m_model.GetExcessCntNew(goodsId, entryId);
}

void GoodsTextView::ClearCheckedCntNew(qint32 goodsId, qint32 entryId)
{
    if (goodsId == 0 || !m_model.hasList())
        return;
    GoodsRecord line = m_model.lineOf(goodsId, entryId);
    if (line.isNone())
        return;
    line.SetValue(RecordKeys::GoodsCheckedCnt, 0);
    if (const int r = rowOfKey(GoodsTextModel::rowKey(line)))
        setCountCell(r, 0);
}

qint32 GoodsTextView::GetGoodsIndex(const QString& goodsId) const { return m_model.GetGoodsIndex(goodsId); }

void GoodsTextView::SelectedGoodsByID(qint32 goodsId)
{
    if (goodsId <= 0 || !m_model.hasList())
        return;
    const GoodsRecord line = m_model.firstLine(goodsId);
    if (!line.isNone())
        select(line, goodsId);
}

void GoodsTextView::SelectedGoodsByIDNew(qint32 goodsId, qint32 entryId)
{
    if (goodsId <= 0 || !m_model.hasList())
        return;
    const GoodsRecord line = m_model.lineOf(goodsId, entryId);
    if (line.isNone())
        return;
    SetCurrentEntryID(QString::number(entryId));
    select(line, goodsId);
}

void GoodsTextView::SetCheckCntNew(const GoodsRecord& lineStates)
{
    if (lineStates.isNone() || !m_model.hasList())
        return;
    const RecordList list = m_model.list();
    RestoreLineStates(list, lineStates);
    // Every row shows its line's count again, in the colour of its progress.
    QuietRows quiet(*this);
    const int rows = qMin(int(list.Count()), m_grid->rowCount());
    for (int r = 1; r <= rows; ++r) {
        const GoodsRecord line = lineOfRow(list, r);
        fillRow(r, line);
        paintRow(r, colourOf(m_model.knownStatus(line)));
    }
}

void GoodsTextView::GetCheckCntNew(const GoodsRecord& lineStates) const
{
    if (m_model.upperBound() < 0)
        return;
    GoodsRecord states = lineStates;
    CaptureLineStates(m_model.list(), states);
}

// --- Click -----------------------------------------------------------------

void GoodsTextView::fpGoodsClick(int col, int row)
{
    Q_UNUSED(col);
    ReportingErrors(this, [this, row] {
        if (row == 0)
            return;
        const QString tag = rowGoodsTag(row);
        if (tag.isEmpty())
            return;
        const qint64 id = GoodsTextModel::wholeNumber(tag);
        if (id <= 0 || id > std::numeric_limits<qint32>::max())
            return;
        const GoodsRecord line = m_model.firstLine(qint32(id));
        if (!line.isNone())
            select(line, qint32(id));
    });
}

// --- Read access -----------------------------------------------------------

int GoodsTextView::rowCount() const { return m_grid->rowCount(); }

QString GoodsTextView::cellText(int row, int col) const
{
    const QTableWidgetItem* item = cell(row, col);
    return item ? item->text() : QString();
}

QString GoodsTextView::rowKey(int row) const
{
    if (!cell(row, ColNumber) || m_rowStates.size() != size_t(m_grid->rowCount()))
        return QString();
    return m_rowStates[size_t(row - 1)].key;
}

QString GoodsTextView::rowGoodsTag(int row) const
{
    const QTableWidgetItem* item = cell(row, ColName);
    return item ? item->data(kKeyRole).toString() : QString();
}

QColor GoodsTextView::rowColor(int row) const
{
    const QTableWidgetItem* item = cell(row, ColName);
    return item ? item->foreground().color() : QColor();
}

bool GoodsTextView::rowColorUniform(int row) const
{
    const QColor c = rowColor(row);
    for (int col = ColNumber; col < ColumnCount; ++col) {
        const QTableWidgetItem* item = cell(row, col);
        if (!item || item->foreground().color() != c)
            return false;
    }
    return true;
}

int GoodsTextView::activeRow() const
{
    const int r = m_grid->currentRow();
    return r < 0 ? 0 : r + 1;
}

QString GoodsTextView::columnTitle(int col) const
{
    if (col == ColNumber)
        return m_cornerTitle->text();
    const QTableWidgetItem* item = col > 0 && col < ColumnCount ? m_grid->horizontalHeaderItem(col - 1) : nullptr;
    return item ? item->text() : QString();
}
