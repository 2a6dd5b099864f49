#include "session/language.h"
#include "host/object_factory.h"
#include <QWidget>
#include <memory>

namespace {

struct LanguageState {
    qint16 languageId = 0;   // 0: the host has not been asked yet
    std::shared_ptr<IResLoader> resLoader;
    std::shared_ptr<IFrmResLoader> frmResLoader;
    bool settingFrmFont = false;
};

LanguageState& state()
{
    static LanguageState s;
    return s;
}

const QString Separator = QStringLiteral("^|^");
const QString Translatable = QStringLiteral("~$~");

// Only blanks count as padding; tabs and line breaks are part of the text.
int leadingBlanks(const QString& text)
{
    int n = 0;
    while (n < text.size() && text[n] == QLatin1Char(' '))
        ++n;
    return n;
}

int trailingBlanks(const QString& text)
{
    int n = 0;
    while (n < text.size() && text[text.size() - 1 - n] == QLatin1Char(' '))
        ++n;
    return n;
}

IResLoader& resLoader()
{
    LanguageState& s = state();
    if (!s.resLoader) {
        auto loader = CreateServerObjectAs<IResLoader>(ProgIds::ResLoader);
        loader->setResDirectory(QString());
        loader->setResFileBaseName(QStringLiteral("RnINDUSTRY"));
        loader->setLanguageID(GetLanguageCode());
        s.resLoader = std::move(loader);
    }
    return *s.resLoader;
}

} // namespace

qint16 GetLanguageID()
{
    LanguageState& s = state();
    if (s.languageId == 0) {
        qint16 id = 1;
        try {
            const QString code = CreateServerObjectAs<ILangInfo>(ProgIds::LangInfo)->CurrentLanguage();
            if (code == QLatin1String("cht"))
                id = 3;
            else if (code == QLatin1String("en"))
                id = 2;
        } catch (...) {
            // No language component: the texts stay as written.
        }
        s.languageId = id;
    }
    return s.languageId;
}

QString GetLanguageCode()
{
    switch (GetLanguageID()) {
    case 2:
        return QStringLiteral("en");
    case 3:
        return QStringLiteral("cht");
    default:
        return QStringLiteral("chs");
    }
}

QString LoadString(QString& text)
{
    if (text.contains(Separator))
        return ExpandMessage(text);
    const qint16 id = GetLanguageID();
    if (id == 1)
        return text;
    const int front = leadingBlanks(text);
    if (front == text.size())
        return text;
    const int back = trailingBlanks(text);
    QString translated;
    try {
        translated = resLoader().LoadString(text.mid(front, text.size() - front - back));
    } catch (...) {
        return text;
    }
    // Kept from the shared module as it always was: this one question is
    // rewritten in the caller's own variable for traditional Chinese.
    if (text == QStringLiteral("确定启用商业智能？") && id == 3)
        text = QStringLiteral("確定啟用商業智能？ ");
    return QString(front, QLatin1Char(' ')) + translated + QString(back, QLatin1Char(' '));
}

QString LoadString(const QString& text)
{
    QString copy = text;
    return LoadString(copy);
}

QString ExpandMessage(const QString& text)
{
    QString result;
    const QStringList parts = text.split(Separator, Qt::KeepEmptyParts, Qt::CaseSensitive);
    for (const QString& part : parts) {
        if (part.startsWith(Translatable))
            result += LoadString(part.mid(Translatable.size()));
        else
            result += part;
    }
    return result;
}

QString SetFrmFont(QWidget* form)
{
    LanguageState& s = state();
    try {
        if (!s.frmResLoader)
            s.frmResLoader = CreateServerObjectAs<IFrmResLoader>(ProgIds::FrmResLoader);
        s.settingFrmFont = true;
        const QString result = s.frmResLoader->SetFrmFont(form, GetLanguageCode(), s.settingFrmFont);
        s.settingFrmFont = false;
        return result;
    } catch (...) {
        s.settingFrmFont = false;
        return QString();
    }
}

bool IsSettingFrmFont() { return state().settingFrmFont; }

QString LoadResKey(const QString& key)
{
    try {
        return resLoader().LoadString(key);
    } catch (...) {
        return key;
    }
}

void ResetLanguageCache()
{
    LanguageState& s = state();
    s.languageId = 0;
    s.resLoader.reset();
    s.frmResLoader.reset();
    s.settingFrmFont = false;
}
