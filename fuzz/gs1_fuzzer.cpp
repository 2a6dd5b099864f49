// GS1 element strings: any text reads without a crash; a text that is no
// element string carries no error; one that reads formats to a string that
// reads to the same fields, and formats again to itself.
#include "fuzz_text.h"
#include "station/gs1_element_string.h"
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString scan = fuzzText(data, size);
    const Gs1ElementString parsed = ParseGs1ElementString(scan);
    if (!parsed.recognised()) {
        FUZZ_CHECK(parsed.error.isEmpty() && parsed.elements.isEmpty());
        return 0;
    }
    if (!parsed.ok()) {
        FUZZ_CHECK(parsed.elements.isEmpty());
        return 0;
    }
    FUZZ_CHECK(!parsed.elements.isEmpty());
    const QString transmitted = FormatGs1Transmitted(parsed.elements);
    const Gs1ElementString again = ParseGs1ElementString(transmitted);
    FUZZ_CHECK(again.ok());
    FUZZ_CHECK(again.elements == parsed.elements);
    FUZZ_CHECK(FormatGs1Transmitted(again.elements) == transmitted);
    // The human-readable form reads back unless a value holds a bracket of its own.
    bool brackets = false;
    for (const Gs1Element& e : parsed.elements)
        brackets = brackets || e.value.contains(QLatin1Char('('));
    if (!brackets) {
        const Gs1ElementString readable = ParseGs1ElementString(FormatGs1HumanReadable(parsed.elements));
        FUZZ_CHECK(readable.ok());
        FUZZ_CHECK(readable.elements == parsed.elements);
    }
    return 0;
}
