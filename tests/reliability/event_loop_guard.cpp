#include "reliability/event_loop_guard.h"
#include <QCoreApplication>
#include <exception>

namespace {

EventLoopGuard* g_current = nullptr;
bool g_inCallback = false;

// Qt asks this before it delivers any event through notifyInternal2: when it
// answers true the event counts as delivered. It delivers the event itself,
// guarded.
bool deliverGuarded(void** data)
{
    if (!g_current || g_inCallback)
        return false;
    auto* receiver = static_cast<QObject*>(data[0]);
    auto* event = static_cast<QEvent*>(data[1]);
    auto* result = static_cast<bool*>(data[2]);
    // Only the outermost delivery is wrapped; nested ones go the normal way
    // and unwind into this frame. The receiver is named before it can be gone.
    g_inCallback = true;
    *result = true;
    const QString name = receiver->objectName().isEmpty() ? QString::fromLatin1(receiver->metaObject()->className())
                                                          : receiver->objectName();
    g_current->run([&] { *result = QCoreApplication::instance()->notify(receiver, event); },
                   QStringLiteral("event %1 to %2").arg(int(event->type())).arg(name));
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
    } catch (const std::exception& e) {
        m_escapes << what + QStringLiteral(": ") + QString::fromLocal8Bit(e.what());
    } catch (...) {
        m_escapes << what + QStringLiteral(": unknown exception");
    }
}
