// TolAccessory.cAccessoryView: the attachment store. GetID answers the stored
// bytes of one attachment (a picture as a gzip stream), as the host keeps them.
#include "host/object_factory.h"
#include "sql/sql_engine.h"

namespace {

class AccessoryView : public IAccessoryView {
public:
    QByteArray GetID(const QString& props, int attachmentId) override
    {
        // Id 0 means "no attachment": nothing to read, and no connection needed.
        if (attachmentId == 0)
            return QByteArray();
        RecordsetPtr rows = SqlEngine::forProps(props)->executeBound(
            QStringLiteral("SELECT FData FROM t_Accessory WHERE FID = ?"), {attachmentId});
        if (rows->isEOF())
            return QByteArray();
        return rows->Fields(QStringLiteral("FData")).toByteArray();
    }
};

const BuiltInServerObject registration(ProgIds::AccessoryView, [] { return std::make_shared<AccessoryView>(); });

} // namespace
