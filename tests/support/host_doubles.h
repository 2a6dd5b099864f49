#pragma once
// The host's message box, sound and language as test doubles: one recorder
// keeps what the code under test showed and played, and answers its questions.
#include "host/object_factory.h"
#include "host/server_objects.h"
#include <QList>
#include <QQueue>
#include <QStringList>
#include <memory>

struct ShownBox {
    QString text;
    int flags = 0;
    QString title;
};

struct HostRecorder {
    QList<ShownBox> boxes;
    QQueue<int> answers;      // the next answers to question boxes; Yes when empty
    QStringList voices;

    QStringList texts() const { return each(&ShownBox::text); }
    QStringList titles() const { return each(&ShownBox::title); }
    QStringList each(QString ShownBox::*field) const
    {
        QStringList all;
        for (const ShownBox& box : boxes)
            all << box.*field;
        return all;
    }
};

class RecordingBoxes : public IMessageBox {
public:
    explicit RecordingBoxes(std::shared_ptr<HostRecorder> r) : m_r(std::move(r)) {}
    int Show(QWidget*, const QString& text, int flags, const QString& title) override
    {
        m_r->boxes.append({text, flags, title});
        if ((flags & 7) == 0)
            return MsgBox::Ok;
        return m_r->answers.isEmpty() ? MsgBox::Yes : m_r->answers.dequeue();
    }

private:
    std::shared_ptr<HostRecorder> m_r;
};

class RecordingSounds : public ISound {
public:
    explicit RecordingSounds(std::shared_ptr<HostRecorder> r) : m_r(std::move(r)) {}
    void Play(const QString& fileName) override { m_r->voices << fileName; }

private:
    std::shared_ptr<HostRecorder> m_r;
};

// Registers the recording message box (and the sounds) in place of the host's.
inline std::shared_ptr<HostRecorder> recordMessageBoxes(std::shared_ptr<HostRecorder> r = std::make_shared<HostRecorder>())
{
    RegisterServerObject(ProgIds::MessageBox, [r] { return std::make_shared<RecordingBoxes>(r); });
    return r;
}

inline std::shared_ptr<HostRecorder> recordBoxesAndSounds(std::shared_ptr<HostRecorder> r = std::make_shared<HostRecorder>())
{
    recordMessageBoxes(r);
    RegisterServerObject(ProgIds::Sound, [r] { return std::make_shared<RecordingSounds>(r); });
    return r;
}

class FixedLanguage : public ILangInfo {
public:
    explicit FixedLanguage(QString code) : m_code(std::move(code)) {}
    QString CurrentLanguage() override { return m_code; }

private:
    QString m_code;
};

// The host's language fixed to code; counts how often the component is created.
inline std::shared_ptr<int> useLanguage(const QString& code)
{
    auto created = std::make_shared<int>(0);
    RegisterServerObject(ProgIds::LangInfo, [code, created] {
        ++*created;
        return std::make_shared<FixedLanguage>(code);
    });
    return created;
}
