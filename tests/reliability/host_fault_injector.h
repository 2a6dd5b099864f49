#pragma once
// Fault injection into the host objects: every creation is counted per key
// ProgID + ".new", every call of the middle tier's objects per ProgID + "." +
// operation. When a key's count reaches an armed number, that call raises
// HostError (a creation gives no object) instead of reaching the real one.
// Every call is logged with what it carried, so that a test can list the
// call sites of a session and then fail each in turn.
#include "host/host_error.h"
#include <QHash>
#include <QSet>
#include <QStringList>
#include <algorithm>
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
    static QString key(const QString& progId, const char* operation)
    {
        return progId + QLatin1Char('.') + QLatin1String(operation);
    }

    // Wraps the objects now registered for every ProgID the station reaches
    // but the message box, the employee picker and the language info.
    void install();

    // The number-th call of key fails, once. Several may be armed.
    void arm(const QString& key, int number) { m_state->armed << key + QLatin1Char('#') + QString::number(number); }
    void disarm() { m_state->armed.clear(); }

    QList<HostCall> calls() const { return m_state->calls; }   // so far, armed or not
    int count(const QString& key) const { return m_state->counts.value(key); }
    bool fired() const
    {
        return std::any_of(m_state->calls.begin(), m_state->calls.end(), [](const HostCall& c) { return c.failed; });
    }
    void resetCounts() { *m_state = State{{}, {}, m_state->armed}; }

    // Shared with the objects handed out, which may outlive the injector.
    struct State {
        QList<HostCall> calls;
        QHash<QString, int> counts;
        QSet<QString> armed;   // "key#number"
        bool pass(const QString& key, const QString& detail);   // false when the call is to fail
    };

private:
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

// The literals of a T-SQL text, '' unescaped; false when a quote is left open.
bool SplitTsqlLiterals(const QString& sql, QStringList* literals);
