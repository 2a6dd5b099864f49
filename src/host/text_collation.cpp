#include "host/text_collation.h"
#include "host/host_error.h"
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QVariant>
#include <algorithm>
#include <sqlite3.h>

namespace {

int foldAscii(unsigned char c)
{
    return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c;
}

int compareBytes(int lengthA, const unsigned char* a, int lengthB, const unsigned char* b)
{
    while (lengthA > 0 && a[lengthA - 1] == ' ')
        --lengthA;
    while (lengthB > 0 && b[lengthB - 1] == ' ')
        --lengthB;
    const int common = std::min(lengthA, lengthB);
    for (int i = 0; i < common; ++i) {
        const int difference = foldAscii(a[i]) - foldAscii(b[i]);
        if (difference != 0)
            return difference;
    }
    return lengthA - lengthB;
}

int collate(void*, int lengthA, const void* a, int lengthB, const void* b)
{
    return compareBytes(lengthA, static_cast<const unsigned char*>(a), lengthB, static_cast<const unsigned char*>(b));
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
