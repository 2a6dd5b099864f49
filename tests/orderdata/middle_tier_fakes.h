#pragma once
// The middle tier and the attachment store as test doubles: statements and
// arguments are captured, answers are canned.
#include "session/host_fakes.h"
#include "host/host_error.h"
#include "host/recordset.h"
#include <QByteArray>
#include <QFile>
#include <QHash>
#include <QList>
#include <array>
#include <functional>
#include <zlib.h>

struct GetDataLog {
    QStringList sqls;
    // Answers the statement; may throw.
    std::function<RecordsetPtr(const QString& sql)> answer;
};

class FakeGetData : public IGetData {
public:
    explicit FakeGetData(std::shared_ptr<GetDataLog> log) : m_log(std::move(log)) {}
    RecordsetPtr ExecuteSQL(const QString&, const QString& sql) override
    {
        m_log->sqls << sql;
        return m_log->answer ? m_log->answer(sql) : std::make_shared<Recordset>();
    }
    std::optional<GoodsRecord> CheckReturnBills(const GoodsRecord&) override { return std::nullopt; }

private:
    std::shared_ptr<GetDataLog> m_log;
};

inline std::shared_ptr<GetDataLog> useFakeGetData()
{
    auto log = std::make_shared<GetDataLog>();
    RegisterServerObject(ProgIds::GetData, [log] { return std::make_shared<FakeGetData>(log); });
    return log;
}

// The order-goods statement's rows, in its column order: entry, goods and
// picture id as given, the rest as the statement's ISNULLs make them.
inline RecordsetPtr orderGoodsRows(const std::vector<std::array<QVariant, 3>>& rows)
{
    std::vector<std::vector<QVariant>> data;
    for (const auto& [entry, item, picId] : rows)
        data.push_back({entry, "", 0, 0, item, "", "", "", 0, picId, "Shop A", 1});
    return std::make_shared<Recordset>(QStringList{"FEntryID", "FBatchNo", "FSPID", "FStockID", "FItemID", "FModel",
                                                   "FItemName", "FBarCode", "FSerialClassID", "FPicID",
                                                   "FWebshopName", "FQuantity"},
                                       std::move(data));
}

struct AccessoryLog {
    QList<int> ids;
    QHash<int, QByteArray> attachments;
    bool fail = false;
};

class FakeAccessoryView : public IAccessoryView {
public:
    explicit FakeAccessoryView(std::shared_ptr<AccessoryLog> log) : m_log(std::move(log)) {}
    QByteArray GetID(const QString&, int attachmentId) override
    {
        m_log->ids << attachmentId;
        if (m_log->fail)
            throw HostError(HostErrors::Database, QStringLiteral("attachment store down"));
        return m_log->attachments.value(attachmentId);
    }

private:
    std::shared_ptr<AccessoryLog> m_log;
};

inline std::shared_ptr<AccessoryLog> useFakeAccessoryView()
{
    auto log = std::make_shared<AccessoryLog>();
    RegisterServerObject(ProgIds::AccessoryView, [log] { return std::make_shared<FakeAccessoryView>(log); });
    return log;
}

// A real gzip stream of the bytes, as the attachment store keeps pictures.
inline QByteArray gzipBytes(const QByteArray& data)
{
    z_stream zs{};
    if (deflateInit2(&zs, Z_BEST_SPEED, Z_DEFLATED, 16 + MAX_WBITS, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        return {};
    QByteArray out(int(deflateBound(&zs, uLong(data.size()))), Qt::Uninitialized);
    zs.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.constData()));
    zs.avail_in = uInt(data.size());
    zs.next_out = reinterpret_cast<Bytef*>(out.data());
    zs.avail_out = uInt(out.size());
    const int rc = deflate(&zs, Z_FINISH);
    out.resize(qsizetype(zs.total_out));
    deflateEnd(&zs);
    return rc == Z_STREAM_END ? out : QByteArray();
}

inline QByteArray readFile(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

inline bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}
