#include "orderdata/serial_lookup.h"
#include "host/object_factory.h"
#include "host/record_keys.h"
#include "orderdata/lookup_statements.h"
#include "session/host_session.h"

GoodsRecord FindSerialNumber(const QString& serialNumber)
{
    auto getData = CreateServerObjectAs<IGetData>(ProgIds::GetData);
    RecordsetPtr rs = getData->ExecuteSQL(GetPropsString(), BuildSerialLookupSql(serialNumber));
    GoodsRecord found;
    while (rs && !rs->isEOF()) {
        for (const char* column : {"FItemID", "FSerialNum", "FSerialID", "FBatchNo", "FStockID", "FStockPlace"})
            found.SetValue(QLatin1String(column), rs->Fields(QLatin1String(column)));
        // The statement answers '' for a shelf life of 0; the scan compares numbers.
        const QVariant period = rs->Fields(RecordKeys::FKFPeriod);
        if (!period.isNull() && period.toString().isEmpty())
            found.SetValue(RecordKeys::FKFPeriod, QVariant::fromValue<qint16>(0));
        else
            found.SetValue(RecordKeys::FKFPeriod, period);
        found.SetValue(RecordKeys::FKFDate, rs->Fields(RecordKeys::FKFDate));
        rs->MoveNext();
    }
    return found;
}
