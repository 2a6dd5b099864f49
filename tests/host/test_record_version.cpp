// A record's identity and version: every write is seen, reads are not,
// copies share both, a clone starts on its own; keys still match in any case.
#include "host/goods_record.h"
#include "host/host_error.h"
#include <gtest/gtest.h>

TEST(RecordVersion, EveryWriteRaisesItReadsDoNot)
{
    GoodsRecord line;
    const quint64 start = line.version();
    line.Add("GoodsID", 25);
    line.SetValue("GoodsCheckedCnt", 0);
    const quint64 afterWrites = line.version();
    EXPECT_GT(afterWrites, start);

    EXPECT_EQ(line.GetValue("goodscheckedcnt").toInt(), 0);
    EXPECT_TRUE(line.Exists("GOODSID"));
    EXPECT_EQ(line.Item("GoodsID").toInt(), 25);
    EXPECT_EQ(line.version(), afterWrites) << "reads leave the version alone";

    // Writing the value it already has is still a write.
    line.SetValue("GoodsCheckedCnt", 0);
    EXPECT_GT(line.version(), afterWrites);
    quint64 v = line.version();
    line.Remove("NoSuchKey");
    EXPECT_EQ(line.version(), v) << "removing nothing changes nothing";
    line.Remove("goodsid");
    EXPECT_GT(line.version(), v);
    v = line.version();
    EXPECT_THROW(line.Add("GoodsCheckedCnt", 1), HostError);
    EXPECT_EQ(line.version(), v) << "a refused Add writes nothing";
    line.Clear();
    EXPECT_GT(line.version(), v);

    // A copy is the same record; a clone another one.
    GoodsRecord copy = line;
    copy.SetValue("GoodsName", "耳机");
    EXPECT_EQ(line.identity(), copy.identity());
    EXPECT_EQ(line.version(), copy.version());
    GoodsRecord clone = line.clone();
    EXPECT_NE(clone.identity(), line.identity());
    clone.SetValue("GoodsName", "线");
    EXPECT_EQ(line.GetValue("GoodsName").toString(), "耳机");
    EXPECT_EQ(GoodsRecord::none().identity(), nullptr);
    EXPECT_EQ(GoodsRecord::none().version(), 0u);
}

TEST(RecordVersion, KeysMatchExactlyOrInAnyCase)
{
    GoodsRecord entry;
    entry.SetValue("bSuccess", true);
    entry.SetValue("log", "10001通过");
    entry.SetValue("ID", "10001");
    // the log pane reads "bsuccess", the form wrote "bSuccess": one entry
    EXPECT_TRUE(entry.GetValue("bsuccess").toBool());
    entry.SetValue("BSUCCESS", false);
    EXPECT_EQ(entry.Count(), 3);
    EXPECT_EQ(entry.KeyAt(0), "bSuccess") << "the key keeps the spelling it was added with";
    EXPECT_FALSE(entry.GetValue("bSuccess", true).toBool());
    EXPECT_EQ(entry.GetValue("Id").toString(), "10001");
    EXPECT_EQ(entry.GetValue("IDs", "none").toString(), "none");
}
