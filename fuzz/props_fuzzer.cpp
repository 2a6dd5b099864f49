// The property-string grammar: never crashes, every key is non-empty, keys
// and values have no blank at either end (tabs and line breaks are kept as
// text), and the parsed set answers every key it was given.
#include "fuzz_text.h"
#include "host/host_error.h"
#include "host/props_text.h"
#include "session/host_session.h"
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString text = fuzzText(data, size);
    const auto pairs = SplitPropsText(text);
    bool duplicate = false;
    for (int i = 0; i < pairs.size(); ++i) {
        FUZZ_CHECK(!pairs[i].first.isEmpty());
        for (const QString& text : {pairs[i].first, pairs[i].second})
            FUZZ_CHECK(!text.startsWith(QLatin1Char(' ')) && !text.endsWith(QLatin1Char(' ')));
        for (int j = 0; j < i; ++j)
            duplicate = duplicate || pairs[j].first.compare(pairs[i].first, Qt::CaseInsensitive) == 0;
    }
    try {
        ParsePropsString(text);
    } catch (const HostError&) {
        FUZZ_CHECK(duplicate);
        return 0;
    }
    FUZZ_CHECK(!duplicate);
    for (const auto& p : pairs) {
        // Asked in capitals, unless capitals change the key itself (ß is SS).
        const QString upper = p.first.toUpper();
        const QString asked = upper.compare(p.first, Qt::CaseInsensitive) == 0 ? upper : p.first;
        FUZZ_CHECK(GetPropValue(asked) == p.second);
    }
    return 0;
}
