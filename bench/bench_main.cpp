// rnw_bench: the station's speed on generated orders of 10, 100, 500 and
// 2,000 lines, in the tile view and in the grid view. Each configuration runs
// in a process of its own (its peak memory is its own), on its own copy of a
// demo database made once per size. Prints a table, then one JSON document.
//
//   rnw_bench [--sizes 10,100,500,2000] [--views tiles,grid] [--scans N]
//             [--loads N] [--floor-sample N] [--order shuffled|listed]
//             [--json FILE] [--work DIR] [--scripts DIR] [--keep]
//             [--journal-cost N]
//   rnw_bench --worker --db FILE --lines N --view tiles|grid [--no-journal] [...]   (one run, JSON line)
//
// At the size given by --journal-cost (500 unless 0), each view runs a second
// time without the session journal, and the journal's cost is printed.
#include "bench_stats.h"
#include "demo/demo_database.h"
#include "host/host_error.h"
#include "station_bench.h"
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>
#include <cstdio>

namespace {

enum ExitCode { ExitOk = 0, ExitFailed = 1, ExitUsage = 2 };

constexpr int kWorkerTimeoutMs = 60 * 60 * 1000;

struct Options {
    QList<int> sizes{10, 100, 500, 2000};
    QStringList views{QStringLiteral("tiles"), QStringLiteral("grid")};
    int scans = 10000;
    int loads = 5;
    int floorSample = 200;
    QString order = QStringLiteral("shuffled");
    QString json;
    QString work;
    QString scripts;
    bool keep = false;
    int journalCost = 500;
    // worker
    bool journal = true;
    bool worker = false;
    QString db;
    int lines = 0;
    QString view;
};

void print(FILE* stream, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
    std::fflush(stream);
}

QString usage()
{
    return QStringLiteral(
        "usage: rnw_bench [--sizes 10,100,500,2000] [--views tiles,grid] [--scans N] [--loads N]\n"
        "                 [--floor-sample N] [--order shuffled|listed] [--json FILE] [--work DIR]\n"
        "                 [--scripts DIR] [--keep] [--journal-cost N]\n");
}

bool parse(const QStringList& args, Options& o, QString& error)
{
    auto number = [&](int& i, int& out, int minimum) {
        bool ok = false;
        out = i + 1 < args.size() ? args[++i].toInt(&ok) : 0;
        if (!ok || out < minimum) {
            error = QStringLiteral("%1 needs a number of at least %2").arg(args[i - 1]).arg(minimum);
            return false;
        }
        return true;
    };
    auto text = [&](int& i, QString& out) {
        if (i + 1 >= args.size()) {
            error = QStringLiteral("%1 needs a value").arg(args[i]);
            return false;
        }
        out = args[++i];
        return true;
    };
    for (int i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        QString value;
        if (a == QLatin1String("--sizes")) {
            if (!text(i, value))
                return false;
            o.sizes.clear();
            for (const QString& part : value.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
                bool ok = false;
                const int size = part.trimmed().toInt(&ok);
                if (!ok || size < 1) {
                    error = QStringLiteral("bad size: %1").arg(part);
                    return false;
                }
                o.sizes << size;
            }
        } else if (a == QLatin1String("--views")) {
            if (!text(i, value))
                return false;
            o.views = value.split(QLatin1Char(','), Qt::SkipEmptyParts);
            for (const QString& v : o.views) {
                if (v != QLatin1String("tiles") && v != QLatin1String("grid")) {
                    error = QStringLiteral("bad view: %1 (tiles or grid)").arg(v);
                    return false;
                }
            }
        } else if (a == QLatin1String("--scans")) {
            if (!number(i, o.scans, 1))
                return false;
        } else if (a == QLatin1String("--loads")) {
            if (!number(i, o.loads, 0))
                return false;
        } else if (a == QLatin1String("--floor-sample")) {
            if (!number(i, o.floorSample, 1))
                return false;
        } else if (a == QLatin1String("--order")) {
            if (!text(i, o.order))
                return false;
            if (o.order != QLatin1String("shuffled") && o.order != QLatin1String("listed")) {
                error = QStringLiteral("bad order: %1 (shuffled or listed)").arg(o.order);
                return false;
            }
        } else if (a == QLatin1String("--json")) {
            if (!text(i, o.json))
                return false;
        } else if (a == QLatin1String("--work")) {
            if (!text(i, o.work))
                return false;
        } else if (a == QLatin1String("--scripts")) {
            if (!text(i, o.scripts))
                return false;
        } else if (a == QLatin1String("--keep")) {
            o.keep = true;
        } else if (a == QLatin1String("--journal-cost")) {
            if (!number(i, o.journalCost, 0))
                return false;
        } else if (a == QLatin1String("--no-journal")) {
            o.journal = false;
        } else if (a == QLatin1String("--worker")) {
            o.worker = true;
        } else if (a == QLatin1String("--db")) {
            if (!text(i, o.db))
                return false;
        } else if (a == QLatin1String("--lines")) {
            if (!number(i, o.lines, 1))
                return false;
        } else if (a == QLatin1String("--view")) {
            if (!text(i, o.view))
                return false;
        } else {
            error = QStringLiteral("unknown argument: %1").arg(a);
            return false;
        }
    }
    if (o.sizes.isEmpty() || o.views.isEmpty()) {
        error = QStringLiteral("nothing to run");
        return false;
    }
    if (o.worker && (o.db.isEmpty() || o.lines < 1 || (o.view != QLatin1String("tiles") && o.view != QLatin1String("grid")))) {
        error = QStringLiteral("--worker needs --db, --lines and --view");
        return false;
    }
    return true;
}

int runWorker(const Options& o)
{
    QTemporaryDir temp;
    StationBenchConfig config;
    config.databaseFile = o.db;
    config.lines = o.lines;
    config.gridView = o.view == QLatin1String("grid");
    config.journal = o.journal;
    config.listedOrder = o.order == QLatin1String("listed");
    config.scans = o.scans;
    config.loads = o.loads;
    config.floorSample = o.floorSample;
    config.workFolder = o.work.isEmpty() ? temp.path() : o.work;
    config.scriptOut = o.scripts.isEmpty() ? QString()
                                           : QDir(o.scripts).filePath(QStringLiteral("bench_%1_%2.txt").arg(o.lines).arg(o.view));
    const QJsonObject result = RunStationBench(config);
    print(stdout, QString::fromUtf8(QJsonDocument(result).toJson(QJsonDocument::Compact)) + QLatin1Char('\n'));
    return result.value(QStringLiteral("error_count")).toInt() == 0 ? ExitOk : ExitFailed;
}

QJsonObject runChild(const Options& o, const QString& db, int lines, const QString& view, const QString& work, bool journal)
{
    QStringList args{QStringLiteral("--worker"), QStringLiteral("--db"), db, QStringLiteral("--lines"), QString::number(lines),
                     QStringLiteral("--view"), view, QStringLiteral("--scans"), QString::number(o.scans),
                     QStringLiteral("--loads"), QString::number(o.loads), QStringLiteral("--floor-sample"),
                     QString::number(o.floorSample), QStringLiteral("--order"), o.order, QStringLiteral("--work"), work};
    if (!o.scripts.isEmpty())
        args << QStringLiteral("--scripts") << o.scripts;
    if (!journal)
        args << QStringLiteral("--no-journal");
    QProcess child;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    // The journal and the profile of the run stay in its folder.
    env.insert(QStringLiteral("XDG_DATA_HOME"), QDir(work).filePath(QStringLiteral("xdg-data")));
    child.setProcessEnvironment(env);
    child.setProcessChannelMode(QProcess::SeparateChannels);
    child.start(QCoreApplication::applicationFilePath(), args);
    auto failed = [&](const QString& why) {
        return QJsonObject{{QStringLiteral("lines"), lines}, {QStringLiteral("view"), view},
                           {QStringLiteral("error_count"), 1}, {QStringLiteral("errors"), QJsonArray{why}}};
    };
    if (!child.waitForStarted())
        return failed(QStringLiteral("cannot start the worker: %1").arg(child.errorString()));
    if (!child.waitForFinished(kWorkerTimeoutMs)) {
        child.kill();
        child.waitForFinished();
        return failed(QStringLiteral("the worker ran out of time"));
    }
    const QByteArray errors = child.readAllStandardError();
    const QList<QByteArray> out = child.readAllStandardOutput().trimmed().split('\n');
    const QJsonDocument doc = QJsonDocument::fromJson(out.isEmpty() ? QByteArray() : out.last());
    if (child.exitStatus() != QProcess::NormalExit || !doc.isObject())
        return failed(QStringLiteral("the worker failed (exit %1): %2")
                          .arg(child.exitCode())
                          .arg(QString::fromUtf8(errors.right(2000))));
    QJsonObject result = doc.object();
    // A worker that found nothing wrong exits 0; anything else (a sanitizer's
    // report at exit) fails the run with what it printed.
    if (child.exitCode() != 0 && result.value(QStringLiteral("error_count")).toInt() == 0) {
        result.insert(QStringLiteral("error_count"), 1);
        result.insert(QStringLiteral("errors"), QJsonArray{QStringLiteral("the worker exited with %1: %2")
                                                               .arg(child.exitCode())
                                                               .arg(QString::fromUtf8(errors.right(2000)))});
    }
    return result;
}

QString cell(double value, int decimals = 2)
{
    return QString::number(value, 'f', decimals);
}

QString table(const QJsonArray& runs)
{
    const QStringList head{"lines", "view", "jrnl", "load1st", "load", "ldSQL", "ldFloor", "scans", "median", "p95", "p99",
                           "max", "cpu99", "stmts", "sqlMs", "floor", "p99-2F", "ok", "peakMB", "growMB"};
    QList<QStringList> rows{head};
    for (const QJsonValue& v : runs) {
        const QJsonObject r = v.toObject();
        const QJsonObject load = r.value(QStringLiteral("load")).toObject();
        const QJsonObject scan = r.value(QStringLiteral("scan")).toObject();
        const QJsonObject ms = scan.value(QStringLiteral("ms")).toObject();
        const QJsonObject memory = r.value(QStringLiteral("memory")).toObject();
        if (r.value(QStringLiteral("error_count")).toInt() != 0 && scan.isEmpty()) {
            rows << QStringList{QString::number(r.value(QStringLiteral("lines")).toInt()), r.value(QStringLiteral("view")).toString(),
                                QString(), QStringLiteral("FAILED")};
            continue;
        }
        rows << QStringList{
            QString::number(r.value(QStringLiteral("lines")).toInt()),
            r.value(QStringLiteral("view")).toString(),
            r.value(QStringLiteral("journal")).toBool(true) ? QStringLiteral("on") : QStringLiteral("off"),
            cell(load.value(QStringLiteral("first_ms")).toObject().value(QStringLiteral("median")).toDouble(), 1),
            cell(load.value(QStringLiteral("ms")).toObject().value(QStringLiteral("median")).toDouble(), 1),
            cell(load.value(QStringLiteral("sql_ms")).toObject().value(QStringLiteral("median")).toDouble(), 1),
            cell(load.value(QStringLiteral("floor_ms")).toDouble(), 1),
            QString::number(ms.value(QStringLiteral("n")).toInt()),
            cell(ms.value(QStringLiteral("median")).toDouble()),
            cell(ms.value(QStringLiteral("p95")).toDouble()),
            cell(ms.value(QStringLiteral("p99")).toDouble()),
            cell(ms.value(QStringLiteral("max")).toDouble(), 1),
            cell(scan.value(QStringLiteral("cpu_ms")).toObject().value(QStringLiteral("p99")).toDouble()),
            cell(scan.value(QStringLiteral("sql_statements_per_scan")).toDouble(), 1),
            cell(scan.value(QStringLiteral("sql_ms_per_scan")).toObject().value(QStringLiteral("mean")).toDouble(), 3),
            cell(scan.value(QStringLiteral("floor_ms")).toDouble(), 3),
            cell(scan.value(QStringLiteral("over_floor_ms")).toObject().value(QStringLiteral("p99")).toDouble()),
            scan.value(QStringLiteral("target_met")).toBool() ? QStringLiteral("yes") : QStringLiteral("NO"),
            cell(memory.value(QStringLiteral("peak_rss_mb")).toDouble(), 1),
            cell(memory.value(QStringLiteral("growth_rss_mb")).toDouble(), 2),
        };
    }
    QList<int> widths;
    for (const QStringList& row : rows)
        for (int c = 0; c < row.size(); ++c) {
            if (widths.size() <= c)
                widths << 0;
            widths[c] = qMax(widths[c], int(row[c].size()));
        }
    QString text;
    for (const QStringList& row : rows) {
        for (int c = 0; c < row.size(); ++c)
            text += (c < 3 ? row[c].leftJustified(widths[c]) : row[c].rightJustified(widths[c])) + QStringLiteral("  ");
        text = text.trimmed() + QLatin1Char('\n');
    }
    return text + QStringLiteral(
               "times in ms. load1st: first load of a session (median of 3 sessions); load: re-pick load\n"
               "(median); ldSQL: its engine time; ldFloor, floor: the same statements straight on SQLite (floor:\n"
               "of the commonest scan); cpu99: p99 of the station's own CPU time per scan; stmts, sqlMs:\n"
               "statements and engine time per scan; p99-2F: p99 of (scan - 2 x the floor of that scan's own\n"
               "statements), ok when at most 5 ms; growMB: resident growth over the timed scans; jrnl: the\n"
               "session journal written before each answer (off: the same run without it).\n");
}

// The journal's cost: the scan p99 with and without it, per view.
QString journalCost(const QJsonArray& runs)
{
    QString text;
    for (const QJsonValue& off : runs) {
        const QJsonObject without = off.toObject();
        if (without.value(QStringLiteral("journal")).toBool(true))
            continue;
        for (const QJsonValue& on : runs) {
            const QJsonObject with = on.toObject();
            if (!with.value(QStringLiteral("journal")).toBool(true) || with.value(QStringLiteral("lines")) != without.value(QStringLiteral("lines"))
                || with.value(QStringLiteral("view")) != without.value(QStringLiteral("view")))
                continue;
            const auto p99 = [](const QJsonObject& r, const char* figure) {
                return r.value(QStringLiteral("scan")).toObject().value(QLatin1String(figure)).toObject().value(QStringLiteral("p99")).toDouble();
            };
            text += QStringLiteral("journal cost, %1 lines, %2 view: scan p99 %3 ms with, %4 ms without (%5 ms); cpu p99 %6 / %7 ms\n")
                        .arg(with.value(QStringLiteral("lines")).toInt())
                        .arg(with.value(QStringLiteral("view")).toString())
                        .arg(cell(p99(with, "ms")), cell(p99(without, "ms")), QString::number(p99(with, "ms") - p99(without, "ms"), 'f', 2))
                        .arg(cell(p99(with, "cpu_ms")), cell(p99(without, "cpu_ms")));
        }
    }
    return text;
}

int runAll(const Options& o)
{
    std::unique_ptr<QTemporaryDir> temp;
    QString work = o.work;
    if (work.isEmpty()) {
        temp = std::make_unique<QTemporaryDir>();
        if (!temp->isValid()) {
            print(stderr, QStringLiteral("no temporary folder\n"));
            return ExitFailed;
        }
        temp->setAutoRemove(!o.keep);
        work = temp->path();
    }
    if (!QDir().mkpath(work)) {
        print(stderr, QStringLiteral("cannot make %1\n").arg(work));
        return ExitFailed;
    }
    if (!o.scripts.isEmpty())
        QDir().mkpath(o.scripts);
    QJsonArray runs;
    QJsonArray databases;
    bool allGood = true;
    for (int size : o.sizes) {
        const QString db = QDir(work).filePath(QStringLiteral("demo_%1.db").arg(size));
        BenchClock clock;
        try {
            CreateDemoDatabase(db, size);
        } catch (const HostError& e) {
            print(stderr, QStringLiteral("cannot make the demo database of %1 lines: %2\n").arg(size).arg(e.description()));
            return ExitFailed;
        }
        databases.append(QJsonObject{{QStringLiteral("lines"), size}, {QStringLiteral("create_ms"), clock.milliseconds()},
                                     {QStringLiteral("bytes"), double(QFileInfo(db).size())}});
        for (const QString& view : o.views) {
            print(stderr, QStringLiteral("rnw_bench: %1 lines, %2 view...\n").arg(size).arg(view));
            const QString runFolder = QDir(work).filePath(QStringLiteral("run_%1_%2").arg(size).arg(view));
            for (const bool journal : {true, false}) {
                if (!journal && size != o.journalCost)
                    continue;
                if (!journal)
                    print(stderr, QStringLiteral("rnw_bench: %1 lines, %2 view, without the journal...\n").arg(size).arg(view));
                const QJsonObject result = runChild(o, db, size, view, runFolder + (journal ? QString() : QStringLiteral("_nj")), journal);
                for (const QJsonValue& e : result.value(QStringLiteral("errors")).toArray())
                    print(stderr, QStringLiteral("  error: %1\n").arg(e.toString()));
                if (result.value(QStringLiteral("error_count")).toInt() != 0)
                    allGood = false;
                runs.append(result);
            }
        }
    }
    const QJsonObject document{
        {QStringLiteral("benchmark"), QStringLiteral("rnw_bench")},
        {QStringLiteral("machine"), MachineDescription()},
        {QStringLiteral("settings"), QJsonObject{{QStringLiteral("scans"), o.scans}, {QStringLiteral("loads"), o.loads},
                                                 {QStringLiteral("floor_sample"), o.floorSample},
                                                 {QStringLiteral("order"), o.order}}},
        {QStringLiteral("databases"), databases},
        {QStringLiteral("runs"), runs},
    };
    print(stdout, table(runs) + journalCost(runs));
    const QByteArray json = QJsonDocument(document).toJson(QJsonDocument::Indented);
    if (o.json.isEmpty()) {
        print(stdout, QString::fromUtf8(json));
    } else {
        QFile file(o.json);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(json) != json.size()) {
            print(stderr, QStringLiteral("cannot write %1\n").arg(o.json));
            return ExitFailed;
        }
    }
    return allGood ? ExitOk : ExitFailed;
}

} // namespace

int main(int argc, char** argv)
{
    // Offscreen always: a benchmark draws into memory, never on a screen.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("rnw_bench"));
    Options options;
    QString error;
    if (!parse(QApplication::arguments().mid(1), options, error)) {
        print(stderr, error + QLatin1Char('\n') + usage());
        return ExitUsage;
    }
    if (options.worker)
        return runWorker(options);
    return runAll(options);
}
