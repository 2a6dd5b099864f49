// RnMWebOrder.RnMWebOrderInfo: the first row of a statement as a record.
#include "host/object_factory.h"
#include "sql/sql_engine.h"

namespace {

class WebOrderInfo : public IWebOrderInfo {
public:
    std::optional<GoodsRecord> GetSingleSQLData(const QString& props, const QString& sql) override
    {
        RecordsetPtr rows = SqlEngine::forProps(props)->executeBatch(sql);
        if (rows->isEOF())
            return std::nullopt;
        GoodsRecord record;
        for (const QString& column : rows->columns()) {
            // a name given twice keeps its first column, as a read by name does
            if (!record.Exists(column))
                record.SetValue(column, rows->Fields(column));
        }
        return record;
    }
};

const BuiltInServerObject registration(ProgIds::WebOrderInfo, [] { return std::make_shared<WebOrderInfo>(); });

} // namespace
