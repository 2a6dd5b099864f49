#include "grid/goods_text_model.h"
#include "host/record_keys.h"
#include <QtGlobal>
#include <cmath>
#include <limits>
#include <vector>

namespace {

QString idText(const GoodsRecord& line, const char* key)
{
    return line.GetValue(QString::fromLatin1(key), QStringLiteral("0")).toString();
}

bool sameGoods(const GoodsRecord& line, qint32 goodsId)
{
    return GoodsTextModel::wholeNumber(line.GetValue(RecordKeys::GoodsID, 0)) == goodsId;
}

bool sameEntry(const GoodsRecord& line, qint32 entryId)
{
    return GoodsTextModel::wholeNumber(line.GetValue(RecordKeys::FEntryID, 0)) == entryId;
}

qint64 checked(const GoodsRecord& line)
{
    return GoodsTextModel::wholeNumber(line.GetValue(RecordKeys::GoodsCheckedCnt, 0));
}

qint64 ordered(const GoodsRecord& line)
{
    return GoodsTextModel::wholeNumber(line.GetValue(RecordKeys::GoodsOrderCnt, 0));
}

qint32 toLong(qint64 value)
{
    return qint32(qBound(qint64(std::numeric_limits<qint32>::min()), value, qint64(std::numeric_limits<qint32>::max())));
}

} // namespace

GoodsRecord GoodsTextModel::line(int index) const
{
    if (!hasList() || index < 0 || index > m_list.UpperBound())
        return GoodsRecord::none();
    return m_list.Item(index);
}

qint64 GoodsTextModel::wholeNumber(const QVariant& value)
{
    if (!value.isValid() || value.isNull())
        return 0;
    bool ok = false;
    double d = 0;
    // Numbers read straight; their text would read back as the same double.
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
        d = double(value.toLongLong());
        ok = true;
        break;
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        d = double(value.toULongLong());
        ok = true;
        break;
    case QMetaType::Double:
        d = value.toDouble();
        ok = true;
        break;
    default:
        d = value.toString().trimmed().toDouble(&ok);
        break;
    }
    if (!ok || !std::isfinite(d))
        return 0;
    // Counts are whole numbers; an odd fraction rounds like the classic runtime does.
    return qint64(std::nearbyint(qBound(-9.0e18, d, 9.0e18)));
}

QString GoodsTextModel::rowKey(const GoodsRecord& line)
{
    return idText(line, "GoodsID") + idText(line, "FEntryID");
}

GoodsRecord GoodsTextModel::firstLine(qint32 goodsId) const
{
    for (int i = 0; i <= upperBound(); ++i) {
        const GoodsRecord g = m_list.Item(i);
        if (sameGoods(g, goodsId))
            return g;
    }
    return GoodsRecord::none();
}

GoodsRecord GoodsTextModel::lineOf(qint32 goodsId, qint32 entryId) const
{
    for (int i = 0; i <= upperBound(); ++i) {
        const GoodsRecord g = m_list.Item(i);
        if (sameGoods(g, goodsId) && sameEntry(g, entryId))
            return g;
    }
    return GoodsRecord::none();
}

int GoodsTextModel::indexOf(qint32 goodsId) const
{
    for (int i = 0; i <= upperBound(); ++i) {
        if (sameGoods(m_list.Item(i), goodsId))
            return i;
    }
    return -1;
}

int GoodsTextModel::indexOf(qint32 goodsId, qint32 entryId) const
{
    for (int i = 0; i <= upperBound(); ++i) {
        const GoodsRecord g = m_list.Item(i);
        if (sameGoods(g, goodsId) && sameEntry(g, entryId))
            return i;
    }
    return -1;
}

qint32 GoodsTextModel::addOne(GoodsRecord& line)
{
    const qint32 count = toLong(checked(line) + 1);
    line.SetValue(RecordKeys::GoodsCheckedCnt, count);
    return count;
}

qint16 GoodsTextModel::status(const GoodsRecord& line)
{
    const qint64 p = checked(line);
    const qint64 o = ordered(line);
    if (p < o)
        return Short;
    return p == o ? Complete : Excess;
}

qint32 GoodsTextModel::pickedCnt(const GoodsRecord& line)
{
    return toLong(qMin(checked(line), ordered(line)));
}

qint32 GoodsTextModel::excessCnt(const GoodsRecord& line)
{
    const qint64 p = checked(line);
    const qint64 o = ordered(line);
    return p > o ? toLong(p - o) : 0;
}

qint16 GoodsTextModel::IsPicked(qint32 goodsId) const
{
    const int i = indexOf(goodsId);
    return i < 0 ? qint16(Short) : status(m_list.Item(i));
}

qint16 GoodsTextModel::IsPickedNew(qint32 goodsId, qint32 entryId) const
{
    const int i = indexOf(goodsId, entryId);
    return i < 0 ? qint16(Short) : status(m_list.Item(i));
}

qint32 GoodsTextModel::GetPickedCnt(qint32 goodsId) const
{
    if (!hasList() || upperBound() < 0 || goodsId == 0)
        return 0;
    const GoodsRecord g = firstLine(goodsId);
    return g.isNone() ? 0 : pickedCnt(g);
}

qint32 GoodsTextModel::GetExcessCnt(qint32 goodsId) const
{
    if (!hasList() || upperBound() < 0 || goodsId == 0)
        return 0;
    const GoodsRecord g = firstLine(goodsId);
    return g.isNone() ? 0 : excessCnt(g);
}

qint32 GoodsTextModel::GetPickedCntNew(qint32 goodsId, qint32 entryId) const
{
    if (goodsId == 0)
        return 0;
    const GoodsRecord g = lineOf(goodsId, entryId);
    return g.isNone() ? 0 : pickedCnt(g);
}

qint32 GoodsTextModel::GetExcessCntNew(qint32 goodsId, qint32 entryId) const
{
    if (goodsId == 0)
        return 0;
    const GoodsRecord g = lineOf(goodsId, entryId);
    return g.isNone() ? 0 : excessCnt(g);
}

qint32 GoodsTextModel::GetGoodsIndex(const QString& goodsId) const
{
    if (goodsId.trimmed().isEmpty())
        return -2;
    for (int i = 0; i <= upperBound(); ++i) {
        if (idText(m_list.Item(i), "GoodsID") == goodsId)
            return i;
    }
    return -1;
}

qint16 GoodsTextModel::knownStatus(const GoodsRecord& line)
{
    auto it = m_known.find(line.identity());
    if (it != m_known.end() && it->second.version == line.version())
        return it->second.status;
    const qint16 s = status(line);
    // The entry holds the line, so its address is never another line's.
    m_known.insert_or_assign(line.identity(), KnownStatus{line, line.version(), s});
    return s;
}

void GoodsTextModel::setList(const RecordList& list)
{
    m_list = list;
    m_known.clear();
}

void GoodsTextModel::partitionUnfinishedFirst()
{
    if (upperBound() < 0)
        return;
    std::vector<GoodsRecord> copy;
    std::vector<bool> unfinished;
    copy.reserve(size_t(m_list.Count()));
    unfinished.reserve(size_t(m_list.Count()));
    // Lines of an order loaded since are no use any more.
    if (m_known.size() > 2 * size_t(m_list.Count()) + 16)
        m_known.clear();
    for (int i = 0; i <= m_list.UpperBound(); ++i) {
        copy.push_back(m_list.Item(i));
        unfinished.push_back(knownStatus(copy.back()) == Short);
    }
    // Emptied and refilled in place: the tile view and the scan hold this same set.
    m_list.Clear();
    for (size_t i = 0; i < copy.size(); ++i) {
        if (unfinished[i])
            m_list.Add(copy[i]);
    }
    for (size_t i = 0; i < copy.size(); ++i) {
        if (!unfinished[i])
            m_list.Add(copy[i]);
    }
}
