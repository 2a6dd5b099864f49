#pragma once
// The SQLite ODBC driver as the tests reach it: the connect string and host
// property string of a SQLite file through it, and whether the driver can be
// used on this machine at all.
#include <QString>

// "Driver=SQLite3;Database=<file>"
QString SqliteOdbcConnect(const QString& file);
// The host property string of a database through the SQLite ODBC driver.
QString SqliteOdbcProps(const QString& file, int userId = 1);

// Empty when QODBC can open a SQLite file through the driver registered as
// SQLite3 (tried once, on a database of its own, without the engines under
// test); otherwise why not, for the skip message.
QString SqliteOdbcUnavailableReason();
