// Message translation in English with a loader that marks what it was asked:
// blanks around a message come back as they were, composite messages keep
// their fixed fragments, and nothing crashes.
#include "fuzz_text.h"
#include "host/host_error.h"
#include "host/object_factory.h"
#include "session/language.h"
#include <cstdio>
#include <cstdlib>

namespace {
struct EnglishInfo : ILangInfo {
    QString CurrentLanguage() override { return QStringLiteral("en"); }
};
struct MarkingLoader : IResLoader {
    void setResDirectory(const QString&) override {}
    void setResFileBaseName(const QString&) override {}
    void setLanguageID(const QString&) override {}
    QString LoadString(const QString& key) override
    {
        if (key.contains(QLatin1Char('!')))
            throw HostError(1, QStringLiteral("no such resource"));
        return QStringLiteral("<") + key + QStringLiteral(">");
    }
};
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const bool registered = [] {
        RegisterServerObject(ProgIds::LangInfo, [] { return std::make_shared<EnglishInfo>(); });
        RegisterServerObject(ProgIds::ResLoader, [] { return std::make_shared<MarkingLoader>(); });
        return true;
    }();
    (void)registered;

    QString text = fuzzText(data, size);
    const QString original = text;
    const QString result = LoadString(text);
    if (original.contains(QStringLiteral("^|^"))) {
        if (!original.contains(QStringLiteral("~$~")))
            FUZZ_CHECK(result == QString(original).replace(QStringLiteral("^|^"), QString()));
        return 0;
    }
    if (original.trimmed().isEmpty()) {
        FUZZ_CHECK(result == original);
        return 0;
    }
    if (original.contains(QLatin1Char('!'))) {
        FUZZ_CHECK(result == original);   // a failed lookup gives the text as given
        return 0;
    }
    const QString core = original.trimmed();
    const qsizetype front = original.indexOf(core);
    const qsizetype back = original.size() - front - core.size();
    FUZZ_CHECK(result == QString(front, QLatin1Char(' ')) + QStringLiteral("<") + core + QStringLiteral(">") + QString(back, QLatin1Char(' ')));
    return 0;
}
