#include "orderdata/order_goods.h"
#include "host/error_reporter.h"
#include "host/host_error.h"
#include "host/object_factory.h"
#include "host/platform.h"
#include "host/record_keys.h"
#include "orderdata/goods_pictures.h"
#include "session/host_session.h"
#include "session/variant_convert.h"
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

const QString CrLf = QStringLiteral("\r\n");
// The empty text, not a null string: it goes on into bound parameters, where
// a null string would become NULL.
const QString Empty = QStringLiteral("");

struct OrderState {
    RecordList lines = RecordList::none();
    QString pictureTempFolder;
    bool pictureFolderPerUser = false;
    QString webshopName = Empty;
    bool clearPictureFolder = true;   // the first picture of a session empties the folder
    QString currentGoodsId;
    QString currentEntryId;
    GoodsRecord currentGoodsLine = GoodsRecord::none();
};

OrderState& state()
{
    static OrderState s;
    return s;
}

bool usableFolder(const QString& folder)
{
    return QDir().mkpath(folder) && QFileInfo(folder).isWritable();
}

// Beside the component when we may write there; an installed component under
// a read-only prefix falls back to the user's cache.
void choosePictureTempFolder()
{
    OrderState& s = state();
    const QString beside = ComponentFolder() + QStringLiteral("temp/");
    if (usableFolder(beside)) {
        s.pictureTempFolder = beside;
        s.pictureFolderPerUser = false;
        return;
    }
    s.pictureTempFolder = QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + QStringLiteral("/temp/");
    s.pictureFolderPerUser = true;
}

// One middle-tier object per query, with the property string fetched afresh
// so that a re-login of the host reaches the next query.
RecordsetPtr executeSql(const QString& sql)
{
    auto getData = CreateServerObjectAs<IGetData>(ProgIds::GetData);
    return getData->ExecuteSQL(GetPropsString(), sql);
}

GoodsRecord readGoodsLine(const Recordset& rs)
{
    OrderState& s = state();
    GoodsRecord line;
    line.Add(RecordKeys::FEntryID, rs.Fields(RecordKeys::FEntryID));
    line.Add(RecordKeys::FSeriNum, Empty);
    line.Add(RecordKeys::FBatchNo, rs.Fields(RecordKeys::FBatchNo));
    line.Add(RecordKeys::FSPID, rs.Fields(RecordKeys::FSPID));
    line.Add(RecordKeys::FStockID, rs.Fields(RecordKeys::FStockID));
    line.Add(RecordKeys::FSerialID, Empty);
    line.Add(RecordKeys::FKFPeriod, Empty);
    line.Add(RecordKeys::FKFDate, Empty);
    line.Add(RecordKeys::GoodsID, rs.Fields(RecordKeys::FItemID));
    line.Add(RecordKeys::GoodsName, rs.Fields(RecordKeys::FItemName));
    line.Add(RecordKeys::GoodsOrderCnt, rs.Fields(RecordKeys::FQuantity));
    line.Add(RecordKeys::GoodsPickCnt, QVariant::fromValue<qint16>(0));
    line.Add(RecordKeys::GoodsBarCode, rs.Fields(RecordKeys::FBarCode));
    line.Add(RecordKeys::GoodsCheckedCnt, QVariant::fromValue<qint16>(0));
    line.Add(RecordKeys::FSerialClassID, rs.Fields(RecordKeys::FSerialClassID));
    line.Add(RecordKeys::FModel, rs.Fields(RecordKeys::FModel));
    const QVariant picId = rs.Fields(RecordKeys::FPicID);
    line.Add(RecordKeys::FPicID, picId);
    QString picture = Empty;
    if (!picId.isNull() && IsNumeric(picId.toString())) {
        const QString itemId = rs.Fields(RecordKeys::FItemID).toString();
        // A missing picture is no reason to stop the load: the tile shows its default.
        WriteGoodsPicture(GetPropsString(), variantToLong(picId), itemId);
        picture = s.pictureTempFolder + QStringLiteral("Tmp_") + itemId;
    }
    line.Add(RecordKeys::GoodsPicture, picture);
    return line;
}

} // namespace

QString PriceChangeFilterSql()
{
    return QStringLiteral(" AND NOT EXISTS (SELECT 1") + CrLf
        + QStringLiteral("FROM    IC_GoodsToMateriel t6 with(nolock) ") + CrLf
        + QStringLiteral("INNER JOIN t_ICItem t7 with(nolock) ON t6.FMaterielCode = t7.FNumber") + CrLf
        + QStringLiteral("WHERE t6.FIsPriceChange = 1 And t7.FItemID = t1.FItemID") + CrLf
        + QStringLiteral("AND t6.FWebshopID = t2.FWebshopID)") + CrLf;
}

QString BuildOrderGoodsSql(const QString& code)
{
    QString sql;
    sql += QStringLiteral("Select t1.FEntryID,t1.FBatchNo,t1.FSPID,t1.FStockID,t1.FItemID,ISNULL(t3.FModel,'') as FModel,ISNULL(t3.FName,'') as FItemName,ISNULL(t3.FBarcode,'') AS FBarCode,ISNULL(t3.FSerialClassID,0) as FSerialClassID ,ISNULL(t4.FID,0) as FPicID,t5.FWebshopName,t1.FQuantity  ") + CrLf;
    sql += QStringLiteral(" from IC_Web2ERPOrdersEntry t1 with(nolock) ") + CrLf;
    sql += QStringLiteral(" INNER Join IC_Web2ERPOrders t2 with(nolock) on t1.FID=t2.FID AND t2.FOrderStatus = 6 ") + CrLf;
    sql += QStringLiteral(" LEFT Join t_ICItem t3 with(nolock) on t1.FItemID =t3.FItemID ") + CrLf;
    sql += QStringLiteral(" LEFT Join t_Accessory t4 with(nolock) on t1.FItemID=t4.FItemID ") + CrLf;
    sql += QStringLiteral(" LEFT JOIN IC_WebshopToStorage t5 with(nolock) ON t2.FWebshopID = t5.FWebshopID") + CrLf;
    // A code with letters can only be a logistics number. The numeric branch
    // has no line break before the filter; the server does not mind.
    if (IsNumeric(code))
        sql += QStringLiteral(" Where (t2.FUniqueCode ='") + code + QStringLiteral("' OR t2.FLogisticsOrder ='") + code + QStringLiteral("')");
    else
        sql += QStringLiteral(" Where t2.FLogisticsOrder ='") + code + QStringLiteral("'") + CrLf;
    sql += PriceChangeFilterSql();
    return sql;
}

QString BuildBarCodeLookupSql(const QString& barCode)
{
    return QStringLiteral("select top 1 t3.FBarCode ,t1.FItemID,t5.FSerialClassID  ")
        + QStringLiteral(" from IC_Web2ERPOrdersEntry t1 with(nolock) ")
        + QStringLiteral(" INNER Join IC_Web2ERPOrders t2 with(nolock) on t1.FID=t2.FID ")
        + QStringLiteral(" left join t_Barcode t3 with(nolock) on t1.FItemID=t3.FItemID ")
        + QStringLiteral(" LEFT Join t_Accessory t4 with(nolock)  on t1.FItemID=t4.FItemID ")
        + QStringLiteral(" LEFT Join t_ICItem t5 with(nolock) on t1.FItemID=t5.FItemID ")
        + QStringLiteral(" where t3.FBarCode  ='") + barCode + QStringLiteral("'")
        + PriceChangeFilterSql();
}

RecordList LoadOrderGoods(const QString& code)
{
    OrderState& s = state();
    s.webshopName = Empty;
    if (code.isEmpty())
        return s.lines;
    // The lines read so far stay: the worker sees what could be loaded.
    ReportingErrors(nullptr, [&] {
        choosePictureTempFolder();
        // Emptied in place: the views hold this very list.
        if (s.lines.isNone())
            s.lines = RecordList();
        else
            s.lines.Clear();

        RecordsetPtr rs = executeSql(BuildOrderGoodsSql(code));
        bool first = true;
        while (rs && !rs->isEOF()) {
            GoodsRecord line = readGoodsLine(*rs);
            if (first) {
                const QVariant webshop = rs->Fields(QStringLiteral("FWebshopName"));
                s.webshopName = webshop.isNull() ? Empty : webshop.toString();
                first = false;
            }
            s.lines.Add(line);
            rs->MoveNext();
        }
    });
    return s.lines;
}

GoodsRecord FindWebOrderGoodsByBarCode(const QString& barCode)
{
    RecordsetPtr rs = executeSql(BuildBarCodeLookupSql(barCode));
    GoodsRecord goods;
    while (rs && !rs->isEOF()) {
        goods.SetValue(RecordKeys::FItemID, rs->Fields(RecordKeys::FItemID));
        goods.SetValue(RecordKeys::FSerialClassID, rs->Fields(RecordKeys::FSerialClassID));
        rs->MoveNext();
    }
    return goods;
}

bool HasGoodsLines()
{
    const RecordList& lines = state().lines;
    return !lines.isNone() && lines.UpperBound() >= 0;
}

bool SameIdText(const QVariant& value, qint32 id)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
        // an integer's text is its decimal text, as is the id's
        return value.toLongLong() == id;
    default:
        return value.toString() == QString::number(id);
    }
}

qint32 FindGoodsLineIndex(qint32 goodsId, const QString& entryId)
{
    if (goodsId == 0)
        return -2;
    const RecordList& lines = state().lines;
    if (lines.isNone())
        throw HostError(HostErrors::ObjectNotSet, QStringLiteral("Object variable or With block variable not set"));
    for (int i = lines.LowerBound(); i <= lines.UpperBound(); ++i) {
        const GoodsRecord line = lines.Item(i);
        if (SameIdText(line.GetValue(RecordKeys::GoodsID), goodsId)
            && line.GetValue(RecordKeys::FEntryID).toString() == entryId)
            return i;
    }
    return -1;
}

RecordList GetGoodsLineSet() { return state().lines; }

QVariant GetWebshopName() { return QVariant(state().webshopName); }

void SetClearPictureFolder(bool clear) { state().clearPictureFolder = clear; }

bool ClearPictureFolderPending() { return state().clearPictureFolder; }

void ResetSessionState()
{
    OrderState& s = state();
    s.currentGoodsId = QStringLiteral("0");
    s.webshopName = Empty;
    s.clearPictureFolder = true;
    s.lines = RecordList::none();
    // The next session chooses its picture folder again.
    s.pictureTempFolder.clear();
}

QString PictureTempFolder()
{
    if (state().pictureTempFolder.isEmpty())
        choosePictureTempFolder();
    return state().pictureTempFolder;
}

bool PictureTempFolderIsPerUser()
{
    PictureTempFolder();
    return state().pictureFolderPerUser;
}

void SetCurrentGoodsID(const QString& goodsId) { state().currentGoodsId = goodsId; }
QString CurrentGoodsID() { return state().currentGoodsId; }
void SetCurrentEntryID(const QString& entryId) { state().currentEntryId = entryId; }
QString CurrentEntryID() { return state().currentEntryId; }
void SetCurrentGoodsLine(const GoodsRecord& line) { state().currentGoodsLine = line; }
GoodsRecord CurrentGoodsLine() { return state().currentGoodsLine; }
