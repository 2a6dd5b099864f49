#include "host/host_error.h"
#include "sql/tsql_bridge.h"

#include <gtest/gtest.h>
#include <iterator>
#include <random>

namespace {

// The one statement a batch must give.
SqliteStatement one(const QString& batch)
{
    const auto r = RewriteTsqlForSqlite(batch);
    if (r.size() != 1) {
        ADD_FAILURE() << "expected one statement, got " << r.size() << " for " << batch.toStdString();
        return {};
    }
    return r[0];
}

QString sqlOf(const QString& batch)
{
    return one(batch).sql;
}

// Empty when the batch was refused as unsupported naming `construct`,
// otherwise what happened instead.
std::string refusal(const QString& batch, const QString& construct)
{
    try {
        const auto r = RewriteTsqlForSqlite(batch);
        return "accepted: " + (r.empty() ? std::string() : r[0].sql.toStdString());
    } catch (const HostError& e) {
        if (e.number() != HostErrors::Unsupported)
            return "error " + std::to_string(e.number()) + ": " + e.description().toStdString();
        if (!e.description().contains(construct, Qt::CaseInsensitive))
            return "refused without naming " + construct.toStdString() + ": " + e.description().toStdString();
        return {};
    }
}

} // namespace

// Each construct of T-SQL the station's statements use, as SQLite is given it.
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
        // TOP over a union inside a derived table limits the outer SELECT.
        {"select top 1 x from (select 1 x union all select 2 x) a", "select x from (select 1 x union all select 2 x) a LIMIT 1"},
        {"insert into t (a) select top 2 b from u", "INSERT INTO t (a) select b from u LIMIT 2"},
        {"select IsNull(a,0), ltrim(b), RTrim(c), Len(d), getdate() from t", "select IFNULL(a, 0), ltrim(b), rtrim(c), length(rtrim(d)), datetime('now', 'localtime') from t"},
        {"select Convert(Varchar(10),DateAdd(Day,t.n,t.d),111) from t", "select strftime('%Y/%m/%d', datetime(t.d, CAST((t.n) AS INTEGER) || ' days')) from t"},
        // A shorter varchar cuts the text as the server does.
        {"select convert(varchar(7), d, 111) from t", "select substr(strftime('%Y/%m/%d', d), 1, 7) from t"},
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
        EXPECT_EQ(sqlOf(QString::fromUtf8(c.tsql)), QString::fromUtf8(c.sqlite));
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
        {"select a from t x with (index(ix_a))", "table hint INDEX"},
        {"select a from dbo.fn(3) f", "dbo.fn"},
        {"delete t with(nolock) where a=1", "table hint on the table of DELETE"},
        {"update t with(rowlock) set a=1", "table hint on the table of UPDATE"},
        {"select a from (select 1 a) d with(nolock)", "derived table"},
        {"select a with(nolock) from t", "WITH"},
        {"select top (1) a from t", "TOP (expression)"},
        {"select top 10 percent a from t", "PERCENT"},
        {"select top 1 with ties a from t order by a", "WITH TIES"},
        {"select top 1.5 a from t", "whole number"},
        {"select top 1 a from t union all select b from u", "UNION"},
        {"select a from t union select top 1 b from u", "UNION"},
        {"delete top 1 from t", "DELETE TOP"},
        {"update top (1) t set a=1", "UPDATE TOP"},
        {"select a, top 1 from t", "TOP"},
        {"select substring(a,1,2) from t", "function SUBSTRING"},
        {"select left(a,2) from t", "function LEFT"},
        {"select cast(a as varchar(3)) from t", "function cast"},
        {"select dbo.fnPrice(a) from t", "function dbo.fnPrice"},
        {"select [Len](a) from t", "function Len"},
        {"select DateAdd(month,1,d) from t", "unit month"},
        {"select convert(varchar(20), d, 120) from t", "120"},
        {"select convert(varchar(20), d) from t", "no style"},
        {"select convert(datetime, d, 111) from t", "Convert(datetime"},
        {"select convert(varchar(10), d, s) from t", "style"},
        {"select str(a, 10, 2) from t", "decimals"},
        {"select isnull(a) from t", "ISNULL with 1"},
        {"select min(a, b) from t", "MIN with 2"},
        {"select getdate(1)", "GETDATE with 1"},
        {"select row_number() over (order by a) from t", "row_number"},
        {"select count(*) over () from t", "OVER"},
        {"update t set a = u.a from t inner join u on t.id=u.id", "UPDATE ... FROM"},
        {"delete t from t join u on t.id=u.id", "DELETE ... FROM"},
        {"select a into t2 from t", "SELECT ... INTO"},
        {"insert t exec p", "EXEC"},
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
        {"'x'", "statement starting"},
        // "Select name = expr" names a column on the server; SQLite would compare.
        {"select FName = t.a from t", "alias = expression"},
        {"select a, 'Name' = b from t", "alias = expression"},
        {"select a as 'Name' from t", "column alias"},
        // '+' joins text on the server and adds numbers here: only a number on
        // one side settles it.
        {"select 'A' + FName from t", "text operand"},
        {"select FName + N'x' from t", "text operand"},
        {"select FName + FModel from t", "unknown type"},
        {"select ltrim(Str(a)) + 1 from t", "text operand"},
        {"select 1 + Str(a) from t", "text operand"},
        {"select getdate() - 1", "date arithmetic"},
        {"select 1 + DateAdd(day, 1, d) from t", "date arithmetic"},
        {"select a || b from t", "'||'"},
        {"select a & 1 from t", "'&'"},
        {"update t set a += 1", "'+='"},
        // LIKE: a [ ] class would be read by SQLite as plain characters.
        {"select a from t where b like '[A-C]%'", "character class"},
        {"select a from t where b like c", "not a string literal"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tsql);
        EXPECT_EQ(refusal(QString::fromUtf8(c.tsql), QString::fromUtf8(c.named)), "");
    }
}

TEST(TsqlBridge, LiteralsBecomeParametersInTheOrderOfTheOutput)
{
    // Str repeats its argument, and with it the argument's parameters.
    const SqliteStatement str = one(QStringLiteral("select Str('7') from t"));
    EXPECT_EQ(str.params, (QVariantList{QStringLiteral("7"), QStringLiteral("7"), QStringLiteral("7"), QStringLiteral("7")}));
    EXPECT_TRUE(str.sql.contains(QStringLiteral("'**********'")));
    EXPECT_TRUE(str.sql.contains(QStringLiteral("printf('%10d'")));
    EXPECT_TRUE(one(QStringLiteral("select Str(a, 3) from t")).sql.contains(QStringLiteral("'***'")));
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
        " Delete S where FEntryID=6\r\n"
        " insert S (FID,FEntryID,FSerialNumber) values (0,6,'B1')\r\n"));
    ASSERT_EQ(r.size(), 5u);
    EXPECT_EQ(r[0].sql, QStringLiteral("DELETE FROM S where FEntryID = 5"));
    EXPECT_EQ(r[1].sql, QStringLiteral("INSERT INTO S (FID, FEntryID, FSerialNumber) values (0, 5, ?)"));
    EXPECT_EQ(r[1].params, QVariantList{QStringLiteral("A1")});
    EXPECT_EQ(r[2].params, QVariantList{QStringLiteral("A2")});
    EXPECT_EQ(r[3].sql, QStringLiteral("DELETE FROM S where FEntryID = 6"));
    EXPECT_TRUE(r[3].params.isEmpty());
    EXPECT_EQ(r[4].params, QVariantList{QStringLiteral("B1")});

    // ';' separates too; empty statements vanish.
    const auto s = RewriteTsqlForSqlite(QStringLiteral(";select 1;; update t set a=1 ; select 'x' union all select 'y' union select 'z';"));
    ASSERT_EQ(s.size(), 3u);
    EXPECT_EQ(s[2].sql, QStringLiteral("select ? union all select ? union select ?"));
    EXPECT_EQ(s[2].params, (QVariantList{QStringLiteral("x"), QStringLiteral("y"), QStringLiteral("z")}));

    // The SELECT of INSERT ... SELECT belongs to it; one more SELECT does not.
    const auto ins = RewriteTsqlForSqlite(QStringLiteral("insert t (a) select b from u union all select c from v select 1"));
    ASSERT_EQ(ins.size(), 2u);
    EXPECT_EQ(ins[0].sql, QStringLiteral("INSERT INTO t (a) select b from u union all select c from v"));
    EXPECT_EQ(ins[1].sql, QStringLiteral("select 1"));
    EXPECT_EQ(RewriteTsqlForSqlite(QStringLiteral("insert t values (1) select 2")).size(), 2u);
    EXPECT_EQ(RewriteTsqlForSqlite(QStringLiteral("select a from t where a in (select b from u) select 3")).size(), 2u);
    EXPECT_EQ(RewriteTsqlForSqlite(QStringLiteral("select (select 1) except select 2")).size(), 1u);
    EXPECT_EQ(RewriteTsqlForSqlite(QStringLiteral("select 1 intersect select 1 intersect select 1")).size(), 1u);
    // The server binds INTERSECT first; SQLite would read left to right.
    EXPECT_EQ(refusal(QStringLiteral("select 1 union select 2 intersect select 2"), QStringLiteral("INTERSECT combined")), "");

    EXPECT_TRUE(RewriteTsqlForSqlite(QStringLiteral("  -- nothing\r\n ; ")).empty());

    auto number = [](const QString& batch) {
        try {
            RewriteTsqlForSqlite(batch);
        } catch (const HostError& e) {
            return e.number();
        }
        return 0L;
    };
    EXPECT_EQ(number(QStringLiteral("select (1")), HostErrors::Database);
    EXPECT_EQ(number(QStringLiteral("select 1) select (2")), HostErrors::Database);
    EXPECT_EQ(number(QStringLiteral("select (1; select 2)")), HostErrors::Database);
}

TEST(TsqlBridge, ShapeCacheAnswersTheSameShapeWithoutRuleWork)
{
    ClearTsqlBridgeCache();
    const QString head = QStringLiteral("select top 1 FID from IC_Web2ERPOrders with(nolock) where FUniqueCode ='");
    const auto first = RewriteTsqlForSqlite(head + QStringLiteral("A-1' or FLogisticsOrder ='A-1'"));
    TsqlBridgeCacheStats stats = TsqlBridgeCacheStatistics();
    EXPECT_EQ(stats.misses, 1);
    EXPECT_EQ(stats.hits, 0);

    const auto second = RewriteTsqlForSqlite(head + QStringLiteral("B''2' or FLogisticsOrder =N'條碼'"));
    stats = TsqlBridgeCacheStatistics();
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
    EXPECT_NE(sqlOf(QStringLiteral("select [limit] from t")), sqlOf(QStringLiteral("select [lim] from t")));

    // A refusal is cached as well and raised again from the cache.
    for (int k = 0; k < 2; ++k)
        EXPECT_EQ(refusal(QStringLiteral("select substring('") + QString::number(k) + QStringLiteral("',1,1)"),
                          QStringLiteral("SUBSTRING")), "");
    EXPECT_EQ(TsqlBridgeCacheStatistics().hits, 2);

    // Bounded: the least recently used shape goes first.
    ClearTsqlBridgeCache();
    auto shape = [](int n) { return QStringLiteral("select a from t where b = ") + QString::number(n); };
    RewriteTsqlForSqlite(shape(0));
    for (int n = 1; n <= kTsqlShapeCacheCapacity; ++n) {
        RewriteTsqlForSqlite(shape(n));
        if (n == kTsqlShapeCacheCapacity / 2)
            RewriteTsqlForSqlite(shape(0)); // touched: stays
    }
    stats = TsqlBridgeCacheStatistics();
    EXPECT_EQ(stats.shapes, kTsqlShapeCacheCapacity);
    const qint64 misses = stats.misses;
    RewriteTsqlForSqlite(shape(0));
    EXPECT_EQ(TsqlBridgeCacheStatistics().misses, misses);
    RewriteTsqlForSqlite(shape(1)); // the oldest untouched one was dropped
    EXPECT_EQ(TsqlBridgeCacheStatistics().misses, misses + 1);
}

TEST(TsqlBridge, AnyTokenSoupRewritesOrRaisesHostError)
{
    // Fixed seed: the same soups every run. Whatever the order of tokens, the
    // bridge answers with statements whose '?' match their parameters, or
    // with a HostError; nothing else escapes and nothing reads out of range.
    static const char* const pieces[] = {
        "select", "top", "1", "(", ")", ",", "with", "nolock", "from", "t", "'x'", "union", "all",
        "insert", "values", "delete", "update", "set", "=", "+", "-", "*", "ISNULL", "Convert",
        "Varchar", "DateAdd", "Day", "Str", "Len", "111", "as", "a", ".", ";", "like", "N'y'",
        "[q]", "join", "on", "where", "case", "when", "then", "else", "end", "exists", "in",
        "group", "by", "order", "distinct", "into", "--", "/*x*/", "'", "]", "1AND", "getdate"};
    std::mt19937 random(20240105);
    std::uniform_int_distribution<int> pick(0, int(std::size(pieces)) - 1);
    std::uniform_int_distribution<int> length(1, 14);
    int accepted = 0;
    int refused = 0;
    for (int round = 0; round < 400; ++round) {
        QString batch;
        const int n = length(random);
        for (int k = 0; k < n; ++k)
            batch += QLatin1String(pieces[pick(random)]) + QLatin1Char(' ');
        try {
            for (const SqliteStatement& s : RewriteTsqlForSqlite(batch))
                EXPECT_EQ(s.sql.count(QLatin1Char('?')), s.params.size()) << batch.toStdString();
            ++accepted;
        } catch (const HostError&) {
            ++refused;
        } catch (...) {
            ADD_FAILURE() << "not a HostError for: " << batch.toStdString();
        }
    }
    // Both outcomes occur, so the soup reaches the rules and the refusals.
    EXPECT_GT(accepted, 0);
    EXPECT_GT(refused, 0);
}
