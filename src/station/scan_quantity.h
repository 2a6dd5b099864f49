#pragma once
// The quantity that one goods scan applies, read from TxtNum.
#include <QString>
#include <optional>

// A whole number of pieces from 1 to 32767, written in any form the numeric
// test accepts (" 3 ", "+3", "3.0", "3E0"). Anything else gives nothing: a
// fraction cannot be counted unit by unit, zero or less would count nothing
// or lower the wrongly-picked count, and a line's counts are 16-bit.
std::optional<qint32> ScanQuantity(const QString& text);

constexpr qint32 MaxScanQuantity = 32767;
