#include "host/error_reporter.h"
#include "host/object_factory.h"
#include <QDebug>

namespace {
QString (*g_translate)(const QString&) = nullptr;
}

void SetMessageTranslator(QString (*translate)(const QString&)) { g_translate = translate; }

QString TranslateForDisplay(const QString& text)
{
    if (!g_translate)
        return text;
    try {
        return g_translate(text);
    } catch (...) {
        return text;
    }
}

void ShowHostMessage(const QString& description, QWidget* parent)
{
    try {
        auto box = CreateServerObjectAs<IMessageBox>(ProgIds::MessageBox);
        box->Show(parent, description, MsgBox::OkOnly | MsgBox::Exclamation, TranslateForDisplay(VeltoTitle));
    } catch (...) {
        // The message display itself failed: the description still goes somewhere.
        qWarning().noquote() << "Velto:" << description;
    }
}

void ReportError(long number, const QString& description, QWidget* parent)
{
    Q_UNUSED(number);
    ShowHostMessage(description, parent);
}
