#pragma once
// The middle tier and the attachment objects as test doubles: statements and
// arguments are captured, answers are canned.
#include "session/host_fakes.h"
#include "host/host_error.h"
#include "host/recordset.h"
#include <QByteArray>
#include <QFile>
#include <QHash>
#include <QList>
#include <functional>
#include <zlib.h>

struct GetDataLog {
    int created = 0;
    QStringList props;
    QStringList sqls;
    // Answers the statement; may throw.
    std::function<RecordsetPtr(const QString& sql)> answer;
};

class FakeGetData : public IGetData {
public:
    explicit FakeGetData(std::shared_ptr<GetDataLog> log) : m_log(std::move(log)) {}
    RecordsetPtr ExecuteSQL(const QString& props, const QString& sql) override
    {
        m_log->props << props;
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
    RegisterServerObject(ProgIds::GetData, [log] {
        ++log->created;
        return std::make_shared<FakeGetData>(log);
    });
    return log;
}

struct AccessoryLog {
    QList<int> ids;
    QStringList props;
    QHash<int, QByteArray> attachments;
    bool fail = false;
};

class FakeAccessoryView : public IAccessoryView {
public:
    explicit FakeAccessoryView(std::shared_ptr<AccessoryLog> log) : m_log(std::move(log)) {}
    QByteArray GetID(const QString& props, int attachmentId) override
    {
        m_log->ids << attachmentId;
        m_log->props << props;
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

// The columns of the order-goods statement, in the statement's order.
inline QStringList orderGoodsColumns()
{
    return {"FEntryID", "FBatchNo", "FSPID", "FStockID", "FItemID", "FModel", "FItemName", "FBarCode",
            "FSerialClassID", "FPicID", "FWebshopName", "FQuantity"};
}

struct OrderRow {
    QVariant entryId, itemId, picId, webshop, quantity;
    QVariant name = QStringLiteral("");
    QVariant barCode = QStringLiteral("");
    QVariant serialClass = 0;
    QVariant model = QStringLiteral("");
    QVariant batchNo = QStringLiteral("");
    QVariant spId = 0, stockId = 0;
};

inline RecordsetPtr orderGoodsRecordset(const QList<OrderRow>& rows)
{
    std::vector<std::vector<QVariant>> data;
    for (const OrderRow& r : rows)
        data.push_back({r.entryId, r.batchNo, r.spId, r.stockId, r.itemId, r.model, r.name, r.barCode,
                        r.serialClass, r.picId, r.webshop, r.quantity});
    return std::make_shared<Recordset>(orderGoodsColumns(), std::move(data));
}
