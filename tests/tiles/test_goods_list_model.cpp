// The goods list's rules without widgets: counts and marks, the keyed tables,
// the look-ups, the arrangement of the tiles and the statements.
#include "host/host_error.h"
#include "tiles/goods_list_model.h"
#include "tiles/goods_view.h"
#include "support/expected_statements.h"
#include "tiles_fixture.h"
#include <limits>

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

long errorNumber(const std::function<void()>& f)
{
    try {
        f();
    } catch (const HostError& e) {
        return e.number();
    }
    return 0;
}

} // namespace

TEST(GoodsListModelCounts, ShortCompleteExcessAndClear)
{
    GoodsRecord line = goodsLine(7, 1, QStringLiteral("水杯"), 3);
    GoodsListModel model;
    model.addGoods(line);

    // Ordered 3, nothing checked: nothing picked, nothing in excess, no marks.
    EXPECT_EQ(model.GetPickedCnt(0), 0);
    EXPECT_EQ(model.GetExcessCnt(0), 0);
    EXPECT_EQ(model.IsPicked(0), 0);
    EXPECT_FALSE(model.tile(0).okShow);
    EXPECT_FALSE(model.tile(0).warningShow);

    for (int i = 0; i < 3; ++i)
        model.PickingGoods(0);
    EXPECT_EQ(model.IsPicked(0), 1);
    EXPECT_TRUE(model.tile(0).okShow);
    EXPECT_FALSE(model.tile(0).warningShow);
    // The record is the caller's own line: the count reached it.
    EXPECT_EQ(line.GetValue("GoodsCheckedCnt").toInt(), 3);
    EXPECT_TRUE(line.GetValue("OkShow").toBool());

    model.PickingGoods(0);
    EXPECT_EQ(model.IsPicked(0), 2);
    EXPECT_FALSE(model.tile(0).okShow);
    EXPECT_TRUE(model.tile(0).warningShow);
    EXPECT_EQ(model.GetPickedCnt(0), 3);
    EXPECT_EQ(model.GetExcessCnt(0), 1);
    EXPECT_TRUE(line.GetValue("WarningShow").toBool());

    // Clearing leaves the alter mark until somebody evaluates the line again.
    model.ClearCheckedCnt(0);
    EXPECT_EQ(model.tile(0).checkedCnt, 0);
    EXPECT_EQ(line.GetValue("GoodsCheckedCnt").toInt(), 0);
    EXPECT_TRUE(model.tile(0).warningShow);
    EXPECT_EQ(model.IsPicked(0), 0);
    EXPECT_TRUE(model.tile(0).warningShow);

    // Complete again: OK shown, the old alter mark is left as it was.
    for (int i = 0; i < 3; ++i)
        model.PickingGoods(0);
    EXPECT_EQ(model.IsPicked(0), 1);
    EXPECT_TRUE(model.tile(0).okShow);
    EXPECT_TRUE(model.tile(0).warningShow);
}

TEST(GoodsListModelCounts, IndexesOutOfRange)
{
    GoodsListModel model = modelWith({2, 2});
    model.PickingGoods(1);

    // One past the last line: nothing happens, queries give 0.
    model.PickingGoods(2);
    model.ClearCheckedCnt(2);
    EXPECT_EQ(model.GetExcessCnt(2), 0);
    EXPECT_EQ(model.GetPickedCnt(99), 0);
    EXPECT_EQ(model.tile(0).checkedCnt, 0);
    EXPECT_EQ(model.tile(1).checkedCnt, 1);

    // IsPicked has no bounds test of its own, and no line has a negative index.
    EXPECT_EQ(errorNumber([&] { model.IsPicked(2); }), 340);
    EXPECT_EQ(errorNumber([&] { model.PickingGoods(-1); }), 340);
    EXPECT_EQ(errorNumber([&] { model.GetPickedCnt(-1); }), 340);

    // A count at the top of the 32-bit range does not wrap round.
    model.setCheckedCnt(0, std::numeric_limits<qint32>::max());
    EXPECT_EQ(errorNumber([&] { model.PickingGoods(0); }), HostErrors::Overflow);
    EXPECT_EQ(model.tile(0).checkedCnt, std::numeric_limits<qint32>::max());
}

TEST(GoodsListModelCounts, KeyedTablesRoundTripAndGap)
{
    GoodsListModel model = modelWith({1, 2, 3, 4});
    model.setCheckedCnt(0, 1);
    model.setCheckedCnt(1, 5);
    model.setCheckedCnt(3, 2);

    GoodsRecord saved;
    model.GetCheckCnt(saved);
    EXPECT_EQ(saved.Keys(), QStringList({"0", "1", "2", "3"}));
    for (int i = 0; i < 4; ++i)
        model.setCheckedCnt(i, 9);
    model.SetCheckCnt(saved);
    EXPECT_EQ(model.tile(0).checkedCnt, 1);
    EXPECT_EQ(model.tile(1).checkedCnt, 5);
    EXPECT_EQ(model.tile(2).checkedCnt, 0);
    EXPECT_EQ(model.tile(3).checkedCnt, 2);
    EXPECT_EQ(model.record(1).GetValue("GoodsCheckedCnt").toInt(), 5);
    // The marks are the caller's business after SetCheckCnt.
    EXPECT_FALSE(model.tile(0).okShow);

    // A gap ends the restore: "3" is never reached.
    GoodsRecord gap;
    gap.Add("0", 4);
    gap.Add("1", 4);
    gap.Add("3", 4);
    model.SetCheckCnt(gap);
    EXPECT_EQ(model.tile(0).checkedCnt, 4);
    EXPECT_EQ(model.tile(1).checkedCnt, 4);
    EXPECT_EQ(model.tile(2).checkedCnt, 0);
    EXPECT_EQ(model.tile(3).checkedCnt, 2);

    // The host's keyed table refuses a key twice; a value that is no number is a type mismatch.
    GoodsRecord taken;
    taken.Add("2", 1);
    EXPECT_EQ(errorNumber([&] { model.GetCheckCnt(taken); }), HostErrors::DuplicateKey);
    GoodsRecord bad;
    bad.Add("0", QStringLiteral("abc"));
    EXPECT_EQ(errorNumber([&] { model.SetCheckCnt(bad); }), HostErrors::TypeMismatch);
}

TEST(GoodsListModelCounts, NewTableRestoresEachLineByIdentityWithMarksAndSerials)
{
    GoodsListModel model = modelWith({2, 2, 2});
    model.setCheckedCnt(0, 2);
    model.setCheckedCnt(1, 3);
    model.records().Item(1).SetValue("FSeriNum", ",SN-1,SN-2");
    GoodsRecord saved;
    model.GetCheckCntNew(saved);

    // The same order read again, its lines in another order.
    GoodsListModel again;
    for (int i = 2; i >= 0; --i)
        again.addGoods(goodsLine(100 + i, i + 1, QStringLiteral("商品%1").arg(i), 2));
    again.SetCheckCntNew(saved);
    EXPECT_EQ(again.tile(2).checkedCnt, 2);
    EXPECT_TRUE(again.tile(2).okShow);
    EXPECT_FALSE(again.tile(2).warningShow);
    EXPECT_EQ(again.tile(1).checkedCnt, 3);
    EXPECT_FALSE(again.tile(1).okShow);
    EXPECT_TRUE(again.tile(1).warningShow);
    EXPECT_EQ(again.records().Item(1).GetValue("FSeriNum").toString(), ",SN-1,SN-2");
    EXPECT_EQ(again.records().Item(1).GetValue("GoodsCheckedCnt").toInt(), 3);
    EXPECT_EQ(again.tile(0).checkedCnt, 0);
    EXPECT_FALSE(again.tile(0).okShow);

    // A state taken before a count is not changed by the count.
    model.PickingGoods(2);
    again.SetCheckCntNew(saved);
    EXPECT_EQ(again.tile(0).checkedCnt, 0);
}

TEST(GoodsListModelLookups, GoodsIndexRules)
{
    GoodsListModel model;
    model.addGoods(goodsLine(25, 7, "a", 1));
    model.addGoods(goodsLine(QStringLiteral("31"), 8, "b", 1));
    model.addGoods(goodsLine(25, 9, "c", 1));

    EXPECT_EQ(model.GetGoodsIndex(QStringLiteral("   ")), -2);
    EXPECT_EQ(model.GetGoodsIndex(QString()), -2);
    EXPECT_EQ(model.GetGoodsIndex(QStringLiteral("25")), 0);   // two lines share it: the lower
    EXPECT_EQ(model.GetGoodsIndex(QStringLiteral("31")), 1);
    EXPECT_EQ(model.GetGoodsIndex(QStringLiteral(" 31")), -1); // compared as given
    EXPECT_EQ(model.GetGoodsIndex(QStringLiteral("99")), -1);
    EXPECT_TRUE(model.GoodsIDExists(QStringLiteral("31")));
    EXPECT_FALSE(model.GoodsIDExists(QStringLiteral("3")));

    EXPECT_EQ(model.GetGoodsIndexNew(QStringLiteral("25"), 9), 2);
    EXPECT_EQ(model.GetGoodsIndexNew(QStringLiteral("25"), 8), -1);
    EXPECT_EQ(model.GetGoodsIndexNew(QStringLiteral(" "), 9), -2);
    EXPECT_EQ(model.findLine(31, 8), 1);
    EXPECT_EQ(model.findLine(25, 9), 2);
    EXPECT_EQ(model.findLine(25, 1), -1);
}

TEST(GoodsListModelLayout, SevenLinesInThreeColumns)
{
    GoodsListModel model = modelWith({1, 1, 1, 1, 1, 1, 1});
    EXPECT_EQ(model.rowCount(), 3);
    model.arrange(4);
    const int columnPitch = GoodsView::TileWidth + 120;
    const int rowPitch = GoodsView::TileHeight + 120;
    // Line 4: row 1, column 1.
    EXPECT_EQ(model.tile(4).left, columnPitch);
    EXPECT_EQ(model.tile(4).top, rowPitch);
    EXPECT_EQ(model.tile(6).left, 0);
    EXPECT_EQ(model.tile(6).top, 2 * rowPitch);
    EXPECT_EQ(model.selectedIndex(), 4);
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(model.tile(i).selected, i == 4) << i;

    // One step down is allowed while the top row is below the row count - 2.
    ASSERT_TRUE(model.canScrollDown());
    EXPECT_FALSE(model.canScrollUp());
    model.setTopRow(model.topRow() + 1);
    model.arrange(-1);
    EXPECT_EQ(model.tile(4).top, 0);
    EXPECT_EQ(model.tile(1).top, -rowPitch);   // above the top row: out of view
    EXPECT_FALSE(model.canScrollDown());
    EXPECT_TRUE(model.canScrollUp());

    // A negative index selects by the selected goods ID, its first line.
    model.setSelectedGoodsID(QStringLiteral("102"));
    model.arrange(-1);
    EXPECT_EQ(model.selectedIndex(), 2);
    // A click moves the selection only.
    model.selectOnly(5);
    EXPECT_EQ(model.selectedIndex(), 5);
    EXPECT_EQ(model.tile(5).top, 0);
}

TEST(GoodsListModelLayout, RowCountsAndBringingIntoView)
{
    EXPECT_EQ(modelWith({}).rowCount(), 1);
    EXPECT_EQ(modelWith({1, 1, 1}).rowCount(), 1);
    EXPECT_EQ(modelWith({1, 1, 1, 1}).rowCount(), 2);
    GoodsListModel model = modelWith(std::vector<int>(20, 1));
    EXPECT_EQ(model.rowCount(), 7);

    model.setTopRow(2);
    EXPECT_EQ(model.topRowShowing(3, 2), 2);  // already in view
    EXPECT_EQ(model.topRowShowing(5, 2), 4);  // below: last row of the view
    EXPECT_EQ(model.topRowShowing(0, 2), 0);  // above: first row of the view
    EXPECT_EQ(model.topRowShowing(6, 0), 6);  // at least one row is in view

    // Removing a line moves the later ones up one index.
    model.removeGoods(0);
    EXPECT_EQ(model.count(), 19);
    EXPECT_EQ(model.tile(0).goodsId, QStringLiteral("101"));
    model.removeGoods(19);
    EXPECT_EQ(model.count(), 19);
}

TEST(GoodsListModelValues, ToInt32)
{
    EXPECT_EQ(GoodsListModel::toInt32(QVariant()), 0);
    EXPECT_EQ(GoodsListModel::toInt32(QStringLiteral(" 7 ")), 7);
    EXPECT_EQ(GoodsListModel::toInt32(QVariant::fromValue<qint16>(-3)), -3);
    EXPECT_EQ(GoodsListModel::toInt32(2.5), 2);    // half to even
    EXPECT_EQ(GoodsListModel::toInt32(QStringLiteral("3.5")), 4);
    EXPECT_EQ(GoodsListModel::toInt32(true), -1);
    EXPECT_EQ(errorNumber([] { GoodsListModel::toInt32(QStringLiteral("12a")); }), HostErrors::TypeMismatch);
    EXPECT_EQ(errorNumber([] { GoodsListModel::toInt32(3000000000.0); }), HostErrors::Overflow);
    EXPECT_EQ(errorNumber([] { GoodsListModel::toInt32(QVariant::fromValue<qint64>(-3000000000LL)); }), HostErrors::Overflow);
}

TEST(GoodsListModelStatements, WebOrderAndBarCode)
{
    EXPECT_EQ(GoodsListModel::webOrderGoodsSql(QStringLiteral("2024")), ExpectedSql::tileGoods(QStringLiteral("2024"), true));
    EXPECT_EQ(GoodsListModel::webOrderGoodsSql(QStringLiteral("SF1")), ExpectedSql::tileGoods(QStringLiteral("SF1"), false));
    // No table hints, and one line break only.
    const QString sql = GoodsListModel::webOrderGoodsSql(QStringLiteral("1"));
    EXPECT_FALSE(sql.contains(QStringLiteral("nolock"), Qt::CaseInsensitive));
    EXPECT_EQ(sql.count(QStringLiteral("\r\n")), 1);
    EXPECT_TRUE(GoodsListModel::webOrderEntryGoodsSql(QStringLiteral("1")).startsWith(
        QStringLiteral("Select t1.FItemID,t1.FEntryID,t3.FName as FItemName,t1.FQuantity FQuantity,t4.FID as FPicID  ")));

    EXPECT_EQ(GoodsListModel::goodsIndexByBarCodeSql(QStringLiteral("690123")),
              ExpectedSql::tileGoodsIndexByBarCode(QStringLiteral("690123")));
}
