// The database fails under a running station, on the embedded engine and on
// the production path of QODBC and unixODBC with the SQLite ODBC driver in
// place of the server: the file removed, unreadable or locked, a batch
// refused halfway. Each failure ends in one box that says what is wrong and
// never shows the password, nothing counted is lost, and once it is over the
// next call gets through. The fixture's reads go past both engines.
#include "reliability/reliability_station.h"
#include "support/brief_file_lock.h"
#include "support/sqlite_odbc.h"
#include "support/unreadable_file.h"
#include <QFileInfo>

namespace {

const QString kSecret = QStringLiteral("St4tionSecret");

// Another program on the same file, inside a transaction until it goes.
struct OtherProgram {
    OtherProgram(const QString& file, const QStringList& statements)
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other_program"));
        db.setDatabaseName(file);
        EXPECT_TRUE(db.open());
        for (const QString& sql : statements)
            EXPECT_TRUE(QSqlQuery(db).exec(sql)) << sql.toStdString();
    }
    // Closed, it rolls back what it holds.
    ~OtherProgram()
    {
        QSqlDatabase::database(QStringLiteral("other_program"), false).close();
        QSqlDatabase::removeDatabase(QStringLiteral("other_program"));
    }
};

} // namespace

// The parameter: through QODBC, or on the embedded engine.
class OdbcOutageTest : public ReliabilityStationTest, public ::testing::WithParamInterface<bool> {
protected:
    // The session of a user on the fixture's own demo database, a password
    // in its connect string as a site's has.
    void SetUp() override
    {
        if (GetParam() && !SqliteOdbcUnavailableReason().isEmpty())
            GTEST_SKIP() << "ODBC engine not run: " << SqliteOdbcUnavailableReason().toStdString();
        ReliabilityStationTest::SetUp();
        const QString props = GetParam() ? QStringLiteral("UserID=1;ConnectString={Driver=SQLite3;Database=%1;PWD=%2};")
                                         : QStringLiteral("UserID=1;ConnectString={Provider=SQLite;Data Source=%1;Password=%2};");
        publishProps(props.arg(m_db, kSecret));
    }

    // The boxes since the last call, each a plain error box without the password.
    QStringList takeErrorBoxes()
    {
        QStringList texts;
        for (const ShownBox& box : m_rec->boxes) {
            EXPECT_EQ(box.title, QStringLiteral("Velto提示"));
            EXPECT_EQ(box.flags & 7, MsgBox::OkOnly);
            EXPECT_FALSE(box.text.contains(kSecret)) << box.text.toStdString();
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

INSTANTIATE_TEST_SUITE_P(Engines, OdbcOutageTest, ::testing::Bool(),
                         [](const ::testing::TestParamInfo<bool>& info) { return info.param ? "SqliteOdbc" : "Embedded"; });

TEST_P(OdbcOutageTest, OutagesAndRefusedBatchesAreReportedAndTheStationGoesOn)
{
    frmPickigGoods& f = open();
    scan(controls(f).TxtID, QStringLiteral("10001"));
    scan(controls(f).TxtItemID, barcodeOf(1001));
    ASSERT_EQ(controls(f).lblPickedNum->text(), QStringLiteral("1/4"));
    ASSERT_TRUE(takeErrorBoxes().isEmpty());

    // Each outage breaks the file under the station while what it starts lives.
    struct Outage {
        const char* what;
        std::function<std::shared_ptr<void>()> start;
        bool everyKind;   // a code that is no goods and an order scan fail too
        QString boxSays;
    };
    const QString away = m_db + QStringLiteral(".away");
    const QList<Outage> outages{
        {"removed: the open connection is let go of, no empty file is made",
         [&] {
             EXPECT_TRUE(QFile::rename(m_db, away));
             return std::shared_ptr<void>(nullptr, [&](void*) {
                 EXPECT_FALSE(QFileInfo::exists(m_db));
                 EXPECT_TRUE(QFile::rename(away, m_db));
             });
         },
         true, m_db},
        {"made unreadable",
         [&] {
             auto unreadable = std::make_shared<UnreadableFile>(m_db);
             EXPECT_TRUE(unreadable->effective()) << unreadable->error().toStdString();
             return std::shared_ptr<void>(unreadable);
         },
         false, m_db},
        {"held whole by another program: even reads wait, then fail",
         [&] {
             const QStringList lock{QStringLiteral("BEGIN EXCLUSIVE"),
                                    QStringLiteral("UPDATE t_SystemProfile SET FValue = FValue")};
             return std::shared_ptr<void>(std::make_shared<OtherProgram>(m_db, lock));
         },
         false, QStringLiteral("locked")},
    };
    const QString goods[] = {barcodeOf(1008), barcodeOf(1014), barcodeOf(1014)};
    for (qsizetype i = 0; i < outages.size(); ++i) {
        const Outage& o = outages[i];
        SCOPED_TRACE(o.what);
        const QString counted = snapshot();
        std::shared_ptr<void> outage = o.start();
        scan(controls(f).TxtItemID, goods[i]);
        if (o.everyKind) {
            scan(controls(f).TxtItemID, QStringLiteral("6930000000000"));
            scan(controls(f).TxtID, QStringLiteral("10018"));
        }
        const QStringList boxes = takeErrorBoxes();
        ASSERT_EQ(boxes.size(), o.everyKind ? 3 : 1) << boxes.join(QLatin1Char('\n')).toStdString();
        for (const QString& text : boxes)
            EXPECT_TRUE(text.contains(o.boxSays, Qt::CaseInsensitive)) << text.toStdString();
        EXPECT_EQ(snapshot(), counted);
        outage.reset();
        // Once mended, the same scan counts.
        scan(controls(f).TxtItemID, goods[i]);
        EXPECT_EQ(controls(f).lblPickedNum->text(), QStringLiteral("%1/4").arg(i + 2));
        EXPECT_TRUE(takeErrorBoxes().isEmpty());
    }
    EXPECT_TRUE(controls(f).ImgSuccess->isVisible());
    EXPECT_EQ(pickingOf(QStringLiteral("10001")), QStringLiteral("1/201"));

    // A serial order: a lock that goes while the station waits for it lets
    // the scan through.
    click(controls(f).chkHaveSerial);
    scan(controls(f).TxtID, QStringLiteral("10021"));
    scan(controls(f).TxtItemID, QStringLiteral("W1-0001"));
    {
        BriefFileLock briefly(m_db, 300);
        ASSERT_TRUE(briefly.held());
        scan(controls(f).TxtItemID, QStringLiteral("W1-0002"));
    }
    EXPECT_TRUE(takeErrorBoxes().isEmpty()) << "the engine gave up without waiting for the lock";
    EXPECT_EQ(controls(f).lblPickedNum->text(), QStringLiteral("2/3"));

    // Another station writes: reads go on, the saves of the pass wait and fail.
    {
        OtherProgram writer(m_db, {QStringLiteral("BEGIN IMMEDIATE")});
        scan(controls(f).TxtItemID, QStringLiteral("PAD-0001"));
        const QStringList boxes = takeErrorBoxes();
        EXPECT_GE(boxes.size(), 1);
        for (const QString& text : boxes)
            EXPECT_TRUE(text.contains(QStringLiteral("locked"), Qt::CaseInsensitive)) << text.toStdString();
    }
    EXPECT_EQ(pickingOf(QStringLiteral("10021")), QStringLiteral("0/0"));
    EXPECT_EQ(storedSerials(), QString());

    // Each pass again follows a re-pick, which takes back the status; the
    // pass is the worker's to see, whatever the server took.
    auto passAgain = [&](const QStringList& serials) {
        click(controls(f).CmdBtnRePick);
        EXPECT_EQ(pickingOf(QStringLiteral("10021")), QStringLiteral("0/0"));
        for (const QString& serial : serials)
            scan(controls(f).TxtItemID, serial);
        EXPECT_TRUE(controls(f).ImgSuccess->isVisible());
        return takeErrorBoxes();
    };
    EXPECT_TRUE(passAgain({QStringLiteral("W1-0001"), QStringLiteral("W1-0002"), QStringLiteral("PAD-0001")}).isEmpty());
    EXPECT_EQ(pickingOf(QStringLiteral("10021")), QStringLiteral("1/201"));
    const QString first = storedSerials();
    ASSERT_EQ(first, QStringLiteral("53:W1-0001 53:W1-0002 54:PAD-0001"));

    // The serial rows of a pass are one batch: when its last insert is
    // refused, after both deletes and two inserts have run, all of it is
    // undone, and the order is not saved as verified.
    const QStringList again{QStringLiteral("W1-0003"), QStringLiteral("W1-0001"), QStringLiteral("PAD-0002")};
    dbExec(QStringLiteral("CREATE TRIGGER refuse BEFORE INSERT ON IC_Web2ErpOrderSerial WHEN NEW.FSerialNumber = 'PAD-0002' "
                          "BEGIN SELECT RAISE(ABORT, 'serial refused by the warehouse'); END"));
    const QStringList boxes = passAgain(again);
    ASSERT_EQ(boxes.size(), 1) << boxes.join(QLatin1Char('\n')).toStdString();
    EXPECT_TRUE(boxes[0].contains(QStringLiteral("serial refused by the warehouse"))) << boxes[0].toStdString();
    EXPECT_EQ(storedSerials(), first);
    EXPECT_EQ(pickingOf(QStringLiteral("10021")), QStringLiteral("0/0"));

    // The engine is not left inside the failed transaction: without the fault
    // the order lands with its new rows, replaced, not added to.
    dbExec(QStringLiteral("DROP TRIGGER refuse"));
    EXPECT_TRUE(passAgain(again).isEmpty());
    EXPECT_EQ(storedSerials(), QStringLiteral("53:W1-0001 53:W1-0003 54:PAD-0002"));
    EXPECT_EQ(pickingOf(QStringLiteral("10021")), QStringLiteral("1/201"));
}
