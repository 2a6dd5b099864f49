#include "host/goods_record.h"
#include "host/host_error.h"

GoodsRecord::GoodsRecord() : d(std::make_shared<Data>()) {}

GoodsRecord GoodsRecord::none() { return GoodsRecord(std::shared_ptr<Data>()); }

GoodsRecord::Data& GoodsRecord::data() const
{
    if (!d)
        throw HostError(HostErrors::ObjectNotSet, QStringLiteral("Object variable or With block variable not set"));
    return *d;
}

int GoodsRecord::find(const QString& key) const
{
    const auto& e = data().entries;
    // Keys are nearly always asked as they were written, and no two keys of
    // a record differ in case only: an exact match is the one match.
    for (int i = 0; i < int(e.size()); ++i) {
        if (e[size_t(i)].first == key)
            return i;
    }
    for (int i = 0; i < int(e.size()); ++i) {
        if (e[size_t(i)].first.compare(key, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

QVariant GoodsRecord::GetValue(const QString& key, const QVariant& defaultValue) const
{
    const int i = find(key);
    return i < 0 ? defaultValue : d->entries[size_t(i)].second;
}

QVariant GoodsRecord::Item(const QString& key) const
{
    const int i = find(key);
    if (i < 0)
        throw HostError(HostErrors::KeyNotFound, QStringLiteral("Key not found: %1").arg(key));
    return d->entries[size_t(i)].second;
}

void GoodsRecord::SetValue(const QString& key, const QVariant& value)
{
    const int i = find(key);
    if (i < 0)
        d->entries.emplace_back(key, value);
    else
        d->entries[size_t(i)].second = value;
    ++d->version;
}

void GoodsRecord::Add(const QString& key, const QVariant& value)
{
    if (find(key) >= 0)
        throw HostError(HostErrors::DuplicateKey, QStringLiteral("This key is already associated with an element of this collection: %1").arg(key));
    d->entries.emplace_back(key, value);
    ++d->version;
}

bool GoodsRecord::Exists(const QString& key) const { return find(key) >= 0; }

void GoodsRecord::Remove(const QString& key)
{
    const int i = find(key);
    if (i >= 0) {
        d->entries.erase(d->entries.begin() + i);
        ++d->version;
    }
}

void GoodsRecord::Clear()
{
    data().entries.clear();
    ++d->version;
}

int GoodsRecord::Count() const { return int(data().entries.size()); }

QStringList GoodsRecord::Keys() const
{
    QStringList keys;
    for (const auto& e : data().entries)
        keys << e.first;
    return keys;
}

QString GoodsRecord::KeyAt(int index) const
{
    const auto& e = data().entries;
    if (index < 0 || index >= int(e.size()))
        throw HostError(HostErrors::SubscriptOutOfRange, QStringLiteral("Subscript out of range"));
    return e[size_t(index)].first;
}

QVariant GoodsRecord::ValueAt(int index) const
{
    const auto& e = data().entries;
    if (index < 0 || index >= int(e.size()))
        throw HostError(HostErrors::SubscriptOutOfRange, QStringLiteral("Subscript out of range"));
    return e[size_t(index)].second;
}

GoodsRecord GoodsRecord::clone() const
{
    return GoodsRecord(std::make_shared<Data>(data()));
}
