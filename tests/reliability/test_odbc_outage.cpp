// The database fails under a running station on the production engine's
// path (QODBC, unixODBC, the SQLite ODBC driver) as it does on the embedded
// engine: the file removed or made unreadable, locked by another program, a
// batch refused halfway. Each failure ends in one box that says what is
// wrong and never shows the password, nothing counted is lost, the
// connection is opened again on the next call and the next order passes.
#include "reliability/engine_station.h"
#include "support/unreadable_file.h"
#include "support/brief_file_lock.h"
#include <QFileInfo>

namespace {

const QString kSecret = QStringLiteral("St4tionSecret");

} // namespace

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

TEST_P(OdbcOutageTest, AFileRemovedOrMadeUnreadableIsReportedAndOpenedAgainOnTheNextCall)
{
    publishWithPassword();
    frmPickigGoods& f = open();
    scan(controls(f).TxtID, QStringLiteral("10001"));
    scan(controls(f).TxtItemID, barcodeOf(1001));
    const QString b1008 = barcodeOf(1008), b1014 = barcodeOf(1014);
    StationSnapshot counted = snapshot();
    ASSERT_EQ(controls(f).lblPickedNum->text(), QStringLiteral("1/4"));
    ASSERT_TRUE(takeErrorBoxes().isEmpty());

    // removed: a goods scan, a code that is no goods and an order scan each
    // end in a box naming the file; the open connection is let go of, no
    // empty file is made
    const QString away = m_db + QStringLiteral(".away");
    ASSERT_TRUE(QFile::rename(m_db, away));
    scan(controls(f).TxtItemID, b1008);
    scan(controls(f).TxtItemID, QStringLiteral("6930000000000"));
    scan(controls(f).TxtID, QStringLiteral("10018"));
    QStringList boxes = takeErrorBoxes();
    ASSERT_EQ(boxes.size(), 3) << boxes.join(QLatin1Char('\n')).toStdString();
    for (const QString& text : boxes)
        EXPECT_TRUE(text.contains(m_db)) << text.toStdString();
    EXPECT_FALSE(QFileInfo::exists(m_db));
    EXPECT_EQ(snapshot(), counted);
    ASSERT_TRUE(QFile::rename(away, m_db));
    scan(controls(f).TxtItemID, b1008);
    EXPECT_EQ(controls(f).lblPickedNum->text(), QStringLiteral("2/4"));
    EXPECT_TRUE(takeErrorBoxes().isEmpty());

    // unreadable: the same, and the same file serves again once readable
    counted = snapshot();
    {
        UnreadableFile locked(m_db);
        ASSERT_TRUE(locked.effective()) << locked.error().toStdString();
        scan(controls(f).TxtItemID, b1014);
        boxes = takeErrorBoxes();
        ASSERT_EQ(boxes.size(), 1);
        EXPECT_TRUE(boxes[0].contains(m_db)) << boxes[0].toStdString();
        EXPECT_EQ(snapshot(), counted);
    }
    scan(controls(f).TxtItemID, b1014);
    scan(controls(f).TxtItemID, b1014);
    EXPECT_TRUE(controls(f).ImgSuccess->isVisible());
    EXPECT_TRUE(takeErrorBoxes().isEmpty());
    EXPECT_EQ(pickingOf(QStringLiteral("10001")), QStringLiteral("1/201"));

    // and the next order passes
    scan(controls(f).TxtID, QStringLiteral("10018"));
    for (int item : {1002, 1015, 1018})
        scan(controls(f).TxtItemID, barcodeOf(item));
    EXPECT_TRUE(controls(f).ImgSuccess->isVisible());
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

class LockTest : public OdbcOutageTest {};

INSTANTIATE_TEST_SUITE_P(Engines, LockTest, ::testing::Values(StationEngine::Embedded, StationEngine::SqliteOdbc),
                         [](const ::testing::TestParamInfo<StationEngine>& info) { return engineName(info.param); });

TEST_P(LockTest, ALockedDatabaseIsReportedAfterTheWaitAndTheStationGoesOn)
{
    publishWithPassword();
    frmPickigGoods& f = open();
    scan(controls(f).TxtID, QStringLiteral("10018"));
    scan(controls(f).TxtItemID, barcodeOf(1002));
    const QString b1015 = barcodeOf(1015), b1018 = barcodeOf(1018);
    const StationSnapshot counted = snapshot();
    ASSERT_TRUE(takeErrorBoxes().isEmpty());

    // another program holds the whole file: even reads wait, then fail
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("odbc_locker"));
        other.setDatabaseName(m_db);
        ASSERT_TRUE(other.open());
        QSqlQuery lock(other);
        ASSERT_TRUE(lock.exec(QStringLiteral("BEGIN EXCLUSIVE")));
        ASSERT_TRUE(lock.exec(QStringLiteral("UPDATE t_SystemProfile SET FValue = FValue")));
        scan(controls(f).TxtItemID, b1015);
        const QStringList boxes = takeErrorBoxes();
        ASSERT_EQ(boxes.size(), 1);
        EXPECT_TRUE(boxes[0].contains(QStringLiteral("locked"), Qt::CaseInsensitive)) << boxes[0].toStdString();
        EXPECT_EQ(snapshot(), counted);
        lock.exec(QStringLiteral("ROLLBACK"));
        other.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("odbc_locker"));
    // a lock that goes while the station waits for it: the scan goes through
    {
        BriefFileLock briefly(m_db, 300);
        ASSERT_TRUE(briefly.held());
        scan(controls(f).TxtItemID, b1015);
    }
    EXPECT_TRUE(takeErrorBoxes().isEmpty()) << "the engine gave up without waiting for the lock";
    EXPECT_EQ(controls(f).lblPickedNum->text(), QStringLiteral("2/3"));

    // another station writes: reads go on, the saves of the pass wait and fail
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("odbc_writer"));
        other.setDatabaseName(m_db);
        ASSERT_TRUE(other.open());
        QSqlQuery write(other);
        ASSERT_TRUE(write.exec(QStringLiteral("BEGIN IMMEDIATE")));
        scan(controls(f).TxtItemID, b1018);
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

    // back to normal: verified again from the start, and it lands
    click(controls(f).CmdBtnRePick);
    for (int item : {1002, 1015, 1018})
        scan(controls(f).TxtItemID, barcodeOf(item));
    EXPECT_TRUE(takeErrorBoxes().isEmpty());
    EXPECT_EQ(pickingOf(QStringLiteral("10018")), QStringLiteral("1/201"));
}
