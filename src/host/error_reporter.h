#pragma once
// The component's shared error reporter: shows the description in a message
// box titled "Velto提示" through the host's message display. Never throws.
#include "host/host_error.h"
#include <QString>
#include <exception>

class QWidget;

void ReportError(long number, const QString& description, QWidget* parent = nullptr);
// The host's message display for a plain description (same box).
void ShowHostMessage(const QString& description, QWidget* parent = nullptr);

// The box's name, shown as it is in every language: it is no message text.
inline const QString VeltoTitle = QStringLiteral("Velto提示");

// Where a handler ends: its work runs, and any error it raises goes to the
// error box instead of the event loop or the host. The station keeps what it
// had reached. False when the work failed.
template <class Work>
bool ReportingErrors(QWidget* parent, Work&& work) noexcept
{
    try {
        work();
        return true;
    } catch (const HostError& e) {
        ReportError(e.number(), e.description(), parent);
    } catch (const std::exception& e) {
        ReportError(0, QString::fromLocal8Bit(e.what()), parent);
    } catch (...) {
        ReportError(0, QStringLiteral("Unknown error"), parent);
    }
    return false;
}
