#pragma once
// Fault injection into the host objects: each ProgID the station reaches is
// registered again around the object that served it, and every creation and
// call is counted per key: ProgID + "." + operation, or + ".new" for a
// creation. When a key's count reaches an armed number, that call raises
// HostError (a creation gives no object) instead of reaching the real one.
// Every call is logged with what it carried, so that a test can list the call
// sites of a session and then fail each of them in turn.
#include "host/host_error.h"
#include <QList>
#include <QStringList>
#include <memory>

struct HostCall {
    QString key;
    int number = 0;   // 1-based count of that key
    QString detail;   // the statement, prompt, profile key or saved status; else empty
    bool failed = false;
};

class HostFaultInjector {
public:
    // In the description of every injected fault.
    static const QString FaultMarker;

    HostFaultInjector();
    // Wraps the objects now registered for every ProgID the station reaches
    // but the message box and the employee picker.
    void install();

    // The number-th call of key fails, once. Several may be armed.
    void arm(const QString& key, int number);
    void disarm();

    // Calls so far, armed or not.
    QList<HostCall> calls() const;
    int count(const QString& key) const;
    bool fired() const;
    void resetCounts();

    static QString key(const QString& progId, const char* operation);
    struct State;

private:
    std::shared_ptr<State> m_state;
};

// The literals of a T-SQL text ('' unescaped) and the text with each one
// replaced by '?' (the statement's shape). False when a quote is left open.
bool SplitTsqlLiterals(const QString& sql, QStringList* literals, QString* shape);
