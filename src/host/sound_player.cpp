// RnHost.Sound: the voice prompts, played asynchronously. One sound effect per
// file, kept for the life of the application, so a prompt starts at once the
// second time. A missing file or a machine without audio plays nothing.
#include "host/object_factory.h"
#include "host/platform.h"
#include <QCoreApplication>
#include <QFileInfo>
#include <QHash>
#include <QPointer>
#include <QSoundEffect>
#include <QUrl>

namespace {

class SoundPlayer : public ISound {
public:
    void Play(const QString& fileName) override
    {
        if (!QCoreApplication::instance())
            return;
        const QString path = ComponentPath(fileName);
        if (!QFileInfo(path).isFile())
            return;
        static QHash<QString, QPointer<QSoundEffect>> effects;
        QPointer<QSoundEffect>& effect = effects[path];
        if (!effect) {
            // Owned by the application object, so it goes before the audio system does.
            effect = new QSoundEffect(QCoreApplication::instance());
            effect->setSource(QUrl::fromLocalFile(path));
        }
        effect->stop();
        effect->play();
    }
};

const BuiltInServerObject registration(ProgIds::Sound, [] { return std::make_shared<SoundPlayer>(); });

} // namespace
