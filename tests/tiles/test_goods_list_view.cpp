// The tiles as a worker sees them: the lines of the order, each tile's count in
// the colour of its progress, its goods' picture, and the enlarged tile.
#include "host/platform.h"
#include "orderdata/order_goods.h"
#include "tiles/goods_big_view.h"
#include "tiles/goods_list_view.h"
#include "tiles/goods_view.h"
#include "tiles_fixture.h"
#include <QLabel>

using namespace TilesTest;

namespace {

const QStringList kNames = {QStringLiteral("不锈钢保温杯 500ml 深海蓝"), QStringLiteral("无线蓝牙耳机"),
                            QStringLiteral("手工香皂礼盒（玫瑰、薰衣草、柠檬三种香味）")};
const QList<QColor> kColours = {QColor(0xd9, 0x4f, 0x3d), QColor(0x3d, 0x7f, 0xd9), QColor(0x4c, 0xaf, 0x50),
                                QColor(0xe0, 0x9b, 0x1a), QColor(0x8e, 0x44, 0xad), QColor(0x16, 0xa0, 0x85)};
const QColor Green(0, 0x80, 0), Red(0xff, 0, 0);

// An order of `count` lines (item 1000+i, entry i+1, ordered 1 + i % 4), each with its picture file.
RecordList loadOrder(TileEnvironment& env, int count)
{
    std::vector<OrderRow> rows;
    for (int i = 0; i < count; ++i)
        rows.push_back({i + 1, 1000 + i, kNames[i % kNames.size()], QString(), QString(), 1 + i % 4});
    env.loadOrderSet(rows);
    for (int i = 0; i < count; ++i) {
        const QString file = PictureTempFolder() + QStringLiteral("Tmp_%1").arg(1000 + i);
        EXPECT_TRUE(writePicture(file, kColours[i % kColours.size()], 240 + (i % 3) * 60, 240)) << file.toStdString();
    }
    return GetGoodsLineSet();
}

// A list `rows` rows high, three tiles wide.
void sizeForRows(GoodsListView& list, int rows)
{
    const int width = 3 * GoodsListModel::columnPitch() + 120 + 420 + 60;
    const int height = rows * GoodsListModel::rowPitch() + 120;
    list.resize(TwipsToPixels(width), TwipsToPixels(height));
}

QString countText(const GoodsView& tile) { return tile.findChild<QLabel*>("lblCheckedCnt")->text(); }
QColor countColour(const QWidget& tile)
{
    return tile.findChild<QLabel*>("lblCheckedCnt")->palette().color(QPalette::WindowText);
}

} // namespace

TEST(GoodsTiles, TilesShowTheLinesInViewWithTheirPicturesAndCountsInTheColourOfTheirProgress)
{
    TileEnvironment env;
    const RecordList set = loadOrder(env, 60);
    GoodsListView list;
    sizeForRows(list, 2);
    list.show();
    list.LoadPickingGoods();
    ASSERT_EQ(list.model().count(), 60);
    ASSERT_EQ(list.visibleRows(), 2);
    // Two rows and a part-shown third: nine widgets for sixty lines.
    EXPECT_EQ(list.tileWidget(9), nullptr);
    for (int i = 0; i < 9; ++i) {
        SCOPED_TRACE(i);
        EXPECT_TRUE(list.goodsRecord(i).sameRecord(set.Item(i)));
        ASSERT_NE(list.tileWidget(i), nullptr);
        EXPECT_EQ(list.tileWidget(i)->GoodsID(), QString::number(1000 + i));
        EXPECT_TRUE(shows(list.tileWidget(i)->shownPicture(), kColours[i % kColours.size()]));
    }
    // The first line is selected and is the station's current goods.
    EXPECT_EQ(CurrentGoodsID(), QStringLiteral("1000"));
    EXPECT_TRUE(list.tileWidget(0)->isSelected());

    // Line 1 complete (orders 2), line 2 over (orders 3, counted 4), line 3 short, line 6 complete.
    const QList<int> counts = {0, 2, 4, 1, 0, 0, 3};
    for (int i = 0; i < 7; ++i) {
        for (int k = 0; k < counts[i]; ++k)
            list.PickingGoods(i);
        list.IsPicked(i);
    }
    EXPECT_EQ(set.Item(2).GetValue("GoodsCheckedCnt").toInt(), 4);
    const QColor plain = countColour(*list.tileWidget(0));
    EXPECT_NE(plain, Green);
    EXPECT_NE(plain, Red);
    for (const auto& [index, colour] : {std::pair{1, Green}, std::pair{2, Red}, std::pair{3, plain}, std::pair{6, Green}}) {
        const GoodsView* tile = list.tileWidget(index);
        EXPECT_EQ(countText(*tile), QString::number(counts[index])) << index;
        EXPECT_EQ(countColour(*tile), colour) << index;
        EXPECT_EQ(tile->OKShow(), colour == Green) << index;
        EXPECT_EQ(tile->WarningShow(), colour == Red) << index;
    }

    // The last line, counted out of view, shows its count and picture when selected.
    list.PickingGoods(59);
    list.SelectedGoodsSerilNumNew(1059, 60);
    const GoodsView* tile = list.tileWidget(59);
    ASSERT_NE(tile, nullptr);
    EXPECT_TRUE(tile->isSelected());
    EXPECT_EQ(tile->GoodsID(), QStringLiteral("1059"));
    EXPECT_EQ(countText(*tile), QStringLiteral("1"));
    EXPECT_TRUE(shows(tile->shownPicture(), kColours[59 % kColours.size()]));
    EXPECT_EQ(list.tileWidget(0), nullptr);
    EXPECT_LE(list.tileWidgetCount(), 9);
}

TEST(GoodsTiles, AScanSelectsTheTileOfItsEntryAndShowsItsCount)
{
    TileEnvironment env;
    // The same goods on two entries between two other goods.
    env.loadOrderSet({{1, 10, "保温杯", "", "", 1}, {2, 20, "蓝牙耳机", "", "", 1}, {3, 20, "蓝牙耳机", "", "", 2},
                      {4, 30, "绿茶", "", "", 1}});
    GoodsListView list;
    sizeForRows(list, 3);
    list.LoadPickingGoods();
    QList<GoodsRecord> selected;
    QObject::connect(&list, &GoodsListView::GoodsSelected, [&](const GoodsRecord& r) { selected << r; });

    list.SelectedGoodsSerilNumNew(20, 2);
    ASSERT_EQ(selected.size(), 1);
    EXPECT_EQ(selected[0].GetValue("FEntryID").toInt(), 2);
    EXPECT_TRUE(list.tileWidget(1)->isSelected());
    EXPECT_FALSE(list.tileWidget(2)->isSelected());

    // The goods scan's redraw reads the line again from its record.
    list.PickingGoods(2);
    list.goodsRecord(2).SetValue("GoodsCheckedCnt", 2);
    list.RefreshGoodsNew(20, 3);
    EXPECT_EQ(countText(*list.tileWidget(2)), QStringLiteral("2"));
    EXPECT_EQ(countColour(*list.tileWidget(2)), Green);
    EXPECT_TRUE(list.tileWidget(2)->isSelected());
    EXPECT_EQ(selected.last().GetValue("FEntryID").toInt(), 3);
}

TEST(GoodsBigTile, ShowsTheCountsOfTheGoodsInHandInFull)
{
    TileEnvironment env;
    GoodsBigView big;
    big.resize(TwipsToPixels(4000), TwipsToPixels(4800));
    big.show();
    // A line of many pieces, its picture not loadable: the default picture.
    GoodsRecord line = goodsLine(9, 1, QStringLiteral("蓝牙耳机"), 1200, env.path("missing.jpg"));
    line.SetValue("GoodsCheckedCnt", 1199);
    big.showGoodsLine(line);
    EXPECT_EQ(big.GoodsName(), QStringLiteral("蓝牙耳机"));
    EXPECT_TRUE(shows(big.shownPicture(), QColor(0x80, 0x80, 0x80)));
    for (const auto& [name, text] : {std::pair{"lblOrderCnt", "1200"}, std::pair{"lblCheckedCnt", "1199"}}) {
        const auto* label = big.findChild<QLabel*>(QString::fromLatin1(name));
        ASSERT_NE(label, nullptr) << name;
        EXPECT_EQ(label->text(), QString::fromLatin1(text));
        EXPECT_LE(label->fontMetrics().horizontalAdvance(label->text()), label->contentsRect().width()) << name;
    }
}
