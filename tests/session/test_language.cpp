#include "host_fakes.h"
#include "host/error_reporter.h"
#include "host/host_error.h"
#include <QHash>
#include <QWidget>

namespace {

// What the resource loader was told and asked.
struct LoaderLog {
    int created = 0;
    QString resDirectory = QStringLiteral("unset");
    QString baseName;
    QString languageId;
    QStringList keys;
    QHash<QString, QString> dictionary;
};

class FakeResLoader : public IResLoader {
public:
    explicit FakeResLoader(std::shared_ptr<LoaderLog> log) : m_log(std::move(log)) {}
    void setResDirectory(const QString& dir) override { m_log->resDirectory = dir; }
    void setResFileBaseName(const QString& name) override { m_log->baseName = name; }
    void setLanguageID(const QString& code) override { m_log->languageId = code; }
    QString LoadString(const QString& key) override
    {
        m_log->keys << key;
        if (!m_log->dictionary.contains(key))
            throw HostError(HostErrors::KeyNotFound, key);
        return m_log->dictionary.value(key);
    }

private:
    std::shared_ptr<LoaderLog> m_log;
};

std::shared_ptr<LoaderLog> useFakeLoader()
{
    auto log = std::make_shared<LoaderLog>();
    log->dictionary = {
        {QStringLiteral("拣货超量"), QStringLiteral("Over-picked")},
        {QStringLiteral("确定启用商业智能？"), QStringLiteral("Enable BI?")},
        {QStringLiteral("Velto提示"), QStringLiteral("Velto Tip")},
        {QStringLiteral("irAmUS"), QStringLiteral("订单")},
    };
    RegisterServerObject(ProgIds::ResLoader, [log] {
        ++log->created;
        return std::make_shared<FakeResLoader>(log);
    });
    return log;
}

struct FontCall {
    int calls = 0;
    QString code;
    bool flagSeen = false;
    bool settingSeen = false;
    bool fail = false;
};

class FakeFrmResLoader : public IFrmResLoader {
public:
    explicit FakeFrmResLoader(std::shared_ptr<FontCall> log) : m_log(std::move(log)) {}
    QString SetFrmFont(QWidget*, const QString& languageCode, bool& flag) override
    {
        ++m_log->calls;
        m_log->code = languageCode;
        m_log->flagSeen = flag;
        m_log->settingSeen = IsSettingFrmFont();
        if (m_log->fail)
            throw HostError(1, QStringLiteral("font"));
        return QStringLiteral("done");
    }

private:
    std::shared_ptr<FontCall> m_log;
};

class Language : public HostFixture {};

} // namespace

TEST_F(Language, TheHostsCodeChoosesTheLanguageAndSimplifiedChineseNeedsNoLoader)
{
    // The host's codes are lower case; no component means simplified Chinese.
    const struct {
        const char* code;
        int id;
        const char* used;
    } codes[] = {{"en", 2, "en"}, {"cht", 3, "cht"}, {"EN", 1, "chs"}, {"chs", 1, "chs"}};
    for (const auto& c : codes) {
        ResetLanguageCache();
        useLanguage(QString::fromLatin1(c.code));
        EXPECT_EQ(GetLanguageID(), c.id) << c.code;
        EXPECT_EQ(GetLanguageCode(), QString::fromLatin1(c.used)) << c.code;
    }
    ResetLanguageCache();
    RegisterServerObject(ProgIds::LangInfo, nullptr);
    EXPECT_EQ(GetLanguageCode(), "chs");

    ResetLanguageCache();
    auto loader = useFakeLoader();
    auto asked = useLanguage(QStringLiteral("chs"));
    EXPECT_EQ(LoadString(QStringLiteral("  拣货超量  ")), "  拣货超量  ");
    EXPECT_EQ(ExpandMessage(QStringLiteral("~$~拣货超量^|^: ^|^12")), "拣货超量: 12");
    QString question = QStringLiteral("确定启用商业智能？");
    EXPECT_EQ(LoadString(question), "确定启用商业智能？");
    EXPECT_EQ(question, "确定启用商业智能？");
    EXPECT_EQ(loader->created, 0);
    EXPECT_EQ(*asked, 1);                       // asked once, then cached
}

TEST_F(Language, EnglishLooksUpTheTrimmedTextAndOnlyMarkedFragments)
{
    auto loader = useFakeLoader();
    useLanguage(QStringLiteral("en"));
    EXPECT_EQ(LoadString(QStringLiteral("  拣货超量  ")), "  Over-picked  ");
    EXPECT_EQ(loader->keys.last(), "拣货超量");
    EXPECT_EQ(LoadString(QStringLiteral("拣货超量 ")), "Over-picked ");
    // No translation: the text comes back as given, blanks and all.
    EXPECT_EQ(LoadString(QStringLiteral(" 未知 ")), " 未知 ");
    const int asked = loader->keys.size();
    EXPECT_EQ(LoadString(QStringLiteral("   ")), "   ");
    EXPECT_EQ(LoadString(QString()), "");
    EXPECT_EQ(loader->keys.size(), asked);      // blank texts are not looked up
    EXPECT_EQ(loader->created, 1);
    EXPECT_EQ(loader->resDirectory, "");
    EXPECT_EQ(loader->baseName, "RnINDUSTRY");
    EXPECT_EQ(loader->languageId, "en");

    EXPECT_EQ(LoadString(QStringLiteral("~$~拣货超量^|^: ^|^12")), "Over-picked: 12");
    EXPECT_EQ(ExpandMessage(QStringLiteral("拣货超量^|^: ^|^12")), "拣货超量: 12");
    EXPECT_EQ(ExpandMessage(QStringLiteral("a^|^^|^b^|^")), "ab");
    EXPECT_EQ(ExpandMessage(QStringLiteral("~$~ 拣货超量 ^|^~$~")), " Over-picked ");
    EXPECT_EQ(ExpandMessage(QStringLiteral("x~$~拣货超量^|^~$~未知")), "x~$~拣货超量未知");

    RegisterServerObject(ProgIds::ResLoader, nullptr);
    ResetLanguageCache();
    useLanguage(QStringLiteral("en"));
    EXPECT_EQ(LoadString(QStringLiteral(" 拣货超量")), " 拣货超量");   // no loader: untranslated
}

TEST_F(Language, TheFixedQuestionIsRewrittenInTheCallersTextOnlyInTraditional)
{
    auto loader = useFakeLoader();
    useLanguage(QStringLiteral("cht"));
    QString question = QStringLiteral("确定启用商业智能？");
    EXPECT_EQ(LoadString(question), "Enable BI?");
    EXPECT_EQ(question, QStringLiteral("確定啟用商業智能？ "));
    EXPECT_EQ(loader->languageId, "cht");

    // A failed lookup leaves the argument alone.
    loader->dictionary.remove(QStringLiteral("确定启用商业智能？"));
    QString again = QStringLiteral("确定启用商业智能？");
    EXPECT_EQ(LoadString(again), "确定启用商业智能？");
    EXPECT_EQ(again, "确定启用商业智能？");

    ResetLanguageCache();
    useLanguage(QStringLiteral("en"));
    loader->dictionary.insert(QStringLiteral("确定启用商业智能？"), QStringLiteral("Enable BI?"));
    QString english = QStringLiteral("确定启用商业智能？");
    EXPECT_EQ(LoadString(english), "Enable BI?");
    EXPECT_EQ(english, "确定启用商业智能？");
}

TEST_F(Language, SetFrmFontHandsTheCodeAndTheRunningFlag)
{
    auto calls = std::make_shared<FontCall>();
    RegisterServerObject(ProgIds::FrmResLoader, [calls] { return std::make_shared<FakeFrmResLoader>(calls); });
    useLanguage(QStringLiteral("cht"));
    QWidget form;
    EXPECT_FALSE(IsSettingFrmFont());
    EXPECT_EQ(SetFrmFont(&form), "done");
    EXPECT_EQ(calls->code, "cht");
    EXPECT_TRUE(calls->flagSeen);
    EXPECT_TRUE(calls->settingSeen);
    EXPECT_FALSE(IsSettingFrmFont());

    calls->fail = true;
    EXPECT_EQ(SetFrmFont(&form), "");
    EXPECT_FALSE(IsSettingFrmFont());
    EXPECT_EQ(calls->calls, 2);
}

TEST_F(Language, ErrorBoxKeepsItsTitleAndResourceKeysGoThroughTheLoader)
{
    auto loader = useFakeLoader();
    auto boxes = recordMessageBoxes();
    // The title is the box's name, no message: the same in every language.
    for (const QString& language : {QStringLiteral("en"), QStringLiteral("cht")}) {
        ResetLanguageCache();
        useLanguage(language);
        ReportError(5, QStringLiteral("x"));
        ShowHostMessage(QStringLiteral("z"));
    }
    ASSERT_EQ(boxes->titles().size(), 4);
    for (const QString& title : boxes->titles())
        EXPECT_EQ(title, QStringLiteral("Velto提示"));
    EXPECT_FALSE(loader->keys.contains(QStringLiteral("Velto提示")));
    EXPECT_EQ(boxes->texts()[0], "x");

    // A key that is no Chinese text is asked for even in simplified Chinese.
    ResetLanguageCache();
    loader->created = 0;
    useLanguage(QStringLiteral("chs"));
    ReportError(5, QStringLiteral("y"));
    EXPECT_EQ(boxes->titles()[4], VeltoTitle);
    EXPECT_EQ(loader->created, 0);
    EXPECT_EQ(LoadResKey(QStringLiteral("irAmUS")), "订单");
    EXPECT_EQ(loader->languageId, "chs");
    EXPECT_EQ(LoadResKey(QStringLiteral("noSuchKey")), "noSuchKey");
    EXPECT_EQ(loader->created, 1);
}
