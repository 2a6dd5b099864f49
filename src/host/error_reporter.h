#pragma once
// The component's shared error reporter: shows the description in a message
// box titled "Velto提示" through the host's message display. Never throws.
#include <QString>

class QWidget;

void ReportError(long number, const QString& description, QWidget* parent = nullptr);
// The host's message display for a plain description (same box).
void ShowHostMessage(const QString& description, QWidget* parent = nullptr);

// The language lookup installs itself here so that the box title is translated.
void SetMessageTranslator(QString (*translate)(const QString&));
QString TranslateForDisplay(const QString& text);

inline const QString VeltoTitle = QStringLiteral("Velto提示");
