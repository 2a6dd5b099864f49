#include "host/lang_info.h"
#include "host/object_factory.h"
#include <QMutex>

namespace {

QMutex& codeMutex()
{
    static QMutex m;
    return m;
}

QString& code()
{
    static QString c = QStringLiteral("chs");
    return c;
}

class LangInfo : public ILangInfo {
public:
    QString CurrentLanguage() override { return HostLanguageCode(); }
};

const BuiltInServerObject registration(ProgIds::LangInfo, [] { return std::make_shared<LangInfo>(); });

} // namespace

void SetHostLanguageCode(const QString& languageCode)
{
    QMutexLocker lock(&codeMutex());
    code() = languageCode.isEmpty() ? QStringLiteral("chs") : languageCode;
}

QString HostLanguageCode()
{
    QMutexLocker lock(&codeMutex());
    return code();
}
