// A worker's day at the station, end to end through the launcher on a fresh
// demo database, once in each view: orders loaded and refused, goods counted,
// wrong, excess and refused scans, orders left and taken up again across a
// switch of view, serial goods and re-pick, and what the server holds after;
// GS1 codes in every form, and those whose fields do not fit. Nothing may pass
// that was not fully picked, and nothing picked may be lost.
#include "support/replay_harness.h"
#include <gtest/gtest.h>

namespace {

const QString kNotFound = QStringLiteral("找不到物流单号/唯一码/商品条码/序列号");
const QString kNumbersOnly = QStringLiteral("商品数量只能为数值！");
const QString kError = QStringLiteral("\\voice\\Error.wav");
const QString kExcess = QStringLiteral("\\voice\\Excess.wav");
const QString kSuccess = QStringLiteral("\\voice\\Succes.wav");

class StationReplay : public ::testing::TestWithParam<bool> {};

} // namespace

TEST_P(StationReplay, AWorkingSessionCountsEveryPieceAndLosesNothing)
{
    const bool grid = GetParam();
    const QString view = grid ? QStringLiteral("grid") : QStringLiteral("tiles");
    const QString otherView = grid ? QStringLiteral("tiles") : QStringLiteral("grid");
    ReplayHarness h;
    // A fresh load puts status 0 and picker 0 on the server; the server
    // refuses the verified status of 10002 at its pass.
    h.sql(QStringLiteral("UPDATE IC_Web2ERPOrders SET FPickingGoodMan = 204 WHERE FUniqueCode IN ('10001', '10002')"));
    h.sql(QStringLiteral("CREATE TRIGGER refuse_verified BEFORE UPDATE OF FPIckingGoodsStatus ON IC_Web2ERPOrders"
                         " WHEN NEW.FPIckingGoodsStatus = 1 AND OLD.FUniqueCode = '10002'"
                         " BEGIN SELECT RAISE(ABORT, 'status update refused'); END"));

    const Shown nothingCounted{{"lblPickedNum", "1/4"}, {"checked", "1"}, {"voice", ""}, {"TxtNum", "1"},
                               {"TxtID", "10002"},      {"ImgSuccess", "no"}};
    const Shown refusedQuantity{{"lblMessage", kNumbersOnly}, {"checked", "1"}, {"lblPickedNum", "1/10"}};
    QList<ReplayStep> steps{
        {"state", {{"view", view}, {"TxtEmployee", "张伟"}, {"lblOrderNum", "0"}, {"TxtNum", "1"}, {"lines", ""}}},
        {"scan TxtID 10001",
         {{"lblOrderNum", "4"}, {"txtWebshop", "天猫旗舰店"}, {"lines", "1001/1:1/0/0 1008/2:1/0/0 1014/3:2/0/0"}, {"voice", ""}, {"boxes", ""}}},
        // Refused and unknown orders empty the station.
        {"scan TxtID 10003", {{"lblMessage", "此单已冻结，请解冻后再操作！"}, {"voice", ""}, {"lines", ""}, {"lblOrderNum", "0"}, {"txtWebshop", ""}}},
        {"scan TxtID 10004", {{"lblMessage", "此单交易状态为申请退款"}, {"voice", "\\voice\\refunds.wav"}, {"lines", ""}}},
        {"scan TxtID 10006", {{"lblMessage", "此单已校验通过"}, {"voice", "\\voice\\repeatCheck.wav"}, {"lines", ""}, {"TxtID", "10006"}}},
        {"scan TxtID 99999", {{"lblMessage", kNotFound}, {"voice", ""}, {"lines", ""}, {"lblPickedNum", "0/"}}},
        // A code with a letter is a logistics number only.
        {"scan TxtID TB10027", {{"lblMessage", kNotFound}, {"lblOrderNum", "0"}}},
        {"scan TxtID YT10027", {{"lblOrderNum", "1"}, {"lines", "~1016/"}}},
        // Quotes typed on the keyboard never reach the field; a click empties it, leaving it shows the order again.
        {"type TxtID 10'0’02", {{"TxtID", "10002"}}},
        {"key TxtID Enter", {{"lblOrderNum", "4"}, {"txtWebshop", "京东自营店"}, {"lines", "~1005/"}}},
        {"click TxtID", {{"TxtID", ""}}},
        {"key TxtID Tab", {{"TxtID", "10002"}}},
        // The first line's excess is heard; complete, wrong and unknown goods count nothing.
        {"scan TxtID 10001", {}},
        {"type TxtNum 3", {}},
        {"scan TxtItemID @1001", {{"lblPickedNum", "1/4"}, {"voice", kExcess}, {"lblPickInfo", "拣货超量"}, {"lines:1001", "3/1"}}},
        {"scan TxtItemID @1001", {{"voice", kError}, {"lblPickInfo", "非本单商品"}, {"checked", "3"}}},
        {"type TxtNum 3", {}},
        {"scan TxtItemID @1014", {{"voice", kExcess}, {"lblPickedNum", "3/4"}, {"lines:1014", "3/2"}, {"ImgSuccess", "no"}}},
        {"scan TxtItemID @1002", {{"voice", kError}, {"checked", "6"}}},
        {"type TxtNum x", {{"lblMessage", kNumbersOnly}, {"voice", ""}}},
        {"key TxtNum Enter", {{"lblMessage", kNumbersOnly}, {"TxtNum", ""}, {"checked", "6"}}},
        {"scan TxtItemID 6900000000000", {{"lblMessage", kNumbersOnly}, {"voice", ""}, {"checked", "6"}}},
        {"scan TxtItemID 6900000000000", {{"voice", "\\voice\\findGoods.wav"}, {"lblMessage", "找不到相应的发货单或商品"}}},
        {"scan TxtItemID @1008", {{"ImgSuccess", "yes"}, {"voice", kSuccess}, {"lblPickedNum", "4/4"}, {"lblPickInfo", ""}}},
        // A scan whose every character the field refused is no scan, in whichever field.
        {"scan TxtID 10002", {}},
        {"scan TxtItemID @1005", {{"lblPickedNum", "1/4"}}},
        {"scan TxtItemID ’’", nothingCounted},
        {"scan TxtItemID '", nothingCounted},
        {"scan TxtItemID \U0001F600", nothingCounted},
        {"scan TxtNum '", nothingCounted},
        {"scan TxtID ’", nothingCounted},
        {"type TxtNum 3", {}},   // a typed quantity replaces its line's count
        {"scan TxtItemID @1005", {{"lblPickedNum", "3/4"}, {"lines:1005", "3/3"}}},
        {"scan TxtItemID @1016", {{"ImgSuccess", "yes"}, {"boxes", "~status update refused"}}},
        // A quantity that is no whole number of pieces keeps its message and counts nothing.
        {"scan TxtID 10029", {}},
        {"scan TxtItemID @1022", {{"lblPickedNum", "1/10"}}},
        {"type TxtNum 0", {}},
        {"key TxtNum Enter", refusedQuantity},
        {"type TxtNum 2.5", {}},
        {"key TxtNum Enter", refusedQuantity},
        {"type TxtNum 40000", {}},
        {"key TxtNum Enter", refusedQuantity},
        {"type TxtNum 12", {}},
        {"scan TxtItemID @1022", {{"lblPickedNum", "10/10"}, {"voice", "~" + kExcess}, {"lines:1022", "12/10"}, {"ImgSuccess", "yes"}}},
        // The charger of 10009 has two entries, 1 and 2 ordered. A typed
        // quantity goes to its own line, also after a switch of view (the
        // grid moves a complete line down only at its next scan), and the
        // first entry keeps its excess in the verdict.
        {"scan TxtID 10009", {}},
        {"type TxtNum 3", {}},
        {"scan TxtItemID @1006", {{"lines:1006", "0/2 3/1"}, {"voice", kExcess}}},
        {"click chkShowText", {{"view", otherView}}},
        {"type TxtNum 2", {}},
        {"scan TxtItemID @1006", {{"lines:1006", "2/2 3/1"}, {"lblPickedNum", "3/4"}, {"voice", ""}}},
        {"click chkShowText", {{"view", view}}},
        {"scan TxtID 10015", {{"log", "~10009异常, 超出2件, 缺少1件, 误拣0件"}}},
        {"scan TxtItemID @1002", {}},
        {"scan TxtItemID @1003", {{"lblPickedNum", "2/12"}}},
        // In the other view both orders come back with each line's counts.
        {"click chkShowText", {{"view", otherView}}},
        {"scan TxtID 10009", {{"lines:1006", "2/2 3/1"}, {"lblPickedNum", "3/4"}}},
        {"scan TxtItemID @1010", {{"ImgSuccess", "yes"}, {"voice", kSuccess}}},
        {"scan TxtID 10015", {{"lblPickedNum", "2/12"}, {"lines:1002", "1/1"}, {"lines:1003", "1/1"}, {"checked", "2"}}},
    };
    const QStringList open{"1001", "1004", "1005", "1006", "1007", "1008", "1009", "1014", "1015", "1016"};
    for (const QString& goods : open) {
        const bool last = goods == open.last();
        steps.append({"scan TxtItemID @" + goods,
                      {{"lines:" + goods, "1/1"}, {"ImgSuccess", last ? "yes" : "no"}, {"voice", last ? kSuccess : ""}}});
    }
    steps += QList<ReplayStep>{
        {"click chkShowText", {{"view", view}}},
        // Serials scanned before the order was left stay on their line; a re-pick starts it again.
        {"click chkHaveSerial", {}},
        {"scan TxtID 10021", {{"lblOrderNum", "3"}}},
        {"scan TxtItemID W1-0001", {{"lblPickedNum", "1/3"}}},
        {"scan TxtItemID 10023", {{"TxtID", "10023"}}},
        {"scan TxtID 10021", {{"lines:1031", "1/2"}}},
        {"scan TxtItemID W1-0001", {{"voice", "\\voice\\repeatScan.wav"}, {"lblMessage", "该商品的序列号重复扫描"}, {"checked", "1"}}},
        {"type TxtNum 2", {}},
        {"scan TxtItemID PAD-0001", {{"boxes", "Velto提示: 亲，序列号扫描不支持手动批量扫描!"}, {"checked", "1"}}},
        {"scan TxtItemID W1-0002", {{"ImgSuccess", "no"}}},
        {"scan TxtItemID PAD-0001", {{"ImgSuccess", "yes"}, {"voice", kSuccess}}},
        {"click CmdBtnRePick", {{"ImgSuccess", "no"}, {"checked", "0"}, {"lblPickedNum", "0/"}, {"log", "!10021"}}},
        {"scan TxtItemID W1-0003", {}},
        {"scan TxtItemID W1-0001", {}},
        {"scan TxtItemID PAD-0002", {{"ImgSuccess", "yes"}}},
        {"click chkHaveSerial", {}},
        // A verified order is refused until it is re-picked; re-pick takes the last code scanned.
        {"scan TxtID 10006", {{"lblMessage", "此单已校验通过"}}},
        {"type TxtID +", {}},
        {"click CmdBtnRePick", {{"TxtID", "10006"}, {"lblOrderNum", "1"}, {"lblMessage", ""}}},
        {"scan TxtItemID @1009", {{"ImgSuccess", "yes"}}},
        {"type TxtID NO-SUCH-ORDER", {}},
        {"click CmdBtnRePick", {{"lblMessage", "找不到物流单号/唯一码/商品条码"}, {"lblOrderNum", "0"}}},
        // 10011 holds goods without barcodes only; the close question answered yes, then no.
        {"scan TxtID 10011", {{"lblOrderNum", "0"}}},
        {"click chkBarCode", {}},
        {"scan TxtID 10011", {{"lblOrderNum", "4"}}},
        {"answer yes", {}},
        {"close", {{"boxes", "~Velto提示: "}, {"boxes", "~10011未通过，是否继续校验?"}, {"closed", "no"}, {"TxtID", "10011"}}},
        {"answer no", {}},
        {"close", {{"closed", "yes"}}},
    };
    if (grid)
        steps.prepend({"click chkShowText", {}});

    const ReplayRun r = h.play(steps);
    for (int i = 0; i < steps.size() && i < r.steps.size(); ++i) {
        SCOPED_TRACE(QStringLiteral("step %1: %2").arg(i + 1).arg(steps[i].command).toStdString());
        // A scan of goods leaves the quantity at 1; no log row reads a negative shortfall.
        if (steps[i].command.startsWith(QLatin1String("scan TxtItemID"))) {
            EXPECT_EQ(shown(r.steps[i], "TxtNum"), "1");
        }
        EXPECT_FALSE(shown(r.steps[i], "log").contains(QLatin1Char('-')));
    }

    // Passed orders are verified by this picker and sent; 10002, refused, is
    // neither; a re-picked serial order holds its second pass's serials only.
    EXPECT_EQ(h.orders("'10001', '10002', '10006', '10009', '10015', '10021', '10029'"),
              "10001:1/201/1/1 10002:0/0/0/0 10006:1/201/1/1 10009:1/201/1/1 10015:1/201/1/1 10021:1/201/1/1 10029:1/201/1/1");
    EXPECT_EQ(h.serials(), "53|W1-0001 53|W1-0003 54|PAD-0002");

    // The next start keeps the view and the options, and loads orders fresh;
    // another user starts from the defaults.
    h.play({{"state", {{"view", view}, {"boxes", ""}}},
            {"scan TxtID 10011", {{"lblOrderNum", "4"}}},
            {"scan TxtID 10002", {{"checked", "0"}, {"lblPickedNum", "0/"}}}});
    h.play({{"state", {{"view", "tiles"}, {"TxtEmployee", "李娜"}}}}, h.props(2));
}

TEST_P(StationReplay, Gs1CodesInEveryFormAreReadAndWhatDoesNotFitIsRefused)
{
    const QString GS = QString(QChar(0x1D));   // as a scanner sends it
    const QString findGoods = QStringLiteral("\\voice\\findGoods.wav");
    const QString batch = QStringLiteral("该商品的批次、仓库、仓位信息与订单分录上的不一致");
    // No pick info, and of each order only the first piece counted.
    const auto refused = [](const QString& message, const QString& voice) {
        return Shown{{"lblMessage", message}, {"voice", voice}, {"lblPickInfo", ""}, {"checked", "1"}};
    };
    QList<ReplayStep> steps{
        {"scan TxtID 10001", {}},
        // GS1-128, a GS after the batch; the field shows the GS as its sign
        {"scan TxtItemID ]C10106931000010017" "10LOT-A7" + GS + "17271231",
         {{"lblPickedNum", "1/4"}, {"lines:1001", "1/1"}, {"TxtItemID", "~" + QString(QChar(0x241D))}}},
        {"scan TxtItemID (01)06931000010018", refused("GS1条码的校验位不正确 (01)", findGoods)},
        {"scan TxtItemID ]C10106931000010086" "17261301",
         refused("GS1条码的日期不正确 (17)", findGoods) + Shown{{"lines:1008", "0/1"}}},
        {"scan TxtItemID " + GS + "0106931000010086", {{"lblPickedNum", "2/4"}}},   // a leading FNC1
        // typed by a person: two bottles
        {"scan TxtItemID (01)06931000010147(30)2", {{"lines:1014", "2/2"}, {"ImgSuccess", "yes"}, {"TxtNum", "1"}}},
        {"click chkHaveSerial", {}},
        {"scan TxtID 10023", {}},
        {"scan TxtItemID (01)06931000010338(10)M2403(17)260219(21)MF-0001", {{"lblPickedNum", "1/2"}}},
        {"scan TxtItemID ]d20106931000010338" "10M2403" + GS + "17260220" "21MF-0002",
         refused("同一分录不允许扫描不同保质期的商品", "\\voice\\DifKFPeriod.wav")},
        {"scan TxtItemID ]Q30106931000010338" "10M2499" + GS + "21MF-0002", refused(batch, findGoods)},
        {"scan TxtItemID (01)06931000010017(21)MF-0002", refused(batch, findGoods)},   // another goods' GTIN
        {"scan TxtItemID (21)MF-0001", refused("该商品的序列号重复扫描", "\\voice\\repeatScan.wav")},
        {"scan TxtItemID (01)06931000010338(21)MF-0001(21)MF-0002",
         refused("GS1条码中同一标识符有不同的值 (21)", findGoods)},
        {"scan TxtItemID ]C1(01)06931000010338", refused("GS1条码中有无法识别的应用标识符", findGoods)},
        {"scan TxtItemID (01)06931000010338(10)M2403(17)260219(21)MF-0002", {{"ImgSuccess", "yes"}}},
    };
    if (GetParam())
        steps.prepend({"click chkShowText", {}});
    ReplayHarness h;
    h.play(steps);
    EXPECT_EQ(h.orders("'10001', '10023'"), "10001:1/201/1/1 10023:1/201/1/1");
    EXPECT_EQ(h.serials(), "56|MF-0001 56|MF-0002");
}

INSTANTIATE_TEST_SUITE_P(Views, StationReplay, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& info) { return info.param ? "grid" : "tiles"; });
