// The goods list widget: loading from the order set and by its own query,
// selection and scrolling, the tiles in view, speed and its looks.
#include "host/platform.h"
#include "orderdata/order_goods.h"
#include "tiles/goods_list_view.h"
#include "tiles/goods_view.h"
#include "support/expected_statements.h"
#include "tiles_fixture.h"
#include <QFile>
#include <QLabel>
#include <QTest>

using namespace TilesTest;

namespace {

const QStringList kNames = {
    QStringLiteral("不锈钢保温杯 500ml 深海蓝"), QStringLiteral("无线蓝牙耳机"), QStringLiteral("儿童防晒霜 SPF50"),
    QStringLiteral("纯棉T恤 白色 XL"), QStringLiteral("有机绿茶 250g"), QStringLiteral("办公椅腰靠垫"),
    QStringLiteral("USB-C 数据线 1米"), QStringLiteral("手工香皂礼盒（玫瑰、薰衣草、柠檬三种香味）"),
};
const QList<QColor> kColours = {QColor(0xd9, 0x4f, 0x3d), QColor(0x3d, 0x7f, 0xd9), QColor(0x4c, 0xaf, 0x50),
                                QColor(0xe0, 0x9b, 0x1a), QColor(0x8e, 0x44, 0xad), QColor(0x16, 0xa0, 0x85)};

// An order of `count` lines (item 1000+i, entry i+1) in the module-wide set,
// each with its picture file in the picture folder.
RecordList loadOrder(TileEnvironment& env, int count, bool pictures = true)
{
    std::vector<TileEnvironment::Row> rows;
    for (int i = 0; i < count; ++i)
        rows.push_back({1000 + i, i + 1, kNames[i % kNames.size()], 1 + i % 4});
    env.loadOrderSet(rows);
    if (pictures) {
        for (int i = 0; i < count; ++i) {
            const QString file = PictureTempFolder() + QStringLiteral("Tmp_%1").arg(1000 + i);
            EXPECT_TRUE(writePicture(file, kColours[i % kColours.size()], 240 + (i % 3) * 60, 240)) << file.toStdString();
        }
    }
    return GetGoodsLineSet();
}

// A list two rows high, three tiles wide.
void sizeForRows(GoodsListView& list, int rows)
{
    const int width = 3 * GoodsListModel::columnPitch() + 120 + 420 + 60;
    const int height = rows * GoodsListModel::rowPitch() + 120;
    list.resize(TwipsToPixels(width), TwipsToPixels(height));
}

} // namespace

TEST(GoodsListViewLoading, PickingGoodsSharesTheOrderLines)
{
    TileEnvironment env;
    const RecordList set = loadOrder(env, 7);
    GoodsListView list;
    sizeForRows(list, 2);
    QList<GoodsRecord> selected;
    QObject::connect(&list, &GoodsListView::GoodsSelected, [&](const GoodsRecord& r) { selected << r; });

    list.LoadPickingGoods();
    ASSERT_EQ(list.model().count(), 7);
    EXPECT_TRUE(list.IsLoadGoods());
    EXPECT_EQ(list.rowCount(), 3);
    for (int i = 0; i < 7; ++i)
        EXPECT_TRUE(list.goodsRecord(i).sameRecord(set.Item(i))) << i;
    // The first line is selected and is the station's current goods.
    ASSERT_EQ(selected.size(), 1);
    EXPECT_TRUE(selected[0].sameRecord(set.Item(0)));
    EXPECT_EQ(CurrentGoodsID(), QStringLiteral("1000"));
    EXPECT_EQ(list.selectedGoodsID(), QStringLiteral("1000"));

    // Counting writes the order line's own count and the tile in view shows it.
    list.PickingGoods(1);
    list.PickingGoods(1);
    EXPECT_EQ(set.Item(1).GetValue("GoodsCheckedCnt").toInt(), 2);
    GoodsView* tile = list.tileWidget(1);
    ASSERT_NE(tile, nullptr);
    EXPECT_EQ(tile->GoodsCheckedCnt(), 2);
    EXPECT_EQ(list.IsPicked(1), 1);   // line 1 orders 2
    EXPECT_TRUE(tile->OKShow());
    EXPECT_EQ(tile->GoodsPicture(), PictureTempFolder() + QStringLiteral("Tmp_1001"));
    EXPECT_TRUE(shows(tile->shownPicture(), kColours[1]));

    // An empty order set leaves the list as it was.
    env.loadOrderSet({});
    list.LoadPickingGoods();
    EXPECT_EQ(list.model().count(), 7);
    EXPECT_EQ(list.model().tile(1).checkedCnt, 2);

    list.RemoveGoods(0);
    EXPECT_EQ(list.model().count(), 6);
    EXPECT_EQ(list.model().tile(0).goodsId, QStringLiteral("1001"));
    EXPECT_EQ(list.tileWidget(0)->GoodsID(), QStringLiteral("1001"));
    list.ClearGoods();
    EXPECT_FALSE(list.IsLoadGoods());
    EXPECT_EQ(list.tileWidget(0), nullptr);
    EXPECT_EQ(list.selectedGoodsID(), QStringLiteral("1000"));
    list.ClearGoodsNew();
    EXPECT_EQ(list.selectedGoodsID(), QString());
    EXPECT_EQ(list.tileWidgetCount(), 0);
}

TEST(GoodsListViewLoading, OnlyTheRowsInViewHaveWidgets)
{
    TileEnvironment env;
    loadOrder(env, 60);
    GoodsListView list;
    sizeForRows(list, 2);
    list.LoadPickingGoods();
    ASSERT_EQ(list.visibleRows(), 2);
    // Two rows and a part-shown third: nine widgets for sixty lines.
    EXPECT_LE(list.tileWidgetCount(), 9);
    EXPECT_NE(list.tileWidget(8), nullptr);
    EXPECT_EQ(list.tileWidget(9), nullptr);
    // A line never in view was never decoded; asked for, it resolves like a tile.
    EXPECT_EQ(list.goodsPictureOf(40), PictureTempFolder() + QStringLiteral("Tmp_1040"));

    // Counting a line out of view changes its state, and it shows once in view.
    list.PickingGoods(45);
    EXPECT_EQ(list.model().tile(45).checkedCnt, 1);
    list.SelectedGoodsByIndex(45);
    EXPECT_EQ(list.topRow(), 14);
    GoodsView* tile = list.tileWidget(45);
    ASSERT_NE(tile, nullptr);
    EXPECT_TRUE(tile->isSelected());
    EXPECT_EQ(tile->GoodsCheckedCnt(), 1);
    EXPECT_EQ(tile->GoodsID(), QStringLiteral("1045"));
    EXPECT_EQ(list.tileWidget(0), nullptr);
    EXPECT_LE(list.tileWidgetCount(), 9);
    // The widget sits where the line's tile belongs in the list.
    EXPECT_EQ(tile->tilePosition(), QPoint(120 + 0, 120 + GoodsListModel::rowPitch()));
}

TEST(GoodsListViewSelection, ScrollingAndSelecting)
{
    TileEnvironment env;
    loadOrder(env, 7);
    GoodsListView list;
    sizeForRows(list, 2);
    list.LoadPickingGoods();

    // Line 4 sits in row 1; one click on ImgDown puts it in row 0, a second does nothing.
    EXPECT_EQ(list.model().tile(4).top, GoodsListModel::rowPitch());
    QWidget* down = list.findChild<QWidget*>("ImgDown");
    QWidget* up = list.findChild<QWidget*>("ImgUp");
    ASSERT_NE(down, nullptr);
    ASSERT_NE(up, nullptr);
    ASSERT_NE(list.findChild<QWidget*>("VScMain"), nullptr);
    QTest::mouseClick(down, Qt::LeftButton);
    EXPECT_EQ(list.topRow(), 1);
    EXPECT_EQ(list.model().tile(4).top, 0);
    EXPECT_EQ(list.tileWidget(4)->tilePosition().y(), 120);
    QTest::mouseClick(down, Qt::LeftButton);
    EXPECT_EQ(list.topRow(), 1);
    // The selection stayed on line 0 through the scrolling.
    EXPECT_EQ(list.model().selectedIndex(), 0);
    QTest::mouseClick(up, Qt::LeftButton);
    QTest::mouseClick(up, Qt::LeftButton);
    EXPECT_EQ(list.topRow(), 0);

    QList<GoodsRecord> selected;
    QObject::connect(&list, &GoodsListView::GoodsSelected, [&](const GoodsRecord& r) { selected << r; });
    list.SelectedGoodsByIndex(-1);
    list.SelectedGoodsByIndex(7);
    EXPECT_TRUE(selected.isEmpty());
    list.SelectedGoodsByIndex(6);
    ASSERT_EQ(selected.size(), 1);
    EXPECT_EQ(selected[0].GetValue("GoodsID").toInt(), 1006);
    EXPECT_EQ(list.topRow(), 1);   // row 2 brought into view
    EXPECT_EQ(list.model().selectedIndex(), 6);

    EXPECT_EQ(list.SelectedGoodsNew(1003, 4), 3);
    EXPECT_EQ(list.SelectedGoodsNew(1003, 5), -1);
    EXPECT_EQ(list.SelectedGoodsNew(0, 5), -2);
    EXPECT_EQ(list.model().selectedIndex(), 3);
    EXPECT_EQ(selected.size(), 2);
}

TEST(GoodsListViewSelection, ScanSelectionAndTileClicks)
{
    TileEnvironment env;
    GoodsListView list;
    sizeForRows(list, 3);
    // Lines 1 and 3 hold the same goods on the same entry, line 2 the same goods on another.
    list.AddGoods(goodsLine(10, 1, "a", 1));
    list.AddGoods(goodsLine(20, 2, "b", 1));
    list.AddGoods(goodsLine(20, 3, "c", 1));
    list.AddGoods(goodsLine(20, 2, "d", 1));
    list.AddGoods(goodsLine(30, 4, "e", 1));
    ASSERT_NE(list.tileWidget(4), nullptr);

    QList<GoodsRecord> selected;
    QObject::connect(&list, &GoodsListView::GoodsSelected, [&](const GoodsRecord& r) { selected << r; });
    list.SelectedGoodsSerilNumNew(20, 2);
    ASSERT_EQ(selected.size(), 1);
    EXPECT_EQ(selected[0].GetValue("GoodsName").toString(), QStringLiteral("d"));   // the later match
    EXPECT_EQ(list.model().selectedIndex(), 3);
    EXPECT_TRUE(list.tileWidget(3)->isSelected());
    EXPECT_FALSE(list.tileWidget(1)->isSelected());

    list.SelectedGoodsSerilNumNew(0, 2);       // goods 0: nothing at all
    EXPECT_EQ(list.model().selectedIndex(), 3);
    list.SelectedGoodsSerilNumNew(20, 9);      // no match: all deselected, no event
    EXPECT_EQ(list.model().selectedIndex(), -1);
    EXPECT_EQ(selected.size(), 1);

    // A click on line 2's picture selects the first line of its goods, line 1, in place.
    const QPoint before = list.tileWidget(1)->pos();
    QTest::mouseClick(list.tileWidget(2)->findChild<QWidget*>("imgMain"), Qt::LeftButton);
    ASSERT_EQ(selected.size(), 2);
    EXPECT_EQ(selected[1].GetValue("GoodsName").toString(), QStringLiteral("b"));
    EXPECT_EQ(list.model().selectedIndex(), 1);
    EXPECT_EQ(CurrentGoodsID(), QStringLiteral("20"));
    EXPECT_EQ(list.tileWidget(1)->pos(), before);

    // The goods scan's redraw reads the line again from its record.
    list.goodsRecord(4).SetValue("GoodsCheckedCnt", 3);
    list.RefreshGoodsNew(30, 4);
    EXPECT_EQ(list.tileWidget(4)->GoodsCheckedCnt(), 3);
    EXPECT_EQ(list.model().selectedIndex(), 4);
    EXPECT_EQ(selected.size(), 3);
    list.goodsRecord(0).SetValue("GoodsName", QStringLiteral("renamed"));
    list.RefreshGoods();
    EXPECT_EQ(list.tileWidget(0)->GoodsName(), QStringLiteral("renamed"));
}

TEST(GoodsListViewQueries, WebOrderStatementAndRows)
{
    TileEnvironment env;
    const QString jpeg = env.path("item.jpg");
    ASSERT_TRUE(writePicture(jpeg, kColours[2]));
    env.zip->pictureFor = [jpeg](const QString&) { return jpeg; };
    const QStringList columns = {"FItemID", "FItemName", "FQuantity", "FPicID"};
    env.getData->answer = [columns](const QString&) {
        return std::make_shared<Recordset>(columns, std::vector<std::vector<QVariant>>{
            {501, QStringLiteral("香薰蜡烛"), 3.0, 77},
            {502, QStringLiteral("陶瓷花瓶"), 1.0, QVariant()},
            {503, QStringLiteral("亚麻桌布"), 2.0, QStringLiteral("x")}});
    };
    GoodsListView list;
    sizeForRows(list, 2);

    // Without a key code nothing happens, not even a clear.
    list.AddGoods(goodsLine(1, 1, "kept", 1));
    GoodsRecord noCode;
    noCode.Add("PorpsString", "P");
    list.LoadWebOrderGoods(noCode);
    EXPECT_EQ(list.model().count(), 1);
    EXPECT_TRUE(env.getData->statements.isEmpty());

    GoodsRecord set;
    set.Add("PorpsString", QStringLiteral("Props=1"));
    set.Add("KeyCode", QStringLiteral("880012"));
    list.LoadWebOrderGoods(set);
    ASSERT_EQ(env.getData->statements.size(), 1);
    EXPECT_EQ(env.getData->statements[0], ExpectedSql::tileGoods(QStringLiteral("880012"), true));
    EXPECT_EQ(env.getData->props[0], QStringLiteral("Props=1"));

    ASSERT_EQ(list.model().count(), 3);
    const GoodsRecord first = list.goodsRecord(0);
    EXPECT_EQ(first.Keys().mid(0, 4), QStringList({"GoodsID", "GoodsName", "GoodsOrderCnt", "GoodsCheckedCnt"}));
    EXPECT_EQ(list.model().tile(0).orderCnt, 3);
    // A fetched picture is named after the item; rows without one show the default picture.
    EXPECT_EQ(first.GetValue("GoodsPicture").toString(), PictureTempFolder() + QStringLiteral("Tmp_501"));
    EXPECT_TRUE(shows(list.tileWidget(0)->shownPicture(), kColours[2]));
    EXPECT_FALSE(list.goodsRecord(1).GetValue("GoodsPicture").toString().contains("Tmp_"));
    EXPECT_TRUE(shows(list.tileWidget(1)->shownPicture(), QColor(0x80, 0x80, 0x80)));
    EXPECT_TRUE(shows(list.tileWidget(2)->shownPicture(), QColor(0x80, 0x80, 0x80)));

    // A logistics number with letters is searched as such only.
    set.SetValue("KeyCode", QStringLiteral("SF100"));
    list.LoadWebOrderGoods(set);
    EXPECT_TRUE(env.getData->statements.last().contains(
        QStringLiteral("FID as FPicID   from IC_Web2ERPOrdersEntry t1 ")));
    EXPECT_TRUE(env.getData->statements.last().contains(QStringLiteral(" Where t2.FLogisticsOrder ='SF100'\r\ngroup by")));

    // Per entry by ScanMode, keeping FEntryID; ScanMode 0 is the grouped load.
    env.getData->answer = [](const QString&) {
        return std::make_shared<Recordset>(QStringList{"FItemID", "FEntryID", "FItemName", "FQuantity", "FPicID"},
            std::vector<std::vector<QVariant>>{{601, 11, "x", 1, QVariant()}, {601, 12, "x", 2, QVariant()}});
    };
    set.SetValue("ScanMode", 1);
    list.LoadWebOrderGoodsNew(set);
    EXPECT_TRUE(env.getData->statements.last().startsWith(QStringLiteral("Select t1.FItemID,t1.FEntryID,")));
    EXPECT_EQ(list.GetGoodsIndexNew(QStringLiteral("601"), 12), 1);
    set.SetValue("ScanMode", 0);
    list.LoadWebOrderGoodsNew(set);
    EXPECT_TRUE(env.getData->statements.last().startsWith(QStringLiteral("Select t1.FItemID,t3.FName")));
}

TEST(GoodsListViewQueries, LoadErrorsKeepTheRowsBefore)
{
    TileEnvironment env;
    // The third row's quantity is no number: reading it fails.
    env.getData->answer = [](const QString&) {
        return std::make_shared<Recordset>(QStringList{"FItemID", "FItemName", "FQuantity", "FPicID"},
            std::vector<std::vector<QVariant>>{{1, "a", 1, QVariant()}, {2, "b", 1, QVariant()},
                                               {3, "c", QStringLiteral("many"), QVariant()}});
    };
    GoodsListView list;
    GoodsRecord set;
    set.Add("PorpsString", "P");
    set.Add("KeyCode", "SF1");
    list.LoadWebOrderGoods(set);
    EXPECT_EQ(list.model().count(), 2);
    ASSERT_EQ(env.boxes->texts().size(), 1);
    EXPECT_EQ(env.boxes->texts()[0], QStringLiteral("Type mismatch"));
    EXPECT_NE(list.tileWidget(1), nullptr);
}

TEST(GoodsListViewQueries, IndexByBarCode)
{
    TileEnvironment env;
    GoodsListView list;
    list.AddGoods(goodsLine(11, 1, "a", 1));
    list.AddGoods(goodsLine(12, 2, "b", 1));
    QList<std::vector<std::vector<QVariant>>> answers = {
        {{"690", 11}, {"690", 12}},   // the last row read wins
        {},
        {{"691", 99}},
        {{"692", QVariant()}}};
    env.getData->answer = [&answers](const QString&) {
        return std::make_shared<Recordset>(QStringList{"FBarCode", "FItemID"}, answers.takeFirst());
    };
    EXPECT_EQ(list.GetGoodsIndexByBarCode(QStringLiteral("order"), QStringLiteral("690")), 1);
    EXPECT_EQ(list.GetGoodsIndexByBarCode(QString(), QStringLiteral("000")), -2);
    EXPECT_EQ(list.GetGoodsIndexByBarCode(QString(), QStringLiteral("691")), -1);
    EXPECT_EQ(list.GetGoodsIndexByBarCode(QString(), QStringLiteral("692")), -2);
    EXPECT_EQ(env.getData->statements[0], GoodsListModel::goodsIndexByBarCodeSql(QStringLiteral("690")));
    EXPECT_EQ(env.getData->props[0], QStringLiteral("UserID=16394;ConnectString={Provider=SQLite;Data Source=none}"));

    env.getData->answer = [](const QString&) -> RecordsetPtr {
        throw HostError(HostErrors::Database, QStringLiteral("no connection"));
    };
    EXPECT_THROW(list.GetGoodsIndexByBarCode(QString(), QStringLiteral("690")), HostError);
}

TEST(GoodsListViewLarge, OnlyTheRowsInViewHaveWidgetsWhateverTheOrderSize)
{
    TileEnvironment env;
    GoodsListView list;
    sizeForRows(list, 3);
    list.show();
    for (int lines : {50, 200, 500, 2000}) {
        loadOrder(env, lines);
        list.LoadPickingGoods();
        ASSERT_EQ(list.model().count(), lines);
        for (int i = 0; i < 20; ++i)
            list.scrollDown();
        for (int i = 0; i < 100; ++i) {
            const int index = (i * 37) % lines;
            list.SelectedGoodsSerilNumNew(1000 + index, index + 1);
            list.PickingGoods(index);
            list.IsPicked(index);
        }
        EXPECT_LE(list.tileWidgetCount(), 3 * (list.visibleRows() + 1) + 1) << lines;
    }
}

TEST(GoodsListViewCounts, AnExcessCountOnTheListIsDrawnRed)
{
    TileEnvironment env;
    loadOrder(env, 8);
    GoodsListView list;
    sizeForRows(list, 3);
    list.show();
    list.LoadPickingGoods();
    // Line 1 complete (orders 2), line 2 over (orders 3, counted 4), line 4 selected.
    list.PickingGoods(1);
    list.PickingGoods(1);
    list.IsPicked(1);
    for (int i = 0; i < 4; ++i)
        list.PickingGoods(2);
    list.IsPicked(2);
    list.PickingGoods(3);
    list.SelectedGoodsByIndex(4);
    // The excess count is drawn red, the complete one green.
    const auto* excess = list.tileWidget(2)->findChild<QLabel*>("lblCheckedCnt");
    EXPECT_EQ(excess->palette().color(QPalette::WindowText), QColor(255, 0, 0));
    EXPECT_EQ(excess->text(), QStringLiteral("4"));
    const auto* complete = list.tileWidget(1)->findChild<QLabel*>("lblCheckedCnt");
    EXPECT_EQ(complete->palette().color(QPalette::WindowText), QColor(0, 0x80, 0));
    EXPECT_EQ(complete->text(), QStringLiteral("2"));
}
