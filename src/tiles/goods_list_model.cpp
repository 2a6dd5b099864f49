#include "tiles/goods_list_model.h"
#include "host/record_keys.h"
#include "orderdata/line_picking_state.h"
#include "host/host_error.h"
#include "host/platform.h"
#include "tiles/goods_view.h"
#include "tiles/tile_pictures.h"
#include <cmath>
#include <limits>

namespace {

const QString kOkShow = QStringLiteral("OkShow");
const QString kWarningShow = QStringLiteral("WarningShow");
const QString kVisible = QStringLiteral("Visible");

// The error a control array gives for an element that was never loaded.
constexpr long NoSuchTile = 340;

constexpr int RowPitch = GoodsView::TileHeight + GoodsListModel::TileGap;
constexpr int ColumnPitch = GoodsView::TileWidth + GoodsListModel::TileGap;

// A stored id (number or text) against a number: equal when it reads as that number.
bool sameNumber(const QVariant& stored, qint64 number)
{
    // Ids straight from the database are integers: no text needed for them.
    switch (stored.typeId()) {
    case QMetaType::Int:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
        return stored.toLongLong() == number;
    default:
        break;
    }
    bool ok = false;
    const QString text = stored.toString().trimmed();
    const qint64 value = text.toLongLong(&ok);
    if (ok)
        return value == number;
    const double d = text.toDouble(&ok);
    return ok && d == double(number);
}

void addMissing(GoodsRecord& record, const QString& key, const QVariant& value)
{
    if (!record.Exists(key))
        record.SetValue(key, value);
}

QString orderCondition(const QString& code)
{
    if (IsNumeric(code))
        return QStringLiteral(" Where t2.FUniqueCode ='") + code + QStringLiteral("' OR t2.FLogisticsOrder ='")
            + code + QStringLiteral("'");
    return QStringLiteral(" Where t2.FLogisticsOrder ='") + code + QStringLiteral("'");
}

// The joins the two web-order statements share, without table hints.
QString webOrderJoins()
{
    return QStringLiteral(" from IC_Web2ERPOrdersEntry t1 ")
        + QStringLiteral(" INNER Join IC_Web2ERPOrders t2 on t1.FID=t2.FID AND t2.FOrderStatus = 6 ")
        + QStringLiteral(" LEFT Join t_ICItem t3 on t1.FItemID =t3.FItemID ")
        + QStringLiteral(" LEFT Join t_Accessory t4 on t1.FItemID=t4.FItemID ");
}

} // namespace

GoodsListModel::GoodsListModel() = default;

qint32 GoodsListModel::toInt32(const QVariant& value)
{
    if (!value.isValid() || value.isNull())
        return 0;
    double number = 0;
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool() ? -1 : 0;
    case QMetaType::Int:
        return value.toInt();
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
        number = double(value.toLongLong());
        break;
    case QMetaType::Double:
    case QMetaType::Float:
        number = value.toDouble();
        break;
    default: {
        const QString text = value.toString().trimmed();
        if (text.isEmpty())
            return 0;
        bool ok = false;
        const qint64 whole = text.toLongLong(&ok);
        if (ok) {
            number = double(whole);
        } else {
            number = text.toDouble(&ok);
            if (!ok || !std::isfinite(number))
                throw HostError(HostErrors::TypeMismatch, QStringLiteral("Type mismatch"));
        }
    }
    }
    // Half to even, as the host's integer conversion rounds.
    const double rounded = std::nearbyint(number);
    if (!(rounded >= double(std::numeric_limits<qint32>::min()) && rounded <= double(std::numeric_limits<qint32>::max())))
        throw HostError(HostErrors::Overflow, QStringLiteral("Overflow"));
    return qint32(rounded);
}

// ---------------------------------------------------------------------------
// lines

int GoodsListModel::addGoods(const GoodsRecord& record)
{
    GoodsRecord line = record;
    // Read everything first: a bad value leaves neither a record nor a tile behind.
    GoodsTileState t;
    t.goodsId = line.GetValue(RecordKeys::GoodsID).toString();
    t.entryId = line.GetValue(RecordKeys::FEntryID).toString();
    t.name = line.GetValue(RecordKeys::GoodsName).toString();
    t.url = line.GetValue(RecordKeys::GoodsURL).toString();
    t.orderCnt = toInt32(line.GetValue(RecordKeys::GoodsOrderCnt));
    t.checkedCnt = toInt32(line.GetValue(RecordKeys::GoodsCheckedCnt));
    t.okShow = line.GetValue(kOkShow, false).toBool();
    t.warningShow = line.GetValue(kWarningShow, false).toBool();
    // Only the existence test here; decoding waits until the tile is in view.
    const QString picture = line.GetValue(RecordKeys::GoodsPicture).toString();
    if (TilePictures::fileExists(picture))
        t.pendingPicture = picture;

    addMissing(line, RecordKeys::GoodsCheckedCnt, 0);
    addMissing(line, RecordKeys::GoodsPicture, QString());
    addMissing(line, RecordKeys::GoodsURL, QString());
    addMissing(line, kOkShow, false);
    addMissing(line, kWarningShow, false);
    addMissing(line, kVisible, true);
    m_records.Add(line);
    m_tiles.push_back(std::move(t));
    placeTile(count() - 1);
    return count() - 1;
}

void GoodsListModel::removeGoods(int index)
{
    if (!hasLine(index))
        return;
    m_records.Remove(index);
    m_tiles.erase(m_tiles.begin() + index);
}

void GoodsListModel::clear()
{
    m_records.Clear();
    m_tiles.clear();
}

GoodsRecord GoodsListModel::record(int index) const
{
    if (index < 0 || index > m_records.UpperBound())
        return GoodsRecord::none();
    return m_records.Item(index);
}

bool GoodsListModel::hasLine(int index) const
{
    return index >= 0 && index <= m_records.UpperBound() && index <= highestTileIndex();
}

void GoodsListModel::refreshFromRecord(int index)
{
    if (!hasLine(index))
        return;
    const GoodsRecord line = m_records.Item(index);
    const qint32 orderCnt = toInt32(line.GetValue(RecordKeys::GoodsOrderCnt));
    const qint32 checkedCnt = toInt32(line.GetValue(RecordKeys::GoodsCheckedCnt));
    GoodsTileState& t = m_tiles[size_t(index)];
    t.name = line.GetValue(RecordKeys::GoodsName).toString();
    t.url = line.GetValue(RecordKeys::GoodsURL).toString();
    t.orderCnt = orderCnt;
    t.checkedCnt = checkedCnt;
}

// ---------------------------------------------------------------------------
// counts

void GoodsListModel::requireTile(int index) const
{
    if (index < 0 || index > highestTileIndex())
        throw HostError(NoSuchTile, QStringLiteral("Control array element '%1' doesn't exist").arg(index));
}

void GoodsListModel::setCheckedCnt(int index, qint32 count)
{
    requireTile(index);
    // The tile first, then the line it shows.
    m_tiles[size_t(index)].checkedCnt = count;
    if (index <= m_records.UpperBound())
        m_records.Item(index).SetValue(RecordKeys::GoodsCheckedCnt, count);
}

void GoodsListModel::setOkShow(int index, bool show)
{
    requireTile(index);
    m_tiles[size_t(index)].okShow = show;
    if (index <= m_records.UpperBound())
        m_records.Item(index).SetValue(kOkShow, show);
}

void GoodsListModel::setWarningShow(int index, bool show)
{
    requireTile(index);
    m_tiles[size_t(index)].warningShow = show;
    if (index <= m_records.UpperBound())
        m_records.Item(index).SetValue(kWarningShow, show);
}

void GoodsListModel::PickingGoods(int index)
{
    // Only the upper bounds are tested; a negative index has no tile.
    if (index > m_records.UpperBound() || index > highestTileIndex())
        return;
    requireTile(index);
    const qint32 checked = m_tiles[size_t(index)].checkedCnt;
    if (checked == std::numeric_limits<qint32>::max())
        throw HostError(HostErrors::Overflow, QStringLiteral("Overflow"));
    setCheckedCnt(index, checked + 1);
}

qint32 GoodsListModel::GetExcessCnt(int index) const
{
    if (index > highestTileIndex() || index > m_records.UpperBound())
        return 0;
    requireTile(index);
    const GoodsTileState& t = m_tiles[size_t(index)];
    return t.checkedCnt > t.orderCnt ? t.checkedCnt - t.orderCnt : 0;
}

qint32 GoodsListModel::GetPickedCnt(int index) const
{
    if (index > highestTileIndex() || index > m_records.UpperBound())
        return 0;
    requireTile(index);
    const GoodsTileState& t = m_tiles[size_t(index)];
    return t.checkedCnt < t.orderCnt ? t.checkedCnt : t.orderCnt;
}

void GoodsListModel::ClearCheckedCnt(int index)
{
    if (index > m_records.UpperBound() || index > highestTileIndex())
        return;
    setCheckedCnt(index, 0);
}

qint16 GoodsListModel::IsPicked(int index)
{
    requireTile(index);
    const GoodsTileState& t = m_tiles[size_t(index)];
    if (t.checkedCnt < t.orderCnt)
        return 0;
    if (t.checkedCnt == t.orderCnt) {
        // The alter mark of an earlier excess stays until someone clears it.
        setOkShow(index, true);
        return 1;
    }
    setOkShow(index, false);
    setWarningShow(index, true);
    return 2;
}

// ---------------------------------------------------------------------------
// keyed tables

void GoodsListModel::GetCheckCnt(GoodsRecord& table) const
{
    for (int i = 0; i < count(); ++i)
        table.Add(QString::number(i), m_tiles[size_t(i)].checkedCnt);
}

void GoodsListModel::SetCheckCnt(const GoodsRecord& table)
{
    // A gap in the keys ends the restore: only the lines before it come back.
    for (int i = 0;; ++i) {
        const QString key = QString::number(i);
        if (!table.Exists(key) || i > highestTileIndex())
            return;
        setCheckedCnt(i, toInt32(table.GetValue(key)));
    }
}

void GoodsListModel::GetCheckCntNew(GoodsRecord& lineStates) const
{
    CaptureLineStates(m_records, lineStates);
}

void GoodsListModel::SetCheckCntNew(const GoodsRecord& lineStates)
{
    RestoreLineStates(m_records, lineStates);
    // The tiles show the restored counts, with the marks they call for.
    for (int i = 0; i < count(); ++i) {
        refreshFromRecord(i);
        const GoodsTileState& t = m_tiles[size_t(i)];
        setOkShow(i, t.checkedCnt == t.orderCnt);
        setWarningShow(i, t.checkedCnt > t.orderCnt);
    }
}

// ---------------------------------------------------------------------------
// look-ups

bool GoodsListModel::GoodsIDExists(const QString& goodsId) const
{
    for (int i = m_records.LowerBound(); i <= m_records.UpperBound(); ++i) {
        if (m_records.Item(i).GetValue(RecordKeys::GoodsID).toString() == goodsId)
            return true;
    }
    return false;
}

qint32 GoodsListModel::GetGoodsIndex(const QString& goodsId) const
{
    if (goodsId.trimmed().isEmpty())
        return -2;
    // Compared as given, untrimmed.
    for (int i = m_records.LowerBound(); i <= m_records.UpperBound(); ++i) {
        if (m_records.Item(i).GetValue(RecordKeys::GoodsID).toString() == goodsId)
            return i;
    }
    return -1;
}

qint32 GoodsListModel::GetGoodsIndexNew(const QString& goodsId, qint32 entryId) const
{
    if (goodsId.trimmed().isEmpty())
        return -2;
    for (int i = m_records.LowerBound(); i <= m_records.UpperBound(); ++i) {
        const GoodsRecord line = m_records.Item(i);
        if (line.GetValue(RecordKeys::GoodsID).toString() == goodsId && sameNumber(line.GetValue(RecordKeys::FEntryID), entryId))
            return i;
    }
    return -1;
}

int GoodsListModel::findLine(qint32 goodsId, qint32 entryId) const
{
    for (int i = m_records.LowerBound(); i <= m_records.UpperBound(); ++i) {
        const GoodsRecord line = m_records.Item(i);
        if (sameNumber(line.GetValue(RecordKeys::GoodsID), goodsId) && sameNumber(line.GetValue(RecordKeys::FEntryID), entryId))
            return i;
    }
    return -1;
}

bool GoodsListModel::lineMatches(int index, qint32 goodsId, qint32 entryId) const
{
    if (index < 0 || index > m_records.UpperBound())
        return false;
    const GoodsRecord line = m_records.Item(index);
    return sameNumber(line.GetValue(RecordKeys::GoodsID), goodsId) && sameNumber(line.GetValue(RecordKeys::FEntryID), entryId);
}

// ---------------------------------------------------------------------------
// selection and arrangement

void GoodsListModel::setColumnCount(int columns)
{
    m_columns = columns < 1 ? 1 : columns;
}

void GoodsListModel::setRowCountFromLines()
{
    const int n = count();
    m_rowCount = n <= m_columns ? 1 : (n + m_columns - 1) / m_columns;
}

void GoodsListModel::placeTile(int index)
{
    GoodsTileState& t = m_tiles[size_t(index)];
    // Rows above the top row get negative tops and fall out of view.
    const int row = index / m_columns - m_topRow;
    const int column = index % m_columns;
    t.left = ColumnPitch * column;
    t.top = RowPitch * row;
}

void GoodsListModel::arrange(int selectedIndex)
{
    if (m_records.UpperBound() < 0)
        return;
    const int selected = selectedIndex < 0 ? GetGoodsIndex(m_selectedGoodsId) : selectedIndex;
    const int last = qMin(m_records.UpperBound(), highestTileIndex());
    for (int i = m_records.LowerBound(); i <= last; ++i) {
        m_tiles[size_t(i)].selected = (i == selected);
        placeTile(i);
    }
}

void GoodsListModel::placeTiles()
{
    for (int i = 0; i < count(); ++i)
        placeTile(i);
}

void GoodsListModel::selectOnly(int index)
{
    for (int i = 0; i < count(); ++i)
        m_tiles[size_t(i)].selected = (i == index);
}

int GoodsListModel::selectedIndex() const
{
    for (int i = 0; i < count(); ++i) {
        if (m_tiles[size_t(i)].selected)
            return i;
    }
    return -1;
}

int GoodsListModel::topRowShowing(int row, int visibleRows) const
{
    const int rows = visibleRows < 1 ? 1 : visibleRows;
    if (row < m_topRow)
        return row;
    if (row >= m_topRow + rows)
        return row - rows + 1;
    return m_topRow;
}

int GoodsListModel::rowPitch() { return RowPitch; }
int GoodsListModel::columnPitch() { return ColumnPitch; }

// ---------------------------------------------------------------------------
// statements

QString GoodsListModel::webOrderGoodsSql(const QString& code)
{
    return QStringLiteral("Select t1.FItemID,t3.FName as FItemName,sum(t1.FQuantity) as FQuantity,t4.FID as FPicID  ")
        + webOrderJoins() + orderCondition(code) + QStringLiteral("\r\n")
        + QStringLiteral("group by t2.FOrderStatus, t3.FBarcode , t2.FLogisticsOrder,t2.FLogisticsComp, t1.FItemID,t3.FName ,t4.FID  ");
}

QString GoodsListModel::webOrderEntryGoodsSql(const QString& code)
{
    return QStringLiteral("Select t1.FItemID,t1.FEntryID,t3.FName as FItemName,t1.FQuantity FQuantity,t4.FID as FPicID  ")
        + webOrderJoins() + orderCondition(code) + QStringLiteral("\r\n")
        + QStringLiteral("order by t1.FEntryID ");
}

QString GoodsListModel::goodsIndexByBarCodeSql(const QString& barCode)
{
    const QString crlf = QStringLiteral("\r\n");
    return QStringLiteral("select  t3.FBarCode ,t1.FItemID  ")
        + QStringLiteral(" from IC_Web2ERPOrdersEntry t1 ")
        + QStringLiteral(" INNER Join IC_Web2ERPOrders t2 on t1.FID=t2.FID ")
        + QStringLiteral(" left join t_Barcode t3 on t1.FItemID=t3.FItemID ")
        + QStringLiteral(" LEFT Join t_Accessory t4 on t1.FItemID=t4.FItemID ")
        + QStringLiteral(" where t3.FBarCode  ='") + barCode + QStringLiteral("'")
        + QStringLiteral(" AND NOT EXISTS (SELECT 1") + crlf
        + QStringLiteral("FROM    IC_GoodsToMateriel t6") + crlf
        + QStringLiteral("INNER JOIN t_ICItem t7 ON t6.FMaterielCode = t7.FNumber") + crlf
        + QStringLiteral("WHERE t6.FIsPriceChange = 1 And t7.FItemID = t1.FItemID") + crlf
        + QStringLiteral("AND t6.FWebshopID = t2.FWebshopID)") + crlf;
}
