// The grid's counting rules on the order's shared lines, without pixels.
#include "grid/goods_text_model.h"
#include <gtest/gtest.h>

namespace {

GoodsRecord line(int goodsId, int entryId, QVariant ordered, QVariant checked)
{
    GoodsRecord g;
    g.Add("FEntryID", entryId);
    g.Add("GoodsID", goodsId);
    g.Add("GoodsOrderCnt", ordered);
    g.Add("GoodsCheckedCnt", checked);
    return g;
}

QList<int> goodsOrder(const RecordList& list)
{
    QList<int> ids;
    for (int i = 0; i <= list.UpperBound(); ++i)
        ids << list.Item(i).GetValue("GoodsID").toInt();
    return ids;
}

} // namespace

TEST(GoodsTextModel, CountsEveryLineThroughShortCompleteAndExcess)
{
    // The order's first line is asked about like any other.
    RecordList list;
    GoodsRecord g = line(25, 7, 2, 0);
    list.Add(g);
    list.Add(line(99, 1, 5, 0));
    GoodsRecord again = line(25, 8, 1, 0);   // the same goods on a later entry
    list.Add(again);
    GoodsTextModel model;
    model.setList(list);

    EXPECT_EQ(GoodsTextModel::addOne(g), 1);
    EXPECT_EQ(model.IsPickedNew(25, 7), GoodsTextModel::Short);
    EXPECT_EQ(model.GetPickedCnt(25), 1);
    GoodsTextModel::addOne(g);
    EXPECT_EQ(model.IsPickedNew(25, 7), GoodsTextModel::Complete);
    EXPECT_EQ(model.IsPicked(25), GoodsTextModel::Complete);
    EXPECT_EQ(model.GetPickedCnt(25), 2);
    EXPECT_EQ(model.GetExcessCnt(25), 0);
    GoodsTextModel::addOne(g);
    EXPECT_EQ(model.IsPickedNew(25, 7), GoodsTextModel::Excess);
    EXPECT_EQ(model.GetPickedCnt(25), 2);
    EXPECT_EQ(model.GetExcessCnt(25), 1);
    EXPECT_EQ(list.Item(0).GetValue("GoodsCheckedCnt").toInt(), 3);   // written into the shared line

    // The plain operations answer for the first line of the goods, the
    // entry-aware ones for the line named.
    EXPECT_EQ(model.IsPickedNew(25, 8), GoodsTextModel::Short);
    GoodsTextModel::addOne(again);
    GoodsTextModel::addOne(again);
    EXPECT_EQ(model.GetPickedCntNew(25, 8), 1);
    EXPECT_EQ(model.GetPickedCntNew(25, 9), 0);
    EXPECT_EQ(model.IsPicked(99), GoodsTextModel::Short);
    EXPECT_EQ(model.GetPickedCnt(0), 0);

    // Counts read from text or a decimal column compare as numbers.
    EXPECT_EQ(GoodsTextModel::status(line(40, 1, QStringLiteral("10"), QStringLiteral("9"))), GoodsTextModel::Short);
    EXPECT_EQ(GoodsTextModel::status(line(41, 1, 3.0, 3)), GoodsTextModel::Complete);
}

TEST(GoodsTextModel, ATypedQuantityTakesBackOnlyItsOwnLinesCounts)
{
    // One goods on two entries of an order, ordered 1 and 2. A typed
    // quantity replaces what its line had: the station takes that line's
    // picked and excess units back, clears it and counts the quantity anew.
    RecordList list;
    list.Add(line(1001, 11, 1, 0));
    list.Add(line(1001, 12, 2, 0));
    GoodsTextModel model;
    model.setList(list);
    int picked = 0;
    int excess = 0;   // the excess count of the verdict
    auto typed = [&](qint32 entry, int quantity) {
        picked -= model.GetPickedCntNew(1001, entry);
        excess -= model.GetExcessCntNew(1001, entry);
        GoodsRecord l = model.lineOf(1001, entry);
        l.SetValue("GoodsCheckedCnt", 0);
        for (int k = 0; k < quantity; ++k) {
            GoodsTextModel::addOne(l);
            if (model.IsPickedNew(1001, entry) == GoodsTextModel::Excess)
                ++excess;
            else
                ++picked;
        }
    };

    typed(11, 3);
    EXPECT_EQ(model.GetExcessCntNew(1001, 11), 2);
    EXPECT_EQ(excess, 2);
    typed(12, 2);
    EXPECT_EQ(model.GetExcessCntNew(1001, 11), 2);
    EXPECT_EQ(model.GetExcessCntNew(1001, 12), 0);
    EXPECT_EQ(model.GetPickedCntNew(1001, 12), 2);
    EXPECT_EQ(excess, 2);
    EXPECT_EQ(picked, 3);
    // Typed again on the first entry: its old excess goes, its new one counts.
    typed(11, 2);
    EXPECT_EQ(excess, 1);
    EXPECT_EQ(picked, 3);
}

TEST(GoodsTextModel, GoodsIndexTellsBlankFromUnknownAndRowKeysJoinIds)
{
    RecordList list;
    list.Add(line(11, 1, 1, 0));
    list.Add(line(25, 7, 1, 0));
    list.Add(line(25, 8, 1, 0));
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
    EXPECT_EQ(GoodsTextModel::rowKey(line(25, 7, 1, 0)), "257");
    EXPECT_EQ(GoodsTextModel::wholeNumber(QStringLiteral(" 42 ")), 42);
    EXPECT_EQ(GoodsTextModel::wholeNumber(QStringLiteral("abc")), 0);
}

TEST(GoodsTextModel, PartitionIsStableAndWorksOnTheSharedSet)
{
    RecordList list;
    list.Add(line(1, 1, 2, 2));   // A complete
    list.Add(line(2, 2, 1, 0));   // B short
    list.Add(line(3, 3, 1, 3));   // C excess
    list.Add(line(4, 4, 4, 0));   // D short
    list.Add(line(5, 5, 3, 1));   // E short
    const RecordList sameSet = list;
    GoodsTextModel model;
    model.setList(list);
    model.partitionUnfinishedFirst();
    EXPECT_EQ(goodsOrder(sameSet), (QList<int>{2, 4, 5, 1, 3}));
    model.partitionUnfinishedFirst();   // a second pass changes nothing
    EXPECT_EQ(goodsOrder(sameSet), (QList<int>{2, 4, 5, 1, 3}));
}
