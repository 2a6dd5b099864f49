#include "sql/tsql_tokenizer.h"

#include "host/host_error.h"

namespace {

[[noreturn]] void syntaxError(const QString& what, int pos)
{
    throw HostError(HostErrors::Database,
                    QStringLiteral("Incorrect syntax: %1 at offset %2").arg(what).arg(pos));
}

[[noreturn]] void unsupported(const QString& what)
{
    throw HostError(HostErrors::Unsupported,
                    QStringLiteral("The SQLite bridge does not support %1").arg(what));
}

bool isAsciiLetter(QChar c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

// ASCII first: the statements are mostly ASCII and this runs per character.
bool isWordStart(QChar c)
{
    if (c.unicode() < 128)
        return isAsciiLetter(c) || c == u'_';
    return c.isLetter();
}

// T-SQL lets @, # and $ continue a name (a#b is one identifier).
bool isWordPart(QChar c)
{
    if (c.unicode() < 128)
        return isAsciiLetter(c) || isDigit(c) || c == u'_' || c == u'@' || c == u'#' || c == u'$';
    return c.isLetterOrNumber();
}

bool isBlank(QChar c)
{
    if (c.unicode() < 128)
        return c == u' ' || (c >= u'\t' && c <= u'\r');
    return c.isSpace();
}

bool isControl(QChar c)
{
    if (c.unicode() < 128)
        return c.unicode() < 32 || c.unicode() == 127;
    return c.category() == QChar::Other_Control;
}

// Reads a quoted run that ends at `close`, where a doubled `close` stands for
// one. Returns the unescaped text and moves i past the closing character.
QString readQuoted(const QString& s, int& i, QChar close, const char* what)
{
    const int start = i;
    ++i; // opening delimiter
    // Never a null QString: '' is an empty text, and a null one would be
    // bound as SQL NULL.
    QString value(QLatin1String(""));
    const int n = int(s.size());
    while (true) {
        const int end = int(s.indexOf(close, i));
        if (end < 0)
            syntaxError(QStringLiteral("unterminated %1").arg(QLatin1String(what)), start);
        value += QStringView(s).mid(i, end - i);
        if (end + 1 < n && s[end + 1] == close) {
            value += close;
            i = end + 2;
            continue;
        }
        i = end + 1;
        return value;
    }
}

const char* const kTwoCharOperators[] = {
    "<>", "!=", "<=", ">=", "!<", "!>", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^=", "||", "::"};

} // namespace

std::vector<TsqlToken> TsqlTokenizer::tokenize(const QString& s, QStringList* literals)
{
    std::vector<TsqlToken> tokens;
    tokens.reserve(size_t(s.size() / 4) + 4);
    const int n = int(s.size());
    int i = 0;
    auto push = [&](TsqlTokenKind kind, QString text, int pos, int slot = -1) {
        TsqlToken t;
        t.kind = kind;
        t.text = std::move(text);
        t.pos = pos;
        t.slot = slot;
        tokens.push_back(std::move(t));
    };

    while (i < n) {
        const QChar c = s[i];
        const QChar next = i + 1 < n ? s[i + 1] : QChar();

        if (isBlank(c)) {
            ++i;
            continue;
        }
        if (isControl(c))
            unsupported(QStringLiteral("the control character U+%1")
                            .arg(c.unicode(), 4, 16, QLatin1Char('0')));

        if (c == u'-' && next == u'-') {
            while (i < n && s[i] != u'\n')
                ++i;
            continue;
        }
        if (c == u'/' && next == u'*') {
            // Block comments nest on the server, so they nest here too.
            const int start = i;
            int depth = 0;
            while (true) {
                if (i + 1 >= n)
                    syntaxError(QStringLiteral("unterminated comment"), start);
                if (s[i] == u'/' && s[i + 1] == u'*') {
                    ++depth;
                    i += 2;
                } else if (s[i] == u'*' && s[i + 1] == u'/') {
                    i += 2;
                    if (--depth == 0)
                        break;
                } else {
                    ++i;
                }
            }
            continue;
        }

        if (c == u'\'' || ((c == u'N' || c == u'n') && next == u'\'')) {
            const int start = i;
            if (c != u'\'')
                ++i;
            const QString value = readQuoted(s, i, u'\'', "string literal");
            literals->append(value);
            push(TsqlTokenKind::String, QString(), start, int(literals->size()) - 1);
            continue;
        }
        if (c == u'[') {
            const int start = i;
            push(TsqlTokenKind::QuotedName, readQuoted(s, i, u']', "bracketed name"), start);
            continue;
        }
        if (c == u'"') {
            const int start = i;
            push(TsqlTokenKind::QuotedName, readQuoted(s, i, u'"', "quoted name"), start);
            continue;
        }

        if (isDigit(c) || (c == u'.' && isDigit(next))) {
            const int start = i;
            while (i < n && isDigit(s[i]))
                ++i;
            if (i < n && s[i] == u'.') {
                ++i;
                while (i < n && isDigit(s[i]))
                    ++i;
            }
            // An exponent only when digits follow; otherwise the letters start
            // the next token, as in "=1AND" or "1END".
            if (i < n && (s[i] == u'e' || s[i] == u'E')) {
                int j = i + 1;
                if (j < n && (s[j] == u'+' || s[j] == u'-'))
                    ++j;
                if (j < n && isDigit(s[j])) {
                    i = j;
                    while (i < n && isDigit(s[i]))
                        ++i;
                }
            }
            const QString text = s.mid(start, i - start);
            if (text == QLatin1String("0") && i < n && (s[i] == u'x' || s[i] == u'X'))
                unsupported(QStringLiteral("the binary literal 0x..."));
            push(TsqlTokenKind::Number, text, start);
            continue;
        }

        if (c == u'@' || c == u'#') {
            const int start = i;
            ++i;
            while (i < n && isWordPart(s[i]))
                ++i;
            const QString name = s.mid(start, i - start);
            unsupported(c == u'@' ? QStringLiteral("the variable %1").arg(name)
                                  : QStringLiteral("the temporary table %1").arg(name));
        }

        if (isWordStart(c)) {
            const int start = i;
            while (i < n && isWordPart(s[i]))
                ++i;
            push(TsqlTokenKind::Word, s.mid(start, i - start), start);
            continue;
        }

        switch (c.unicode()) {
        case u'(':
            push(TsqlTokenKind::LParen, QStringLiteral("("), i);
            ++i;
            continue;
        case u')':
            push(TsqlTokenKind::RParen, QStringLiteral(")"), i);
            ++i;
            continue;
        case u',':
            push(TsqlTokenKind::Comma, QStringLiteral(","), i);
            ++i;
            continue;
        case u'.':
            push(TsqlTokenKind::Dot, QStringLiteral("."), i);
            ++i;
            continue;
        case u';':
            push(TsqlTokenKind::Semicolon, QStringLiteral(";"), i);
            ++i;
            continue;
        default:
            break;
        }

        bool matched = false;
        for (const char* op : kTwoCharOperators) {
            if (c == QLatin1Char(op[0]) && next == QLatin1Char(op[1])) {
                push(TsqlTokenKind::Operator, QLatin1String(op), i);
                i += 2;
                matched = true;
                break;
            }
        }
        if (matched)
            continue;
        if (QStringLiteral("=<>+-*/%&|^~").contains(c)) {
            push(TsqlTokenKind::Operator, QString(c), i);
            ++i;
            continue;
        }
        unsupported(QStringLiteral("the character '%1'").arg(c));
    }
    return tokens;
}
