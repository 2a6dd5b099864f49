#include "bench_stats.h"
#include <QFile>
#include <QSysInfo>
#include <QThread>
#include <algorithm>
#include <cmath>
#include <malloc.h>
#include <numeric>
#include <sys/resource.h>
#include <time.h>
#include <unistd.h>

qint64 ThreadCpuClock::now()
{
    timespec ts{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return qint64(ts.tv_sec) * 1000000000 + ts.tv_nsec;
}

void Sample::sort() const
{
    if (!m_sorted) {
        std::sort(m_values.begin(), m_values.end());
        m_sorted = true;
    }
}

double Sample::percentile(double p) const
{
    if (m_values.empty())
        return 0;
    sort();
    const double rank = std::ceil(p / 100.0 * double(m_values.size()));
    const size_t index = size_t(std::clamp(rank, 1.0, double(m_values.size()))) - 1;
    return m_values[index];
}

double Sample::max() const
{
    return m_values.empty() ? 0 : *std::max_element(m_values.begin(), m_values.end());
}

double Sample::min() const
{
    return m_values.empty() ? 0 : *std::min_element(m_values.begin(), m_values.end());
}

double Sample::mean() const
{
    if (m_values.empty())
        return 0;
    return std::accumulate(m_values.begin(), m_values.end(), 0.0) / double(m_values.size());
}

QJsonObject Sample::summary() const
{
    return QJsonObject{{QStringLiteral("n"), count()},
                       {QStringLiteral("median"), median()},
                       {QStringLiteral("p95"), percentile(95)},
                       {QStringLiteral("p99"), percentile(99)},
                       {QStringLiteral("max"), max()},
                       {QStringLiteral("mean"), mean()}};
}

MemoryReading ReadMemory()
{
    MemoryReading m;
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (statm.open(QIODevice::ReadOnly)) {
        const QList<QByteArray> fields = statm.readAll().split(' ');
        if (fields.size() > 1)
            m.residentMb = double(fields[1].toLongLong()) * double(sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0);
    }
    rusage usage{};
    if (getrusage(RUSAGE_SELF, &usage) == 0)
        m.peakResidentMb = double(usage.ru_maxrss) / 1024.0;   // kilobytes on Linux
    const struct mallinfo2 info = mallinfo2();
    m.heapInUseMb = double(info.uordblks + info.hblkhd) / (1024.0 * 1024.0);
    return m;
}

QJsonObject MachineDescription()
{
    QString cpu;
    QFile info(QStringLiteral("/proc/cpuinfo"));
    if (info.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : info.readAll().split('\n')) {
            if (line.startsWith("model name")) {
                cpu = QString::fromLatin1(line.mid(line.indexOf(':') + 1)).trimmed();
                break;
            }
        }
    }
    return QJsonObject{{QStringLiteral("cores"), QThread::idealThreadCount()},
                       {QStringLiteral("cpu"), cpu},
                       {QStringLiteral("qt"), QString::fromLatin1(qVersion())},
                       {QStringLiteral("os"), QSysInfo::prettyProductName()}};
}
