// The order scan: Enter in TxtID. The order being left gets its verdict, the
// new order is refused (frozen, refund, verified), restored from this
// session's log, or loaded fresh with its status on the server set back to 0.
#include "host/error_reporter.h"
#include "host/object_factory.h"
#include "host/platform.h"
#include "host/record_keys.h"
#include "log/log_list.h"
#include "station/active_view.h"
#include "orderdata/order_goods.h"
#include "session/host_session.h"
#include "session/language.h"
#include "session/variant_convert.h"
#include "station/frm_pickig_goods.h"
#include "ui_frm_pickig_goods.h"
#include "station/scan_line_edit.h"
#include "station/station_sql.h"
#include "station/verdict.h"
#include "tiles/goods_big_view.h"
#include <QCheckBox>
#include <QLabel>
#include <QPixmap>
#include <limits>

namespace {

const QString NotFoundMessage = QStringLiteral("找不到物流单号/唯一码/商品条码/序列号");

// Verdict words, translated one by one so the composition itself stays in
// the station's own language.
QString translatedVerdict(const QString& text)
{
    if (GetLanguageID() == 1)
        return text;
    QString shown = text;
    for (const char* word : {"异常", "通过", "超出", "缺少", "误拣", "件"}) {
        const QString chinese = QString::fromUtf8(word);
        shown.replace(chinese, LoadString(chinese));
    }
    return shown;
}

} // namespace

void frmPickigGoods::TxtID_Enter()
{
    const JournalCommit commit{*this};
    ReportingErrors(this, [&] {
        const QString code = TrimBlanks(ui->TxtID->text());
        LogLeavingVerdict();
        if (code.isEmpty())
            return;
        m_state.setLastOrderCode(code);

        if (const std::optional<GoodsRecord> header = OrderHeaderQuery(code)) {
            if (RecordNumber(*header, QStringLiteral("FIsLock")) != 0) {
                SetMessage(QStringLiteral("此单已冻结，请解冻后再操作！"));
                RefuseOrder();
                return;
            }
            GoodsRecord& arguments = m_state.argumentRecord();
            arguments = GoodsRecord();
            arguments.SetValue(QStringLiteral("sDSN"), GetPropsString());
            arguments.SetValue(QStringLiteral("FID"), header->GetValue(QStringLiteral("FID")));
            auto data = CreateServerObjectAs<IGetData>(ProgIds::GetData);
            const std::optional<GoodsRecord> refund = data->CheckReturnBills(arguments);
            if (refund && RecordNumber(*refund, QStringLiteral("FStatus")) == 1) {
                PlayVoice(QStringLiteral("\\voice\\refunds.wav"));
                SetMessage(QStringLiteral("此单交易状态为申请退款"));
                RefuseOrder();
                return;
            }
            if (RecordNumber(*header, QStringLiteral("FPIckingGoodsStatus")) != 0) {
                PlayVoice(QStringLiteral("\\voice\\repeatCheck.wav"));
                SetMessage(QStringLiteral("此单已校验通过"));
                RefuseOrder();
                return;
            }
        }

        if (m_state.wasChecked(code)) {
            const GoodsRecord entry = m_state.entryOf(code);
            if (!entry.isNone()) {
                m_state.markRestored();
                RestoreOrder(entry);
                return;
            }
            // Re-pick took its entry away: the order starts over as new.
        }

        m_state.startFresh();
        const qint32 total = loadOrderTotal(code);
        if (total == 0) {
            SetMessage(NotFoundMessage);
            FocusAndSelect(ui->TxtID);
        } else {
            SetMessage(QString());
        }
    });
}

std::optional<GoodsRecord> frmPickigGoods::OrderHeaderQuery(const QString& code)
{
    auto info = CreateServerObjectAs<IWebOrderInfo>(ProgIds::WebOrderInfo);
    return info->GetSingleSQLData(GetPropsString(), OrderHeaderSql(code));
}

void frmPickigGoods::GetGoodsNum(const QString& code, qint32& total)
{
    auto data = CreateServerObjectAs<IGetData>(ProgIds::GetData);
    bool hasSerialGoods = false;
    if (!code.isEmpty()) {
        const RecordsetPtr serial = data->ExecuteSQL(GetPropsString(), SerialGoodsSql(code));
        hasSerialGoods = serial && serial->RecordCount() > 0;
    }
    const RecordsetPtr rs = data->ExecuteSQL(
        GetPropsString(), GoodsNumSql(code, hasSerialGoods, ui->chkBarCode->isChecked(), ui->chkHaveSerial->isChecked()));
    qint32 sum = 0;
    for (; rs && !rs->isEOF(); rs->MoveNext()) {
        const QVariant quantity = rs->Fields(RecordKeys::FQuantity);
        if (quantity.isNull())
            continue;
        const qint64 next = qint64(sum) + variantToLong(quantity);
        if (next > std::numeric_limits<qint32>::max() || next < std::numeric_limits<qint32>::min())
            throw HostError(HostErrors::Overflow, QStringLiteral("Overflow"));
        sum = qint32(next);
    }
    total = sum;
}

void frmPickigGoods::LoadOrder(const QString& code)
{
    loadOrderTotal(code);
}

void frmPickigGoods::showActiveViewGoods()
{
    // An empty set leaves a view as it was: empty it here, so that a refused
    // or unknown order shows nothing.
    const bool hasLines = HasGoodsLines();
    activeView().showGoods(hasLines);
    if (!hasLines) {
        m_bigViewLine = GoodsRecord::none();
        ui->GoodsBigView->setGoodsID(QString());
        ui->GoodsBigView->setGoodsName(QString());
        ui->GoodsBigView->setGoodsOrderCnt(0);
        ui->GoodsBigView->setGoodsCheckedCnt(0);
        ui->GoodsBigView->SetPicture(QPixmap());
    }
}

qint32 frmPickigGoods::loadOrderTotal(const QString& code)
{
    LoadOrderGoods(code);
    ui->txtWebshop->setText(GetWebshopName().toString());
    showActiveViewGoods();
    m_state.setCurrentOrderCode(code);
    qint32 total = 0;
    GetGoodsNum(code, total);
    if (HasGoodsLines() && total > 0) {
        FocusAndSelect(ui->TxtItemID);
        SetMessage(QString());
    }
    ui->lblOrderNum->setText(QString::number(total));
    ui->lblPickedNum->setText(QStringLiteral("0/"));
    m_state.clearPicked();
    setProgressWidth();
    // A fresh load starts the order over on the server too.
    SavePickingStatus(code, false);
    ResetPickState();
    return total;
}

void frmPickigGoods::RestoreOrder(const GoodsRecord& entry)
{
    const QString code = entry.GetValue(RecordKeys::ID).toString();
    // The order still on the station keeps its lines (and the serials scanned
    // on them); an order left earlier is read again.
    const bool reload = code != m_state.CurrentOrderCode() || !HasGoodsLines();
    if (reload) {
        LoadOrderGoods(code);
        ui->txtWebshop->setText(GetWebshopName().toString());
    }
    showActiveViewGoods();
    m_state.setCurrentOrderCode(code);
    qint32 total = 0;
    GetGoodsNum(code, total);
    FocusAndSelect(ui->TxtItemID);
    if (HasGoodsLines() && total > 0)
        SetMessage(QString());
    ui->lblOrderNum->setText(QString::number(total));
    ResetPickState();

    m_state.restoreCounters(entry);
    if (entry.GetValue(RecordKeys::bSuccess, false).toBool()) {
        ui->ImgSuccess->show();
        PlayVoice(QStringLiteral("\\voice\\Succes.wav"));
    }

    // Each line gets its counts and serials back by goods and entry.
    const QVariant stored = entry.GetValue(QStringLiteral("PickedNum"));
    const GoodsRecord states = stored.canConvert<GoodsRecord>() ? stored.value<GoodsRecord>() : GoodsRecord::none();
    if (!states.isNone())
        activeView().setCheckCounts(states);
    m_state.setPickedNum(PickingState::pickedOnLines(GetGoodsLineSet()));
    UpdateProgress();
    reloadLogPane();
}

void frmPickigGoods::RefuseOrder()
{
    FocusAndSelect(ui->TxtID);
    ui->TxtItemID->setText(QString());
    loadOrderTotal(PickingState::NoOrderMark);
    ui->ImgSuccess->hide();
}

bool frmPickigGoods::SavePickingStatus(const QString& code, bool done)
{
    return ReportingErrors(this, [&] {
        GoodsRecord record;
        record.SetValue(RecordKeys::FPickingGoodMan, done ? ui->TxtEmployee->property("Tag") : QVariant(0));
        record.SetValue(RecordKeys::FLogisticsOrder, code);
        record.SetValue(RecordKeys::sProps, GetPropsString());
        record.SetValue(RecordKeys::FPickingGoodsstatus, done ? 1 : 0);
        CreateServerObjectAs<ISaveData>(ProgIds::SaveData)->SavePickingGoods(record);
    });
}

bool frmPickigGoods::LogLeavingVerdict()
{
    // "+" and a code that loaded nothing are no order: nothing to judge.
    if (!m_state.hasOrder() || !HasGoodsLines() || !m_state.logOpen())
        return true;
    const QString code = m_state.CurrentOrderCode();
    qint32 total = 0;
    GetGoodsNum(code, total);
    if (total <= 0)
        return true;
    const bool passed = m_state.leaveOrder(total, shownTotal());
    ui->lblPickInfo->setText(LoadString(PickInfoFor(m_state.excessNum(), m_state.errorNum())));
    logVerdict(code, m_state.verdict(code, false));
    // Keep every line's picking state, so the order can come back as it was left.
    m_state.keepLineCounts(code, activeView().checkCounts());
    return passed;
}

void frmPickigGoods::WriteVerdict(int kind)
{
    switch (kind) {
    case 0:
        ui->lblPickInfo->setText(LoadString(QStringLiteral("拣货超量")));
        break;
    case 2:
        ui->lblPickInfo->setText(LoadString(QStringLiteral("非本单商品")));
        break;
    case 3:
        ui->lblPickInfo->setText(QString());
        break;
    default:
        break;
    }
    if (!m_state.hasOrder())
        return;   // no order on the station, nothing to log
    const QString code = m_state.CurrentOrderCode();
    logVerdict(code, m_state.verdict(code, kind == 3));
}

void frmPickigGoods::logVerdict(const QString& code, const VerdictText& verdict)
{
    if (!m_state.logOpen())
        return;   // the station is closing
    m_state.logVerdict(code, translatedVerdict(verdict.text), verdict.success);
    reloadLogPane();
}

void frmPickigGoods::reloadLogPane()
{
    if (m_state.logHasEntries())
        ui->LogList1->LoadLogList(m_state.SessionOrderLog());
}
