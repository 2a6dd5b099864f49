#pragma once
// The host property string published as the host does it, and a fixture
// that puts the built-in objects and the module state back.
#include "host/object_factory.h"
#include "host/platform.h"
#include "orderdata/order_goods.h"
#include "session/host_session.h"
#include "session/language.h"
#include "support/host_doubles.h"
#include <QStringList>
#include <gtest/gtest.h>
#include <memory>

// Publishes the property string for this process, as the host does.
inline void publishProps(const QString& props)
{
    CreateServerObjectAs<IShareProps>(ProgIds::ShareProps)
        ->SetProperty(CurrentProcessId(), QStringLiteral("PropsString"), props);
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
