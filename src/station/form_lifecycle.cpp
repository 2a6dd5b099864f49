// The station's life: the picker, the options kept per user, the company
// settings, the option clicks, and the close with its question.
#include "grid/goods_text_view.h"
#include "host/error_reporter.h"
#include "host/object_factory.h"
#include "log/log_list.h"
#include "orderdata/order_goods.h"
#include "session/host_session.h"
#include "session/language.h"
#include "session/variant_convert.h"
#include "station/frm_pickig_goods.h"
#include "station/scan_line_edit.h"
#include "station/station_sql.h"
#include "tiles/goods_list_view.h"
#include <QCheckBox>
#include <QCloseEvent>
#include <QLabel>

namespace {

const QString ProfileCategory = QStringLiteral("EC");
const QString BarCodeProfileKey = QStringLiteral("PickGoods_chkBarCode");
const QString ShowTextProfileKey = QStringLiteral("PickGoods_chkShowText");

QVariant storedOption(const GoodsRecord& record, const QString& key)
{
    return record.isNone() ? QVariant() : record.GetValue(key);
}

// A stored option compared with 0: a value that is 0 unchecks the box,
// anything else checks it ("1.0", "yes"); nothing stored keeps the default.
bool optionChecked(const GoodsRecord& record, const QString& key, bool defaultValue)
{
    const QVariant value = storedOption(record, key);
    if (!value.isValid() || value.isNull())
        return defaultValue;
    try {
        return variantToDouble(value) != 0;
    } catch (const HostError&) {
        return true;   // text that is no number is no 0
    }
}

// A stored option that is the box's value, read as a whole number ("1.0"
// is 1); text that is no number keeps the default.
int optionValue(const GoodsRecord& record, const QString& key, int defaultValue)
{
    const QVariant value = storedOption(record, key);
    if (!value.isValid() || value.isNull())
        return defaultValue;
    try {
        return variantToInteger(value);
    } catch (const HostError&) {
        return defaultValue;
    }
}

bool settingIsOn(const RecordsetPtr& rs)
{
    if (!rs || rs->isEOF())
        return false;
    return rs->Fields(QStringLiteral("FValue")).toString() == QLatin1String("1");
}

template <class Work>
void guarded(QWidget* form, Work work)
{
    try {
        work();
    } catch (const HostError& e) {
        ReportError(e.number(), e.description(), form);
    } catch (const std::exception& e) {
        ReportError(0, QString::fromLocal8Bit(e.what()), form);
    } catch (...) {
        ReportError(0, QStringLiteral("Unknown error"), form);
    }
}

} // namespace

void frmPickigGoods::LoadEmployee()
{
    TxtEmployee->setText(QString());
    m_EmployeeTag = QString();
    guarded(this, [this] {
        auto data = CreateServerObjectAs<IGetData>(ProgIds::GetData);
        RecordsetPtr rs = data->ExecuteSQL(GetPropsString(), EmployeeSql(GetUserID()));
        if (!rs || rs->RecordCount() < 1)
            return;
        TxtEmployee->setText(rs->Fields(QStringLiteral("FName")).toString());
        m_EmployeeTag = rs->Fields(QStringLiteral("FItemID"));
    });
}

void frmPickigGoods::LoadOptions()
{
    chkBarCode->setChecked(true);
    chkHaveSerial->setChecked(false);
    chkShowText->setCheckState(Qt::Unchecked);
    guarded(this, [this] {
        auto profile = CreateServerObjectAs<IUserProfile>(ProgIds::UserProfile);
        const GoodsRecord barCode = profile->LoadUserProfile(GetPropsString(), ProfileCategory, BarCodeProfileKey);
        chkBarCode->setChecked(optionChecked(barCode, QStringLiteral("chkBarCode"), true));
        const GoodsRecord showText = profile->LoadUserProfile(GetPropsString(), ProfileCategory, ShowTextProfileKey);
        chkHaveSerial->setChecked(optionChecked(showText, QStringLiteral("chkHaveSerial"), false));
        // The stored number is the box's value: 2 is the grey state of a check box.
        const int showTextValue = optionValue(showText, QStringLiteral("chkShowText"), 0);
        chkShowText->setTristate(showTextValue == 2);
        chkShowText->setCheckState(showTextValue == 2 ? Qt::PartiallyChecked
                                   : showTextValue == 1 ? Qt::Checked : Qt::Unchecked);
    });
    guarded(this, [this] {
        auto data = CreateServerObjectAs<IGetData>(ProgIds::GetData);
        m_DeliverOnPick = settingIsOn(data->ExecuteSQL(GetPropsString(), DeliverOnPickSql()));
        m_CreateStockBill = settingIsOn(data->ExecuteSQL(GetPropsString(), CreateStockBillSql()));
    });
    // The view that the stored option asks for.
    chkShowText_Click();
}

void frmPickigGoods::SaveOptions()
{
    guarded(this, [this] {
        auto profile = CreateServerObjectAs<IUserProfile>(ProgIds::UserProfile);
        GoodsRecord barCode;
        barCode.SetValue(QStringLiteral("chkBarCode"), chkBarCode->isChecked() ? 1 : 0);
        profile->SaveUserProfile(GetPropsString(), ProfileCategory, BarCodeProfileKey, barCode);
        GoodsRecord showText;
        // The box's value as the profile keeps it: 0 unchecked, 1 checked, 2 grey.
        const Qt::CheckState state = chkShowText->checkState();
        showText.SetValue(QStringLiteral("chkShowText"), state == Qt::Checked ? 1 : state == Qt::PartiallyChecked ? 2 : 0);
        showText.SetValue(QStringLiteral("chkHaveSerial"), chkHaveSerial->isChecked() ? 1 : 0);
        profile->SaveUserProfile(GetPropsString(), ProfileCategory, ShowTextProfileKey, showText);
    });
}

void frmPickigGoods::chkHaveSerial_Click()
{
    // The goods total and the views depend on the option: scan the order again.
    TxtID_Enter();
}

void frmPickigGoods::chkShowText_Click()
{
    guarded(this, [this] {
        if (IsGridView()) {
            GoodsListView->hide();
            GoodsListView->ClearGoodsNew();
            GoodsTextView->show();
            GoodsTextView->LoadPickingGoods();
            GoodsTextView->resize(PiclistBack->size());
        } else {
            GoodsListView->show();
            GoodsListView->LoadPickingGoods();
            GoodsTextView->hide();
            GoodsTextView->ClearGoods();
        }
    });
}

void frmPickigGoods::TxtEmployee_PickEmployee()
{
    guarded(this, [this] {
        auto picker = CreateServerObjectAs<IEmployeePicker>(ProgIds::EmployeePicker);
        const EmployeePickResult result = picker->Pick(this, GetPropsString(), TxtEmployee->text());
        if (result.ReturnOK && result.ReturnObject.Detail) {
            TxtEmployee->setText(result.ReturnObject.Name);
            m_EmployeeTag = result.ReturnObject.Itemid;
        }
    });
}

void frmPickigGoods::LogList1_FilterChanged()
{
    guarded(this, [this] {
        if (!SessionOrderLog.isNone() && SessionOrderLog.Count() >= 1)
            LogList1->LoadLogList(SessionOrderLog);
    });
}

bool frmPickigGoods::QueryUnload()
{
    bool passed = true;
    guarded(this, [&] { passed = LogLeavingVerdict(); });
    if (!HasGoodsLines() || passed || CurrentOrderCode == QLatin1String("+"))
        return true;

    int answer = MsgBox::No;
    bool asked = false;
    guarded(this, [&] {
        const QString prompt = LoadResKey(QStringLiteral("irAmUS")) + CurrentOrderCode
            + LoadString(QStringLiteral("未通过，是否继续校验?"));
        answer = ShowMessageBox(prompt, MsgBox::YesNo | MsgBox::Question, VeltoTitle);
        asked = true;
    });
    if (asked && answer == MsgBox::Yes) {
        // Go on checking that order: it comes back from the session log.
        TxtID->setText(CurrentOrderCode);
        TxtID_Enter();
        return false;
    }
    m_ArgList = RecordList::none();
    return true;
}

void frmPickigGoods::closeWithoutAsking()
{
    m_skipCloseQuestion = true;
    close();
    m_skipCloseQuestion = false;
}

void frmPickigGoods::closeEvent(QCloseEvent* event)
{
    if (m_unloaded) {
        event->accept();
        return;
    }
    if (!m_skipCloseQuestion && !QueryUnload()) {
        event->ignore();
        return;
    }
    unload();
    setResult(0);
    event->accept();
}

void frmPickigGoods::unload()
{
    m_unloaded = true;
    SaveOptions();
    SessionOrderLog = RecordList::none();
    m_ArgList = RecordList::none();
    // The module-wide order state ends with the station.
    guarded(this, [] { ResetSessionState(); });
}
