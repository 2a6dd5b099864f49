#pragma once
// The order's goods lines: the one module-wide GoodsLineSet, the barcode
// lookups and the state shared by the goods views.
#include "host/goods_record.h"
#include "host/record_list.h"
#include "orderdata/lookup_statements.h"
#include <QString>
#include <QVariant>

// A GoodsLine holds FEntryID, FSeriNum, FBatchNo, FSPID, FStockID, FSerialID,
// FKFPeriod, FKFDate, GoodsID, GoodsName, GoodsOrderCnt, GoodsPickCnt,
// GoodsBarCode, GoodsCheckedCnt, FSerialClassID, FModel, FPicID, GoodsPicture
// in this order. GoodsPickCnt and GoodsCheckedCnt start as qint16 0 (the
// host's 16-bit integer); read them with toInt().

// Loads the goods lines of the order with this unique code or logistics number
// into the module-wide set (emptied in place) and returns it.
RecordList LoadOrderGoods(const QString& code);
// FItemID and FSerialClassID of the web-order goods with this barcode; empty when none.
GoodsRecord FindWebOrderGoodsByBarCode(const QString& barCode);
bool HasGoodsLines();
// Index of the first line whose GoodsID and FEntryID equal the arguments as text;
// -1 when none, -2 at once when goodsId is 0.
qint32 FindGoodsLineIndex(qint32 goodsId, const QString& entryId);
RecordList GetGoodsLineSet();    // none() before the first load and after ResetSessionState
// True when the value's text is the decimal text of id: how lines are
// matched to goods ("GoodsID" compared as text), without making the text
// for the integers the database hands out.
bool SameIdText(const QVariant& value, qint32 id);
QVariant GetWebshopName();
void SetClearPictureFolder(bool clear);
bool ClearPictureFolderPending();
void ResetSessionState();
QString PictureTempFolder();     // the component's folder followed by "temp/" (or the per-user cache)
// True when the component's folder could not be written and the pictures go
// to QStandardPaths::CacheLocation + "/temp/".
bool PictureTempFolderIsPerUser();

// State shared between the goods views and the scan: the current goods and
// entry (kept as text, set from numbers) and the current goods line.
void SetCurrentGoodsID(const QString& goodsId);
QString CurrentGoodsID();
void SetCurrentEntryID(const QString& entryId);
QString CurrentEntryID();
void SetCurrentGoodsLine(const GoodsRecord& line);
GoodsRecord CurrentGoodsLine();  // none() when not set
