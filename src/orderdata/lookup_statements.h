#pragma once
// The statements that paste a scanned code, built exactly as the system sends
// them: the order's goods, a barcode's goods, a serial number's place in the
// stock. The code goes between single quotes: the scan fields never let a
// quote in.
#include <QString>

QString BuildOrderGoodsSql(const QString& code);
QString BuildBarCodeLookupSql(const QString& barCode);
// The five lines of the price-change filter, each ended by CR LF.
QString PriceChangeFilterSql();
QString BuildSerialLookupSql(const QString& serialNumber);
