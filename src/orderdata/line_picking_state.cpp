#include "orderdata/line_picking_state.h"
#include "host/record_keys.h"
#include <QVariant>

namespace {

const char* const kStateKeys[] = {"GoodsCheckedCnt", "GoodsPickCnt", "FSeriNum", "FSerialID", "FKFPeriod", "FKFDate"};

} // namespace

QString LineIdentity(const GoodsRecord& line)
{
    return line.GetValue(RecordKeys::GoodsID, QString()).toString() + QLatin1Char('/')
        + line.GetValue(RecordKeys::FEntryID, QString()).toString();
}

void CaptureLineStates(const RecordList& lines, GoodsRecord& states)
{
    if (lines.isNone() || states.isNone())
        return;
    for (int i = lines.LowerBound(); i <= lines.UpperBound(); ++i) {
        const GoodsRecord line = lines.Item(i);
        GoodsRecord state;
        for (const char* key : kStateKeys) {
            const QString k = QString::fromLatin1(key);
            if (line.Exists(k))
                state.SetValue(k, line.GetValue(k));
        }
        states.SetValue(LineIdentity(line), QVariant::fromValue(state));
    }
}

int RestoreLineStates(const RecordList& lines, const GoodsRecord& states)
{
    if (lines.isNone() || states.isNone())
        return 0;
    int restored = 0;
    for (int i = lines.LowerBound(); i <= lines.UpperBound(); ++i) {
        GoodsRecord line = lines.Item(i);
        const QVariant stored = states.GetValue(LineIdentity(line));
        if (!stored.canConvert<GoodsRecord>())
            continue;
        const GoodsRecord state = stored.value<GoodsRecord>();
        if (state.isNone())
            continue;
        for (int k = 0; k < state.Count(); ++k)
            line.SetValue(state.KeyAt(k), state.ValueAt(k));
        ++restored;
    }
    return restored;
}
