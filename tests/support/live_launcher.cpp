#include "support/live_launcher.h"
#include <QElapsedTimer>
#include <QJsonDocument>

LiveLauncher::LiveLauncher(const ReplayHarness& harness, QStringList extraArgs)
    : m_harness(harness), m_args(std::move(extraArgs))
{
}

LiveLauncher::~LiveLauncher()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

bool LiveLauncher::start()
{
    QStringList args = m_args;
    if (!args.contains(QStringLiteral("--props")))
        args << QStringLiteral("--props") << m_harness.propsString();
    args << QStringLiteral("--replay") << QStringLiteral("-");
    m_process.setProcessEnvironment(m_harness.environment());
    m_process.start(ReplayHarness::launcherPath(), args);
    if (!m_process.waitForStarted(30000)) {
        m_error = m_process.errorString();
        return false;
    }
    return true;
}

std::optional<QJsonObject> LiveLauncher::send(const QString& command, int timeoutMs)
{
    m_process.write(command.toUtf8() + '\n');
    m_process.waitForBytesWritten(timeoutMs);
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < timeoutMs) {
        const qsizetype end = m_pending.indexOf('\n');
        if (end >= 0) {
            const QByteArray line = m_pending.left(end).trimmed();
            m_pending.remove(0, end + 1);
            const QJsonDocument doc = QJsonDocument::fromJson(line);
            if (doc.isObject())
                return doc.object();
            continue;   // not a state line
        }
        if (m_process.state() == QProcess::NotRunning) {
            m_error = QStringLiteral("the launcher ended: %1").arg(QString::fromUtf8(m_process.readAllStandardError()));
            return std::nullopt;
        }
        if (m_process.waitForReadyRead(100))
            m_pending += m_process.readAllStandardOutput();
    }
    m_error = QStringLiteral("no state line for \"%1\" within %2 ms").arg(command).arg(timeoutMs);
    return std::nullopt;
}

void LiveLauncher::kill()
{
    m_process.kill();
    m_process.waitForFinished();
}

int LiveLauncher::finish(int timeoutMs)
{
    m_process.closeWriteChannel();
    if (!m_process.waitForFinished(timeoutMs)) {
        m_process.kill();
        m_process.waitForFinished();
        return -1;
    }
    return m_process.exitCode();
}
