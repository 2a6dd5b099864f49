// GS1 codes scanned at the station, end to end through the launcher, in both
// views: every form a scanner or a person sends, in barcode and serial mode,
// and the labels whose batch, expiry or goods do not fit.
#include "support/replay_harness.h"
#include <gtest/gtest.h>

namespace {

const QString GS = QString(QChar(0x1D));        // as a scanner sends it
const QString GsSign = QString(QChar(0x241D));  // as the field shows it

QString field(const QJsonObject& step, const char* key)
{
    return step.value(QLatin1String(key)).toString();
}

QStringList voices(const QJsonObject& step)
{
    return jsonStrings(step.value(QStringLiteral("voice")));
}

int checkedOf(const QJsonObject& step, int goodsId)
{
    int total = 0;
    for (const QJsonValue& v : step.value(QStringLiteral("lines")).toArray())
        if (v.toObject().value(QStringLiteral("GoodsID")).toVariant().toInt() == goodsId)
            total += v.toObject().value(QStringLiteral("GoodsCheckedCnt")).toVariant().toInt();
    return total;
}

class Gs1Replay : public ::testing::TestWithParam<bool> {
protected:
    ReplayRun run(const ReplayHarness& h, QStringList script)
    {
        if (GetParam())
            script.prepend(QStringLiteral("click chkShowText"));
        return h.run(script.join(QLatin1Char('\n')) + QLatin1Char('\n'));
    }
    QJsonObject step(const ReplayRun& r, int n) const { return r.step(n + (GetParam() ? 1 : 0)); }
};

} // namespace

TEST_P(Gs1Replay, BarcodeModeReadsEveryFormAndCountsTheCount)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    const QStringList script{
        QStringLiteral("scan TxtID 10001"),
        "scan TxtItemID ]C10106931000010017" "10LOT-A7" + GS + "17271231",   // 2: GS1-128, GS after the batch
        "scan TxtItemID " + GS + "0106931000010086",                          // 3: a leading FNC1
        QStringLiteral("scan TxtItemID (01)06931000010147(30)2"),             // 4: typed by a person: two bottles
    };
    const ReplayRun r = run(h, script);
    ASSERT_EQ(r.exitCode, 0) << r.describe().toStdString();
    EXPECT_EQ(field(step(r, 2), "lblPickedNum"), QStringLiteral("1/4"));
    EXPECT_EQ(checkedOf(step(r, 2), 1001), 1);
    EXPECT_TRUE(field(step(r, 2), "TxtItemID").contains(GsSign)) << field(step(r, 2), "TxtItemID").toStdString();
    EXPECT_EQ(field(step(r, 3), "lblPickedNum"), QStringLiteral("2/4"));
    EXPECT_EQ(checkedOf(step(r, 4), 1014), 2);
    EXPECT_EQ(field(step(r, 4), "lblPickedNum"), QStringLiteral("4/4"));
    EXPECT_TRUE(step(r, 4).value(QStringLiteral("ImgSuccess")).toBool());
    EXPECT_EQ(field(step(r, 4), "TxtNum"), QStringLiteral("1"));
    EXPECT_EQ(h.queryValue(QStringLiteral("SELECT FPIckingGoodsStatus FROM IC_Web2ERPOrders WHERE FUniqueCode = '10001'")).toInt(), 1);
}

TEST_P(Gs1Replay, SerialModeChecksGoodsBatchAndExpiryOfTheLabel)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    const QString batchMessage = QStringLiteral("该商品的批次、仓库、仓位信息与订单分录上的不一致");
    const QString shelfMessage = QStringLiteral("同一分录不允许扫描不同保质期的商品");
    const QStringList script{
        QStringLiteral("click chkHaveSerial"),
        QStringLiteral("scan TxtID 10023"),
        QStringLiteral("scan TxtItemID (01)06931000010338(10)M2403(17)260219(21)MF-0001"),   // 3: fits
        "scan TxtItemID ]d20106931000010338" "10M2403" + GS + "17260220" "21MF-0002",           // 4: another expiry
        QStringLiteral("scan TxtItemID ]Q30106931000010338" "10M2499") + GS + "21MF-0002",      // 5: another batch
        QStringLiteral("scan TxtItemID (01)06931000010017(21)MF-0002"),                         // 6: another goods' GTIN
        QStringLiteral("scan TxtItemID (21)MF-0001"),                                           // 7: a repeat
        QStringLiteral("scan TxtItemID (01)06931000010338(10)M2403(17)260219(21)MF-0002"),   // 8: fits, passes
    };
    const ReplayRun r = run(h, script);
    ASSERT_EQ(r.exitCode, 0) << r.describe().toStdString();
    EXPECT_EQ(field(step(r, 3), "lblPickedNum"), QStringLiteral("1/2"));
    EXPECT_EQ(field(step(r, 4), "lblMessage"), shelfMessage);
    EXPECT_EQ(voices(step(r, 4)), QStringList{QStringLiteral("\\voice\\DifKFPeriod.wav")});
    for (int n : {5, 6}) {
        EXPECT_EQ(field(step(r, n), "lblMessage"), batchMessage) << n;
        EXPECT_EQ(voices(step(r, n)), QStringList{QStringLiteral("\\voice\\findGoods.wav")}) << n;
    }
    EXPECT_EQ(voices(step(r, 7)), QStringList{QStringLiteral("\\voice\\repeatScan.wav")});
    for (int n = 4; n <= 7; ++n)
        EXPECT_EQ(checkedOf(step(r, n), 1033), 1) << n;
    EXPECT_TRUE(step(r, 8).value(QStringLiteral("ImgSuccess")).toBool()) << r.describe().toStdString();
    EXPECT_EQ(h.queryValue(QStringLiteral("SELECT group_concat(FSerialNumber, ' ') FROM (SELECT FSerialNumber FROM "
                                          "IC_Web2ErpOrderSerial ORDER BY FSerialNumber)"))
                  .toString(),
              QStringLiteral("MF-0001 MF-0002"));
}

TEST_P(Gs1Replay, ElementStringsThatDoNotReadAreRefusedAndCountNothing)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    const QStringList script{
        QStringLiteral("scan TxtID 10001"),
        QStringLiteral("scan TxtItemID 6931000010017"),
        QStringLiteral("scan TxtItemID (01)06931000010018"),            // 3: check digit
        QStringLiteral("scan TxtItemID ]C10106931000010086" "17261301"),  // 4: month 13
        QStringLiteral("click chkHaveSerial"),
        QStringLiteral("scan TxtID 10021"),
        QStringLiteral("scan TxtItemID (01)06931000010314(21)W1-0001(21)W1-0002"),   // 7: two serials
        QStringLiteral("scan TxtItemID ]C1(01)06931000010314"),                       // 8: no AI at the start
    };
    const ReplayRun r = run(h, script);
    ASSERT_EQ(r.exitCode, 0) << r.describe().toStdString();
    const struct {
        int step;
        const char* message;
    } refusals[] = {
        {3, "GS1条码的校验位不正确 (01)"},
        {4, "GS1条码的日期不正确 (17)"},
        {7, "GS1条码中同一标识符有不同的值 (21)"},
        {8, "GS1条码中有无法识别的应用标识符"},
    };
    for (const auto& c : refusals) {
        const QJsonObject s = step(r, c.step);
        EXPECT_EQ(field(s, "lblMessage"), QString::fromUtf8(c.message)) << c.step;
        EXPECT_EQ(voices(s), QStringList{QStringLiteral("\\voice\\findGoods.wav")}) << c.step;
        EXPECT_EQ(field(s, "lblPickInfo"), QString()) << c.step;
    }
    EXPECT_EQ(field(step(r, 4), "lblPickedNum"), QStringLiteral("1/4"));
    EXPECT_EQ(checkedOf(step(r, 4), 1008), 0);
    EXPECT_EQ(field(step(r, 8), "lblPickedNum"), QStringLiteral("0/"));
    EXPECT_EQ(checkedOf(step(r, 8), 1031), 0);
}

INSTANTIATE_TEST_SUITE_P(BothViews, Gs1Replay, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& info) { return info.param ? "grid" : "tiles"; });
