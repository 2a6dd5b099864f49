#pragma once
// The launcher driven line by line through `--replay -`: each command is
// written to its standard input, and its state line is read back before the
// next one goes, as a person at a terminal would drive it.
#include "support/replay_harness.h"
#include <QJsonObject>
#include <QProcess>
#include <QString>
#include <optional>

class LiveLauncher {
public:
    explicit LiveLauncher(const ReplayHarness& harness, QStringList extraArgs = {});
    ~LiveLauncher();

    bool start();
    // The state line of the command; nothing when none came in time (the
    // reason in error()).
    std::optional<QJsonObject> send(const QString& command, int timeoutMs = 60000);
    // SIGKILL, as a power cut or the task manager would end it.
    void kill();
    // End of input: the replay ends as a script's end does. The exit code.
    int finish(int timeoutMs = 60000);
    QString error() const { return m_error; }

private:
    const ReplayHarness& m_harness;
    QStringList m_args;
    QProcess m_process;
    QByteArray m_pending;
    QString m_error;
};
