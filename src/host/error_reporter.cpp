#include "host/error_reporter.h"
#include "host/object_factory.h"
#include <QDebug>

void ShowHostMessage(const QString& description, QWidget* parent)
{
    try {
        auto box = CreateServerObjectAs<IMessageBox>(ProgIds::MessageBox);
        box->Show(parent, description, MsgBox::OkOnly | MsgBox::Exclamation, VeltoTitle);
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
