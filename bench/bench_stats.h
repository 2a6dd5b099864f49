#pragma once
// Small measuring helpers of the benchmark: a clock, percentiles, the
// process's memory and the machine it runs on.
#include <QJsonObject>
#include <QString>
#include <QtGlobal>
#include <chrono>
#include <vector>

class BenchClock {
public:
    BenchClock() : m_start(std::chrono::steady_clock::now()) {}
    qint64 nanoseconds() const
    {
        return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now() - m_start).count();
    }
    double milliseconds() const { return double(nanoseconds()) / 1e6; }

private:
    std::chrono::steady_clock::time_point m_start;
};

// CPU time of the calling thread: what a step cost the station itself,
// whatever else the machine was doing meanwhile.
class ThreadCpuClock {
public:
    ThreadCpuClock() : m_start(now()) {}
    double milliseconds() const { return double(now() - m_start) / 1e6; }

private:
    static qint64 now();
    qint64 m_start;
};

// A sample of durations (or any values) with its order statistics.
class Sample {
public:
    void add(double value) { m_values.push_back(value); m_sorted = false; }
    void reserve(size_t n) { m_values.reserve(n); }
    int count() const { return int(m_values.size()); }
    bool isEmpty() const { return m_values.empty(); }
    // Nearest-rank percentile, p in [0, 100]; 0 for an empty sample.
    double percentile(double p) const;
    double median() const { return percentile(50); }
    double max() const;
    double min() const;
    double mean() const;
    // {"n", "median", "p95", "p99", "max", "mean"}
    QJsonObject summary() const;

private:
    void sort() const;
    mutable std::vector<double> m_values;
    mutable bool m_sorted = true;
};

struct MemoryReading {
    double residentMb = 0;     // resident set now
    double peakResidentMb = 0; // the process's high-water mark
    double heapInUseMb = 0;    // bytes handed out by malloc and not freed
};
MemoryReading ReadMemory();

// "cores", "cpu", "qt", "os" of the machine the figures come from.
QJsonObject MachineDescription();
