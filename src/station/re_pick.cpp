// Re-pick: the order's check starts over, on the server and in the log.
#include "station/frm_pickig_goods.h"
#include "host/error_reporter.h"
#include "host/host_error.h"
#include "log/log_list.h"
#include "station/scan_line_edit.h"
#include <exception>

void frmPickigGoods::CmdBtnRePick_Click()
{
    try {
        QString code = TxtID->text().trimmed();
        if (code.isEmpty())
            return;
        if (code == QStringLiteral("+") && !m_LastOrderCode.isEmpty()) {
            code = m_LastOrderCode;
            TxtID->setText(code);
            FocusAndSelect(TxtID);
            SavePickingStatus(code, false);
        }
        if (SessionOrderKeys.Exists(code)) {
            for (int i = SessionOrderLog.UpperBound(); i >= SessionOrderLog.LowerBound(); --i) {
                if (SessionOrderLog.Item(i).GetValue(QStringLiteral("ID")).toString() == code) {
                    SavePickingStatus(code, false);
                    SessionOrderLog.Remove(i);
                    break;
                }
            }
            // The code stays in SessionOrderKeys; leaving the order logs it again.
            LogList1->LoadLogList(SessionOrderLog);
        }
        // Always a fresh load: counts from zero, nothing restored from the log.
        m_RestoredFromLog = false;
        m_RecomputeMissing = false;
        LoadOrder(code);
        qint32 total = 0;
        GetGoodsNum(code, total);
        if (total > 0) {
            SetMessage(QString());
        } else {
            // Without the "/序列号" of the order scan's text on purpose: the
            // two messages tell the worker which of the two refused the code.
            SetMessage(QStringLiteral("找不到物流单号/唯一码/商品条码"));
            FocusAndSelect(TxtID);
        }
    } catch (const HostError& e) {
        ShowHostMessage(e.description(), this);
    } catch (const std::exception& e) {
        ShowHostMessage(QString::fromLocal8Bit(e.what()), this);
    } catch (...) {
        ShowHostMessage(QStringLiteral("Unknown error"), this);
    }
}
