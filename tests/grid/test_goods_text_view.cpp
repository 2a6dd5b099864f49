#include "grid/goods_text_view.h"
#include "host/platform.h"
#include "grid/order_fixture.h"
#include <QAbstractItemDelegate>
#include <QHeaderView>
#include <QStyleOptionViewItem>
#include <QTableWidget>
#include <QTest>

namespace {

const QColor Black(0, 0, 0), Green(0, 0x80, 0), Red(0xFF, 0, 0);

struct SelectionLog {
    QList<GoodsRecord> lines;
    void attach(GoodsTextView& view)
    {
        QObject::connect(&view, &GoodsTextView::GoodsSelected, [this](GoodsRecord g) { lines << g; });
    }
};

} // namespace

class GoodsTextViewTest : public OrderFixture {};

TEST_F(GoodsTextViewTest, LoadShowsEveryLineWithTitlesTagsAndLocks)
{
    load({{71, 25, "蓝牙耳机", "6901234567890", "X-1", 2, 0},
          {72, 31, "手机壳", "6907777000011", "", 1, 3},
          {73, 25, "蓝牙耳机", "6901234567890", "X-1", 4, 0}});
    GoodsTextView view;
    SelectionLog selected;
    selected.attach(view);
    view.LoadPickingGoods();

    ASSERT_EQ(view.rowCount(), 3);   // one row per line, the first line in row 1
    for (int r = 1; r <= 3; ++r) {
        EXPECT_EQ(view.cellText(r, 0), QString::number(r));
        EXPECT_EQ(view.rowColor(r), Black);
        EXPECT_TRUE(view.rowColorUniform(r));
    }
    EXPECT_EQ(view.cellText(1, GoodsTextView::ColName), "蓝牙耳机");
    EXPECT_EQ(view.rowKey(1), "2571");
    EXPECT_EQ(view.rowGoodsTag(1), "25");
    EXPECT_EQ(view.cellText(1, GoodsTextView::ColBarCode), "6901234567890");
    EXPECT_EQ(view.cellText(1, GoodsTextView::ColModel), "X-1");
    EXPECT_EQ(view.cellText(1, GoodsTextView::ColOrderCnt), "2");
    EXPECT_EQ(view.cellText(1, GoodsTextView::ColCheckedCnt), "0");
    EXPECT_EQ(view.cellText(1, GoodsTextView::ColSerial), "");
    EXPECT_EQ(view.cellText(2, GoodsTextView::ColSerial), "Y");
    EXPECT_EQ(view.rowKey(2), "3172");

    ASSERT_EQ(selected.lines.size(), 1);
    EXPECT_TRUE(selected.lines[0].sameRecord(GetGoodsLineSet().Item(0)));
    EXPECT_EQ(view.activeRow(), 1);
    EXPECT_EQ(CurrentGoodsID(), "25");

    QTableWidget* grid = view.fpGoods();
    EXPECT_EQ(grid->objectName(), "fpGoods");
    EXPECT_EQ(grid->rowHeight(0), TwipsToPixels(560));
    EXPECT_EQ(grid->columnWidth(0), TwipsToPixels(2900));
    EXPECT_EQ(grid->columnWidth(5), TwipsToPixels(1012));
    EXPECT_EQ(view.columnTitle(0), "序号");
    EXPECT_EQ(view.columnTitle(5), "已拣数量");
    EXPECT_FALSE(grid->item(0, 0)->flags() & Qt::ItemIsEditable);
    EXPECT_EQ(grid->item(0, 0)->textAlignment(), int(Qt::AlignLeft | Qt::AlignVCenter));
    EXPECT_EQ(grid->item(0, 4)->textAlignment(), int(Qt::AlignCenter));
    EXPECT_FALSE(grid->isSortingEnabled());

    view.ClearGoods();
    EXPECT_EQ(view.rowCount(), 0);
    EXPECT_EQ(view.IsPicked(25), 0);
    view.PickingGoodsNew(25, 71);   // the list outlives the cleared grid
    EXPECT_EQ(view.GetPickedCnt(25), 1);
}

TEST_F(GoodsTextViewTest, TitlesPassThroughTheLanguageLookup)
{
    class Loader : public IResLoader {
    public:
        void setResDirectory(const QString&) override {}
        void setResFileBaseName(const QString&) override {}
        void setLanguageID(const QString&) override {}
        QString LoadString(const QString& key) override { return key == "商品名称" ? "Goods" : "[" + key + "]"; }
    };
    RegisterServerObject(ProgIds::LangInfo, [] { return std::make_shared<FixedLanguage>("en"); });
    RegisterServerObject(ProgIds::ResLoader, [] { return std::make_shared<Loader>(); });
    ResetLanguageCache();
    GoodsTextView view;
    EXPECT_EQ(view.columnTitle(1), "Goods");
    EXPECT_EQ(view.columnTitle(0), "[序号]");
    EXPECT_EQ(view.columnTitle(6), "[序列号管理]");
}

TEST_F(GoodsTextViewTest, RefreshPutsOpenLinesFirstAndColoursByProgress)
{
    RecordList set = load({{2, 10, "A 茶杯", "", "", 2},
                           {3, 20, "B 茶壶", "", "", 1},
                           {4, 30, "C 茶盘", "", "", 1},
                           {5, 40, "D 茶叶", "", "", 4}});
    GoodsTextView view;
    view.LoadPickingGoods();
    set.Item(0).SetValue("GoodsCheckedCnt", 2);
    set.Item(2).SetValue("GoodsCheckedCnt", 3);
    GoodsRecord current;
    current.Add("FItemID", 30);
    SetCurrentGoodsLine(current);
    SelectionLog selected;
    selected.attach(view);

    view.RefreshGoods();
    ASSERT_EQ(view.rowCount(), 4);
    QStringList names;
    for (int r = 1; r <= 4; ++r)
        names << view.cellText(r, GoodsTextView::ColName);
    EXPECT_EQ(names, (QStringList{"B 茶壶", "D 茶叶", "A 茶杯", "C 茶盘"}));
    EXPECT_EQ(view.rowColor(1), Black);
    EXPECT_EQ(view.rowColor(2), Black);
    EXPECT_EQ(view.rowColor(3), Green);
    EXPECT_EQ(view.rowColor(4), Red);
    EXPECT_TRUE(view.rowColorUniform(3) && view.rowColorUniform(4));
    EXPECT_EQ(view.cellText(4, GoodsTextView::ColCheckedCnt), "3");
    EXPECT_EQ(view.rowKey(4), "304");
    // The shared set itself is reordered.
    EXPECT_EQ(set.Item(0).GetValue("GoodsID").toInt(), 20);
    EXPECT_EQ(set.Item(3).GetValue("GoodsID").toInt(), 30);
    ASSERT_EQ(selected.lines.size(), 1);
    EXPECT_TRUE(selected.lines[0].sameRecord(set.Item(3)));
    EXPECT_EQ(view.activeRow(), 4);
    EXPECT_EQ(CurrentGoodsID(), "30");

    // Without a current goods the refresh only refills: no selection, colours kept.
    SetCurrentGoodsLine(GoodsRecord::none());
    set.Item(0).SetValue("GoodsCheckedCnt", 1);   // B becomes complete
    view.RefreshGoods();
    EXPECT_EQ(selected.lines.size(), 1);
    EXPECT_EQ(view.cellText(2, GoodsTextView::ColName), "B 茶壶");
    EXPECT_EQ(view.rowColor(2), Black);   // B is complete now, but nothing repaints it
}

TEST_F(GoodsTextViewTest, RefreshNewReselectsTheNamedEntry)
{
    load({{7, 25, "耳机", "", "", 1}, {8, 25, "耳机", "", "", 2}, {9, 26, "线", "", "", 1}});
    GoodsTextView view;
    view.LoadPickingGoods();
    SelectionLog selected;
    selected.attach(view);
    view.PickingGoodsNew(25, 7);
    view.RefreshGoodsNew(25, 8);
    ASSERT_EQ(selected.lines.size(), 1);
    EXPECT_EQ(selected.lines[0].GetValue("FEntryID").toInt(), 8);
    EXPECT_EQ(view.rowKey(view.activeRow()), "258");
    EXPECT_EQ(view.rowKey(3), "257");
    EXPECT_EQ(view.rowColor(3), Green);
}

TEST_F(GoodsTextViewTest, PlainCountingFindsRowsByTheWholeKey)
{
    RecordList set = load({{7, 25, "耳机", "", "", 2},
                           {8, 25, "耳机", "", "", 2},
                           {2, 1, "一号", "", "", 5},
                           {5, 12, "十二号", "", "", 5}});
    GoodsTextView view;
    view.LoadPickingGoods();
    QTableWidgetItem* countCell = view.fpGoods()->item(0, GoodsTextView::ColCheckedCnt - 1);

    view.PickingGoods(25);
    view.PickingGoods(25);
    EXPECT_EQ(set.Item(0).GetValue("GoodsCheckedCnt").toInt(), 2);   // always the first entry
    EXPECT_EQ(set.Item(1).GetValue("GoodsCheckedCnt").toInt(), 0);
    EXPECT_EQ(view.cellText(1, GoodsTextView::ColCheckedCnt), "0");   // key "257" is not 25
    EXPECT_EQ(view.IsPicked(25), 1);

    view.PickingGoodsNew(25, 8);
    EXPECT_EQ(set.Item(1).GetValue("GoodsCheckedCnt").toInt(), 1);
    EXPECT_EQ(view.cellText(2, GoodsTextView::ColCheckedCnt), "1");
    EXPECT_EQ(view.IsPickedNew(25, 8), 0);
    EXPECT_EQ(view.fpGoods()->item(0, GoodsTextView::ColCheckedCnt - 1), countCell);   // updated in place

    // Goods 12's count lands in the row whose key "12" is goods 1, entry 2.
    view.PickingGoods(12);
    EXPECT_EQ(set.Item(3).GetValue("GoodsCheckedCnt").toInt(), 1);
    EXPECT_EQ(view.cellText(3, GoodsTextView::ColCheckedCnt), "1");
    EXPECT_EQ(view.cellText(4, GoodsTextView::ColCheckedCnt), "0");

    view.PickingGoods(0);
    view.PickingGoodsNew(25, 99);
    EXPECT_EQ(set.Item(0).GetValue("GoodsCheckedCnt").toInt(), 2);
    EXPECT_EQ(set.Item(1).GetValue("GoodsCheckedCnt").toInt(), 1);
}

TEST_F(GoodsTextViewTest, ClearCheckedCntResetsTheLineEvenWithoutARow)
{
    RecordList set = load({{7, 25, "耳机", "", "", 2}, {2, 1, "一号", "", "", 5}, {5, 12, "十二号", "", "", 5}});
    GoodsTextView view;
    view.LoadPickingGoods();
    view.PickingGoodsNew(25, 7);
    view.PickingGoodsNew(25, 7);
    view.PickingGoodsNew(25, 7);
    EXPECT_EQ(view.GetExcessCnt(25), 1);
    view.ClearCheckedCnt(25);
    EXPECT_EQ(set.Item(0).GetValue("GoodsCheckedCnt").toInt(), 0);
    EXPECT_EQ(view.cellText(1, GoodsTextView::ColCheckedCnt), "3");   // no row keyed "25"
    EXPECT_EQ(view.GetExcessCnt(25), 0);

    view.PickingGoodsNew(1, 2);
    view.PickingGoodsNew(12, 5);
    view.ClearCheckedCnt(12);   // row "12" is goods 1's row
    EXPECT_EQ(view.cellText(2, GoodsTextView::ColCheckedCnt), "0");
    EXPECT_EQ(view.cellText(3, GoodsTextView::ColCheckedCnt), "1");
    EXPECT_EQ(set.Item(2).GetValue("GoodsCheckedCnt").toInt(), 0);
    EXPECT_EQ(set.Item(1).GetValue("GoodsCheckedCnt").toInt(), 1);
}

TEST_F(GoodsTextViewTest, PickingStateComesBackOnTheSameLinesWhateverTheirOrder)
{
    const std::vector<OrderRow> rows{{2, 10, "甲", "", "", 2}, {3, 11, "乙", "", "", 1}, {4, 11, "乙", "", "", 3},
                                     {5, 12, "丙", "", "", 1}};
    load(rows);
    GoodsTextView view;
    view.LoadPickingGoods();
    view.PickingGoodsNew(10, 2);
    view.PickingGoodsNew(11, 4);
    view.PickingGoodsNew(12, 5);
    view.PickingGoodsNew(12, 5);
    GetGoodsLineSet().Item(2).SetValue("FSeriNum", ",SN-1");
    view.RefreshGoodsNew(12, 5);   // the grid reorders the set
    GoodsRecord states;
    view.GetCheckCntNew(states);
    EXPECT_EQ(states.Count(), 4);

    // The order comes back from the database in another order.
    load(std::vector<OrderRow>(rows.rbegin(), rows.rend()));
    view.LoadPickingGoods();
    view.SetCheckCntNew(states);
    QStringList shown;
    for (int r = 1; r <= view.rowCount(); ++r)
        shown << view.rowKey(r) + "=" + view.cellText(r, GoodsTextView::ColCheckedCnt);
    EXPECT_EQ(shown, (QStringList{"125=2", "114=1", "113=0", "102=1"}));
    EXPECT_EQ(view.rowColor(1), Red);
    EXPECT_EQ(view.rowColor(3), Black);
    EXPECT_EQ(view.rowColor(4), Black);
    const RecordList set = GetGoodsLineSet();
    EXPECT_EQ(set.Item(1).GetValue("FSeriNum").toString(), ",SN-1");
    EXPECT_EQ(set.Item(1).GetValue("GoodsCheckedCnt").toInt(), 1);
    EXPECT_EQ(view.IsPickedNew(12, 5), 2);
    EXPECT_EQ(view.GetPickedCnt(10), 1);
}

TEST_F(GoodsTextViewTest, SelectionStoresTheCurrentIdsAndRaisesOnce)
{
    load({{7, 25, "耳机", "", "", 1}, {8, 25, "耳机", "", "", 1}});
    GoodsTextView view;
    SelectionLog selected;
    view.SelectedGoodsByID(25);   // nothing loaded yet
    view.LoadPickingGoods();
    selected.attach(view);
    view.SelectedGoodsByID(-25);
    view.SelectedGoodsByID(0);
    view.SelectedGoodsByIDNew(25, 9);
    EXPECT_TRUE(selected.lines.isEmpty());
    view.SelectedGoodsByIDNew(25, 8);
    ASSERT_EQ(selected.lines.size(), 1);
    EXPECT_EQ(selected.lines[0].GetValue("FEntryID").toInt(), 8);
    EXPECT_EQ(CurrentEntryID(), "8");
    view.SelectedGoodsByID(25);
    ASSERT_EQ(selected.lines.size(), 2);
    EXPECT_EQ(selected.lines[1].GetValue("FEntryID").toInt(), 7);
    EXPECT_EQ(CurrentGoodsID(), "25");
}

TEST_F(GoodsTextViewTest, ClicksOnCellsSelectAndHeaderClicksDoNot)
{
    load({{7, 25, "耳机", "", "", 1}, {8, 25, "耳机", "", "", 1}, {9, 26, "线", "", "", 1}});
    GoodsTextView view;
    view.resize(900, 400);
    view.show();
    view.LoadPickingGoods();
    SelectionLog selected;
    selected.attach(view);
    QTableWidget* grid = view.fpGoods();

    QTest::mouseClick(grid->horizontalHeader()->viewport(), Qt::LeftButton, {},
                      QPoint(grid->horizontalHeader()->sectionPosition(1) + 5, 5));
    view.fpGoodsClick(2, 0);
    EXPECT_TRUE(selected.lines.isEmpty());
    EXPECT_EQ(view.activeRow(), 1);

    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualItemRect(grid->item(2, 1)).center());
    ASSERT_EQ(selected.lines.size(), 1);
    EXPECT_EQ(selected.lines[0].GetValue("GoodsID").toInt(), 26);
    // The click reads the goods tag only: the second entry's row selects the first entry.
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualItemRect(grid->item(1, 3)).center());
    ASSERT_EQ(selected.lines.size(), 2);
    EXPECT_EQ(selected.lines[1].GetValue("FEntryID").toInt(), 7);
    view.fpGoodsClick(0, 99);   // beyond the rows
    EXPECT_EQ(selected.lines.size(), 2);
    EXPECT_TRUE(boxes->texts().isEmpty());
}

TEST_F(GoodsTextViewTest, ResizeToNothingKeepsTheGridAndErrorsGoToTheReporter)
{
    RecordList set = load({{2, 10, "甲", "", "", 1}});
    GoodsTextView view;
    view.show();
    view.resize(600, 300);
    EXPECT_EQ(view.fpGoods()->geometry(), QRect(0, 0, 599, 299));
    view.resize(0, 300);
    EXPECT_EQ(view.fpGoods()->geometry(), QRect(0, 0, 599, 299));
    view.resize(400, 0);
    EXPECT_EQ(view.fpGoods()->geometry(), QRect(0, 0, 599, 299));

    set.Add(GoodsRecord::none());   // a line that is nothing
    view.LoadPickingGoods();
    EXPECT_EQ(boxes->texts().size(), 1);
}

TEST_F(GoodsTextViewTest, TwoThousandLinesLoadCountAndReload)
{
    std::vector<OrderRow> rows;
    for (int i = 0; i < 2000; ++i)
        rows.push_back({i + 1, 1000 + i, QString("商品 %1 号").arg(i), QString("69%1").arg(i, 11, 10, QChar('0')), "M", 3, i % 5});
    RecordList set = load(rows);
    GoodsTextView view;
    view.resize(1000, 700);
    view.show();
    view.LoadPickingGoods();
    ASSERT_EQ(view.rowCount(), 2000);
    for (int i = 0; i < 3; ++i)
        view.PickingGoodsNew(1001, 2);
    view.RefreshGoodsNew(1001, 2);
    EXPECT_EQ(view.cellText(2000, GoodsTextView::ColName), "商品 1 号");
    EXPECT_EQ(view.activeRow(), 2000);
    EXPECT_EQ(view.rowColor(2000), QColor(0, 0x80, 0));
    view.LoadPickingGoods();   // a reload reuses the rows
    EXPECT_EQ(view.rowCount(), 2000);
    EXPECT_EQ(view.cellText(2000, GoodsTextView::ColName), "商品 1 号");
}

TEST_F(GoodsTextViewTest, BarcodesAndModelsFitTheirColumnsAndCountsStayLarge)
{
    // Texts of the demo warehouse at their longest.
    load({{11, 1008, "保温杯", "6931000010086", "500ml 不锈钢", 12},
          {12, 1018, "洗衣液", "6931000010185", "2kg 薰衣草", 1},
          {13, 1007, "移动电源", "6931000010079", "10000mAh", 9999}});
    GoodsTextView view;
    view.resize(TwipsToPixels(9200), TwipsToPixels(5200));
    view.show();
    view.LoadPickingGoods();
    QTableWidget* grid = view.fpGoods();
    auto needs = [grid](int row, int col) {
        const QModelIndex index = grid->model()->index(row - 1, col - 1);
        QStyleOptionViewItem option;
        option.initFrom(grid->viewport());
        option.font = grid->font();
        option.fontMetrics = QFontMetrics(option.font);
        return grid->itemDelegateForIndex(index)->sizeHint(option, index);
    };
    for (int row = 1; row <= 3; ++row) {
        for (int col : {int(GoodsTextView::ColBarCode), int(GoodsTextView::ColModel), int(GoodsTextView::ColOrderCnt)}) {
            // The cell is drawn one pixel narrower than its column (the grid line).
            EXPECT_LT(needs(row, col).width(), grid->columnWidth(col - 1))
                << view.cellText(row, col).toStdString() << " in column " << col;
        }
    }
    // The counts are read from a step away: drawn larger than the texts beside them.
    EXPECT_GT(needs(3, GoodsTextView::ColOrderCnt).height(), needs(3, GoodsTextView::ColBarCode).height());
}
