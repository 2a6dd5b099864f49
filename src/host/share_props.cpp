// PropsMgr.ShareProps: a process-wide property store keyed by process id and name.
#include "host/object_factory.h"
#include <QHash>
#include <QMutex>
#include <QPair>

namespace {

class ShareProps : public IShareProps {
public:
    QVariant GetProperty(qint64 processId, const QString& name) override
    {
        QMutexLocker lock(&mutex());
        return store().value({processId, name.toLower()});
    }
    void SetProperty(qint64 processId, const QString& name, const QVariant& value) override
    {
        QMutexLocker lock(&mutex());
        store().insert({processId, name.toLower()}, value);
    }

private:
    static QMutex& mutex()
    {
        static QMutex m;
        return m;
    }
    static QHash<QPair<qint64, QString>, QVariant>& store()
    {
        static QHash<QPair<qint64, QString>, QVariant> s;
        return s;
    }
};

const BuiltInServerObject registration(ProgIds::ShareProps, [] { return std::make_shared<ShareProps>(); });

} // namespace
