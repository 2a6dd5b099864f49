// Goods scans end to end: the launcher on a fresh demo database, in the tile
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

class GoodsScanReplay : public ::testing::TestWithParam<bool> {};

TEST_P(GoodsScanReplay, WrongExcessAndUnknownScansAreAnsweredAndTheOrderPasses)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    const auto scan = [&h](int itemId) {
        return QStringLiteral("scan TxtItemID ")
            + h.queryValue(QStringLiteral("SELECT FBarCode FROM t_Barcode WHERE FItemID = ?"), {itemId}).toString();
    };
    QStringList script{QStringLiteral("scan TxtID 10001"),
                       scan(1001),
                       scan(1001),                                        // 3: its line is complete
                       QStringLiteral("type TxtNum 3"),
                       scan(1014),                                        // 5: 3 on a line of 2
                       scan(1002),                                        // 6: another order's goods
                       QStringLiteral("type TxtNum x"),                   // 7
                       QStringLiteral("key TxtNum Enter"),                // 8
                       QStringLiteral("scan TxtItemID 6900000000000"),    // 9: TxtNum still empty
                       QStringLiteral("scan TxtItemID 6900000000000"),    // 10: nobody's code
                       scan(1008)};                                       // 11: the last unit
    if (GetParam())
        script.prepend(QStringLiteral("click chkShowText"));
    const ReplayRun r = h.run(script.join(QLatin1Char('\n')) + QLatin1Char('\n'));
    ASSERT_EQ(r.exitCode, 0) << r.describe().toStdString();
    ASSERT_EQ(r.steps.size(), script.size()) << r.describe().toStdString();
    const auto step = [&](int n) { return r.step(n + (GetParam() ? 1 : 0)); };
    EXPECT_EQ(field(step(11), "view"), GetParam() ? QStringLiteral("grid") : QStringLiteral("tiles"));

    EXPECT_EQ(voices(step(3)), QStringList{QStringLiteral("\\voice\\Error.wav")});
    EXPECT_EQ(field(step(3), "lblPickInfo"), QStringLiteral("非本单商品"));
    EXPECT_EQ(checkedTotal(step(3)), 1);

    EXPECT_EQ(voices(step(5)), QStringList{QStringLiteral("\\voice\\Excess.wav")});
    EXPECT_EQ(field(step(5), "lblPickInfo"), QStringLiteral("拣货超量"));
    EXPECT_EQ(field(step(5), "lblPickedNum"), QStringLiteral("3/4"));
    EXPECT_TRUE(lineSummaries(step(5)).contains(QStringLiteral("1014/3:2/1/3"))) << lineSummaries(step(5)).join(' ').toStdString();

    EXPECT_EQ(voices(step(6)), QStringList{QStringLiteral("\\voice\\Error.wav")});
    EXPECT_EQ(checkedTotal(step(6)), 4);

    for (int n : {7, 8, 9}) {
        EXPECT_EQ(field(step(n), "lblMessage"), QStringLiteral("商品数量只能为数值！")) << n;
        EXPECT_TRUE(voices(step(n)).isEmpty()) << n;
        EXPECT_EQ(checkedTotal(step(n)), 4) << n;
    }
    EXPECT_EQ(field(step(8), "TxtNum"), QString());

    EXPECT_EQ(voices(step(10)), QStringList{QStringLiteral("\\voice\\findGoods.wav")});
    EXPECT_EQ(field(step(10), "lblMessage"), QStringLiteral("找不到相应的发货单或商品"));
    EXPECT_EQ(field(step(10), "lblPickInfo"), QString());

    // Picked reaches the total: the order passes, wrong and excess units notwithstanding.
    EXPECT_TRUE(step(11).value(QStringLiteral("ImgSuccess")).toBool());
    EXPECT_EQ(voices(step(11)), QStringList{QStringLiteral("\\voice\\Succes.wav")});
    EXPECT_EQ(field(step(11), "lblPickedNum"), QStringLiteral("4/4"));
    EXPECT_EQ(field(step(11), "lblPickInfo"), QString());

    for (const QJsonObject& s : r.steps)
        if (field(s, "command").startsWith(QStringLiteral("scan TxtItemID"))) {
            EXPECT_EQ(field(s, "TxtNum"), QStringLiteral("1")) << field(s, "command").toStdString();
        }
    EXPECT_EQ(h.queryValue(QStringLiteral("SELECT FPIckingGoodsStatus || '/' || FPickingGoodMan || '/' || FDeliveryStatus "
                                          "FROM IC_Web2ERPOrders WHERE FUniqueCode = '10001'")).toString(),
              QStringLiteral("1/201/1"));
}

INSTANTIATE_TEST_SUITE_P(Views, GoodsScanReplay, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& info) { return info.param ? "Grid" : "Tiles"; });
