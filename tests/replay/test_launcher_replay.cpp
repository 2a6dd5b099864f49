// The launcher's exit codes: 2 for a malformed script line or argument, 1 for
// a database it cannot use (named, its password never shown), and problems
// met while the form opens shown in the first state line.
#include "support/replay_harness.h"
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryFile>
#include <gtest/gtest.h>

namespace {

QStringList propsFor(const QString& file, const QString& extra = QString())
{
    return {QStringLiteral("--props"), QStringLiteral("UserID=1;ConnectString={Provider=SQLite;Data Source=%1%2};").arg(file, extra)};
}

QStringList boxTitlesAndTexts(const QJsonObject& state)
{
    QStringList texts;
    for (const QJsonValue& box : state.value(QStringLiteral("boxes")).toArray())
        texts << box[QStringLiteral("title")].toString() + QStringLiteral(": ") + box[QStringLiteral("text")].toString();
    return texts;
}

} // namespace

TEST(LauncherReplay, MalformedLinesAndArgumentsEndWithCode2BeforeAnythingRuns)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    const ReplayRun bad = h.run(QStringLiteral("state\n\n# fine so far\nscan Nowhere 1\nstate\n"));
    EXPECT_EQ(bad.exitCode, 2);
    EXPECT_TRUE(bad.standardError.contains(QStringLiteral("line 4"))) << bad.describe().toStdString();
    EXPECT_TRUE(bad.steps.isEmpty());
    for (const char* script : {"answer maybe\n", "key TxtID NoSuchKey\n", "frobnicate\n", "close now\n"}) {
        const ReplayRun r = h.run(QString::fromLatin1(script));
        EXPECT_EQ(r.exitCode, 2) << script;
        EXPECT_TRUE(r.standardError.contains(QStringLiteral("line 1"))) << r.describe().toStdString();
    }

    // A hostile line is reported with its control characters escaped. A file
    // is read whole before anything runs; standard input runs line by line.
    const struct {
        QString script;
        QString shown;
        qsizetype runLiveBefore;   // commands that ran from standard input before the bad line came
    } cases[] = {
        {QStringLiteral("state\n\x1b]0;owned\x07\x1b[2J\n"), QStringLiteral("\\x1b]0;owned\\x07\\x1b[2J"), 1},
        {QStringLiteral("frob\x1b[31m x\n"), QStringLiteral("frob\\x1b[31m"), 0},
        {QStringLiteral("key TxtID F\u00857\n"), QStringLiteral("F\\x857"), 0},
        {QStringLiteral("click chk\rBarCode now\n"), QStringLiteral(""), 0},
    };
    for (const auto& c : cases) {
        QTemporaryFile file;
        ASSERT_TRUE(file.open());
        file.write(c.script.toUtf8());
        file.close();
        for (const QString& source : {file.fileName(), QStringLiteral("-")}) {
            const bool live = source == QStringLiteral("-");
            const ReplayRun run = h.runRaw(propsFor(h.databaseFile()) << QStringLiteral("--replay") << source, live ? c.script : QString());
            EXPECT_EQ(run.exitCode, 2) << run.describe().toStdString();
            EXPECT_EQ(run.steps.size(), live ? c.runLiveBefore : 0) << run.describe().toStdString();
            for (const QChar ch : run.standardError)
                EXPECT_FALSE(ch.category() == QChar::Other_Control && ch != QLatin1Char('\n'))
                    << "raw control character " << int(ch.unicode()) << " in: " << run.standardError.toStdString();
            EXPECT_TRUE(run.standardError.contains(c.shown)) << run.standardError.toStdString();
        }
    }

    // Arguments that are unknown or do not go together are refused.
    const QStringList replay{QStringLiteral("--replay"), QStringLiteral("-")};
    EXPECT_EQ(h.runRaw({QStringLiteral("--bogus")}).exitCode, 2);
    EXPECT_EQ(h.runRaw(QStringList{QStringLiteral("--demo")} + propsFor(h.databaseFile()) + replay, QStringLiteral("state\n")).exitCode, 2);
    EXPECT_EQ(h.runRaw(QStringList{QStringLiteral("--lines"), QStringLiteral("5")} + propsFor(h.databaseFile()) + replay,
                       QStringLiteral("state\n")).exitCode,
              2);
}

TEST(LauncherReplay, ADatabaseItCannotUseEndsWithCode1NamingTheFileAndTheProblem)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    const QString missing = h.folder() + QStringLiteral("/no/such.db");
    const ReplayRun noDb = h.run(QStringLiteral("state\n"), propsFor(missing, QStringLiteral(";Password=hunter2")));
    EXPECT_EQ(noDb.exitCode, 1) << noDb.describe().toStdString();
    EXPECT_TRUE(noDb.steps.isEmpty());
    EXPECT_FALSE(noDb.standardError.contains(QStringLiteral("hunter2")));
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
        const char* problem;   // a word the message must hold, lower case
    } cases[] = {
        {"truncated.db", whole.left(whole.size() / 2), "malformed"},
        {"header-only.db", whole.left(100), "malformed"},
        {"random.db", noise, "not a database"},
        {"empty.db", QByteArray(), "ic_web2erporders"},
    };
    for (const auto& c : cases) {
        const QString file = h.folder() + QLatin1Char('/') + QLatin1String(c.name);
        QFile out(file);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(c.bytes);
        out.close();
        const ReplayRun run = h.run(QStringLiteral("state\n"), propsFor(file));
        EXPECT_EQ(run.exitCode, 1) << c.name << ": " << run.describe().toStdString();
        EXPECT_TRUE(run.steps.isEmpty()) << c.name;
        EXPECT_TRUE(run.standardError.contains(file)) << c.name << ": " << run.standardError.toStdString();
        EXPECT_TRUE(run.standardError.toLower().contains(QLatin1String(c.problem))) << c.name << ": " << run.standardError.toStdString();
        // The file is only read.
        ASSERT_TRUE(out.open(QIODevice::ReadOnly));
        EXPECT_EQ(out.readAll(), c.bytes) << c.name;
    }

    // A database without one of the tables the station reads.
    h.execute(QStringLiteral("DROP TABLE t_Barcode"));
    const ReplayRun lacking = h.run(QStringLiteral("state\n"));
    EXPECT_EQ(lacking.exitCode, 1) << lacking.describe().toStdString();
    EXPECT_TRUE(lacking.steps.isEmpty());
    EXPECT_TRUE(lacking.standardError.contains(h.databaseFile())) << lacking.standardError.toStdString();
    EXPECT_TRUE(lacking.standardError.contains(QStringLiteral("t_Barcode"))) << lacking.standardError.toStdString();
}

TEST(LauncherReplay, BoxesWhileTheFormOpensAreInTheFirstStateLine)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    // A user id that is no number: the picker and the options cannot be read.
    const QString noUser = QStringLiteral("UserID=abc;ConnectString={Provider=SQLite;Data Source=%1};").arg(h.databaseFile());
    const ReplayRun badUser = h.run(QStringLiteral("state\nstate\n"), {QStringLiteral("--props"), noUser});
    // Another program holds the whole file while the station starts.
    const QString lockerName = QStringLiteral("replay_locker");
    ReplayRun locked;
    {
        QSqlDatabase locker = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), lockerName);
        locker.setDatabaseName(h.databaseFile());
        ASSERT_TRUE(locker.open());
        QSqlQuery lock(locker);
        ASSERT_TRUE(lock.exec(QStringLiteral("BEGIN EXCLUSIVE")));
        locked = h.run(QStringLiteral("state\nstate\n"));
        lock.exec(QStringLiteral("ROLLBACK"));
        locker.close();
    }
    QSqlDatabase::removeDatabase(lockerName);
    for (const auto& [run, word] : {std::pair{badUser, QString()}, std::pair{locked, QStringLiteral("locked")}}) {
        ASSERT_EQ(run.exitCode, 0) << run.describe().toStdString();
        ASSERT_EQ(run.steps.size(), 2);
        const QStringList boxes = boxTitlesAndTexts(run.step(1));
        ASSERT_GE(boxes.size(), 1) << run.describe().toStdString();
        for (const QString& box : boxes)
            EXPECT_TRUE(box.startsWith(QStringLiteral("Velto提示: ")) && box.contains(word)) << box.toStdString();
        EXPECT_TRUE(boxTitlesAndTexts(run.step(2)).isEmpty());
    }
}
