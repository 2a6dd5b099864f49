// Re-pick: the order's check starts over, on the server and in the log.
#include "station/frm_pickig_goods.h"
#include "ui_frm_pickig_goods.h"
#include "host/error_reporter.h"
#include "host/host_error.h"
#include "log/log_list.h"
#include "station/scan_line_edit.h"
#include <exception>

void frmPickigGoods::CmdBtnRePick_Click()
{
    const JournalCommit commit{*this};
    ReportingErrors(this, [&] {
        QString code = ui->TxtID->text().trimmed();
        if (code.isEmpty())
            return;
        if (code == PickingState::NoOrderMark && !m_state.lastOrderCode().isEmpty()) {
            code = m_state.lastOrderCode();
            ui->TxtID->setText(code);
            FocusAndSelect(ui->TxtID);
            SavePickingStatus(code, false);
        }
        if (m_state.wasChecked(code)) {
            if (!m_state.entryOf(code).isNone()) {
                SavePickingStatus(code, false);
                m_state.removeEntry(code);
            }
            // The code stays in SessionOrderKeys; leaving the order logs it again.
            ui->LogList1->LoadLogList(m_state.SessionOrderLog());
        }
        // Always a fresh load: counts from zero, nothing restored from the log.
        m_state.startFresh();
        LoadOrder(code);
        qint32 total = 0;
        GetGoodsNum(code, total);
        if (total > 0) {
            SetMessage(QString());
        } else {
            // Without the "/序列号" of the order scan's text on purpose: the
            // two messages tell the worker which of the two refused the code.
            SetMessage(QStringLiteral("找不到物流单号/唯一码/商品条码"));
            FocusAndSelect(ui->TxtID);
        }
    });
}
