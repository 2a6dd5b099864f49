#pragma once
// The statements of the station form, built exactly as the station sends them
// to the middle tier. Codes are pasted between single quotes: the scan fields
// never let a quote in.
#include <QString>

// The picker of a session user.
QString EmployeeSql(qint32 userId);
// A company setting of category 'EC' (DeliveryWhenWeightedOrPick, CreateStockBillType).
QString CompanySettingSql(const QString& key);
QString DeliverOnPickSql();
QString CreateStockBillSql();
// The order header: FID, FPIckingGoodsStatus and FIsLock by unique code or logistics number.
QString OrderHeaderSql(const QString& code);
// Whether the order holds goods managed by serial number. A numeric code matches
// the unique code or the logistics number, any other code the logistics number only.
QString SerialGoodsSql(const QString& code);
// The order's goods quantities under the station's options.
QString GoodsNumSql(const QString& code, bool orderHasSerialGoods, bool barCodeOnly, bool countSerialGoods);
