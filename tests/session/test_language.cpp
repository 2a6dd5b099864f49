// The session's language: the host's code, the built-in loaders with the
// compiled translations beside the component, and the translation sources.
#include "host_fakes.h"
#include "host/lang_info.h"
#include <QFile>
#include <QFileInfo>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMap>
#include <QXmlStreamReader>

namespace {

class Language : public HostFixture {
protected:
    void TearDown() override
    {
        SetHostLanguageCode(QStringLiteral("chs"));
        HostFixture::TearDown();
    }
    // The host speaks code from now on, as at the start of a session.
    static void speak(const QString& code)
    {
        ResetLanguageCache();
        SetHostLanguageCode(code);
    }
};

struct TsFile {
    QMap<QString, QString> finished;   // source -> translation
    QStringList problems;
};

TsFile readTs(const QString& language)
{
    const QString here = QFileInfo(QStringLiteral(__FILE__)).absolutePath() + QStringLiteral("/../..");
    const QString sources = qEnvironmentVariable("RNW_SOURCE_DIR", here);
    TsFile ts;
    QFile file(sources + QStringLiteral("/translations/RnINDUSTRY_%1.ts").arg(language));
    if (!file.open(QIODevice::ReadOnly))
        ts.problems << QStringLiteral("cannot open %1").arg(file.fileName());
    QXmlStreamReader xml(&file);
    QString context, source;
    while (file.isOpen() && !xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement())
            continue;
        if (xml.name() == QLatin1String("name")) {
            context = xml.readElementText();
        } else if (xml.name() == QLatin1String("source")) {
            source = xml.readElementText();
        } else if (xml.name() == QLatin1String("translation")) {
            const bool unfinished = !xml.attributes().value(QLatin1String("type")).isEmpty();
            const QString text = xml.readElementText();
            const bool twice = ts.finished.contains(source);
            if (context != QLatin1String("RnINDUSTRY") || unfinished || text.isEmpty() || twice)
                ts.problems << context + QLatin1Char('/') + source;
            ts.finished.insert(source, text);
        }
    }
    if (xml.hasError())
        ts.problems << xml.errorString();
    return ts;
}

} // namespace

TEST_F(Language, TheHostsCodeChoosesTheLanguage)
{
    // The host's codes are lower case; nothing given, or no component, means simplified Chinese.
    const struct {
        const char* code;
        int id;
        const char* used;
    } codes[] = {{"en", 2, "en"}, {"cht", 3, "cht"}, {"EN", 1, "chs"}, {"chs", 1, "chs"}, {"", 1, "chs"}};
    for (const auto& c : codes) {
        speak(QString::fromLatin1(c.code));
        EXPECT_EQ(GetLanguageID(), c.id) << c.code;
        EXPECT_EQ(GetLanguageCode(), QString::fromLatin1(c.used)) << c.code;
    }
    speak(QStringLiteral("en"));
    RegisterServerObject(ProgIds::LangInfo, nullptr);
    EXPECT_EQ(GetLanguageCode(), "chs");
}

TEST_F(Language, TextsAndMarkedFragmentsAreTranslatedBlanksKept)
{
    speak(QStringLiteral("en"));
    EXPECT_EQ(LoadString(QStringLiteral(" 拣货员 ")), " Picker ");
    // No translation, or nothing but blanks: the text comes back as given.
    for (const QString& text : {QStringLiteral(" 不在词典里 "), QStringLiteral("   "), QString()})
        EXPECT_EQ(LoadString(text), text);
    EXPECT_EQ(LoadResKey(QStringLiteral("irAmUS")), "Order ");
    EXPECT_EQ(LoadResKey(QStringLiteral("noSuchKey")), "noSuchKey");
    // Of a message only the parts marked ~$~ are looked up.
    EXPECT_EQ(LoadString(QStringLiteral("~$~拣货超量^|^: ^|^12")), "Over-picked: 12");
    EXPECT_EQ(ExpandMessage(QStringLiteral("拣货超量^|^: ^|^12")), "拣货超量: 12");
    EXPECT_EQ(ExpandMessage(QStringLiteral("a^|^^|^b^|^")), "ab");
    EXPECT_EQ(ExpandMessage(QStringLiteral("~$~ 拣货超量 ^|^~$~")), " Over-picked ");
    EXPECT_EQ(ExpandMessage(QStringLiteral("x~$~拣货超量^|^~$~未知")), "x~$~拣货超量未知");
    // The one fixed question is rewritten in the caller's text, in traditional Chinese only.
    const QString fixed = QStringLiteral("确定启用商业智能？");
    QString question = fixed;
    EXPECT_EQ(LoadString(question), "Enable business intelligence?");
    EXPECT_EQ(question, fixed);

    speak(QStringLiteral("cht"));
    EXPECT_EQ(LoadString(QStringLiteral("此单已校验通过")), "此單已校驗通過");
    EXPECT_EQ(LoadResKey(QStringLiteral("irAmUS")), "訂單");
    EXPECT_EQ(LoadString(question), "確定啟用商業智能？");
    EXPECT_EQ(question, QStringLiteral("確定啟用商業智能？ "));

    // Simplified Chinese: the texts as written, keys still looked up.
    speak(QStringLiteral("chs"));
    EXPECT_EQ(LoadString(QStringLiteral("  拣货超量  ")), "  拣货超量  ");
    EXPECT_EQ(ExpandMessage(QStringLiteral("~$~拣货超量^|^: ^|^12")), "拣货超量: 12");
    EXPECT_EQ(LoadResKey(QStringLiteral("irAmUS")), "订单");

    // No loader: untranslated, and a failed lookup leaves the caller's text alone.
    speak(QStringLiteral("cht"));
    RegisterServerObject(ProgIds::ResLoader, nullptr);
    question = fixed;
    EXPECT_EQ(LoadString(question), fixed);
    EXPECT_EQ(question, fixed);
}

TEST_F(Language, TranslationSourcesAreCompleteAndAgree)
{
    const TsFile en = readTs(QStringLiteral("en"));
    const TsFile cht = readTs(QStringLiteral("cht"));
    const TsFile chs = readTs(QStringLiteral("chs"));
    for (const TsFile* ts : {&en, &cht, &chs})
        EXPECT_TRUE(ts->problems.isEmpty()) << ts->problems.join('\n').toStdString();
    EXPECT_EQ(en.finished.keys(), cht.finished.keys());
    // The texts the station shows, one from each kind of place.
    for (const char* text : {"通过", "异常", "超出", "缺少", "误拣", "件", "拣货超量", "非本单商品",
                             "未通过，是否继续校验?", "找不到物流单号/唯一码/商品条码/序列号", "找不到物流单号/唯一码/商品条码",
                             "商品数量只能为数值！", "序列号管理", "只显示异常", "另存为", "文本文件", "拣货员", "irAmUS"})
        EXPECT_TRUE(en.finished.contains(QString::fromUtf8(text))) << text;
    // Simplified Chinese only needs the keys that are not Chinese texts.
    EXPECT_EQ(chs.finished.keys(), QStringList({"irAmUS"}));
    // English must not leave Chinese behind.
    for (auto it = en.finished.cbegin(); it != en.finished.cend(); ++it) {
        for (const QChar c : it.value())
            EXPECT_FALSE(c.unicode() >= 0x4e00 && c.unicode() <= 0x9fff) << it.key().toStdString();
    }
}

TEST_F(Language, BuiltInFontLoaderKeepsSizesAndWeights)
{
    QWidget form;
    auto* title = new QLabel(QStringLiteral("拣货员"), &form);
    QFont big = title->font();
    big.setPointSize(20);
    big.setBold(true);
    title->setFont(big);
    auto* field = new QLineEdit(&form);
    const qreal fieldSize = field->font().pointSizeF();

    speak(QStringLiteral("cht"));
    EXPECT_EQ(SetFrmFont(&form), "WenQuanYi Micro Hei");
    EXPECT_EQ(QFontInfo(title->font()).family(), "WenQuanYi Micro Hei");   // installed and chosen
    EXPECT_EQ(title->font().pointSize(), 20);
    EXPECT_TRUE(title->font().bold());
    EXPECT_EQ(field->font().family(), "WenQuanYi Micro Hei");
    EXPECT_DOUBLE_EQ(field->font().pointSizeF(), fieldSize);
    EXPECT_FALSE(field->font().bold());

    speak(QStringLiteral("en"));
    SetFrmFont(&form);
    EXPECT_EQ(QFontInfo(title->font()).family(), "DejaVu Sans");
    EXPECT_EQ(title->font().pointSize(), 20);
    EXPECT_TRUE(title->font().bold());
    // A failed call answers nothing and leaves no call marked as running.
    EXPECT_EQ(SetFrmFont(nullptr), "");
    EXPECT_FALSE(IsSettingFrmFont());
}
