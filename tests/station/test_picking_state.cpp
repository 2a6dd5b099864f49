// The picking state without a form: when units complete an order, and how an
// order is judged when it is left against the total shown.
#include "station/picking_state.h"
#include <gtest/gtest.h>

TEST(PickingState, UnitsCompleteAnOrderAtTheTotalShownAndALeftOrderIsJudgedAgainstIt)
{
    const struct {
        qint32 total, shown, picked;
        bool passed;
        qint32 missing;
    } cases[] = {
        {4, 4, 4, true, 0}, {4, 4, 1, false, 3},
        // The options changed since the load: the total now is larger than the one shown.
        {4, 3, 3, false, 1}, {2, 0, 0, false, 2},
    };
    for (const auto& c : cases) {
        PickingState state;
        state.setCurrentOrderCode(QStringLiteral("10001"));
        for (qint32 i = 0; i < c.picked; ++i)
            EXPECT_EQ(state.countUnit(c.shown), i == c.shown - 1);   // at the total, not one before
        EXPECT_EQ(state.missingNum(), 0);   // a fresh order's missing count waits for the leave
        EXPECT_EQ(state.passed(c.total, c.shown), c.passed) << c.total << "/" << c.shown << ": " << c.picked;
        EXPECT_EQ(state.leaveOrder(c.total, c.shown), c.passed) << c.total << "/" << c.shown << ": " << c.picked;
        EXPECT_EQ(state.missingNum(), c.missing) << c.total << "/" << c.shown << ": " << c.picked;
        EXPECT_FALSE(state.countUnit(c.shown));   // nor beyond; no total never completes
    }

    // Closing: nothing is logged after the log is released.
    PickingState closed;
    closed.release();
    closed.logVerdict(QStringLiteral("10001"), QStringLiteral("late"), false);
    EXPECT_FALSE(closed.logHasEntries());
}
