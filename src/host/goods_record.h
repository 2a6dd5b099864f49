#pragma once
// A keyed record of the host's record library. Keys compare case-insensitively
// (the form writes "bSuccess", the log pane reads "bsuccess"), insertion order is
// kept, and copies share one record: the views and the order set see the same line.
#include <QString>
#include <QStringList>
#include <QVariant>
#include <memory>
#include <utility>
#include <vector>

class GoodsRecord {
public:
    GoodsRecord();                    // a new, empty record
    static GoodsRecord none();        // a reference to nothing (Nothing)
    bool isNone() const { return !d; }

    // Read with a default for a missing key.
    QVariant GetValue(const QString& key, const QVariant& defaultValue = QVariant()) const;
    // Read a key that must be there; a missing key raises HostError.
    QVariant Item(const QString& key) const;
    // Write: replaces the value of an existing key in place or appends a new key.
    void SetValue(const QString& key, const QVariant& value);
    // Add: a key that is already there raises HostError (duplicate key).
    void Add(const QString& key, const QVariant& value);
    bool Exists(const QString& key) const;
    void Remove(const QString& key);
    void Clear();
    int Count() const;
    QStringList Keys() const;
    // Index-based access in insertion order.
    QString KeyAt(int index) const;
    QVariant ValueAt(int index) const;

    bool sameRecord(const GoodsRecord& other) const { return d == other.d; }
    // Who the record is, and how often it was written: a view that drew a
    // record at some identity and version may trust its drawing while both
    // are unchanged. Nothing has identity 0.
    const void* identity() const { return d.get(); }
    quint64 version() const { return d ? d->version : 0; }
    GoodsRecord clone() const;        // an independent copy

private:
    struct Data {
        std::vector<std::pair<QString, QVariant>> entries;
        quint64 version = 0;   // raised by every write
    };
    explicit GoodsRecord(std::shared_ptr<Data> data) : d(std::move(data)) {}
    Data& data() const;               // raises HostError when none
    int find(const QString& key) const;
    std::shared_ptr<Data> d;
};
