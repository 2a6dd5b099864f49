// The picking log pane: newest first from two entries on, the only-errors
// filter, scrolling, the red mark and the saved file.
#include "log/log_list.h"
#include "host/object_factory.h"
#include "host/platform.h"
#include "host/server_objects.h"
#include "session/language.h"
#include "support/host_doubles.h"
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <gtest/gtest.h>

namespace {

GoodsRecord entry(const QString& text, bool success)
{
    GoodsRecord e;
    e.Add("ID", text.left(6));
    e.Add("log", text);
    e.Add("bSuccess", success);
    return e;
}

RecordList entries(const QList<std::pair<QString, bool>>& items)
{
    RecordList list;
    for (const auto& [text, ok] : items)
        list.Add(entry(text, ok));
    return list;
}

class LogListTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        boxes = recordMessageBoxes();
        useLanguage(QStringLiteral("chs"));
        ResetLanguageCache();
        pane = std::make_unique<LogList>();
        // Seven rows and the tool row.
        pane->resize(TwipsToPixels(7000), TwipsToPixels(7 * LogListModel::RowHeightTwips) + 40);
        pane->show();
        pane->setClock([] { return QDateTime(QDate(2024, 3, 5), QTime(14, 2, 9)); });
        pane->setSaveFileDialog([this](QWidget*, const QString& filter, const QString& proposed) {
            ++dialogs;
            seenFilter = filter;
            seenName = proposed;
            return chosen;
        });
    }
    void TearDown() override
    {
        pane.reset();
        ResetLanguageCache();
        RestoreBuiltInServerObjects();
    }
    QToolButton* button(const char* name) { return pane->findChild<QToolButton*>(name); }

    std::shared_ptr<HostRecorder> boxes;
    std::unique_ptr<LogList> pane;
    int dialogs = 0;
    QString seenFilter, seenName, chosen;
};

} // namespace

TEST_F(LogListTest, LoadShowsNewestFirstFromTwoEntriesOnFromAFixedPoolOfRows)
{
    pane->LoadLogList(entries({{"SF1001通过", true}}));
    EXPECT_EQ(pane->shownCount(), 0);
    pane->LoadLogList(RecordList::none());
    EXPECT_EQ(pane->shownCount(), 0);
    // Entries that are none or have an empty text are no rows.
    pane->AddLog(GoodsRecord::none());
    pane->AddLog(entry(QString(), false));
    EXPECT_EQ(pane->shownCount(), 0);

    pane->LoadLogList(entries({{"SF1001通过", true}, {"SF1002异常, 缺少1件", false}}));
    EXPECT_EQ(pane->allRowTexts(), (QStringList{"SF1002异常, 缺少1件", "SF1001通过"}));
    EXPECT_EQ(pane->visibleRowTexts(), pane->allRowTexts());
    EXPECT_EQ(pane->rowTop(1), LogListModel::RowHeightTwips);
    EXPECT_TRUE(boxes->texts().isEmpty());

    // Only-errors: entries that passed are skipped; each click asks the form.
    int asked = 0;
    QObject::connect(pane.get(), &LogList::FilterChanged, [&asked] { ++asked; });
    auto* check = pane->findChild<QCheckBox*>("ChkOnlyError");
    ASSERT_NE(check, nullptr);
    EXPECT_EQ(check->text(), "只显示异常");
    QTest::mouseClick(check, Qt::LeftButton);
    EXPECT_EQ(asked, 1);
    RecordList list = entries({{"A通过", true}, {"B异常", false}, {"C通过", true}, {"D异常", false}});
    // an entry without its flag is reported once, and the others still shown
    GoodsRecord noFlag;
    noFlag.Add("log", "E没有标记");
    list.Insert(2, noFlag);
    pane->LoadLogList(list);
    EXPECT_EQ(pane->allRowTexts(), (QStringList{"D异常", "B异常"}));
    EXPECT_EQ(boxes->texts().size(), 1);
    QTest::mouseClick(check, Qt::LeftButton);
    EXPECT_EQ(asked, 2);
    EXPECT_FALSE(pane->onlyErrors());

    // A long session: the rows are a fixed pool, only the first mark in red.
    RecordList many;
    for (int i = 0; i < 3000; ++i)
        many.Add(entry(QString("SF%1异常, 缺少1件, 误拣1件<b>异常</b>").arg(i), false));
    pane->LoadLogList(many);
    EXPECT_EQ(pane->shownCount(), 3000);
    const QList<QLabel*> rows = pane->findChildren<QLabel*>(QRegularExpression("^rtfLog"));
    EXPECT_LE(rows.size(), 16);
    int drawn = 0;
    for (QLabel* row : rows)
        drawn += row->isVisible() ? 1 : 0;
    EXPECT_GE(drawn, 7);
    EXPECT_EQ(pane->visibleRowTexts().size(), drawn);
    EXPECT_EQ(pane->visibleRowTexts().first(), "SF2999异常, 缺少1件, 误拣1件<b>异常</b>");

    const QString html = pane->rowHtml(0);
    EXPECT_EQ(html.count("color:#ff0000"), 1);
    EXPECT_TRUE(html.contains("SF2999<span style=\"color:#ff0000\">异常</span>"));
    EXPECT_TRUE(html.contains("&lt;b&gt;异常&lt;/b&gt;"));   // the entry's own text is never markup
    pane->AddLog(entry("SF9通过", true));
    EXPECT_FALSE(pane->rowHtml(3000).contains("ff0000"));

    // The mark is searched within the length of the text trimmed of blanks:
    // leading blanks leave a mark at the very end black.
    EXPECT_EQ(LogListModel::redMarkPos("异常 A 异常"), 0);
    EXPECT_EQ(LogListModel::redMarkPos(""), -1);
    EXPECT_EQ(LogListModel::redMarkPos("  ab异常"), -1);
    EXPECT_EQ(LogListModel::redMarkPos("ab异常  "), 2);
}

TEST_F(LogListTest, ScrollButtonsStopAtTheLastPageAndClearKeepsThePosition)
{
    RecordList ten;
    for (int i = 0; i < 10; ++i)
        ten.Add(entry(QString("单号%1").arg(i), true));
    pane->LoadLogList(ten);
    QList<int> tops;
    for (int i = 0; i < 5; ++i) {
        QTest::mouseClick(button("ImgDown"), Qt::LeftButton);
        tops << pane->topIndex();
    }
    EXPECT_EQ(tops, (QList<int>{1, 2, 3, 3, 3}));
    EXPECT_EQ(pane->visibleRowTexts().first(), "单号6");
    QTest::mouseClick(button("ImgUp"), Qt::LeftButton);
    EXPECT_EQ(pane->topIndex(), 2);

    pane->ClearLogList();
    EXPECT_EQ(pane->rowCountField(), 10);
    EXPECT_EQ(pane->topIndex(), 2);
    pane->AddLog(entry("新单", true));
    EXPECT_EQ(pane->rowCountField(), 10);
    EXPECT_TRUE(pane->visibleRowTexts().isEmpty());   // above the view until scrolled up
    EXPECT_EQ(pane->allRowTexts(), QStringList{"新单"});
    pane->ImgUpClick();
    pane->ImgUpClick();
    EXPECT_EQ(pane->visibleRowTexts(), QStringList{"新单"});
    pane->SelectedLogByIndex(-1);
    EXPECT_EQ(pane->visibleRowTexts(), QStringList{"新单"});
    // The second entry after a clear takes the new count: no scrolling past it.
    pane->AddLog(entry("第二单", true));
    EXPECT_EQ(pane->rowCountField(), 2);
    QTest::mouseClick(button("ImgDown"), Qt::LeftButton);
    EXPECT_EQ(pane->topIndex(), 0);
}

TEST_F(LogListTest, SaveWritesTheExactBytesOrNothing)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    QTest::mouseClick(button("ImgSave"), Qt::LeftButton);
    EXPECT_EQ(dialogs, 0);   // an empty pane shows no dialog

    pane->LoadLogList(entries({{"SF1001通过", true}, {"SF1002异常, 缺少1件", false}}));
    chosen.clear();   // cancelled
    QTest::mouseClick(button("ImgSave"), Qt::LeftButton);
    EXPECT_EQ(dialogs, 1);
    EXPECT_EQ(seenName, "20240305140209");
    EXPECT_EQ(seenFilter, "文本文件 (*.txt)");
    EXPECT_TRUE(QDir(dir.path()).entryList(QDir::Files).isEmpty());

    chosen = dir.filePath("log.txt");
    QFile old(chosen);
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write(QByteArray(500, 'x'));   // a longer old file is truncated
    old.close();
    QTest::mouseClick(button("ImgSave"), Qt::LeftButton);
    QFile file(chosen);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray expected = QByteArray(27, '-') + "2024/3/5 14:02:09 " + QByteArray(27, '-')
        + "\r\nSF1002异常, 缺少1件\r\nSF1001通过\r\n";
    EXPECT_EQ(file.readAll(), expected);
    EXPECT_EQ(LogListModel::defaultDateTimeText(QDateTime(QDate(2024, 11, 20), QTime(0, 0))), "2024/11/20");

    chosen = dir.filePath("no/such/folder/log.txt");
    QTest::mouseClick(button("ImgSave"), Qt::LeftButton);
    EXPECT_EQ(boxes->texts().size(), 1);
}
