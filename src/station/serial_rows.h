#pragma once
// The serial rows of a verified order and the one batch that stores them in
// IC_Web2ErpOrderSerial.
#include "host/goods_record.h"
#include "host/record_list.h"
#include <QList>
#include <QString>

// One row per serial scanned, line by line in order and in scan order within a
// line: "FEntryID", "FSeriNum", "FBatchNo", "FStockID", "FSPID", "FSerialID",
// "FKFDate", "FKFPeriod". Entry, batch, stock and place come from the line (the
// scan only accepts serials that match them); the rest from the element at the
// same position of the line's comma lists. Empty elements of "FSeriNum" are
// joining leftovers and give no row.
QList<GoodsRecord> CollectSerialRows(const RecordList& lines);

// For every line with serial rows, " Delete IC_Web2ErpOrderSerial where FEntryID="
// and the entry, so a second verification replaces the rows instead of adding
// to them; then one insert per row. Statements are joined by CR LF. "" when no
// line has serial rows. A numeric column that is empty is written as 0; one that
// is not a number raises HostError (type mismatch) rather than reaching the SQL.
QString BuildSerialRowsSql(const RecordList& lines);
QString BuildSerialRowsSql(const QList<GoodsRecord>& rows);
