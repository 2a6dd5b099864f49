#pragma once
// The demo warehouse: a real SQLite file with items, barcodes, serials,
// pictures and orders that exercise every path of the station.
#include <QString>
#include <QStringList>

// Creates (replacing any file of that name) the demo database. The same data
// every run. largeOrderLines > 0 adds the benchmark order "BENCH<N>" of that
// many lines over generated items with barcodes and pictures.
void CreateDemoDatabase(const QString& file, int largeOrderLines = 0);

// The host property string for a demo database, e.g.
// "UserID=1;ConnectString={Provider=SQLite;Data Source=<file>};".
QString DemoPropsString(const QString& dbFile, int userId = 1);

// The unique code of the benchmark order (the logistics number is "BENCH<N>").
QString BenchUniqueCode(int largeOrderLines);

// The schema the generator applies: demo/schema.sql, built into the library.
QString DemoSchemaPath();
// The tables that schema creates, in its order: every table the station and
// the middle tier read or write.
QStringList SchemaTableNames();

// Flips a company setting of the demo database (category 'EC'), e.g.
// SetDemoSystemProfile(file, "DeliveryWhenWeightedOrPick", "0").
void SetDemoSystemProfile(const QString& file, const QString& key, const QString& value);
