// The T-SQL bridge: the tokenizer, and each statement as SQLite is given it.
#include "host/host_error.h"
#include "sql/tsql_bridge.h"
#include "sql/tsql_tokenizer.h"
#include <gtest/gtest.h>

namespace {

// The one statement a batch must give.
SqliteStatement one(const QString& batch)
{
    const auto r = RewriteTsqlForSqlite(batch);
    EXPECT_EQ(r.size(), 1u) << batch.toStdString();
    return r.empty() ? SqliteStatement{} : r.front();
}

// The number and text of the error the batch raises; 0 when it raises none.
std::pair<long, QString> errorOf(const QString& batch)
{
    try {
        RewriteTsqlForSqlite(batch);
    } catch (const HostError& e) {
        return {e.number(), e.description()};
    }
    return {0, QString()};
}

// Empty when the batch was refused as unsupported naming `construct`,
// otherwise what happened instead.
std::string refusal(const QString& batch, const QString& construct)
{
    const auto [number, text] = errorOf(batch);
    if (number == HostErrors::Unsupported && text.contains(construct, Qt::CaseInsensitive))
        return {};
    return std::to_string(number) + ": " + text.toStdString();
}

} // namespace

TEST(TsqlTokenizer, LiteralsNamesNumbersAndComments)
{
    QStringList literals;
    const auto t = TsqlTokenizer::tokenize(QStringLiteral("select N'中''文', 'it''s', '' from [a]]b] join \"x\"\"y\" -- gone 'z'\r\n"
                                                          "/* outer /* inner */ still comment */ where 1.5e3 < .5 or 'a\tb\r\nc'"),
                                           &literals);
    QString kinds;
    QStringList texts;
    for (const TsqlToken& token : t) {
        kinds += QLatin1Char("WQSNO(),.;"[int(token.kind)]);
        texts << token.text;
    }
    EXPECT_EQ(kinds, QStringLiteral("WS,S,SWQWQWNONWS"));
    // Control characters inside a literal are data.
    EXPECT_EQ(literals, (QStringList{QStringLiteral("中'文"), QStringLiteral("it's"), QString(), QStringLiteral("a\tb\r\nc")}));
    EXPECT_EQ(texts.mid(7, 7), (QStringList{"a]b", "join", "x\"y", "where", "1.5e3", "<", ".5"}));

    // A number glued to a keyword ends where the letters begin; an 'e' only
    // starts an exponent when digits follow. An identifier that merely ends
    // in N is not a string prefix (a string's text is kept in its slot).
    texts.clear();
    for (const TsqlToken& token : TsqlTokenizer::tokenize(QStringLiteral("x=1AND y=2END z=3e q=4e+2 a<>b!=c<=d>=e||FNAME'x'"), &literals))
        texts << token.text;
    EXPECT_EQ(texts.join(QLatin1Char(' ')),
              QStringLiteral("x = 1 AND y = 2 END z = 3 e q = 4e+2 a <> b != c <= d >= e || FNAME "));
}

// Each construct of T-SQL the station's statements use, as SQLite is given it
// (the functions' answers on both engines: test_sql_engine.cpp).
TEST(TsqlBridge, RewritesEachConstructTheStationUses)
{
    const struct {
        const char* tsql;
        const char* sqlite;
    } cases[] = {
        {"select a from t with(nolock)", "select a from t"},
        {"select a from t WITH (NOLOCK) where a=1", "select a from t where a = 1"},
        {"select x.a from t x with(nolock) join u as y WITH ( NoLock ) on x.a=y.a, v z (nolock)", "select x.a from t x join u as y on x.a = y.a, v z"},
        {"select a from (select a from t with(nolock)) d", "select a from (select a from t) d"},
        {"select top 1 a from t order by a desc", "select a from t order by a desc LIMIT 1"},
        {"SELECT DISTINCT TOP 5 a FROM t", "SELECT DISTINCT a FROM t LIMIT 5"},
        // Inside parentheses the limit closes that SELECT, not the statement.
        {"select a from t where exists (select top 1 b from u where u.b=t.a) and a in (select top 3 c from v)", "select a from t where exists (select b from u where u.b = t.a LIMIT 1) and a in (select c from v LIMIT 3)"},
        {"insert into t (a) select top 2 b from u", "INSERT INTO t (a) select b from u LIMIT 2"},
        {"select Convert(Varchar(10),DateAdd(Day,t.n,t.d),111) from t", "select strftime('%Y/%m/%d', datetime(t.d, CAST((t.n) AS INTEGER) || ' days')) from t"},
        {"select convert(int, a) from t", "select CAST((a) AS INTEGER) from t"},
        {"select count(*), count(distinct a), sum(b), min(c), max(d), avg(e), " "coalesce(a,b,0), nullif(a,0), abs(a), upper(b), lower(c) from t", "select COUNT(*), COUNT(distinct a), SUM(b), MIN(c), MAX(d), AVG(e), " "COALESCE(a, b, 0), NULLIF(a, 0), ABS(a), UPPER(b), LOWER(c) from t"},
        {" Delete IC_Web2ErpOrderSerial where FEntryID=5", "DELETE FROM IC_Web2ErpOrderSerial where FEntryID = 5"},
        {"delete from t", "DELETE FROM t"},
        {"insert t (a,b) values (1,-2)", "INSERT INTO t (a, b) values (1, -2)"},
        {"insert into t default values", "INSERT INTO t default values"},
        {"update t set a = a - 1, b = 'x' where c = 2", "UPDATE t set a = a - 1, b = ? where c = 2"},
        {"select a from t where b = 'Name'", "select a from t where b = ?"},
        {"select a + 1, 2 + b * c, -a, a - b, Len(a) + b, +3 from t", "select a + 1, 2 + b * c, - a, a - b, length(rtrim(a)) + b, +3 from t"},
        // Bracketed names keep any character; names SQLite reserves are quoted;
        // backticks never let SQLite turn a misspelt name into a string.
        {"select [Order Date], \"a`b\", t.[Limit], Replace, FKey from [dbo].[t] t", "select `Order Date`, `a``b`, t.`Limit`, `Replace`, FKey from `dbo`.`t` t"},
        {"select t.* , u.x from t, u", "select t.*, u.x from t, u"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tsql);
        EXPECT_EQ(one(QString::fromUtf8(c.tsql)).sql, QString::fromUtf8(c.sqlite));
    }
}

// Anything else is refused, the refusal naming what it could not translate.
TEST(TsqlBridge, RefusesEveryOtherConstructByName)
{
    const struct {
        const char* tsql;
        const char* named;
    } cases[] = {
        {"select a from t with(nolock, updlock)", "table hint UPDLOCK"},
        {"select a from dbo.fn(3) f", "dbo.fn"},
        {"delete t with(nolock) where a=1", "table hint on the table of DELETE"},
        {"select a from (select 1 a) d with(nolock)", "derived table"},
        {"select a with(nolock) from t", "WITH"},
        {"select top (1) a from t", "TOP (expression)"},
        {"select top 10 percent a from t", "PERCENT"},
        {"select top 1 with ties a from t order by a", "WITH TIES"},
        {"select top 1.5 a from t", "whole number"},
        {"select top 1 a from t union all select b from u", "UNION"},
        {"delete top 1 from t", "DELETE TOP"},
        {"update top (1) t set a=1", "UPDATE TOP"},
        {"select a, top 1 from t", "TOP"},
        {"select substring(a,1,2) from t", "function SUBSTRING"},
        {"select dbo.fnPrice(a) from t", "function dbo.fnPrice"},
        {"select [Len](a) from t", "function Len"},
        {"select DateAdd(month,1,d) from t", "unit month"},
        {"select convert(varchar(20), d, 120) from t", "120"},
        {"select convert(varchar(20), d) from t", "no style"},
        {"select convert(datetime, d, 111) from t", "Convert(datetime"},
        {"select convert(varchar(10), d, s) from t", "style"},
        {"select str(a, 10, 2) from t", "decimals"},
        {"select isnull(a) from t", "ISNULL with 1"},
        {"select getdate(1)", "GETDATE with 1"},
        {"select row_number() over (order by a) from t", "row_number"},
        {"update t set a = u.a from t inner join u on t.id=u.id", "UPDATE ... FROM"},
        {"delete t from t join u on t.id=u.id", "DELETE ... FROM"},
        {"select a into t2 from t", "SELECT ... INTO"},
        {"select a from (values (1),(2)) v", "VALUES outside INSERT"},
        {"select (delete from t)", "DELETE inside"},
        {"exec sp_who", "EXEC"},
        {"select 1\r\nGO\r\nselect 2", "GO"},
        {"merge t using u on t.a=u.a when matched then delete;", "MERGE"},
        {"delete t output deleted.a where a=1", "OUTPUT"},
        {"select a from t cross apply (select 1 b) x", "APPLY"},
        {"select a from t pivot (sum(b) for c in ([1])) p", "PIVOT"},
        {"select a from t option (maxdop 1)", "OPTION"},
        {"with c as (select 1 a) select a from c", "common table expression"},
        {"declare x int", "DECLARE"},
        {"truncate table t", "TRUNCATE"},
        {"select a from t order by a collate Latin1_General_CI_AS", "COLLATE"},
        {"select a from t order by a offset 5 rows", "OFFSET"},
        {"(select 1)", "'('"},
        // "Select name = expr" names a column on the server; SQLite would compare.
        {"select FName = t.a from t", "alias = expression"},
        {"select a as 'Name' from t", "column alias"},
        // '+' joins text on the server and adds numbers here: only a number on
        // one side settles it.
        {"select 'A' + FName from t", "text operand"},
        {"select FName + FModel from t", "unknown type"},
        {"select ltrim(Str(a)) + 1 from t", "text operand"},
        {"select getdate() - 1", "date arithmetic"},
        {"select a || b from t", "'||'"},
        {"update t set a += 1", "'+='"},
        // LIKE: a [ ] class would be read by SQLite as plain characters.
        {"select a from t where b like '[A-C]%'", "character class"},
        {"select a from t where b like c", "not a string literal"},
        // Tokens with no meaning here.
        {"select @code", "@code"},
        {"select @@ROWCOUNT", "@@ROWCOUNT"},
        {"select * from #tmp", "temporary table #tmp"},
        {"select 0x1F", "binary literal"},
        {"select $5", "'$'"},
        {"select 1\x07", "U+0007"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tsql);
        EXPECT_EQ(refusal(QString::fromUtf8(c.tsql), QString::fromUtf8(c.named)), "");
    }

    // Left open or unbalanced: the server's syntax check would refuse these too.
    for (const char* broken : {"select 'abc", "select 'it''", "select [abc from t", "select \"abc from t",
                               "select 1 /* a /* b */", "select (1", "select 1) select (2", "select (1; select 2)",
                               "select FID from t where FLogisticsOrder ='ab'c'"})
        EXPECT_EQ(errorOf(QString::fromUtf8(broken)).first, HostErrors::Database) << broken;
    EXPECT_TRUE(errorOf(QStringLiteral("select 'abc")).second.contains(QStringLiteral("unterminated string literal")));
}

TEST(TsqlBridge, LiteralsAreDataBoundInTheOrderOfTheOutput)
{
    const SqliteStatement s = one(QStringLiteral(
        "select FName from t_ICItem with(nolock) where FNumber = 'with(nolock) top 1' "
        "or FModel = '--' or FName = N'/* 注释 */ ISNULL(a,b)' or FNote = 'O''Brien; delete t' or b = '' or c = N''"));
    EXPECT_EQ(s.sql, QStringLiteral("select FName from t_ICItem where FNumber = ? or FModel = ? "
                                    "or FName = ? or FNote = ? or b = ? or c = ?"));
    EXPECT_EQ(s.params, (QVariantList{QStringLiteral("with(nolock) top 1"), QStringLiteral("--"),
                                      QStringLiteral("/* 注释 */ ISNULL(a,b)"), QStringLiteral("O'Brien; delete t"),
                                      QStringLiteral(""), QStringLiteral("")}));
    for (const QVariant& p : s.params) {
        EXPECT_EQ(p.typeId(), QMetaType::QString);
        EXPECT_FALSE(p.toString().isNull());   // a null QString would be bound as SQL NULL
    }

    // A code pasted with an unescaped quote: the tokens are the server's
    // tokens. When the quotes balance, the result is what the server would
    // run (here a condition that is always true), with every piece bound.
    const SqliteStatement injected = one(QStringLiteral("select FID from IC_Web2ERPOrders where FLogisticsOrder ='x' OR 'a'='a'"));
    EXPECT_EQ(injected.sql, QStringLiteral("select FID from IC_Web2ERPOrders where FLogisticsOrder = ? OR ? = ?"));
    EXPECT_EQ(injected.params, (QVariantList{QStringLiteral("x"), QStringLiteral("a"), QStringLiteral("a")}));

    // Str repeats its argument, and with it the argument's parameters.
    EXPECT_EQ(one(QStringLiteral("select Str('7') from t")).params, QVariantList(4, QStringLiteral("7")));
    // DateAdd puts the date before the number: parameters follow the output order.
    EXPECT_EQ(one(QStringLiteral("select DateAdd(d, '5', '2024-01-01')")).params,
              (QVariantList{QStringLiteral("2024-01-01"), QStringLiteral("5")}));
    // LIKE takes a literal pattern as a parameter.
    EXPECT_EQ(one(QStringLiteral("select a from t where b like 'S%' and c not like N'_x'")).params,
              (QVariantList{QStringLiteral("S%"), QStringLiteral("_x")}));
}

TEST(TsqlBridge, BatchesSplitAtTopLevelStatements)
{
    const auto r = RewriteTsqlForSqlite(QStringLiteral(
        " Delete S where FEntryID=5\r\n"
        " insert S (FID,FEntryID,FSerialNumber) values (0,5,'A1')\r\n"
        " insert S (FID,FEntryID,FSerialNumber) values (0,5,'A2')\r\n"
        " Delete S where FEntryID=6\r\n"));
    ASSERT_EQ(r.size(), 4u);
    EXPECT_EQ(r[1].sql, QStringLiteral("INSERT INTO S (FID, FEntryID, FSerialNumber) values (0, 5, ?)"));
    EXPECT_EQ(r[1].params, QVariantList{QStringLiteral("A1")});
    EXPECT_EQ(r[2].params, QVariantList{QStringLiteral("A2")});

    // ';' separates too and empty statements vanish; the SELECT of INSERT ...
    // SELECT belongs to it, one more SELECT does not.
    const struct {
        const char* batch;
        size_t statements;
    } cases[] = {
        {";select 1;; update t set a=1 ; select 'x' union all select 'y' union select 'z';", 3},
        {"insert t (a) select b from u union all select c from v select 1", 2},
        {"insert t values (1) select 2", 2},
        {"select a from t where a in (select b from u) select 3", 2},
        {"select (select 1) except select 2", 1},
        {"select 1 intersect select 1 intersect select 1", 1},
        {"  -- nothing\r\n ; ", 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(RewriteTsqlForSqlite(QString::fromUtf8(c.batch)).size(), c.statements) << c.batch;
    EXPECT_EQ(RewriteTsqlForSqlite(QStringLiteral("insert t (a) select b from u union all select c from v select 1"))[0].sql,
              QStringLiteral("INSERT INTO t (a) select b from u union all select c from v"));
    // The server binds INTERSECT first; SQLite would read left to right.
    EXPECT_EQ(refusal(QStringLiteral("select 1 union select 2 intersect select 2"), QStringLiteral("INTERSECT combined")), "");
}

TEST(TsqlBridge, ShapeCacheAnswersTheSameShapeWithoutRuleWork)
{
    ClearTsqlBridgeCache();
    const QString head = QStringLiteral("select top 1 FID from IC_Web2ERPOrders with(nolock) where FUniqueCode ='");
    const auto first = RewriteTsqlForSqlite(head + QStringLiteral("A-1' or FLogisticsOrder ='A-1'"));
    const auto second = RewriteTsqlForSqlite(head + QStringLiteral("B''2' or FLogisticsOrder =N'條碼'"));
    TsqlBridgeCacheStats stats = TsqlBridgeCacheStatistics();
    EXPECT_EQ(stats.misses, 1);
    EXPECT_EQ(stats.hits, 1);
    ASSERT_EQ(second.size(), 1u);
    EXPECT_EQ(second[0].sql, first[0].sql);
    EXPECT_EQ(second[0].params, (QVariantList{QStringLiteral("B'2"), QStringLiteral("條碼")}));
    EXPECT_EQ(first[0].params, (QVariantList{QStringLiteral("A-1"), QStringLiteral("A-1")}));

    // Numbers stay inline, so they are part of the shape.
    const auto other = RewriteTsqlForSqlite(QStringLiteral("select top 2 FID from IC_Web2ERPOrders with(nolock) where FUniqueCode ='A-1' or FLogisticsOrder ='A-1'"));
    EXPECT_EQ(other[0].sql.right(7), QStringLiteral("LIMIT 2"));
    EXPECT_EQ(TsqlBridgeCacheStatistics().misses, 2);

    // A quoted name is not the same shape as the bare word it spells.
    EXPECT_NE(one(QStringLiteral("select [limit] from t")).sql, one(QStringLiteral("select [lim] from t")).sql);

    // A refusal is cached as well and raised again from the cache.
    for (int k = 0; k < 2; ++k)
        EXPECT_EQ(refusal(QStringLiteral("select substring('") + QString::number(k) + QStringLiteral("',1,1)"),
                          QStringLiteral("SUBSTRING")), "");
    EXPECT_EQ(TsqlBridgeCacheStatistics().hits, 2);

    // Bounded: the oldest shape goes first.
    ClearTsqlBridgeCache();
    for (int n = 0; n <= kTsqlShapeCacheCapacity; ++n)
        RewriteTsqlForSqlite(QStringLiteral("select a from t where b = ") + QString::number(n));
    EXPECT_EQ(TsqlBridgeCacheStatistics().shapes, kTsqlShapeCacheCapacity);
    RewriteTsqlForSqlite(QStringLiteral("select a from t where b = 0"));
    EXPECT_EQ(TsqlBridgeCacheStatistics().misses, kTsqlShapeCacheCapacity + 2);
}
