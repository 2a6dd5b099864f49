#include "app/replay_driver.h"
#include <iostream>
#include <string>
#include "host/employee_picker.h"
#include "host/object_factory.h"
#include "host/props_text.h"
#include "host/record_keys.h"
#include "log/log_list.h"
#include "middletier/employee_list.h"
#include "orderdata/order_goods.h"
#include "station/frm_pickig_goods.h"
#include "station/scan_line_edit.h"
#include <QApplication>
#include <QCheckBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QMouseEvent>
#include <cstdio>

struct ReplayDriver::Recorder {
    QQueue<bool> answers;   // true: yes
    QStringList voices;
    QJsonArray boxes;
};

namespace {

const QStringList FieldNames{QStringLiteral("TxtID"), QStringLiteral("TxtItemID"), QStringLiteral("TxtNum"),
                             QStringLiteral("TxtEmployee")};
const QStringList ControlNames{QStringLiteral("chkBarCode"), QStringLiteral("chkHaveSerial"),
                               QStringLiteral("chkShowText"), QStringLiteral("CmdBtnRePick"),
                               QStringLiteral("ChkOnlyError")};
// What the state line reads besides the fields.
const QStringList StateNames{QStringLiteral("txtWebshop"), QStringLiteral("lblMessage"), QStringLiteral("lblPickInfo"),
                             QStringLiteral("lblOrderNum"), QStringLiteral("lblPickedNum"), QStringLiteral("ImgSuccess"),
                             QStringLiteral("LogList1")};

QString masked(const QString& text)
{
    return MaskPasswords(text);
}

class RecordingMessageBox : public IMessageBox {
public:
    explicit RecordingMessageBox(std::shared_ptr<ReplayDriver::Recorder> recorder) : m_recorder(std::move(recorder)) {}
    int Show(QWidget*, const QString& text, int flags, const QString& title) override
    {
        m_recorder->boxes.append(QJsonObject{{QStringLiteral("title"), masked(title)}, {QStringLiteral("text"), masked(text)}});
        const int buttons = flags & 7;
        if (buttons == 0)
            return MsgBox::Ok;
        const bool yes = m_recorder->answers.isEmpty() ? true : m_recorder->answers.dequeue();
        switch (buttons) {
        case 1: return yes ? MsgBox::Ok : 2;    // Ok / Cancel
        case 2: return yes ? 3 : 5;             // Abort / Ignore
        case 5: return yes ? 4 : 2;             // Retry / Cancel
        default: return yes ? MsgBox::Yes : MsgBox::No;
        }
    }

private:
    std::shared_ptr<ReplayDriver::Recorder> m_recorder;
};

class RecordingSound : public ISound {
public:
    explicit RecordingSound(std::shared_ptr<ReplayDriver::Recorder> recorder) : m_recorder(std::move(recorder)) {}
    void Play(const QString& fileName) override { m_recorder->voices << fileName; }

private:
    std::shared_ptr<ReplayDriver::Recorder> m_recorder;
};

// Without a person the picker takes the first employee that matches the text.
class FirstMatchPicker : public IEmployeePicker {
public:
    EmployeePickResult Pick(QWidget*, const QString& props, const QString& text) override
    {
        EmployeePickResult result;
        const QList<EmployeeRow> rows = FindEmployees(props, text);
        if (rows.isEmpty())
            return result;
        result.ReturnOK = true;
        result.ReturnObject.Detail = true;
        result.ReturnObject.Name = rows.first().name;
        result.ReturnObject.Itemid = rows.first().itemId;
        return result;
    }
};

QJsonValue lineValue(const GoodsRecord& line, const QString& key, bool text)
{
    const QVariant value = line.GetValue(key);
    if (text || value.isNull())
        return value.isNull() ? QJsonValue(QString()) : QJsonValue(value.toString());
    bool ok = false;
    const qlonglong number = value.toString().trimmed().toLongLong(&ok);
    return ok ? QJsonValue(number) : QJsonValue(value.toString());
}

int keyForName(const QString& name)
{
    static const QHash<QString, int> aliases{
        {QStringLiteral("enter"), Qt::Key_Return}, {QStringLiteral("return"), Qt::Key_Return},
        {QStringLiteral("tab"), Qt::Key_Tab},      {QStringLiteral("escape"), Qt::Key_Escape},
        {QStringLiteral("esc"), Qt::Key_Escape},   {QStringLiteral("backspace"), Qt::Key_Backspace},
        {QStringLiteral("delete"), Qt::Key_Delete}, {QStringLiteral("space"), Qt::Key_Space},
        {QStringLiteral("quote"), Qt::Key_Apostrophe}};
    const auto alias = aliases.constFind(name.toLower());
    if (alias != aliases.constEnd())
        return *alias;
    // Only a name the key sequence parser gives back as it was written: it
    // reads unknown words as something else rather than refusing them.
    const QKeySequence sequence = QKeySequence::fromString(name);
    if (sequence.count() != 1 || sequence.toString().compare(name, Qt::CaseInsensitive) != 0)
        return 0;
    const QKeyCombination combination = sequence[0];
    return combination.keyboardModifiers() == Qt::NoModifier ? int(combination.key()) : 0;
}

// The text a key types, as a keyboard would send it.
QString keyText(int key)
{
    switch (key) {
    case Qt::Key_Return: return QStringLiteral("\r");
    case Qt::Key_Tab: return QStringLiteral("\t");
    case Qt::Key_Escape: return QString(QChar(0x1b));
    case Qt::Key_Backspace: return QString(QChar(0x08));
    case Qt::Key_Delete: return QString(QChar(0x7f));
    case Qt::Key_Space: return QStringLiteral(" ");
    case Qt::Key_Apostrophe: return QStringLiteral("'");
    default: break;
    }
    if (key >= 0x20 && key < 0x7f)
        return QString(QChar(key)).toLower();
    return QString();
}

// A left click as the window system delivers it: focus first (for widgets
// that take focus by click), then press and release.
void clickAt(QWidget* target, const QPoint& point)
{
    if ((target->focusPolicy() & Qt::ClickFocus) == Qt::ClickFocus && !target->hasFocus()) {
        target->setFocus(Qt::MouseFocusReason);
        QApplication::processEvents();
    }
    const QPointF local(point);
    const QPointF global(target->mapToGlobal(point));
    QMouseEvent press(QEvent::MouseButtonPress, local, global, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &press);
    QMouseEvent release(QEvent::MouseButtonRelease, local, global, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(target, &release);
}

// A script line quoted in a message goes to a terminal: control and format
// characters (escape sequences, bidi overrides, line breaks) are written as
// \xNN or \uNNNN instead of being sent.
QString escapedForTerminal(const QString& text)
{
    QString out;
    out.reserve(text.size());
    for (const QChar c : text) {
        switch (c.category()) {
        case QChar::Other_Control:
        case QChar::Other_Format:
        case QChar::Separator_Line:
        case QChar::Separator_Paragraph:
            out += c.unicode() <= 0xff ? QStringLiteral("\\x%1").arg(c.unicode(), 2, 16, QLatin1Char('0'))
                                       : QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
            break;
        default:
            out += c;
        }
    }
    return out;
}

} // namespace

bool ParseReplayScript(const QString& script, QList<ReplayCommand>& commands, int& badLine, QString& reason)
{
    commands.clear();
    const QStringList lines = script.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        QString line = lines.at(i);
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        const QString trimmed = line.trimmed();
        if (trimmed.isEmpty() || trimmed.startsWith(QLatin1Char('#')))
            continue;
        ReplayCommand command;
        command.lineNumber = i + 1;
        command.text = trimmed;
        const qsizetype firstSpace = trimmed.indexOf(QLatin1Char(' '));
        command.verb = firstSpace < 0 ? trimmed : trimmed.left(firstSpace);
        const QString rest = firstSpace < 0 ? QString() : trimmed.mid(firstSpace + 1).trimmed();
        const qsizetype secondSpace = rest.indexOf(QLatin1Char(' '));
        command.target = secondSpace < 0 ? rest : rest.left(secondSpace);
        // The text to type keeps its own inner blanks.
        command.argument = secondSpace < 0 ? QString() : rest.mid(secondSpace + 1);

        auto fail = [&](const QString& why) {
            badLine = command.lineNumber;
            reason = escapedForTerminal(why);
            return false;
        };
        const QString& verb = command.verb;
        if (verb == QLatin1String("scan") || verb == QLatin1String("type")) {
            if (!FieldNames.contains(command.target))
                return fail(QStringLiteral("%1 needs a field (TxtID, TxtItemID, TxtNum, TxtEmployee)").arg(verb));
            if (verb == QLatin1String("type") && command.argument.isEmpty())
                return fail(QStringLiteral("type needs a text"));
        } else if (verb == QLatin1String("key")) {
            if (!FieldNames.contains(command.target))
                return fail(QStringLiteral("key needs a field (TxtID, TxtItemID, TxtNum, TxtEmployee)"));
            if (command.argument.isEmpty() || keyForName(command.argument.trimmed()) == 0)
                return fail(QStringLiteral("unknown key: %1").arg(command.argument));
        } else if (verb == QLatin1String("click")) {
            if ((!FieldNames.contains(command.target) && !ControlNames.contains(command.target)) || !command.argument.isEmpty())
                return fail(QStringLiteral("click needs one control name"));
        } else if (verb == QLatin1String("answer")) {
            if ((command.target != QLatin1String("yes") && command.target != QLatin1String("no")) || !command.argument.isEmpty())
                return fail(QStringLiteral("answer takes yes or no"));
        } else if (verb == QLatin1String("close") || verb == QLatin1String("state")) {
            if (!rest.isEmpty())
                return fail(QStringLiteral("%1 takes no argument").arg(verb));
        } else {
            return fail(QStringLiteral("unknown command: %1").arg(verb));
        }
        commands << command;
    }
    return true;
}

ReplayDriver::ReplayDriver(QList<ReplayCommand> commands)
    : m_commands(std::move(commands)), m_recorder(std::make_shared<Recorder>())
{
}

ReplayDriver::~ReplayDriver() = default;

void ReplayDriver::install()
{
    auto recorder = m_recorder;
    RegisterServerObject(ProgIds::MessageBox, [recorder] { return std::make_shared<RecordingMessageBox>(recorder); });
    RegisterServerObject(ProgIds::Sound, [recorder] { return std::make_shared<RecordingSound>(recorder); });
    RegisterServerObject(ProgIds::EmployeePicker, [] { return std::make_shared<FirstMatchPicker>(); });
    m_preAnswered = 0;
    for (const ReplayCommand& command : std::as_const(m_commands)) {
        if (command.verb != QLatin1String("answer"))
            break;
        m_recorder->answers.enqueue(command.target == QLatin1String("yes"));
        ++m_preAnswered;
    }
}

void ReplayDriver::readOnFromStandardInput(int linesRead)
{
    m_live = true;
    m_linesRead = linesRead;
}

void ReplayDriver::run(frmPickigGoods* form)
{
    attach(form);
    if (!m_form)
        return;
    // What the form showed and played while it opened belongs to the first step.
    const auto runOne = [this](const ReplayCommand& command) {
        const QByteArray line = QJsonDocument(step(command)).toJson(QJsonDocument::Compact);
        std::fwrite(line.constData(), 1, size_t(line.size()), stdout);
        std::fputc('\n', stdout);
        std::fflush(stdout);
    };
    for (const ReplayCommand& command : std::as_const(m_commands))
        runOne(command);
    // Live: each line as it comes, its state line at once, until the input ends.
    std::string raw;
    while (m_live && std::getline(std::cin, raw)) {
        ++m_linesRead;
        QList<ReplayCommand> parsed;
        int badLine = 0;
        QString reason;
        if (!ParseReplayScript(QString::fromStdString(raw), parsed, badLine, reason)) {
            const QByteArray error = QStringLiteral("line %1: %2\n").arg(m_linesRead).arg(reason).toUtf8();
            std::fwrite(error.constData(), 1, size_t(error.size()), stderr);
            m_exitCode = 2;
            break;
        }
        for (ReplayCommand& command : parsed) {
            command.lineNumber = m_linesRead;
            runOne(command);
        }
    }
    if (m_form && !m_closed)
        m_form->closeWithoutAsking();
}

void ReplayDriver::attach(frmPickigGoods* form)
{
    m_form = form;
    m_step = 0;
    m_closed = false;
    m_controls.clear();
    if (!m_form)
        return;
    for (const QStringList& names : {FieldNames, ControlNames, StateNames}) {
        for (const QString& name : names)
            m_controls.insert(name, m_form->findChild<QWidget*>(name));
    }
    m_form->activateWindow();
    QApplication::setActiveWindow(m_form);
    QApplication::processEvents();
}

QJsonObject ReplayDriver::step(const ReplayCommand& command, const std::function<void()>& idle)
{
    ++m_step;
    execute(command);
    QApplication::processEvents();
    if (idle)
        idle();
    const QJsonObject state = stateJson(m_step, command.text);
    m_recorder->voices.clear();
    m_recorder->boxes = QJsonArray();
    return state;
}

bool ReplayDriver::closed() const
{
    return m_closed || !m_form || !m_form->isVisible();
}

void ReplayDriver::execute(const ReplayCommand& command)
{
    if (!m_form)
        return;
    const QString& verb = command.verb;
    if (verb == QLatin1String("scan") || verb == QLatin1String("type")) {
        QWidget* target = field(command.target);
        focusField(target);
        if (auto* edit = qobject_cast<QLineEdit*>(target))
            edit->selectAll();
        typeText(target, command.argument);
        if (verb == QLatin1String("scan"))
            pressKey(target, QStringLiteral("Enter"));
    } else if (verb == QLatin1String("key")) {
        QWidget* target = field(command.target);
        focusField(target);
        pressKey(target, command.argument.trimmed());
    } else if (verb == QLatin1String("click")) {
        QWidget* target = control(command.target);
        if (!target)
            return;
        QPoint point = target->rect().center();
        // A check box takes clicks on its box and caption, not on the empty rest of its row.
        if (qobject_cast<QCheckBox*>(target))
            point = QPoint(qMin(8, target->width() / 2), target->height() / 2);
        clickAt(target, point);
    } else if (verb == QLatin1String("answer")) {
        // The leading answers were queued before the station opened.
        if (m_preAnswered > 0)
            --m_preAnswered;
        else
            m_recorder->answers.enqueue(command.target == QLatin1String("yes"));
    } else if (verb == QLatin1String("close")) {
        m_closed = m_form->close();
    }
}

QWidget* ReplayDriver::field(const QString& name) const
{
    // The parser lets only field names through; anything else is the picker's field.
    const QString known = FieldNames.contains(name) ? name : QStringLiteral("TxtEmployee");
    return m_controls.value(known);
}

QWidget* ReplayDriver::control(const QString& name) const
{
    return m_controls.value(name);
}

QString ReplayDriver::textOf(const QString& name) const
{
    QWidget* widget = m_controls.value(name);
    if (auto* edit = qobject_cast<QLineEdit*>(widget))
        return edit->text();
    if (auto* label = qobject_cast<QLabel*>(widget))
        return label->text();
    return QString();
}

void ReplayDriver::focusField(QWidget* widget)
{
    if (!widget->hasFocus()) {
        widget->setFocus(Qt::OtherFocusReason);
        QApplication::processEvents();
    }
}

void ReplayDriver::typeText(QWidget* widget, const QString& text)
{
    // Key by key through the field's own key handling, as a scanner types.
    for (QChar c : text) {
        const QString one(c);
        int key = 0;
        if (c.unicode() < 0x100)
            key = c.toUpper().unicode();
        if (c == QLatin1Char(' '))
            key = Qt::Key_Space;
        QKeyEvent press(QEvent::KeyPress, key ? key : Qt::Key_unknown, Qt::NoModifier, one);
        QApplication::sendEvent(widget, &press);
        QKeyEvent release(QEvent::KeyRelease, key ? key : Qt::Key_unknown, Qt::NoModifier, one);
        QApplication::sendEvent(widget, &release);
    }
}

void ReplayDriver::pressKey(QWidget* widget, const QString& keyName)
{
    const int key = keyForName(keyName);
    if (key == 0)
        return;
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, keyText(key));
    QApplication::sendEvent(widget, &press);
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, keyText(key));
    QApplication::sendEvent(widget, &release);
}

QJsonObject ReplayDriver::stateJson(int step, const QString& command) const
{
    QJsonObject state;
    state.insert(QStringLiteral("step"), step);
    state.insert(QStringLiteral("command"), masked(command));
    if (!m_form)
        return state;
    const frmPickigGoods& f = *m_form;
    for (const char* name : {"TxtID", "TxtItemID", "TxtNum", "TxtEmployee", "txtWebshop", "lblMessage", "lblPickInfo"}) {
        const QString key = QString::fromLatin1(name);
        state.insert(key, masked(textOf(key)));
    }
    state.insert(QStringLiteral("lblOrderNum"), textOf(QStringLiteral("lblOrderNum")));
    state.insert(QStringLiteral("lblPickedNum"), textOf(QStringLiteral("lblPickedNum")));
    const QWidget* stamp = m_controls.value(QStringLiteral("ImgSuccess"));
    state.insert(QStringLiteral("ImgSuccess"), stamp && stamp->isVisibleTo(m_form.data()));
    state.insert(QStringLiteral("closed"), m_closed || !f.isVisible());
    state.insert(QStringLiteral("view"), f.IsGridView() ? QStringLiteral("grid") : QStringLiteral("tiles"));

    QJsonArray lines;
    const RecordList set = GetGoodsLineSet();
    for (int i = 0; !set.isNone() && i < set.Count(); ++i) {
        const GoodsRecord line = set.Item(i);
        lines.append(QJsonObject{
            {QStringLiteral("GoodsID"), lineValue(line, RecordKeys::GoodsID, false)},
            {QStringLiteral("FEntryID"), lineValue(line, RecordKeys::FEntryID, false)},
            {QStringLiteral("GoodsOrderCnt"), lineValue(line, RecordKeys::GoodsOrderCnt, false)},
            {QStringLiteral("GoodsPickCnt"), lineValue(line, RecordKeys::GoodsPickCnt, false)},
            {QStringLiteral("GoodsCheckedCnt"), lineValue(line, RecordKeys::GoodsCheckedCnt, false)},
            {QStringLiteral("FSeriNum"), lineValue(line, RecordKeys::FSeriNum, true)},
        });
    }
    state.insert(QStringLiteral("lines"), lines);
    QJsonArray log;
    if (const auto* pane = qobject_cast<const LogList*>(m_controls.value(QStringLiteral("LogList1")).data()))
        for (const QString& row : pane->allRowTexts())
            log.append(masked(row));
    state.insert(QStringLiteral("log"), log);
    state.insert(QStringLiteral("voice"), QJsonArray::fromStringList(m_recorder->voices));
    state.insert(QStringLiteral("boxes"), m_recorder->boxes);
    return state;
}
