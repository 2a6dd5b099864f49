// A worker's day on the demo warehouse, end to end through the launcher: pick,
// leave, switch view, come back, in both views, and look at what was saved.
// Nothing may pass that was not fully picked, and nothing picked may be lost.
#include "support/replay_harness.h"
#include <QJsonArray>
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

// The lines of a step that carry these goods, in set order.
QList<QJsonObject> linesOf(const QJsonObject& step, int goodsId)
{
    QList<QJsonObject> found;
    for (const QJsonValue& v : step.value(QStringLiteral("lines")).toArray())
        if (v.toObject().value(QStringLiteral("GoodsID")).toVariant().toInt() == goodsId)
            found << v.toObject();
    return found;
}

int checkedOf(const QJsonObject& step, int goodsId)
{
    int total = 0;
    for (const QJsonObject& line : linesOf(step, goodsId))
        total += line.value(QStringLiteral("GoodsCheckedCnt")).toVariant().toInt();
    return total;
}

QString serialsOf(const QJsonObject& step, int goodsId)
{
    QStringList serials;
    for (const QJsonObject& line : linesOf(step, goodsId))
        serials << line.value(QStringLiteral("FSeriNum")).toString();
    return serials.join(QLatin1Char('|'));
}

QString barcode(const ReplayHarness& h, int itemId)
{
    return h.queryValue(QStringLiteral("SELECT FBarCode FROM t_Barcode WHERE FItemID = ?"), {itemId}).toString();
}

QString scanGoods(const ReplayHarness& h, int itemId)
{
    return QStringLiteral("scan TxtItemID ") + barcode(h, itemId);
}

QVariant orderValue(const ReplayHarness& h, const char* column, const QString& uniqueCode)
{
    return h.queryValue(QStringLiteral("SELECT %1 FROM IC_Web2ERPOrders WHERE FUniqueCode = ?").arg(QLatin1String(column)),
                        {uniqueCode});
}

// Runs a script in the view the test is for; steps are numbered as written.
struct ViewRun {
    ReplayRun run;
    bool grid = false;
    QJsonObject step(int n) const { return run.step(n + (grid ? 1 : 0)); }
};

ViewRun runInView(const ReplayHarness& h, QStringList script, bool grid)
{
    if (grid)
        script.prepend(QStringLiteral("click chkShowText"));
    ViewRun r{h.run(script.join(QLatin1Char('\n')) + QLatin1Char('\n')), grid};
    return r;
}

} // namespace

class WorkerSessionReplay : public ::testing::TestWithParam<bool> {};

// The order's first line is a line like any other: it is shown, counted and
// its excess heard, and the order does not pass without it.
TEST_P(WorkerSessionReplay, FirstLineOfAnOrderIsCountedAndItsExcessHeard)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    const QStringList script{QStringLiteral("scan TxtID 10001"),
                             QStringLiteral("type TxtNum 3"),
                             scanGoods(h, 1001),                   // 3: two more than ordered
                             scanGoods(h, 1008),                   // 4: 1014 still missing
                             scanGoods(h, 1014),
                             scanGoods(h, 1014),                   // 6: now it passes
                             QStringLiteral("scan TxtID 10029"),
                             QStringLiteral("type TxtNum 12"),
                             scanGoods(h, 1022)};                  // 9: 12 on a line of 10
    const ViewRun r = runInView(h, script, GetParam());
    ASSERT_EQ(r.run.exitCode, 0) << r.run.describe().toStdString();
    ASSERT_EQ(r.run.steps.size(), script.size() + (GetParam() ? 1 : 0)) << r.run.describe().toStdString();

    EXPECT_EQ(field(r.step(3), "lblPickedNum"), QStringLiteral("1/4"));
    EXPECT_EQ(voices(r.step(3)), QStringList{QStringLiteral("\\voice\\Excess.wav")});
    EXPECT_EQ(field(r.step(3), "lblPickInfo"), QStringLiteral("拣货超量"));
    EXPECT_EQ(checkedOf(r.step(3), 1001), 3);

    EXPECT_EQ(field(r.step(4), "lblPickedNum"), QStringLiteral("2/4"));
    EXPECT_FALSE(r.step(4).value(QStringLiteral("ImgSuccess")).toBool());
    EXPECT_FALSE(r.step(5).value(QStringLiteral("ImgSuccess")).toBool());
    EXPECT_TRUE(r.step(6).value(QStringLiteral("ImgSuccess")).toBool());
    EXPECT_EQ(field(r.step(6), "lblPickedNum"), QStringLiteral("4/4"));
    EXPECT_EQ(orderValue(h, "FPIckingGoodsStatus", QStringLiteral("10001")).toInt(), 1);

    // A one-line order: ten count, two are excess, and no log ever reads a negative shortfall.
    EXPECT_EQ(field(r.step(9), "lblPickedNum"), QStringLiteral("10/10"));
    EXPECT_TRUE(voices(r.step(9)).contains(QStringLiteral("\\voice\\Excess.wav")));
    EXPECT_EQ(field(r.step(9), "lblPickInfo"), QStringLiteral("拣货超量"));
    EXPECT_EQ(checkedOf(r.step(9), 1022), 12);
    for (const QJsonObject& s : r.run.steps)
        for (const QString& row : jsonStrings(s.value(QStringLiteral("log"))))
            EXPECT_FALSE(row.contains(QStringLiteral("-"))) << row.toStdString();
}

// Leaving an order and coming back puts every line's count back on that very
// line, whatever the grid did to the order of the lines meanwhile.
TEST_P(WorkerSessionReplay, RevisitedOrderGetsEachLineBackAndPassesOnlyWhenAllIsPicked)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    QStringList script{QStringLiteral("scan TxtID 10015"), scanGoods(h, 1002), scanGoods(h, 1003),
                       QStringLiteral("scan TxtID 10001"),
                       QStringLiteral("scan TxtID 10015")};   // 5: back
    const int back = 5;
    // Everything still open, one by one; the last one passes the order.
    const QList<int> open{1001, 1004, 1005, 1006, 1007, 1008, 1009, 1014, 1015, 1016};
    for (int item : open)
        script << scanGoods(h, item);
    const ViewRun r = runInView(h, script, GetParam());
    ASSERT_EQ(r.run.exitCode, 0) << r.run.describe().toStdString();

    const QJsonObject revisit = r.step(back);
    EXPECT_EQ(field(revisit, "lblPickedNum"), QStringLiteral("2/12"));
    EXPECT_EQ(checkedOf(revisit, 1002), 1);
    EXPECT_EQ(checkedOf(revisit, 1003), 1);
    for (int item : open)
        EXPECT_EQ(checkedOf(revisit, item), 0) << item;

    for (int i = 0; i < open.size(); ++i) {
        const QJsonObject s = r.step(back + 1 + i);
        EXPECT_TRUE(voices(s).isEmpty() || i == open.size() - 1) << open[i] << " " << voices(s).join(' ').toStdString();
        EXPECT_EQ(checkedOf(s, open[i]), 1) << open[i];
        EXPECT_EQ(s.value(QStringLiteral("ImgSuccess")).toBool(), i == open.size() - 1) << open[i];
    }
    EXPECT_EQ(voices(r.step(back + open.size())), QStringList{QStringLiteral("\\voice\\Succes.wav")});
    EXPECT_EQ(orderValue(h, "FPIckingGoodsStatus", QStringLiteral("10015")).toInt(), 1);
}

// A typed quantity replaces the count of the line it goes to, not that of
// another line of the same goods, also after a switch of view.
TEST_P(WorkerSessionReplay, TypedQuantityReplacesOnlyItsOwnLine)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    const QStringList script{QStringLiteral("scan TxtID 10009"),
                             scanGoods(h, 1006),                  // the first line of the charger: 1 of 1
                             QStringLiteral("click chkShowText"),
                             QStringLiteral("type TxtNum 2"),
                             scanGoods(h, 1006),                  // 5: the second line: 2 of 2
                             scanGoods(h, 1010)};                 // 6: passes
    const ViewRun r = runInView(h, script, GetParam());
    ASSERT_EQ(r.run.exitCode, 0) << r.run.describe().toStdString();
    EXPECT_EQ(field(r.step(5), "lblPickedNum"), QStringLiteral("3/4"));
    const QList<QJsonObject> chargers = linesOf(r.step(5), 1006);
    ASSERT_EQ(chargers.size(), 2);
    QList<int> counts;
    for (const QJsonObject& line : chargers)
        counts << line.value(QStringLiteral("GoodsCheckedCnt")).toVariant().toInt() * 10
                + line.value(QStringLiteral("GoodsOrderCnt")).toVariant().toInt();
    std::sort(counts.begin(), counts.end());
    EXPECT_EQ(counts, (QList<int>{11, 22}));   // checked 1 of 1, checked 2 of 2
    EXPECT_TRUE(voices(r.step(5)).isEmpty());
    EXPECT_TRUE(r.step(6).value(QStringLiteral("ImgSuccess")).toBool());
    EXPECT_EQ(orderValue(h, "FPIckingGoodsStatus", QStringLiteral("10009")).toInt(), 1);
}

// Counts made in one view come back in the other.
TEST_P(WorkerSessionReplay, CountsPickedInOneViewComeBackInTheOther)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    const QStringList script{QStringLiteral("scan TxtID 10001"), scanGoods(h, 1001), scanGoods(h, 1014),
                             QStringLiteral("scan TxtID 10018"),
                             QStringLiteral("click chkShowText"),   // 5: the other view
                             QStringLiteral("scan TxtID 10001"),    // 6: back
                             scanGoods(h, 1001),                    // 7: its line is complete
                             scanGoods(h, 1008),
                             scanGoods(h, 1014)};                   // 9: passes
    const ViewRun r = runInView(h, script, GetParam());
    ASSERT_EQ(r.run.exitCode, 0) << r.run.describe().toStdString();
    EXPECT_NE(field(r.step(6), "view"), field(r.step(3), "view"));
    EXPECT_EQ(field(r.step(6), "lblPickedNum"), QStringLiteral("2/4"));
    EXPECT_EQ(checkedOf(r.step(6), 1001), 1);
    EXPECT_EQ(checkedOf(r.step(6), 1014), 1);
    EXPECT_EQ(voices(r.step(7)), QStringList{QStringLiteral("\\voice\\Error.wav")});
    EXPECT_FALSE(r.step(8).value(QStringLiteral("ImgSuccess")).toBool());
    EXPECT_TRUE(r.step(9).value(QStringLiteral("ImgSuccess")).toBool());
    EXPECT_EQ(orderValue(h, "FPIckingGoodsStatus", QStringLiteral("10001")).toInt(), 1);
}

// Serial numbers scanned before the order was left are still on their line:
// a repeat is heard, and every one of them is saved at the pass.
TEST_P(WorkerSessionReplay, SerialsScannedBeforeLeavingStayOnTheLineAndAreSaved)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    const QStringList script{QStringLiteral("click chkHaveSerial"),
                             QStringLiteral("scan TxtID 10021"),
                             QStringLiteral("scan TxtItemID W1-0001"),
                             QStringLiteral("scan TxtItemID 10023"),   // 4: the next order
                             QStringLiteral("scan TxtID 10021"),       // 5: back
                             QStringLiteral("scan TxtItemID W1-0001"), // 6: a repeat
                             QStringLiteral("scan TxtItemID W1-0002"),
                             QStringLiteral("scan TxtItemID PAD-0001")};   // 8: passes
    const ViewRun r = runInView(h, script, GetParam());
    ASSERT_EQ(r.run.exitCode, 0) << r.run.describe().toStdString();
    EXPECT_EQ(field(r.step(4), "TxtID"), QStringLiteral("10023"));
    EXPECT_EQ(checkedOf(r.step(5), 1031), 1);
    EXPECT_TRUE(serialsOf(r.step(5), 1031).contains(QStringLiteral("W1-0001"))) << serialsOf(r.step(5), 1031).toStdString();
    EXPECT_EQ(voices(r.step(6)), QStringList{QStringLiteral("\\voice\\repeatScan.wav")});
    EXPECT_EQ(checkedOf(r.step(6), 1031), 1);
    EXPECT_FALSE(r.step(7).value(QStringLiteral("ImgSuccess")).toBool());
    EXPECT_TRUE(r.step(8).value(QStringLiteral("ImgSuccess")).toBool());

    const QVariant rows = h.queryValue(QStringLiteral(
        "SELECT group_concat(FSerialNumber, ' ') FROM (SELECT s.FSerialNumber FROM IC_Web2ErpOrderSerial s"
        " JOIN IC_Web2ERPOrdersEntry e ON e.FEntryID = s.FEntryID JOIN IC_Web2ERPOrders o ON o.FID = e.FID"
        " WHERE o.FUniqueCode = '10021' ORDER BY s.FSerialNumber)"));
    EXPECT_EQ(rows.toString(), QStringLiteral("PAD-0001 W1-0001 W1-0002"));
    EXPECT_EQ(orderValue(h, "FPIckingGoodsStatus", QStringLiteral("10021")).toInt(), 1);
}

// A scan whose every character the field refused is no scan: the code still
// standing in the field is not counted again, in whichever field it happens.
TEST_P(WorkerSessionReplay, ScanOfRefusedCharactersOnlyCountsNothing)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    const QStringList script{QStringLiteral("scan TxtID 10001"), scanGoods(h, 1001), scanGoods(h, 1008), scanGoods(h, 1014),
                             QStringLiteral("scan TxtItemID \u2019\u2019"),   // 5
                             QStringLiteral("scan TxtItemID '"),
                             QStringLiteral("scan TxtItemID \U0001F600"),
                             QStringLiteral("scan TxtNum '"),                 // 8: Enter in TxtNum scans TxtItemID
                             QStringLiteral("scan TxtID \u2019")};            // 9: no order left, none taken
    const ViewRun r = runInView(h, script, GetParam());
    ASSERT_EQ(r.run.exitCode, 0) << r.run.describe().toStdString();
    const QJsonObject before = r.step(4);
    EXPECT_EQ(field(before, "lblPickedNum"), QStringLiteral("3/4"));
    for (int n = 5; n <= 9; ++n) {
        const QJsonObject s = r.step(n);
        EXPECT_EQ(field(s, "lblPickedNum"), QStringLiteral("3/4")) << n;
        EXPECT_EQ(checkedTotal(s), 3) << n;
        EXPECT_FALSE(s.value(QStringLiteral("ImgSuccess")).toBool()) << n;
        EXPECT_TRUE(voices(s).isEmpty()) << n;
        EXPECT_EQ(s.value(QStringLiteral("log")), before.value(QStringLiteral("log"))) << n;
        EXPECT_EQ(field(s, "TxtNum"), QStringLiteral("1")) << n;
        EXPECT_EQ(field(s, "TxtID"), QStringLiteral("10001")) << n;
    }
    EXPECT_EQ(orderValue(h, "FPIckingGoodsStatus", QStringLiteral("10001")).toInt(), 0);
}

INSTANTIATE_TEST_SUITE_P(BothViews, WorkerSessionReplay, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& info) { return info.param ? "grid" : "tiles"; });

// A quantity that is no whole number of pieces is refused, and the worker is
// told so: the message stays, nothing is counted.
TEST(QuantityReplay, RefusedQuantityKeepsItsMessage)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    const QStringList quantities{QStringLiteral("0"), QStringLiteral("2.5"), QStringLiteral("40000")};
    QStringList script{QStringLiteral("scan TxtID 10029"), scanGoods(h, 1022)};
    for (const QString& q : quantities)
        script << QStringLiteral("type TxtNum ") + q << QStringLiteral("key TxtNum Enter");
    const ReplayRun r = h.run(script.join(QLatin1Char('\n')) + QLatin1Char('\n'));
    ASSERT_EQ(r.exitCode, 0) << r.describe().toStdString();
    for (int i = 0; i < quantities.size(); ++i) {
        const QJsonObject s = r.step(4 + 2 * i);
        EXPECT_EQ(field(s, "lblMessage"), QStringLiteral("商品数量只能为数值！")) << quantities[i].toStdString();
        EXPECT_EQ(checkedTotal(s), 1) << quantities[i].toStdString();
        EXPECT_EQ(field(s, "lblPickedNum"), QStringLiteral("1/10")) << quantities[i].toStdString();
    }
}

// The server refuses the status update at the pass: the worker is told, and
// the order is not sent for delivery while it is not verified. Once the
// server takes updates again, a new pass saves it and sends it.
TEST(SaveFailureReplay, RefusedStatusSaveSendsNothingForDelivery)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    h.execute(QStringLiteral("CREATE TRIGGER refuse_verified BEFORE UPDATE OF FPIckingGoodsStatus ON IC_Web2ERPOrders"
                             " WHEN NEW.FPIckingGoodsStatus = 1 BEGIN SELECT RAISE(ABORT, 'status update refused'); END"));
    const QStringList pick{QStringLiteral("scan TxtID 10001"), scanGoods(h, 1001), scanGoods(h, 1008),
                           scanGoods(h, 1014), scanGoods(h, 1014)};
    const ReplayRun refused = h.run(pick.join(QLatin1Char('\n')) + QLatin1Char('\n'));
    ASSERT_EQ(refused.exitCode, 0) << refused.describe().toStdString();
    const QJsonObject pass = refused.step(5);
    EXPECT_TRUE(pass.value(QStringLiteral("ImgSuccess")).toBool());
    const QJsonArray boxes = pass.value(QStringLiteral("boxes")).toArray();
    ASSERT_EQ(boxes.size(), 1) << refused.describe().toStdString();
    EXPECT_TRUE(boxes[0].toObject().value(QStringLiteral("text")).toString().contains(QStringLiteral("status update refused")));
    EXPECT_EQ(orderValue(h, "FPIckingGoodsStatus", QStringLiteral("10001")).toInt(), 0);
    EXPECT_EQ(orderValue(h, "FPickingGoodMan", QStringLiteral("10001")).toInt(), 0);
    EXPECT_EQ(orderValue(h, "FDeliveryStatus", QStringLiteral("10001")).toInt(), 0);
    EXPECT_TRUE(orderValue(h, "FSendDate", QStringLiteral("10001")).isNull());

    h.execute(QStringLiteral("DROP TRIGGER refuse_verified"));
    const ReplayRun again = h.run(pick.join(QLatin1Char('\n')) + QLatin1Char('\n'));
    ASSERT_EQ(again.exitCode, 0) << again.describe().toStdString();
    EXPECT_TRUE(again.step(5).value(QStringLiteral("ImgSuccess")).toBool());
    EXPECT_EQ(orderValue(h, "FPIckingGoodsStatus", QStringLiteral("10001")).toInt(), 1);
    EXPECT_EQ(orderValue(h, "FPickingGoodMan", QStringLiteral("10001")).toInt(), 201);
    EXPECT_EQ(orderValue(h, "FDeliveryStatus", QStringLiteral("10001")).toInt(), 1);
    EXPECT_FALSE(orderValue(h, "FSendDate", QStringLiteral("10001")).isNull());
}
