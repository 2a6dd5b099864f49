// The loose plain-text reader: never crashes, and what it returns is a
// piece of the string that holds no separator.
#include "fuzz_text.h"
#include "host/object_factory.h"
#include "host/platform.h"
#include "session/host_session.h"
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString all = fuzzText(data, size);
    // First line: the key asked for; the rest: the property string.
    const int cut = all.indexOf(QLatin1Char('\n'));
    const QString key = cut < 0 ? QStringLiteral("UserID") : all.left(cut);
    const QString props = cut < 0 ? all : all.mid(cut + 1);
    CreateServerObjectAs<IShareProps>(ProgIds::ShareProps)->SetProperty(CurrentProcessId(), QStringLiteral("PropsString"), props);
    const QString value = FindPropValue(key);
    FUZZ_CHECK(!value.contains(QLatin1Char(';')));
    FUZZ_CHECK(value.isEmpty() || (props + QLatin1Char(';')).contains(value));
    return 0;
}
