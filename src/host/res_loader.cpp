// RnResLoader.Loader: translations of the component's texts from Qt Linguist
// files "<folder>/translations/<base>_<language>.qm", context "RnINDUSTRY",
// keyed by the simplified-Chinese text.
#include "host/object_factory.h"
#include "host/platform.h"
#include <QTranslator>
#include <memory>

namespace {

class ResLoader : public IResLoader {
public:
    void setResDirectory(const QString& dir) override { m_dir = dir; m_translator.reset(); }
    void setResFileBaseName(const QString& name) override { m_base = name; m_translator.reset(); }
    void setLanguageID(const QString& code) override { m_language = code; m_translator.reset(); }

    QString LoadString(const QString& key) override
    {
        const QString text = translator().translate("RnINDUSTRY", key.toUtf8().constData());
        if (text.isEmpty())
            throw HostError(HostErrors::KeyNotFound, QStringLiteral("Resource not found: %1").arg(key));
        return text;
    }

private:
    QTranslator& translator()
    {
        if (!m_translator) {
            const QString folder = m_dir.isEmpty() ? ComponentFolder() + QStringLiteral("translations/") : NativePath(m_dir + QLatin1Char('/'));
            const QString file = folder + m_base + QLatin1Char('_') + m_language + QStringLiteral(".qm");
            auto translator = std::make_unique<QTranslator>();
            if (!translator->load(file))
                throw HostError(HostErrors::FileError, QStringLiteral("Resource file not found: %1").arg(file));
            m_translator = std::move(translator);
        }
        return *m_translator;
    }

    QString m_dir;
    QString m_base = QStringLiteral("RnINDUSTRY");
    QString m_language = QStringLiteral("chs");
    std::unique_ptr<QTranslator> m_translator;
};

const BuiltInServerObject registration(ProgIds::ResLoader, [] { return std::make_shared<ResLoader>(); });

} // namespace
