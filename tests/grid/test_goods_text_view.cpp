// The grid as a worker sees it: one row per order line from the first to the
// last, each row's count in the colour of its progress, open lines first.
#include "grid/goods_text_view.h"
#include "grid/order_fixture.h"
#include "host/platform.h"
#include <QAbstractItemDelegate>
#include <QStyleOptionViewItem>
#include <QTableWidget>

namespace {

const QColor Black(0, 0, 0), Green(0, 0x80, 0), Red(0xFF, 0, 0);

// Every row r shows the set's r-th line as a full refill writes it, in the colour of its progress.
void expectEveryRowShowsLine(const GoodsTextView& view, const RecordList& set, const char* when)
{
    ASSERT_EQ(view.rowCount(), set.Count()) << when;
    for (int r = 1; r <= view.rowCount(); ++r) {
        SCOPED_TRACE(std::string(when) + ", row " + std::to_string(r));
        const GoodsRecord line = set.Item(r - 1);
        const auto number = [&](const char* key) {
            return QString::number(GoodsTextModel::wholeNumber(line.GetValue(QString::fromLatin1(key), 0)));
        };
        EXPECT_EQ(view.cellText(r, GoodsTextView::ColNumber), QString::number(r));
        EXPECT_EQ(view.rowKey(r), GoodsTextModel::rowKey(line));
        EXPECT_EQ(view.rowGoodsTag(r), line.GetValue("GoodsID").toString());
        EXPECT_EQ(view.cellText(r, GoodsTextView::ColName), line.GetValue("GoodsName").toString());
        EXPECT_EQ(view.cellText(r, GoodsTextView::ColBarCode), line.GetValue("GoodsBarCode").toString());
        EXPECT_EQ(view.cellText(r, GoodsTextView::ColOrderCnt), number("GoodsOrderCnt"));
        EXPECT_EQ(view.cellText(r, GoodsTextView::ColCheckedCnt), number("GoodsCheckedCnt"));
        const qint16 status = GoodsTextModel::status(line);
        EXPECT_EQ(view.rowColor(r), status == 0 ? Black : status == 1 ? Green : Red);
        EXPECT_TRUE(view.rowColorUniform(r));
    }
}

// "key=count" of every row, top to bottom.
QStringList shownCounts(const GoodsTextView& view)
{
    QStringList shown;
    for (int r = 1; r <= view.rowCount(); ++r)
        shown << view.rowKey(r) + "=" + view.cellText(r, GoodsTextView::ColCheckedCnt);
    return shown;
}

} // namespace

class GoodsTextViewTest : public OrderFixture {};

TEST_F(GoodsTextViewTest, EachRowShowsItsLineAndCountAndOpenLinesComeFirst)
{
    // The same goods on two entries, ordered 1 and 2, and a serial-managed goods.
    RecordList set = load({{7, 25, "耳机", "6931000010024", "X-1", 1},
                           {8, 25, "耳机", "6931000010024", "X-1", 2},
                           {9, 26, "数据线", "6931000010154", "", 1, 3},
                           {10, 27, "充电器", "6931000010185", "", 3}});
    GoodsTextView view;
    view.LoadPickingGoods();
    expectEveryRowShowsLine(view, set, "loaded");
    EXPECT_EQ(view.cellText(1, GoodsTextView::ColModel), "X-1");
    EXPECT_EQ(view.cellText(1, GoodsTextView::ColSerial), "");
    EXPECT_EQ(view.cellText(3, GoodsTextView::ColSerial), "Y");
    // The first line is the current goods.
    EXPECT_EQ(view.activeRow(), 1);
    EXPECT_EQ(CurrentGoodsID(), "25");

    // A scan writes the count of its own row, in place.
    view.PickingGoodsNew(25, 8);
    EXPECT_EQ(shownCounts(view), (QStringList{"257=0", "258=1", "269=0", "2710=0"}));

    // The first entry complete: it goes below the open lines, green, and stays selected.
    view.PickingGoodsNew(25, 7);
    view.RefreshGoodsNew(25, 7);
    EXPECT_EQ(shownCounts(view), (QStringList{"258=1", "269=0", "2710=0", "257=1"}));
    expectEveryRowShowsLine(view, set, "first entry complete");
    EXPECT_EQ(view.rowColor(4), Green);
    EXPECT_EQ(view.rowKey(view.activeRow()), "257");

    // An over-picked line is red and goes below too.
    view.PickingGoodsNew(26, 9);
    view.PickingGoodsNew(26, 9);
    view.RefreshGoodsNew(26, 9);
    EXPECT_EQ(shownCounts(view), (QStringList{"258=1", "2710=0", "269=2", "257=1"}));
    expectEveryRowShowsLine(view, set, "over-picked");
    EXPECT_EQ(view.rowColor(3), Red);

    // A typed quantity clears its own line, not the first one of its goods.
    view.ClearCheckedCntNew(25, 7);
    EXPECT_EQ(shownCounts(view), (QStringList{"258=1", "2710=0", "269=2", "257=0"}));
    EXPECT_EQ(view.GetPickedCntNew(25, 8), 1);
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

    // The order comes back from the database in another order.
    load(std::vector<OrderRow>(rows.rbegin(), rows.rend()));
    view.LoadPickingGoods();
    view.SetCheckCntNew(states);
    EXPECT_EQ(shownCounts(view), (QStringList{"125=2", "114=1", "113=0", "102=1"}));
    EXPECT_EQ(view.rowColor(1), Red);
    const RecordList set = GetGoodsLineSet();
    EXPECT_EQ(set.Item(1).GetValue("FSeriNum").toString(), ",SN-1");
    EXPECT_EQ(set.Item(1).GetValue("GoodsCheckedCnt").toInt(), 1);
    EXPECT_EQ(view.IsPickedNew(12, 5), 2);
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
