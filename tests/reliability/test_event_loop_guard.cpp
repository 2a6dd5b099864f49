// The guard that the other tests rely on: it must see an exception that
// leaves an event handler, however the event came, and change nothing else.
#include "reliability/event_loop_guard.h"
#include "host/host_error.h"
#include <QApplication>
#include <QEvent>
#include <QLineEdit>
#include <QTest>
#include <gtest/gtest.h>
#include <stdexcept>

namespace {

class ThrowingObject : public QObject {
public:
    bool event(QEvent* e) override
    {
        if (e->type() == QEvent::User)
            throw HostError(HostErrors::Database, QStringLiteral("from a posted event"));
        if (e->type() == QEvent::Type(QEvent::User + 1))
            throw std::runtime_error("from a sent event");
        return QObject::event(e);
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

    EXPECT_EQ(guard.escapes(), (QStringList{QStringLiteral("event 1000 to QObject: from a posted event"),
                                            QStringLiteral("event 1001 to QObject: from a sent event"),
                                            QStringLiteral("direct: from a posted event")}));
}
