#include "sql/tsql_bridge.h"

#include "host/host_error.h"
#include "sql/tsql_rewriter.h"
#include "sql/tsql_shape_cache.h"
#include "sql/tsql_tokenizer.h"

namespace {

using K = TsqlTokenKind;

TsqlShapeCache& shapeCache()
{
    static TsqlShapeCache cache(kTsqlShapeCacheCapacity);
    return cache;
}

bool wordIs(const TsqlToken& t, const char* upper)
{
    return t.kind == K::Word && t.text.compare(QLatin1String(upper), Qt::CaseInsensitive) == 0;
}

// Each token's kind and text, length-prefixed so that no quoted name can pass
// for a run of other tokens; string literals count by kind only.
QString shapeOf(const std::vector<TsqlToken>& tokens, int batchSize)
{
    QString key;
    key.reserve(batchSize + int(tokens.size()) * 2);
    for (const TsqlToken& t : tokens) {
        key += QChar(u'a' + int(t.kind));
        if (t.kind == K::String)
            continue;
        const qsizetype length = t.text.size();
        if (length < 0xFFFF) {
            key += QChar(char16_t(length));
        } else {
            key += QChar(char16_t(0xFFFF));
            key += QString::number(length);
            key += QLatin1Char(':');
        }
        key += t.text;
    }
    return key;
}

// The statements of a batch as token ranges. The server runs statements
// written one after the other with no separator; a SELECT continues the
// statement after UNION [ALL], EXCEPT, INTERSECT, inside parentheses, or as
// the row source of an INSERT that has none yet.
std::vector<std::pair<int, int>> splitBatch(const std::vector<TsqlToken>& tok)
{
    std::vector<std::pair<int, int>> ranges;
    const int n = int(tok.size());
    int start = 0;
    int depth = 0;
    bool insertOpen = false;
    auto close = [&](int end) {
        if (end > start)
            ranges.emplace_back(start, end);
    };
    for (int i = 0; i < n; ++i) {
        const TsqlToken& t = tok[i];
        if (t.kind == K::LParen) {
            ++depth;
            continue;
        }
        if (t.kind == K::RParen) {
            if (--depth < 0)
                throw HostError(HostErrors::Database, QStringLiteral("Incorrect syntax: ')' without '('"));
            continue;
        }
        if (depth > 0)
            continue;
        if (t.kind == K::Semicolon) {
            close(i);
            start = i + 1;
            insertOpen = false;
            continue;
        }
        if (t.kind != K::Word)
            continue;
        if (i == start) {
            insertOpen = wordIs(t, "INSERT");
            continue;
        }
        if (wordIs(t, "VALUES")) {
            insertOpen = false;
            continue;
        }
        const bool select = wordIs(t, "SELECT");
        if (!select && !wordIs(t, "DELETE") && !wordIs(t, "INSERT") && !wordIs(t, "UPDATE"))
            continue;
        if (select) {
            const TsqlToken& prev = tok[i - 1];
            const bool afterSetOperator = wordIs(prev, "UNION") || wordIs(prev, "EXCEPT")
                                          || wordIs(prev, "INTERSECT")
                                          || (wordIs(prev, "ALL") && i - 2 >= start && wordIs(tok[i - 2], "UNION"));
            if (afterSetOperator)
                continue;
            if (insertOpen) {
                insertOpen = false;
                continue;
            }
        }
        close(i);
        start = i;
        insertOpen = wordIs(t, "INSERT");
    }
    if (depth > 0)
        throw HostError(HostErrors::Database, QStringLiteral("Incorrect syntax: '(' without ')'"));
    close(n);
    return ranges;
}

std::shared_ptr<const TsqlRewrite> applyRules(const std::vector<TsqlToken>& tokens)
{
    auto rewrite = std::make_shared<TsqlRewrite>();
    try {
        for (const auto& [begin, end] : splitBatch(tokens)) {
            TsqlRewriter rewriter(tokens, begin, end);
            rewrite->statements.push_back(rewriter.rewrite());
            const auto& like = rewriter.likePatternSlots();
            rewrite->likeSlots.insert(rewrite->likeSlots.end(), like.begin(), like.end());
        }
    } catch (const HostError& e) {
        // A refusal depends on the shape only, so it is cached like a rewrite.
        rewrite->statements.clear();
        rewrite->likeSlots.clear();
        rewrite->failed = true;
        rewrite->errorNumber = e.number();
        rewrite->errorText = e.description();
    }
    return rewrite;
}

} // namespace

std::vector<SqliteStatement> RewriteTsqlForSqlite(const QString& batch)
{
    QStringList literals;
    const std::vector<TsqlToken> tokens = TsqlTokenizer::tokenize(batch, &literals);
    const QString shape = shapeOf(tokens, int(batch.size()));

    std::shared_ptr<const TsqlRewrite> rewrite = shapeCache().find(shape);
    if (!rewrite) {
        rewrite = applyRules(tokens);
        shapeCache().insert(shape, rewrite);
    }
    if (rewrite->failed)
        throw HostError(rewrite->errorNumber, rewrite->errorText);

    for (int slot : rewrite->likeSlots) {
        if (literals[slot].contains(QLatin1Char('[')))
            throw HostError(HostErrors::Unsupported,
                            QStringLiteral("The SQLite bridge does not support a LIKE pattern with [ ] (a character class)"));
    }

    std::vector<SqliteStatement> result;
    result.reserve(rewrite->statements.size());
    for (const TsqlTemplate& t : rewrite->statements) {
        SqliteStatement statement;
        statement.sql = t.sql;
        statement.params.reserve(int(t.bindings.size()));
        for (int slot : t.bindings)
            statement.params.append(literals[slot]);
        result.push_back(std::move(statement));
    }
    return result;
}

TsqlBridgeCacheStats TsqlBridgeCacheStatistics()
{
    TsqlBridgeCacheStats stats;
    stats.hits = shapeCache().hits();
    stats.misses = shapeCache().misses();
    stats.shapes = shapeCache().size();
    return stats;
}

void ClearTsqlBridgeCache()
{
    shapeCache().clear();
}
