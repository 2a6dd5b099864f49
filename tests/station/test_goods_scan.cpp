// The goods and serial scan on the real station over a demo database, in the
// tile view and in the grid view: pick, leave, switch the view, come back, pass.
#include "station/station_fixture.h"
#include "tiles/goods_view.h"

namespace {

const QString kError = QStringLiteral("\\voice\\Error.wav");
const QString kFindGoods = QStringLiteral("\\voice\\findGoods.wav");

} // namespace

class GoodsScanTest : public StationFormTest, public ::testing::WithParamInterface<bool> {
protected:
    frmPickigGoods& open(bool serial = false)
    {
        frmPickigGoods& f = *openStation();
        if (GetParam())
            controls(f).chkShowText->click();
        if (serial)
            controls(f).chkHaveSerial->click();
        return f;
    }

    // One scan in TxtItemID; voices and boxes are those of this scan.
    void goods(const QString& code)
    {
        m_rec->voices.clear();
        m_rec->boxes.clear();
        scanInto(controls(m_form).TxtItemID, code);
    }

    // Lines by entry id: the grid moves finished lines to the end of the set.
    GoodsRecord line(int entryId) const
    {
        const RecordList lines = GetGoodsLineSet();
        for (int i = 0; i < lines.Count(); ++i)
            if (lines.Item(i).GetValue(QStringLiteral("FEntryID")).toInt() == entryId)
                return lines.Item(i);
        ADD_FAILURE() << "no line of entry " << entryId;
        return GoodsRecord();
    }
    int checked(int entryId) const { return line(entryId).GetValue(QStringLiteral("GoodsCheckedCnt")).toInt(); }
    int pickCnt(int entryId) const { return line(entryId).GetValue(QStringLiteral("GoodsPickCnt")).toInt(); }
    QString serials(int entryId) const { return line(entryId).GetValue(QStringLiteral("FSeriNum")).toString(); }

    // The count the view on screen shows for a line.
    QString shownCount(int goodsId, int entryId) const
    {
        const StationControls c = controls(m_form);
        if (m_form->IsGridView()) {
            for (int r = 1; r <= c.GoodsTextView->rowCount(); ++r) {
                if (c.GoodsTextView->rowKey(r) == QString::number(goodsId) + QString::number(entryId))
                    return c.GoodsTextView->cellText(r, GoodsTextView::ColCheckedCnt);
            }
            return QStringLiteral("no row");
        }
        const GoodsView* tile = c.GoodsListView->tileWidget(c.GoodsListView->model().findLine(goodsId, entryId));
        return tile ? tile->findChild<QLabel*>(QStringLiteral("lblCheckedCnt"))->text() : QStringLiteral("no tile");
    }

    // Leaves the order for another, switches the view and scans the order again.
    void leaveSwitchViewAndComeBack(const QString& order, const QString& other)
    {
        scanInto(controls(m_form).TxtID, other);
        controls(m_form).chkShowText->click();
        ASSERT_NE(m_form->IsGridView(), GetParam());
        m_rec->voices.clear();
        scanInto(controls(m_form).TxtID, order);
        EXPECT_TRUE(m_form->pickingState().restoredFromLog());
        EXPECT_TRUE(m_rec->voices.isEmpty());
    }

    // The stored serial rows, sorted: lines may come in any order.
    QString serialRows() const
    {
        return dbValue(QStringLiteral("SELECT group_concat(r, ' ') FROM (SELECT FEntryID || '|' || FSerialNumber || '|' || "
                                      "FBatchNo || '|' || FStockPlace || '|' || FKFDate || '|' || FKFPeriod AS r "
                                      "FROM IC_Web2ErpOrderSerial ORDER BY r)"))
            .toString();
    }

    // Where every scan ends: quantity 1, the cursor in TxtItemID, its text selected.
    void expectReady(const char* after) const
    {
        SCOPED_TRACE(after);
        EXPECT_EQ(controls(m_form).TxtNum->text(), QStringLiteral("1"));
        EXPECT_TRUE(controls(m_form).TxtItemID->hasFocus());
        EXPECT_EQ(controls(m_form).TxtItemID->selectedText(), controls(m_form).TxtItemID->text());
    }
};

TEST_P(GoodsScanTest, BarcodeScansCountRefuseAndPassTheOrder)
{
    frmPickigGoods& f = open();
    goods(barcodeOf(1001));                          // no order yet
    EXPECT_EQ(m_rec->voices, QStringList{kFindGoods});
    EXPECT_EQ(controls(f).lblMessage->text(), QStringLiteral("找不到物流单号/唯一码/商品条码/序列号"));
    expectReady("no order");
    goods(QStringLiteral("10001"));                  // an order's code goes to the order scan
    EXPECT_EQ(f.pickingState().CurrentOrderCode(), QStringLiteral("10001"));   // 1001 x1 (entry 1), 1008 x1 (2), 1014 x2 (3)
    EXPECT_EQ(controls(f).TxtID->text(), QStringLiteral("10001"));
    ASSERT_EQ(controls(f).lblOrderNum->text(), QStringLiteral("4"));
    expectReady("order code in TxtItemID");

    goods(barcodeOf(1001));
    EXPECT_TRUE(m_rec->voices.isEmpty());
    EXPECT_EQ(controls(f).lblPickedNum->text(), QStringLiteral("1/4"));
    expectReady("counted");

    goods(barcodeOf(1001));                          // its line is complete
    EXPECT_EQ(m_rec->voices, QStringList{kError});
    EXPECT_EQ(controls(f).lblPickInfo->text(), QStringLiteral("非本单商品"));
    EXPECT_EQ(f.pickingState().errorNum(), 1);
    EXPECT_EQ(checked(1), 1);
    expectReady("complete line");

    typeInto(controls(f).TxtNum, QStringLiteral("2"));
    goods(barcodeOf(1002));                          // goods of another order
    EXPECT_EQ(m_rec->voices, QStringList{kError});
    EXPECT_EQ(f.pickingState().errorNum(), 3);
    expectReady("foreign goods");

    goods(barcodeOf(1031));                          // serial-managed, scanned by barcode
    EXPECT_EQ(m_rec->voices, QStringList{QStringLiteral("\\voice\\scanSerial.wav")});
    EXPECT_EQ(controls(f).lblMessage->text(), QStringLiteral("亲,请扫描序列号"));
    expectReady("serial goods");

    goods(QStringLiteral("6900000000000"));
    EXPECT_EQ(m_rec->voices, QStringList{kFindGoods});
    EXPECT_EQ(controls(f).lblMessage->text(), QStringLiteral("找不到相应的发货单或商品"));
    EXPECT_EQ(controls(f).lblPickInfo->text(), QString());
    EXPECT_EQ(f.pickingState().errorNum(), 3);
    expectReady("unknown code");

    // A typed quantity replaces what the line had: 3 on a line of 2.
    goods(barcodeOf(1014));
    typeInto(controls(f).TxtNum, QStringLiteral("3"));
    goods(barcodeOf(1014));
    EXPECT_EQ(checked(3), 3);
    EXPECT_EQ(f.pickingState().pickedNum(), 3);
    EXPECT_EQ(f.pickingState().excessNum(), 1);
    EXPECT_EQ(m_rec->voices, QStringList{QStringLiteral("\\voice\\Excess.wav")});
    EXPECT_EQ(controls(f).lblPickInfo->text(), QStringLiteral("拣货超量"));
    expectReady("typed quantity");
    EXPECT_EQ(pickingOf(QStringLiteral("10001")), QStringLiteral("0/0"));

    // Back from another order in the other view: the counts as they were left, the
    // missing count recomputed; each scan took its line once, the typed one too.
    leaveSwitchViewAndComeBack(QStringLiteral("10001"), QStringLiteral("10019"));
    const PickingState& state = f.pickingState();
    EXPECT_EQ(QList<int>({state.pickedNum(), state.excessNum(), state.errorNum(), state.missingNum()}),
              QList<int>({3, 1, 3, 1}));
    const GoodsRecord entry = state.entryOf(QStringLiteral("10001"));
    EXPECT_EQ(entry.GetValue(QStringLiteral("log")).toString(), QStringLiteral("10001异常, 超出1件, 缺少1件, 误拣3件"));
    EXPECT_EQ(controls(f).lblPickedNum->text(), QStringLiteral("3/4"));
    EXPECT_GT(controls(f).lblProgress->width(), 0);
    EXPECT_LT(controls(f).lblProgress->width(), controls(f).LblProgressbar->width());
    EXPECT_EQ(QStringList({shownCount(1001, 1), shownCount(1008, 2), shownCount(1014, 3)}), QStringList({"1", "0", "3"}));
    EXPECT_EQ(QList<int>({pickCnt(1), pickCnt(2), pickCnt(3)}), QList<int>({1, 0, 2}));

    // Enter in TxtNum scans the code standing in TxtItemID, then clears the message.
    typeInto(controls(f).TxtItemID, barcodeOf(1008));
    controls(f).lblMessage->setText(QStringLiteral("x"));
    m_rec->voices.clear();
    scanInto(controls(f).TxtNum, QStringLiteral("1"));
    EXPECT_EQ(m_rec->voices, QStringList{QStringLiteral("\\voice\\Succes.wav")});
    EXPECT_TRUE(controls(f).ImgSuccess->isVisible());
    EXPECT_EQ(controls(f).lblPickedNum->text(), QStringLiteral("4/4"));
    EXPECT_EQ(controls(f).lblMessage->text(), QString());
    expectReady("order passed");
    // The last unit passes the order, whatever happened on the way to it.
    EXPECT_EQ(entry.GetValue(QStringLiteral("log")).toString(), QStringLiteral("10001通过   误拣0件"));
    EXPECT_TRUE(entry.GetValue(QStringLiteral("bSuccess")).toBool());
    EXPECT_EQ(state.missingNum(), 0);
    EXPECT_EQ(state.SessionOrderLog().Count(), 2);   // one entry an order, however often it was left
    EXPECT_EQ(pickingOf(QStringLiteral("10001")), QStringLiteral("1/201"));
    EXPECT_EQ(dbValue(QStringLiteral("SELECT FDeliveryStatus FROM IC_Web2ERPOrders WHERE FID = 1")).toInt(), 1);
}

TEST_P(GoodsScanTest, SerialsFitTheirLineAndAnOrderPassesIsRePickedAndStoresItsRowsOnce)
{
    frmPickigGoods& f = open(true);
    scanInto(controls(f).TxtID, QStringLiteral("10021"));      // 1031 x2 W2405 (entry 53), 1032 x1 P2404 (54)
    ASSERT_EQ(controls(f).lblOrderNum->text(), QStringLiteral("3"));

    goods(QStringLiteral("W1-0001"));
    leaveSwitchViewAndComeBack(QStringLiteral("10021"), QStringLiteral("10001"));
    EXPECT_EQ(shownCount(1031, 53), QStringLiteral("1"));
    goods(QStringLiteral("w1-0001"));                // the server finds serials whatever their case
    EXPECT_EQ(m_rec->voices, QStringList{QStringLiteral("\\voice\\repeatScan.wav")});
    EXPECT_EQ(controls(f).lblMessage->text(), QStringLiteral("该商品的序列号重复扫描"));
    EXPECT_EQ(serials(53), QStringLiteral(",W1-0001"));
    EXPECT_EQ(pickCnt(53), 1);
    expectReady("repeated serial");

    // Another batch on a line that is not the order's last: passed over in
    // silence, so no open line takes it.
    goods(QStringLiteral("W1-0004"));
    EXPECT_EQ(m_rec->voices, QStringList{kError});
    EXPECT_EQ(pickCnt(53), 1);

    typeInto(controls(f).TxtNum, QStringLiteral("2"));
    goods(QStringLiteral("PAD-0001"));
    ASSERT_EQ(boxTexts(), QStringList{QStringLiteral("亲，序列号扫描不支持手动批量扫描!")});
    EXPECT_EQ(pickCnt(54) + checked(54), 0);
    EXPECT_EQ(serials(54), QString());
    expectReady("quantity 2 in serial mode");

    goods(QStringLiteral("W1-0002"));
    goods(QStringLiteral("PAD-0001"));
    EXPECT_TRUE(controls(f).ImgSuccess->isVisible());
    EXPECT_EQ(pickingOf(QStringLiteral("10021")), QStringLiteral("1/201"));
    EXPECT_EQ(serialRows(), QStringLiteral("53|W1-0001|W2405|1||0 53|W1-0002|W2405|1||0 54|PAD-0001|P2404|2||0"));

    controls(f).TxtID->setText(QStringLiteral("10021"));
    controls(f).CmdBtnRePick->click();
    EXPECT_FALSE(controls(f).ImgSuccess->isVisible());
    EXPECT_EQ(pickingOf(QStringLiteral("10021")), QStringLiteral("0/0"));
    EXPECT_EQ(f.pickingState().pickedNum() + f.pickingState().errorNum() + checked(53) + checked(54), 0);
    for (int i = 0; i < f.pickingState().SessionOrderLog().Count(); ++i)
        EXPECT_NE(f.pickingState().SessionOrderLog().Item(i).GetValue(QStringLiteral("ID")).toString(), QStringLiteral("10021"));

    goods(QStringLiteral("W1-0003"));
    goods(QStringLiteral("W1-0001"));
    goods(QStringLiteral("PAD-0002"));
    EXPECT_TRUE(controls(f).ImgSuccess->isVisible());
    EXPECT_EQ(serialRows(), QStringLiteral("53|W1-0001|W2405|1||0 53|W1-0003|W2405|1||0 54|PAD-0002|P2404|2||0"));
    expectReady("verified again");

    // A serial must fit the batch, place and shelf life of its line.
    scanInto(controls(f).TxtID, QStringLiteral("10024"));      // 1038 (57), 1034 T2401 (58), 1034 T2402 (59)
    goods(QStringLiteral("ET-0003"));                // fits neither; the last line tells
    EXPECT_EQ(m_rec->voices, QStringList{kFindGoods});
    EXPECT_EQ(controls(f).lblMessage->text(), QStringLiteral("该商品的批次、仓库、仓位信息与订单分录上的不一致"));
    EXPECT_EQ(pickCnt(58) + pickCnt(59), 0);
    expectReady("fits no line");
    goods(QStringLiteral("ET-0002"));
    EXPECT_EQ(checked(58), 0);
    EXPECT_EQ(serials(59), QStringLiteral(",ET-0002"));
    goods(QStringLiteral("ET-0001"));
    EXPECT_EQ(serials(58), QStringLiteral(",ET-0001"));

    scanInto(controls(f).TxtID, QStringLiteral("10023"));      // 1033 x2 (56)
    goods(QStringLiteral("MF-0001"));
    for (const QString& serial : {QStringLiteral("MF-0003"), QStringLiteral("MF-0004")}) {   // period, then date
        goods(serial);
        EXPECT_EQ(m_rec->voices, QStringList{QStringLiteral("\\voice\\DifKFPeriod.wav")}) << serial.toStdString();
        EXPECT_EQ(controls(f).lblMessage->text(), QStringLiteral("同一分录不允许扫描不同保质期的商品"));
        EXPECT_EQ(pickCnt(56), 1);
        EXPECT_EQ(checked(56), 1);
        expectReady("shelf life differs");
    }
    goods(QStringLiteral("MF-0002"));
    EXPECT_TRUE(controls(f).ImgSuccess->isVisible());
    EXPECT_EQ(serialRows(), QStringLiteral("53|W1-0001|W2405|1||0 53|W1-0003|W2405|1||0 54|PAD-0002|P2404|2||0 "
                                           "56|MF-0001|M2403|3|2024-03-01|720 56|MF-0002|M2403|3|2024-03-01|720"));
}


INSTANTIATE_TEST_SUITE_P(Views, GoodsScanTest, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& info) { return info.param ? "Grid" : "Tiles"; });

TEST_F(StationFormTest, APassIsDeliveredOnlyWhenSavedWithAStockBillAndDeliveryOnPick)
{
    const auto delivered = [this](const QString& code) {
        return dbValue(QStringLiteral("SELECT FDeliveryStatus FROM IC_Web2ERPOrders WHERE FUniqueCode = ?"), {code}).toInt();
    };
    SetDemoSystemProfile(m_db, QStringLiteral("CreateStockBillType"), QStringLiteral("0"));
    scanInto(controls(openStation()).TxtID, QStringLiteral("10028"));
    scanGoods(m_form.get(), 1024);
    EXPECT_TRUE(controls(m_form).ImgSuccess->isVisible());
    EXPECT_EQ(delivered(QStringLiteral("10028")), 0);
    ASSERT_TRUE(closeStation());

    SetDemoSystemProfile(m_db, QStringLiteral("CreateStockBillType"), QStringLiteral("1"));
    SetDemoSystemProfile(m_db, QStringLiteral("DeliveryWhenWeightedOrPick"), QStringLiteral("0"));
    scanInto(controls(openStation()).TxtID, QStringLiteral("10019"));
    scanGoods(m_form.get(), 1004);
    scanGoods(m_form.get(), 1004);
    EXPECT_TRUE(controls(m_form).ImgSuccess->isVisible());
    EXPECT_EQ(pickingOf(QStringLiteral("10019")), QStringLiteral("1/201"));
    EXPECT_EQ(delivered(QStringLiteral("10019")), 0);
    ASSERT_TRUE(closeStation());
    EXPECT_TRUE(m_rec->boxes.isEmpty()) << boxTexts().join('|').toStdString();

    // The server refuses the status: the worker is told, the order stays passed on
    // the station, but is neither verified on the server nor sent for delivery.
    SetDemoSystemProfile(m_db, QStringLiteral("DeliveryWhenWeightedOrPick"), QStringLiteral("1"));
    scanInto(controls(openStation()).TxtID, QStringLiteral("YT10027"));
    RegisterServerObject(ProgIds::SaveData, [] { return std::make_shared<FailingSaveData>(); });
    scanGoods(m_form.get(), 1016);
    EXPECT_EQ(boxTexts(), (QStringList{QStringLiteral("保存失败")}));
    EXPECT_TRUE(controls(m_form).ImgSuccess->isVisible());
    EXPECT_EQ(controls(m_form).lblPickedNum->text(), QStringLiteral("1/1"));
    EXPECT_TRUE(m_form->pickingState().entryOf(QStringLiteral("YT10027")).GetValue(QStringLiteral("bSuccess")).toBool());
    EXPECT_EQ(pickingOf(QStringLiteral("TB10027")), QStringLiteral("0/0"));
    EXPECT_EQ(controls(m_form).TxtItemID->selectedText(), controls(m_form).TxtItemID->text());
}
