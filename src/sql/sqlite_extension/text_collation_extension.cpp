// The embedded engine's text comparison as a SQLite extension, for the
// connections the station does not open itself: the SQLite ODBC driver loads
// it (LoadExt) so that a demo database compares text there as it does here.
#include "sql/text_collation.h"
#include "sql/text_compare.h"
#include <sqlite3ext.h>
SQLITE_EXTENSION_INIT1

namespace {

int collate(void*, int lengthA, const void* a, int lengthB, const void* b)
{
    return CompareServerText(lengthA, a, lengthB, b);
}

} // namespace

extern "C" __attribute__((visibility("default"))) int sqlite3_rnwcollation_init(sqlite3* db, char**,
                                                                                const sqlite3_api_routines* api)
{
    SQLITE_EXTENSION_INIT2(api);
    return sqlite3_create_collation_v2(db, TextCollationName, SQLITE_UTF8, nullptr, collate, nullptr);
}
