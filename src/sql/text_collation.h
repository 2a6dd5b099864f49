#pragma once
// Text comparison of the ERP's server for the embedded engine: letters
// compare without regard to case (ASCII, as SQLite's NOCASE) and trailing
// blanks do not count, so 'SF10019 ' = 'sf10019' and '   ' = ''. The demo
// schema declares its text columns with it; a column declared NOCASE still
// compares as it always did.
class QSqlDatabase;

// The collation's name in a column declaration ("COLLATE NOCASE_RTRIM").
inline constexpr char TextCollationName[] = "NOCASE_RTRIM";

// Registers the collation on an open QSQLITE connection. Every connection to
// a database of that schema needs it before it touches those columns. Raises
// HostError when the connection is no SQLite connection.
void RegisterTextCollation(const QSqlDatabase& db);
