// The built-in language objects with the compiled translations beside the
// component, and the translation sources themselves.
#include "host_fakes.h"
#include "host/host_error.h"
#include "host/lang_info.h"
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMap>
#include <QXmlStreamReader>

namespace {

class LanguageResources : public HostFixture {
protected:
    void TearDown() override
    {
        SetHostLanguageCode(QStringLiteral("chs"));
        HostFixture::TearDown();
    }
};

struct TsFile {
    QString language;
    QMap<QString, QString> finished;   // source -> translation
    QStringList problems;
};

TsFile readTs(const QString& path)
{
    TsFile ts;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        ts.problems << QStringLiteral("cannot open %1").arg(path);
        return ts;
    }
    QXmlStreamReader xml(&file);
    QString context, source;
    while (!xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement())
            continue;
        if (xml.name() == QLatin1String("TS")) {
            ts.language = xml.attributes().value(QLatin1String("language")).toString();
        } else if (xml.name() == QLatin1String("name")) {
            context = xml.readElementText();
        } else if (xml.name() == QLatin1String("source")) {
            source = xml.readElementText();
        } else if (xml.name() == QLatin1String("translation")) {
            const QString type = xml.attributes().value(QLatin1String("type")).toString();
            const QString text = xml.readElementText();
            if (context != QLatin1String("RnINDUSTRY"))
                ts.problems << QStringLiteral("context %1").arg(context);
            if (!type.isEmpty() || text.isEmpty())
                ts.problems << QStringLiteral("unfinished: %1").arg(source);
            if (ts.finished.contains(source))
                ts.problems << QStringLiteral("twice: %1").arg(source);
            ts.finished.insert(source, text);
        }
    }
    if (xml.hasError())
        ts.problems << xml.errorString();
    return ts;
}

QString translationsSource()
{
    return QFileInfo(QStringLiteral(__FILE__)).absolutePath() + QStringLiteral("/../../translations/");
}

} // namespace

TEST_F(LanguageResources, TranslationSourcesAreCompleteAndAgree)
{
    const TsFile en = readTs(translationsSource() + QStringLiteral("RnINDUSTRY_en.ts"));
    const TsFile cht = readTs(translationsSource() + QStringLiteral("RnINDUSTRY_cht.ts"));
    const TsFile chs = readTs(translationsSource() + QStringLiteral("RnINDUSTRY_chs.ts"));
    EXPECT_TRUE(en.problems.isEmpty()) << en.problems.join('\n').toStdString();
    EXPECT_TRUE(cht.problems.isEmpty()) << cht.problems.join('\n').toStdString();
    EXPECT_TRUE(chs.problems.isEmpty()) << chs.problems.join('\n').toStdString();
    EXPECT_EQ(en.finished.keys(), cht.finished.keys());

    // The texts the station shows, one from each kind of place.
    for (const char* text : {"通过", "异常", "超出", "缺少", "误拣", "件", "拣货超量", "非本单商品",
                             "未通过，是否继续校验?", "找不到物流单号/唯一码/商品条码/序列号", "找不到物流单号/唯一码/商品条码",
                             "商品数量只能为数值！", "序列号管理", "只显示异常", "另存为", "文本文件", "拣货员", "irAmUS"}) {
        EXPECT_TRUE(en.finished.contains(QString::fromUtf8(text))) << text;
        EXPECT_TRUE(cht.finished.contains(QString::fromUtf8(text))) << text;
    }
    // Simplified Chinese only needs the keys that are not Chinese texts.
    EXPECT_EQ(chs.finished.keys(), QStringList({"irAmUS"}));
    // English must not leave Chinese behind.
    for (auto it = en.finished.cbegin(); it != en.finished.cend(); ++it) {
        for (const QChar c : it.value())
            EXPECT_FALSE(c.unicode() >= 0x4e00 && c.unicode() <= 0x9fff) << it.key().toStdString();
    }
}

TEST_F(LanguageResources, BuiltInLoaderTranslatesFromTheCompiledFiles)
{
    ASSERT_TRUE(QFile::exists(ComponentFolder() + QStringLiteral("translations/RnINDUSTRY_en.qm")))
        << ComponentFolder().toStdString();
    SetHostLanguageCode(QStringLiteral("en"));
    EXPECT_EQ(GetLanguageID(), 2);
    EXPECT_EQ(LoadString(QStringLiteral(" 拣货员 ")), " Picker ");
    EXPECT_EQ(LoadString(QStringLiteral("不在词典里")), "不在词典里");
    EXPECT_EQ(LoadResKey(QStringLiteral("irAmUS")), "Order ");
    EXPECT_EQ(ExpandMessage(QStringLiteral("~$~拣货超量^|^: ^|^12")), "Over-picked: 12");

    ResetLanguageCache();
    SetHostLanguageCode(QStringLiteral("cht"));
    EXPECT_EQ(LoadString(QStringLiteral("此单已校验通过")), "此單已校驗通過");
    EXPECT_EQ(LoadResKey(QStringLiteral("irAmUS")), "訂單");

    ResetLanguageCache();
    SetHostLanguageCode(QString());             // nothing given: simplified Chinese
    EXPECT_EQ(HostLanguageCode(), "chs");
    EXPECT_EQ(LoadString(QStringLiteral("拣货员")), "拣货员");
    EXPECT_EQ(LoadResKey(QStringLiteral("irAmUS")), "订单");

    // A language without a file: every lookup falls back to the text.
    ResetLanguageCache();
    auto loader = CreateServerObjectAs<IResLoader>(ProgIds::ResLoader);
    loader->setLanguageID(QStringLiteral("xx"));
    EXPECT_THROW(loader->LoadString(QStringLiteral("拣货员")), HostError);
    loader->setLanguageID(QStringLiteral("en"));
    EXPECT_EQ(loader->LoadString(QStringLiteral("拣货员")), "Picker");
    loader->setResDirectory(QDir::tempPath() + QStringLiteral("/no-such-folder"));
    EXPECT_THROW(loader->LoadString(QStringLiteral("拣货员")), HostError);
}

TEST_F(LanguageResources, BuiltInFontLoaderKeepsSizesAndWeights)
{
    QWidget form;
    auto* title = new QLabel(QStringLiteral("拣货员"), &form);
    QFont big = title->font();
    big.setPointSize(20);
    big.setBold(true);
    title->setFont(big);
    auto* field = new QLineEdit(&form);
    const qreal fieldSize = field->font().pointSizeF();

    SetHostLanguageCode(QStringLiteral("cht"));
    EXPECT_EQ(SetFrmFont(&form), "WenQuanYi Micro Hei");
    EXPECT_EQ(QFontInfo(title->font()).family(), "WenQuanYi Micro Hei");   // installed and chosen
    EXPECT_EQ(title->font().pointSize(), 20);
    EXPECT_TRUE(title->font().bold());
    EXPECT_EQ(field->font().family(), "WenQuanYi Micro Hei");
    EXPECT_DOUBLE_EQ(field->font().pointSizeF(), fieldSize);
    EXPECT_FALSE(field->font().bold());

    ResetLanguageCache();
    SetHostLanguageCode(QStringLiteral("en"));
    SetFrmFont(&form);
    EXPECT_EQ(QFontInfo(title->font()).family(), "DejaVu Sans");
    EXPECT_EQ(title->font().pointSize(), 20);
    EXPECT_TRUE(title->font().bold());

    auto loader = CreateServerObjectAs<IFrmResLoader>(ProgIds::FrmResLoader);
    bool flag = false;
    EXPECT_THROW(loader->SetFrmFont(nullptr, QStringLiteral("en"), flag), HostError);
}
