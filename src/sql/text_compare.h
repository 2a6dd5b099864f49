#pragma once
// The comparison behind the NOCASE_RTRIM collation, in one place for the
// embedded engine and for the SQLite extension that the ODBC driver loads:
// ASCII letters without regard to case, trailing blanks not counted.
#include <algorithm>

inline int CompareServerText(int lengthA, const void* textA, int lengthB, const void* textB)
{
    const auto* a = static_cast<const unsigned char*>(textA);
    const auto* b = static_cast<const unsigned char*>(textB);
    const auto fold = [](unsigned char c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : int(c); };
    while (lengthA > 0 && a[lengthA - 1] == ' ')
        --lengthA;
    while (lengthB > 0 && b[lengthB - 1] == ' ')
        --lengthB;
    const int common = std::min(lengthA, lengthB);
    for (int i = 0; i < common; ++i) {
        const int difference = fold(a[i]) - fold(b[i]);
        if (difference != 0)
            return difference;
    }
    return lengthA - lengthB;
}
