#include "station/scan_line_edit.h"
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QValidator>

namespace {

// Runs on every change of the text, whichever way it came in, and takes the
// refused characters out before the field shows them.
class RefusingValidator : public QValidator {
public:
    explicit RefusingValidator(ScanLineEdit* field) : QValidator(field), m_field(field) {}
    State validate(QString& input, int& pos) const override
    {
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
        return Acceptable;
    }

private:
    ScanLineEdit* m_field;
};

} // namespace

ScanLineEdit::ScanLineEdit(QWidget* parent) : QLineEdit(parent)
{
    setValidator(new RefusingValidator(this));
}

void ScanLineEdit::startScan()
{
    m_refusedInScan = false;
    m_textAtScanStart = text();
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
    for (QChar c : text)
        if (!isRefused(c))
            kept.append(c);
    return kept;
}

void ScanLineEdit::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: {
        event->accept();
        // Characters came and every one was refused: the field holds what it
        // held before, which is not scanned a second time.
        const bool refusedOnly = m_refusedInScan && text() == m_textAtScanStart;
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
    }
    QLineEdit::keyPressEvent(event);
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
