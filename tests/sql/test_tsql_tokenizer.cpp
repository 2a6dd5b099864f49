#include "host/host_error.h"
#include "sql/tsql_bridge.h"
#include "sql/tsql_tokenizer.h"

#include <gtest/gtest.h>

namespace {

using K = TsqlTokenKind;

std::vector<TsqlToken> lex(const QString& text, QStringList* literals = nullptr)
{
    QStringList own;
    return TsqlTokenizer::tokenize(text, literals ? literals : &own);
}

QString kinds(const std::vector<TsqlToken>& tokens)
{
    static const char* names = "WQSNO(),.;";
    QString s;
    for (const TsqlToken& t : tokens)
        s += QLatin1Char(names[int(t.kind)]);
    return s;
}

long errorNumber(const QString& text)
{
    try {
        lex(text);
    } catch (const HostError& e) {
        return e.number();
    }
    return 0;
}

QString errorText(const QString& text)
{
    try {
        lex(text);
    } catch (const HostError& e) {
        return e.description();
    }
    return QString();
}

} // namespace

TEST(TsqlTokenizer, LiteralsNamesNumbersAndComments)
{
    QStringList literals;
    const auto t = lex(QStringLiteral("select N'中''文', 'it''s', '' from [a]]b] join \"x\"\"y\" -- gone 'z'\r\n"
                                      "/* outer /* inner */ still comment */ where 1.5e3 < .5"),
                       &literals);
    EXPECT_EQ(kinds(t), QStringLiteral("WS,S,SWQWQWNON"));
    EXPECT_EQ(literals, (QStringList{QStringLiteral("中'文"), QStringLiteral("it's"), QString()}));
    EXPECT_EQ(t[1].slot, 0);
    EXPECT_EQ(t[5].slot, 2);
    EXPECT_EQ(t[7].text, QStringLiteral("a]b"));
    EXPECT_EQ(t[9].text, QStringLiteral("x\"y"));
    EXPECT_EQ(t[11].text, QStringLiteral("1.5e3"));
    EXPECT_EQ(t[13].text, QStringLiteral(".5"));

    // A number glued to a keyword ends where the letters begin; an 'e' only
    // starts an exponent when digits follow.
    const auto g = lex(QStringLiteral("x=1AND y=2END z=3e q=4e+2"));
    QStringList texts;
    for (const TsqlToken& tok : g)
        texts << tok.text;
    EXPECT_EQ(texts.join(QLatin1Char(' ')),
              QStringLiteral("x = 1 AND y = 2 END z = 3 e q = 4e+2"));

    // An identifier that merely ends in N is not a string prefix.
    const auto n = lex(QStringLiteral("FNAME'x'"), &literals);
    EXPECT_EQ(kinds(n), QStringLiteral("WS"));
    EXPECT_EQ(n[0].text, QStringLiteral("FNAME"));

    const auto ops = lex(QStringLiteral("a<>b!=c<=d>=e||f"));
    EXPECT_EQ(kinds(ops), QStringLiteral("WOWOWOWOWOW"));
    EXPECT_EQ(ops[9].text, QStringLiteral("||"));
}

TEST(TsqlTokenizer, OpenTextAndStrangeCharactersRaise)
{
    // Left open: the server's syntax check would refuse these too.
    EXPECT_EQ(errorNumber(QStringLiteral("select 'abc")), HostErrors::Database);
    EXPECT_EQ(errorNumber(QStringLiteral("select 'it''")), HostErrors::Database);
    EXPECT_EQ(errorNumber(QStringLiteral("select [abc from t")), HostErrors::Database);
    EXPECT_EQ(errorNumber(QStringLiteral("select \"abc from t")), HostErrors::Database);
    EXPECT_EQ(errorNumber(QStringLiteral("select 1 /* a /* b */")), HostErrors::Database);
    EXPECT_TRUE(errorText(QStringLiteral("select 'abc")).contains(QStringLiteral("unterminated string literal")));

    // Constructs with no meaning here are refused by name.
    EXPECT_EQ(errorNumber(QStringLiteral("select @code")), HostErrors::Unsupported);
    EXPECT_TRUE(errorText(QStringLiteral("select @code")).contains(QStringLiteral("@code")));
    EXPECT_TRUE(errorText(QStringLiteral("select @@ROWCOUNT")).contains(QStringLiteral("@@ROWCOUNT")));
    EXPECT_TRUE(errorText(QStringLiteral("select * from #tmp")).contains(QStringLiteral("temporary table #tmp")));
    EXPECT_TRUE(errorText(QStringLiteral("select 0x1F")).contains(QStringLiteral("binary literal")));
    EXPECT_TRUE(errorText(QStringLiteral("select $5")).contains(QStringLiteral("'$'")));
    EXPECT_TRUE(errorText(QStringLiteral("select ? from t")).contains(QStringLiteral("'?'")));
    EXPECT_TRUE(errorText(QStringLiteral("select {fn now()}")).contains(QStringLiteral("'{'")));
    EXPECT_TRUE(errorText(QStringLiteral("select 1\x07")).contains(QStringLiteral("U+0007")));

    // Control characters inside a literal are data, not refused.
    QStringList literals;
    lex(QStringLiteral("select 'a\tb\r\nc'"), &literals);
    EXPECT_EQ(literals, QStringList{QStringLiteral("a\tb\r\nc")});
}

TEST(TsqlBridge, LiteralsAreDataAndNeverRewritten)
{
    const auto r = RewriteTsqlForSqlite(QStringLiteral(
        "select FName from t_ICItem with(nolock) where FNumber = 'with(nolock) top 1' "
        "or FModel = '--' or FName = N'/* 注释 */ ISNULL(a,b)' or FNote = 'O''Brien; delete t'"));
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0].sql, QStringLiteral("select FName from t_ICItem where FNumber = ? or FModel = ? "
                                       "or FName = ? or FNote = ?"));
    EXPECT_EQ(r[0].params, (QVariantList{QStringLiteral("with(nolock) top 1"), QStringLiteral("--"),
                                         QStringLiteral("/* 注释 */ ISNULL(a,b)"),
                                         QStringLiteral("O'Brien; delete t")}));
    for (const QVariant& p : r[0].params)
        EXPECT_EQ(p.typeId(), QMetaType::QString);

    // '' is an empty text; a null QString would be bound as SQL NULL.
    const auto empty = RewriteTsqlForSqlite(QStringLiteral("select a from t where b = '' or c = N''"));
    ASSERT_EQ(empty[0].params.size(), 2);
    for (const QVariant& p : empty[0].params) {
        EXPECT_FALSE(p.isNull());
        EXPECT_FALSE(p.toString().isNull());
        EXPECT_TRUE(p.toString().isEmpty());
    }

    // A code pasted with an unescaped quote: the tokens are the server's
    // tokens. When the quotes balance, the result is what the server would
    // run (here a condition that is always true), with every piece bound.
    const QString code = QStringLiteral("x' OR 'a'='a");
    const auto injected = RewriteTsqlForSqlite(
        QStringLiteral("select FID from IC_Web2ERPOrders where FLogisticsOrder ='") + code + QStringLiteral("'"));
    ASSERT_EQ(injected.size(), 1u);
    EXPECT_EQ(injected[0].sql, QStringLiteral("select FID from IC_Web2ERPOrders where FLogisticsOrder = ? OR ? = ?"));
    EXPECT_EQ(injected[0].params,
              (QVariantList{QStringLiteral("x"), QStringLiteral("a"), QStringLiteral("a")}));

    // When they do not balance, the literal runs open and the batch is refused.
    EXPECT_THROW(RewriteTsqlForSqlite(QStringLiteral("select FID from t where FLogisticsOrder ='ab'c'")), HostError);
}
