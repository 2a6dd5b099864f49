#include "support/sqlite_odbc.h"
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>

QString SqliteOdbcConnect(const QString& file)
{
    return QStringLiteral("Driver=SQLite3;Database=") + file;
}

QString SqliteOdbcProps(const QString& file, int userId)
{
    return QStringLiteral("UserID=%1;ConnectString={%2};").arg(userId).arg(SqliteOdbcConnect(file));
}

QString SqliteOdbcUnavailableReason()
{
    static const QString reason = [] {
        if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QODBC")))
            return QStringLiteral("Qt's ODBC plugin (QODBC) is not installed");
        QTemporaryDir dir;
        if (!dir.isValid())
            return QStringLiteral("no temporary folder for the driver check");
        const QString name = QStringLiteral("sqlite_odbc_check");
        QString why;
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QODBC"), name);
            // the driver makes the file: this check only asks whether it loads
            db.setDatabaseName(QStringLiteral("Driver=SQLite3;Database=") + dir.filePath(QStringLiteral("check.db")));
            if (!db.open()) {
                why = QStringLiteral("the SQLite ODBC driver (SQLite3, package libsqliteodbc) cannot be used: ")
                    + db.lastError().text();
            } else {
                QSqlQuery query(db);
                if (!query.exec(QStringLiteral("SELECT 1")) || !query.next())
                    why = QStringLiteral("the SQLite ODBC driver opens but runs nothing: ") + query.lastError().text();
            }
            db.close();
        }
        QSqlDatabase::removeDatabase(name);
        return why;
    }();
    return reason;
}
