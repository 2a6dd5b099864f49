// The station's life: the picker, the options kept per user, the company
// settings, the option clicks, and the close with its question.
#include "host/error_reporter.h"
#include "host/object_factory.h"
#include "host/record_keys.h"
#include "log/log_list.h"
#include "orderdata/order_goods.h"
#include "session/host_session.h"
#include "session/language.h"
#include "session/variant_convert.h"
#include "station/frm_pickig_goods.h"
#include "ui_frm_pickig_goods.h"
#include "station/active_view.h"
#include "station/scan_line_edit.h"
#include "station/station_sql.h"
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

} // namespace

void frmPickigGoods::LoadEmployee()
{
    ui->TxtEmployee->setText(QString());
    // The Tag of TxtEmployee holds the picker's employee item id.
    ui->TxtEmployee->setProperty("Tag", QString());
    ReportingErrors(this, [this] {
        auto data = CreateServerObjectAs<IGetData>(ProgIds::GetData);
        RecordsetPtr rs = data->ExecuteSQL(GetPropsString(), EmployeeSql(GetUserID()));
        if (!rs || rs->RecordCount() < 1)
            return;
        ui->TxtEmployee->setText(rs->Fields(QStringLiteral("FName")).toString());
        ui->TxtEmployee->setProperty("Tag", rs->Fields(RecordKeys::FItemID));
    });
}

void frmPickigGoods::LoadOptions()
{
    ui->chkBarCode->setChecked(true);
    ui->chkHaveSerial->setChecked(false);
    ui->chkShowText->setCheckState(Qt::Unchecked);
    ReportingErrors(this, [this] {
        auto profile = CreateServerObjectAs<IUserProfile>(ProgIds::UserProfile);
        const GoodsRecord barCode = profile->LoadUserProfile(GetPropsString(), ProfileCategory, BarCodeProfileKey);
        ui->chkBarCode->setChecked(optionChecked(barCode, QStringLiteral("chkBarCode"), true));
        const GoodsRecord showText = profile->LoadUserProfile(GetPropsString(), ProfileCategory, ShowTextProfileKey);
        ui->chkHaveSerial->setChecked(optionChecked(showText, QStringLiteral("chkHaveSerial"), false));
        // The stored number is the box's value: 2 is the grey state of a check box.
        const int showTextValue = optionValue(showText, QStringLiteral("chkShowText"), 0);
        ui->chkShowText->setTristate(showTextValue == 2);
        ui->chkShowText->setCheckState(showTextValue == 2 ? Qt::PartiallyChecked
                                   : showTextValue == 1 ? Qt::Checked : Qt::Unchecked);
    });
    ReportingErrors(this, [this] {
        auto data = CreateServerObjectAs<IGetData>(ProgIds::GetData);
        m_DeliverOnPick = settingIsOn(data->ExecuteSQL(GetPropsString(), DeliverOnPickSql()));
        m_CreateStockBill = settingIsOn(data->ExecuteSQL(GetPropsString(), CreateStockBillSql()));
    });
    // The view that the stored option asks for.
    chkShowText_Click();
}

void frmPickigGoods::SaveOptions()
{
    ReportingErrors(this, [this] {
        auto profile = CreateServerObjectAs<IUserProfile>(ProgIds::UserProfile);
        GoodsRecord barCode;
        barCode.SetValue(QStringLiteral("chkBarCode"), ui->chkBarCode->isChecked() ? 1 : 0);
        profile->SaveUserProfile(GetPropsString(), ProfileCategory, BarCodeProfileKey, barCode);
        GoodsRecord showText;
        // The box's value as the profile keeps it: 0 unchecked, 1 checked, 2 grey.
        const Qt::CheckState state = ui->chkShowText->checkState();
        showText.SetValue(QStringLiteral("chkShowText"), state == Qt::Checked ? 1 : state == Qt::PartiallyChecked ? 2 : 0);
        showText.SetValue(QStringLiteral("chkHaveSerial"), ui->chkHaveSerial->isChecked() ? 1 : 0);
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
    const JournalCommit commit{*this};
    ReportingErrors(this, [this] { activeView().switchTo(ui->PiclistBack->size()); });
}

void frmPickigGoods::TxtEmployee_PickEmployee()
{
    const JournalCommit commit{*this};
    ReportingErrors(this, [this] {
        auto picker = CreateServerObjectAs<IEmployeePicker>(ProgIds::EmployeePicker);
        const EmployeePickResult result = picker->Pick(this, GetPropsString(), ui->TxtEmployee->text());
        if (result.ReturnOK && result.ReturnObject.Detail) {
            ui->TxtEmployee->setText(result.ReturnObject.Name);
            ui->TxtEmployee->setProperty("Tag", result.ReturnObject.Itemid);
        }
    });
}

void frmPickigGoods::LogList1_FilterChanged()
{
    const JournalCommit commit{*this};
    ReportingErrors(this, [this] {
        reloadLogPane();
    });
}

bool frmPickigGoods::QueryUnload()
{
    bool passed = true;
    ReportingErrors(this, [&] { passed = LogLeavingVerdict(); });
    if (!HasGoodsLines() || passed || m_state.CurrentOrderCode() == PickingState::NoOrderMark)
        return true;

    int answer = MsgBox::No;
    bool asked = false;
    ReportingErrors(this, [&] {
        const QString prompt = LoadResKey(QStringLiteral("irAmUS")) + m_state.CurrentOrderCode()
            + LoadString(QStringLiteral("未通过，是否继续校验?"));
        answer = ShowMessageBox(prompt, MsgBox::YesNo | MsgBox::Question, VeltoTitle);
        asked = true;
    });
    if (asked && answer == MsgBox::Yes) {
        // Go on checking that order: it comes back from the session log.
        ui->TxtID->setText(m_state.CurrentOrderCode());
        TxtID_Enter();
        return false;
    }
    m_state.releaseArgumentList();
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
    closeJournal();
    m_state.release();
    // The module-wide order state ends with the station.
    ReportingErrors(this, [] { ResetSessionState(); });
}
