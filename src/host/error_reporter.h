#pragma once
// The component's shared error reporter: shows the description in a message
// box titled "Velto提示" through the host's message display. Never throws.
#include <QString>

class QWidget;

void ReportError(long number, const QString& description, QWidget* parent = nullptr);
// The host's message display for a plain description (same box).
void ShowHostMessage(const QString& description, QWidget* parent = nullptr);

// The box's name, shown as it is in every language: it is no message text.
inline const QString VeltoTitle = QStringLiteral("Velto提示");
