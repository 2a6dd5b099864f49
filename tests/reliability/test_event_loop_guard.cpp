// The guard that the other tests rely on: it must see an exception that
// leaves an event handler, however the event came, and change nothing else.
#include "reliability/event_loop_guard.h"
#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <gtest/gtest.h>
#include <stdexcept>

namespace {

// Every user event fails, as a handler does that lets an exception out.
class ThrowingObject : public QObject {
public:
    bool event(QEvent* e) override
    {
        if (e->type() < QEvent::User)
            return QObject::event(e);
        throw std::runtime_error("event " + std::to_string(e->type()) + " failed");
    }
};

} // namespace

TEST(EventLoopGuard, RecordsWhatLeavesAHandlerByAnyRoute)
{
    EventLoopGuard guard;
    ThrowingObject object;
    QCoreApplication::postEvent(&object, new QEvent(QEvent::User));
    QCoreApplication::processEvents();
    QEvent sent(QEvent::Type(QEvent::User + 1));
    QCoreApplication::sendEvent(&object, &sent);
    // QTest hands its clicks to QApplication::notify itself, past the hook.
    QEvent direct(QEvent::User);
    guard.run([&] { QCoreApplication::instance()->notify(&object, &direct); }, QStringLiteral("direct"));
    // Events that throw nothing are delivered as before, and count nothing.
    QLineEdit plain;
    guard.run([&] { QTest::keyClicks(&plain, QStringLiteral("ok")); }, QStringLiteral("typing"));
    QCoreApplication::processEvents();
    EXPECT_EQ(plain.text(), QStringLiteral("ok"));

    EXPECT_EQ(guard.escapes(), (QStringList{QStringLiteral("event 1000 to QObject: event 1000 failed"),
                                            QStringLiteral("event 1001 to QObject: event 1001 failed"),
                                            QStringLiteral("direct: event 1000 failed")}));
}
