#include "reliability/event_loop_guard.h"
#include "host/host_error.h"
#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <exception>

namespace {

EventLoopGuard* g_current = nullptr;
bool g_inCallback = false;

QString describeCurrentException()
{
    try {
        throw;
    } catch (const HostError& e) {
        return QStringLiteral("HostError %1: %2").arg(e.number()).arg(e.description());
    } catch (const std::exception& e) {
        return QString::fromLocal8Bit(e.what());
    } catch (...) {
        return QStringLiteral("unknown exception");
    }
}

// Qt asks this before it delivers any event through notifyInternal2: when it
// answers true the event counts as delivered. It delivers the event itself,
// inside a try block.
bool deliverGuarded(void** data)
{
    if (!g_current || g_inCallback)
        return false;
    auto* receiver = static_cast<QObject*>(data[0]);
    auto* event = static_cast<QEvent*>(data[1]);
    auto* result = static_cast<bool*>(data[2]);
    // Only the outermost delivery is wrapped; nested ones go the normal way
    // and unwind into this frame.
    g_inCallback = true;
    const int type = int(event->type());
    const QString name = receiver->objectName().isEmpty() ? QString::fromLatin1(receiver->metaObject()->className())
                                                          : receiver->objectName();
    try {
        *result = QCoreApplication::instance()->notify(receiver, event);
    } catch (...) {
        *result = true;
        g_current->record(QStringLiteral("event %1 to %2: %3").arg(type).arg(name, describeCurrentException()));
    }
    g_inCallback = false;
    return true;
}

} // namespace

EventLoopGuard::EventLoopGuard()
{
    Q_ASSERT(!g_current);
    QInternal::registerCallback(QInternal::EventNotifyCallback, &deliverGuarded);
    g_current = this;
}

EventLoopGuard::~EventLoopGuard()
{
    g_current = nullptr;
    QInternal::unregisterCallback(QInternal::EventNotifyCallback, &deliverGuarded);
}

void EventLoopGuard::run(const std::function<void()>& work, const QString& what)
{
    try {
        work();
    } catch (...) {
        record(QStringLiteral("%1: %2").arg(what, describeCurrentException()));
    }
}
