#include "sql/tsql_shape_cache.h"

TsqlShapeCache::TsqlShapeCache(int capacity)
    : m_capacity(capacity > 0 ? capacity : 1)
{
}

std::shared_ptr<const TsqlRewrite> TsqlShapeCache::find(const QString& shape)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto it = m_index.constFind(shape);
    if (it == m_index.constEnd()) {
        ++m_misses;
        return nullptr;
    }
    ++m_hits;
    m_order.splice(m_order.begin(), m_order, it.value());
    return m_order.front().second;
}

void TsqlShapeCache::insert(const QString& shape, std::shared_ptr<const TsqlRewrite> rewrite)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto it = m_index.find(shape);
    if (it != m_index.end()) {
        it.value()->second = std::move(rewrite);
        m_order.splice(m_order.begin(), m_order, it.value());
        return;
    }
    m_order.emplace_front(shape, std::move(rewrite));
    m_index.insert(shape, m_order.begin());
    while (int(m_order.size()) > m_capacity) {
        m_index.remove(m_order.back().first);
        m_order.pop_back();
    }
}

void TsqlShapeCache::clear()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_index.clear();
    m_order.clear();
    m_hits = 0;
    m_misses = 0;
}

qint64 TsqlShapeCache::hits() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_hits;
}

qint64 TsqlShapeCache::misses() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_misses;
}

int TsqlShapeCache::size() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return int(m_order.size());
}
