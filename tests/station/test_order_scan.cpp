// Enter in TxtID: the order being left, the refusals in their order, the load
// and the goods totals under the options. Host failures: the reliability suite.
#include "station/station_fixture.h"

namespace {

QStringList lineIds(const RecordList& lines)
{
    QStringList ids;
    for (int i = 0; !lines.isNone() && i < lines.Count(); ++i)
        ids << lines.Item(i).GetValue(QStringLiteral("GoodsID")).toString();
    return ids;
}

} // namespace

TEST_F(StationFormTest, OrdersAreFoundByUniqueCodeOrLogisticsNumber)
{
    dbExec(QStringLiteral("UPDATE IC_Web2ERPOrders SET FPIckingGoodsStatus = NULL WHERE FUniqueCode = '10002'"));
    dbExec(QStringLiteral("UPDATE IC_Web2ERPOrders SET FLogisticsOrder = 'SF10019 ' WHERE FUniqueCode = '10019'"));
    frmPickigGoods* form = openStation();
    const StationControls c = controls(form);

    // A quote typed with the code never reaches the field.
    scanInto(c.TxtID, QStringLiteral("100'01"));
    EXPECT_EQ(form->pickingState().CurrentOrderCode(), QStringLiteral("10001"));
    EXPECT_EQ(c.lblOrderNum->text(), QStringLiteral("4"));
    EXPECT_EQ(c.lblPickedNum->text(), QStringLiteral("0/"));
    EXPECT_EQ(c.txtWebshop->text(), QStringLiteral("天猫旗舰店"));
    EXPECT_TRUE(c.TxtItemID->hasFocus());
    EXPECT_EQ(lineIds(GetGoodsLineSet()), (QStringList{"1001", "1008", "1014"}));
    EXPECT_TRUE(c.GoodsListView->IsLoadGoods());

    // A numeric logistics number finds its order too; a NULL status counts as 0.
    scanInto(c.TxtID, QStringLiteral("773000000002"));
    EXPECT_EQ(form->pickingState().CurrentOrderCode(), QStringLiteral("773000000002"));
    EXPECT_EQ(c.txtWebshop->text(), QStringLiteral("京东自营店"));
    EXPECT_EQ(pickingOf(QStringLiteral("10002")), QStringLiteral("0/0"));
    // Trailing blanks in the database compare as on the server.
    scanInto(c.TxtID, QStringLiteral("SF10019"));
    EXPECT_EQ(lineIds(GetGoodsLineSet()), QStringList({"1004"}));

    // TB10027 is a unique code with a letter: not looked for as a unique code. An order
    // in another status than 6 is not found either.
    for (const QString& code : {QStringLiteral("TB10027"), QStringLiteral("10007")}) {
        scanInto(c.TxtID, code);
        EXPECT_EQ(c.lblOrderNum->text(), QStringLiteral("0")) << code.toStdString();
        EXPECT_EQ(c.lblMessage->text(), QStringLiteral("找不到物流单号/唯一码/商品条码/序列号"));
        EXPECT_TRUE(c.TxtID->hasFocus());
        EXPECT_EQ(c.TxtID->selectedText(), code);
    }
    scanInto(c.TxtID, QStringLiteral("YT10027"));
    EXPECT_EQ(c.lblOrderNum->text(), QStringLiteral("1"));
    EXPECT_TRUE(c.lblMessage->text().isEmpty());
    EXPECT_TRUE(m_rec->voices.isEmpty());
    EXPECT_TRUE(m_rec->boxes.isEmpty()) << boxTexts().join('|').toStdString();

}

TEST_F(StationFormTest, RefusalsComeFrozenThenRefundThenVerified)
{
    // 10003 is frozen; give it a refund and a verified status as well.
    dbExec(QStringLiteral("INSERT INTO IC_Web2ERPReturnBills (FBillID, FID, FStatus) VALUES (90, 3, 1)"));
    dbExec(QStringLiteral("UPDATE IC_Web2ERPOrders SET FPIckingGoodsStatus = 1 WHERE FID IN (3, 4)"));
    frmPickigGoods* form = openStation();
    const StationControls c = controls(form);
    scanInto(c.TxtID, QStringLiteral("10001"));
    ASSERT_EQ(GetGoodsLineSet().Count(), 3);

    auto expectRefused = [&](const QString& code, const QString& message, const QStringList& voices) {
        SCOPED_TRACE(code.toStdString());
        m_rec->voices.clear();
        c.TxtItemID->setText(QStringLiteral("left over"));
        scanInto(c.TxtID, code);
        EXPECT_EQ(c.lblMessage->text(), message);
        EXPECT_EQ(m_rec->voices, voices);
        EXPECT_EQ(form->pickingState().CurrentOrderCode(), QStringLiteral("+"));
        EXPECT_EQ(GetGoodsLineSet().Count(), 0);
        EXPECT_FALSE(c.GoodsListView->IsLoadGoods());
        EXPECT_EQ(c.lblOrderNum->text(), QStringLiteral("0"));
        EXPECT_TRUE(c.TxtItemID->text().isEmpty());
        EXPECT_TRUE(c.txtWebshop->text().isEmpty());
        EXPECT_TRUE(c.TxtID->hasFocus());
        EXPECT_EQ(c.TxtID->selectedText(), code);
    };
    expectRefused(QStringLiteral("10003"), QStringLiteral("此单已冻结，请解冻后再操作！"), {});
    expectRefused(QStringLiteral("10004"), QStringLiteral("此单交易状态为申请退款"), {QStringLiteral("\\voice\\refunds.wav")});
    expectRefused(QStringLiteral("10006"), QStringLiteral("此单已校验通过"), {QStringLiteral("\\voice\\repeatCheck.wav")});
    // The refused orders keep their status on the server.
    EXPECT_EQ(pickingOf(QStringLiteral("10006")), QStringLiteral("1/201"));

    // Only the newest return bill counts: 10005's refund was closed.
    scanInto(c.TxtID, QStringLiteral("10005"));
    EXPECT_EQ(form->pickingState().CurrentOrderCode(), QStringLiteral("10005"));
    EXPECT_EQ(c.lblOrderNum->text(), QStringLiteral("2"));
    // The field shows "+" once the worker is elsewhere after a refusal.
    scanInto(c.TxtID, QStringLiteral("10006"));
    c.TxtItemID->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(c.TxtID->text(), QStringLiteral("+"));
}

TEST_F(StationFormTest, LeavingAnOrderLogsItsVerdictAndABlankEnterLoadsNothing)
{
    frmPickigGoods* form = openStation();
    const StationControls c = controls(form);
    const PickingState& state = form->pickingState();
    scanInto(c.TxtID, QStringLiteral("10001"));
    scanGoods(form, 1001);
    scanInto(c.TxtID, QStringLiteral("10019"));
    ASSERT_EQ(state.SessionOrderLog().Count(), 1);
    const GoodsRecord first = state.SessionOrderLog().Item(0);
    EXPECT_EQ(first.GetValue(QStringLiteral("ID")).toString(), QStringLiteral("10001"));
    EXPECT_EQ(first.GetValue(QStringLiteral("log")).toString(), QStringLiteral("10001异常, , 缺少3件, 误拣0件"));
    EXPECT_FALSE(first.GetValue(QStringLiteral("bSuccess")).toBool());
    EXPECT_EQ(first.GetValue(QStringLiteral("MissingNum")).toInt(), 3);
    // One entry is not shown yet: the pane shows the log from two entries on.
    EXPECT_TRUE(c.LogList1->allRowTexts().isEmpty());

    // Enter on blanks: the order on the station gets its verdict, nothing loads.
    scanGoods(form, 1004);
    scanGoods(form, 1004);
    scanInto(c.TxtID, QStringLiteral("   "));
    EXPECT_EQ(state.CurrentOrderCode(), QStringLiteral("10019"));
    EXPECT_EQ(GetGoodsLineSet().Count(), 1);
    ASSERT_EQ(state.SessionOrderLog().Count(), 2);
    EXPECT_TRUE(state.SessionOrderLog().Item(1).GetValue(QStringLiteral("bsuccess")).toBool());
    EXPECT_EQ(c.LogList1->allRowTexts(),
              (QStringList{QStringLiteral("10019通过   误拣0件"), QStringLiteral("10001异常, , 缺少3件, 误拣0件")}));

    // The only-errors filter asks the form, which hands over its whole log again.
    auto* onlyErrors = c.LogList1->findChild<QCheckBox*>(QStringLiteral("ChkOnlyError"));
    ASSERT_NE(onlyErrors, nullptr);
    QTest::mouseClick(onlyErrors, Qt::LeftButton, {}, QPoint(8, onlyErrors->height() / 2));
    EXPECT_EQ(c.LogList1->allRowTexts(), QStringList{QStringLiteral("10001异常, , 缺少3件, 误拣0件")});
    QTest::mouseClick(onlyErrors, Qt::LeftButton, {}, QPoint(8, onlyErrors->height() / 2));
    EXPECT_EQ(c.LogList1->allRowTexts().size(), 2);
}

TEST_F(StationFormTest, GoodsTotalsFollowTheOptions)
{
    dbExec(QStringLiteral("UPDATE t_ICItem SET FBarcode = '   ' WHERE FItemID = 1015"));
    frmPickigGoods* form = openStation();
    const StationControls c = controls(form);
    const struct {
        const char* code;
        bool barCode, serial;
        int total;
    } cases[] = {
        // 10021: watches with a barcode (2) and a tablet without one (1), all serial-managed.
        {"10021", false, false, 3}, {"10021", true, false, 2}, {"10021", true, true, 3}, {"SN10021", true, true, 3},
        // 10011: no goods with a barcode and none serial-managed.
        {"10011", false, true, 4},  {"10011", true, true, 0},  {"10001", true, false, 4},
        // The glass is a price-change product in the shop of 10008, not in that of 10009.
        {"10008", false, false, 3}, {"10009", false, false, 4}, {"10007", false, false, 0}, {"", false, false, 0},
        // 10018: a barcode of blanks is no barcode, so only two of its three goods count.
        {"10018", true, false, 2},  {"10018", false, false, 3},
    };
    for (const auto& t : cases) {
        c.chkBarCode->setChecked(t.barCode);
        c.chkHaveSerial->setChecked(t.serial);
        qint32 total = -1;
        form->GetGoodsNum(QString::fromLatin1(t.code), total);
        EXPECT_EQ(total, t.total) << t.code << " barcode " << t.barCode << " serial " << t.serial;
    }

    // Clicking chkHaveSerial scans the order again with the new total.
    c.chkBarCode->setChecked(true);
    c.chkHaveSerial->setChecked(false);
    scanInto(c.TxtID, QStringLiteral("10021"));
    ASSERT_EQ(c.lblOrderNum->text(), QStringLiteral("2"));
    QTest::mouseClick(c.chkHaveSerial, Qt::LeftButton, {}, QPoint(8, c.chkHaveSerial->height() / 2));
    ASSERT_TRUE(c.chkHaveSerial->isChecked());
    EXPECT_EQ(c.lblOrderNum->text(), QStringLiteral("3"));
    EXPECT_EQ(form->pickingState().CurrentOrderCode(), QStringLiteral("10021"));
    EXPECT_TRUE(m_rec->boxes.isEmpty()) << boxTexts().join('|').toStdString();
}
