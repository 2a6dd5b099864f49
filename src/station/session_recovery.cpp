// Nothing lost when the station dies: every change the worker makes is
// written to the session's journal before the station answers, and a station
// that did not close cleanly offers, at its next start, to stand again where
// it stood: the session log, the log pane, and the order in progress with
// each line's counts and serials. Nothing is saved to the server on the way.
#include "host/error_reporter.h"
#include "host/object_factory.h"
#include "host/session_journal.h"
#include "log/log_list.h"
#include "orderdata/line_picking_state.h"
#include "orderdata/order_goods.h"
#include "session/host_session.h"
#include "session/language.h"
#include "station/active_view.h"
#include "station/frm_pickig_goods.h"
#include "station/scan_line_edit.h"
#include "ui_frm_pickig_goods.h"
#include <QCheckBox>
#include <QJsonValue>
#include <QLabel>
#include <unordered_map>
#include <vector>

namespace {

const QString kRestoreQuestion = QStringLiteral("上次的校验没有正常结束，是否恢复？");
const QString kSetAside = QStringLiteral("上次的校验记录无法读取，已另存为：");

QCheckBox* onlyErrorsBox(QWidget* logPane)
{
    return logPane->findChild<QCheckBox*>(QStringLiteral("ChkOnlyError"));
}

} // namespace

void frmPickigGoods::openJournal()
{
    const bool opened = ReportingErrors(this, [&] {
        m_journal = CreateServerObjectAs<ISessionJournal>(ProgIds::SessionJournal);
        const QString props = GetPropsString();
        if (!m_journal->Claim(props)) {
            // A second window of the same user on the same database: the
            // first one keeps the journal, this one runs without.
            m_journal.reset();
            return;
        }
        if (m_journal->Exists(props)) {
            JournalState saved;
            bool readable = true;
            try {
                saved = m_journal->Read(props);
            } catch (const HostError&) {
                readable = false;
            }
            if (!readable) {
                const QString aside = m_journal->SetAside(props);
                ShowMessageBox(LoadString(QStringLiteral("~$~") + kSetAside + QStringLiteral("^|^") + aside),
                               MsgBox::OkOnly | MsgBox::Exclamation, VeltoTitle);
            } else if (worthRestoring(saved)
                       && ShowMessageBox(LoadString(kRestoreQuestion), MsgBox::YesNo | MsgBox::Question, VeltoTitle)
                           == MsgBox::Yes) {
                restoreFromJournal(saved);
            }
        }
        m_journal->Start(props, journalState());
    });
    // Without its journal the station still works: the worker was told why.
    if (!opened)
        m_journal.reset();
}

bool frmPickigGoods::worthRestoring(const JournalState& saved) const
{
    // A session that died before anything happened in it is no session to
    // take up: the station would open the same without it.
    const JournalState now = journalState();
    for (const char* key : {"CurrentOrderCode", "chkBarCode", "chkHaveSerial", "chkShowText", "ChkOnlyError"})
        if (saved.form.value(QLatin1String(key)) != now.form.value(QLatin1String(key)))
            return true;
    return !saved.sessionLog.isNone() && saved.sessionLog.Count() > 0;
}

void frmPickigGoods::commitJournal()
{
    if (!m_journal || m_unloaded)
        return;
    try {
        m_journal->Commit(journalState());
        m_journalFailed = false;
    } catch (const HostError& e) {
        // Told once; the next commit writes everything again.
        if (!m_journalFailed)
            ReportError(e.number(), e.description(), this);
        m_journalFailed = true;
    }
}

void frmPickigGoods::closeJournal()
{
    if (!m_journal)
        return;
    try {
        m_journal->Remove();
    } catch (const HostError& e) {
        ReportError(e.number(), e.description(), this);
    }
    m_journal.reset();
}

JournalState frmPickigGoods::journalState() const
{
    JournalState state;
    const QCheckBox* onlyErrors = onlyErrorsBox(ui->LogList1);
    state.form = QJsonObject{
        {QStringLiteral("CurrentOrderCode"), m_state.CurrentOrderCode()},
        {QStringLiteral("LastOrderCode"), m_state.lastOrderCode()},
        {QStringLiteral("PickedNum"), m_state.pickedNum()},
        {QStringLiteral("MissingNum"), m_state.missingNum()},
        {QStringLiteral("ExcessNum"), m_state.excessNum()},
        {QStringLiteral("ErrorNum"), m_state.errorNum()},
        {QStringLiteral("Restored"), m_state.restoredFromLog()},
        {QStringLiteral("TxtID"), ui->TxtID->text()},
        {QStringLiteral("TxtItemID"), ui->TxtItemID->text()},
        {QStringLiteral("TxtNum"), ui->TxtNum->text()},
        {QStringLiteral("TxtEmployee"), ui->TxtEmployee->text()},
        {QStringLiteral("EmployeeTag"), QJsonValue::fromVariant(ui->TxtEmployee->property("Tag"))},
        {QStringLiteral("txtWebshop"), ui->txtWebshop->text()},
        {QStringLiteral("lblMessage"), ui->lblMessage->text()},
        {QStringLiteral("lblPickInfo"), ui->lblPickInfo->text()},
        {QStringLiteral("lblOrderNum"), ui->lblOrderNum->text()},
        {QStringLiteral("lblPickedNum"), ui->lblPickedNum->text()},
        {QStringLiteral("ImgSuccess"), !ui->ImgSuccess->isHidden()},
        {QStringLiteral("chkBarCode"), ui->chkBarCode->isChecked()},
        {QStringLiteral("chkHaveSerial"), ui->chkHaveSerial->isChecked()},
        {QStringLiteral("chkShowText"), int(ui->chkShowText->checkState())},
        {QStringLiteral("ChkOnlyError"), onlyErrors && onlyErrors->isChecked()},
    };
    if (m_state.logOpen()) {
        state.sessionLog = m_state.SessionOrderLog();
        state.sessionKeys = m_state.checkedCodes();
    }
    if (HasGoodsLines())
        state.lines = GetGoodsLineSet();
    return state;
}

void frmPickigGoods::restoreFromJournal(const JournalState& saved)
{
    const QJsonObject& form = saved.form;
    const auto text = [&form](const char* key) { return form.value(QLatin1String(key)).toString(); };

    // The options first: they choose the view the order is shown in.
    ui->chkBarCode->setChecked(form.value(QStringLiteral("chkBarCode")).toBool(true));
    ui->chkHaveSerial->setChecked(form.value(QStringLiteral("chkHaveSerial")).toBool());
    const int showText = form.value(QStringLiteral("chkShowText")).toInt();
    ui->chkShowText->setTristate(showText == Qt::PartiallyChecked);
    ui->chkShowText->setCheckState(Qt::CheckState(showText));
    activeView().switchTo(ui->PiclistBack->size());
    if (QCheckBox* onlyErrors = onlyErrorsBox(ui->LogList1))
        onlyErrors->setChecked(form.value(QStringLiteral("ChkOnlyError")).toBool());

    m_state.restoreSession(saved.sessionLog, saved.sessionKeys);

    // The order in progress, read again, its lines in the order they stood
    // and each with its own counts and serials.
    const QString code = text("CurrentOrderCode");
    if (!code.isEmpty()) {
        RecordList set = LoadOrderGoods(code);
        if (!set.isNone() && !saved.lines.isNone() && saved.lines.Count() > 0) {
            std::vector<GoodsRecord> loaded;
            std::unordered_map<QString, std::size_t> byIdentity;
            for (int i = 0; i < set.Count(); ++i) {
                byIdentity.emplace(LineIdentity(set.Item(i)), loaded.size());
                loaded.push_back(set.Item(i));
            }
            std::vector<bool> placed(loaded.size(), false);
            set.Clear();
            for (int i = 0; i < saved.lines.Count(); ++i) {
                const auto it = byIdentity.find(LineIdentity(saved.lines.Item(i)));
                if (it == byIdentity.end() || placed[it->second])
                    continue;
                set.Add(loaded[it->second]);
                placed[it->second] = true;
            }
            // Lines the journal did not know keep the database's order.
            for (std::size_t i = 0; i < loaded.size(); ++i)
                if (!placed[i])
                    set.Add(loaded[i]);
        }
    }
    showActiveViewGoods();
    if (!saved.lines.isNone() && saved.lines.Count() > 0) {
        GoodsRecord states;
        CaptureLineStates(saved.lines, states);
        activeView().setCheckCounts(states);
    }

    m_state.setCurrentOrderCode(code);
    m_state.setLastOrderCode(text("LastOrderCode"));
    GoodsRecord counters;
    counters.SetValue(QStringLiteral("ExcessNum"), form.value(QStringLiteral("ExcessNum")).toInt());
    counters.SetValue(QStringLiteral("ErrorNum"), form.value(QStringLiteral("ErrorNum")).toInt());
    counters.SetValue(QStringLiteral("MissingNum"), form.value(QStringLiteral("MissingNum")).toInt());
    m_state.restoreCounters(counters);
    m_state.setPickedNum(form.value(QStringLiteral("PickedNum")).toInt());
    if (form.value(QStringLiteral("Restored")).toBool())
        m_state.markRestored();
    else
        m_state.startFresh();

    ui->TxtID->setText(text("TxtID"));
    ui->TxtItemID->setText(text("TxtItemID"));
    ui->TxtNum->setText(text("TxtNum"));
    ui->TxtEmployee->setText(text("TxtEmployee"));
    ui->TxtEmployee->setProperty("Tag", form.value(QStringLiteral("EmployeeTag")).toVariant());
    ui->txtWebshop->setText(text("txtWebshop"));
    ui->lblMessage->setText(text("lblMessage"));
    ui->lblPickInfo->setText(text("lblPickInfo"));
    ui->lblOrderNum->setText(text("lblOrderNum"));
    ui->lblPickedNum->setText(text("lblPickedNum"));
    ui->ImgSuccess->setVisible(form.value(QStringLiteral("ImgSuccess")).toBool());
    setProgressWidth();
    reloadLogPane();
    if (m_state.hasOrder())
        FocusAndSelect(ui->TxtItemID);
}
