// The T-SQL bridge on any text: it either raises HostError or returns
// statements whose bound values are exactly the input's string literals (no
// literal is rewritten, split, merged or lost), each bound to exactly one
// placeholder and none pasted into the statement text; and the same text
// rewritten twice (the shape cache) gives the same statements.
#include "fuzz_text.h"
#include "sql_literals.h"
#include "host/host_error.h"
#include "sql/tsql_bridge.h"
#include <QSet>
#include <cstdio>
#include <cstdlib>

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
        qsizetype placeholders = 0;
        FUZZ_CHECK(quotesAreTheBridgesOwn(first[i].sql, placeholders));
        FUZZ_CHECK(placeholders == first[i].params.size());
        for (const QVariant& p : first[i].params)
            params << p.toString();
    }
    // Bound in placeholder order: DateAdd puts its date first, and Str uses
    // its argument more than once. So the same values, none lost, none made up.
    QStringList literals;
    if (literalsOf(sql, literals)) {
        FUZZ_CHECK(params.size() >= literals.size());
        FUZZ_CHECK(QSet<QString>(params.begin(), params.end()) == QSet<QString>(literals.begin(), literals.end()));
    }
    return 0;
}
