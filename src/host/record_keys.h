#pragma once
// The keys of the records the station passes around, named once. The texts are
// the system's own: a record looks its keys up by these very spellings.
#include <QString>

namespace RecordKeys {

// A goods line of the order, as the set holds it.
inline const QString FEntryID = QStringLiteral("FEntryID");
inline const QString FSeriNum = QStringLiteral("FSeriNum");
inline const QString FBatchNo = QStringLiteral("FBatchNo");
inline const QString FSPID = QStringLiteral("FSPID");
inline const QString FStockID = QStringLiteral("FStockID");
inline const QString FSerialID = QStringLiteral("FSerialID");
inline const QString FKFPeriod = QStringLiteral("FKFPeriod");
inline const QString FKFDate = QStringLiteral("FKFDate");
inline const QString GoodsID = QStringLiteral("GoodsID");
inline const QString GoodsName = QStringLiteral("GoodsName");
inline const QString GoodsOrderCnt = QStringLiteral("GoodsOrderCnt");
inline const QString GoodsPickCnt = QStringLiteral("GoodsPickCnt");
inline const QString GoodsBarCode = QStringLiteral("GoodsBarCode");
inline const QString GoodsCheckedCnt = QStringLiteral("GoodsCheckedCnt");
inline const QString FSerialClassID = QStringLiteral("FSerialClassID");
inline const QString FModel = QStringLiteral("FModel");
inline const QString FPicID = QStringLiteral("FPicID");
inline const QString GoodsPicture = QStringLiteral("GoodsPicture");
inline const QString GoodsURL = QStringLiteral("GoodsURL");

// Columns a goods line and a serial are read from.
inline const QString FItemID = QStringLiteral("FItemID");
inline const QString FItemName = QStringLiteral("FItemName");
inline const QString FQuantity = QStringLiteral("FQuantity");
inline const QString FBarCode = QStringLiteral("FBarCode");
inline const QString FSerialNum = QStringLiteral("FSerialNum");

// An entry of the session log.
inline const QString ID = QStringLiteral("ID");
inline const QString log = QStringLiteral("log");
inline const QString bSuccess = QStringLiteral("bSuccess");

// The picking status handed to the middle tier's save.
inline const QString FPickingGoodMan = QStringLiteral("FPickingGoodMan");
inline const QString FLogisticsOrder = QStringLiteral("FLogisticsOrder");
inline const QString FPickingGoodsstatus = QStringLiteral("FPickingGoodsstatus");
inline const QString sProps = QStringLiteral("sProps");

} // namespace RecordKeys
