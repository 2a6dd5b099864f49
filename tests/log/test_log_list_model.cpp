#include "log/log_list_model.h"
#include <gtest/gtest.h>

namespace {

GoodsRecord entry(const QString& text, bool success = false)
{
    GoodsRecord e;
    e.Add("log", text);
    e.Add("bSuccess", success);
    return e;
}

} // namespace

TEST(LogListModel, EmptyEntriesAreIgnoredAndRowsStackDownwards)
{
    LogListModel model;
    model.addLog(GoodsRecord::none());
    model.addLog(entry(""));
    EXPECT_EQ(model.shownCount(), 0);
    EXPECT_FALSE(model.rowVisible(0));
    for (int i = 0; i < 10; ++i)
        model.addLog(entry(QString("单号%1通过").arg(i)));
    EXPECT_EQ(model.rowCountField(), 10);
    EXPECT_EQ(model.rowTop(3), 3 * LogListModel::RowHeightTwips);
    model.scrollDown();
    EXPECT_EQ(model.rowTop(0), -LogListModel::RowHeightTwips);
    EXPECT_EQ(model.rowTextsInView(7 * LogListModel::RowHeightTwips).first(), "单号1通过");
    EXPECT_EQ(model.allRowTexts().size(), 10);
}

TEST(LogListModel, ClearKeepsCountAndTopUntilTheSecondEntry)
{
    LogListModel model;
    for (int i = 0; i < 10; ++i)
        model.addLog(entry(QString::number(i)));
    model.scrollDown();
    model.scrollDown();
    model.clear();
    EXPECT_EQ(model.shownCount(), 0);
    EXPECT_EQ(model.rowSlots(), 1);
    EXPECT_FALSE(model.rowVisible(0));
    EXPECT_EQ(model.rowCountField(), 10);
    EXPECT_EQ(model.topIndex(), 2);
    EXPECT_TRUE(model.allRowTexts().isEmpty());

    model.addLog(entry("新的第一条"));
    EXPECT_TRUE(model.rowVisible(0));
    EXPECT_EQ(model.rowCountField(), 10);   // the first entry after a clear leaves it
    EXPECT_EQ(model.rowTop(0), -2 * LogListModel::RowHeightTwips);   // scrolled out of view
    EXPECT_TRUE(model.rowTextsInView(7 * LogListModel::RowHeightTwips).isEmpty());
    EXPECT_TRUE(model.scrollDown());   // still against the old count of 10
    EXPECT_EQ(model.topIndex(), 3);
    model.addLog(entry("第二条"));
    EXPECT_EQ(model.rowCountField(), 2);
    EXPECT_FALSE(model.scrollDown());
    EXPECT_EQ(model.allRowTexts(), (QStringList{"新的第一条", "第二条"}));
}

TEST(LogListModel, OnlyTheFirstErrorMarkWithinTheTrimmedTextIsRed)
{
    EXPECT_EQ(LogListModel::redMarkPos("SF1001异常, 缺少2件"), 6);
    EXPECT_EQ(LogListModel::redMarkPos("异常 A 异常"), 0);
    EXPECT_EQ(LogListModel::redMarkPos("SF1001通过"), -1);
    EXPECT_EQ(LogListModel::redMarkPos(""), -1);
    // Leading blanks shorten the searched range: a mark at the very end stays black.
    EXPECT_EQ(LogListModel::redMarkPos("  ab异常"), -1);
    EXPECT_EQ(LogListModel::redMarkPos("ab异常  "), 2);

    LogListModel model;
    model.addLog(entry("甲异常乙异常"));
    model.addLog(entry("通过"));
    EXPECT_EQ(model.rowRedPos(0), 1);
    EXPECT_EQ(model.rowRedPos(1), -1);
}

TEST(LogListModel, SavedTextAndNameFollowTheClock)
{
    LogListModel model;
    model.addLog(entry("SF1001通过", true));
    model.addLog(entry("SF1002异常, 缺少1件\r\n第二行"));
    const QDateTime at(QDate(2024, 3, 5), QTime(9, 7, 8));
    const QString dashes(27, QChar('-'));
    EXPECT_EQ(model.saveText(at),
              dashes + "2024/3/5 9:07:08 " + dashes + "\r\nSF1001通过\r\nSF1002异常, 缺少1件\r\n第二行\r\n");
    EXPECT_EQ(LogListModel::proposedFileName(at), "20240305090708");
    EXPECT_EQ(LogListModel::proposedFileName(QDateTime(QDate(2023, 12, 31), QTime(23, 59, 59))), "20231231235959");
    EXPECT_EQ(LogListModel::defaultDateTimeText(QDateTime(QDate(2024, 11, 20), QTime(0, 0))), "2024/11/20");
}
