#pragma once
// The SQL engines behind the host's data objects. A property string carries
// the connection as ConnectString={...}: "Provider=SQLite;Data Source=<file>"
// is the embedded engine (statements go through the T-SQL bridge);
// "Driver=SQLite3;Database=<file>" is the same kind of file through the SQLite
// ODBC driver, also behind the bridge; anything else is SQL Server over ODBC
// with the statements unchanged. One engine per connect string, opened on
// first use and reopened after a failure.
#include "host/recordset.h"
#include <QString>
#include <QVariant>
#include <functional>
#include <memory>

// How long a statement on a SQLite file waits for another program's lock,
// through either engine.
constexpr int kSqliteBusyTimeoutMs = 5000;

// How a connect string is reached.
struct ConnectionTarget {
    enum Kind { Sqlite, Odbc };
    Kind kind = Sqlite;
    QString sqliteFile;          // Sqlite, and Odbc with tsqlBridge: the database file
    QString odbcConnectString;   // Odbc: the string handed to the ODBC driver manager
    int loginTimeoutSeconds = 15; // Odbc: how long opening may take
    bool tsqlBridge = false;     // Odbc: the driver is SQLite's, statements need the bridge
};

// Maps a connect string to the engine that serves it. Pure: touches no file
// and no driver. SQLOLEDB-style keys (Data Source, Initial Catalog, User ID,
// Password, Integrated Security) become ODBC keys for the FreeTDS driver when
// the string names no driver of its own. The driver registered as SQLite3
// gets the file's own rules: never created when missing, and the same wait
// for another program's lock as the embedded engine.
ConnectionTarget MapConnectString(const QString& connectString);

// The SQLite extension with the text comparison of the demo schema, beside
// the component; the SQLite ODBC driver is told to load it.
QString TextCollationExtensionPath();

// The ConnectString value of a host property string (keys case-insensitive).
// A missing or empty ConnectString raises HostError.
QString ConnectStringFromProps(const QString& props);

class SqlEngine {
public:
    virtual ~SqlEngine() = default;

    // The engine for a connect string, shared by everybody who uses that string.
    static std::shared_ptr<SqlEngine> forConnectString(const QString& connectString);
    // The engine named by a property string's ConnectString.
    static std::shared_ptr<SqlEngine> forProps(const QString& props);
    // Closes and forgets every engine (tests, shutdown).
    static void closeAll();

    // Runs a T-SQL batch of the system as the host's ExecuteSQL does: several
    // statements run in one transaction, the rows of the last statement that
    // has rows come back (an empty recordset otherwise).
    virtual RecordsetPtr executeBatch(const QString& tsql) = 0;

    // Runs one statement of the middle tier's own, written in the common
    // dialect of both engines, with '?' placeholders bound to params.
    virtual RecordsetPtr executeBound(const QString& sql, const QVariantList& params = {}) = 0;

    // Runs work in one transaction: committed when work returns, rolled back
    // when it throws (the exception goes on).
    virtual void inTransaction(const std::function<void()>& work) = 0;

    // How many prepared statements the engine holds (the scan's hot path
    // reuses them; tests watch it).
    virtual int preparedCount() const = 0;
    virtual bool isOpen() const = 0;
    virtual void close() = 0;
};
