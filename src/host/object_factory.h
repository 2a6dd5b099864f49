#pragma once
// The host object factory: CreateServerObject(progId) returns the object
// registered for a ProgID. Built-in objects are registered on first use;
// RegisterServerObject replaces one (tests, sites, fault injection).
#include "host/host_error.h"
#include "host/server_objects.h"
#include <functional>
#include <memory>

using ServerObjectFactory = std::function<std::shared_ptr<ServerObject>()>;

std::shared_ptr<ServerObject> CreateServerObject(const QString& progId);
void RegisterServerObject(const QString& progId, ServerObjectFactory factory);
// Puts the built-in object back for one ProgID, or for all when progId is empty.
void RestoreBuiltInServerObjects(const QString& progId = QString());

// Typed creation: raises HostError when the object lacks the interface.
template <class T>
std::shared_ptr<T> CreateServerObjectAs(const QString& progId)
{
    auto object = std::dynamic_pointer_cast<T>(CreateServerObject(progId));
    if (!object)
        throw HostError(HostErrors::CannotCreateObject,
                        QStringLiteral("Object doesn't support this property or method: %1").arg(progId));
    return object;
}

// Built-in objects register themselves with a static instance of this in
// their own source file, so the factory needs no list of them.
struct BuiltInServerObject {
    BuiltInServerObject(const QString& progId, ServerObjectFactory factory);
};
