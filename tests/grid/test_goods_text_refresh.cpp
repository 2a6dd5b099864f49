// A refresh rewrites only the rows whose line moved or changed; whatever the
// counting did before it, afterwards every row shows its line exactly as a
// refill of all rows would, in the colour of its progress.
#include "grid/goods_text_view.h"
#include "grid/order_fixture.h"
#include <QApplication>
#include <QHeaderView>
#include <QProxyStyle>
#include <QSet>
#include <QTableWidget>
#include <random>

namespace {

const QColor Black(0, 0, 0), Green(0, 0x80, 0), Red(0xFF, 0, 0);

QString number(const GoodsRecord& line, const char* key)
{
    return QString::number(GoodsTextModel::wholeNumber(line.GetValue(QString::fromLatin1(key), 0)));
}

// Row r as a full refill writes it from the set's r-th line, and its colour after a refresh.
void expectRowShowsLine(const GoodsTextView& view, int r, const GoodsRecord& line, const std::string& when)
{
    SCOPED_TRACE(when + ", row " + std::to_string(r));
    EXPECT_EQ(view.cellText(r, GoodsTextView::ColNumber), QString::number(r));
    EXPECT_EQ(view.rowKey(r), GoodsTextModel::rowKey(line));
    EXPECT_EQ(view.rowGoodsTag(r), line.GetValue("GoodsID").toString());
    EXPECT_EQ(view.cellText(r, GoodsTextView::ColName), line.GetValue("GoodsName").toString());
    EXPECT_EQ(view.cellText(r, GoodsTextView::ColBarCode), line.GetValue("GoodsBarCode").toString());
    EXPECT_EQ(view.cellText(r, GoodsTextView::ColOrderCnt), number(line, "GoodsOrderCnt"));
    EXPECT_EQ(view.cellText(r, GoodsTextView::ColCheckedCnt), number(line, "GoodsCheckedCnt"));
    const qint16 status = GoodsTextModel::status(line);
    EXPECT_EQ(view.rowColor(r), status == 0 ? Black : status == 1 ? Green : Red);
    EXPECT_TRUE(view.rowColorUniform(r));
}

class GoodsTextRefreshTest : public OrderFixture {};

} // namespace

TEST_F(GoodsTextRefreshTest, CellsWrittenOutsideARefillAreRefilled)
{
    RecordList set = load({{2, 1, "一号", "", "", 5},
                           {5, 12, "十二号", "", "", 5},
                           {7, 30, "三十号", "", "", 1}});
    GoodsTextView view;
    view.LoadPickingGoods();

    // Goods 12's count lands in row 1 (key "12" is goods 1, entry 2): row 1's
    // line is unchanged, yet its cell was written.
    view.PickingGoods(12);
    ASSERT_EQ(view.cellText(1, GoodsTextView::ColCheckedCnt), "1");
    view.RefreshGoodsNew(30, 7);
    expectRowShowsLine(view, 1, set.Item(0), "after the whole-key count");
    EXPECT_EQ(view.cellText(1, GoodsTextView::ColCheckedCnt), "0");

    // The same with ClearCheckedCnt and a line written behind the view's back.
    view.PickingGoodsNew(1, 2);
    view.PickingGoodsNew(1, 2);
    view.RefreshGoodsNew(1, 2);
    view.ClearCheckedCnt(12);   // writes "0" into row 1, line 12 gets 0
    set.Item(2).SetValue("GoodsName", "改名");
    view.RefreshGoodsNew(1, 2);
    for (int r = 1; r <= 3; ++r)
        expectRowShowsLine(view, r, set.Item(r - 1), "after clear and rename");
    EXPECT_EQ(view.cellText(3, GoodsTextView::ColName), "改名");

    // Restored counts go through the rows too.
    GoodsRecord states;
    view.GetCheckCntNew(states);
    set.Item(0).SetValue("GoodsCheckedCnt", 4);
    set.Item(1).SetValue("GoodsCheckedCnt", 3);
    view.SetCheckCntNew(states);
    for (int r = 1; r <= 3; ++r)
        expectRowShowsLine(view, r, set.Item(r - 1), "after a restore");
    view.RefreshGoodsNew(1, 2);
    for (int r = 1; r <= 3; ++r)
        expectRowShowsLine(view, r, set.Item(r - 1), "after a restore and a refresh");
}

TEST_F(GoodsTextRefreshTest, RandomCountingThenRefreshMatchesAFullRefill)
{
    std::vector<OrderRow> rows;
    for (int i = 1; i <= 40; ++i)
        rows.push_back({100 + i, 5000 + i % 30, QStringLiteral("商品%1").arg(i), QStringLiteral("69%1").arg(i), "", 1 + i % 3});
    RecordList set = load(rows);
    GoodsTextView view;
    view.LoadPickingGoods();

    std::mt19937 random(7);
    for (int step = 0; step < 400; ++step) {
        const int index = int(random() % 40);
        const GoodsRecord line = set.Item(index);
        const qint32 goods = line.GetValue("GoodsID").toInt();
        const qint32 entry = line.GetValue("FEntryID").toInt();
        switch (random() % 6) {
        case 0:
        case 1:
            view.PickingGoodsNew(goods, entry);
            break;
        case 2:
            view.PickingGoods(goods);
            break;
        case 3:
            view.ClearCheckedCnt(goods);
            break;
        case 4:
            // without a current goods: a refill only, colours stay
            view.RefreshGoodsNew(0, 0);
            break;
        default:
            view.RefreshGoodsNew(goods, entry);
            ASSERT_EQ(view.rowCount(), 40);
            for (int r = 1; r <= 40; ++r)
                expectRowShowsLine(view, r, set.Item(r - 1), "step " + std::to_string(step));
            ASSERT_FALSE(HasFailure());
            break;
        }
    }
    // The order still holds every line once, unfinished ones first.
    bool seenDone = false;
    for (int r = 1; r <= 40; ++r) {
        const bool done = GoodsTextModel::status(set.Item(r - 1)) != 0;
        EXPECT_FALSE(seenDone && !done) << "row " << r;
        seenDone = seenDone || done;
    }
}

namespace {

// Sees the palette each row-number section is painted with.
class SectionPalettes : public QProxyStyle {
public:
    using QProxyStyle::QProxyStyle;
    mutable QSet<qint64> keys;
    mutable int sections = 0;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override
    {
        if (element == CE_HeaderSection) {
            keys.insert(option->palette.cacheKey());
            ++sections;
        }
        QProxyStyle::drawControl(element, option, painter, widget);
    }
};

} // namespace

TEST_F(GoodsTextRefreshTest, RowNumbersOfOneColourShareOnePalette)
{
    RecordList set = load({{2, 10, "甲", "", "", 1},
                           {3, 20, "乙", "", "", 2},
                           {4, 30, "丙", "", "", 1},
                           {5, 40, "丁", "", "", 3}});
    SectionPalettes style(QApplication::style()->name());
    GoodsTextView view;
    view.resize(900, 400);
    view.LoadPickingGoods();
    view.PickingGoodsNew(10, 2);   // green
    view.PickingGoodsNew(30, 4);
    view.PickingGoodsNew(30, 4);   // red
    view.RefreshGoodsNew(10, 2);
    ASSERT_EQ(view.rowColor(3), Green);
    ASSERT_EQ(view.rowColor(4), Red);
    view.fpGoods()->verticalHeader()->setStyle(&style);
    for (int i = 0; i < 10; ++i)
        view.grab();
    // Every paint used to hand the style a palette of its own, which the style
    // keeps a picture for: a station painting all day kept growing.
    EXPECT_GE(style.sections, 40);
    EXPECT_LE(style.keys.size(), 3) << "one palette per row colour";
    view.fpGoods()->verticalHeader()->setStyle(nullptr);
}
