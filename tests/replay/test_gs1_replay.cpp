// GS1 codes scanned at the station, end to end through the launcher, in both
// views: every form a scanner or a person sends, in barcode and serial mode,
// and the labels whose check digit, date, batch, expiry or goods do not fit.
#include "support/replay_harness.h"
#include <gtest/gtest.h>

namespace {

const QString GS = QString(QChar(0x1D));        // as a scanner sends it
const QString GsSign = QString(QChar(0x241D));  // as the field shows it

QString field(const QJsonObject& step, const char* key)
{
    return step.value(QLatin1String(key)).toString();
}

QString voices(const QJsonObject& step)
{
    return jsonStrings(step.value(QStringLiteral("voice"))).join(QLatin1Char(' '));
}

int checkedOf(const QJsonObject& step, int goodsId)
{
    int total = 0;
    for (const QJsonValue& v : step.value(QStringLiteral("lines")).toArray())
        if (v.toObject().value(QStringLiteral("GoodsID")).toVariant().toInt() == goodsId)
            total += v.toObject().value(QStringLiteral("GoodsCheckedCnt")).toVariant().toInt();
    return total;
}

class Gs1Replay : public ::testing::TestWithParam<bool> {};

} // namespace

TEST_P(Gs1Replay, BarcodeAndSerialModeReadEveryFormAndRefuseWhatDoesNotFit)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    QStringList script{
        QStringLiteral("scan TxtID 10001"),
        "scan TxtItemID ]C10106931000010017" "10LOT-A7" + GS + "17271231",   // 2: GS1-128, GS after the batch
        QStringLiteral("scan TxtItemID (01)06931000010018"),                  // 3: check digit
        QStringLiteral("scan TxtItemID ]C10106931000010086" "17261301"),      // 4: month 13
        "scan TxtItemID " + GS + "0106931000010086",                          // 5: a leading FNC1
        QStringLiteral("scan TxtItemID (01)06931000010147(30)2"),             // 6: typed by a person: two bottles
        QStringLiteral("click chkHaveSerial"),
        QStringLiteral("scan TxtID 10023"),
        QStringLiteral("scan TxtItemID (01)06931000010338(10)M2403(17)260219(21)MF-0001"),   // 9: fits
        "scan TxtItemID ]d20106931000010338" "10M2403" + GS + "17260220" "21MF-0002",           // 10: another expiry
        QStringLiteral("scan TxtItemID ]Q30106931000010338" "10M2499") + GS + "21MF-0002",      // 11: another batch
        QStringLiteral("scan TxtItemID (01)06931000010017(21)MF-0002"),                         // 12: another goods' GTIN
        QStringLiteral("scan TxtItemID (21)MF-0001"),                                           // 13: a repeat
        QStringLiteral("scan TxtItemID (01)06931000010338(21)MF-0001(21)MF-0002"),              // 14: two serials
        QStringLiteral("scan TxtItemID ]C1(01)06931000010338"),                                 // 15: no AI at the start
        QStringLiteral("scan TxtItemID (01)06931000010338(10)M2403(17)260219(21)MF-0002"),   // 16: fits, passes
    };
    if (GetParam())
        script.prepend(QStringLiteral("click chkShowText"));
    const ReplayRun r = h.run(script.join(QLatin1Char('\n')) + QLatin1Char('\n'));
    ASSERT_EQ(r.exitCode, 0) << r.describe().toStdString();
    const auto step = [&](int n) { return r.step(n + (GetParam() ? 1 : 0)); };

    EXPECT_EQ(field(step(2), "lblPickedNum"), QStringLiteral("1/4"));
    EXPECT_EQ(checkedOf(step(2), 1001), 1);
    EXPECT_TRUE(field(step(2), "TxtItemID").contains(GsSign)) << field(step(2), "TxtItemID").toStdString();
    EXPECT_EQ(field(step(5), "lblPickedNum"), QStringLiteral("2/4"));
    EXPECT_EQ(checkedOf(step(6), 1014), 2);
    EXPECT_TRUE(step(6).value(QStringLiteral("ImgSuccess")).toBool());
    EXPECT_EQ(field(step(6), "TxtNum"), QStringLiteral("1"));
    EXPECT_EQ(field(step(9), "lblPickedNum"), QStringLiteral("1/2"));

    const QString findGoods = QStringLiteral("\\voice\\findGoods.wav");
    const QString batch = QStringLiteral("该商品的批次、仓库、仓位信息与订单分录上的不一致");
    const struct {
        int step;
        const char* message;
        QString voice;
    } refusals[] = {
        {3, "GS1条码的校验位不正确 (01)", findGoods},
        {4, "GS1条码的日期不正确 (17)", findGoods},
        {10, "同一分录不允许扫描不同保质期的商品", QStringLiteral("\\voice\\DifKFPeriod.wav")},
        {11, nullptr, findGoods},
        {12, nullptr, findGoods},
        {13, "该商品的序列号重复扫描", QStringLiteral("\\voice\\repeatScan.wav")},
        {14, "GS1条码中同一标识符有不同的值 (21)", findGoods},
        {15, "GS1条码中有无法识别的应用标识符", findGoods},
    };
    for (const auto& c : refusals) {
        const QJsonObject s = step(c.step);
        EXPECT_EQ(field(s, "lblMessage"), c.message ? QString::fromUtf8(c.message) : batch) << c.step;
        EXPECT_EQ(voices(s), c.voice) << c.step;
        EXPECT_EQ(field(s, "lblPickInfo"), QString()) << c.step;
        EXPECT_EQ(checkedTotal(s), 1) << c.step;   // the first piece of each order only
    }
    EXPECT_EQ(checkedOf(step(4), 1008), 0);
    EXPECT_TRUE(step(16).value(QStringLiteral("ImgSuccess")).toBool()) << r.describe().toStdString();
    EXPECT_EQ(h.queryValue(QStringLiteral("SELECT group_concat(FUniqueCode, ' ') FROM IC_Web2ERPOrders WHERE FPIckingGoodsStatus = 1"
                                          " AND FUniqueCode IN ('10001', '10023')")).toString(),
              QStringLiteral("10001 10023"));
    EXPECT_EQ(h.queryValue(QStringLiteral("SELECT group_concat(FSerialNumber, ' ') FROM (SELECT FSerialNumber FROM "
                                          "IC_Web2ErpOrderSerial ORDER BY FSerialNumber)")).toString(),
              QStringLiteral("MF-0001 MF-0002"));
}

INSTANTIATE_TEST_SUITE_P(BothViews, Gs1Replay, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& info) { return info.param ? "grid" : "tiles"; });
