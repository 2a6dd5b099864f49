// The station on either engine: the embedded one, or the production path of
// QODBC and unixODBC with the SQLite ODBC driver in place of the server. Each
// run has a fresh copy of the demo database; the fixture's own reads go
// straight to the file, past both engines.
//
// The database fails under a running station on both engines alike: the file
// removed or made unreadable, locked by another program, a batch refused
// halfway. Each failure ends in one box that says what is wrong and never
// shows the password, nothing counted is lost, the connection is opened again
// on the next call and the next order passes. And a whole session through the
// ODBC path gives exactly what the embedded engine gives: the same screens
// after every step, the same rows written, the same calls to the middle tier.
#include "reliability/reliability_station.h"
#include "support/brief_file_lock.h"
#include "support/sqlite_odbc.h"
#include "support/unreadable_file.h"
#include <QFileInfo>
#include <QRegularExpression>

namespace {

const QString kSecret = QStringLiteral("St4tionSecret");

enum class StationEngine { Embedded, SqliteOdbc };

const char* engineName(StationEngine engine) { return engine == StationEngine::SqliteOdbc ? "SqliteOdbc" : "Embedded"; }

QString valueText(const QVariant& value)
{
    if (value.isNull())
        return QStringLiteral("NULL");
    return value.toString() + QLatin1Char('<') + QLatin1String(value.typeName()) + QLatin1Char('>');
}

} // namespace

class EngineStationTest : public ReliabilityStationTest {
protected:
    // Empty when the engine can run here, else why not.
    static QString unavailableReason(StationEngine engine)
    {
        return engine == StationEngine::SqliteOdbc ? SqliteOdbcUnavailableReason() : QString();
    }

    // A fresh demo database named after the engine, and the session of a
    // user on it through that engine.
    void useEngine(StationEngine engine)
    {
        m_db = m_dir.filePath(QStringLiteral("%1.db").arg(QLatin1String(engineName(engine))));
        QFile::remove(m_db);
        ASSERT_TRUE(QFile::copy(pristineDemo(), m_db));
        QFile::setPermissions(m_db, QFile::ReadOwner | QFile::WriteOwner);
        const QString props = engine == StationEngine::SqliteOdbc ? SqliteOdbcProps(m_db, 1) : DemoPropsString(m_db, 1);
        CreateServerObjectAs<IShareProps>(ProgIds::ShareProps)->SetProperty(CurrentProcessId(), QStringLiteral("PropsString"), props);
    }
};

class OdbcOutageTest : public EngineStationTest, public ::testing::WithParamInterface<StationEngine> {
protected:
    void SetUp() override
    {
        const QString reason = unavailableReason(GetParam());
        if (!reason.isEmpty())
            GTEST_SKIP() << engineName(GetParam()) << " engine not run: " << reason.toStdString();
        EngineStationTest::SetUp();
        if (HasFatalFailure())
            return;
        useEngine(GetParam());
    }

    // A session whose connect string carries a password, as a site's does.
    void publishWithPassword()
    {
        const QString props = GetParam() == StationEngine::SqliteOdbc
            ? QStringLiteral("UserID=1;ConnectString={Driver=SQLite3;Database=%1;PWD=%2};").arg(m_db, kSecret)
            : QStringLiteral("UserID=1;ConnectString={Provider=SQLite;Data Source=%1;Password=%2};").arg(m_db, kSecret);
        CreateServerObjectAs<IShareProps>(ProgIds::ShareProps)->SetProperty(CurrentProcessId(), QStringLiteral("PropsString"), props);
    }

    // The boxes since the last call, each a plain error box without the password.
    QStringList takeErrorBoxes()
    {
        QStringList texts;
        for (const ShownBox& box : m_rec->boxes) {
            EXPECT_EQ(box.title, QStringLiteral("Velto提示"));
            EXPECT_EQ(box.flags & 7, MsgBox::OkOnly);
            EXPECT_FALSE(box.text.contains(kSecret)) << box.text.toStdString();
            EXPECT_FALSE(box.text.trimmed().isEmpty());
            texts << box.text;
        }
        m_rec->boxes.clear();
        return texts;
    }

    QString storedSerials() const
    {
        return dbValue(QStringLiteral("SELECT group_concat(r, ' ') FROM (SELECT FEntryID || ':' || FSerialNumber AS r "
                                      "FROM IC_Web2ErpOrderSerial ORDER BY r)"))
            .toString();
    }
};

INSTANTIATE_TEST_SUITE_P(Engines, OdbcOutageTest, ::testing::Values(StationEngine::Embedded, StationEngine::SqliteOdbc),
                         [](const ::testing::TestParamInfo<StationEngine>& info) { return engineName(info.param); });

TEST_P(OdbcOutageTest, AFileRemovedUnreadableOrLockedIsReportedAndOpenedAgainOnTheNextCall)
{
    publishWithPassword();
    frmPickigGoods& f = open();
    scan(controls(f).TxtID, QStringLiteral("10001"));
    scan(controls(f).TxtItemID, barcodeOf(1001));
    ASSERT_EQ(controls(f).lblPickedNum->text(), QStringLiteral("1/4"));
    ASSERT_TRUE(takeErrorBoxes().isEmpty());

    // Each outage breaks the file under the station and gives back how to
    // mend it.
    using Mend = std::function<void()>;
    struct Outage {
        const char* what;
        std::function<Mend()> start;
        bool everyKind;   // a code that is no goods and an order scan fail too
        QString boxSays;  // the file's path when empty
        QString picked;   // once mended, the next goods scan counts
    };
    const QString away = m_db + QStringLiteral(".away");
    const QList<Outage> outages{
        {"removed: the open connection is let go of, no empty file is made",
         [&]() -> Mend {
             EXPECT_TRUE(QFile::rename(m_db, away));
             return [&] {
                 EXPECT_FALSE(QFileInfo::exists(m_db));
                 EXPECT_TRUE(QFile::rename(away, m_db));
             };
         },
         true, QString(), QStringLiteral("2/4")},
        {"made unreadable",
         [&]() -> Mend {
             auto unreadable = std::make_shared<UnreadableFile>(m_db);
             EXPECT_TRUE(unreadable->effective()) << unreadable->error().toStdString();
             return [unreadable]() mutable { unreadable.reset(); };
         },
         false, QString(), QStringLiteral("3/4")},
        {"held whole by another program: even reads wait, then fail",
         [&]() -> Mend {
             QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("odbc_locker"));
             other.setDatabaseName(m_db);
             EXPECT_TRUE(other.open());
             QSqlQuery lock(other);
             EXPECT_TRUE(lock.exec(QStringLiteral("BEGIN EXCLUSIVE")));
             EXPECT_TRUE(lock.exec(QStringLiteral("UPDATE t_SystemProfile SET FValue = FValue")));
             return [] {
                 {
                     QSqlDatabase other = QSqlDatabase::database(QStringLiteral("odbc_locker"), false);
                     QSqlQuery(other).exec(QStringLiteral("ROLLBACK"));
                     other.close();
                 }
                 QSqlDatabase::removeDatabase(QStringLiteral("odbc_locker"));
             };
         },
         false, QStringLiteral("locked"), QStringLiteral("4/4")},
    };
    const QString goods[] = {barcodeOf(1008), barcodeOf(1014), barcodeOf(1014)};
    for (qsizetype i = 0; i < outages.size(); ++i) {
        const Outage& o = outages[i];
        SCOPED_TRACE(o.what);
        const StationSnapshot counted = snapshot();
        Mend mend = o.start();
        scan(controls(f).TxtItemID, goods[i]);
        if (o.everyKind) {
            scan(controls(f).TxtItemID, QStringLiteral("6930000000000"));
            scan(controls(f).TxtID, QStringLiteral("10018"));
        }
        const QStringList boxes = takeErrorBoxes();
        ASSERT_EQ(boxes.size(), o.everyKind ? 3 : 1) << boxes.join(QLatin1Char('\n')).toStdString();
        for (const QString& text : boxes)
            EXPECT_TRUE(text.contains(o.boxSays.isEmpty() ? m_db : o.boxSays, Qt::CaseInsensitive)) << text.toStdString();
        EXPECT_EQ(snapshot(), counted);
        mend();
        scan(controls(f).TxtItemID, goods[i]);
        EXPECT_EQ(controls(f).lblPickedNum->text(), o.picked);
        EXPECT_TRUE(takeErrorBoxes().isEmpty());
    }
    EXPECT_TRUE(controls(f).ImgSuccess->isVisible());
    EXPECT_EQ(pickingOf(QStringLiteral("10001")), QStringLiteral("1/201"));

    // The next order: a lock that goes while the station waits for it lets
    // the scan through.
    scan(controls(f).TxtID, QStringLiteral("10018"));
    scan(controls(f).TxtItemID, barcodeOf(1002));
    {
        BriefFileLock briefly(m_db, 300);
        ASSERT_TRUE(briefly.held());
        scan(controls(f).TxtItemID, barcodeOf(1015));
    }
    EXPECT_TRUE(takeErrorBoxes().isEmpty()) << "the engine gave up without waiting for the lock";
    EXPECT_EQ(controls(f).lblPickedNum->text(), QStringLiteral("2/3"));

    // Another station writes: reads go on, the saves of the pass wait and fail.
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("odbc_writer"));
        other.setDatabaseName(m_db);
        ASSERT_TRUE(other.open());
        QSqlQuery write(other);
        ASSERT_TRUE(write.exec(QStringLiteral("BEGIN IMMEDIATE")));
        scan(controls(f).TxtItemID, barcodeOf(1018));
        EXPECT_TRUE(controls(f).ImgSuccess->isVisible());
        const QStringList boxes = takeErrorBoxes();
        EXPECT_GE(boxes.size(), 1);
        for (const QString& text : boxes)
            EXPECT_TRUE(text.contains(QStringLiteral("locked"), Qt::CaseInsensitive)) << text.toStdString();
        write.exec(QStringLiteral("ROLLBACK"));
        other.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("odbc_writer"));
    EXPECT_EQ(pickingOf(QStringLiteral("10018")), QStringLiteral("0/0"));

    // Back to normal: verified again from the start, and it lands.
    click(controls(f).CmdBtnRePick);
    for (int item : {1002, 1015, 1018})
        scan(controls(f).TxtItemID, barcodeOf(item));
    EXPECT_TRUE(takeErrorBoxes().isEmpty());
    EXPECT_EQ(pickingOf(QStringLiteral("10018")), QStringLiteral("1/201"));
}

// The serial rows of a pass are one batch: when its last insert fails, the
// deletes and inserts before it are undone too, so an order keeps its old
// rows or its new ones, never a mix or none, and it is not saved as verified.
TEST_P(OdbcOutageTest, ASerialBatchRefusedHalfwayLeavesTheRowsAsTheyWere)
{
    const QStringList serials{QStringLiteral("W1-0001"), QStringLiteral("W1-0002"), QStringLiteral("PAD-0001")};
    const QStringList again{QStringLiteral("W1-0003"), QStringLiteral("W1-0001"), QStringLiteral("PAD-0002")};
    auto refuse = [&](const QString& serial) {
        dbExec(QStringLiteral("CREATE TRIGGER refuse BEFORE INSERT ON IC_Web2ErpOrderSerial WHEN NEW.FSerialNumber = '%1' "
                              "BEGIN SELECT RAISE(ABORT, 'serial refused by the warehouse'); END")
                   .arg(serial));
    };
    // Each round passes the order once more from the start (a re-pick takes
    // back the status) and gives the boxes of the pass.
    frmPickigGoods& f = open();
    auto pass = [&](const QStringList& scans) {
        if (f.pickingState().CurrentOrderCode().isEmpty()) {
            click(controls(f).chkHaveSerial);
            scan(controls(f).TxtID, QStringLiteral("10021"));
        } else {
            click(controls(f).CmdBtnRePick);
        }
        EXPECT_EQ(pickingOf(QStringLiteral("10021")), QStringLiteral("0/0"));
        for (const QString& serial : scans)
            scan(controls(f).TxtItemID, serial);
        // The pass is the worker's to see, whatever the server took.
        EXPECT_TRUE(controls(f).ImgSuccess->isVisible());
        return takeErrorBoxes();
    };

    // The first pass: the last of three inserts is refused, no row is left.
    refuse(serials[2]);
    QStringList boxes = pass(serials);
    ASSERT_EQ(boxes.size(), 1) << boxes.join(QLatin1Char('\n')).toStdString();
    EXPECT_TRUE(boxes[0].contains(QStringLiteral("serial refused by the warehouse"))) << boxes[0].toStdString();
    EXPECT_EQ(storedSerials(), QString());
    EXPECT_EQ(pickingOf(QStringLiteral("10021")), QStringLiteral("0/0"));

    // The engine is not left inside the failed transaction: the next pass lands.
    dbExec(QStringLiteral("DROP TRIGGER refuse"));
    EXPECT_TRUE(pass(serials).isEmpty());
    const QString first = storedSerials();
    ASSERT_EQ(first, QStringLiteral("53:W1-0001 53:W1-0002 54:PAD-0001"));
    EXPECT_EQ(pickingOf(QStringLiteral("10021")), QStringLiteral("1/201"));

    // Verified again: the last insert is refused after both deletes and two
    // inserts have run.
    refuse(again[2]);
    boxes = pass(again);
    ASSERT_EQ(boxes.size(), 1) << boxes.join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(storedSerials(), first);
    EXPECT_EQ(pickingOf(QStringLiteral("10021")), QStringLiteral("0/0"));

    // Without the fault the order lands with its new rows, replaced, not added to.
    dbExec(QStringLiteral("DROP TRIGGER refuse"));
    EXPECT_TRUE(pass(again).isEmpty());
    EXPECT_EQ(storedSerials(), QStringLiteral("53:W1-0001 53:W1-0003 54:PAD-0002"));
    EXPECT_EQ(pickingOf(QStringLiteral("10021")), QStringLiteral("1/201"));
}

class OdbcSessionTest : public EngineStationTest {
protected:
    struct Session {
        QStringList screens;                        // one per step
        QStringList database;                       // what the session left in the tables it writes
        QList<HostCall> calls;                      // every call to a host object
        QString firstGoodsName;                     // of the first order, as loaded
        QString firstGoodsNameOnFile;
    };

    // What a worker sees and what the station holds after a step.
    QString screen(const QString& step)
    {
        const frmPickigGoods& f = *m_form;
        QStringList s{step,
                      QStringLiteral("order=") + f.pickingState().CurrentOrderCode(),
                      QStringLiteral("TxtID=") + controls(f).TxtID->text(),
                      QStringLiteral("TxtItemID=") + controls(f).TxtItemID->text(),
                      QStringLiteral("TxtNum=") + controls(f).TxtNum->text(),
                      QStringLiteral("TxtEmployee=") + controls(f).TxtEmployee->text(),
                      QStringLiteral("webshop=") + controls(f).txtWebshop->text(),
                      QStringLiteral("message=") + controls(f).lblMessage->text(),
                      QStringLiteral("info=") + controls(f).lblPickInfo->text(),
                      QStringLiteral("total=") + controls(f).lblOrderNum->text(),
                      QStringLiteral("picked=") + controls(f).lblPickedNum->text(),
                      QStringLiteral("counts=%1/%2/%3/%4").arg(f.pickingState().pickedNum()).arg(f.pickingState().excessNum()).arg(f.pickingState().errorNum()).arg(f.pickingState().missingNum()),
                      QStringLiteral("passed=%1").arg(controls(f).ImgSuccess->isVisible()),
                      QStringLiteral("view=") + (f.IsGridView() ? QStringLiteral("grid") : QStringLiteral("tiles")),
                      QStringLiteral("options=%1%2%3").arg(controls(f).chkBarCode->isChecked()).arg(controls(f).chkHaveSerial->isChecked()).arg(int(controls(f).chkShowText->checkState()))};
        const RecordList lines = GetGoodsLineSet();
        for (int i = 0; !lines.isNone() && i < lines.Count(); ++i) {
            const GoodsRecord line = lines.Item(i);
            QStringList entries;
            for (int k = 0; k < line.Count(); ++k)
                entries << line.KeyAt(k) + QLatin1Char('=') + valueText(line.ValueAt(k));
            s << QStringLiteral("line: ") + entries.join(QLatin1Char(' '));
        }
        for (const QString& row : controls(f).LogList1->allRowTexts())
            s << QStringLiteral("log: ") + row;
        for (const ShownBox& box : m_rec->boxes)
            s << QStringLiteral("box: %1: %2 (%3)").arg(box.title, box.text).arg(box.flags);
        s << QStringLiteral("voices: ") + m_rec->voices.join(QLatin1Char(' '));
        m_rec->boxes.clear();
        m_rec->voices.clear();
        return s.join(QLatin1Char('\n'));
    }

    // The rows the session writes; quote() tells text ('1') from numbers (1).
    QStringList databaseText() const
    {
        return {
            dbValue(QStringLiteral(
                "SELECT group_concat(r, ' ') FROM (SELECT FUniqueCode || ':' || quote(FPIckingGoodsStatus) || '/' || quote(FPickingGoodMan)"
                " || '/' || quote(FDeliveryStatus) || '/' || CASE WHEN FSendDate IS NULL THEN 'NULL'"
                " WHEN FSendDate GLOB '[0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9]T[0-9][0-9]:*' THEN 'now' ELSE quote(FSendDate) END AS r"
                " FROM IC_Web2ERPOrders ORDER BY FID)"))
                .toString(),
            dbValue(QStringLiteral(
                "SELECT group_concat(r, ' ') FROM (SELECT quote(FID) || '|' || quote(FEntryID) || '|' || quote(FSerialNumber) || '|'"
                " || quote(FBatchNo) || '|' || quote(FStockID) || '|' || quote(FStockPlace) || '|' || quote(FSerialID) || '|'"
                " || quote(FKFDate) || '|' || quote(FKFPeriod) AS r FROM IC_Web2ErpOrderSerial ORDER BY r)"))
                .toString(),
            dbValue(QStringLiteral(
                "SELECT group_concat(r, ' ') FROM (SELECT quote(FUserID) || '|' || quote(FCategory) || '|' || quote(FKey) || '|'"
                " || quote(FName) || '|' || quote(FValue) AS r FROM t_UserProfile ORDER BY r)"))
                .toString(),
        };
    }

    QString barcode(int itemId) const { return barcodeOf(itemId); }

    Session runSession(StationEngine engine)
    {
        Session session;
        useEngine(engine);
        if (HasFatalFailure())
            return session;
        m_faults.resetCounts();
        m_rec->boxes.clear();
        m_rec->voices.clear();
        auto step = [&](const QString& label, const std::function<void()>& action) {
            action();
            session.screens << screen(label);
        };

        frmPickigGoods* f = &open();
        session.screens << screen(QStringLiteral("open"));
        // goods with Chinese names, passed and sent for delivery
        step(QStringLiteral("order 10001"), [&] { scan(controls(f).TxtID, QStringLiteral("10001")); });
        if (!GetGoodsLineSet().isNone() && GetGoodsLineSet().Count() > 0) {
            session.firstGoodsName = GetGoodsLineSet().Item(0).GetValue(QStringLiteral("GoodsName")).toString();
            session.firstGoodsNameOnFile = dbValue(QStringLiteral("SELECT FName FROM t_ICItem WHERE FItemID = 1001")).toString();
        }
        for (int item : {1001, 1008, 1014, 1014})
            step(QStringLiteral("goods %1").arg(item), [&] { scan(controls(f).TxtItemID, barcode(item)); });
        // a serial order: its rows in one batch
        step(QStringLiteral("serial mode"), [&] { click(controls(f).chkHaveSerial); });
        step(QStringLiteral("order 10021"), [&] { scan(controls(f).TxtID, QStringLiteral("10021")); });
        for (const QString& serial : {QStringLiteral("W1-0001"), QStringLiteral("W1-0002"), QStringLiteral("PAD-0001")})
            step(serial, [&] { scan(controls(f).TxtItemID, serial); });
        // re-pick: the rows are replaced, not added to
        step(QStringLiteral("re-pick"), [&] { click(controls(f).CmdBtnRePick); });
        for (const QString& serial : {QStringLiteral("W1-0003"), QStringLiteral("W1-0001"), QStringLiteral("PAD-0002")})
            step(serial, [&] { scan(controls(f).TxtItemID, serial); });
        step(QStringLiteral("barcode mode"), [&] { click(controls(f).chkHaveSerial); });
        // NULLs: an item without a row, a web shop without a name, goods without barcode
        step(QStringLiteral("order 10010"), [&] { scan(controls(f).TxtID, QStringLiteral("10010")); });
        step(QStringLiteral("order 10020"), [&] { scan(controls(f).TxtID, QStringLiteral("10020")); });
        step(QStringLiteral("goods 1039"), [&] { scan(controls(f).TxtItemID, barcode(1039)); });
        // quantities, goods of another order
        step(QStringLiteral("order 10002"), [&] { scan(controls(f).TxtID, QStringLiteral("10002")); });
        step(QStringLiteral("quantity 3"), [&] { type(controls(f).TxtNum, QStringLiteral("3")); });
        step(QStringLiteral("goods 1005"), [&] { scan(controls(f).TxtItemID, barcode(1005)); });
        step(QStringLiteral("foreign goods"), [&] { scan(controls(f).TxtItemID, barcode(1013)); });
        step(QStringLiteral("goods 1016"), [&] { scan(controls(f).TxtItemID, barcode(1016)); });
        // the options are saved at the close and read back at the next start
        step(QStringLiteral("grid"), [&] { click(controls(f).chkShowText); });
        step(QStringLiteral("all goods"), [&] { click(controls(f).chkBarCode); });
        m_guard.run([&] { closeStation(); }, QStringLiteral("close"));
        session.screens << QStringLiteral("closed=%1").arg(!m_form->isVisible());
        f = &open();
        session.screens << screen(QStringLiteral("reopened"));
        step(QStringLiteral("order 10011"), [&] { scan(controls(f).TxtID, QStringLiteral("10011")); });
        step(QStringLiteral("order 10006"), [&] { scan(controls(f).TxtID, QStringLiteral("10006")); });
        m_guard.run([&] { closeStation(); }, QStringLiteral("close"));

        session.calls = m_faults.calls();
        session.database = databaseText();
        SqlEngine::closeAll();
        return session;
    }
};

TEST_F(OdbcSessionTest, AWholeSessionThroughOdbcGivesWhatTheEmbeddedEngineGives)
{
    const QString reason = unavailableReason(StationEngine::SqliteOdbc);
    if (!reason.isEmpty())
        GTEST_SKIP() << "ODBC session not run: " << reason.toStdString();

    const Session embedded = runSession(StationEngine::Embedded);
    const Session odbc = runSession(StationEngine::SqliteOdbc);

    // The embedded run is the reference: check that it is the session meant.
    ASSERT_EQ(embedded.screens.size(), odbc.screens.size());
    EXPECT_FALSE(embedded.firstGoodsName.isEmpty());
    EXPECT_EQ(embedded.firstGoodsName, embedded.firstGoodsNameOnFile);
    EXPECT_EQ(odbc.firstGoodsName, odbc.firstGoodsNameOnFile);
    EXPECT_TRUE(odbc.firstGoodsName.contains(QRegularExpression(QStringLiteral("\\p{Han}")))) << odbc.firstGoodsName.toStdString();

    // Every screen, line by line.
    for (int i = 0; i < embedded.screens.size(); ++i)
        EXPECT_EQ(odbc.screens[i], embedded.screens[i]) << "step " << i;

    // The same rows written, and the ones meant.
    EXPECT_EQ(odbc.database, embedded.database);
    ASSERT_EQ(odbc.database.size(), 3);
    for (const QString& order : {QStringLiteral("10001"), QStringLiteral("10021"), QStringLiteral("10002")})
        EXPECT_TRUE(odbc.database[0].contains(order + QStringLiteral(":1/201/1/now"))) << odbc.database[0].toStdString();
    const QStringList serialRows = odbc.database[1].split(QLatin1Char(' '));
    ASSERT_EQ(serialRows.size(), 3) << odbc.database[1].toStdString();
    EXPECT_TRUE(serialRows[0].startsWith(QStringLiteral("0|53|'W1-0001'|"))) << serialRows[0].toStdString();
    EXPECT_TRUE(serialRows[1].startsWith(QStringLiteral("0|53|'W1-0003'|"))) << serialRows[1].toStdString();
    EXPECT_TRUE(serialRows[2].startsWith(QStringLiteral("0|54|'PAD-0002'|"))) << serialRows[2].toStdString();
    EXPECT_TRUE(odbc.database[2].contains(QStringLiteral("1|'EC'|'PickGoods_chkShowText'|'chkShowText'|'1'"))) << odbc.database[2].toStdString();
    EXPECT_TRUE(odbc.database[2].contains(QStringLiteral("1|'EC'|'PickGoods_chkBarCode'|'chkBarCode'|'0'"))) << odbc.database[2].toStdString();
    ASSERT_GE(odbc.screens.size(), 3);
    const QString reopened = *std::find_if(odbc.screens.begin(), odbc.screens.end(),
                                           [](const QString& s) { return s.startsWith(QStringLiteral("reopened\n")); });
    EXPECT_TRUE(reopened.contains(QStringLiteral("\nview=grid\n"))) << reopened.toStdString();
    EXPECT_TRUE(reopened.contains(QStringLiteral("\noptions=002\n"))) << reopened.toStdString();

    // The station asked the middle tier the same things in the same order.
    ASSERT_EQ(odbc.calls.size(), embedded.calls.size());
    for (int i = 0; i < embedded.calls.size(); ++i) {
        EXPECT_EQ(odbc.calls[i].key, embedded.calls[i].key) << "call " << i;
        EXPECT_EQ(odbc.calls[i].detail, embedded.calls[i].detail) << "call " << i;
    }
}
