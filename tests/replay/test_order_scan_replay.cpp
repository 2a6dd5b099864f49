// The launcher end to end: the real station on a fresh demo database, driven
// by replay scripts, read back from its JSON lines and from the database.
#include "support/replay_harness.h"
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryFile>
#include <gtest/gtest.h>

namespace {

QString text(const QJsonObject& step, const char* key)
{
    return step.value(QLatin1String(key)).toString();
}

QStringList goodsIds(const QJsonObject& step)
{
    QStringList ids;
    for (const QJsonValue& line : step.value(QStringLiteral("lines")).toArray())
        ids << QString::number(line.toObject().value(QStringLiteral("GoodsID")).toInteger());
    return ids;
}

QString picking(const ReplayHarness& h, const QString& uniqueCode)
{
    return h.queryValue(QStringLiteral("SELECT IFNULL(FPIckingGoodsStatus,'null') || '/' || IFNULL(FPickingGoodMan,'null') "
                                       "FROM IC_Web2ERPOrders WHERE FUniqueCode = ?"),
                        {uniqueCode})
        .toString();
}

const QString NotFound = QStringLiteral("找不到物流单号/唯一码/商品条码/序列号");

} // namespace

TEST(OrderScanReplay, AnOrderLoadsWithItsTotalShopAndAFreshStatus)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    h.execute(QStringLiteral("UPDATE IC_Web2ERPOrders SET FPickingGoodMan = 204 WHERE FUniqueCode IN ('10001', '10002')"));

    const ReplayRun run = h.run(QStringLiteral("# a normal day\nstate\n\nscan TxtID 10001\nscan TxtID 773000000002\n"));
    ASSERT_EQ(run.exitCode, 0) << run.describe().toStdString();
    ASSERT_EQ(run.steps.size(), 3) << run.describe().toStdString();

    const QJsonObject start = run.step(1);
    EXPECT_EQ(text(start, "command"), QStringLiteral("state"));
    EXPECT_EQ(text(start, "TxtEmployee"), QStringLiteral("张伟"));
    EXPECT_EQ(text(start, "lblOrderNum"), QStringLiteral("0"));
    EXPECT_EQ(text(start, "lblPickedNum"), QStringLiteral("0/"));
    EXPECT_EQ(text(start, "TxtNum"), QStringLiteral("1"));
    EXPECT_EQ(text(start, "view"), QStringLiteral("tiles"));
    EXPECT_FALSE(start.value(QStringLiteral("ImgSuccess")).toBool());
    EXPECT_FALSE(start.value(QStringLiteral("closed")).toBool());
    EXPECT_TRUE(start.value(QStringLiteral("lines")).toArray().isEmpty());

    const QJsonObject loaded = run.step(2);
    EXPECT_EQ(text(loaded, "command"), QStringLiteral("scan TxtID 10001"));
    EXPECT_EQ(text(loaded, "TxtID"), QStringLiteral("10001"));
    EXPECT_EQ(text(loaded, "lblOrderNum"), QStringLiteral("4"));
    EXPECT_EQ(text(loaded, "lblPickedNum"), QStringLiteral("0/"));
    EXPECT_EQ(text(loaded, "txtWebshop"), QStringLiteral("天猫旗舰店"));
    EXPECT_EQ(text(loaded, "lblMessage"), QString());
    EXPECT_EQ(goodsIds(loaded), (QStringList{"1001", "1008", "1014"}));
    EXPECT_EQ(lineSummaries(loaded), (QStringList{"1001/1:1/0/0", "1008/2:1/0/0", "1014/3:2/0/0"}));
    EXPECT_TRUE(loaded.value(QStringLiteral("voice")).toArray().isEmpty());
    EXPECT_TRUE(loaded.value(QStringLiteral("boxes")).toArray().isEmpty());

    // Leaving 10001 for 10002 logs its verdict; one entry alone is not shown yet.
    const QJsonObject second = run.step(3);
    EXPECT_EQ(text(second, "txtWebshop"), QStringLiteral("京东自营店"));
    EXPECT_EQ(goodsIds(second), (QStringList{"1005", "1016"}));

    // Every fresh load put status 0 and picker 0 on the server.
    EXPECT_EQ(picking(h, QStringLiteral("10001")), QStringLiteral("0/0"));
    EXPECT_EQ(picking(h, QStringLiteral("10002")), QStringLiteral("0/0"));
    EXPECT_EQ(picking(h, QStringLiteral("10006")), QStringLiteral("1/201"));
}

TEST(OrderScanReplay, RefusalsAndUnknownCodesEmptyTheStation)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    const ReplayRun run = h.run(QStringLiteral("scan TxtID 10001\nscan TxtID 10003\n"
                                               "scan TxtID 10001\nscan TxtID 10004\n"
                                               "scan TxtID 10001\nscan TxtID 10006\n"
                                               "scan TxtID 10001\nscan TxtID 99999\n"));
    ASSERT_EQ(run.exitCode, 0) << run.describe().toStdString();
    ASSERT_EQ(run.steps.size(), 8) << run.describe().toStdString();

    struct Refusal {
        int step;
        QString code;
        QString message;
        QStringList voice;
    };
    const QList<Refusal> refusals{
        {2, QStringLiteral("10003"), QStringLiteral("此单已冻结，请解冻后再操作！"), {}},
        {4, QStringLiteral("10004"), QStringLiteral("此单交易状态为申请退款"), {QStringLiteral("\\voice\\refunds.wav")}},
        {6, QStringLiteral("10006"), QStringLiteral("此单已校验通过"), {QStringLiteral("\\voice\\repeatCheck.wav")}},
    };
    for (const Refusal& r : refusals) {
        const QJsonObject before = run.step(r.step - 1);
        EXPECT_EQ(text(before, "lblOrderNum"), QStringLiteral("4")) << r.step;
        EXPECT_EQ(goodsIds(before).size(), 3);
        const QJsonObject step = run.step(r.step);
        EXPECT_EQ(text(step, "lblMessage"), r.message) << r.step;
        EXPECT_EQ(jsonStrings(step.value(QStringLiteral("voice"))), r.voice) << r.step;
        EXPECT_TRUE(step.value(QStringLiteral("lines")).toArray().isEmpty()) << r.step;
        EXPECT_EQ(text(step, "lblOrderNum"), QStringLiteral("0")) << r.step;
        EXPECT_EQ(text(step, "lblPickedNum"), QStringLiteral("0/")) << r.step;
        EXPECT_EQ(text(step, "txtWebshop"), QString()) << r.step;
        EXPECT_EQ(text(step, "TxtID"), r.code) << r.step;
        EXPECT_FALSE(step.value(QStringLiteral("ImgSuccess")).toBool());
        EXPECT_TRUE(step.value(QStringLiteral("boxes")).toArray().isEmpty());
    }

    // An unknown code: the not-found message, no voice, nothing loaded.
    const QJsonObject unknown = run.step(8);
    EXPECT_EQ(text(unknown, "lblMessage"), NotFound);
    EXPECT_TRUE(unknown.value(QStringLiteral("voice")).toArray().isEmpty());
    EXPECT_TRUE(unknown.value(QStringLiteral("lines")).toArray().isEmpty());
    EXPECT_EQ(text(unknown, "lblOrderNum"), QStringLiteral("0"));
    // Leaving 10001 three times updated its one entry ("+" is no order and
    // gets none): the pane shows the log from two entries on.
    EXPECT_TRUE(unknown.value(QStringLiteral("log")).toArray().isEmpty());
    // Refused orders stay as they were on the server.
    EXPECT_EQ(picking(h, QStringLiteral("10006")), QStringLiteral("1/201"));
}

TEST(OrderScanReplay, CodesAreTypedKeyByKeyAndMatchByTheirKind)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    const ReplayRun run = h.run(QStringLiteral("scan TxtID TB10027\nscan TxtID YT10027\nscan TxtID SF10001\n"
                                               "type TxtID 10'0’02\nkey TxtID Enter\n"
                                               "click TxtID\nkey TxtID Tab\n"));
    ASSERT_EQ(run.exitCode, 0) << run.describe().toStdString();
    ASSERT_EQ(run.steps.size(), 7) << run.describe().toStdString();
    // A unique code with a letter is looked for as a logistics number only.
    EXPECT_EQ(text(run.step(1), "lblMessage"), NotFound);
    EXPECT_EQ(text(run.step(1), "lblOrderNum"), QStringLiteral("0"));
    EXPECT_EQ(text(run.step(2), "lblOrderNum"), QStringLiteral("1"));
    EXPECT_EQ(goodsIds(run.step(2)), QStringList{"1016"});
    EXPECT_EQ(text(run.step(3), "lblOrderNum"), QStringLiteral("4"));
    // Quotes typed on the keyboard never reach the field.
    EXPECT_EQ(text(run.step(4), "TxtID"), QStringLiteral("10002"));
    EXPECT_EQ(text(run.step(4), "lblOrderNum"), QStringLiteral("4"));
    EXPECT_EQ(goodsIds(run.step(5)), (QStringList{"1005", "1016"}));
    // A click empties TxtID; leaving it shows the order on the station again.
    EXPECT_EQ(text(run.step(6), "TxtID"), QString());
    EXPECT_EQ(text(run.step(7), "TxtID"), QStringLiteral("10002"));
}

TEST(OrderScanReplay, AnOrderScannedAgainComesBackWithItsCounts)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    const ReplayRun run = h.run(QStringLiteral("scan TxtID 10001\nscan TxtItemID 6931000010017\n"
                                               "scan TxtID 10002\nscan TxtID 10001\n"));
    ASSERT_EQ(run.exitCode, 0) << run.describe().toStdString();
    ASSERT_EQ(run.steps.size(), 4);
    EXPECT_EQ(text(run.step(2), "lblPickedNum"), QStringLiteral("1/4"));
    EXPECT_EQ(text(run.step(3), "lblPickedNum"), QStringLiteral("0/"));
    const QJsonObject back = run.step(4);
    EXPECT_EQ(text(back, "lblPickedNum"), QStringLiteral("1/4"));
    EXPECT_EQ(checkedTotal(back), 1);
    EXPECT_EQ(lineSummaries(back).first(), QStringLiteral("1001/1:1/1/1"));
    EXPECT_EQ(jsonStrings(back.value(QStringLiteral("log"))),
              (QStringList{QStringLiteral("10002异常, , 缺少4件, 误拣0件"), QStringLiteral("10001异常, , 缺少3件, 误拣0件")}));

    // A new station loads it fresh, from zero.
    const ReplayRun again = h.run(QStringLiteral("scan TxtID 10001\n"));
    ASSERT_EQ(again.exitCode, 0) << again.describe().toStdString();
    EXPECT_EQ(checkedTotal(again.step(1)), 0);
    EXPECT_EQ(text(again.step(1), "lblPickedNum"), QStringLiteral("0/"));
    EXPECT_EQ(picking(h, QStringLiteral("10001")), QStringLiteral("0/0"));
}

TEST(OrderScanReplay, TheCloseQuestionWithYesAndNo)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    const ReplayRun run = h.run(QStringLiteral("close\n"));
    ASSERT_EQ(run.exitCode, 0) << run.describe().toStdString();
    EXPECT_TRUE(run.last().value(QStringLiteral("closed")).toBool());
    EXPECT_TRUE(run.allBoxTexts().isEmpty());

    const ReplayRun asked = h.run(QStringLiteral("scan TxtID 10001\nanswer yes\nclose\nclose\nanswer no\nclose\nstate\n"));
    ASSERT_EQ(asked.exitCode, 0) << asked.describe().toStdString();
    ASSERT_EQ(asked.steps.size(), 7);
    const QJsonArray first = asked.step(3).value(QStringLiteral("boxes")).toArray();
    ASSERT_EQ(first.size(), 1);
    EXPECT_EQ(first.at(0).toObject().value(QStringLiteral("title")).toString(), QStringLiteral("Velto提示"));
    EXPECT_TRUE(first.at(0).toObject().value(QStringLiteral("text")).toString().endsWith(
        QStringLiteral("10001未通过，是否继续校验?")));
    // Yes keeps the station open on the same order.
    EXPECT_FALSE(asked.step(3).value(QStringLiteral("closed")).toBool());
    EXPECT_EQ(text(asked.step(3), "TxtID"), QStringLiteral("10001"));
    EXPECT_EQ(text(asked.step(3), "lblOrderNum"), QStringLiteral("4"));
    // An unqueued question is answered yes.
    EXPECT_EQ(asked.step(4).value(QStringLiteral("boxes")).toArray().size(), 1);
    EXPECT_FALSE(asked.step(4).value(QStringLiteral("closed")).toBool());
    // No closes it.
    EXPECT_EQ(asked.step(6).value(QStringLiteral("boxes")).toArray().size(), 1);
    EXPECT_TRUE(asked.step(6).value(QStringLiteral("closed")).toBool());
    EXPECT_TRUE(asked.step(7).value(QStringLiteral("closed")).toBool());
}

TEST(OrderScanReplay, OptionsSurviveARestart)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    // 10011 holds goods without barcodes only.
    const ReplayRun first = h.run(QStringLiteral("scan TxtID 10011\nclick chkShowText\nclick chkBarCode\nscan TxtID 10011\n"));
    ASSERT_EQ(first.exitCode, 0) << first.describe().toStdString();
    EXPECT_EQ(text(first.step(1), "lblOrderNum"), QStringLiteral("0"));
    EXPECT_EQ(text(first.step(2), "view"), QStringLiteral("grid"));
    EXPECT_EQ(text(first.step(4), "lblOrderNum"), QStringLiteral("4"));

    // The script ended without a close question; the options were saved all the same.
    const ReplayRun second = h.run(QStringLiteral("state\nscan TxtID 10011\n"));
    ASSERT_EQ(second.exitCode, 0) << second.describe().toStdString();
    EXPECT_EQ(text(second.step(1), "view"), QStringLiteral("grid"));
    EXPECT_EQ(text(second.step(2), "lblOrderNum"), QStringLiteral("4"));

    // Another user starts from the defaults.
    const ReplayRun other = h.run(QStringLiteral("state\n"), {QStringLiteral("--props"), h.propsString(2)});
    ASSERT_EQ(other.exitCode, 0) << other.describe().toStdString();
    EXPECT_EQ(text(other.step(1), "view"), QStringLiteral("tiles"));
    EXPECT_EQ(text(other.step(1), "TxtEmployee"), QStringLiteral("李娜"));
}

TEST(OrderScanReplay, ExitCodesForABadScriptAndAMissingDatabase)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();

    const ReplayRun bad = h.run(QStringLiteral("state\n\n# fine so far\nscan Nowhere 1\nstate\n"));
    EXPECT_EQ(bad.exitCode, 2);
    EXPECT_TRUE(bad.standardError.contains(QStringLiteral("line 4"))) << bad.describe().toStdString();
    EXPECT_TRUE(bad.steps.isEmpty());
    for (const QString& script : {QStringLiteral("answer maybe\n"), QStringLiteral("key TxtID NoSuchKey\n"),
                                  QStringLiteral("frobnicate\n"), QStringLiteral("close now\n")}) {
        const ReplayRun r = h.run(script);
        EXPECT_EQ(r.exitCode, 2) << script.toStdString();
        EXPECT_TRUE(r.standardError.contains(QStringLiteral("line 1"))) << r.describe().toStdString();
    }

    const QString missing = h.folder() + QStringLiteral("/no/such.db");
    const ReplayRun noDb = h.run(QStringLiteral("state\n"),
                                 {QStringLiteral("--props"),
                                  QStringLiteral("UserID=1;ConnectString={Provider=SQLite;Data Source=%1;Password=hunter2};").arg(missing)});
    EXPECT_EQ(noDb.exitCode, 1) << noDb.describe().toStdString();
    EXPECT_TRUE(noDb.steps.isEmpty());
    EXPECT_FALSE(noDb.standardError.contains(QStringLiteral("hunter2")));
    EXPECT_FALSE(QFile::exists(missing));

    // The script may come on standard input.
    const ReplayRun piped = h.runRaw({QStringLiteral("--props"), h.propsString(), QStringLiteral("--replay"), QStringLiteral("-")},
                                     QStringLiteral("scan TxtID 10001\n"));
    EXPECT_EQ(piped.exitCode, 0) << piped.describe().toStdString();
    ASSERT_EQ(piped.steps.size(), 1);
    EXPECT_EQ(text(piped.step(1), "lblOrderNum"), QStringLiteral("4"));

    // Unknown arguments are refused before anything runs.
    EXPECT_EQ(h.runRaw({QStringLiteral("--bogus")}).exitCode, 2);
}

TEST(OrderScanReplay, AFileThatIsNoUsableDatabaseEndsWithItsNameAndTheProblem)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
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
    struct Case {
        const char* name;
        QByteArray bytes;
        const char* problem;   // a word the message must hold, lower case
    };
    const Case cases[] = {
        {"truncated.db", whole.left(whole.size() / 2), "malformed"},
        {"header-only.db", whole.left(100), "malformed"},
        {"random.db", noise, "not a database"},
        {"empty.db", QByteArray(), "ic_web2erporders"},
    };
    for (const Case& c : cases) {
        const QString file = h.folder() + QLatin1Char('/') + QLatin1String(c.name);
        QFile out(file);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(c.bytes);
        out.close();
        const ReplayRun run = h.run(QStringLiteral("state\n"),
                                    {QStringLiteral("--props"),
                                     QStringLiteral("UserID=1;ConnectString={Provider=SQLite;Data Source=%1};").arg(file)});
        EXPECT_EQ(run.exitCode, 1) << c.name << ": " << run.describe().toStdString();
        EXPECT_TRUE(run.steps.isEmpty()) << c.name;
        EXPECT_TRUE(run.standardError.contains(file)) << c.name << ": " << run.standardError.toStdString();
        EXPECT_TRUE(run.standardError.toLower().contains(QLatin1String(c.problem)))
            << c.name << ": " << run.standardError.toStdString();
        // The file is only read.
        QFile after(file);
        ASSERT_TRUE(after.open(QIODevice::ReadOnly));
        EXPECT_EQ(after.readAll(), c.bytes) << c.name;
    }

    // A database without one of the tables the station reads.
    h.execute(QStringLiteral("DROP TABLE t_Barcode"));
    const ReplayRun lacking = h.run(QStringLiteral("state\n"));
    EXPECT_EQ(lacking.exitCode, 1) << lacking.describe().toStdString();
    EXPECT_TRUE(lacking.steps.isEmpty());
    EXPECT_TRUE(lacking.standardError.contains(h.databaseFile())) << lacking.standardError.toStdString();
    EXPECT_TRUE(lacking.standardError.contains(QStringLiteral("t_Barcode"))) << lacking.standardError.toStdString();
}

TEST(OrderScanReplay, BoxesWhileTheFormOpensAreInTheFirstStateLine)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    // A session whose user id is no number: the picker and the options cannot be read.
    const QString props = QStringLiteral("UserID=abc;ConnectString={Provider=SQLite;Data Source=%1};").arg(h.databaseFile());
    const ReplayRun run = h.run(QStringLiteral("state\nstate\n"), {QStringLiteral("--props"), props});
    ASSERT_EQ(run.exitCode, 0) << run.describe().toStdString();
    ASSERT_EQ(run.steps.size(), 2);
    const QJsonArray boxes = run.step(1).value(QStringLiteral("boxes")).toArray();
    ASSERT_GE(boxes.size(), 1) << run.describe().toStdString();
    for (const QJsonValue& box : boxes)
        EXPECT_EQ(box.toObject().value(QStringLiteral("title")).toString(), QStringLiteral("Velto提示"));
    EXPECT_TRUE(run.step(2).value(QStringLiteral("boxes")).toArray().isEmpty());
}

TEST(OrderScanReplay, ADatabaseLockedAtTheStartOpensTheStationWithItsBoxes)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    const QString lockerName = QStringLiteral("replay_locker");
    ReplayRun run;
    {
        // Another program holds the whole file while the station starts.
        QSqlDatabase locker = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), lockerName);
        locker.setDatabaseName(h.databaseFile());
        ASSERT_TRUE(locker.open());
        QSqlQuery lock(locker);
        ASSERT_TRUE(lock.exec(QStringLiteral("BEGIN EXCLUSIVE")));
        run = h.run(QStringLiteral("state\nstate\n"));
        lock.exec(QStringLiteral("ROLLBACK"));
        locker.close();
    }
    QSqlDatabase::removeDatabase(lockerName);
    ASSERT_EQ(run.exitCode, 0) << run.describe().toStdString();
    ASSERT_EQ(run.steps.size(), 2);
    const QJsonArray boxes = run.step(1).value(QStringLiteral("boxes")).toArray();
    ASSERT_GE(boxes.size(), 1) << run.describe().toStdString();
    for (const QJsonValue& box : boxes) {
        EXPECT_EQ(box.toObject().value(QStringLiteral("title")).toString(), QStringLiteral("Velto提示"));
        EXPECT_TRUE(box.toObject().value(QStringLiteral("text")).toString().contains(QStringLiteral("locked")))
            << run.describe().toStdString();
    }
    EXPECT_TRUE(run.step(2).value(QStringLiteral("boxes")).toArray().isEmpty());
}

TEST(OrderScanReplay, AMalformedLineIsReportedWithItsControlCharactersEscaped)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    const struct {
        QString script;
        QString shown;
        qsizetype runLiveBefore;   // commands that ran, from standard input, before the bad line came
    } cases[] = {
        {QStringLiteral("state\n\x1b]0;owned\x07\x1b[2J\n"), QStringLiteral("\\x1b]0;owned\\x07\\x1b[2J"), 1},
        {QStringLiteral("frob\x1b[31m x\n"), QStringLiteral("frob\\x1b[31m"), 0},
        {QStringLiteral("key TxtID F\u00857\n"), QStringLiteral("F\\x857"), 0},
        {QStringLiteral("click chk\rBarCode now\n"), QStringLiteral(""), 0},
    };
    for (const auto& c : cases) {
        // A file is read whole before anything runs; standard input runs line by line.
        QTemporaryFile file;
        ASSERT_TRUE(file.open());
        file.write(c.script.toUtf8());
        file.close();
        for (const QString& source : {file.fileName(), QStringLiteral("-")}) {
            const bool live = source == QStringLiteral("-");
            const QStringList args{QStringLiteral("--props"), h.propsString(), QStringLiteral("--replay"), source};
            const ReplayRun run = h.runRaw(args, live ? c.script : QString());
            EXPECT_EQ(run.exitCode, 2) << run.describe().toStdString();
            EXPECT_EQ(run.steps.size(), live ? c.runLiveBefore : 0) << run.describe().toStdString();
            for (const QChar ch : run.standardError)
                EXPECT_FALSE(ch.category() == QChar::Other_Control && ch != QLatin1Char('\n'))
                    << "raw control character " << int(ch.unicode()) << " in: " << run.standardError.toStdString();
            EXPECT_TRUE(run.standardError.contains(c.shown)) << run.standardError.toStdString();
        }
    }
}
