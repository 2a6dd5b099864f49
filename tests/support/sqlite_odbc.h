#pragma once
// The SQLite ODBC driver as the tests reach it: the connect string and host
// property string of a SQLite file through it, and whether the driver can be
// used on this machine at all.
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QTemporaryDir>

inline QString SqliteOdbcConnect(const QString& file)
{
    return QStringLiteral("Driver=SQLite3;Database=") + file;
}

inline QString SqliteOdbcProps(const QString& file, int userId = 1)
{
    return QStringLiteral("UserID=%1;ConnectString={%2};").arg(userId).arg(SqliteOdbcConnect(file));
}

// Empty when QODBC can open a SQLite file through the driver registered as
// SQLite3 (tried once, on a database of its own, without the engines under
// test); otherwise why not, for the skip message.
inline QString SqliteOdbcUnavailableReason()
{
    static const QString reason = [] {
        if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QODBC")))
            return QStringLiteral("Qt's ODBC plugin (QODBC) is not installed");
        QTemporaryDir dir;
        const QString name = QStringLiteral("sqlite_odbc_check");
        QString why;
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QODBC"), name);
            db.setDatabaseName(SqliteOdbcConnect(dir.filePath(QStringLiteral("check.db"))));
            if (!db.open()) {
                why = QStringLiteral("the SQLite ODBC driver (SQLite3, package libsqliteodbc) cannot be used: ")
                    + db.lastError().text();
            } else if (QSqlQuery query(db); !query.exec(QStringLiteral("SELECT 1")) || !query.next()) {
                why = QStringLiteral("the SQLite ODBC driver opens but runs nothing: ") + query.lastError().text();
            }
        }
        QSqlDatabase::removeDatabase(name);
        return why;
    }();
    return reason;
}
