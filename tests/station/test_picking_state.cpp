// The picking state without a form: when units complete an order, and how an
// order is judged when it is left against the total shown.
#include "station/picking_state.h"
#include <gtest/gtest.h>

TEST(PickingState, LeavingAnOrderJudgesItAgainstTheTotalShown)
{
    const QString order = QStringLiteral("10001");
    // Counters as the goods scan leaves them: `picked` units counted on an order
    // of `shown` units, then excess and wrong units.
    const auto stateAfter = [&](qint32 shown, qint32 picked, qint32 excess, qint32 wrong) {
        PickingState state;
        state.setCurrentOrderCode(order);
        for (qint32 i = 0; i < picked; ++i)
            state.countUnit(shown);
        for (qint32 i = 0; i < excess; ++i)
            state.countExcessUnit();
        state.countWrongGoods(wrong);
        return state;
    };
    const struct {
        const char* what;
        qint32 total, shown, picked, excess, wrong;
        bool passed;
        qint32 missing;
        const char* verdict;
    } cases[] = {
        {"all picked", 4, 4, 4, 0, 0, true, 0, "10001通过   误拣0件"},
        {"one picked", 4, 4, 1, 0, 0, false, 3, "10001异常, , 缺少3件, 误拣0件"},
        {"short with excess", 4, 4, 2, 1, 0, false, 2, "10001异常, 超出1件, 缺少2件, 误拣0件"},
        // Passed counts the order's units only; the verdict still tells the rest.
        {"all picked, excess and wrong goods", 4, 4, 4, 1, 2, true, 0, "10001异常, 超出1件, , 误拣2件"},
        // The options changed since the load: the total now is larger than the one shown.
        {"total grew since the load", 4, 3, 3, 0, 0, false, 1, "10001异常, , 缺少1件, 误拣0件"},
        {"nothing shown", 2, 0, 0, 0, 0, false, 2, "10001异常, , 缺少2件, 误拣0件"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        PickingState state = stateAfter(c.shown, c.picked, c.excess, c.wrong);
        EXPECT_EQ(state.passed(c.total, c.shown), c.passed);
        EXPECT_EQ(state.leaveOrder(c.total, c.shown), c.passed);
        EXPECT_EQ(state.missingNum(), c.missing);
        const VerdictText verdict = state.verdict(order, false);
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
    const VerdictText complete = stateAfter(4, 4, 1, 2).verdict(order, true);
    EXPECT_EQ(complete.text, QStringLiteral("10001通过   误拣0件"));
    EXPECT_TRUE(complete.success);

    // Closing: nothing is logged after the log is released.
    fresh.release();
    fresh.logVerdict(order, QStringLiteral("late"), false);
    EXPECT_FALSE(fresh.logHasEntries());
}
