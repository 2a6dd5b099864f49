// The small rules a scan is judged by: a typed quantity, the serial lists a
// line keeps, when an order is complete or passed, and its verdict text.
#include "station/picking_state.h"
#include "station/scan_quantity.h"
#include "station/serial_lists.h"
#include "station/verdict.h"
#include <gtest/gtest.h>

TEST(ScanQuantity, WholePiecesInAnyNumericSpellingAndNothingElse)
{
    const struct {
        const char* text;
        int value;   // 0: refused
    } cases[] = {
        {"1", 1}, {" 12 ", 12}, {"+4", 4}, {"2.0", 2}, {"5.", 5}, {"1E2", 100},
        {"1d1", 10},   // the numeric test's own exponent letter
        {"32767", MaxScanQuantity},
        // Not numbers, fractions, nothing to count, beyond a line's count.
        {"", 0}, {"  ", 0}, {"3a", 0}, {"1,000", 0}, {"0x10", 0}, {"2.5", 0}, {"0.1", 0},
        {"0", 0}, {"-1", 0}, {"-0", 0}, {"32768", 0}, {"1E10", 0}, {"1E400", 0},
    };
    for (const auto& c : cases) {
        const auto quantity = ScanQuantity(QString::fromLatin1(c.text));
        EXPECT_EQ(quantity.value_or(0), c.value) << c.text;
        EXPECT_EQ(quantity.has_value(), c.value != 0) << c.text;
    }
}

TEST(SerialLists, WholeElementsOfTheJoinedListAndAbsentValuesDifferFromNothing)
{
    // The scan builds lists as "," + value, so they start with an empty element.
    const QString list = QStringLiteral(",SN100,SN2,SN-3");
    EXPECT_TRUE(SerialListContains(list, "SN100"));
    EXPECT_TRUE(SerialListContains(list, "SN-3"));
    // Parts and extensions of an element are other serials; serials compare exactly.
    for (const char* other : {"SN10", "SN1000", "SN100,SN2", "sn100", ""})
        EXPECT_FALSE(SerialListContains(list, QString::fromLatin1(other))) << other;
    EXPECT_FALSE(SerialListContains(QString(), "SN100"));
    EXPECT_TRUE(SerialListContains("A", "A"));

    // Shelf lives and dates of the serials already on a line: 0 and "" are absent.
    const struct {
        const char* list;
        const char* value;
        bool differs;
    } cases[] = {
        {",365,365", "365", false}, {",365,365", "180", true}, {",365,180", "365", true},
        {",0,0", "365", false},     {",,", "2024/01/05", false}, {",0,2024/01/05", "2024/02/01", true},
        {",0,,2024/01/05", "2024/01/05", false},
        // An absent value is accepted on any line; "0" is absent only as a whole element.
        {",365", "0", false},       {",2024/01/05", "", false},  {"", "365", false},
        {",30", "3", true},         {",00", "365", true},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ListDiffersFrom(QString::fromLatin1(c.list), QString::fromLatin1(c.value)), c.differs)
            << c.list << " / " << c.value;
}

TEST(ComposeVerdict, ZeroPartsAreCutOutByTextReplacementOnTheWholeText)
{
    const struct {
        const char* code;
        int excess, missing, wrong;
        bool success;
        const char* text;
    } cases[] = {
        // The wrong-goods part is never cut, so its "0件" stays behind the blanks.
        {"10001", 0, 0, 0, true, "10001通过   误拣0件"},
        {"10001", 0, 3, 0, false, "10001异常, , 缺少3件, 误拣0件"},
        {"SF1", 2, 0, 1, false, "SF1异常, 超出2件, , 误拣1件"},
        {"W", 0, 0, 2, false, "W异常, , , 误拣2件"},
        // "超出0件" inside "超出10件" must not be cut: the count is 10, not 1.
        {"X", 10, 20, 0, false, "X异常, 超出10件, 缺少20件, 误拣0件"},
        // A code holding ",," loses it, as any ",," of the text does; a passing
        // code holding "异常" or "," is rewritten with the rest.
        {"A,,B", 0, 1, 0, false, "AB异常, , 缺少1件, 误拣0件"},
        {"异常,7", 0, 0, 0, true, "通过7通过   误拣0件"},
    };
    for (const auto& c : cases) {
        const VerdictText v = ComposeVerdict(QString::fromUtf8(c.code), c.excess, c.missing, c.wrong);
        EXPECT_EQ(v.success, c.success) << c.code;
        EXPECT_EQ(v.text, QString::fromUtf8(c.text)) << c.code;
    }
    // The pick info names excess before wrong goods.
    EXPECT_EQ(PickInfoFor(0, 0), QString());
    EXPECT_EQ(PickInfoFor(0, 2), QStringLiteral("非本单商品"));
    EXPECT_EQ(PickInfoFor(3, 2), QStringLiteral("拣货超量"));
}

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
