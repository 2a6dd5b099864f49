// Enter in TxtID: the order being left, the refusals in their order, the
// load and the restore, the goods totals under the options, and failures of
// the host objects.
#include "grid/goods_text_view.h"
#include "log/log_list.h"
#include "station/station_fixture.h"
#include "tiles/goods_list_view.h"
#include <QCheckBox>
#include <QLabel>

namespace {

class FailingSave : public ISaveData {
public:
    void SavePickingGoods(const GoodsRecord&) override
    {
        throw HostError(HostErrors::Database, QStringLiteral("the server refused the picking status"));
    }
    void UpdateDeliveryData(const QString&, qint64) override {}
};

class FailingOrderInfo : public IWebOrderInfo {
public:
    std::optional<GoodsRecord> GetSingleSQLData(const QString&, const QString&) override
    {
        throw HostError(HostErrors::Database, QStringLiteral("connection lost"));
    }
};

QStringList lineIds(const RecordList& lines)
{
    QStringList ids;
    for (int i = 0; !lines.isNone() && i < lines.Count(); ++i)
        ids << lines.Item(i).GetValue(QStringLiteral("GoodsID")).toString();
    return ids;
}

} // namespace

TEST_F(StationFormTest, AFreshLoadShowsTheOrderAndResetsItOnTheServer)
{
    dbExec(QStringLiteral("UPDATE IC_Web2ERPOrders SET FPickingGoodMan = 204 WHERE FUniqueCode = '10001'"));
    dbExec(QStringLiteral("UPDATE IC_Web2ERPOrders SET FPIckingGoodsStatus = NULL WHERE FUniqueCode = '10002'"));
    frmPickigGoods* form = openStation();

    // A quote typed with the code never reaches the field.
    scanInto(controls(form).TxtID, QStringLiteral("100'01"));
    EXPECT_EQ(form->pickingState().CurrentOrderCode(), QStringLiteral("10001"));
    EXPECT_EQ(controls(form).lblOrderNum->text(), QStringLiteral("4"));
    EXPECT_EQ(controls(form).lblPickedNum->text(), QStringLiteral("0/"));
    EXPECT_EQ(controls(form).txtWebshop->text(), QStringLiteral("天猫旗舰店"));
    EXPECT_TRUE(controls(form).lblMessage->text().isEmpty());
    EXPECT_TRUE(controls(form).TxtItemID->hasFocus());
    EXPECT_EQ(lineIds(GetGoodsLineSet()), (QStringList{"1001", "1008", "1014"}));
    EXPECT_TRUE(controls(form).GoodsListView->IsLoadGoods());
    EXPECT_EQ(pickingOf(QStringLiteral("10001")), QStringLiteral("0/0"));
    EXPECT_FALSE(form->pickingState().restoredFromLog());

    // A numeric logistics number finds its order too; a NULL status counts as 0.
    scanInto(controls(form).TxtID, QStringLiteral("773000000002"));
    EXPECT_EQ(form->pickingState().CurrentOrderCode(), QStringLiteral("773000000002"));
    EXPECT_EQ(controls(form).lblOrderNum->text(), QStringLiteral("4"));
    EXPECT_EQ(controls(form).txtWebshop->text(), QStringLiteral("京东自营店"));
    EXPECT_EQ(pickingOf(QStringLiteral("10002")), QStringLiteral("0/0"));
    EXPECT_TRUE(m_rec->voices.isEmpty());
    EXPECT_TRUE(m_rec->boxes.isEmpty()) << boxTexts().join('|').toStdString();
}

TEST_F(StationFormTest, CodesWithALetterMatchByLogisticsNumberOnly)
{
    frmPickigGoods* form = openStation();
    const QString notFound = QStringLiteral("找不到物流单号/唯一码/商品条码/序列号");

    scanInto(controls(form).TxtID, QStringLiteral("SF10001"));
    EXPECT_EQ(controls(form).lblOrderNum->text(), QStringLiteral("4"));

    // TB10027 is a unique code with a letter: not looked for as a unique code.
    scanInto(controls(form).TxtID, QStringLiteral("TB10027"));
    EXPECT_EQ(controls(form).lblOrderNum->text(), QStringLiteral("0"));
    EXPECT_EQ(controls(form).lblMessage->text(), notFound);
    EXPECT_TRUE(controls(form).TxtID->hasFocus());
    EXPECT_EQ(controls(form).TxtID->selectedText(), QStringLiteral("TB10027"));
    EXPECT_EQ(form->pickingState().CurrentOrderCode(), QStringLiteral("TB10027"));

    scanInto(controls(form).TxtID, QStringLiteral("YT10027"));
    EXPECT_EQ(controls(form).lblOrderNum->text(), QStringLiteral("1"));
    EXPECT_TRUE(controls(form).lblMessage->text().isEmpty());

    // An order in another status than 6 counts nothing.
    scanInto(controls(form).TxtID, QStringLiteral("10007"));
    EXPECT_EQ(controls(form).lblOrderNum->text(), QStringLiteral("0"));
    EXPECT_EQ(controls(form).lblMessage->text(), notFound);
}

TEST_F(StationFormTest, RefusalsComeFrozenThenRefundThenVerified)
{
    // 10003 is frozen; give it a refund and a verified status as well.
    dbExec(QStringLiteral("INSERT INTO IC_Web2ERPReturnBills (FBillID, FID, FStatus) VALUES (90, 3, 1)"));
    dbExec(QStringLiteral("UPDATE IC_Web2ERPOrders SET FPIckingGoodsStatus = 1 WHERE FID IN (3, 4)"));
    frmPickigGoods* form = openStation();
    scanInto(controls(form).TxtID, QStringLiteral("10001"));
    ASSERT_EQ(GetGoodsLineSet().Count(), 3);

    auto expectRefused = [&](const QString& code, const QString& message, const QStringList& voices) {
        m_rec->voices.clear();
        controls(form).TxtItemID->setText(QStringLiteral("left over"));
        scanInto(controls(form).TxtID, code);
        EXPECT_EQ(controls(form).lblMessage->text(), message) << code.toStdString();
        EXPECT_EQ(m_rec->voices, voices) << code.toStdString();
        EXPECT_EQ(form->pickingState().CurrentOrderCode(), QStringLiteral("+"));
        EXPECT_EQ(GetGoodsLineSet().Count(), 0);
        EXPECT_FALSE(controls(form).GoodsListView->IsLoadGoods());
        EXPECT_EQ(controls(form).lblOrderNum->text(), QStringLiteral("0"));
        EXPECT_TRUE(controls(form).TxtItemID->text().isEmpty());
        EXPECT_TRUE(controls(form).txtWebshop->text().isEmpty());
        EXPECT_FALSE(controls(form).ImgSuccess->isVisible());
        EXPECT_TRUE(controls(form).TxtID->hasFocus());
        EXPECT_EQ(controls(form).TxtID->selectedText(), code);
    };
    expectRefused(QStringLiteral("10003"), QStringLiteral("此单已冻结，请解冻后再操作！"), {});
    expectRefused(QStringLiteral("10004"), QStringLiteral("此单交易状态为申请退款"), {QStringLiteral("\\voice\\refunds.wav")});
    expectRefused(QStringLiteral("10006"), QStringLiteral("此单已校验通过"), {QStringLiteral("\\voice\\repeatCheck.wav")});
    // The refused orders keep their status on the server.
    EXPECT_EQ(pickingOf(QStringLiteral("10006")), QStringLiteral("1/201"));

    // Only the newest return bill counts: 10005's refund was closed.
    scanInto(controls(form).TxtID, QStringLiteral("10005"));
    EXPECT_EQ(form->pickingState().CurrentOrderCode(), QStringLiteral("10005"));
    EXPECT_EQ(controls(form).lblOrderNum->text(), QStringLiteral("2"));
    // The field shows "+" once the worker is elsewhere after a refusal.
    scanInto(controls(form).TxtID, QStringLiteral("10006"));
    controls(form).TxtItemID->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(controls(form).TxtID->text(), QStringLiteral("+"));
}

TEST_F(StationFormTest, LeavingAnOrderLogsItsVerdictAndABlankEnterLoadsNothing)
{
    frmPickigGoods* form = openStation();
    scanInto(controls(form).TxtID, QStringLiteral("10001"));
    scanGoods(form, 1001);
    ASSERT_EQ(form->pickingState().pickedNum(), 1);
    scanInto(controls(form).TxtID, QStringLiteral("10019"));
    ASSERT_EQ(form->pickingState().SessionOrderLog().Count(), 1);
    GoodsRecord first = form->pickingState().SessionOrderLog().Item(0);
    EXPECT_EQ(first.GetValue(QStringLiteral("ID")).toString(), QStringLiteral("10001"));
    EXPECT_EQ(first.GetValue(QStringLiteral("log")).toString(), QStringLiteral("10001异常, , 缺少3件, 误拣0件"));
    EXPECT_FALSE(first.GetValue(QStringLiteral("bSuccess")).toBool());
    EXPECT_EQ(first.GetValue(QStringLiteral("MissingNum")).toInt(), 3);
    EXPECT_TRUE(form->pickingState().SessionOrderKeys().Exists(QStringLiteral("10001")));
    // One entry is not shown yet: the pane shows the log from two entries on.
    EXPECT_TRUE(controls(form).LogList1->allRowTexts().isEmpty());

    // Enter on blanks: the order on the station gets its verdict, nothing loads.
    scanGoods(form, 1004);
    scanGoods(form, 1004);
    ASSERT_EQ(form->pickingState().pickedNum(), 2);
    scanInto(controls(form).TxtID, QStringLiteral("   "));
    EXPECT_EQ(form->pickingState().CurrentOrderCode(), QStringLiteral("10019"));
    EXPECT_EQ(GetGoodsLineSet().Count(), 1);
    ASSERT_EQ(form->pickingState().SessionOrderLog().Count(), 2);
    EXPECT_EQ(form->pickingState().SessionOrderLog().Item(1).GetValue(QStringLiteral("log")).toString(),
              QStringLiteral("10019通过   误拣0件"));
    EXPECT_TRUE(form->pickingState().SessionOrderLog().Item(1).GetValue(QStringLiteral("bsuccess")).toBool());
    EXPECT_EQ(controls(form).LogList1->allRowTexts(),
              (QStringList{QStringLiteral("10019通过   误拣0件"), QStringLiteral("10001异常, , 缺少3件, 误拣0件")}));

    // The only-errors filter asks the form, which hands over its whole log again.
    auto* onlyErrors = controls(form).LogList1->findChild<QCheckBox*>(QStringLiteral("ChkOnlyError"));
    ASSERT_NE(onlyErrors, nullptr);
    QTest::mouseClick(onlyErrors, Qt::LeftButton, {}, QPoint(8, onlyErrors->height() / 2));
    EXPECT_EQ(controls(form).LogList1->allRowTexts(), QStringList{QStringLiteral("10001异常, , 缺少3件, 误拣0件")});
    QTest::mouseClick(onlyErrors, Qt::LeftButton, {}, QPoint(8, onlyErrors->height() / 2));
    EXPECT_EQ(controls(form).LogList1->allRowTexts().size(), 2);
}

TEST_F(StationFormTest, ScanningAnOrderAgainRestoresItsCountsUntilARestart)
{
    frmPickigGoods* form = openStation();
    scanInto(controls(form).TxtID, QStringLiteral("10001"));
    scanInto(controls(form).TxtItemID, QStringLiteral("6931000010017"));
    controls(form).TxtNum->setText(QStringLiteral("3"));
    scanInto(controls(form).TxtItemID, QStringLiteral("6931000010147"));   // one beyond the ordered 2
    scanInto(controls(form).TxtItemID, QStringLiteral("6931000010130"));   // another order's goods, twice
    scanInto(controls(form).TxtItemID, QStringLiteral("6931000010130"));
    ASSERT_EQ(form->pickingState().pickedNum(), 3);
    scanInto(controls(form).TxtID, QStringLiteral("10002"));
    EXPECT_EQ(form->pickingState().pickedNum(), 0);

    m_rec->voices.clear();
    scanInto(controls(form).TxtID, QStringLiteral("10001"));
    EXPECT_TRUE(form->pickingState().restoredFromLog());
    EXPECT_TRUE(form->pickingState().recomputeMissing());
    EXPECT_EQ(form->pickingState().CurrentOrderCode(), QStringLiteral("10001"));
    EXPECT_EQ(controls(form).txtWebshop->text(), QStringLiteral("天猫旗舰店"));
    EXPECT_EQ(form->pickingState().pickedNum(), 3);
    EXPECT_EQ(form->pickingState().excessNum(), 1);
    EXPECT_EQ(form->pickingState().errorNum(), 2);
    EXPECT_EQ(form->pickingState().missingNum(), 1);
    EXPECT_EQ(controls(form).lblPickedNum->text(), QStringLiteral("3/4"));
    EXPECT_GT(controls(form).lblProgress->width(), 0);
    EXPECT_LT(controls(form).lblProgress->width(), controls(form).LblProgressbar->width());
    const RecordList lines = GetGoodsLineSet();
    ASSERT_EQ(lines.Count(), 3);
    EXPECT_EQ(lines.Item(0).GetValue(QStringLiteral("GoodsCheckedCnt")).toInt(), 1);
    EXPECT_EQ(lines.Item(1).GetValue(QStringLiteral("GoodsCheckedCnt")).toInt(), 0);
    EXPECT_EQ(lines.Item(2).GetValue(QStringLiteral("GoodsCheckedCnt")).toInt(), 3);
    // A typed quantity takes the line once: its open count is as it was left.
    EXPECT_EQ(lines.Item(2).GetValue(QStringLiteral("GoodsPickCnt")).toInt(), 1);
    EXPECT_EQ(lines.Item(0).GetValue(QStringLiteral("GoodsPickCnt")).toInt(), 1);
    EXPECT_TRUE(m_rec->voices.isEmpty());
    m_rec->answers.enqueue(MsgBox::No);   // close with the order unfinished
    ASSERT_TRUE(closeStation());

    // A new station knows nothing of it: a fresh load, status reset on the server.
    dbExec(QStringLiteral("UPDATE IC_Web2ERPOrders SET FPickingGoodMan = 202 WHERE FUniqueCode = '10001'"));
    form = openStation();
    scanInto(controls(form).TxtID, QStringLiteral("10001"));
    EXPECT_FALSE(form->pickingState().restoredFromLog());
    EXPECT_EQ(form->pickingState().pickedNum(), 0);
    EXPECT_EQ(GetGoodsLineSet().Item(0).GetValue(QStringLiteral("GoodsCheckedCnt")).toInt(), 0);
    EXPECT_EQ(pickingOf(QStringLiteral("10001")), QStringLiteral("0/0"));
}

TEST_F(StationFormTest, GoodsTotalsFollowTheOptions)
{
    frmPickigGoods* form = openStation();
    auto total = [&](const QString& code, bool barCode, bool serial) {
        controls(form).chkBarCode->setChecked(barCode);
        controls(form).chkHaveSerial->setChecked(serial);
        qint32 t = -1;
        form->GetGoodsNum(code, t);
        return t;
    };
    // 10021: watches with a barcode (2) and a tablet without one (1), all serial-managed.
    EXPECT_EQ(total(QStringLiteral("10021"), false, false), 3);
    EXPECT_EQ(total(QStringLiteral("10021"), true, false), 2);
    EXPECT_EQ(total(QStringLiteral("10021"), true, true), 3);
    EXPECT_EQ(total(QStringLiteral("SN10021"), true, true), 3);
    // 10011: no goods with a barcode and none serial-managed.
    EXPECT_EQ(total(QStringLiteral("10011"), false, true), 4);
    EXPECT_EQ(total(QStringLiteral("10011"), true, true), 0);
    EXPECT_EQ(total(QStringLiteral("10001"), true, false), 4);
    // The glass is a price-change product in the shop of 10008, not in that of 10009.
    EXPECT_EQ(total(QStringLiteral("10008"), false, false), 3);
    EXPECT_EQ(total(QStringLiteral("10009"), false, false), 4);
    EXPECT_EQ(total(QStringLiteral("10007"), false, false), 0);
    EXPECT_EQ(total(QString(), false, false), 0);

    // Clicking chkHaveSerial scans the order again with the new total.
    controls(form).chkBarCode->setChecked(true);
    controls(form).chkHaveSerial->setChecked(false);
    scanInto(controls(form).TxtID, QStringLiteral("10021"));
    ASSERT_EQ(controls(form).lblOrderNum->text(), QStringLiteral("2"));
    QTest::mouseClick(controls(form).chkHaveSerial, Qt::LeftButton, {}, QPoint(8, controls(form).chkHaveSerial->height() / 2));
    ASSERT_TRUE(controls(form).chkHaveSerial->isChecked());
    EXPECT_EQ(controls(form).lblOrderNum->text(), QStringLiteral("3"));
    EXPECT_EQ(form->pickingState().CurrentOrderCode(), QStringLiteral("10021"));
}

TEST_F(StationFormTest, VerdictKindsWriteThePickInfoAndTheSessionLog)
{
    frmPickigGoods* form = openStation();
    const PickingState& state = form->pickingState();
    scanInto(controls(form).TxtID, QStringLiteral("10001"));   // 1001 x1, 1008 x1, 1014 x2

    // An excess: a typed 3 on the line of 2 counts one unit too many.
    typeInto(controls(form).TxtNum, QStringLiteral("3"));
    scanGoods(form, 1014);
    EXPECT_EQ(controls(form).lblPickInfo->text(), QStringLiteral("拣货超量"));
    ASSERT_EQ(state.SessionOrderLog().Count(), 1);
    GoodsRecord entry = state.SessionOrderLog().Item(0);
    EXPECT_EQ(entry.GetValue(QStringLiteral("log")).toString(), QStringLiteral("10001异常, 超出1件, , 误拣0件"));
    EXPECT_EQ(entry.GetValue(QStringLiteral("ExcessNum")).toInt(), 1);

    // Goods of another order, twice.
    scanGoods(form, 1002);
    scanGoods(form, 1002);
    EXPECT_EQ(controls(form).lblPickInfo->text(), QStringLiteral("非本单商品"));
    EXPECT_EQ(entry.GetValue(QStringLiteral("log")).toString(), QStringLiteral("10001异常, 超出1件, , 误拣2件"));
    EXPECT_EQ(state.SessionOrderLog().Count(), 1);

    // The order back from the log: its missing count follows every unit.
    scanInto(controls(form).TxtID, QStringLiteral("10002"));
    scanInto(controls(form).TxtID, QStringLiteral("10001"));
    ASSERT_TRUE(state.restoredFromLog());
    EXPECT_EQ(entry.GetValue(QStringLiteral("log")).toString(), QStringLiteral("10001异常, 超出1件, 缺少2件, 误拣2件"));
    scanGoods(form, 1001);
    EXPECT_TRUE(controls(form).lblPickInfo->text().isEmpty());
    EXPECT_EQ(entry.GetValue(QStringLiteral("log")).toString(), QStringLiteral("10001异常, 超出1件, 缺少1件, 误拣2件"));
    EXPECT_EQ(state.SessionOrderLog().Count(), 2);

    // The last unit passes the order, whatever happened on the way to it.
    scanGoods(form, 1008);
    EXPECT_TRUE(controls(form).ImgSuccess->isVisible());
    EXPECT_TRUE(controls(form).lblPickInfo->text().isEmpty());
    EXPECT_EQ(entry.GetValue(QStringLiteral("log")).toString(), QStringLiteral("10001通过   误拣0件"));
    EXPECT_TRUE(entry.GetValue(QStringLiteral("bSuccess")).toBool());
    EXPECT_EQ(state.SessionOrderKeys().Count(), 2);
}

TEST_F(StationFormTest, HostFailuresEndTheScanAndKeepTheStation)
{
    frmPickigGoods* form = openStation();
    scanInto(controls(form).TxtID, QStringLiteral("10001"));
    ASSERT_EQ(controls(form).lblOrderNum->text(), QStringLiteral("4"));

    // The order header cannot be read: an error box, the order stays.
    RegisterServerObject(ProgIds::WebOrderInfo, [] { return std::make_shared<FailingOrderInfo>(); });
    scanInto(controls(form).TxtID, QStringLiteral("10002"));
    ASSERT_EQ(m_rec->boxes.size(), 1);
    EXPECT_EQ(m_rec->boxes[0].text, QStringLiteral("connection lost"));
    EXPECT_EQ(m_rec->boxes[0].title, QStringLiteral("Velto提示"));
    EXPECT_EQ(form->pickingState().CurrentOrderCode(), QStringLiteral("10001"));
    EXPECT_EQ(lineIds(GetGoodsLineSet()), (QStringList{"1001", "1008", "1014"}));
    RestoreBuiltInServerObjects(ProgIds::WebOrderInfo);

    // The status cannot be saved: the worker is told, the order loads all the same.
    RegisterServerObject(ProgIds::SaveData, [] { return std::make_shared<FailingSave>(); });
    scanInto(controls(form).TxtID, QStringLiteral("10002"));
    ASSERT_EQ(m_rec->boxes.size(), 2);
    EXPECT_EQ(m_rec->boxes[1].text, QStringLiteral("the server refused the picking status"));
    EXPECT_EQ(form->pickingState().CurrentOrderCode(), QStringLiteral("10002"));
    EXPECT_EQ(controls(form).lblOrderNum->text(), QStringLiteral("4"));
    EXPECT_EQ(controls(form).TxtNum->text(), QStringLiteral("1"));
    EXPECT_TRUE(controls(form).TxtItemID->hasFocus());
}

TEST_F(StationFormTest, SwitchingViewsShowsTheSameCounts)
{
    frmPickigGoods* form = openStation();
    scanInto(controls(form).TxtID, QStringLiteral("10001"));
    controls(form).GoodsListView->PickingGoods(0);
    controls(form).GoodsListView->PickingGoods(2);
    QTest::mouseClick(controls(form).chkShowText, Qt::LeftButton, {}, QPoint(8, controls(form).chkShowText->height() / 2));
    ASSERT_TRUE(form->IsGridView());
    EXPECT_FALSE(controls(form).GoodsListView->IsLoadGoods());
    ASSERT_EQ(controls(form).GoodsTextView->rowCount(), 3);
    EXPECT_EQ(controls(form).GoodsTextView->cellText(1, GoodsTextView::ColCheckedCnt), QStringLiteral("1"));
    EXPECT_EQ(controls(form).GoodsTextView->cellText(2, GoodsTextView::ColCheckedCnt), QStringLiteral("0"));
    EXPECT_EQ(controls(form).GoodsTextView->cellText(3, GoodsTextView::ColCheckedCnt), QStringLiteral("1"));

    // A refusal empties the grid too.
    scanInto(controls(form).TxtID, QStringLiteral("10006"));
    EXPECT_EQ(controls(form).GoodsTextView->rowCount(), 0);
    QTest::mouseClick(controls(form).chkShowText, Qt::LeftButton, {}, QPoint(8, controls(form).chkShowText->height() / 2));
    EXPECT_FALSE(form->IsGridView());
    EXPECT_FALSE(controls(form).GoodsListView->isHidden());
    EXPECT_TRUE(controls(form).GoodsTextView->isHidden());
}

TEST_F(StationFormTest, TrailingBlanksInTheDatabaseCompareAsOnTheServer)
{
    dbExec(QStringLiteral("UPDATE IC_Web2ERPOrders SET FLogisticsOrder = 'SF10019 ' WHERE FUniqueCode = '10019'"));
    dbExec(QStringLiteral("UPDATE t_ICItem SET FBarcode = '   ' WHERE FItemID = 1015"));
    frmPickigGoods* form = openStation();

    scanInto(controls(form).TxtID, QStringLiteral("SF10019"));
    EXPECT_EQ(form->pickingState().CurrentOrderCode(), QStringLiteral("SF10019"));
    EXPECT_EQ(controls(form).lblOrderNum->text(), QStringLiteral("2"));
    EXPECT_EQ(lineIds(GetGoodsLineSet()), QStringList({"1004"}));

    // 10018: a barcode of blanks is no barcode, so only two of its three goods count.
    qint32 total = -1;
    controls(form).chkBarCode->setChecked(true);
    form->GetGoodsNum(QStringLiteral("10018"), total);
    EXPECT_EQ(total, 2);
    controls(form).chkBarCode->setChecked(false);
    form->GetGoodsNum(QStringLiteral("10018"), total);
    EXPECT_EQ(total, 3);
    EXPECT_TRUE(m_rec->boxes.isEmpty()) << boxTexts().join('|').toStdString();
}
