// Hostile scans through the launcher and its replay driver, key by key as a
// scanner types: the launcher runs the script to its end, each scan is
// answered, nothing counted changes, and the database keeps every table and
// every order.
#include "support/replay_harness.h"
#include <QJsonArray>
#include <gtest/gtest.h>

namespace {

QString text(const QJsonObject& step, const char* key) { return step.value(QLatin1String(key)).toString(); }

QString nonBmp(char32_t codePoint) { return QString::fromUcs4(&codePoint, 1); }

} // namespace

TEST(HostileReplay, HostileScansInEveryFieldAreAnsweredAndChangeNothing)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    const QString tablesSql = QStringLiteral("SELECT COUNT(*) FROM sqlite_master WHERE type = 'table'");
    const int tables = h.queryValue(tablesSql).toInt();
    const int orders = h.queryValue(QStringLiteral("SELECT COUNT(*) FROM IC_Web2ERPOrders")).toInt();
    const QString barcode = h.queryValue(QStringLiteral("SELECT FBarCode FROM t_Barcode WHERE FItemID = 1001")).toString();

    const QStringList hostileGoods{
        QStringLiteral("Zq7' OR '1'='1"),
        QStringLiteral("Zq7\u2019; drop table t_ICItem; --"),
        QStringLiteral("Zq7\u0001\u0002\t\u007F\u200B\u202E\u2028x"),
        QStringLiteral("Zq7 /* x */ -- y"),
        QStringLiteral("Zq7; delete from IC_Web2ERPOrders"),
        QStringLiteral("Zq7") + nonBmp(0x1F600) + nonBmp(0x20000),
        QStringLiteral("Zq7") + QString(9997, QLatin1Char('8')),
    };
    QStringList script{QStringLiteral("scan TxtID 10001"), QStringLiteral("scan TxtItemID ") + barcode};
    for (const QString& code : hostileGoods)
        script << QStringLiteral("scan TxtItemID ") + code;
    const int goodsEnd = script.size();
    // The worker empties the field: Enter then scans nothing. Keys that type
    // only refused characters leave it empty.
    script << QStringLiteral("key TxtItemID Backspace")
           << QStringLiteral("key TxtItemID Enter")
           << QStringLiteral("type TxtItemID '\u2019\uFF07")
           << QStringLiteral("key TxtItemID Enter")
           << QStringLiteral("type TxtNum x' OR x")
           << QStringLiteral("key TxtNum Enter")
           << QStringLiteral("scan TxtEmployee Zq7'; drop table t_Emp; --")
           << QStringLiteral("scan TxtID Zq7' OR '1'='1' --")
           << QStringLiteral("scan TxtID 10001")
           << QStringLiteral("state");

    const ReplayRun r = h.run(script.join(QLatin1Char('\n')) + QLatin1Char('\n'));
    ASSERT_EQ(r.exitCode, 0) << r.describe().toStdString();
    ASSERT_FALSE(r.crashed);
    ASSERT_EQ(r.steps.size(), script.size()) << r.describe().toStdString();

    const QJsonObject counted = r.step(2);
    ASSERT_EQ(text(counted, "lblPickedNum"), QStringLiteral("1/4"));
    for (int n = 3; n <= goodsEnd; ++n) {
        const QJsonObject s = r.step(n);
        SCOPED_TRACE(text(s, "command").left(60).toStdString());
        EXPECT_EQ(text(s, "lblMessage"), QStringLiteral("找不到相应的发货单或商品"));
        EXPECT_EQ(jsonStrings(s.value(QStringLiteral("voice"))), QStringList{QStringLiteral("\\voice\\findGoods.wav")});
        EXPECT_EQ(lineSummaries(s), lineSummaries(counted));
        EXPECT_TRUE(s.value(QStringLiteral("boxes")).toArray().isEmpty());
        for (const char* field : {"TxtID", "TxtItemID", "TxtNum", "TxtEmployee"})
            EXPECT_FALSE(text(s, field).contains(QLatin1Char('\''))) << field;
    }
    // An empty scan: nothing happens.
    for (int n : {goodsEnd + 2, goodsEnd + 4}) {
        EXPECT_EQ(text(r.step(n - 1), "TxtItemID"), QString()) << n;
        EXPECT_TRUE(jsonStrings(r.step(n).value(QStringLiteral("voice"))).isEmpty()) << n;
        EXPECT_EQ(lineSummaries(r.step(n)), lineSummaries(counted)) << n;
        EXPECT_EQ(text(r.step(n), "TxtNum"), QStringLiteral("1")) << n;
    }
    EXPECT_EQ(text(r.step(goodsEnd + 5), "TxtNum"), QString());
    EXPECT_EQ(text(r.step(goodsEnd + 5), "lblMessage"), QStringLiteral("商品数量只能为数值！"));
    EXPECT_EQ(text(r.step(goodsEnd + 6), "lblMessage"), QStringLiteral("商品数量只能为数值！"));
    EXPECT_EQ(lineSummaries(r.step(goodsEnd + 6)), lineSummaries(counted));
    EXPECT_EQ(text(r.step(goodsEnd + 7), "TxtEmployee"), QStringLiteral("Zq7; drop table t_Emp; --"));
    EXPECT_EQ(text(r.step(goodsEnd + 8), "lblMessage"), QStringLiteral("找不到物流单号/唯一码/商品条码/序列号"));
    EXPECT_EQ(text(r.step(goodsEnd + 8), "TxtID"), QStringLiteral("Zq7 OR 1=1 --"));
    // The order left comes back with its count.
    EXPECT_EQ(lineSummaries(r.step(goodsEnd + 9)), lineSummaries(counted));
    EXPECT_EQ(text(r.step(goodsEnd + 9), "lblPickedNum"), QStringLiteral("1/4"));

    EXPECT_EQ(h.queryValue(tablesSql).toInt(), tables);
    EXPECT_EQ(h.queryValue(QStringLiteral("SELECT COUNT(*) FROM IC_Web2ERPOrders")).toInt(), orders);
    EXPECT_GT(h.queryValue(QStringLiteral("SELECT COUNT(*) FROM t_ICItem")).toInt(), 0);
    EXPECT_GT(h.queryValue(QStringLiteral("SELECT COUNT(*) FROM t_Emp")).toInt(), 0);
}
