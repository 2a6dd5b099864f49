// Completion and saving: the order on the station has passed verification.
#include "station/frm_pickig_goods.h"
#include "ui_frm_pickig_goods.h"
#include "host/error_reporter.h"
#include "host/host_error.h"
#include "host/object_factory.h"
#include "orderdata/order_goods.h"
#include "session/host_session.h"
#include "station/serial_rows.h"
#include <QCheckBox>
#include <QLabel>
#include <exception>

void frmPickigGoods::OrderPassed(bool playSuccessPrompt)
{
    if (playSuccessPrompt)
        PlayVoice(QStringLiteral("\\voice\\Succes.wav"));
    ui->ImgSuccess->setVisible(true);
    WriteVerdict(3);
    // A failure here ends the scan before the status is saved: the order then
    // stays unverified on the server and can be verified again.
    if (ui->chkHaveSerial->isChecked())
        StoreSerialRows();
    // An order the server does not hold as verified is never sent for
    // delivery; it stays passed here, and a later pass or a re-pick saves again.
    if (!SavePickingStatus(m_state.CurrentOrderCode(), true))
        return;
    if (m_DeliverOnPick)
        UpdateDelivery(m_state.CurrentOrderCode());
}

void frmPickigGoods::StoreSerialRows()
{
    const QString batch = BuildSerialRowsSql(GetGoodsLineSet());
    if (batch.isEmpty())
        return;
    auto data = CreateServerObjectAs<IGetData>(ProgIds::GetData);
    data->ExecuteSQL(GetPropsString(), batch);
}

void frmPickigGoods::UpdateDelivery(const QString& code)
{
    if (!m_CreateStockBill)
        return;
    // The order has passed whatever happens here: the worker is told and the
    // station stays as it is.
    ReportingErrors(this, [&] {
        const std::optional<GoodsRecord> header = OrderHeaderQuery(code);
        if (!header)
            return;
        auto save = CreateServerObjectAs<ISaveData>(ProgIds::SaveData);
        save->UpdateDeliveryData(GetPropsString(), header->GetValue(QStringLiteral("FID")).toLongLong());
    });
}
