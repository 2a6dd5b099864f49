#pragma once
// A station on its own copy of the demo database, the session's property string
// published for this process, message boxes and sounds recorded.
#include "demo/demo_database.h"
#include "host/lang_info.h"
#include "host/object_factory.h"
#include "host/platform.h"
#include "sql/sql_engine.h"
#include "sql/text_collation.h"
#include "orderdata/order_goods.h"
#include "session/host_session.h"
#include "session/language.h"
#include "station/frm_pickig_goods.h"
#include "station/scan_line_edit.h"
#include "support/demo_database_fixture.h"
#include "support/host_doubles.h"
#include "support/station_controls.h"
#include <QApplication>
#include <QAtomicInt>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>

// A server that refuses the picking status and the delivery.
class FailingSaveData : public ISaveData {
public:
    void SavePickingGoods(const GoodsRecord&) override { throw HostError(HostErrors::Database, QStringLiteral("保存失败")); }
    void UpdateDeliveryData(const QString&, qint64) override { throw HostError(HostErrors::Database, QStringLiteral("发货失败")); }
};

class StationFormTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        m_db = m_dir.filePath(QStringLiteral("station.db"));
        ASSERT_TRUE(QFile::copy(pristineDemo(), m_db));
        QFile::setPermissions(m_db, QFile::ReadOwner | QFile::WriteOwner);
        SetHostLanguageCode(QStringLiteral("chs"));
        ResetLanguageCache();
        ResetHostSession();
        publishUser(1);
        recordBoxesAndSounds(m_rec);
    }

    void TearDown() override
    {
        m_form.reset();
        SqlEngine::closeAll();
        RestoreBuiltInServerObjects();
        ResetSessionState();
        ResetHostSession();
        ResetLanguageCache();
    }

    void publishUser(int userId)
    {
        CreateServerObjectAs<IShareProps>(ProgIds::ShareProps)
            ->SetProperty(CurrentProcessId(), QStringLiteral("PropsString"), DemoPropsString(m_db, userId));
    }

    // A new station, shown and active, as the host opens it.
    frmPickigGoods* openStation()
    {
        m_form = std::make_unique<frmPickigGoods>();
        m_form->show();
        m_form->activateWindow();
        QApplication::setActiveWindow(m_form.get());
        QApplication::processEvents();
        return m_form.get();
    }

    // Closes the station as the window's close button does; true when it closed.
    bool closeStation()
    {
        const bool closed = m_form->close();
        QApplication::processEvents();
        return closed;
    }

    // Focus, select, type key by key (and Enter: what a scanner does).
    static void typeInto(QLineEdit* field, const QString& text)
    {
        field->setFocus(Qt::OtherFocusReason);
        QApplication::processEvents();
        field->selectAll();
        QTest::keyClicks(field, text);
    }
    static void scanInto(QLineEdit* field, const QString& text)
    {
        typeInto(field, text);
        QTest::keyClick(field, Qt::Key_Return);
        QApplication::processEvents();
    }

    QString barcodeOf(int itemId) const
    {
        return dbValue(QStringLiteral("SELECT FBarCode FROM t_Barcode WHERE FItemID = ? ORDER BY FID"), {itemId}).toString();
    }

    void scanGoods(frmPickigGoods* form, int itemId) const { scanInto(controls(form).TxtItemID, barcodeOf(itemId)); }

    void dbExec(const QString& sql, const QVariantList& params = {}) const { dbValue(sql, params); }
    // The first column of the statement's first row, on a connection of its own.
    QVariant dbValue(const QString& sql, const QVariantList& params = {}) const
    {
        static QAtomicInt counter;
        const QString name = QStringLiteral("station_fixture_%1").arg(counter.fetchAndAddRelaxed(1));
        QVariant value;
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
            db.setDatabaseName(m_db);
            EXPECT_TRUE(db.open()) << db.lastError().text().toStdString();
            RegisterTextCollation(db);
            QSqlQuery q(db);
            EXPECT_TRUE(q.prepare(sql)) << q.lastError().text().toStdString();
            for (const QVariant& p : params)
                q.addBindValue(p);
            EXPECT_TRUE(q.exec()) << q.lastError().text().toStdString() << " in " << sql.toStdString();
            if (q.next())
                value = q.value(0);
        }
        QSqlDatabase::removeDatabase(name);
        return value;
    }

    // The picking status and picker of an order, as "status/picker".
    QString pickingOf(const QString& uniqueCode) const
    {
        return dbValue(QStringLiteral("SELECT IFNULL(FPIckingGoodsStatus,'null') || '/' || IFNULL(FPickingGoodMan,'null') "
                                      "FROM IC_Web2ERPOrders WHERE FUniqueCode = ?"),
                       {uniqueCode})
            .toString();
    }

    QStringList boxTexts() const { return m_rec->texts(); }

    QTemporaryDir m_dir;
    QString m_db;
    std::shared_ptr<HostRecorder> m_rec = std::make_shared<HostRecorder>();
    std::unique_ptr<frmPickigGoods> m_form;
};
