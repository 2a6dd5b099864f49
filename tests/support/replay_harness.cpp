#include "support/replay_harness.h"
#include "sql/text_collation.h"
#include <QAtomicInt>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <stdexcept>

namespace {

constexpr int RunTimeoutMs = 120000;

// One SQLite connection per call, closed before the launcher runs again.
template <class Work>
void withDatabase(const QString& file, Work work)
{
    static QAtomicInt counter;
    const QString name = QStringLiteral("replay_harness_%1").arg(counter.fetchAndAddRelaxed(1));
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(file);
        if (!db.open())
            throw std::runtime_error(db.lastError().text().toStdString());
        RegisterTextCollation(db);
        work(db);
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
}

QSqlQuery runQuery(QSqlDatabase& db, const QString& sql, const QVariantList& params)
{
    QSqlQuery query(db);
    if (!query.prepare(sql))
        throw std::runtime_error(query.lastError().text().toStdString());
    for (const QVariant& p : params)
        query.addBindValue(p);
    if (!query.exec())
        throw std::runtime_error(query.lastError().text().toStdString());
    return query;
}

// The launcher's standard output as JSON objects, one per line; a line that
// is not a JSON object is kept as {"unparsed": line}.
QList<QJsonObject> parseLines(const QByteArray& output)
{
    QList<QJsonObject> lines;
    for (const QByteArray& raw : output.split('\n')) {
        const QByteArray line = raw.trimmed();
        if (line.isEmpty())
            continue;
        QJsonParseError error{};
        const QJsonDocument doc = QJsonDocument::fromJson(line, &error);
        if (error.error == QJsonParseError::NoError && doc.isObject())
            lines << doc.object();
        else
            lines << QJsonObject{{QStringLiteral("unparsed"), QString::fromUtf8(line)}};
    }
    return lines;
}

} // namespace

QJsonObject ReplayRun::step(int number) const
{
    for (const QJsonObject& s : steps)
        if (s.value(QStringLiteral("step")).toInt() == number)
            return s;
    return {};
}

QStringList ReplayRun::allBoxTexts() const
{
    QStringList texts;
    for (const QJsonObject& s : steps)
        texts += boxTexts(s);
    return texts;
}

QString ReplayRun::describe() const
{
    return QStringLiteral("exit %1%2\nstderr: %3\nstdout: %4")
        .arg(exitCode)
        .arg(crashed ? QStringLiteral(" (crashed)") : QString())
        .arg(standardError.left(4000), standardOutput.left(8000));
}

ReplayHarness::ReplayHarness()
{
    if (!m_dir.isValid()) {
        m_error = QStringLiteral("no temporary folder");
        return;
    }
    m_dbFile = m_dir.filePath(QStringLiteral("demo.db"));
    const ReplayRun init = runRaw({QStringLiteral("--init-demo"), m_dbFile});
    m_ready = init.exitCode == 0 && !init.crashed && QFile::exists(m_dbFile);
    if (!m_ready)
        m_error = init.describe();
}

QProcessEnvironment ReplayHarness::environment() const
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    // The launcher's user data (the --demo database, session journals) stays
    // inside the test's folder.
    env.insert(QStringLiteral("XDG_DATA_HOME"), m_dir.filePath(QStringLiteral("xdg-data")));
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), m_dir.filePath(QStringLiteral("xdg-config")));
    return env;
}

QString ReplayHarness::propsString(int userId) const
{
    return QStringLiteral("UserID=%1;ConnectString={Provider=SQLite;Data Source=%2};").arg(userId).arg(m_dbFile);
}

ReplayRun ReplayHarness::run(const QString& script, const QStringList& extraArgs) const
{
    static QAtomicInt counter;
    const QString scriptFile = m_dir.filePath(QStringLiteral("script_%1.txt").arg(counter.fetchAndAddRelaxed(1)));
    QFile file(scriptFile);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        ReplayRun failed;
        failed.standardError = QStringLiteral("cannot write %1").arg(scriptFile);
        return failed;
    }
    file.write(script.toUtf8());
    file.close();

    QStringList args = extraArgs;
    if (!args.contains(QStringLiteral("--props")) && !args.contains(QStringLiteral("--demo")))
        args << QStringLiteral("--props") << propsString();
    args << QStringLiteral("--replay") << scriptFile;
    return runRaw(args);
}

ReplayRun ReplayHarness::runRaw(const QStringList& args, const QString& stdinScript) const
{
    ReplayRun result;
    QProcess process;
    process.setProcessEnvironment(environment());
    process.start(launcherPath(), args);
    if (!process.waitForStarted(RunTimeoutMs)) {
        result.standardError = QStringLiteral("cannot start %1: %2").arg(launcherPath(), process.errorString());
        return result;
    }
    if (!stdinScript.isNull())
        process.write(stdinScript.toUtf8());
    process.closeWriteChannel();
    if (!process.waitForFinished(RunTimeoutMs)) {
        process.kill();
        process.waitForFinished();
        result.crashed = true;
    }
    const QByteArray out = process.readAllStandardOutput();
    result.standardOutput = QString::fromUtf8(out);
    result.standardError = QString::fromUtf8(process.readAllStandardError());
    result.crashed = result.crashed || process.exitStatus() != QProcess::NormalExit;
    result.exitCode = result.crashed ? -1 : process.exitCode();
    result.steps = parseLines(out);
    return result;
}

QVariant ReplayHarness::queryValue(const QString& sql, const QVariantList& params) const
{
    return queryValueOf(m_dbFile, sql, params);
}

QVariant ReplayHarness::queryValueOf(const QString& file, const QString& sql, const QVariantList& params)
{
    QVariant value;
    withDatabase(file, [&](QSqlDatabase& db) {
        QSqlQuery query = runQuery(db, sql, params);
        if (query.next())
            value = query.value(0);
    });
    return value;
}

void ReplayHarness::execute(const QString& sql, const QVariantList& params) const
{
    withDatabase(m_dbFile, [&](QSqlDatabase& db) { runQuery(db, sql, params); });
}

QString ReplayHarness::launcherPath()
{
    QString dir = qEnvironmentVariable("RNW_BIN_DIR");
    if (dir.isEmpty())
        dir = QCoreApplication::applicationDirPath();
    return QDir(dir).filePath(QStringLiteral("rnwdpicking"));
}

QStringList jsonStrings(const QJsonValue& array)
{
    QStringList texts;
    for (const QJsonValue& v : array.toArray())
        texts << v.toString();
    return texts;
}

QStringList boxTexts(const QJsonObject& step)
{
    QStringList texts;
    for (const QJsonValue& box : step.value(QStringLiteral("boxes")).toArray())
        texts << box[QStringLiteral("title")].toString() + QStringLiteral(": ") + box[QStringLiteral("text")].toString();
    return texts;
}

QStringList lineSummaries(const QJsonObject& step)
{
    QStringList texts;
    for (const QJsonValue& v : step.value(QStringLiteral("lines")).toArray()) {
        const QJsonObject line = v.toObject();
        auto text = [&](const char* key) { return line.value(QLatin1String(key)).toVariant().toString(); };
        texts << QStringLiteral("%1/%2:%3/%4/%5")
                     .arg(text("GoodsID"), text("FEntryID"), text("GoodsOrderCnt"), text("GoodsPickCnt"), text("GoodsCheckedCnt"));
    }
    return texts;
}

int checkedTotal(const QJsonObject& step)
{
    int total = 0;
    for (const QJsonValue& v : step.value(QStringLiteral("lines")).toArray())
        total += v.toObject().value(QStringLiteral("GoodsCheckedCnt")).toVariant().toInt();
    return total;
}
