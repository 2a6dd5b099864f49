#include "sql/tsql_rewriter.h"

#include "host/host_error.h"

#include <QSet>

namespace {

using K = TsqlTokenKind;

[[noreturn]] void unsupported(const QString& what)
{
    throw HostError(HostErrors::Unsupported,
                    QStringLiteral("The SQLite bridge does not support %1").arg(what));
}

[[noreturn]] void syntaxError(const QString& what)
{
    throw HostError(HostErrors::Database, QStringLiteral("Incorrect syntax: %1").arg(what));
}

QSet<QString> wordSet(std::initializer_list<const char*> words)
{
    QSet<QString> set;
    for (const char* w : words)
        set.insert(QLatin1String(w));
    return set;
}

// Keywords that pass, or that a rule of the bridge handles.
const QSet<QString>& handledKeywords()
{
    static const QSet<QString> set = wordSet({
        "SELECT", "FROM", "WHERE", "AND", "OR", "NOT", "IN", "EXISTS", "IS", "NULL", "LIKE",
        "BETWEEN", "CASE", "WHEN", "THEN", "ELSE", "END", "AS", "ON", "JOIN", "INNER", "LEFT",
        "RIGHT", "FULL", "OUTER", "CROSS", "GROUP", "BY", "HAVING", "ORDER", "ASC", "DESC",
        "DISTINCT", "ALL", "UNION", "EXCEPT", "INTERSECT", "INSERT", "INTO", "VALUES", "DEFAULT",
        "UPDATE", "SET", "DELETE", "TOP", "WITH", "ESCAPE"});
    return set;
}

// Reserved words of the server (and a few words that start constructs) with
// no rule here: each is refused by name rather than guessed at.
const QSet<QString>& refusedKeywords()
{
    static const QSet<QString> set = wordSet({
        "ADD", "ALTER", "ANY", "APPLY", "AUTHORIZATION", "BACKUP", "BEGIN", "BREAK", "BROWSE",
        "BULK", "CASCADE", "CHECK", "CHECKPOINT", "CLOSE", "CLUSTERED", "COLLATE", "COLUMN",
        "COMMIT", "COMPUTE", "CONSTRAINT", "CONTAINS", "CONTAINSTABLE", "CONTINUE", "CREATE",
        "CURRENT", "CURRENT_DATE", "CURRENT_TIME", "CURRENT_TIMESTAMP", "CURRENT_USER", "CURSOR",
        "DATABASE", "DBCC", "DEALLOCATE", "DECLARE", "DENY", "DISK", "DISTRIBUTED", "DOUBLE",
        "DROP", "DUMP", "ERRLVL", "EXEC", "EXECUTE", "EXIT", "EXTERNAL", "FETCH", "FILE",
        "FILLFACTOR", "FOR", "FOREIGN", "FREETEXT", "FREETEXTTABLE", "FUNCTION", "GO", "GOTO",
        "GRANT", "HOLDLOCK", "IDENTITY", "IDENTITY_INSERT", "IDENTITYCOL", "IF", "INDEX", "KEY",
        "KILL", "LINENO", "LOAD", "MERGE", "NATIONAL", "NOCHECK", "NONCLUSTERED", "OF", "OFF",
        "OFFSET", "OFFSETS", "OPEN", "OPENDATASOURCE", "OPENQUERY", "OPENROWSET", "OPENXML",
        "OPTION", "OUTPUT", "OVER", "PERCENT", "PIVOT", "PLAN", "PRECISION", "PRIMARY", "PRINT",
        "PROC", "PROCEDURE", "PUBLIC", "RAISERROR", "READ", "READTEXT", "RECONFIGURE",
        "REFERENCES", "REPLICATION", "RESTORE", "RESTRICT", "RETURN", "REVERT", "REVOKE",
        "ROLLBACK", "ROWCOUNT", "ROWGUIDCOL", "RULE", "SAVE", "SCHEMA", "SECURITYAUDIT",
        "SESSION_USER", "SETUSER", "SHUTDOWN", "SOME", "STATISTICS", "SYSTEM_USER", "TABLE",
        "TABLESAMPLE", "TEXTSIZE", "THROW", "TO", "TRAN", "TRANSACTION", "TRIGGER", "TRUNCATE",
        "TRY_CONVERT", "TSEQUAL", "UNIQUE", "UNPIVOT", "UPDATETEXT", "USE", "USER", "VARYING",
        "VIEW", "WAITFOR", "WHILE", "WITHIN", "WRITETEXT"});
    return set;
}

// SQLite keywords that the server takes as plain names: such a name is
// quoted so that SQLite reads it as a name too.
const QSet<QString>& sqliteKeywords()
{
    static const QSet<QString> set = wordSet({
        "ABORT", "ACTION", "ADD", "AFTER", "ALL", "ALTER", "ALWAYS", "ANALYZE", "AND", "AS",
        "ASC", "ATTACH", "AUTOINCREMENT", "BEFORE", "BEGIN", "BETWEEN", "BY", "CASCADE", "CASE",
        "CAST", "CHECK", "COLLATE", "COLUMN", "COMMIT", "CONFLICT", "CONSTRAINT", "CREATE",
        "CROSS", "CURRENT", "CURRENT_DATE", "CURRENT_TIME", "CURRENT_TIMESTAMP", "DATABASE",
        "DEFAULT", "DEFERRABLE", "DEFERRED", "DELETE", "DESC", "DETACH", "DISTINCT", "DO", "DROP",
        "EACH", "ELSE", "END", "ESCAPE", "EXCEPT", "EXCLUDE", "EXCLUSIVE", "EXISTS", "EXPLAIN",
        "FAIL", "FILTER", "FIRST", "FOLLOWING", "FOR", "FOREIGN", "FROM", "FULL", "GENERATED",
        "GLOB", "GROUP", "GROUPS", "HAVING", "IF", "IGNORE", "IMMEDIATE", "IN", "INDEX",
        "INDEXED", "INITIALLY", "INNER", "INSERT", "INSTEAD", "INTERSECT", "INTO", "IS", "ISNULL",
        "JOIN", "KEY", "LAST", "LEFT", "LIKE", "LIMIT", "MATCH", "MATERIALIZED", "NATURAL", "NO",
        "NOT", "NOTHING", "NOTNULL", "NULL", "NULLS", "OF", "OFFSET", "ON", "OR", "ORDER",
        "OTHERS", "OUTER", "OVER", "PARTITION", "PLAN", "PRAGMA", "PRECEDING", "PRIMARY", "QUERY",
        "RAISE", "RANGE", "RECURSIVE", "REFERENCES", "REGEXP", "REINDEX", "RELEASE", "RENAME",
        "REPLACE", "RESTRICT", "RETURNING", "RIGHT", "ROLLBACK", "ROW", "ROWS", "SAVEPOINT",
        "SELECT", "SET", "TABLE", "TEMP", "TEMPORARY", "THEN", "TIES", "TO", "TRANSACTION",
        "TRIGGER", "UNBOUNDED", "UNION", "UNIQUE", "UPDATE", "USING", "VACUUM", "VALUES", "VIEW",
        "VIRTUAL", "WHEN", "WHERE", "WINDOW", "WITH", "WITHOUT"});
    return set;
}

const QSet<QString>& functionNames()
{
    static const QSet<QString> set = wordSet({
        "ISNULL", "CONVERT", "DATEADD", "STR", "LTRIM", "RTRIM", "LEN", "GETDATE", "COUNT", "SUM",
        "MIN", "MAX", "AVG", "COALESCE", "NULLIF", "ABS", "UPPER", "LOWER"});
    return set;
}

QString sqliteName(const QString& name, bool quoted)
{
    if (quoted || sqliteKeywords().contains(name.toUpper()) || name.contains(u'@')
        || name.contains(u'#')) {
        // Backticks, not double quotes: SQLite turns an unknown "name" into a
        // string and would hide a misspelt column.
        QString escaped = name;
        escaped.replace(QLatin1Char('`'), QLatin1String("``"));
        return QLatin1Char('`') + escaped + QLatin1Char('`');
    }
    return name;
}

bool isWholeNumber(const QString& text)
{
    if (text.isEmpty())
        return false;
    for (QChar c : text) {
        if (c < u'0' || c > u'9')
            return false;
    }
    return true;
}

} // namespace

TsqlRewriter::TsqlRewriter(const std::vector<TsqlToken>& tokens, int begin, int end)
    : m_tok(tokens), m_begin(begin), m_end(end), m_match(size_t(end - begin), -1)
{
    std::vector<int> open;
    for (int i = begin; i < end; ++i) {
        if (m_tok[i].kind == K::LParen) {
            open.push_back(i);
        } else if (m_tok[i].kind == K::RParen) {
            if (open.empty())
                syntaxError(QStringLiteral("')' without '('"));
            m_match[size_t(open.back() - begin)] = i;
            m_match[size_t(i - begin)] = open.back();
            open.pop_back();
        }
    }
    if (!open.empty())
        syntaxError(QStringLiteral("'(' without ')'"));
}

TsqlTemplate TsqlRewriter::rewrite()
{
    OutList out;
    sequence(m_begin, m_end, out, true);

    TsqlTemplate result;
    bool glue = true;
    for (const Out& o : out) {
        const bool tight = o.text == QLatin1String(",") || o.text == QLatin1String(")");
        if (!glue && !tight)
            result.sql += QLatin1Char(' ');
        if (o.slot >= 0) {
            result.sql += QLatin1Char('?');
            result.bindings.push_back(o.slot);
        } else {
            result.sql += o.text;
        }
        glue = o.glueNext || o.text == QLatin1String("(");
    }
    return result;
}

bool TsqlRewriter::isWord(int i, int e, const char* upper) const
{
    return i < e && m_tok[i].kind == K::Word
           && m_tok[i].text.compare(QLatin1String(upper), Qt::CaseInsensitive) == 0;
}

bool TsqlRewriter::isIdentifier(int i, int e) const
{
    if (i >= e)
        return false;
    if (m_tok[i].kind == K::QuotedName)
        return true;
    if (m_tok[i].kind != K::Word)
        return false;
    const QString upper = m_tok[i].text.toUpper();
    return !handledKeywords().contains(upper) && !refusedKeywords().contains(upper);
}

void TsqlRewriter::sequence(int b, int e, OutList& out, bool top)
{
    Level lv;
    lv.top = top;
    int i = top ? head(b, e, out) : b;
    while (i < e) {
        if (lv.inSelectList && lv.itemStart)
            checkAliasAssignment(i, e);
        lv.itemStart = false;
        const TsqlToken& t = m_tok[i];
        switch (t.kind) {
        case K::String:
            out.push_back({QString(), t.slot});
            lv.last = Operand::Text;
            ++i;
            break;
        case K::Number:
            out.push_back({t.text});
            lv.last = Operand::Number;
            ++i;
            break;
        case K::LParen: {
            const int close = match(i);
            out.push_back({QStringLiteral("(")});
            sequence(i + 1, close, out, false);
            out.push_back({QStringLiteral(")")});
            lv.last = Operand::Other;
            i = close + 1;
            break;
        }
        case K::Comma:
            out.push_back({QStringLiteral(",")});
            lv.last = Operand::None;
            if (lv.inFrom) {
                i = tableRef(i + 1, e, out, lv);
            } else {
                lv.itemStart = lv.inSelectList;
                ++i;
            }
            break;
        case K::Operator: {
            static const QSet<QString> comparisons = wordSet({"=", "<>", "!=", "<", ">", "<=", ">="});
            static const QSet<QString> arithmeticOps = wordSet({"+", "-", "*", "/", "%"});
            if (arithmeticOps.contains(t.text))
                arithmetic(i, e, t.text, lv);
            else if (!comparisons.contains(t.text))
                unsupported(QStringLiteral("the operator '%1'").arg(t.text));
            // A sign sticks to its number ("-1"); never to another '-', which
            // would start a comment.
            const bool sign = lv.last == Operand::None
                              && (t.text == QLatin1String("-") || t.text == QLatin1String("+"))
                              && i + 1 < e && m_tok[i + 1].kind == K::Number;
            out.push_back({t.text, -1, sign});
            lv.last = Operand::None;
            ++i;
            break;
        }
        case K::Word:
        case K::QuotedName: {
            if (t.kind == K::Word) {
                const QString upper = t.text.toUpper();
                const bool call = i + 1 < e && m_tok[i + 1].kind == K::LParen;
                if (call && functionNames().contains(upper)) {
                    i = function(i, upper, out, lv);
                    break;
                }
                if (handledKeywords().contains(upper)) {
                    i = keyword(i, e, upper, out, lv);
                    break;
                }
                if (refusedKeywords().contains(upper))
                    unsupported(QStringLiteral("the keyword %1").arg(upper));
            }
            QString plain;
            i = nameChain(i, e, out, &plain);
            if (i < e && m_tok[i].kind == K::LParen)
                unsupported(QStringLiteral("the function %1").arg(plain));
            lv.last = Operand::Other;
            break;
        }
        case K::Dot:
            syntaxError(QStringLiteral("'.' without a name before it"));
        case K::RParen:
        case K::Semicolon:
            syntaxError(QStringLiteral("'%1' out of place").arg(t.text));
        }
    }
    if (!lv.limit.isEmpty()) {
        // TOP of one member of a UNION limits that member only; LIMIT would
        // limit the whole result.
        if (lv.compound)
            unsupported(QStringLiteral("TOP in a SELECT combined by UNION, EXCEPT or INTERSECT"));
        out.push_back({QStringLiteral("LIMIT")});
        out.push_back({lv.limit});
    }
}

int TsqlRewriter::head(int i, int e, OutList& out)
{
    if (i >= e)
        syntaxError(QStringLiteral("empty statement"));
    const TsqlToken& t = m_tok[i];
    if (t.kind != K::Word)
        unsupported(QStringLiteral("a statement starting with '%1'")
                        .arg(t.kind == K::String ? QStringLiteral("'...'") : t.text));
    const QString upper = t.text.toUpper();

    // The written table of DELETE, INSERT and UPDATE: a plain name, no hints.
    auto target = [&](int j, const QString& verb) {
        if (!isIdentifier(j, e))
            syntaxError(QStringLiteral("%1 without a table").arg(verb));
        QString plain;
        j = nameChain(j, e, out, &plain);
        if (isWord(j, e, "WITH") || (verb != QLatin1String("INSERT") && j < e && m_tok[j].kind == K::LParen))
            unsupported(QStringLiteral("a table hint on the table of %1").arg(verb));
        return j;
    };

    if (upper == QLatin1String("SELECT")) {
        m_kind = StatementKind::Select;
        return i;
    }
    if (upper == QLatin1String("DELETE")) {
        m_kind = StatementKind::Delete;
        out.push_back({QStringLiteral("DELETE")});
        ++i;
        if (isWord(i, e, "TOP"))
            unsupported(QStringLiteral("DELETE TOP"));
        // The server takes "Delete T where ..." without FROM; SQLite needs it.
        out.push_back({QStringLiteral("FROM")});
        if (isWord(i, e, "FROM"))
            ++i;
        return target(i, upper);
    }
    if (upper == QLatin1String("INSERT")) {
        m_kind = StatementKind::Insert;
        out.push_back({QStringLiteral("INSERT")});
        ++i;
        if (isWord(i, e, "TOP"))
            unsupported(QStringLiteral("INSERT TOP"));
        out.push_back({QStringLiteral("INTO")});
        if (isWord(i, e, "INTO"))
            ++i;
        return target(i, upper);
    }
    if (upper == QLatin1String("UPDATE")) {
        m_kind = StatementKind::Update;
        out.push_back({QStringLiteral("UPDATE")});
        ++i;
        if (isWord(i, e, "TOP"))
            unsupported(QStringLiteral("UPDATE TOP"));
        return target(i, upper);
    }
    if (upper == QLatin1String("WITH"))
        unsupported(QStringLiteral("WITH (a common table expression)"));
    unsupported(QStringLiteral("the statement %1").arg(upper));
}

int TsqlRewriter::keyword(int i, int e, const QString& upper, OutList& out, Level& lv)
{
    auto is = [&upper](const char* w) { return upper == QLatin1String(w); };

    if (is("SELECT"))
        return selectClause(i, e, out, lv);
    if (is("FROM")) {
        if (lv.top && m_kind == StatementKind::Update)
            unsupported(QStringLiteral("UPDATE ... FROM"));
        if (lv.top && m_kind == StatementKind::Delete)
            unsupported(QStringLiteral("DELETE ... FROM (a delete over a join)"));
        out.push_back({m_tok[i].text});
        lv.inSelectList = false;
        lv.inFrom = true;
        return tableRef(i + 1, e, out, lv);
    }
    if (is("JOIN")) {
        out.push_back({m_tok[i].text});
        return tableRef(i + 1, e, out, lv);
    }
    if (is("INTO"))
        unsupported(QStringLiteral("SELECT ... INTO"));
    if (is("VALUES") && !(lv.top && m_kind == StatementKind::Insert))
        unsupported(QStringLiteral("VALUES outside INSERT"));
    if (is("SET") && !(lv.top && m_kind == StatementKind::Update))
        unsupported(QStringLiteral("SET outside UPDATE"));
    if (is("DELETE") || is("INSERT") || is("UPDATE"))
        unsupported(QStringLiteral("%1 inside another statement").arg(upper));
    if (is("WITH"))
        unsupported(QStringLiteral("WITH (a common table expression, or a hint not after a table)"));
    if (is("TOP"))
        unsupported(QStringLiteral("TOP anywhere but after SELECT"));
    if ((is("LEFT") || is("RIGHT")) && i + 1 < e && m_tok[i + 1].kind == K::LParen)
        unsupported(QStringLiteral("the function %1").arg(upper));

    if (is("WHERE") || is("GROUP") || is("HAVING") || is("ORDER")) {
        lv.inFrom = false;
        lv.inSelectList = false;
    } else if (is("UNION") || is("EXCEPT") || is("INTERSECT")) {
        // The server binds INTERSECT before UNION and EXCEPT; SQLite reads
        // them all left to right.
        if (is("INTERSECT"))
            lv.intersect = true;
        else
            lv.unionOrExcept = true;
        if (lv.intersect && lv.unionOrExcept)
            unsupported(QStringLiteral("INTERSECT combined with UNION or EXCEPT"));
        lv.compound = true;
        lv.inFrom = false;
        lv.inSelectList = false;
    } else if (is("LIKE")) {
        // The pattern is checked per call: only a literal can be checked.
        if (i + 1 >= e || m_tok[i + 1].kind != K::String)
            unsupported(QStringLiteral("LIKE with a pattern that is not a string literal"));
        m_likeSlots.push_back(m_tok[i + 1].slot);
    } else if (is("AS")) {
        if (i + 1 < e && m_tok[i + 1].kind == K::String)
            unsupported(QStringLiteral("a string literal as a column alias"));
    }
    out.push_back({m_tok[i].text});
    lv.last = (is("END") || is("NULL")) ? Operand::Other : Operand::None;
    return i + 1;
}

int TsqlRewriter::selectClause(int i, int e, OutList& out, Level& lv)
{
    out.push_back({m_tok[i].text});
    ++i;
    if (isWord(i, e, "DISTINCT") || isWord(i, e, "ALL")) {
        out.push_back({m_tok[i].text});
        ++i;
    }
    if (isWord(i, e, "TOP")) {
        if (!lv.limit.isEmpty())
            unsupported(QStringLiteral("TOP in a SELECT combined by UNION, EXCEPT or INTERSECT"));
        ++i;
        if (i < e && m_tok[i].kind == K::LParen)
            unsupported(QStringLiteral("TOP (expression)"));
        if (i >= e || m_tok[i].kind != K::Number || !isWholeNumber(m_tok[i].text))
            unsupported(QStringLiteral("TOP without a whole number"));
        lv.limit = m_tok[i].text;
        ++i;
        if (isWord(i, e, "PERCENT"))
            unsupported(QStringLiteral("TOP n PERCENT"));
        if (isWord(i, e, "WITH") && isWord(i + 1, e, "TIES"))
            unsupported(QStringLiteral("TOP n WITH TIES"));
    }
    lv.inFrom = false;
    lv.inSelectList = true;
    lv.itemStart = true;
    lv.last = Operand::None;
    return i;
}

int TsqlRewriter::tableRef(int i, int e, OutList& out, Level& lv)
{
    lv.last = Operand::Other;
    if (i >= e)
        syntaxError(QStringLiteral("a table is missing"));
    bool derived = false;
    QString plain;
    if (m_tok[i].kind == K::LParen) {
        derived = true;
        const int close = match(i);
        out.push_back({QStringLiteral("(")});
        sequence(i + 1, close, out, false);
        out.push_back({QStringLiteral(")")});
        i = close + 1;
    } else if (isIdentifier(i, e)) {
        i = nameChain(i, e, out, &plain);
        if (i < e && m_tok[i].kind == K::LParen)
            i = tableHints(i, plain);
    } else {
        unsupported(QStringLiteral("'%1' where a table is expected")
                        .arg(m_tok[i].kind == K::String ? QStringLiteral("'...'") : m_tok[i].text));
    }

    if (isWord(i, e, "AS")) {
        out.push_back({m_tok[i].text});
        ++i;
        if (!isIdentifier(i, e))
            syntaxError(QStringLiteral("AS without an alias"));
    }
    if (isIdentifier(i, e)) {
        out.push_back({sqliteName(m_tok[i].text, m_tok[i].kind == K::QuotedName)});
        ++i;
    }
    if (i < e && m_tok[i].kind == K::LParen) {
        if (derived)
            unsupported(QStringLiteral("column names after the alias of a derived table"));
        i = tableHints(i, plain);
    }
    if (isWord(i, e, "WITH") && i + 1 < e && m_tok[i + 1].kind == K::LParen) {
        if (derived)
            unsupported(QStringLiteral("a table hint on a derived table"));
        i = tableHints(i + 1, plain);
    }
    return i;
}

int TsqlRewriter::tableHints(int lparen, const QString& table)
{
    const int close = match(lparen);
    if (close == lparen + 1)
        syntaxError(QStringLiteral("empty table hint after %1").arg(table));
    // NOLOCK only changes locking; SQLite reads a consistent snapshot anyway,
    // so dropping it keeps the result. Every other hint is refused.
    for (int k = lparen + 1; k < close; ++k) {
        const TsqlToken& t = m_tok[k];
        if (t.kind == K::Comma)
            continue;
        if (t.kind == K::Word) {
            if (t.text.compare(QLatin1String("NOLOCK"), Qt::CaseInsensitive) != 0)
                unsupported(QStringLiteral("the table hint %1").arg(t.text.toUpper()));
            continue;
        }
        unsupported(QStringLiteral("the table-valued function or hint %1(...)").arg(table));
    }
    return close + 1;
}

int TsqlRewriter::nameChain(int i, int e, OutList& out, QString* plain)
{
    QString text;
    plain->clear();
    while (true) {
        const TsqlToken& t = m_tok[i];
        text += sqliteName(t.text, t.kind == K::QuotedName);
        *plain += t.text;
        ++i;
        if (i < e && m_tok[i].kind == K::Dot) {
            if (i + 1 < e && m_tok[i + 1].kind == K::Operator && m_tok[i + 1].text == QLatin1String("*")) {
                text += QLatin1String(".*");
                *plain += QLatin1String(".*");
                i += 2;
                break;
            }
            if (!isIdentifier(i + 1, e))
                syntaxError(QStringLiteral("a name ends with '.' after %1").arg(*plain));
            text += QLatin1Char('.');
            *plain += QLatin1Char('.');
            ++i;
            continue;
        }
        break;
    }
    out.push_back({text});
    return i;
}

void TsqlRewriter::checkAliasAssignment(int i, int e) const
{
    // "Select name = expr" names a column on the server; SQLite would read a
    // comparison and answer 0 or 1.
    const bool aliasLike = m_tok[i].kind == K::String || isIdentifier(i, e);
    if (aliasLike && i + 1 < e && m_tok[i + 1].kind == K::Operator && m_tok[i + 1].text == QLatin1String("="))
        unsupported(QStringLiteral("a column alias written as alias = expression"));
}

TsqlRewriter::Operand TsqlRewriter::operandAt(int i, int e) const
{
    if (i >= e)
        return Operand::None;
    const TsqlToken& t = m_tok[i];
    if (t.kind == K::String)
        return Operand::Text;
    if (t.kind == K::Number)
        return Operand::Number;
    if (t.kind == K::Operator && (t.text == QLatin1String("-") || t.text == QLatin1String("+")))
        return operandAt(i + 1, e) == Operand::Number ? Operand::Number : Operand::Other;
    if (t.kind == K::Word && i + 1 < e && m_tok[i + 1].kind == K::LParen) {
        const QString upper = t.text.toUpper();
        if (upper == QLatin1String("GETDATE") || upper == QLatin1String("DATEADD"))
            return Operand::Date;
        if (upper == QLatin1String("STR"))
            return Operand::Text;
        if (upper == QLatin1String("LEN") || upper == QLatin1String("COUNT"))
            return Operand::Number;
    }
    return Operand::Other;
}

void TsqlRewriter::arithmetic(int i, int e, const QString& op, Level& lv) const
{
    if (lv.last == Operand::None)
        return; // a sign, or the * of SELECT * / COUNT(*)
    const Operand right = operandAt(i + 1, e);
    if (lv.last == Operand::Text || right == Operand::Text)
        unsupported(QStringLiteral("'%1' with a text operand").arg(op));
    if (lv.last == Operand::Date || right == Operand::Date)
        unsupported(QStringLiteral("date arithmetic with '%1'").arg(op));
    // '+' joins text on the server and adds numbers; only a number on one
    // side settles that it adds.
    if (op == QLatin1String("+") && lv.last != Operand::Number && right != Operand::Number)
        unsupported(QStringLiteral("'+' between operands of unknown type"));
}

std::vector<std::pair<int, int>> TsqlRewriter::arguments(int lparen) const
{
    std::vector<std::pair<int, int>> args;
    const int close = match(lparen);
    if (close == lparen + 1)
        return args;
    int start = lparen + 1;
    for (int k = lparen + 1; k < close; ++k) {
        if (m_tok[k].kind == K::LParen) {
            k = match(k);
        } else if (m_tok[k].kind == K::Comma) {
            args.emplace_back(start, k);
            start = k + 1;
        }
    }
    args.emplace_back(start, close);
    for (const auto& a : args) {
        if (a.first >= a.second)
            syntaxError(QStringLiteral("an empty argument"));
    }
    return args;
}

TsqlRewriter::OutList TsqlRewriter::expression(int b, int e)
{
    OutList out;
    sequence(b, e, out, false);
    return out;
}

void TsqlRewriter::put(OutList& out, std::initializer_list<const char*> pieces)
{
    // "name(" is a function name glued to its parenthesis.
    for (const char* piece : pieces) {
        const QString text = QString::fromUtf8(piece);
        if (text.size() > 1 && text.endsWith(QLatin1Char('('))) {
            out.push_back({text.chopped(1), -1, true});
            out.push_back({QStringLiteral("(")});
        } else {
            out.push_back({text});
        }
    }
}

void TsqlRewriter::putArgument(OutList& out, const std::pair<int, int>& arg)
{
    const OutList part = expression(arg.first, arg.second);
    out.insert(out.end(), part.begin(), part.end());
}

int TsqlRewriter::function(int i, const QString& name, OutList& out, Level& lv)
{
    const int lparen = i + 1;
    const auto args = arguments(lparen);
    const int count = int(args.size());
    auto need = [&](int lo, int hi) {
        if (count < lo || count > hi)
            unsupported(QStringLiteral("%1 with %2 arguments").arg(name).arg(count));
    };
    auto is = [&name](const char* w) { return name == QLatin1String(w); };

    lv.last = Operand::Other;
    if (is("ISNULL")) {
        need(2, 2);
        put(out, {"IFNULL("});
        putArgument(out, args[0]);
        put(out, {","});
        putArgument(out, args[1]);
        put(out, {")"});
    } else if (is("LTRIM") || is("RTRIM")) {
        need(1, 1);
        put(out, {is("LTRIM") ? "ltrim(" : "rtrim("});
        putArgument(out, args[0]);
        put(out, {")"});
        lv.last = Operand::Text;
    } else if (is("LEN")) {
        // LEN does not count trailing blanks.
        need(1, 1);
        put(out, {"length(", "rtrim("});
        putArgument(out, args[0]);
        put(out, {")", ")"});
        lv.last = Operand::Number;
    } else if (is("GETDATE")) {
        need(0, 0);
        put(out, {"datetime(", "'now'", ",", "'localtime'", ")"});
        lv.last = Operand::Date;
    } else if (is("DATEADD")) {
        need(3, 3);
        const TsqlToken& unit = m_tok[args[0].first];
        const QString upper = unit.text.toUpper();
        if (args[0].second - args[0].first != 1 || unit.kind != K::Word
            || (upper != QLatin1String("DAY") && upper != QLatin1String("DD") && upper != QLatin1String("D")))
            unsupported(QStringLiteral("DateAdd with the unit %1").arg(unit.kind == K::Word ? unit.text : QStringLiteral("(expression)")));
        // The server drops the fraction of the number of days.
        put(out, {"datetime("});
        putArgument(out, args[2]);
        put(out, {",", "CAST(", "("});
        putArgument(out, args[1]);
        put(out, {")", "AS", "INTEGER", ")", "||", "' days'", ")"});
        lv.last = Operand::Date;
    } else if (is("CONVERT")) {
        need(2, 3);
        convertCall(args, out, lv);
    } else if (is("STR")) {
        need(1, 3);
        strCall(args, out, lv);
    } else {
        // COUNT, SUM, MIN, MAX, AVG, COALESCE, NULLIF, ABS, UPPER, LOWER mean
        // the same in SQLite. MIN and MAX with two arguments are scalar
        // functions in SQLite and errors on the server, so they are refused.
        if (is("COALESCE"))
            need(2, 1000);
        else if (is("NULLIF"))
            need(2, 2);
        else
            need(1, 1);
        out.push_back({name, -1, true});
        put(out, {"("});
        for (int a = 0; a < count; ++a) {
            if (a > 0)
                put(out, {","});
            putArgument(out, args[a]);
        }
        put(out, {")"});
        if (is("COUNT"))
            lv.last = Operand::Number;
    }
    return match(lparen) + 1;
}

void TsqlRewriter::convertCall(const std::vector<std::pair<int, int>>& args, OutList& out, Level& lv)
{
    const int tb = args[0].first;
    const int te = args[0].second;
    const QString type = m_tok[tb].kind == K::Word ? m_tok[tb].text.toUpper() : QString();
    const bool text = type == QLatin1String("VARCHAR") || type == QLatin1String("NVARCHAR");
    const bool whole = type == QLatin1String("INT") || type == QLatin1String("BIGINT")
                       || type == QLatin1String("SMALLINT") || type == QLatin1String("TINYINT");
    int length = 30; // the server's length of a bare varchar in Convert
    if (text && te - tb == 4 && m_tok[tb + 1].kind == K::LParen && m_tok[tb + 3].kind == K::RParen) {
        const TsqlToken& n = m_tok[tb + 2];
        if (n.kind == K::Number && isWholeNumber(n.text) && n.text.toInt() > 0)
            length = n.text.toInt();
        else if (n.kind == K::Word && n.text.compare(QLatin1String("MAX"), Qt::CaseInsensitive) == 0)
            length = 0;
        else
            unsupported(QStringLiteral("Convert to %1 of length %2").arg(type, n.text));
    } else if (te - tb != 1) {
        unsupported(QStringLiteral("Convert to this type"));
    }
    QString style;
    if (args.size() == 3) {
        const TsqlToken& s = m_tok[args[2].first];
        if (args[2].second - args[2].first != 1 || s.kind != K::Number || !isWholeNumber(s.text))
            unsupported(QStringLiteral("Convert with a style that is not a number"));
        style = s.text;
    }

    if (text && style == QLatin1String("111")) {
        const bool cut = length > 0 && length < 10;
        if (cut)
            put(out, {"substr("});
        put(out, {"strftime(", "'%Y/%m/%d'", ","});
        putArgument(out, args[1]);
        put(out, {")"});
        if (cut) {
            put(out, {",", "1", ","});
            out.push_back({QString::number(length)});
            put(out, {")"});
        }
        lv.last = Operand::Text;
    } else if (whole && style.isEmpty()) {
        put(out, {"CAST(", "("});
        putArgument(out, args[1]);
        put(out, {")", "AS", "INTEGER", ")"});
        lv.last = Operand::Number;
    } else {
        // Dates without a style come out as "Jan  5 2024 12:00AM" on the
        // server; nothing here would give the same text.
        unsupported(QStringLiteral("Convert(%1, ..., %2)")
                        .arg(type.isEmpty() ? QStringLiteral("?") : m_tok[tb].text,
                             style.isEmpty() ? QStringLiteral("no style") : style));
    }
}

void TsqlRewriter::strCall(const std::vector<std::pair<int, int>>& args, OutList& out, Level& lv)
{
    auto number = [&](int a) {
        const TsqlToken& t = m_tok[args[a].first];
        return args[a].second - args[a].first == 1 && t.kind == K::Number && isWholeNumber(t.text)
                   ? t.text.toInt()
                   : -1;
    };
    int width = 10;
    if (args.size() >= 2) {
        width = number(1);
        if (width < 1 || width > 18)
            unsupported(QStringLiteral("Str with a length that is not a number from 1 to 18"));
    }
    if (args.size() == 3 && number(2) != 0)
        unsupported(QStringLiteral("Str with decimals"));

    // Right-aligned in `width` characters, rounded half away from zero, all
    // stars when the number does not fit; NULL stays NULL.
    OutList rounded;
    put(rounded, {"round("});
    putArgument(rounded, args[0]);
    put(rounded, {")"});
    auto appendRounded = [&] { out.insert(out.end(), rounded.begin(), rounded.end()); };
    qint64 limit = 1;
    for (int k = 0; k < width; ++k)
        limit *= 10;

    put(out, {"(", "CASE", "WHEN"});
    appendRounded();
    put(out, {"IS", "NULL", "THEN", "NULL", "WHEN"});
    appendRounded();
    put(out, {">="});
    out.push_back({QString::number(limit)});
    put(out, {"OR"});
    appendRounded();
    put(out, {"<="});
    out.push_back({QString::number(-limit / 10)});
    put(out, {"THEN"});
    out.push_back({QLatin1Char('\'') + QString(width, QLatin1Char('*')) + QLatin1Char('\'')});
    put(out, {"ELSE", "printf("});
    out.push_back({QLatin1String("'%") + QString::number(width) + QLatin1String("d'")});
    put(out, {",", "CAST("});
    appendRounded();
    put(out, {"AS", "INTEGER", ")", ")", "END", ")"});
    lv.last = Operand::Text;
}
