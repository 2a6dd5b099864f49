// The grid's counting rules on the order's shared lines, without pixels.
#include "grid/goods_text_model.h"
#include <gtest/gtest.h>

namespace {

GoodsRecord line(int goodsId, int entryId, QVariant ordered, QVariant checked = 0)
{
    GoodsRecord g;
    g.Add("FEntryID", entryId);
    g.Add("GoodsID", goodsId);
    g.Add("GoodsOrderCnt", ordered);
    g.Add("GoodsCheckedCnt", checked);
    return g;
}

} // namespace

TEST(GoodsTextModel, CountsEachLineThroughShortCompleteAndExcess)
{
    // The order's first line is asked about like any other; goods 25 is on two entries.
    RecordList list;
    GoodsRecord first = line(25, 7, 2);
    list.Add(first);
    list.Add(line(99, 1, 5));
    GoodsRecord again = line(25, 8, 1);
    list.Add(again);
    GoodsTextModel model;
    model.setList(list);

    EXPECT_EQ(GoodsTextModel::addOne(first), 1);
    EXPECT_EQ(model.IsPickedNew(25, 7), GoodsTextModel::Short);
    GoodsTextModel::addOne(first);
    EXPECT_EQ(model.IsPickedNew(25, 7), GoodsTextModel::Complete);
    EXPECT_EQ(model.IsPicked(25), GoodsTextModel::Complete);
    EXPECT_EQ(model.GetExcessCnt(25), 0);
    GoodsTextModel::addOne(first);
    EXPECT_EQ(model.IsPickedNew(25, 7), GoodsTextModel::Excess);
    EXPECT_EQ(model.IsPicked(25), GoodsTextModel::Excess);
    EXPECT_EQ(model.GetPickedCnt(25), 2);
    EXPECT_EQ(model.GetExcessCnt(25), 1);
    EXPECT_EQ(list.Item(0).GetValue("GoodsCheckedCnt").toInt(), 3);   // written into the shared line

    // The entry-aware counts answer for the line named, not the goods' first:
    // a typed quantity takes back only its own line's picks and excess.
    EXPECT_EQ(model.IsPickedNew(25, 8), GoodsTextModel::Short);
    GoodsTextModel::addOne(again);
    EXPECT_EQ(model.IsPickedNew(25, 8), GoodsTextModel::Complete);
    EXPECT_EQ(model.GetPickedCntNew(25, 8), 1);
    EXPECT_EQ(model.GetExcessCntNew(25, 8), 0);
    EXPECT_EQ(model.GetExcessCntNew(25, 7), 1);
    EXPECT_EQ(model.GetPickedCntNew(25, 9), 0);
    EXPECT_EQ(model.IsPicked(99), GoodsTextModel::Short);

    // Counts read from text or a decimal column compare as numbers.
    EXPECT_EQ(GoodsTextModel::status(line(40, 1, QStringLiteral("10"), QStringLiteral("9"))), GoodsTextModel::Short);
    EXPECT_EQ(GoodsTextModel::status(line(41, 1, 3.0, 3)), GoodsTextModel::Complete);
}

TEST(GoodsTextModel, GoodsIndexTellsBlankFromUnknownAndRowKeysJoinIds)
{
    RecordList list;
    list.Add(line(11, 1, 1));
    list.Add(line(25, 7, 1));
    list.Add(line(25, 8, 1));
    GoodsTextModel model;
    EXPECT_EQ(model.GetGoodsIndex("25"), -1);   // no list yet
    model.setList(list);
    EXPECT_EQ(model.GetGoodsIndex("   "), -2);
    EXPECT_EQ(model.GetGoodsIndex("777"), -1);
    EXPECT_EQ(model.GetGoodsIndex("11"), 0);
    EXPECT_EQ(model.GetGoodsIndex("25"), 1);
    EXPECT_EQ(model.indexOf(25, 8), 2);
    EXPECT_EQ(model.indexOf(11, 1), 0);
    EXPECT_TRUE(model.lineOf(25, 8).sameRecord(list.Item(2)));
    EXPECT_TRUE(model.lineOf(25, 9).isNone());
    EXPECT_EQ(GoodsTextModel::rowKey(line(25, 7, 1)), "257");
}

TEST(GoodsTextModel, OpenLinesComeFirstInTheirOrderOnTheSharedSet)
{
    // Complete, short, excess, short, short.
    RecordList list;
    for (const GoodsRecord& g : {line(1, 1, 2, 2), line(2, 2, 1), line(3, 3, 1, 3), line(4, 4, 4), line(5, 5, 3, 1)})
        list.Add(g);
    const RecordList sameSet = list;
    GoodsTextModel model;
    model.setList(list);
    for (int pass = 0; pass < 2; ++pass) {   // a second pass changes nothing
        model.partitionUnfinishedFirst();
        QList<int> ids;
        for (int i = 0; i <= sameSet.UpperBound(); ++i)
            ids << sameSet.Item(i).GetValue("GoodsID").toInt();
        EXPECT_EQ(ids, (QList<int>{2, 4, 5, 1, 3})) << pass;
    }
}
