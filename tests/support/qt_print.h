#pragma once
// Readable failure messages for Qt texts.
#include <QString>
#include <ostream>

inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}
