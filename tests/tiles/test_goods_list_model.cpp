// The goods list's counting rules without widgets: counts and marks, the
// restore of an order taken up again, the look-ups and the tile rows.
#include "tiles/goods_list_model.h"
#include "tiles_fixture.h"

using TilesTest::goodsLine;

namespace {

GoodsListModel modelWith(const std::vector<int>& ordered)
{
    GoodsListModel model;
    for (size_t i = 0; i < ordered.size(); ++i)
        model.addGoods(goodsLine(int(100 + i), int(i + 1), QStringLiteral("商品%1").arg(i), ordered[i]));
    model.setRowCountFromLines();
    return model;
}

} // namespace

TEST(GoodsListModelCounts, ShortCompleteExcessAndClear)
{
    GoodsRecord line = goodsLine(7, 1, QStringLiteral("水杯"), 3);
    GoodsListModel model;
    model.addGoods(line);

    // Ordered 3, nothing checked: short, no marks.
    EXPECT_EQ(model.IsPicked(0), 0);
    EXPECT_FALSE(model.tile(0).okShow);

    // The only line is also the last one: every scan of it counts.
    for (int i = 0; i < 3; ++i)
        model.PickingGoods(0);
    EXPECT_EQ(model.IsPicked(0), 1);
    EXPECT_TRUE(model.tile(0).okShow);
    EXPECT_FALSE(model.tile(0).warningShow);
    // The record is the caller's own line: the count reached it.
    EXPECT_EQ(line.GetValue("GoodsCheckedCnt").toInt(), 3);
    EXPECT_EQ(line.GetValue("GoodsPickCnt").toInt(), 0);

    model.PickingGoods(0);
    EXPECT_EQ(model.IsPicked(0), 2);
    EXPECT_FALSE(model.tile(0).okShow);
    EXPECT_TRUE(model.tile(0).warningShow);
    EXPECT_EQ(model.GetPickedCnt(0), 3);
    EXPECT_EQ(model.GetExcessCnt(0), 1);

    // A typed quantity clears the line first; the alter mark stays until the
    // line is evaluated again.
    model.ClearCheckedCnt(0);
    EXPECT_EQ(line.GetValue("GoodsCheckedCnt").toInt(), 0);
    EXPECT_EQ(model.IsPicked(0), 0);
    EXPECT_TRUE(model.tile(0).warningShow);
}

TEST(GoodsListModelCounts, RestoresEachLineByIdentityAndFindsLinesByGoodsAndEntry)
{
    // The same goods on two entries, and a third goods.
    GoodsListModel model;
    model.addGoods(goodsLine(100, 1, QStringLiteral("保温杯"), 2));
    model.addGoods(goodsLine(100, 2, QStringLiteral("保温杯"), 2));
    model.addGoods(goodsLine(102, 3, QStringLiteral("洗衣液"), 2));
    model.setCheckedCnt(0, 2);
    model.setCheckedCnt(1, 3);
    model.records().Item(1).SetValue("FSeriNum", ",SN-1,SN-2");
    GoodsRecord saved;
    model.GetCheckCntNew(saved);

    // The same order read again, its lines in another order.
    GoodsListModel again;
    again.addGoods(goodsLine(102, 3, QStringLiteral("洗衣液"), 2));
    again.addGoods(goodsLine(100, 2, QStringLiteral("保温杯"), 2));
    again.addGoods(goodsLine(100, 1, QStringLiteral("保温杯"), 2));
    again.SetCheckCntNew(saved);
    EXPECT_EQ(again.tile(2).checkedCnt, 2);
    EXPECT_TRUE(again.tile(2).okShow);
    EXPECT_FALSE(again.tile(2).warningShow);
    EXPECT_EQ(again.tile(1).checkedCnt, 3);
    EXPECT_FALSE(again.tile(1).okShow);
    EXPECT_TRUE(again.tile(1).warningShow);
    EXPECT_EQ(again.records().Item(1).GetValue("FSeriNum").toString(), ",SN-1,SN-2");
    EXPECT_EQ(again.records().Item(2).GetValue("FSeriNum").toString(), "");
    EXPECT_EQ(again.tile(0).checkedCnt, 0);
    EXPECT_FALSE(again.tile(0).okShow);

    // The tiles count on from the restored counts.
    again.PickingGoods(2);
    EXPECT_EQ(again.IsPicked(2), 2);

    // Look-ups by goods, and by goods and entry together.
    EXPECT_EQ(again.GetGoodsIndex(QStringLiteral("   ")), -2);
    EXPECT_EQ(again.GetGoodsIndex(QStringLiteral("100")), 1);   // two lines share it: the lower
    EXPECT_EQ(again.GetGoodsIndex(QStringLiteral("99")), -1);
    EXPECT_EQ(again.GetGoodsIndexNew(QStringLiteral("100"), 1), 2);
    EXPECT_EQ(again.GetGoodsIndexNew(QStringLiteral("100"), 3), -1);
    EXPECT_EQ(again.findLine(100, 2), 1);
    EXPECT_EQ(again.findLine(102, 1), -1);

    // One past the last line counts nothing.
    again.PickingGoods(3);
    EXPECT_EQ(again.GetExcessCnt(3), 0);
}

TEST(GoodsListModelLayout, EveryLineCanBeScrolledIntoView)
{
    EXPECT_EQ(modelWith({1, 1, 1}).rowCount(), 1);
    GoodsListModel model = modelWith({1, 1, 1, 1, 1, 1, 1});
    EXPECT_EQ(model.rowCount(), 3);
    model.arrange(4);
    // Line 4: row 1, column 1; the last line alone in row 2.
    EXPECT_EQ(model.tile(4).left, GoodsListModel::columnPitch());
    EXPECT_EQ(model.tile(4).top, GoodsListModel::rowPitch());
    EXPECT_EQ(model.tile(6).left, 0);
    EXPECT_EQ(model.tile(6).top, 2 * GoodsListModel::rowPitch());

    // With two rows in view, one step down shows the last row.
    ASSERT_TRUE(model.canScrollDown());
    model.setTopRow(model.topRow() + 1);
    model.arrange(-1);
    EXPECT_EQ(model.tile(6).top, GoodsListModel::rowPitch());
    EXPECT_EQ(model.tile(1).top, -GoodsListModel::rowPitch());   // above the top row: out of view
    EXPECT_FALSE(model.canScrollDown());
    EXPECT_EQ(model.topRowShowing(2, 2), 1);
    EXPECT_EQ(model.topRowShowing(0, 2), 0);
}
