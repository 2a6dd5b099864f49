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

    // Units complete the order at its total, not one before nor beyond; no total never completes.
    PickingState fresh = stateAfter(3, 2, 0, 0);
    EXPECT_EQ(fresh.missingNum(), 0);   // a fresh order's missing count waits for the leave
    EXPECT_TRUE(fresh.countUnit(3));
    EXPECT_FALSE(fresh.countUnit(3));
    EXPECT_FALSE(PickingState().countUnit(0));
    // A complete order passes whatever happened on the way to it.
    PickingState complete = stateAfter(4, 4, 1, 2);
    EXPECT_EQ(complete.verdict(kOrder, true).text, QStringLiteral("10001通过   误拣0件"));
    EXPECT_TRUE(complete.verdict(kOrder, true).success);
}

TEST(PickingState, TheSessionLogKeepsOneEntryAnOrderAndGivesItBack)
{
    PickingState state = stateAfter(4, 1, 1, 2);
    EXPECT_FALSE(state.wasChecked(kOrder));
    state.leaveOrder(4, 4);
    state.logVerdict(kOrder, state.verdict(kOrder, false).text, false);
    state.logVerdict(kOrder, QStringLiteral("again"), false);
    ASSERT_EQ(state.SessionOrderLog().Count(), 1);
    EXPECT_TRUE(state.wasChecked(kOrder));
    const GoodsRecord entry = state.entryOf(kOrder);
    ASSERT_FALSE(entry.isNone());
    EXPECT_EQ(entry.GetValue(QStringLiteral("log")).toString(), QStringLiteral("again"));
    state.logVerdict(QStringLiteral("10002"), QStringLiteral("10002异常, , 缺少4件, 误拣0件"), false);
    EXPECT_EQ(state.SessionOrderLog().Count(), 2);

    // Back on the station: the counters are the entry's, and every unit then
    // writes what is still missing.
    PickingState back;
    back.restoreCounters(entry);
    EXPECT_EQ(back.excessNum(), 1);
    EXPECT_EQ(back.errorNum(), 2);
    EXPECT_EQ(back.missingNum(), 3);
    back.setPickedNum(2);
    back.markRestored();
    EXPECT_FALSE(back.countUnit(4));
    EXPECT_EQ(back.missingNum(), 1);
    EXPECT_TRUE(back.countUnit(4));
    EXPECT_EQ(back.missingNum(), 0);

    // Re-pick takes the entry away; the code stays known.
    EXPECT_TRUE(state.removeEntry(kOrder));
    EXPECT_FALSE(state.removeEntry(kOrder));
    EXPECT_TRUE(state.entryOf(kOrder).isNone());
    EXPECT_TRUE(state.wasChecked(kOrder));
    EXPECT_EQ(state.SessionOrderLog().Count(), 1);

    // Closing: nothing is logged after the log is released.
    state.release();
    state.logVerdict(kOrder, QStringLiteral("late"), false);
    EXPECT_FALSE(state.logHasEntries());
}
