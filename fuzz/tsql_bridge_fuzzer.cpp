// The T-SQL bridge on any text: it either raises HostError or returns
// statements whose bound values are exactly the input's string literals (no
// literal is rewritten, split, merged or lost), each bound to exactly one
// placeholder and none pasted into the statement text; and the same text
// rewritten twice (the shape cache) gives the same statements.
#include "fuzz_text.h"
#include "host/host_error.h"
#include "sql/tsql_bridge.h"
#include <QRegularExpression>
#include <QSet>
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
// Every quote of a rewritten statement opens one of the bridge's own fixed
// literals (date formats, modifiers, Str's padding), never a text of the
// input; names are in backquotes. Counts the '?' outside names.
bool quotesAreTheBridgesOwn(const QString& sql, qsizetype& placeholders)
{
    static const QRegularExpression own(QStringLiteral("^'(now|localtime| days|%Y/%m/%d|\\*+|%\\d+d)'"));
    placeholders = 0;
    qsizetype i = 0;
    while (i < sql.size()) {
        const QChar c = sql[i];
        if (c == QLatin1Char('`')) {
            ++i;
            for (;;) {
                if (i >= sql.size()) return false;
                if (sql[i] == QLatin1Char('`')) {
                    if (i + 1 < sql.size() && sql[i + 1] == QLatin1Char('`')) { i += 2; continue; }
                    ++i;
                    break;
                }
                ++i;
            }
        } else if (c == QLatin1Char('\'')) {
            const QRegularExpressionMatch m = own.match(sql.mid(i, 64));
            if (!m.hasMatch()) return false;
            i += m.capturedLength();
        } else {
            if (c == QLatin1Char('?')) ++placeholders;
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
