#include "station_bench.h"
#include "app/replay_driver.h"
#include "bench_stats.h"
#include "demo/demo_database.h"
#include "host/object_factory.h"
#include "host/platform.h"
#include "host/session_journal.h"
#include "sql/sql_engine.h"
#include "sql/sql_statement_trace.h"
#include "sql/text_collation.h"
#include "sql/tsql_bridge.h"
#include "sql_floor.h"
#include "station/cls_packing_goods.h"
#include "station/frm_pickig_goods.h"
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTimer>
#include <algorithm>
#include <functional>
#include <memory>
#include <random>

namespace {

constexpr int kMaxErrorsKept = 20;
constexpr int kFloorRepetitions = 3;
constexpr int kLoadFloorRepetitions = 5;

// What the station said besides its labels: boxes are never expected in a
// benchmark run, voices are counted by prompt.
struct Witness {
    int boxes = 0;
    QStringList boxTexts;
    QHash<QString, int> voices;
};

class CountingMessageBox : public IMessageBox {
public:
    explicit CountingMessageBox(std::shared_ptr<Witness> w) : m_w(std::move(w)) {}
    int Show(QWidget*, const QString& text, int flags, const QString& title) override
    {
        ++m_w->boxes;
        if (m_w->boxTexts.size() < kMaxErrorsKept)
            m_w->boxTexts << title + QStringLiteral(": ") + text;
        return (flags & 7) == 0 ? MsgBox::Ok : MsgBox::Yes;
    }

private:
    std::shared_ptr<Witness> m_w;
};

class CountingSound : public ISound {
public:
    explicit CountingSound(std::shared_ptr<Witness> w) : m_w(std::move(w)) {}
    void Play(const QString& fileName) override { ++m_w->voices[fileName]; }

private:
    std::shared_ptr<Witness> m_w;
};

// No journal: the station runs as one whose journal another window holds.
class NoJournal : public ISessionJournal {
public:
    bool Claim(const QString&) override { return false; }
    bool Exists(const QString&) override { return false; }
    JournalState Read(const QString&) override { return {}; }
    QString SetAside(const QString&) override { return {}; }
    void Start(const QString&, const JournalState&) override {}
    void Commit(const JournalState&) override {}
    void Remove() override {}
};

struct OrderUnit {
    QString barcode;
};

struct BenchOrder {
    QString logisticsOrder;
    int lines = 0;
    int units = 0;
    std::vector<QString> unitBarcodes;   // one per unit to pick, line by line
    QString error;
};

// The bench order as the database holds it, read past the station.
BenchOrder readBenchOrder(const QString& file, int lines)
{
    BenchOrder order;
    order.logisticsOrder = QStringLiteral("BENCH%1").arg(lines);
    const QString name = QStringLiteral("rnw_bench_order");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(file);
        if (!db.open()) {
            order.error = db.lastError().text();
        } else {
            RegisterTextCollation(db);
            QSqlQuery q(db);
            q.prepare(QStringLiteral(
                "SELECT e.FQuantity, b.FBarCode FROM IC_Web2ERPOrdersEntry e"
                " JOIN IC_Web2ERPOrders o ON o.FID = e.FID"
                " JOIN t_Barcode b ON b.FItemID = e.FItemID"
                " WHERE o.FLogisticsOrder = ? ORDER BY e.FEntryID"));
            q.addBindValue(order.logisticsOrder);
            if (!q.exec())
                order.error = q.lastError().text();
            while (q.next()) {
                ++order.lines;
                const int quantity = q.value(0).toInt();
                for (int k = 0; k < quantity; ++k)
                    order.unitBarcodes.push_back(q.value(1).toString());
            }
            order.units = int(order.unitBarcodes.size());
            q = QSqlQuery();
            db.close();
        }
    }
    QSqlDatabase::removeDatabase(name);
    if (order.error.isEmpty() && order.lines != lines)
        order.error = QStringLiteral("the database holds %1 lines for %2, not %3")
                          .arg(order.lines).arg(order.logisticsOrder).arg(lines);
    return order;
}

enum class Phase { FirstLoad, Load, Scan, Reload };

// Commands are replay-script lines; the phase says what the step's time counts as.
struct Plan {
    QString script;
    QList<ReplayCommand> commands;
    std::vector<Phase> phases;
    QString error;
};

Plan makePlan(const BenchOrder& order, const StationBenchConfig& config)
{
    Plan plan;
    std::vector<Phase> phases;
    QStringList lines;
    auto add = [&](const QString& line, Phase phase) {
        lines << line;
        phases.push_back(phase);
    };
    add(QStringLiteral("scan TxtID %1").arg(order.logisticsOrder), Phase::FirstLoad);
    for (int i = 0; i < config.loads; ++i)
        add(QStringLiteral("click CmdBtnRePick"), Phase::Load);

    // The first order is the warm-up; `scans` are timed after it has passed.
    std::mt19937 random(20240601u + unsigned(order.lines));
    int timed = -order.units;
    while (timed < config.scans) {
        std::vector<QString> cycle = order.unitBarcodes;
        if (!config.listedOrder)
            std::shuffle(cycle.begin(), cycle.end(), random);
        for (const QString& code : cycle)
            add(QStringLiteral("scan TxtItemID %1").arg(code), Phase::Scan);
        timed += int(cycle.size());
        add(QStringLiteral("click CmdBtnRePick"), Phase::Reload);
    }
    plan.script = QStringLiteral("# rnw_bench: %1 lines, %2 view, %3 order\n")
                      .arg(order.lines)
                      .arg(config.gridView ? "grid" : "tiles", config.listedOrder ? "listed" : "shuffled")
        + lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
    int badLine = 0;
    QString reason;
    if (!ParseReplayScript(plan.script, plan.commands, badLine, reason)) {
        plan.error = QStringLiteral("script line %1: %2").arg(badLine).arg(reason);
        return plan;
    }
    // The header comment is skipped by the parser: one phase per command.
    plan.phases = std::move(phases);
    if (int(plan.phases.size()) != plan.commands.size())
        plan.error = QStringLiteral("the script parsed into %1 commands, %2 planned")
                         .arg(plan.commands.size()).arg(plan.phases.size());
    return plan;
}

frmPickigGoods* showingStation()
{
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* form = qobject_cast<frmPickigGoods*>(widget); form && form->isVisible())
            return form;
    return nullptr;
}

// A per-run component folder, so that the picture folder and the default
// picture are the run's own and two runs never empty each other's pictures.
bool prepareComponentFolder(const QString& workFolder, QString& error)
{
    const QString builtFolder = ComponentFolder();
    const QString component = QDir(workFolder).filePath(QStringLiteral("component")) + QLatin1Char('/');
    if (!QDir().mkpath(component + QStringLiteral("images"))) {
        error = QStringLiteral("cannot make %1").arg(component);
        return false;
    }
    const QString picture = QStringLiteral("images/default.jpg");
    QFile::remove(component + picture);
    if (!QFile::copy(builtFolder + picture, component + picture)) {
        error = QStringLiteral("no default picture at %1").arg(builtFolder + picture);
        return false;
    }
    SetComponentFolder(component);
    return true;
}

struct StepFigures {
    double ms = 0;
    SqlTraceCounters sql;
};

class Run {
public:
    Run(const StationBenchConfig& config, const BenchOrder& order, std::shared_ptr<Witness> witness)
        : m_config(config), m_order(order), m_witness(std::move(witness))
    {
    }

    // One station session: the plan's commands on the form; `main` is the
    // session whose scans are timed (the others only load the order).
    void drive(frmPickigGoods* form, const Plan& plan, bool main);
    QJsonObject figures(const QString& databaseFile);

private:
    void fail(const QString& what)
    {
        ++m_errorCount;
        if (m_errors.size() < kMaxErrorsKept)
            m_errors << what;
    }
    void check(const QJsonObject& state, int step, Phase phase);

    const StationBenchConfig& m_config;
    const BenchOrder& m_order;
    std::shared_ptr<Witness> m_witness;

    Sample m_firstLoadMs, m_firstLoadCpuMs, m_firstLoadSqlMs, m_loadCpuMs;
    qint64 m_firstLoadStatementCount = 0;
    std::vector<SqlTraceStatement> m_firstLoadStatements;
    std::vector<SqlTraceStatement> m_loadStatements;
    Sample m_loadMs, m_reloadMs, m_scanMs, m_scanCpuMs, m_scanSqlMs, m_scanStatements, m_loadSqlMs, m_loadStatementsCount;
    // Scans grouped by the statements they ran (a counted unit, the unit
    // that completes the order, ...): each kind gets its own floor.
    struct ScanKind {
        QString signature;
        std::vector<std::vector<SqlTraceStatement>> samples;
        Sample ms;
        double floorMs = 0;
    };
    int kindOf(const std::vector<SqlTraceStatement>& statements);
    std::vector<ScanKind> m_kinds;
    QHash<QString, int> m_kindIndex;
    std::vector<std::pair<int, double>> m_scanKindMs;   // per timed scan: its kind and time
    double m_scanBridgeMs = 0;
    TsqlBridgeCacheStats m_cacheAtWarm, m_cacheAtEnd;
    MemoryReading m_memoryAtWarm, m_memoryAtEnd, m_memoryBefore;
    int m_timedScans = 0;
    int m_ordersPassed = 0;
    int m_pickedInCycle = 0;
    int m_errorCount = 0;
    int m_boxesSeen = 0;
    int m_prepared = 0;
    QStringList m_errors;
};

int Run::kindOf(const std::vector<SqlTraceStatement>& statements)
{
    QString signature;
    for (const SqlTraceStatement& st : statements)
        signature += st.sql + QLatin1Char('\n');
    const auto it = m_kindIndex.constFind(signature);
    if (it != m_kindIndex.constEnd())
        return *it;
    m_kinds.push_back(ScanKind{signature, {}, {}, 0});
    m_kinds.back().ms.reserve(size_t(m_config.scans) + size_t(m_order.units));
    m_kindIndex.insert(signature, int(m_kinds.size()) - 1);
    return int(m_kinds.size()) - 1;
}

void Run::check(const QJsonObject& state, int step, Phase phase)
{
    if (m_witness->boxes != m_boxesSeen) {
        m_boxesSeen = m_witness->boxes;
        fail(QStringLiteral("step %1: message box %2").arg(step).arg(m_witness->boxTexts.value(m_boxesSeen - 1)));
    }
    const QString total = QString::number(m_order.units);
    if (phase == Phase::Scan) {
        ++m_pickedInCycle;
        const QString expected = QString::number(m_pickedInCycle) + QLatin1Char('/') + total;
        const QString picked = state.value(QStringLiteral("lblPickedNum")).toString();
        if (picked != expected)
            fail(QStringLiteral("step %1: picked shows %2, expected %3").arg(step).arg(picked, expected));
        if (m_pickedInCycle == m_order.units) {
            if (state.value(QStringLiteral("ImgSuccess")).toBool())
                ++m_ordersPassed;
            else
                fail(QStringLiteral("step %1: the order is complete but not shown as passed").arg(step));
        }
        return;
    }
    // A load: the order's total and nothing picked.
    m_pickedInCycle = 0;
    const QString orderNum = state.value(QStringLiteral("lblOrderNum")).toString();
    if (orderNum != total)
        fail(QStringLiteral("step %1: order total shows %2, expected %3").arg(step).arg(orderNum, total));
    if (state.value(QStringLiteral("ImgSuccess")).toBool())
        fail(QStringLiteral("step %1: a fresh load shows the order as passed").arg(step));
}

void Run::drive(frmPickigGoods* form, const Plan& plan, bool main)
{
    // The launcher's replay delivers every command; its state line is read
    // after the clocks have stopped.
    ReplayDriver driver;
    driver.attach(form);
    if (main) {
        // Room for every figure up front, so the memory readings see the station only.
        const size_t plannedScans = size_t(m_config.scans) + 2 * size_t(m_order.units);
        for (Sample* sample : {&m_scanMs, &m_scanCpuMs, &m_scanSqlMs, &m_scanStatements})
            sample->reserve(plannedScans);
        m_scanKindMs.reserve(plannedScans);
        m_memoryBefore = ReadMemory();
    }
    // The first order is the warm-up; figures of memory and the shape cache
    // start when it has passed and been re-picked.
    bool warm = false;
    for (int i = 0; i < plan.commands.size() && showingStation() == form; ++i) {
        const Phase phase = plan.phases[size_t(i)];
        const bool timedScan = phase == Phase::Scan && m_ordersPassed >= 1;
        if (timedScan && !warm) {
            warm = true;
            QApplication::processEvents();
            m_memoryAtWarm = ReadMemory();
            m_cacheAtWarm = TsqlBridgeCacheStatistics();
        }
        const bool capture = phase == Phase::FirstLoad || (phase == Phase::Load && m_loadStatements.empty()) || timedScan;
        if (capture) {
            SqlStatementTrace::takeCaptured();
            SqlStatementTrace::setCapturing(true);
        }
        const SqlTraceCounters before = SqlStatementTrace::counters();
        double ms = 0, cpuMs = 0;
        SqlTraceCounters sql;
        BenchClock clock;
        ThreadCpuClock cpu;
        const QJsonObject state = driver.step(plan.commands[i], [&] {
            ms = clock.milliseconds();
            cpuMs = cpu.milliseconds();
            sql = SqlStatementTrace::counters() - before;
            if (capture)
                SqlStatementTrace::setCapturing(false);
        });

        switch (phase) {
        case Phase::FirstLoad:
            m_firstLoadMs.add(ms);
            m_firstLoadCpuMs.add(cpuMs);
            m_firstLoadSqlMs.add(double(sql.engineNanoseconds) / 1e6);
            m_firstLoadStatementCount = sql.statements;
            if (m_firstLoadStatements.empty())
                m_firstLoadStatements = SqlStatementTrace::takeCaptured();
            else
                SqlStatementTrace::takeCaptured();
            break;
        case Phase::Load:
            m_loadMs.add(ms);
            m_loadCpuMs.add(cpuMs);
            m_loadSqlMs.add(double(sql.engineNanoseconds) / 1e6);
            m_loadStatementsCount.add(double(sql.statements));
            if (capture)
                m_loadStatements = SqlStatementTrace::takeCaptured();
            break;
        case Phase::Reload:
            m_reloadMs.add(ms);
            break;
        case Phase::Scan:
            if (timedScan) {
                ++m_timedScans;
                m_scanMs.add(ms);
                m_scanCpuMs.add(cpuMs);
                m_scanSqlMs.add(double(sql.engineNanoseconds) / 1e6);
                m_scanStatements.add(double(sql.statements));
                m_scanBridgeMs += double(sql.bridgeNanoseconds) / 1e6;
                std::vector<SqlTraceStatement> statements = SqlStatementTrace::takeCaptured();
                const int kind = kindOf(statements);
                ScanKind& k = m_kinds[size_t(kind)];
                k.ms.add(ms);
                if (int(k.samples.size()) < m_config.floorSample)
                    k.samples.push_back(std::move(statements));
                m_scanKindMs.emplace_back(kind, ms);
            }
            break;
        }
        check(state, plan.commands[i].lineNumber, phase);
    }
    if (!main)
        return;
    QApplication::processEvents();
    m_memoryAtEnd = ReadMemory();
    m_cacheAtEnd = TsqlBridgeCacheStatistics();
    try {
        m_prepared = SqlEngine::forProps(DemoPropsString(m_config.databaseFile))->preparedCount();
    } catch (...) {
        m_prepared = -1;
    }
    if (!warm)
        fail(QStringLiteral("the first order never passed: no scan was timed"));
}

QJsonObject Run::figures(const QString& databaseFile)
{
    // The floor runs with the station closed, on the same file.
    SqlFloor floor(databaseFile);
    QJsonArray kinds;
    int commonest = -1;
    for (size_t i = 0; i < m_kinds.size(); ++i) {
        ScanKind& k = m_kinds[i];
        Sample kindFloor;
        for (const auto& statements : k.samples) {
            const double ms = floor.medianMs(statements, kFloorRepetitions);
            if (ms < 0) {
                fail(QStringLiteral("floor: %1").arg(floor.lastError()));
                break;
            }
            kindFloor.add(ms);
        }
        k.floorMs = kindFloor.median();
        if (commonest < 0 || k.ms.count() > m_kinds[size_t(commonest)].ms.count())
            commonest = int(i);
        const std::vector<SqlTraceStatement>& example = k.samples.empty() ? std::vector<SqlTraceStatement>() : k.samples.front();
        QJsonArray texts;
        for (const SqlTraceStatement& st : example)
            texts.append(st.sql.simplified().left(80));
        kinds.append(QJsonObject{{QStringLiteral("statements"), texts},
                                 {QStringLiteral("ms"), k.ms.summary()},
                                 {QStringLiteral("floor_ms"), k.floorMs},
                                 {QStringLiteral("floor_ms_spread"), kindFloor.summary()}});
    }
    // Each scan against the floor of its own statements.
    Sample overFloor;
    overFloor.reserve(m_scanKindMs.size());
    for (const auto& [kind, ms] : m_scanKindMs)
        overFloor.add(ms - 2.0 * m_kinds[size_t(kind)].floorMs);
    const double typicalFloor = commonest < 0 ? 0 : m_kinds[size_t(commonest)].floorMs;
    const double firstLoadFloor = floor.medianMs(m_firstLoadStatements, kLoadFloorRepetitions);
    const double loadFloor = m_loadStatements.empty() ? 0 : floor.medianMs(m_loadStatements, kLoadFloorRepetitions);
    if (firstLoadFloor < 0 || loadFloor < 0)
        fail(QStringLiteral("load floor: %1").arg(floor.lastError()));

    QJsonObject scan{
        {QStringLiteral("ms"), m_scanMs.summary()},
        {QStringLiteral("cpu_ms"), m_scanCpuMs.summary()},
        {QStringLiteral("sql_statements_per_scan"), m_scanStatements.mean()},
        {QStringLiteral("sql_ms_per_scan"), m_scanSqlMs.summary()},
        {QStringLiteral("bridge_ms_per_scan"), m_timedScans ? m_scanBridgeMs / m_timedScans : 0.0},
        {QStringLiteral("floor_ms"), typicalFloor},
        {QStringLiteral("target_ms"), 2.0 * typicalFloor + 5.0},
        {QStringLiteral("over_floor_ms"), overFloor.summary()},
        {QStringLiteral("target_met"), overFloor.count() > 0 && overFloor.percentile(99) <= 5.0},
        {QStringLiteral("kinds"), kinds},
        {QStringLiteral("bridge_cache_hits"), double(m_cacheAtEnd.hits - m_cacheAtWarm.hits)},
        {QStringLiteral("bridge_cache_misses"), double(m_cacheAtEnd.misses - m_cacheAtWarm.misses)},
        {QStringLiteral("prepared_statements"), m_prepared},
    };
    QJsonObject load{
        {QStringLiteral("first_ms"), m_firstLoadMs.summary()},
        {QStringLiteral("first_cpu_ms"), m_firstLoadCpuMs.summary()},
        {QStringLiteral("first_sql_statements"), double(m_firstLoadStatementCount)},
        {QStringLiteral("first_sql_ms"), m_firstLoadSqlMs.summary()},
        {QStringLiteral("first_floor_ms"), firstLoadFloor},
        {QStringLiteral("ms"), m_loadMs.summary()},
        {QStringLiteral("cpu_ms"), m_loadCpuMs.summary()},
        {QStringLiteral("sql_statements"), m_loadStatementsCount.median()},
        {QStringLiteral("sql_ms"), m_loadSqlMs.summary()},
        {QStringLiteral("floor_ms"), loadFloor},
        {QStringLiteral("reload_after_pass_ms"), m_reloadMs.summary()},
    };
    QJsonObject memory{
        {QStringLiteral("peak_rss_mb"), m_memoryAtEnd.peakResidentMb},
        {QStringLiteral("rss_before_mb"), m_memoryBefore.residentMb},
        {QStringLiteral("rss_warm_mb"), m_memoryAtWarm.residentMb},
        {QStringLiteral("rss_end_mb"), m_memoryAtEnd.residentMb},
        {QStringLiteral("growth_rss_mb"), m_memoryAtEnd.residentMb - m_memoryAtWarm.residentMb},
        {QStringLiteral("growth_heap_mb"), m_memoryAtEnd.heapInUseMb - m_memoryAtWarm.heapInUseMb},
        {QStringLiteral("over_scans"), m_timedScans},
    };
    QJsonObject voices;
    for (auto it = m_witness->voices.constBegin(); it != m_witness->voices.constEnd(); ++it)
        voices.insert(it.key(), it.value());
    return QJsonObject{
        {QStringLiteral("lines"), m_order.lines},
        {QStringLiteral("units"), m_order.units},
        {QStringLiteral("view"), m_config.gridView ? QStringLiteral("grid") : QStringLiteral("tiles")},
        {QStringLiteral("journal"), m_config.journal},
        {QStringLiteral("order"), m_config.listedOrder ? QStringLiteral("listed") : QStringLiteral("shuffled")},
        {QStringLiteral("load"), load},
        {QStringLiteral("scan"), scan},
        {QStringLiteral("memory"), memory},
        {QStringLiteral("orders_passed"), m_ordersPassed},
        {QStringLiteral("voices"), voices},
        {QStringLiteral("boxes"), m_witness->boxes},
        {QStringLiteral("error_count"), m_errorCount},
        {QStringLiteral("errors"), QJsonArray::fromStringList(m_errors)},
    };
}

QJsonObject failure(const QString& what)
{
    return QJsonObject{{QStringLiteral("error_count"), 1},
                       {QStringLiteral("errors"), QJsonArray{what}}};
}

} // namespace

QJsonObject RunStationBench(const StationBenchConfig& config)
{
    QString error;
    if (!QDir().mkpath(config.workFolder) || !prepareComponentFolder(config.workFolder, error))
        return failure(error.isEmpty() ? QStringLiteral("cannot make %1").arg(config.workFolder) : error);

    // The run's own copy: the station writes picking status and delivery.
    const QString database = QDir(config.workFolder).filePath(QStringLiteral("bench.db"));
    QFile::remove(database);
    if (!QFile::copy(config.databaseFile, database))
        return failure(QStringLiteral("cannot copy %1").arg(config.databaseFile));
    StationBenchConfig own = config;
    own.databaseFile = database;

    const BenchOrder order = readBenchOrder(database, config.lines);
    if (!order.error.isEmpty())
        return failure(order.error);
    const Plan plan = makePlan(order, own);
    if (!plan.error.isEmpty())
        return failure(plan.error);
    if (!config.scriptOut.isEmpty()) {
        QFile out(config.scriptOut);
        if (out.open(QIODevice::WriteOnly | QIODevice::Truncate))
            out.write(plan.script.toUtf8());
    }

    const QString props = DemoPropsString(database);
    auto witness = std::make_shared<Witness>();
    try {
        CreateServerObjectAs<IShareProps>(ProgIds::ShareProps)->SetProperty(CurrentProcessId(), QStringLiteral("PropsString"), props);
        // The view is the user's stored option, as a worker would have left it.
        GoodsRecord showText;
        showText.SetValue(QStringLiteral("chkShowText"), config.gridView ? 1 : 0);
        showText.SetValue(QStringLiteral("chkHaveSerial"), 0);
        CreateServerObjectAs<IUserProfile>(ProgIds::UserProfile)
            ->SaveUserProfile(props, QStringLiteral("EC"), QStringLiteral("PickGoods_chkShowText"), showText);
    } catch (const HostError& e) {
        return failure(e.description());
    }
    RegisterServerObject(ProgIds::MessageBox, [witness] { return std::make_shared<CountingMessageBox>(witness); });
    RegisterServerObject(ProgIds::Sound, [witness] { return std::make_shared<CountingSound>(witness); });
    if (!config.journal)
        RegisterServerObject(ProgIds::SessionJournal, [] { return std::make_shared<NoJournal>(); });

    SqlStatementTrace::setCapturing(false);
    SqlStatementTrace::reset();
    Run run(own, order, witness);
    // One station session, as the host opens it: shown modally, driven once shown.
    auto session = [&](const Plan& sessionPlan, bool main) {
        bool drove = false;
        std::function<void()> start;
        start = [&] {
            if (frmPickigGoods* form = showingStation()) {
                drove = true;
                run.drive(form, sessionPlan, main);
                if (showingStation() == form)
                    form->closeWithoutAsking();
                return;
            }
            QTimer::singleShot(10, start);
        };
        QTimer::singleShot(0, start);
        clsPackingGoods station;
        station.ShowForm();
        return drove;
    };
    // Sessions that only load the order: the first load of a session empties
    // the picture folder and writes every picture, so it is timed apart.
    Plan cold;
    cold.phases.push_back(Phase::FirstLoad);
    cold.commands << plan.commands.first();
    bool drove = true;
    for (int i = 0; drove && i < config.coldSessions; ++i)
        drove = session(cold, false);
    drove = drove && session(plan, true);
    SqlEngine::closeAll();
    RestoreBuiltInServerObjects(ProgIds::MessageBox);
    RestoreBuiltInServerObjects(ProgIds::Sound);
    RestoreBuiltInServerObjects(ProgIds::SessionJournal);
    if (!drove)
        return failure(QStringLiteral("the station never showed"));
    return run.figures(database);
}
