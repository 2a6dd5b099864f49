// The T-SQL bridge on any text: it either raises HostError or returns
// statements whose bound values are exactly the input's string literals, in
// order (no literal is rewritten, split or merged); and the same text
// rewritten twice (the shape cache) gives the same statements.
#include "fuzz_text.h"
#include "host/host_error.h"
#include "host/tsql_bridge.h"
#include <cstdio>
#include <cstdlib>

namespace {
// The string literals of a T-SQL text outside comments, '' unescaped; false
// when a literal is left open.
bool literalsOf(const QString& sql, QStringList& out)
{
    int i = 0;
    const int n = sql.size();
    while (i < n) {
        const QChar c = sql[i];
        if (c == QLatin1Char('-') && i + 1 < n && sql[i + 1] == QLatin1Char('-')) {
            while (i < n && sql[i] != QLatin1Char('\n')) ++i;
        } else if (c == QLatin1Char('/') && i + 1 < n && sql[i + 1] == QLatin1Char('*')) {
            const int end = sql.indexOf(QStringLiteral("*/"), i + 2);
            if (end < 0) return false;
            i = end + 2;
        } else if (c == QLatin1Char('[')) {
            const int end = sql.indexOf(QLatin1Char(']'), i + 1);
            if (end < 0) return false;
            i = end + 1;
        } else if (c == QLatin1Char('"')) {
            const int end = sql.indexOf(QLatin1Char('"'), i + 1);
            if (end < 0) return false;
            i = end + 1;
        } else if (c == QLatin1Char('\'')) {
            QString lit;
            ++i;
            for (;;) {
                if (i >= n) return false;
                if (sql[i] == QLatin1Char('\'')) {
                    if (i + 1 < n && sql[i + 1] == QLatin1Char('\'')) { lit += QLatin1Char('\''); i += 2; continue; }
                    ++i;
                    break;
                }
                lit += sql[i++];
            }
            out << lit;
        } else {
            ++i;
        }
    }
    return true;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size > 20000)
        return 0;
    const QString sql = fuzzText(data, size);
    std::vector<SqliteStatement> first, second;
    try {
        first = RewriteTsqlForSqlite(sql);
    } catch (const HostError& e) {
        FUZZ_CHECK(!e.description().isEmpty());
        return 0;
    }
    second = RewriteTsqlForSqlite(sql);
    FUZZ_CHECK(first.size() == second.size());
    QStringList params;
    for (size_t i = 0; i < first.size(); ++i) {
        FUZZ_CHECK(first[i].sql == second[i].sql);
        FUZZ_CHECK(first[i].params == second[i].params);
        FUZZ_CHECK(first[i].sql.count(QLatin1Char('?')) >= first[i].params.size());
        for (const QVariant& p : first[i].params)
            params << p.toString();
    }
    QStringList literals;
    if (literalsOf(sql, literals))
        FUZZ_CHECK(params == literals);
    return 0;
}
