#pragma once
// Catches what would reach the event loop: while the guard lives, an exception
// that leaves the handler of any event Qt delivers is recorded instead of
// tearing the test program down. QTest's key and mouse clicks call
// QApplication::notify directly, past that hook, so the fixtures send them
// through run(), which guards them the same way. One guard at a time.
#include <QString>
#include <QStringList>
#include <functional>

class EventLoopGuard {
public:
    EventLoopGuard();
    ~EventLoopGuard();
    EventLoopGuard(const EventLoopGuard&) = delete;
    EventLoopGuard& operator=(const EventLoopGuard&) = delete;

    // Runs work (a key click, a paste) and records an exception it lets out.
    void run(const std::function<void()>& work, const QString& what);

    // What escaped so far: "where: description", in order.
    QStringList escapes() const { return m_escapes; }
    void clear() { m_escapes.clear(); }

private:
    QStringList m_escapes;
};
