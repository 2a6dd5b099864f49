// Quantity entry: TxtNum holds the pieces the next goods scan applies.
#include "station/frm_pickig_goods.h"
#include "ui_frm_pickig_goods.h"
#include "host/error_reporter.h"
#include "host/host_error.h"
#include "host/platform.h"
#include "station/scan_line_edit.h"
#include <exception>

namespace {
const QString kNotNumeric = QStringLiteral("商品数量只能为数值！");

} // namespace

void frmPickigGoods::TxtNum_Change()
{
    const JournalCommit commit{*this};
    ReportingErrors(this, [this] {
        const QString text = ui->TxtNum->text();
        // Empty is allowed while the worker types.
        if (text.isEmpty() || IsNumeric(text))
            return;
        ui->TxtNum->setText(QString());
        SetMessage(kNotNumeric);
    });
}

void frmPickigGoods::TxtNum_Enter()
{
    ReportingErrors(this, [this] {
        if (!IsNumeric(ui->TxtNum->text())) {
            ui->TxtNum->setText(QString());
            SetMessage(kNotNumeric);
            return;
        }
        // The scan's own message gives way: the worker sees the verdict and
        // the prompt instead. A refused quantity keeps its message, or the
        // worker would not know why nothing was counted.
        if (!scanGoodsCode())
            SetMessage(QString());
    });
}
