// The verdict text: passed exactly when nothing is off, the order code
// always leads the text unless it holds one of the replaced words itself,
// and every count that is off is named with its number.
#include "fuzz_text.h"
#include "station/verdict.h"
#include <cstdio>
#include <cstdlib>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 12)
        return 0;
    qint32 counts[3];
    std::memcpy(counts, data, sizeof counts);
    const QString code = fuzzText(data + 12, size - 12);
    const VerdictText v = ComposeVerdict(code, counts[0], counts[1], counts[2]);
    FUZZ_CHECK(v.success == (counts[0] == 0 && counts[1] == 0 && counts[2] == 0));
    // A code that holds a word of the verdict itself is not checked for it.
    bool plainCode = !code.contains(QLatin1Char(',')) && !code.contains(QStringLiteral("0件"));
    for (const char* word : {"异常", "通过", "超出", "缺少", "误拣"})
        plainCode = plainCode && !code.contains(QString::fromUtf8(word));
    if (plainCode)
        FUZZ_CHECK(v.text.startsWith(code));
    if (!v.success && plainCode)
        FUZZ_CHECK(v.text.contains(QStringLiteral("异常")));
    // Every count that is off is named with its number; the wrong-goods part
    // is always there, zero included.
    const auto part = [](const char* word, qint32 n) {
        return QString::fromUtf8(word) + QString::number(n) + QStringLiteral("件");
    };
    if (counts[0] != 0)
        FUZZ_CHECK(v.text.contains(part("超出", counts[0])));
    if (counts[1] != 0)
        FUZZ_CHECK(v.text.contains(part("缺少", counts[1])));
    FUZZ_CHECK(v.text.contains(part("误拣", counts[2])));
    if (plainCode && counts[0] == 0)
        FUZZ_CHECK(!v.text.contains(QStringLiteral("超出")));
    if (plainCode && counts[1] == 0)
        FUZZ_CHECK(!v.text.contains(QStringLiteral("缺少")));
    return 0;
}
