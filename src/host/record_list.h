#pragma once
// The host's index-addressed list of records: zero-based, LowerBound 0,
// UpperBound -1 when empty. Copies share one list.
#include "host/goods_record.h"
#include <memory>
#include <vector>

class RecordList {
public:
    RecordList();                     // a new, empty list
    static RecordList none();         // a reference to nothing
    bool isNone() const { return !d; }

    int LowerBound() const { return 0; }
    int UpperBound() const;           // Count() - 1
    int Count() const;
    void Add(const GoodsRecord& record);
    void Insert(int index, const GoodsRecord& record);  // 0 <= index <= Count()
    void Remove(int index);
    void Clear();
    GoodsRecord Item(int index) const;                  // out of range raises HostError

    bool sameList(const RecordList& other) const { return d == other.d; }

private:
    using Data = std::vector<GoodsRecord>;
    explicit RecordList(std::shared_ptr<Data> data) : d(std::move(data)) {}
    Data& data() const;
    std::shared_ptr<Data> d;
};
