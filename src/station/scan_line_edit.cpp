#include "station/scan_line_edit.h"
#include "station/gs1_element_string.h"
#include <QClipboard>
#include <QDropEvent>
#include <QFocusEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QValidator>

namespace {

// Whether `after` is `before` with one stretch taken out (maybe none): an edit
// that put nothing in.
bool onlyTakesOut(const QString& before, const QString& after)
{
    if (after.size() > before.size())
        return false;
    qsizetype prefix = 0;
    while (prefix < after.size() && after.at(prefix) == before.at(prefix))
        ++prefix;
    qsizetype suffix = 0;
    while (suffix < after.size() - prefix && after.at(after.size() - 1 - suffix) == before.at(before.size() - 1 - suffix))
        ++suffix;
    return prefix + suffix == after.size();
}

// Runs on every change of the text, whichever way it came in, and takes the
// refused characters out before the field shows them.
class RefusingValidator : public QValidator {
public:
    explicit RefusingValidator(ScanLineEdit* field) : QValidator(field), m_field(field) {}
    State validate(QString& input, int& pos) const override
    {
        // A GS1 scanner ends a field with GS: the field keeps its visible sign.
        if (input.contains(QChar(Gs1GroupSeparator))) {
            input.replace(QChar(Gs1GroupSeparator), QChar(Gs1GroupSeparatorSign));
        }
        QString kept;
        kept.reserve(input.size());
        int newPos = pos;
        for (int i = 0; i < input.size(); ++i) {
            if (ScanLineEdit::isRefused(input.at(i))) {
                if (i < pos)
                    --newPos;
                continue;
            }
            kept.append(input.at(i));
        }
        if (kept.size() != input.size()) {
            input = kept;
            pos = qBound(0, newPos, int(kept.size()));
            m_field->noteRefused();
        }
        if (!onlyTakesOut(m_field->shownText(), input))
            m_field->noteKept();
        return Acceptable;
    }

private:
    ScanLineEdit* m_field;
};

} // namespace

ScanLineEdit::ScanLineEdit(QWidget* parent) : QLineEdit(parent)
{
    setValidator(new RefusingValidator(this));
    connect(this, &QLineEdit::textChanged, this, [this](const QString& shown) { m_shownText = shown; });
}

void ScanLineEdit::startScan()
{
    m_refusedInScan = m_keptInScan = false;
}

bool ScanLineEdit::isRefused(QChar c)
{
    switch (c.unicode()) {
    case 0x0027: // '
    case 0x2018: // left single quotation mark
    case 0x2019: // right single quotation mark
    case 0x201B: // single high-reversed-9 quotation mark
    case 0x2032: // prime
    case 0x02BC: // modifier letter apostrophe
    case 0xFF07: // fullwidth apostrophe
        return true;
    default:
        break;
    }
    const auto category = c.category();
    return category == QChar::Other_Control || category == QChar::Other_Format
        || category == QChar::Separator_Line || category == QChar::Separator_Paragraph
        || c.isSurrogate();
}

QString ScanLineEdit::cleaned(const QString& text)
{
    QString kept;
    kept.reserve(text.size());
    for (QChar c : text) {
        if (c.unicode() == Gs1GroupSeparator)
            kept.append(QChar(Gs1GroupSeparatorSign));
        else if (!isRefused(c))
            kept.append(c);
    }
    return kept;
}

void ScanLineEdit::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: {
        event->accept();
        // Characters came and every one was refused: what the field still
        // holds is not scanned a second time.
        const bool refusedOnly = m_refusedInScan && !m_keptInScan;
        if (refusedOnly)
            emit refusedScanEntered();
        else
            emit enterPressed();
        startScan();
        return;
    }
    default:
        break;
    }
    if (event->matches(QKeySequence::Paste))
        noteIncoming(QGuiApplication::clipboard()->text());
    // GS, as a GS1 scanner sends it between fields, is kept as its sign.
    if (event->text() == QChar(Gs1GroupSeparator)) {
        event->accept();
        insert(QString(QChar(Gs1GroupSeparatorSign)));
        m_keptInScan = true;
        return;
    }
    if (event->key() >= Qt::Key_F1 && event->key() <= Qt::Key_F12) {
        event->accept();
        emit functionKeyPressed(event->key());
        return;
    }
    // A key that would only type refused characters is swallowed whole, so the
    // field does not even see a change.
    const QString text = event->text();
    if (!text.isEmpty() && event->modifiers().testAnyFlags(Qt::ControlModifier | Qt::MetaModifier) == false) {
        bool anyPrintable = false;
        bool anyRefusedPrintable = false;
        for (QChar c : text) {
            if (c.category() == QChar::Other_Control)
                continue;   // editing keys (Backspace, Tab, Esc) carry control text
            anyPrintable = true;
            if (isRefused(c))
                anyRefusedPrintable = true;
        }
        if (anyPrintable && anyRefusedPrintable && cleaned(text).isEmpty()) {
            event->accept();
            m_refusedInScan = true;
            return;
        }
        if (anyPrintable)
            m_keptInScan = true;
    }
    QLineEdit::keyPressEvent(event);
}

void ScanLineEdit::dropEvent(QDropEvent* event)
{
    if (event->mimeData())
        noteIncoming(event->mimeData()->text());
    QLineEdit::dropEvent(event);
}

void ScanLineEdit::noteIncoming(const QString& text)
{
    const QString kept = cleaned(text);
    if (!kept.isEmpty())
        m_keptInScan = true;
    if (kept.size() != text.size())
        m_refusedInScan = true;
}

void ScanLineEdit::mousePressEvent(QMouseEvent* event)
{
    QLineEdit::mousePressEvent(event);
    if (event->button() == Qt::LeftButton)
        emit clicked();
}

void ScanLineEdit::mouseDoubleClickEvent(QMouseEvent* event)
{
    QLineEdit::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton)
        emit doubleClicked();
}

void ScanLineEdit::focusInEvent(QFocusEvent* event)
{
    // Coming into the field starts a new scan.
    startScan();
    QLineEdit::focusInEvent(event);
    if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason)
        emit focusEntered();
}

void ScanLineEdit::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason)
        emit focusLeft();
}
