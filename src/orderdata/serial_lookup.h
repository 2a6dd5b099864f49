#pragma once
// Where a serial number stands in the stock.
#include "host/goods_record.h"
#include "orderdata/lookup_statements.h"
#include <QString>

// FItemID, FSerialNum, FSerialID, FBatchNo, FStockID, FStockPlace, FKFPeriod,
// FKFDate of the serial, or a record without entries when it is unknown.
GoodsRecord FindSerialNumber(const QString& serialNumber);
