#pragma once
// Fault injection into the host objects: each ProgID the station uses is
// registered again around the object that served it before, and every call
// is counted per ProgID and operation ("RnMWDPickingAndDelivery.clsGetData.
// ExecuteSQL"). When a call's number reaches the armed one, it raises
// HostError instead of reaching the real object. Every call is logged with
// the statement it carried, so a test can first list the call sites of a
// session and then fail each of them in turn.
#include "host/host_error.h"
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <memory>

struct HostCall {
    QString key;        // ProgID + "." + operation
    int number = 0;     // 1-based count of that key
    QString detail;     // the statement (ExecuteSQL, GetSingleSQLData), else a short note
    bool failed = false;
};

class HostFaultInjector {
public:
    // The description every injected fault carries, followed by the key and number.
    static const QString FaultMarker;   // "injected fault"
    static constexpr long FaultNumber = 91000;

    HostFaultInjector();
    ~HostFaultInjector();

    // Wraps the objects now registered for these ProgIDs (default: every one
    // the station reaches, message box and sound included). The wrapped
    // objects are created once here and shared by the wrappers.
    void install(const QStringList& progIds = allProgIds());
    static QStringList allProgIds();

    // The number-th call of key fails (once). Several may be armed.
    void arm(const QString& key, int number);
    // Creating the object of a ProgID fails for the number-th creation.
    void armCreation(const QString& progId, int number);
    void disarm();

    // Calls so far (counted also while nothing is armed), and a reset of them.
    QList<HostCall> calls() const;
    int count(const QString& key) const;
    QList<HostCall> failures() const;
    void resetCounts();

    static QString key(const QString& progId, const char* operation);

    // Shared state of the wrappers (public for them, not for tests).
    struct State;

private:
    std::shared_ptr<State> m_state;
};

// The literals of a T-SQL text ('' unescaped, comments skipped) and the text
// with every literal replaced by '?' (the statement's shape). False when a
// literal, a bracketed name or a comment is left open.
bool SplitTsqlLiterals(const QString& sql, QStringList* literals, QString* shape);
