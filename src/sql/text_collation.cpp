#include "sql/text_collation.h"
#include "host/host_error.h"
#include "sql/text_compare.h"
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QVariant>
#include <sqlite3.h>

namespace {

int collate(void*, int lengthA, const void* a, int lengthB, const void* b)
{
    return CompareServerText(lengthA, a, lengthB, b);
}

} // namespace

void RegisterTextCollation(const QSqlDatabase& db)
{
    const QVariant handle = db.driver() ? db.driver()->handle() : QVariant();
    sqlite3* connection = nullptr;
    if (handle.isValid() && qstrcmp(handle.typeName(), "sqlite3*") == 0)
        connection = *static_cast<sqlite3* const*>(handle.constData());
    if (!connection)
        throw HostError(HostErrors::Database, QStringLiteral("The text comparison needs an open SQLite connection."));
    const int rc = sqlite3_create_collation_v2(connection, TextCollationName, SQLITE_UTF8, nullptr, collate, nullptr);
    if (rc != SQLITE_OK)
        throw HostError(HostErrors::Database, QStringLiteral("Cannot register the text comparison: %1")
                                                  .arg(QString::fromUtf8(sqlite3_errstr(rc))));
}
