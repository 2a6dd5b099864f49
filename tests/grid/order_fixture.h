#pragma once
// Orders loaded into the module-wide goods set through the real LoadOrderGoods,
// from rows the test gives to the middle tier (the tiles' too); error boxes are recorded.
#include "host/object_factory.h"
#include "host/recordset.h"
#include "host/server_objects.h"
#include "orderdata/order_goods.h"
#include "session/host_session.h"
#include "session/language.h"
#include "support/host_doubles.h"
#include <QStringList>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

struct OrderRow {
    int entryId;
    int itemId;
    QString name;
    QString barCode;
    QString model;
    int quantity;
    int serialClass = 0;
};

class RowsGetData : public IGetData {
public:
    std::vector<OrderRow> rows;
    QVariant picId;   // NULL: no picture is written
    RecordsetPtr ExecuteSQL(const QString&, const QString&) override
    {
        const QStringList columns = {"FEntryID", "FBatchNo", "FSPID", "FStockID", "FItemID", "FModel", "FItemName",
                                     "FBarCode", "FSerialClassID", "FPicID", "FWebshopName", "FQuantity"};
        std::vector<std::vector<QVariant>> data;
        for (const OrderRow& r : rows) {
            data.push_back({r.entryId, QString(), 0, 1, r.itemId, r.model, r.name, r.barCode, r.serialClass, picId,
                            QStringLiteral("店铺"), r.quantity});
        }
        return std::make_shared<Recordset>(columns, std::move(data));
    }
    std::optional<GoodsRecord> CheckReturnBills(const GoodsRecord&) override { return std::nullopt; }
};

class OrderFixture : public ::testing::Test {
protected:
    void SetUp() override
    {
        RegisterServerObject(ProgIds::GetData, [d = getData] { return d; });
        recordMessageBoxes(boxes);
        useLanguage(QStringLiteral("chs"));
        ResetLanguageCache();
        SetPropsHostObject([] { return QStringLiteral("ConnectString={Provider=SQLite;Data Source=:memory:}"); });
        SetCurrentGoodsID(QString());
        SetCurrentEntryID(QString());
        SetCurrentGoodsLine(GoodsRecord::none());
    }
    void TearDown() override
    {
        ResetSessionState();
        ResetHostSession();
        ResetLanguageCache();
        RestoreBuiltInServerObjects();
    }
    RecordList load(std::vector<OrderRow> rows)
    {
        getData->rows = std::move(rows);
        return LoadOrderGoods(QStringLiteral("SF1001"));
    }

    std::shared_ptr<RowsGetData> getData = std::make_shared<RowsGetData>();
    std::shared_ptr<HostRecorder> boxes = std::make_shared<HostRecorder>();
};
