#pragma once
// The demo database for tests on real data: made once a process, and every
// test that may write gets a copy of its own.
#include "demo/demo_database.h"
#include "sql/sql_engine.h"
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

inline const QString& pristineDemo()
{
    static QTemporaryDir dir;
    static const QString file = [] {
        const QString f = dir.filePath(QStringLiteral("pristine.db"));
        CreateDemoDatabase(f);
        return f;
    }();
    return file;
}

// A fresh copy of the demo database in m_file, its property string in m_props.
class DemoDatabaseTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        m_file = m_dir.filePath(QStringLiteral("demo.db"));
        ASSERT_TRUE(QFile::copy(pristineDemo(), m_file));
        QFile::setPermissions(m_file, QFile::ReadOwner | QFile::WriteOwner);
        m_props = DemoPropsString(m_file);
    }
    void TearDown() override { SqlEngine::closeAll(); }

    QTemporaryDir m_dir;
    QString m_file;
    QString m_props;
};
