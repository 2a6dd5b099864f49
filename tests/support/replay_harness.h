#pragma once
// Runs the launcher rnwdpicking end to end on a copy of a demo database that
// the launcher's own --init-demo made once, and reads back the JSON state
// line it prints after each command.
#include "support/qt_print.h"
#include <QJsonObject>
#include <QList>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariant>
#include <utility>

struct ReplayRun {
    int exitCode = -1;          // -1 when the launcher did not end normally
    QList<QJsonObject> steps;   // one per command, in order
    QString standardError;
    QString standardOutput;     // raw, for failure messages

    QJsonObject step(int number) const;   // as the launcher numbers them, from 1; empty if none
    std::string describe() const;
};

// What a state line shows, key by key; a value starting with '~' must be
// contained, with '!' must not be.
using Shown = QList<std::pair<QString, QString>>;

struct ReplayStep {
    QString command;   // "@1001" in it stands for the barcode of goods 1001
    Shown shows;
};

class ReplayHarness {
public:
    ReplayHarness();

    QString databaseFile() const { return m_dbFile; }
    QString folder() const { return m_dir.path(); }
    // Offscreen, the launcher's user data (journals, settings) in the folder.
    QProcessEnvironment environment() const;
    QStringList props(int userId = 1) const;   // --props of this database

    // Runs the launcher on a script written to a file, with props() unless
    // extraArgs carry --props.
    ReplayRun run(const QStringList& commands, const QStringList& extraArgs = {}) const;
    // Runs the steps as one script and checks the exit code and what each shows.
    ReplayRun play(const QList<ReplayStep>& steps, const QStringList& extraArgs = {}) const;
    // Exactly these arguments, with the script on standard input when given.
    ReplayRun runRaw(const QStringList& args, const QString& stdinScript = QString()) const;

    // Runs a statement on the database; the first value of its first row.
    QVariant sql(const QString& statement, const QVariantList& params = {}) const;
    // The orders with these unique codes as "code:status/picker/delivery/sent".
    QString orders(const QString& codes) const;
    // Every serial row as "FEntryID|FSerialNumber", sorted.
    QString serials() const;

private:
    QTemporaryDir m_dir;
    QString m_dbFile;
};

// One thing a state line shows, as text: a field ("yes"/"no" for a flag),
// "voice", "boxes" ("title: text" a line), "log", "lines" (every line as
// "GoodsID/FEntryID:ordered/picked/checked"), "checked" (the total) and
// "lines:<goods>" (checked/ordered of each line of those goods, sorted).
QString shown(const QJsonObject& state, const QString& key);
void expectShown(const QJsonObject& state, const Shown& shows);

// The launcher driven line by line through `--replay -`: each command goes to
// its standard input and its state line is read back before the next one.
class LiveLauncher {
public:
    explicit LiveLauncher(const ReplayHarness& harness);
    ~LiveLauncher();
    // The state line of the command; empty when none came (the reason in error).
    QJsonObject send(const QString& command);
    void kill();   // SIGKILL, as a power cut or the task manager would end it
    int finish();  // end of input ends the replay; the exit code
    QString error;

private:
    QProcess m_process;
    QByteArray m_pending;
};
