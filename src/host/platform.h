#pragma once
// Small platform services the component relies on: its own folder, the
// process id, the numeric test and the Trim of the classic runtime and the
// twips scale.
#include <QString>

// The component's folder (the folder of the loaded library), with a trailing '/'.
QString ComponentFolder();
// Overrides the component's folder (tests, installed layouts); empty restores it.
void SetComponentFolder(const QString& folder);
// The component's folder followed by a name written the system's way, with
// backslashes ("\voice\Error.wav"), as a native path.
QString ComponentPath(const QString& backslashName);
// Turns a path written with backslashes into a path with '/'.
QString NativePath(const QString& path);

qint64 CurrentProcessId();

// The numeric test of the classic runtime as far as this system relies on it:
// leading and trailing blanks (spaces, tabs), one sign, digits with at most one
// decimal point, and an exponent (E or D, optional sign, digits) are accepted;
// at least one digit is needed in front of the exponent. Empty or blank text,
// letters, thousands separators and hexadecimal forms are refused.
bool IsNumeric(const QString& text);

// The classic Trim: blanks (spaces) only; tabs and line breaks are text.
QString TrimBlanks(const QString& text);

// Twips to device pixels: 15 twips per pixel at 96 dpi, scaled by the screen's
// logical dpi.
int TwipsToPixels(int twips);
int PixelsToTwips(int pixels);
