// The launcher's exit codes: 2 for a malformed script line or argument, 1 for
// a database it cannot use (named, its password never shown), and problems
// met while the form opens shown in the first state line. Through the SQLite
// ODBC driver it prints and writes what the embedded engine does.
#include "support/brief_file_lock.h"
#include "support/replay_harness.h"
#include "support/sqlite_odbc.h"
#include <QFile>
#include <gtest/gtest.h>

namespace {

const QStringList kLive{QStringLiteral("--replay"), QStringLiteral("-")};

QStringList propsFor(const QString& file, const QString& extra = QString())
{
    return {QStringLiteral("--props"), QStringLiteral("UserID=1;ConnectString={Provider=SQLite;Data Source=%1%2};").arg(file, extra)};
}

} // namespace

TEST(LauncherReplay, MalformedLinesAndArgumentsEndWithCode2BeforeAnythingRuns)
{
    ReplayHarness h;
    const ReplayRun bad = h.run({"state", "", "# fine so far", "scan Nowhere 1", "state"});
    EXPECT_EQ(bad.exitCode, 2);
    EXPECT_TRUE(bad.standardError.contains(QStringLiteral("line 4"))) << bad.describe();
    EXPECT_TRUE(bad.steps.isEmpty());
    for (const char* line : {"answer maybe", "key TxtID NoSuchKey", "frobnicate", "close now"}) {
        const ReplayRun r = h.run({line});
        EXPECT_EQ(r.exitCode, 2) << line;
        EXPECT_TRUE(r.standardError.contains(QStringLiteral("line 1"))) << r.describe();
    }

    // A hostile line is reported with its control characters escaped. A file
    // is read whole before anything runs; standard input runs line by line.
    const struct {
        QStringList script;
        QString shown;
        qsizetype runLiveBefore;   // commands that ran from standard input before the bad line came
    } cases[] = {
        {{"state", "\x1b]0;owned\x07\x1b[2J"}, QStringLiteral("\\x1b]0;owned\\x07\\x1b[2J"), 1},
        {{"frob\x1b[31m x"}, QStringLiteral("frob\\x1b[31m"), 0},
        {{QStringLiteral("key TxtID F\u00857")}, QStringLiteral("F\\x857"), 0},
        {{"click chk\rBarCode now"}, QStringLiteral(""), 0},
    };
    for (const auto& c : cases) {
        for (const bool live : {false, true}) {
            const QString script = c.script.join(QLatin1Char('\n')) + QLatin1Char('\n');
            const ReplayRun run = live ? h.runRaw(h.props() + kLive, script) : h.run(c.script);
            EXPECT_EQ(run.exitCode, 2) << run.describe();
            EXPECT_EQ(run.steps.size(), live ? c.runLiveBefore : 0) << run.describe();
            for (const QChar ch : run.standardError)
                EXPECT_FALSE(ch.category() == QChar::Other_Control && ch != QLatin1Char('\n'))
                    << "raw control character " << int(ch.unicode()) << " in: " << run.standardError.toStdString();
            EXPECT_TRUE(run.standardError.contains(c.shown)) << run.standardError.toStdString();
        }
    }

    // Arguments that are unknown or do not go together are refused.
    for (const QStringList& args : {QStringList{"--bogus"}, QStringList{"--demo"}, QStringList{"--lines", "5"}})
        EXPECT_EQ(h.runRaw(args + h.props() + kLive, QStringLiteral("state\n")).exitCode, 2) << args.join(' ').toStdString();
}

TEST(LauncherReplay, ADatabaseItCannotUseEndsWithCode1NamingTheFileAndTheProblem)
{
    ReplayHarness h;
    // problem: a word the message must hold, lower case
    const auto refused = [&](const QStringList& props, const QString& named, const char* problem) {
        const ReplayRun r = h.run({"state"}, props);
        EXPECT_EQ(r.exitCode, 1) << r.describe();
        EXPECT_TRUE(r.steps.isEmpty()) << r.describe();
        EXPECT_TRUE(r.standardError.contains(named)) << r.describe();
        EXPECT_TRUE(r.standardError.toLower().contains(QLatin1String(problem))) << r.describe();
        EXPECT_FALSE((r.standardError + r.standardOutput).contains(QStringLiteral("hunter2"))) << r.describe();
    };
    const QString missing = h.folder() + QStringLiteral("/not-there.db");
    refused(propsFor(missing, QStringLiteral(";Password=hunter2")), missing, "");
    // Through the ODBC driver too; a driver that is not there is named.
    if (SqliteOdbcUnavailableReason().isEmpty()) {
        const QString props = SqliteOdbcProps(h.databaseFile() + QStringLiteral(";PWD=hunter2"));
        refused({QStringLiteral("--props"), QString(props).replace(h.databaseFile(), missing)}, missing, "");
        refused({QStringLiteral("--props"), QString(props).replace("SQLite3", "SQLite3-missing")}, "SQLite3-missing", "");
    }
    EXPECT_FALSE(QFile::exists(missing));

    QFile demo(h.databaseFile());
    ASSERT_TRUE(demo.open(QIODevice::ReadOnly));
    const QByteArray whole = demo.readAll();
    demo.close();
    ASSERT_GT(whole.size(), 64 * 1024);
    QByteArray noise(64 * 1024, '\0');
    quint32 seed = 12345;
    for (char& c : noise) {
        seed = seed * 1103515245u + 12345u;
        c = char(seed >> 24);
    }
    const struct {
        const char* name;
        QByteArray bytes;
        const char* problem;
    } cases[] = {
        {"truncated.db", whole.left(whole.size() / 2), "malformed"},
        {"header-only.db", whole.left(100), "malformed"},
        {"random.db", noise, "not a database"},
        {"empty.db", QByteArray(), "ic_web2erporders"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        QFile file(h.folder() + QLatin1Char('/') + QLatin1String(c.name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(c.bytes);
        file.close();
        refused(propsFor(file.fileName()), file.fileName(), c.problem);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));   // the file is only read
        EXPECT_EQ(file.readAll(), c.bytes);
        file.close();
    }

    // A database without one of the tables the station reads.
    h.sql(QStringLiteral("DROP TABLE t_Barcode"));
    refused(h.props(), h.databaseFile(), "t_barcode");
}

TEST(LauncherReplay, BoxesWhileTheFormOpensAreInTheFirstStateLine)
{
    ReplayHarness h;
    // A user id that is no number: the picker and the options cannot be read.
    QStringList noUser = h.props();
    noUser[1].replace(QStringLiteral("UserID=1"), QStringLiteral("UserID=abc"));
    const ReplayRun badUser = h.run({"state", "state"}, noUser);
    ReplayRun locked;
    {
        // Another program holds the whole file while the station starts, longer
        // than the station waits for it once (5 s), so its first statement fails
        // even when a loaded machine takes seconds to start the launcher.
        BriefFileLock lock(h.databaseFile(), 11000);
        ASSERT_TRUE(lock.held());
        locked = h.run({"state", "state"});
    }
    for (const auto& [run, word] : {std::pair{badUser, QString()}, std::pair{locked, QStringLiteral("locked")}}) {
        ASSERT_EQ(run.exitCode, 0) << run.describe();
        ASSERT_EQ(run.steps.size(), 2);
        const QStringList boxes = shown(run.step(1), "boxes").split(QLatin1Char('\n'));
        for (const QString& box : boxes)
            EXPECT_TRUE(box.startsWith(QStringLiteral("Velto提示: ")) && box.contains(word)) << run.describe();
        EXPECT_EQ(shown(run.step(2), "boxes"), QString());
    }
}

TEST(LauncherReplay, ThroughTheSqliteOdbcDriverASessionPrintsAndWritesWhatTheEmbeddedEngineDoes)
{
    const QString reason = SqliteOdbcUnavailableReason();
    if (!reason.isEmpty())
        GTEST_SKIP() << "ODBC engine not run: " << reason.toStdString();
    const QStringList script{
        "scan TxtID 10005",
        "scan TxtItemID 6931000010215",
        "scan TxtItemID 6931000010291",   // passed, sent for delivery
        "click chkHaveSerial",
        "scan TxtID 10024",
        "scan TxtItemID MS-0003",
        "scan TxtItemID ET-0003",         // fits neither line
        "scan TxtItemID ET-0001",
        "scan TxtItemID ET-0002",         // passed, serial rows
        "click chkHaveSerial",
        "scan TxtID 10004",               // refund applied for
        "scan TxtID sf10013",             // not found: another shop's code
        "scan TxtID yt10013",
        "click chkShowText",
    };
    ReplayHarness embedded;
    ReplayHarness odbc;
    const QStringList odbcProps{QStringLiteral("--props"), SqliteOdbcProps(odbc.databaseFile())};
    const ReplayRun e = embedded.run(script);
    const ReplayRun o = odbc.run(script, odbcProps);
    ASSERT_EQ(e.exitCode, 0) << e.describe();
    ASSERT_EQ(o.exitCode, 0) << o.describe();
    ASSERT_EQ(o.steps.size(), script.size()) << o.describe();
    ASSERT_EQ(e.steps.size(), o.steps.size());
    for (int i = 0; i < e.steps.size(); ++i)
        EXPECT_EQ(o.steps[i], e.steps[i]) << "step " << i + 1;
    expectShown(o.step(1), {{"txtWebshop", "京东自营店"}});
    expectShown(o.step(3), {{"ImgSuccess", "yes"}});
    expectShown(o.step(9), {{"ImgSuccess", "yes"}});
    expectShown(o.step(13), {{"txtWebshop", "拼多多专营店"}});

    // What each database holds; quote() tells text ('1') from numbers (1).
    const auto written = [](const ReplayHarness& h) {
        return h.orders(QStringLiteral("'10004', '10005', '10013', '10024'")) + QLatin1Char(' ') + h.serials()
             + h.sql(QStringLiteral("SELECT group_concat(quote(FPIckingGoodsStatus) || quote(FDeliveryStatus))"
                                    " FROM IC_Web2ERPOrders")).toString()
             + h.sql(QStringLiteral("SELECT group_concat(quote(FKey) || quote(FName) || quote(FValue), ' ')"
                                    " FROM t_UserProfile WHERE FUserID = 1")).toString();
    };
    EXPECT_EQ(written(odbc), written(embedded));
    EXPECT_EQ(odbc.orders(QStringLiteral("'10005', '10024'")), "10005:1/201/1/1 10024:1/201/1/1");
    EXPECT_EQ(odbc.serials().count(QLatin1Char('|')), 3) << odbc.serials().toStdString();

    // The next start reads the options back through the same engine.
    odbc.play({{"state", {{"view", "grid"}}}}, odbcProps);
}
