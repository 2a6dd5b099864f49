#pragma once
// Runs the launcher rnwdpicking end to end: a fresh demo database in a
// temporary folder (made by the launcher's own --init-demo), a replay script,
// and the JSON lines that come back, one per command.
#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariant>

struct ReplayRun {
    int exitCode = -1;
    bool crashed = false;
    QList<QJsonObject> steps;   // one per command, in order
    QString standardError;
    QString standardOutput;     // raw, for failure messages

    // The step of a command, 1-based as the launcher numbers them; an empty
    // object when there is no such step.
    QJsonObject step(int number) const;
    QJsonObject last() const { return steps.isEmpty() ? QJsonObject() : steps.last(); }
    // Every box of the whole run, as boxTexts gives them.
    QStringList allBoxTexts() const;
    // A short description for test failure messages.
    QString describe() const;
};

class ReplayHarness {
public:
    ReplayHarness();

    // False (with the launcher's error output in lastError()) when the demo
    // database could not be made.
    bool ready() const { return m_ready; }
    QString lastError() const { return m_error; }

    QString databaseFile() const { return m_dbFile; }
    QString folder() const { return m_dir.path(); }
    // The environment the launcher runs in: offscreen, its user data in the folder.
    QProcessEnvironment environment() const;
    // The host property string of the demo database for a user.
    QString propsString(int userId = 1) const;

    // Runs the launcher on a script (written to a file in the folder), with
    // --props of this database unless extraArgs already carry --props or --demo.
    ReplayRun run(const QString& script, const QStringList& extraArgs = {}) const;
    // Runs the launcher with exactly these arguments (and the script on
    // standard input when stdinScript is not null).
    ReplayRun runRaw(const QStringList& args, const QString& stdinScript = QString()) const;

    // One value straight from the demo database (e.g. an order's picking status).
    QVariant queryValue(const QString& sql, const QVariantList& params = {}) const;
    // The same from another database file (a copy the test made).
    static QVariant queryValueOf(const QString& file, const QString& sql, const QVariantList& params = {});
    // A statement of the test's own on the demo database (set up a case).
    void execute(const QString& sql, const QVariantList& params = {}) const;

    // The launcher: RNW_BIN_DIR when set, else the folder of the test program.
    static QString launcherPath();

private:
    QTemporaryDir m_dir;
    QString m_dbFile;
    bool m_ready = false;
    QString m_error;
};

// Small readers of a step.
QStringList jsonStrings(const QJsonValue& array);
// The message boxes of a step as "title: text".
QStringList boxTexts(const QJsonObject& step);
// The lines of a step as "GoodsID/FEntryID:ordered/picked/checked" texts.
QStringList lineSummaries(const QJsonObject& step);
// Sum of GoodsCheckedCnt over the step's lines.
int checkedTotal(const QJsonObject& step);
