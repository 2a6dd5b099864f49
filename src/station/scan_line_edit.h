#pragma once
// The entry field of the station's scan boxes. A code pasted between single
// quotes into SQL must never hold one: the quote and its look-alikes, and any
// control character, are taken out on every path into the field (keys, paste,
// drop, setText). Enter, clicks, focus changes and function keys are raised as
// signals so that the form's handlers stay in the form.
//
// GS, which a GS1 scanner sends between fields, is kept as its visible sign
// (U+241D) rather than refused.
//
// A scan is what came into the field since the last Enter. When every
// character of it was refused, Enter raises refusedScanEntered instead of
// enterPressed: the text still standing in the field is not scanned again.
#include <QLineEdit>

class ScanLineEdit : public QLineEdit {
    Q_OBJECT
public:
    explicit ScanLineEdit(QWidget* parent = nullptr);

    // True for a character that never reaches a scan field.
    static bool isRefused(QChar c);
    // The text without the refused characters, GS as its sign.
    static QString cleaned(const QString& text);

    // What the field's own key and text handling tell of the scan: a
    // character refused, a character kept.
    void noteRefused() { m_refusedInScan = true; }
    void noteKept() { m_keptInScan = true; }
    // The text as the field last showed it (before the change being validated).
    const QString& shownText() const { return m_shownText; }

signals:
    void enterPressed();
    void refusedScanEntered();
    void clicked();
    void doubleClicked();
    // Focus moves inside the window; a window being activated or left is no
    // move from one field to another and raises nothing.
    void focusEntered();
    void focusLeft();
    void functionKeyPressed(int key);   // Qt::Key_F1 .. Qt::Key_F12

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    // Notes what a text about to be put in brings: characters kept, refused.
    void noteIncoming(const QString& text);
    void startScan();
    bool m_refusedInScan = false;
    bool m_keptInScan = false;
    QString m_shownText;
};
