// Message translation in English with a loader that marks what it was asked:
// blanks around a message come back as they were, composite messages keep
// their fixed fragments and look up only the marked ones, a failing loader
// gives the text back, and nothing crashes.
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

// Only the blank counts as padding, as the classic Trim sees it: a tab or a
// line break is part of the message.
qsizetype blanksInFront(const QString& s)
{
    qsizetype n = 0;
    while (n < s.size() && s[n] == QLatin1Char(' '))
        ++n;
    return n;
}

qsizetype blanksBehind(const QString& s)
{
    qsizetype n = 0;
    while (n < s.size() && s[s.size() - 1 - n] == QLatin1Char(' '))
        ++n;
    return n;
}

// What one plain message turns into through the marking loader.
QString expectedSingle(const QString& text)
{
    const qsizetype front = blanksInFront(text);
    if (front == text.size())
        return text;
    if (text.contains(QLatin1Char('!')))
        return text;   // a failed lookup gives the text as given
    const qsizetype back = blanksBehind(text);
    const QString core = text.mid(front, text.size() - front - back);
    return QString(front, QLatin1Char(' ')) + QStringLiteral("<") + core + QStringLiteral(">") + QString(back, QLatin1Char(' '));
}
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
    FUZZ_CHECK(text == original);   // only the one fixed question is ever rewritten
    if (!original.contains(QStringLiteral("^|^"))) {
        FUZZ_CHECK(result == expectedSingle(original));
        return 0;
    }
    // Composite: fixed fragments as they are, marked ones looked up alone.
    QString expected;
    for (const QString& part : original.split(QStringLiteral("^|^")))
        expected += part.startsWith(QStringLiteral("~$~")) ? expectedSingle(part.mid(3)) : part;
    FUZZ_CHECK(result == expected);
    return 0;
}
