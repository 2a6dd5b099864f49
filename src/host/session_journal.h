#pragma once
// The journal of a station session: what the worker has done since the
// station opened, kept on the local disk as it happens, so that a station that
// dies (a crash, a power cut, a killed process) can be taken up again where
// it stood. One journal per user and database; a clean close removes it.
#include "host/goods_record.h"
#include "host/object_factory.h"
#include "host/record_list.h"
#include <QJsonObject>
#include <QString>
#include <QStringList>

namespace ProgIds {
inline const QString SessionJournal = QStringLiteral("RnHost.SessionJournal");
} // namespace ProgIds

// The session as the journal keeps it.
struct JournalState {
    QJsonObject form;         // the form's fields, labels, options, counters and flags
    RecordList sessionLog;    // the log entries, oldest first (their line states included)
    QStringList sessionKeys;  // the codes checked since the station opened
    RecordList lines;         // the order on the station, in the set's order
};

class ISessionJournal : public ServerObject {
public:
    // Takes the journal of the session's user and database for this station;
    // false while another open station (of this process or another) holds it.
    virtual bool Claim(const QString& props) = 0;
    // The journal of the session's user and database (from the property
    // string) is there: the last session did not end cleanly.
    virtual bool Exists(const QString& props) = 0;
    // Reads it whole; HostError when it cannot be read.
    virtual JournalState Read(const QString& props) = 0;
    // Moves an unreadable journal out of the way; returns its new name.
    virtual QString SetAside(const QString& props) = 0;
    // Starts the journal of this session (an old one is replaced).
    virtual void Start(const QString& props, const JournalState& state) = 0;
    // Writes what changed since the last commit, in one transaction, before
    // the station answers the worker.
    virtual void Commit(const JournalState& state) = 0;
    // The session ended cleanly: the journal goes.
    virtual void Remove() = 0;
};
