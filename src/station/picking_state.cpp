#include "station/picking_state.h"
#include "host/record_keys.h"

const QString PickingState::NoOrderMark = QStringLiteral("+");

qint64 RecordNumber(const GoodsRecord& record, const QString& key)
{
    const QVariant value = record.GetValue(key, 0);
    if (value.isNull())
        return 0;
    bool ok = false;
    const double number = value.toString().trimmed().toDouble(&ok);
    return ok ? qint64(number) : 0;
}

PickingState::PickingState() = default;

bool PickingState::hasOrder() const
{
    return !m_currentOrderCode.isEmpty() && m_currentOrderCode != NoOrderMark;
}

void PickingState::clearCounters()
{
    m_pickedNum = m_missingNum = m_excessNum = m_errorNum = 0;
}

void PickingState::startFresh()
{
    m_restoredFromLog = false;
    m_recomputeMissing = false;
}

bool PickingState::countUnit(qint32 total)
{
    ++m_pickedNum;
    if (m_recomputeMissing)
        m_missingNum = total - m_pickedNum;
    return total >= 1 && m_pickedNum == total;
}

bool PickingState::passed(qint32 total, qint32 shown) const
{
    return shown > 0 && m_pickedNum >= total && m_pickedNum == shown;
}

bool PickingState::leaveOrder(qint32 total, qint32 shown)
{
    const bool orderPassed = passed(total, shown);
    m_missingNum = orderPassed ? 0 : total - m_pickedNum;
    return orderPassed;
}

VerdictText PickingState::verdict(const QString& code, bool complete) const
{
    return complete ? ComposeVerdict(code, 0, 0, 0) : ComposeVerdict(code, m_excessNum, m_missingNum, m_errorNum);
}

bool PickingState::wasChecked(const QString& code) const
{
    return !m_sessionOrderKeys.isNone() && m_sessionOrderKeys.Exists(code);
}

GoodsRecord PickingState::entryOf(const QString& code) const
{
    for (int i = 0; logOpen() && i < m_sessionOrderLog.Count(); ++i) {
        const GoodsRecord entry = m_sessionOrderLog.Item(i);
        if (entry.GetValue(RecordKeys::ID).toString() == code)
            return entry;
    }
    return GoodsRecord::none();
}

GoodsRecord PickingState::sessionEntry(const QString& code)
{
    GoodsRecord entry = entryOf(code);
    if (!entry.isNone())
        return entry;
    entry = GoodsRecord();
    entry.SetValue(RecordKeys::ID, code);
    entry.SetValue(QStringLiteral("PickedNum"), QVariant::fromValue(GoodsRecord()));
    m_sessionOrderLog.Add(entry);
    return entry;
}

void PickingState::logVerdict(const QString& code, const QString& shown, bool success)
{
    if (!logOpen())
        return;   // the station is closing
    GoodsRecord entry = sessionEntry(code);
    entry.SetValue(QStringLiteral("ExcessNum"), m_excessNum);
    entry.SetValue(QStringLiteral("MissingNum"), m_missingNum);
    entry.SetValue(QStringLiteral("ErrorNum"), m_errorNum);
    entry.SetValue(RecordKeys::bSuccess, success);
    entry.SetValue(RecordKeys::log, shown);
    if (!m_sessionOrderKeys.Exists(code))
        m_sessionOrderKeys.Add(code, code);
}

void PickingState::keepLineCounts(const QString& code, const GoodsRecord& counts)
{
    if (logOpen())
        sessionEntry(code).SetValue(QStringLiteral("PickedNum"), QVariant::fromValue(counts));
}

bool PickingState::removeEntry(const QString& code)
{
    for (int i = m_sessionOrderLog.UpperBound(); i >= m_sessionOrderLog.LowerBound(); --i) {
        if (m_sessionOrderLog.Item(i).GetValue(RecordKeys::ID).toString() == code) {
            m_sessionOrderLog.Remove(i);
            return true;
        }
    }
    return false;
}

void PickingState::markRestored()
{
    m_restoredFromLog = true;
    m_recomputeMissing = true;
}

void PickingState::restoreCounters(const GoodsRecord& entry)
{
    m_excessNum = qint32(RecordNumber(entry, QStringLiteral("ExcessNum")));
    m_errorNum = qint32(RecordNumber(entry, QStringLiteral("ErrorNum")));
    m_missingNum = qint32(RecordNumber(entry, QStringLiteral("MissingNum")));
}

qint32 PickingState::pickedOnLines(const RecordList& lines)
{
    qint32 picked = 0;
    for (int i = 0; !lines.isNone() && i < lines.Count(); ++i) {
        const GoodsRecord line = lines.Item(i);
        picked += qint32(qMin(RecordNumber(line, RecordKeys::GoodsCheckedCnt), RecordNumber(line, RecordKeys::GoodsOrderCnt)));
    }
    return picked;
}

void PickingState::restoreSession(const RecordList& log, const QStringList& keys)
{
    if (!logOpen())
        return;
    m_sessionOrderLog.Clear();
    for (int i = 0; !log.isNone() && i < log.Count(); ++i)
        m_sessionOrderLog.Add(log.Item(i));
    m_sessionOrderKeys.Clear();
    for (const QString& code : keys)
        if (!m_sessionOrderKeys.Exists(code))
            m_sessionOrderKeys.Add(code, code);
}

void PickingState::release()
{
    m_sessionOrderLog = RecordList::none();
    m_argList = RecordList::none();
}
