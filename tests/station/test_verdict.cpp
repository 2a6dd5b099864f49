#include "station/verdict.h"
#include <gtest/gtest.h>

TEST(ComposeVerdict, ZeroPartsAreCutOutByTextReplacement)
{
    // Nothing wrong: the commas go and the order passes; the wrong-goods part
    // is never cut, so its "0件" stays behind the blanks.
    VerdictText v = ComposeVerdict(QStringLiteral("10001"), 0, 0, 0);
    EXPECT_TRUE(v.success);
    EXPECT_EQ(v.text, QStringLiteral("10001通过   误拣0件"));

    v = ComposeVerdict(QStringLiteral("10001"), 0, 3, 0);
    EXPECT_FALSE(v.success);
    EXPECT_EQ(v.text, QStringLiteral("10001异常, , 缺少3件, 误拣0件"));

    v = ComposeVerdict(QStringLiteral("SF1"), 2, 0, 1);
    EXPECT_FALSE(v.success);
    EXPECT_EQ(v.text, QStringLiteral("SF1异常, 超出2件, , 误拣1件"));

    v = ComposeVerdict(QStringLiteral("A"), 1, 2, 3);
    EXPECT_EQ(v.text, QStringLiteral("A异常, 超出1件, 缺少2件, 误拣3件"));
}

TEST(ComposeVerdict, ReplacementsWorkOnTheWholeTextNotOnNumbers)
{
    // "超出0件" inside "超出10件" must not be cut: the count is 10, not 1.
    VerdictText v = ComposeVerdict(QStringLiteral("X"), 10, 20, 0);
    EXPECT_EQ(v.text, QStringLiteral("X异常, 超出10件, 缺少20件, 误拣0件"));
    // A code holding ",," loses it, as any ",," of the text does.
    v = ComposeVerdict(QStringLiteral("A,,B"), 0, 1, 0);
    EXPECT_EQ(v.text, QStringLiteral("AB异常, , 缺少1件, 误拣0件"));
    // A code holding "异常" or "," is rewritten with the rest when the order passes.
    v = ComposeVerdict(QStringLiteral("异常,7"), 0, 0, 0);
    EXPECT_TRUE(v.success);
    EXPECT_EQ(v.text, QStringLiteral("通过7通过   误拣0件"));
    // Negative counts are counts too: not zero, so nothing passes.
    v = ComposeVerdict(QStringLiteral("N"), 0, -1, 0);
    EXPECT_FALSE(v.success);
    EXPECT_EQ(v.text, QStringLiteral("N异常, , 缺少-1件, 误拣0件"));
}

TEST(PickInfoFor, ExcessBeforeWrongGoods)
{
    EXPECT_EQ(PickInfoFor(0, 0), QString());
    EXPECT_EQ(PickInfoFor(1, 0), QStringLiteral("拣货超量"));
    EXPECT_EQ(PickInfoFor(0, 2), QStringLiteral("非本单商品"));
    EXPECT_EQ(PickInfoFor(3, 2), QStringLiteral("拣货超量"));
}
