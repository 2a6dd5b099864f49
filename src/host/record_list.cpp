#include "host/record_list.h"
#include "host/host_error.h"

RecordList::RecordList() : d(std::make_shared<Data>()) {}

RecordList RecordList::none() { return RecordList(std::shared_ptr<Data>()); }

RecordList::Data& RecordList::data() const
{
    if (!d)
        throw HostError(HostErrors::ObjectNotSet, QStringLiteral("Object variable or With block variable not set"));
    return *d;
}

int RecordList::UpperBound() const { return int(data().size()) - 1; }
int RecordList::Count() const { return int(data().size()); }
void RecordList::Add(const GoodsRecord& record) { data().push_back(record); }

void RecordList::Insert(int index, const GoodsRecord& record)
{
    auto& v = data();
    if (index < 0 || index > int(v.size()))
        throw HostError(HostErrors::SubscriptOutOfRange, QStringLiteral("Subscript out of range"));
    v.insert(v.begin() + index, record);
}

void RecordList::Remove(int index)
{
    auto& v = data();
    if (index < 0 || index >= int(v.size()))
        throw HostError(HostErrors::SubscriptOutOfRange, QStringLiteral("Subscript out of range"));
    v.erase(v.begin() + index);
}

void RecordList::Clear() { data().clear(); }

GoodsRecord RecordList::Item(int index) const
{
    const auto& v = data();
    if (index < 0 || index >= int(v.size()))
        throw HostError(HostErrors::SubscriptOutOfRange, QStringLiteral("Subscript out of range"));
    return v[size_t(index)];
}
