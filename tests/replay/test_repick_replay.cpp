// Serial picking, its rows on the server, and re-pick, end to end in the tile
// view and in the grid view.
#include "support/replay_harness.h"
#include <gtest/gtest.h>

namespace {

QString field(const QJsonObject& step, const char* key)
{
    return step.value(QLatin1String(key)).toString();
}

QStringList voices(const QJsonObject& step)
{
    return jsonStrings(step.value(QStringLiteral("voice")));
}

} // namespace

class RePickReplay : public ::testing::TestWithParam<bool> {};

TEST_P(RePickReplay, SerialOrderIsVerifiedTwiceWithoutDoubledRowsAndVerifiedOrdersComeBack)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    const QString cup = h.queryValue(QStringLiteral("SELECT FBarCode FROM t_Barcode WHERE FItemID = 1009")).toString();
    QStringList script{QStringLiteral("click chkHaveSerial"),
                       QStringLiteral("scan TxtID 10021"),
                       QStringLiteral("scan TxtItemID W1-0001"),
                       QStringLiteral("scan TxtItemID W1-0001"),    // 4: twice
                       QStringLiteral("type TxtNum 2"),
                       QStringLiteral("scan TxtItemID PAD-0001"),   // 6: two at once
                       QStringLiteral("scan TxtItemID W1-0002"),
                       QStringLiteral("scan TxtItemID PAD-0001"),   // 8: passed
                       QStringLiteral("click CmdBtnRePick"),        // 9
                       QStringLiteral("scan TxtItemID W1-0003"),
                       QStringLiteral("scan TxtItemID W1-0001"),
                       QStringLiteral("scan TxtItemID PAD-0002"),   // 12: passed again
                       QStringLiteral("click chkHaveSerial"),
                       QStringLiteral("scan TxtID 10006"),          // 14: verified before, refused
                       QStringLiteral("type TxtID +"),
                       QStringLiteral("click CmdBtnRePick"),        // 16: takes the last code scanned
                       QStringLiteral("scan TxtItemID ") + cup,     // 17
                       QStringLiteral("type TxtID NO-SUCH-ORDER"),
                       QStringLiteral("click CmdBtnRePick")};       // 19
    if (GetParam())
        script.prepend(QStringLiteral("click chkShowText"));
    const ReplayRun r = h.run(script.join(QLatin1Char('\n')) + QLatin1Char('\n'));
    ASSERT_EQ(r.exitCode, 0) << r.describe().toStdString();
    ASSERT_EQ(r.steps.size(), script.size()) << r.describe().toStdString();
    const auto step = [&](int n) { return r.step(n + (GetParam() ? 1 : 0)); };
    EXPECT_EQ(field(step(2), "lblOrderNum"), QStringLiteral("3"));

    EXPECT_EQ(voices(step(4)), QStringList{QStringLiteral("\\voice\\repeatScan.wav")});
    EXPECT_EQ(field(step(4), "lblMessage"), QStringLiteral("该商品的序列号重复扫描"));
    EXPECT_EQ(checkedTotal(step(4)), 1);
    const QJsonArray boxes = step(6).value(QStringLiteral("boxes")).toArray();
    ASSERT_EQ(boxes.size(), 1);
    EXPECT_EQ(boxes[0].toObject().value(QStringLiteral("text")).toString(), QStringLiteral("亲，序列号扫描不支持手动批量扫描!"));
    EXPECT_EQ(checkedTotal(step(6)), 1);
    EXPECT_TRUE(step(8).value(QStringLiteral("ImgSuccess")).toBool());
    EXPECT_EQ(voices(step(8)), QStringList{QStringLiteral("\\voice\\Succes.wav")});

    EXPECT_FALSE(step(9).value(QStringLiteral("ImgSuccess")).toBool());
    EXPECT_EQ(checkedTotal(step(9)), 0);
    EXPECT_EQ(field(step(9), "lblPickedNum"), QStringLiteral("0/"));
    for (const QString& row : jsonStrings(step(9).value(QStringLiteral("log"))))
        EXPECT_FALSE(row.startsWith(QStringLiteral("10021"))) << row.toStdString();
    EXPECT_TRUE(step(12).value(QStringLiteral("ImgSuccess")).toBool());
    const QString rows = h.queryValue(QStringLiteral(
        "SELECT group_concat(r, ' ') FROM (SELECT FEntryID || '|' || FSerialNumber AS r FROM IC_Web2ErpOrderSerial ORDER BY r)")).toString();
    EXPECT_EQ(rows, QStringLiteral("53|W1-0001 53|W1-0003 54|PAD-0002"));

    EXPECT_EQ(field(step(14), "lblMessage"), QStringLiteral("此单已校验通过"));
    EXPECT_EQ(field(step(16), "TxtID"), QStringLiteral("10006"));
    EXPECT_EQ(field(step(16), "lblOrderNum"), QStringLiteral("1"));
    EXPECT_EQ(field(step(16), "lblMessage"), QString());
    EXPECT_TRUE(step(17).value(QStringLiteral("ImgSuccess")).toBool());
    EXPECT_EQ(field(step(19), "lblMessage"), QStringLiteral("找不到物流单号/唯一码/商品条码"));
    EXPECT_EQ(field(step(19), "lblOrderNum"), QStringLiteral("0"));

    for (const QJsonObject& s : r.steps)
        if (field(s, "command").startsWith(QStringLiteral("scan TxtItemID"))) {
            EXPECT_EQ(field(s, "TxtNum"), QStringLiteral("1")) << field(s, "command").toStdString();
        }
    EXPECT_EQ(h.queryValue(QStringLiteral("SELECT group_concat(FPIckingGoodsStatus || '/' || FPickingGoodMan, ' ') "
                                          "FROM IC_Web2ERPOrders WHERE FUniqueCode IN ('10006', '10021') ORDER BY FID")).toString(),
              QStringLiteral("1/201 1/201"));
}

INSTANTIATE_TEST_SUITE_P(Views, RePickReplay, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& info) { return info.param ? "Grid" : "Tiles"; });
