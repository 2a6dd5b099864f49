// RnMWDPickingAndDelivery.clsGetData: the system's statements and the refund check.
#include "host/object_factory.h"
#include "middletier/middle_tier_values.h"
#include "sql/sql_engine.h"

namespace {

class GetData : public IGetData {
public:
    RecordsetPtr ExecuteSQL(const QString& props, const QString& sql) override
    {
        return SqlEngine::forProps(props)->executeBatch(sql);
    }

    std::optional<GoodsRecord> CheckReturnBills(const GoodsRecord& record) override
    {
        if (record.isNone())
            throw HostError(HostErrors::ObjectNotSet, QStringLiteral("Object variable or With block variable not set"));
        const QString props = record.GetValue(QStringLiteral("sDSN")).toString();
        const qint64 fid = WholeNumberValue(record.GetValue(QStringLiteral("FID")), QStringLiteral("FID"));
        // the newest bill decides: a later bill may close an earlier refund
        RecordsetPtr rows = SqlEngine::forProps(props)->executeBound(
            QStringLiteral("SELECT FBillID, FStatus FROM IC_Web2ERPReturnBills"
                           " WHERE FID = ? AND FBillID = (SELECT MAX(FBillID) FROM IC_Web2ERPReturnBills WHERE FID = ?)"),
            {fid, fid});
        if (rows->isEOF())
            return std::nullopt;
        GoodsRecord bill;
        bill.SetValue(QStringLiteral("FBillID"), rows->Fields(QStringLiteral("FBillID")));
        bill.SetValue(QStringLiteral("FStatus"), rows->Fields(QStringLiteral("FStatus")));
        return bill;
    }
};

const BuiltInServerObject registration(ProgIds::GetData, [] { return std::make_shared<GetData>(); });

} // namespace
