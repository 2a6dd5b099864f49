#include "host/object_factory.h"
#include <QHash>
#include <QMutex>

namespace {

struct Registry {
    QMutex mutex;
    QHash<QString, ServerObjectFactory> builtIn;   // keys in lower case: ProgIDs are case-insensitive
    QHash<QString, ServerObjectFactory> active;
};

Registry& registry()
{
    static Registry r;
    return r;
}

} // namespace

BuiltInServerObject::BuiltInServerObject(const QString& progId, ServerObjectFactory factory)
{
    Registry& r = registry();
    QMutexLocker lock(&r.mutex);
    r.builtIn.insert(progId.toLower(), factory);
    if (!r.active.contains(progId.toLower()))
        r.active.insert(progId.toLower(), std::move(factory));
}

std::shared_ptr<ServerObject> CreateServerObject(const QString& progId)
{
    ServerObjectFactory factory;
    {
        Registry& r = registry();
        QMutexLocker lock(&r.mutex);
        factory = r.active.value(progId.toLower());
    }
    if (!factory)
        throw HostError(HostErrors::CannotCreateObject, QStringLiteral("ActiveX component can't create object: %1").arg(progId));
    auto object = factory();
    if (!object)
        throw HostError(HostErrors::CannotCreateObject, QStringLiteral("ActiveX component can't create object: %1").arg(progId));
    return object;
}

void RegisterServerObject(const QString& progId, ServerObjectFactory factory)
{
    Registry& r = registry();
    QMutexLocker lock(&r.mutex);
    if (factory)
        r.active.insert(progId.toLower(), std::move(factory));
    else
        r.active.remove(progId.toLower());
}

void RestoreBuiltInServerObjects(const QString& progId)
{
    Registry& r = registry();
    QMutexLocker lock(&r.mutex);
    if (progId.isEmpty()) {
        r.active = r.builtIn;
        return;
    }
    const QString key = progId.toLower();
    if (r.builtIn.contains(key))
        r.active.insert(key, r.builtIn.value(key));
    else
        r.active.remove(key);
}
