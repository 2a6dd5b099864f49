#pragma once
// Fault injection into the host objects: each ProgID the station reaches is
// registered again around the object that served it. Every creation is
// counted per key ProgID + ".new", and every call of the middle tier's
// objects per ProgID + "." + operation. When a key's count reaches an armed
// number, that call raises HostError (a creation gives no object) instead of
// reaching the real one. Every call is logged with what it carried, so that
// a test can list the call sites of a session and then fail each in turn.
#include "host/host_error.h"
#include <QList>
#include <QStringList>
#include <memory>

struct HostCall {
    QString key;
    int number = 0;   // 1-based count of that key
    QString detail;   // the statement, profile key or saved status; else empty
    bool failed = false;
};

class HostFaultInjector {
public:
    static const QString FaultMarker;   // in the description of every injected fault

    HostFaultInjector();
    // Wraps the objects now registered for every ProgID the station reaches
    // but the message box and the employee picker.
    void install();

    // The number-th call of key fails, once. Several may be armed.
    void arm(const QString& key, int number);
    void disarm();

    QList<HostCall> calls() const;   // so far, armed or not
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
