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
