#include "support/replay_harness.h"
#include "sql/text_collation.h"
#include <QAtomicInt>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <gtest/gtest.h>

namespace {

constexpr int TimeoutMs = 120000;

// RNW_BIN_DIR, else beside the test program.
QString launcherPath()
{
    const QString dir = qEnvironmentVariable("RNW_BIN_DIR", QCoreApplication::applicationDirPath());
    return QDir(dir).filePath(QStringLiteral("rnwdpicking"));
}

// The demo database, made once a process by the launcher itself.
const QString& pristineDemo()
{
    static QTemporaryDir dir;
    static const QString file = dir.filePath(QStringLiteral("pristine.db"));
    static const int made = QProcess::execute(launcherPath(), {QStringLiteral("--init-demo"), file});
    EXPECT_EQ(made, 0) << "rnwdpicking --init-demo " << file.toStdString();
    return file;
}

} // namespace

QJsonObject ReplayRun::step(int number) const
{
    for (const QJsonObject& s : steps)
        if (s.value(QStringLiteral("step")).toInt() == number)
            return s;
    return {};
}

std::string ReplayRun::describe() const
{
    return QStringLiteral("exit %1\nstderr: %2\nstdout: %3")
        .arg(exitCode)
        .arg(standardError.left(4000), standardOutput.left(8000))
        .toStdString();
}

ReplayHarness::ReplayHarness() : m_dbFile(m_dir.filePath(QStringLiteral("demo.db")))
{
    EXPECT_TRUE(QFile::copy(pristineDemo(), m_dbFile)) << "no demo database in " << m_dir.path().toStdString();
}

QProcessEnvironment ReplayHarness::environment() const
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    env.insert(QStringLiteral("XDG_DATA_HOME"), m_dir.filePath(QStringLiteral("xdg-data")));
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), m_dir.filePath(QStringLiteral("xdg-config")));
    return env;
}

QStringList ReplayHarness::props(int userId) const
{
    return {QStringLiteral("--props"),
            QStringLiteral("UserID=%1;ConnectString={Provider=SQLite;Data Source=%2};").arg(userId).arg(m_dbFile)};
}

ReplayRun ReplayHarness::run(const QStringList& commands, const QStringList& extraArgs) const
{
    static QAtomicInt counter;
    QFile file(m_dir.filePath(QStringLiteral("script_%1.txt").arg(counter.fetchAndAddRelaxed(1))));
    if (!file.open(QIODevice::WriteOnly) || file.write(commands.join(QLatin1Char('\n')).toUtf8() + '\n') < 0)
        ADD_FAILURE() << "cannot write " << file.fileName().toStdString();
    file.close();
    const QStringList args = extraArgs.contains(QStringLiteral("--props")) ? extraArgs : extraArgs + props();
    return runRaw(args + QStringList{QStringLiteral("--replay"), file.fileName()});
}

ReplayRun ReplayHarness::play(const QList<ReplayStep>& steps, const QStringList& extraArgs) const
{
    QStringList commands;
    static const QRegularExpression barcode(QStringLiteral("@(\\d+)"));
    for (const ReplayStep& s : steps) {
        const QRegularExpressionMatch m = barcode.match(s.command);
        commands << (m.hasMatch() ? QString(s.command).replace(m.captured(0), sql(QStringLiteral(
                            "SELECT FBarCode FROM t_Barcode WHERE FItemID = ?"), {m.captured(1)}).toString())
                                  : s.command);
    }
    const ReplayRun r = run(commands, extraArgs);
    EXPECT_EQ(r.exitCode, 0) << r.describe();
    EXPECT_EQ(r.steps.size(), steps.size()) << r.describe();
    for (int i = 0; i < steps.size() && i < r.steps.size(); ++i) {
        SCOPED_TRACE(QStringLiteral("step %1: %2").arg(i + 1).arg(commands[i]).toStdString());
        expectShown(r.steps[i], steps[i].shows);
    }
    return r;
}

// A line that is not a JSON object is kept as {"unparsed": line}.
ReplayRun ReplayHarness::runRaw(const QStringList& args, const QString& stdinScript) const
{
    ReplayRun result;
    QProcess process;
    process.setProcessEnvironment(environment());
    process.start(launcherPath(), args);
    if (!process.waitForStarted(TimeoutMs)) {
        result.standardError = QStringLiteral("cannot start the launcher: ") + process.errorString();
        return result;
    }
    if (!stdinScript.isNull())
        process.write(stdinScript.toUtf8());
    process.closeWriteChannel();
    const bool ended = process.waitForFinished(TimeoutMs);
    if (!ended)
        process.kill();
    process.waitForFinished();
    const QByteArray out = process.readAllStandardOutput();
    result.standardOutput = QString::fromUtf8(out);
    result.standardError = QString::fromUtf8(process.readAllStandardError());
    result.exitCode = ended && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    for (const QByteArray& line : out.split('\n')) {
        const QJsonDocument doc = QJsonDocument::fromJson(line.trimmed());
        if (!line.trimmed().isEmpty())
            result.steps << (doc.isObject() ? doc.object() : QJsonObject{{"unparsed", QString::fromUtf8(line)}});
    }
    return result;
}

QVariant ReplayHarness::sql(const QString& statement, const QVariantList& params) const
{
    static QAtomicInt counter;
    const QString name = QStringLiteral("replay_harness_%1").arg(counter.fetchAndAddRelaxed(1));
    QVariant value;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(m_dbFile);
        if (db.open())
            RegisterTextCollation(db);
        QSqlQuery query(db);
        query.prepare(statement);
        for (const QVariant& p : params)
            query.addBindValue(p);
        if (query.exec() && query.next())
            value = query.value(0);
        EXPECT_FALSE(query.lastError().isValid()) << query.lastError().text().toStdString();
    }
    QSqlDatabase::removeDatabase(name);
    return value;
}

QString ReplayHarness::orders(const QString& codes) const
{
    return sql(QStringLiteral("SELECT group_concat(r, ' ') FROM (SELECT FUniqueCode || ':'"
                              " || IFNULL(FPIckingGoodsStatus, 'n') || '/' || IFNULL(FPickingGoodMan, 'n') || '/'"
                              " || IFNULL(FDeliveryStatus, 'n') || '/' || (FSendDate IS NOT NULL) AS r"
                              " FROM IC_Web2ERPOrders WHERE FUniqueCode IN (%1) ORDER BY FID)")
                   .arg(codes))
        .toString();
}

QString ReplayHarness::serials() const
{
    return sql(QStringLiteral("SELECT group_concat(r, ' ') FROM (SELECT FEntryID || '|' || FSerialNumber AS r"
                              " FROM IC_Web2ErpOrderSerial ORDER BY r)"))
        .toString();
}

QString shown(const QJsonObject& state, const QString& key)
{
    const bool checkedTotal = key == QLatin1String("checked");
    const QString array = checkedTotal ? QStringLiteral("lines") : key.section(QLatin1Char(':'), 0, 0);
    QStringList texts;
    int checked = 0;
    for (const QJsonValue& v : state.value(array).toArray()) {
        const auto text = [&](const char* k) { return v[QLatin1String(k)].toVariant().toString(); };
        checked += text("GoodsCheckedCnt").toInt();
        if (key == QLatin1String("boxes"))
            texts << text("title") + QStringLiteral(": ") + text("text");
        else if (key == QLatin1String("lines"))
            texts << QStringLiteral("%1/%2:%3/%4/%5").arg(text("GoodsID"), text("FEntryID"), text("GoodsOrderCnt"),
                                                         text("GoodsPickCnt"), text("GoodsCheckedCnt"));
        else if (key == QStringLiteral("lines:") + text("GoodsID"))
            texts << text("GoodsCheckedCnt") + QLatin1Char('/') + text("GoodsOrderCnt");
        else if (v.isString())
            texts << v.toString();
    }
    if (checkedTotal)
        return QString::number(checked);
    if (key == QLatin1String("boxes") || key == QLatin1String("log"))
        return texts.join(QLatin1Char('\n'));
    if (key == QLatin1String("voice") || key.startsWith(QLatin1String("lines"))) {
        if (key.startsWith(QLatin1String("lines:")))
            texts.sort();
        return texts.join(QLatin1Char(' '));
    }
    const QJsonValue value = state.value(key);
    return value.isBool() ? QString::fromLatin1(value.toBool() ? "yes" : "no") : value.toVariant().toString();
}

void expectShown(const QJsonObject& state, const Shown& shows)
{
    for (const auto& [key, want] : shows) {
        const QString got = shown(state, key);
        if (want.startsWith(QLatin1Char('~')))
            EXPECT_TRUE(got.contains(want.mid(1))) << key.toStdString() << ": " << got.toStdString();
        else if (want.startsWith(QLatin1Char('!')))
            EXPECT_FALSE(got.contains(want.mid(1))) << key.toStdString() << ": " << got.toStdString();
        else
            EXPECT_EQ(got, want) << key.toStdString();
    }
}

LiveLauncher::LiveLauncher(const ReplayHarness& harness)
{
    m_process.setProcessEnvironment(harness.environment());
    m_process.start(launcherPath(), harness.props() << QStringLiteral("--replay") << QStringLiteral("-"));
    if (!m_process.waitForStarted(TimeoutMs))
        error = m_process.errorString();
}

LiveLauncher::~LiveLauncher()
{
    kill();
}

QJsonObject LiveLauncher::send(const QString& command)
{
    m_process.write(command.toUtf8() + '\n');
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < TimeoutMs) {
        const qsizetype end = m_pending.indexOf('\n');
        if (end >= 0) {
            const QJsonDocument doc = QJsonDocument::fromJson(m_pending.left(end).trimmed());
            m_pending.remove(0, end + 1);
            if (doc.isObject())
                return doc.object();
        } else if (m_process.state() == QProcess::NotRunning) {
            error = QStringLiteral("the launcher ended: ") + QString::fromUtf8(m_process.readAllStandardError());
            return {};
        } else if (m_process.waitForReadyRead(100)) {
            m_pending += m_process.readAllStandardOutput();
        }
    }
    error = QStringLiteral("no state line for \"%1\"").arg(command);
    return {};
}

void LiveLauncher::kill()
{
    m_process.kill();
    m_process.waitForFinished();
}

int LiveLauncher::finish()
{
    m_process.closeWriteChannel();
    if (!m_process.waitForFinished(TimeoutMs))
        kill();
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}
