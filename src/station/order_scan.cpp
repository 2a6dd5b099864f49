// The order scan: Enter in TxtID. The order being left gets its verdict, the
// new order is refused (frozen, refund, verified), restored from this
// session's log, or loaded fresh with its status on the server set back to 0.
#include "grid/goods_text_view.h"
#include "host/error_reporter.h"
#include "host/object_factory.h"
#include "host/platform.h"
#include "log/log_list.h"
#include "orderdata/order_goods.h"
#include "session/host_session.h"
#include "session/language.h"
#include "session/variant_convert.h"
#include "station/frm_pickig_goods.h"
#include "station/scan_line_edit.h"
#include "station/station_sql.h"
#include "station/verdict.h"
#include "tiles/goods_big_view.h"
#include "tiles/goods_list_view.h"
#include <QCheckBox>
#include <QLabel>
#include <QPixmap>
#include <limits>

namespace {

const QString NoOrderMark = QStringLiteral("+");
const QString NotFoundMessage = QStringLiteral("找不到物流单号/唯一码/商品条码/序列号");

qint64 numberOf(const GoodsRecord& record, const QString& key)
{
    const QVariant value = record.GetValue(key, 0);
    if (value.isNull())
        return 0;
    bool ok = false;
    const double number = value.toString().trimmed().toDouble(&ok);
    return ok ? qint64(number) : 0;
}

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
    try {
        const QString code = TrimBlanks(TxtID->text());
        LogLeavingVerdict();
        if (code.isEmpty())
            return;
        m_LastOrderCode = code;

        if (const std::optional<GoodsRecord> header = OrderHeaderQuery(code)) {
            if (numberOf(*header, QStringLiteral("FIsLock")) != 0) {
                SetMessage(QStringLiteral("此单已冻结，请解冻后再操作！"));
                RefuseOrder();
                return;
            }
            m_ArgRecord = GoodsRecord();
            m_ArgRecord.SetValue(QStringLiteral("sDSN"), GetPropsString());
            m_ArgRecord.SetValue(QStringLiteral("FID"), header->GetValue(QStringLiteral("FID")));
            auto data = CreateServerObjectAs<IGetData>(ProgIds::GetData);
            const std::optional<GoodsRecord> refund = data->CheckReturnBills(m_ArgRecord);
            if (refund && numberOf(*refund, QStringLiteral("FStatus")) == 1) {
                PlayVoice(QStringLiteral("\\voice\\refunds.wav"));
                SetMessage(QStringLiteral("此单交易状态为申请退款"));
                RefuseOrder();
                return;
            }
            if (numberOf(*header, QStringLiteral("FPIckingGoodsStatus")) != 0) {
                PlayVoice(QStringLiteral("\\voice\\repeatCheck.wav"));
                SetMessage(QStringLiteral("此单已校验通过"));
                RefuseOrder();
                return;
            }
        }

        if (SessionOrderKeys.Exists(code)) {
            for (int i = 0; i < SessionOrderLog.Count(); ++i) {
                const GoodsRecord entry = SessionOrderLog.Item(i);
                if (entry.GetValue(QStringLiteral("ID")).toString() == code) {
                    m_RestoredFromLog = true;
                    m_RecomputeMissing = true;
                    RestoreOrder(entry);
                    return;
                }
            }
            // Re-pick took its entry away: the order starts over as new.
        }

        m_RestoredFromLog = false;
        m_RecomputeMissing = false;
        const qint32 total = loadOrderTotal(code);
        if (total == 0) {
            SetMessage(NotFoundMessage);
            FocusAndSelect(TxtID);
        } else {
            SetMessage(QString());
        }
    } catch (const HostError& e) {
        ReportError(e.number(), e.description(), this);
    } catch (const std::exception& e) {
        ReportError(0, QString::fromLocal8Bit(e.what()), this);
    } catch (...) {
        ReportError(0, QStringLiteral("Unknown error"), this);
    }
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
        GetPropsString(), GoodsNumSql(code, hasSerialGoods, chkBarCode->isChecked(), chkHaveSerial->isChecked()));
    qint32 sum = 0;
    for (; rs && !rs->isEOF(); rs->MoveNext()) {
        const QVariant quantity = rs->Fields(QStringLiteral("FQuantity"));
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
    if (IsGridView()) {
        if (hasLines)
            GoodsTextView->LoadPickingGoods();
        else
            GoodsTextView->ClearGoods();
    } else {
        if (hasLines)
            GoodsListView->LoadPickingGoods();
        else
            GoodsListView->ClearGoods();
    }
    if (!hasLines) {
        m_bigViewLine = GoodsRecord::none();
        GoodsBigView->setGoodsID(QString());
        GoodsBigView->setGoodsName(QString());
        GoodsBigView->setGoodsOrderCnt(0);
        GoodsBigView->setGoodsCheckedCnt(0);
        GoodsBigView->SetPicture(QPixmap());
    }
}

qint32 frmPickigGoods::loadOrderTotal(const QString& code)
{
    LoadOrderGoods(code);
    txtWebshop->setText(GetWebshopName().toString());
    showActiveViewGoods();
    CurrentOrderCode = code;
    qint32 total = 0;
    GetGoodsNum(code, total);
    if (HasGoodsLines() && total > 0) {
        FocusAndSelect(TxtItemID);
        SetMessage(QString());
    }
    lblOrderNum->setText(QString::number(total));
    lblPickedNum->setText(QStringLiteral("0/"));
    m_PickedNum = 0;
    setProgressWidth();
    // A fresh load starts the order over on the server too.
    SavePickingStatus(code, false);
    ResetPickState();
    return total;
}

void frmPickigGoods::RestoreOrder(const GoodsRecord& entry)
{
    const QString code = entry.GetValue(QStringLiteral("ID")).toString();
    // The order still on the station keeps its lines (and the serials scanned
    // on them); an order left earlier is read again.
    const bool reload = code != CurrentOrderCode || !HasGoodsLines();
    if (reload) {
        LoadOrderGoods(code);
        txtWebshop->setText(GetWebshopName().toString());
    }
    showActiveViewGoods();
    CurrentOrderCode = code;
    qint32 total = 0;
    GetGoodsNum(code, total);
    FocusAndSelect(TxtItemID);
    if (HasGoodsLines() && total > 0)
        SetMessage(QString());
    lblOrderNum->setText(QString::number(total));
    ResetPickState();

    m_ExcessNum = qint32(numberOf(entry, QStringLiteral("ExcessNum")));
    m_ErrorNum = qint32(numberOf(entry, QStringLiteral("ErrorNum")));
    m_MissingNum = qint32(numberOf(entry, QStringLiteral("MissingNum")));
    if (entry.GetValue(QStringLiteral("bSuccess"), false).toBool()) {
        ImgSuccess->show();
        PlayVoice(QStringLiteral("\\voice\\Succes.wav"));
    }

    // Each line gets its counts and serials back by goods and entry.
    const QVariant stored = entry.GetValue(QStringLiteral("PickedNum"));
    const GoodsRecord states = stored.canConvert<GoodsRecord>() ? stored.value<GoodsRecord>() : GoodsRecord::none();
    if (!states.isNone()) {
        if (IsGridView())
            GoodsTextView->SetCheckCntNew(states);
        else
            GoodsListView->SetCheckCntNew(states);
    }
    // Picked is what the lines hold up to their ordered counts; the rest was excess.
    qint32 picked = 0;
    const RecordList lines = GetGoodsLineSet();
    for (int i = 0; !lines.isNone() && i < lines.Count(); ++i) {
        const GoodsRecord line = lines.Item(i);
        picked += qint32(qMin(numberOf(line, QStringLiteral("GoodsCheckedCnt")), numberOf(line, QStringLiteral("GoodsOrderCnt"))));
    }
    m_PickedNum = picked;
    UpdateProgress();
    if (!SessionOrderLog.isNone() && SessionOrderLog.Count() >= 1)
        LogList1->LoadLogList(SessionOrderLog);
}

void frmPickigGoods::RefuseOrder()
{
    FocusAndSelect(TxtID);
    TxtItemID->setText(QString());
    loadOrderTotal(NoOrderMark);
    ImgSuccess->hide();
}

bool frmPickigGoods::SavePickingStatus(const QString& code, bool done)
{
    try {
        GoodsRecord record;
        record.SetValue(QStringLiteral("FPickingGoodMan"), done ? m_EmployeeTag : QVariant(0));
        record.SetValue(QStringLiteral("FLogisticsOrder"), code);
        record.SetValue(QStringLiteral("sProps"), GetPropsString());
        record.SetValue(QStringLiteral("FPickingGoodsstatus"), done ? 1 : 0);
        CreateServerObjectAs<ISaveData>(ProgIds::SaveData)->SavePickingGoods(record);
        return true;
    } catch (const HostError& e) {
        ShowHostMessage(e.description(), this);
    } catch (const std::exception& e) {
        ShowHostMessage(QString::fromLocal8Bit(e.what()), this);
    }
    return false;
}

bool frmPickigGoods::CurrentOrderPassed(qint32 total) const
{
    const qint32 shown = lblOrderNum->text().toInt();
    return shown > 0 && m_PickedNum >= total && m_PickedNum == shown;
}

bool frmPickigGoods::LogLeavingVerdict()
{
    // "+" and a code that loaded nothing are no order: nothing to judge.
    const QString code = CurrentOrderCode;
    if (code.isEmpty() || code == NoOrderMark || !HasGoodsLines() || SessionOrderLog.isNone())
        return true;
    qint32 total = 0;
    GetGoodsNum(code, total);
    if (total <= 0)
        return true;
    const bool passed = CurrentOrderPassed(total);
    m_MissingNum = passed ? 0 : total - m_PickedNum;
    const VerdictText verdict = ComposeVerdict(code, m_ExcessNum, m_MissingNum, m_ErrorNum);
    lblPickInfo->setText(LoadString(PickInfoFor(m_ExcessNum, m_ErrorNum)));
    logVerdict(code, verdict.text, verdict.success);
    // Keep every line's picking state, so the order can come back as it was left.
    sessionEntry(code).SetValue(QStringLiteral("PickedNum"), QVariant::fromValue(activeViewCounts()));
    return passed;
}

void frmPickigGoods::WriteVerdict(int kind)
{
    switch (kind) {
    case 0:
        lblPickInfo->setText(LoadString(QStringLiteral("拣货超量")));
        break;
    case 2:
        lblPickInfo->setText(LoadString(QStringLiteral("非本单商品")));
        break;
    case 3:
        lblPickInfo->setText(QString());
        break;
    default:
        break;
    }
    if (CurrentOrderCode.isEmpty() || CurrentOrderCode == NoOrderMark)
        return;   // no order on the station, nothing to log
    // A complete order passes, whatever happened on the way to it.
    const VerdictText verdict = kind == 3 ? ComposeVerdict(CurrentOrderCode, 0, 0, 0)
                                          : ComposeVerdict(CurrentOrderCode, m_ExcessNum, m_MissingNum, m_ErrorNum);
    logVerdict(CurrentOrderCode, verdict.text, verdict.success);
}

GoodsRecord frmPickigGoods::sessionEntry(const QString& code)
{
    for (int i = 0; i < SessionOrderLog.Count(); ++i) {
        GoodsRecord entry = SessionOrderLog.Item(i);
        if (entry.GetValue(QStringLiteral("ID")).toString() == code)
            return entry;
    }
    GoodsRecord entry;
    entry.SetValue(QStringLiteral("ID"), code);
    entry.SetValue(QStringLiteral("PickedNum"), QVariant::fromValue(GoodsRecord()));
    SessionOrderLog.Add(entry);
    return entry;
}

void frmPickigGoods::logVerdict(const QString& code, const QString& text, bool success)
{
    if (SessionOrderLog.isNone())
        return;   // the station is closing
    GoodsRecord entry = sessionEntry(code);
    entry.SetValue(QStringLiteral("ExcessNum"), m_ExcessNum);
    entry.SetValue(QStringLiteral("MissingNum"), m_MissingNum);
    entry.SetValue(QStringLiteral("ErrorNum"), m_ErrorNum);
    entry.SetValue(QStringLiteral("bSuccess"), success);
    entry.SetValue(QStringLiteral("log"), translatedVerdict(text));
    if (!SessionOrderKeys.Exists(code))
        SessionOrderKeys.Add(code, code);
    if (SessionOrderLog.Count() >= 1)
        LogList1->LoadLogList(SessionOrderLog);
}

GoodsRecord frmPickigGoods::activeViewCounts() const
{
    GoodsRecord counts;
    if (IsGridView())
        GoodsTextView->GetCheckCntNew(counts);
    else
        GoodsListView->GetCheckCntNew(counts);
    return counts;
}
