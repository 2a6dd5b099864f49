#pragma once
// Drives the real station without a person: one command a line, typed and
// clicked through the widgets' own event handling, one JSON line of the
// station's state after each command. Message boxes are answered from the
// script's queue and recorded, voice prompts recorded instead of played.
#include <QHash>
#include <QIODevice>
#include <QJsonObject>
#include <QList>
#include <QPointer>
#include <QQueue>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

class frmPickigGoods;
class QTextStream;
class QWidget;
class QLabel;
class QLineEdit;
class LogList;

struct ReplayCommand {
    int lineNumber = 0;   // in the script, 1-based
    QString text;         // the line as written, trimmed
    QString verb;         // scan, type, key, click, answer, close, state
    QString target;       // field or control name, the answer
    QString argument;     // text to type, key name
};

// Parses a script. Blank lines and lines starting with '#' are skipped. On a
// malformed line returns false with its number and the reason, the script's
// control characters in it escaped.
bool ParseReplayScript(const QString& script, QList<ReplayCommand>& commands, int& badLine, QString& reason);

class ReplayDriver {
public:
    explicit ReplayDriver(QList<ReplayCommand> commands = {});
    ~ReplayDriver();

    // Registers the recording message box, sound and employee picker. The
    // script's leading `answer` lines are queued at once: they answer the
    // questions the station asks while it opens.
    void install();
    // Live: after the commands given, each further line is read from standard
    // input and run as soon as it arrives (`--replay -`). linesRead: the
    // lines of standard input already taken, for the numbers in errors.
    void readOnFromStandardInput(int linesRead);
    // 0, or 2 when a line read live was malformed.
    int exitCode() const { return m_exitCode; }
    // Runs every command against the station form that is showing, writing
    // one JSON line per command, then closes the form without asking.
    void run(frmPickigGoods* form);

    // One command at a time, for a caller that drives the form itself (the
    // benchmark). attach makes the form the active window and finds its
    // controls by their names; the steps are counted from 1 again.
    void attach(frmPickigGoods* form);
    // Runs one parsed command on the attached form and answers its state
    // line, as run prints it. `idle`, when given, is called once the
    // command's events are delivered and the station is idle again, before
    // the state is read.
    QJsonObject step(const ReplayCommand& command, const std::function<void()>& idle = {});
    // The script closed the form, or the form is gone.
    bool closed() const;

    // What the recording objects saw since the last step.
    struct Recorder;
    std::shared_ptr<Recorder> recorder() const { return m_recorder; }

private:
    void execute(const ReplayCommand& command);
    QJsonObject stateJson(int step, const QString& command) const;
    QWidget* field(const QString& name) const;
    QWidget* control(const QString& name) const;
    QString textOf(const QString& name) const;
    void focusField(QWidget* widget);
    void typeText(QWidget* widget, const QString& text);
    void pressKey(QWidget* widget, const QString& keyName);

    QList<ReplayCommand> m_commands;
    QPointer<frmPickigGoods> m_form;
    // The controls the commands and the state name, found once by objectName.
    QHash<QString, QPointer<QWidget>> m_controls;
    std::shared_ptr<Recorder> m_recorder;
    int m_step = 0;
    bool m_closed = false;
    int m_preAnswered = 0;   // leading answers already queued by install()
    bool m_live = false;
    int m_linesRead = 0;
    int m_exitCode = 0;
};
