// RnMWDPickingAndDelivery.clsSaveData: picking status, picker and delivery.
#include "host/object_factory.h"
#include "host/record_keys.h"
#include "middletier/middle_tier_values.h"
#include "sql/sql_engine.h"
#include <QDateTime>

namespace {

class SaveData : public ISaveData {
public:
    void SavePickingGoods(const GoodsRecord& record) override
    {
        if (record.isNone())
            throw HostError(HostErrors::ObjectNotSet, QStringLiteral("Object variable or With block variable not set"));
        const QString props = record.GetValue(RecordKeys::sProps).toString();
        const QString code = record.GetValue(RecordKeys::FLogisticsOrder).toString();
        const qint64 status = WholeNumberValue(record.GetValue(RecordKeys::FPickingGoodsstatus),
                                               RecordKeys::FPickingGoodsstatus);
        const qint64 picker = WholeNumberValue(record.GetValue(RecordKeys::FPickingGoodMan),
                                               RecordKeys::FPickingGoodMan);
        // the station scans either code of an order, so both identify it
        SqlEngine::forProps(props)->executeBound(
            QStringLiteral("UPDATE IC_Web2ERPOrders SET FPIckingGoodsStatus = ?, FPickingGoodMan = ?"
                           " WHERE FUniqueCode = ? OR FLogisticsOrder = ?"),
            {status, picker, code, code});
    }

    void UpdateDeliveryData(const QString& props, qint64 fid) override
    {
        const QString now = QDateTime::currentDateTime().toString(Qt::ISODate);
        SqlEngine::forProps(props)->executeBound(
            QStringLiteral("UPDATE IC_Web2ERPOrders SET FDeliveryStatus = 1, FSendDate = ? WHERE FID = ?"),
            {now, fid});
    }
};

const BuiltInServerObject registration(ProgIds::SaveData, [] { return std::make_shared<SaveData>(); });

} // namespace
