#pragma once
// The T-SQL bridge of the embedded engine: the system's statements are
// written for the ERP's server; this rewrites them for SQLite, or refuses
// them by name. It never hands back a statement that means something else.
//
// What it does, in short:
//  - string literals become bound parameters ('?'), numbers stay inline;
//  - with(nolock) after a table or alias is dropped, any other hint refused;
//  - SELECT TOP n becomes LIMIT n at the end of that SELECT (statement or
//    parenthesis); TOP (n), PERCENT, WITH TIES and TOP in a UNION member are
//    refused;
//  - ISNULL -> IFNULL, Convert(Varchar(n), x, 111) -> yyyy/mm/dd text,
//    Convert(int, x) -> CAST, DateAdd(Day, n, d) -> datetime(d, 'n days'),
//    Str with the server's width and stars, LTrim/RTrim, Len without
//    trailing blanks, GETDATE() -> local date and time; COUNT, SUM, MIN, MAX,
//    AVG, COALESCE, NULLIF, ABS, UPPER, LOWER pass; any other function is
//    refused;
//  - "Delete T where" and "insert T (...)" get their FROM and INTO; UPDATE
//    ... FROM is refused;
//  - a batch is split at ';' and at each SELECT/DELETE/INSERT/UPDATE that
//    starts a new statement at the top level;
//  - '+' is kept only where a number literal on one side settles that it
//    adds: text and text would be joined on the server and added here;
//  - a LIKE pattern must be a literal without '[' (SQLite knows no classes).
// Rewrites are cached by statement shape.
#include <QString>
#include <QVariantList>
#include <vector>

struct SqliteStatement {
    QString sql;         // SQLite text; each string literal of the input replaced by '?'
    QVariantList params; // the string literals' values in order (QString, quotes removed, '' unescaped)
};

// Rewrites one T-SQL batch (one or several statements) for SQLite.
// Raises HostError(HostErrors::Unsupported, "...") naming the construct it
// does not know, and HostError(HostErrors::Database, ...) for text the server
// would not parse either (a literal or bracket left open, unbalanced
// parentheses); never returns a statement whose meaning differs.
std::vector<SqliteStatement> RewriteTsqlForSqlite(const QString& batch);

// The shape cache: how many rewrites were answered from it (hits) and how
// many needed the rules (misses), and how many shapes it holds.
struct TsqlBridgeCacheStats {
    qint64 hits = 0;
    qint64 misses = 0;
    int shapes = 0;
};
constexpr int kTsqlShapeCacheCapacity = 512;
TsqlBridgeCacheStats TsqlBridgeCacheStatistics();
void ClearTsqlBridgeCache();
