#include "sql/sql_statement_trace.h"
#include <atomic>
#include <mutex>

namespace {

struct TraceState {
    std::atomic<qint64> statements{0};
    std::atomic<qint64> engineNanoseconds{0};
    std::atomic<qint64> batches{0};
    std::atomic<qint64> bridgeNanoseconds{0};
    std::atomic<bool> capturing{false};
    std::mutex mutex;   // guards captured
    std::vector<SqlTraceStatement> captured;
};

// Never destroyed: an engine closing in a post routine may still count.
TraceState& trace()
{
    static TraceState* state = new TraceState;
    return *state;
}

} // namespace

SqlTraceCounters SqlStatementTrace::counters()
{
    TraceState& t = trace();
    return {t.statements.load(std::memory_order_relaxed), t.engineNanoseconds.load(std::memory_order_relaxed),
            t.batches.load(std::memory_order_relaxed), t.bridgeNanoseconds.load(std::memory_order_relaxed)};
}

void SqlStatementTrace::reset()
{
    TraceState& t = trace();
    t.statements.store(0, std::memory_order_relaxed);
    t.engineNanoseconds.store(0, std::memory_order_relaxed);
    t.batches.store(0, std::memory_order_relaxed);
    t.bridgeNanoseconds.store(0, std::memory_order_relaxed);
    std::lock_guard<std::mutex> lock(t.mutex);
    t.captured.clear();
}

void SqlStatementTrace::setCapturing(bool on)
{
    trace().capturing.store(on, std::memory_order_relaxed);
}

bool SqlStatementTrace::isCapturing()
{
    return trace().capturing.load(std::memory_order_relaxed);
}

std::vector<SqlTraceStatement> SqlStatementTrace::takeCaptured()
{
    TraceState& t = trace();
    std::lock_guard<std::mutex> lock(t.mutex);
    std::vector<SqlTraceStatement> taken;
    taken.swap(t.captured);
    return taken;
}

void SqlStatementTrace::recordStatement(const QString& sql, const QVariantList& params, qint64 nanoseconds, int rows)
{
    TraceState& t = trace();
    t.statements.fetch_add(1, std::memory_order_relaxed);
    t.engineNanoseconds.fetch_add(nanoseconds, std::memory_order_relaxed);
    if (!t.capturing.load(std::memory_order_relaxed))
        return;
    std::lock_guard<std::mutex> lock(t.mutex);
    t.captured.push_back({sql, params, nanoseconds, rows});
}

void SqlStatementTrace::recordBatch(qint64 bridgeNanoseconds)
{
    TraceState& t = trace();
    t.batches.fetch_add(1, std::memory_order_relaxed);
    t.bridgeNanoseconds.fetch_add(bridgeNanoseconds, std::memory_order_relaxed);
}
