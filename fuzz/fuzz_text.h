#pragma once
// Fuzz input as text: the bytes read as UTF-8, as a scanner or a host would hand them over.
#include <QString>
#include <cstddef>
#include <cstdint>

inline QString fuzzText(const uint8_t* data, size_t size)
{
    return QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
}

#define FUZZ_CHECK(cond)                                                           \
    do {                                                                           \
        if (!(cond)) {                                                             \
            fprintf(stderr, "check failed: %s (%s:%d)\n", #cond, __FILE__, __LINE__); \
            abort();                                                               \
        }                                                                          \
    } while (0)
