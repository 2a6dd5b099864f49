// The picking state without a form: how units are counted, how an order is
// judged when it is left, and what the session log keeps of it.
#include "station/picking_state.h"
#include <gtest/gtest.h>

namespace {

const QString kOrder = QStringLiteral("10001");

// Counters as the goods scan leaves them: `picked` units counted on an
// order of `total`, then excess and wrong units.
PickingState stateAfter(qint32 total, qint32 picked, qint32 excess, qint32 wrong)
{
    PickingState state;
    state.setCurrentOrderCode(kOrder);
    for (qint32 i = 0; i < picked; ++i)
        state.countUnit(total);
    for (qint32 i = 0; i < excess; ++i)
        state.countExcessUnit();
    state.countWrongGoods(wrong);
    return state;
}

// Order 10001 as the order set holds it: 1001 x1, 1008 x1, 1014 x2, with
// the checked counts the views keep.
RecordList order10001Lines(int checked1001, int checked1008, int checked1014)
{
    RecordList lines;
    const struct {
        int goods, entry, ordered, checked;
    } rows[] = {{1001, 1, 1, checked1001}, {1008, 2, 1, checked1008}, {1014, 3, 2, checked1014}};
    for (const auto& row : rows) {
        GoodsRecord line;
        line.SetValue(QStringLiteral("FEntryID"), row.entry);
        line.SetValue(QStringLiteral("GoodsID"), QString::number(row.goods));
        line.SetValue(QStringLiteral("GoodsOrderCnt"), row.ordered);
        line.SetValue(QStringLiteral("GoodsCheckedCnt"), row.checked);
        lines.Add(line);
    }
    return lines;
}

} // namespace

TEST(PickingState, LeavingAnOrderJudgesItAgainstTheTotalShown)
{
    struct Case {
        const char* what;
        qint32 total, shown, picked, excess, wrong;
        bool passed;
        qint32 missing;
        const char* verdict;
    };
    const Case cases[] = {
        {"all picked", 4, 4, 4, 0, 0, true, 0, "10001通过   误拣0件"},
        {"one picked", 4, 4, 1, 0, 0, false, 3, "10001异常, , 缺少3件, 误拣0件"},
        {"short with excess", 4, 4, 2, 1, 0, false, 2, "10001异常, 超出1件, 缺少2件, 误拣0件"},
        // Passed counts the order's units only; the verdict still tells the rest.
        {"all picked, excess and wrong goods", 4, 4, 4, 1, 2, true, 0, "10001异常, 超出1件, , 误拣2件"},
        // The options changed since the load: the total now is larger than the one shown.
        {"total grew since the load", 4, 3, 3, 0, 0, false, 1, "10001异常, , 缺少1件, 误拣0件"},
        {"nothing shown", 2, 0, 0, 0, 0, false, 2, "10001异常, , 缺少2件, 误拣0件"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        PickingState state = stateAfter(c.shown, c.picked, c.excess, c.wrong);
        EXPECT_EQ(state.passed(c.total, c.shown), c.passed);
        EXPECT_EQ(state.leaveOrder(c.total, c.shown), c.passed);
        EXPECT_EQ(state.missingNum(), c.missing);
        const VerdictText verdict = state.verdict(kOrder, false);
        EXPECT_EQ(verdict.text, QString::fromUtf8(c.verdict));
        EXPECT_EQ(verdict.success, c.excess == 0 && c.wrong == 0 && c.missing == 0);
    }
}

TEST(PickingState, UnitsCompleteTheOrderAtItsTotalAndARestoredOrderFollowsItsMissingCount)
{
    // Fresh: the missing count is left to the verdict of the leave.
    PickingState fresh;
    fresh.setCurrentOrderCode(kOrder);
    EXPECT_FALSE(fresh.countUnit(3));
    EXPECT_FALSE(fresh.countUnit(3));
    EXPECT_EQ(fresh.missingNum(), 0);
    EXPECT_TRUE(fresh.countUnit(3));
    EXPECT_EQ(fresh.pickedNum(), 3);
    // A unit beyond the total completes nothing, and no total completes never.
    EXPECT_FALSE(fresh.countUnit(3));
    PickingState empty;
    EXPECT_FALSE(empty.countUnit(0));

    // Restored: every unit writes what is still missing.
    PickingState restored = stateAfter(4, 2, 0, 0);
    restored.markRestored();
    EXPECT_TRUE(restored.restoredFromLog());
    EXPECT_FALSE(restored.countUnit(4));
    EXPECT_EQ(restored.missingNum(), 1);
    EXPECT_TRUE(restored.countUnit(4));
    EXPECT_EQ(restored.missingNum(), 0);
    restored.startFresh();
    EXPECT_FALSE(restored.recomputeMissing());
    EXPECT_FALSE(restored.restoredFromLog());

    // A typed quantity takes back what its line had counted, picked and excess.
    PickingState typed = stateAfter(4, 2, 1, 0);
    typed.takeBackExcess(1);
    typed.takeBackPicked(2);
    EXPECT_EQ(typed.pickedNum(), 0);
    EXPECT_EQ(typed.excessNum(), 0);

    // A complete order passes whatever happened on the way to it.
    PickingState complete = stateAfter(4, 4, 1, 2);
    EXPECT_EQ(complete.verdict(kOrder, true).text, QStringLiteral("10001通过   误拣0件"));
    EXPECT_TRUE(complete.verdict(kOrder, true).success);
    EXPECT_FALSE(complete.verdict(kOrder, false).success);
}

TEST(PickingState, TheSessionLogKeepsOneEntryAnOrderAndGivesItBack)
{
    PickingState state = stateAfter(4, 1, 1, 2);
    EXPECT_TRUE(state.hasOrder());
    EXPECT_FALSE(state.wasChecked(kOrder));
    state.leaveOrder(4, 4);
    state.logVerdict(kOrder, state.verdict(kOrder, false).text, false);
    state.logVerdict(kOrder, QStringLiteral("again"), false);
    ASSERT_EQ(state.SessionOrderLog().Count(), 1);
    EXPECT_TRUE(state.wasChecked(kOrder));
    const GoodsRecord entry = state.entryOf(kOrder);
    ASSERT_FALSE(entry.isNone());
    EXPECT_EQ(entry.GetValue(QStringLiteral("log")).toString(), QStringLiteral("again"));
    EXPECT_EQ(entry.GetValue(QStringLiteral("MissingNum")).toInt(), 3);

    // The line counts go with the entry; a second order gets its own.
    GoodsRecord counts;
    counts.SetValue(QStringLiteral("1001|1"), 1);
    state.keepLineCounts(kOrder, counts);
    EXPECT_TRUE(entry.GetValue(QStringLiteral("PickedNum")).value<GoodsRecord>().sameRecord(counts));
    state.logVerdict(QStringLiteral("10002"), QStringLiteral("10002异常, , 缺少4件, 误拣0件"), false);
    EXPECT_EQ(state.SessionOrderLog().Count(), 2);

    // Back on the station: the counters are the entry's, not the ones of the order just left.
    PickingState back;
    back.restoreCounters(entry);
    EXPECT_EQ(back.excessNum(), 1);
    EXPECT_EQ(back.errorNum(), 2);
    EXPECT_EQ(back.missingNum(), 3);
    EXPECT_EQ(PickingState::pickedOnLines(order10001Lines(1, 0, 3)), 3);   // the third unit of 1014 was excess
    EXPECT_EQ(PickingState::pickedOnLines(order10001Lines(1, 1, 2)), 4);

    // Re-pick takes the entry away; the code stays known.
    EXPECT_TRUE(state.removeEntry(kOrder));
    EXPECT_FALSE(state.removeEntry(kOrder));
    EXPECT_TRUE(state.entryOf(kOrder).isNone());
    EXPECT_TRUE(state.wasChecked(kOrder));
    EXPECT_EQ(state.SessionOrderLog().Count(), 1);

    // Closing: the argument list goes first, then the log; nothing is logged after.
    state.releaseArgumentList();
    EXPECT_TRUE(state.argumentList().isNone());
    EXPECT_TRUE(state.logOpen());
    state.release();
    EXPECT_FALSE(state.logOpen());
    state.logVerdict(kOrder, QStringLiteral("late"), false);
    EXPECT_FALSE(state.logHasEntries());
}

TEST(PickingState, NoOrderIsTheEmptyCodeOrTheMarkOfARefusal)
{
    PickingState state;
    EXPECT_FALSE(state.hasOrder());
    state.setCurrentOrderCode(PickingState::NoOrderMark);
    EXPECT_FALSE(state.hasOrder());
    state.setCurrentOrderCode(QStringLiteral("SF10001"));
    EXPECT_TRUE(state.hasOrder());
}
