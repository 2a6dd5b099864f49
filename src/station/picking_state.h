#pragma once
// What the station knows of the order it checks, without a widget: the order
// code, the four pick counters, the session log of verdicts and its keys, and
// the rules that count units and judge an order. The form shows it; the form
// alone changes it.
#include "host/goods_record.h"
#include "host/record_list.h"
#include "station/verdict.h"
#include <QString>

// A record's value as a whole number: 0 when it is missing, NULL or no number
// (a header's flags and a log entry's counters read so).
qint64 RecordNumber(const GoodsRecord& record, const QString& key);

class PickingState {
public:
    // The order code of no order: a refused scan loads it, so the views empty.
    static const QString NoOrderMark;   // "+"

    PickingState();

    // --- The order on the station ---
    const QString& CurrentOrderCode() const { return m_currentOrderCode; }
    void setCurrentOrderCode(const QString& code) { m_currentOrderCode = code; }
    // Neither "" (nothing scanned yet) nor "+" (refused).
    bool hasOrder() const;
    // The last code the order scan took; re-pick falls back to it after "+".
    const QString& lastOrderCode() const { return m_lastOrderCode; }
    void setLastOrderCode(const QString& code) { m_lastOrderCode = code; }

    // --- The pick counters ---
    qint32 pickedNum() const { return m_pickedNum; }
    qint32 missingNum() const { return m_missingNum; }
    qint32 excessNum() const { return m_excessNum; }
    qint32 errorNum() const { return m_errorNum; }
    void clearCounters();
    // A fresh load starts the picked count at 0 before the reset of the rest.
    void clearPicked() { m_pickedNum = 0; }
    // A restored order: picked is what its lines hold (pickedOnLines).
    void setPickedNum(qint32 picked) { m_pickedNum = picked; }

    // --- Flags of the order scan ---
    bool restoredFromLog() const { return m_restoredFromLog; }
    // On for an order restored from the session log: its missing count then
    // follows every counted unit, as its log line is already there.
    bool recomputeMissing() const { return m_recomputeMissing; }
    // An order loaded fresh: nothing restored, nothing recomputed.
    void startFresh();
    // An order comes back from the session log: its missing count follows
    // every counted unit from now on.
    void markRestored();

    // --- Counting rules of the goods scan ---
    // One unit counted on a line that was short: true when it completes an
    // order of `total` units (a total of 0 never completes).
    bool countUnit(qint32 total);
    void countExcessUnit() { ++m_excessNum; }
    void countWrongGoods(qint32 quantity) { m_errorNum += quantity; }
    // A typed quantity replaces what its line had counted: the line's excess
    // and picked units are taken back first.
    void takeBackExcess(qint32 lineExcess) { m_excessNum -= lineExcess; }
    void takeBackPicked(qint32 linePicked) { m_pickedNum -= linePicked; }

    // --- Verdicts ---
    // The pass check: picked reached the total and equals the total shown,
    // which must be above 0.
    bool passed(qint32 total, qint32 shown) const;
    // The order being left: its missing count becomes what the total still
    // lacks, 0 when it passed. True when it passed.
    bool leaveOrder(qint32 total, qint32 shown);
    // The verdict of the counters now; a complete order passes whatever
    // happened on the way to it.
    VerdictText verdict(const QString& code, bool complete) const;

    // --- The session log: one entry per order checked since the station opened ---
    const RecordList& SessionOrderLog() const { return m_sessionOrderLog; }
    const GoodsRecord& SessionOrderKeys() const { return m_sessionOrderKeys; }
    // The list and the record of the middle-tier call arguments.
    const RecordList& argumentList() const { return m_argList; }
    GoodsRecord& argumentRecord() { return m_argRecord; }
    bool wasChecked(const QString& code) const;
    // False once the station has released its lists at close.
    bool logOpen() const { return !m_sessionOrderLog.isNone(); }
    bool logHasEntries() const { return logOpen() && m_sessionOrderLog.Count() >= 1; }
    // The first entry of an order, or none (re-pick may have taken it away).
    GoodsRecord entryOf(const QString& code) const;
    // Writes a verdict and the counters into the order's entry, made when
    // missing; `shown` is the verdict as the log shows it. Nothing while closing.
    void logVerdict(const QString& code, const QString& shown, bool success);
    // Keeps every line's picking state with the order's entry, so the order
    // can come back as it was left.
    void keepLineCounts(const QString& code, const GoodsRecord& counts);
    // Re-pick: the order's last entry goes; its code stays in the keys.
    // True when an entry was removed.
    bool removeEntry(const QString& code);
    // An order checked earlier comes back: its excess, wrong and missing
    // counts are those of its entry.
    void restoreCounters(const GoodsRecord& entry);
    // Picked is what the lines hold up to their ordered counts; the rest was excess.
    static qint32 pickedOnLines(const RecordList& lines);

    // --- A session taken up again from its journal ---
    // The log entries and the codes checked, as the journal kept them.
    void restoreSession(const RecordList& log, const QStringList& keys);
    // The codes checked since the station opened, in the order they came.
    QStringList checkedCodes() const { return m_sessionOrderKeys.isNone() ? QStringList() : m_sessionOrderKeys.Keys(); }

    // Close: the argument list goes when the worker chose to close, the
    // session log with the station.
    void releaseArgumentList() { m_argList = RecordList::none(); }
    void release();

private:
    GoodsRecord sessionEntry(const QString& code);

    QString m_currentOrderCode;
    QString m_lastOrderCode;
    qint32 m_pickedNum = 0, m_missingNum = 0, m_excessNum = 0, m_errorNum = 0;
    bool m_restoredFromLog = false;
    bool m_recomputeMissing = false;
    RecordList m_sessionOrderLog;       // LogEntry records
    GoodsRecord m_sessionOrderKeys;     // codes checked since the station opened
    RecordList m_argList;
    GoodsRecord m_argRecord;
};
