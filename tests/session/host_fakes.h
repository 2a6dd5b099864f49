#pragma once
// Test doubles of the host objects, registered through the object factory,
// and a fixture that puts the built-in objects and the module state back.
#include "host/object_factory.h"
#include "host/platform.h"
#include "orderdata/order_goods.h"
#include "session/host_session.h"
#include "session/language.h"
#include <QStringList>
#include <gtest/gtest.h>
#include <memory>

// Publishes the property string for this process, as the host does.
inline void publishProps(const QString& props)
{
    CreateServerObjectAs<IShareProps>(ProgIds::ShareProps)
        ->SetProperty(CurrentProcessId(), QStringLiteral("PropsString"), props);
}

// Message boxes shown, in order.
struct ShownBoxes {
    QStringList titles;
    QStringList texts;
};

class RecordingMessageBox : public IMessageBox {
public:
    explicit RecordingMessageBox(std::shared_ptr<ShownBoxes> log) : m_log(std::move(log)) {}
    int Show(QWidget*, const QString& text, int, const QString& title) override
    {
        m_log->titles << title;
        m_log->texts << text;
        return MsgBox::Ok;
    }

private:
    std::shared_ptr<ShownBoxes> m_log;
};

inline std::shared_ptr<ShownBoxes> recordMessageBoxes()
{
    auto log = std::make_shared<ShownBoxes>();
    RegisterServerObject(ProgIds::MessageBox, [log] { return std::make_shared<RecordingMessageBox>(log); });
    return log;
}

class FakeLangInfo : public ILangInfo {
public:
    explicit FakeLangInfo(QString code) : m_code(std::move(code)) {}
    QString CurrentLanguage() override { return m_code; }

private:
    QString m_code;
};

// Counts how often the language component is created.
inline std::shared_ptr<int> useLanguage(const QString& code)
{
    auto created = std::make_shared<int>(0);
    RegisterServerObject(ProgIds::LangInfo, [code, created] {
        ++*created;
        return std::make_shared<FakeLangInfo>(code);
    });
    return created;
}

class HostFixture : public ::testing::Test {
protected:
    void SetUp() override { resetAll(); }
    void TearDown() override { resetAll(); }

    static void resetAll()
    {
        RestoreBuiltInServerObjects();
        publishProps(QString());
        ResetHostSession();
        ResetLanguageCache();
        ResetSessionState();
        SetComponentFolder(QString());
        SetCurrentGoodsID(QString());
        SetCurrentEntryID(QString());
        SetCurrentGoodsLine(GoodsRecord::none());
    }
};
