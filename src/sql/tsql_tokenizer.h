#pragma once
// The lexical side of the T-SQL bridge: splits a batch into the tokens the
// server would see. String literals leave the token stream as values, so no
// rule downstream can ever look into them or rewrite them.
#include <QString>
#include <QStringList>
#include <vector>

enum class TsqlTokenKind {
    Word,       // keyword or plain identifier, as written
    QuotedName, // [name] or "name"; text is the name without delimiters
    String,     // 'text' or N'text'; the value sits in the literal list
    Number,     // digits, optional fraction and exponent, as written
    Operator,   // = <> != < > <= >= + - * / % and the ones the bridge refuses
    LParen,
    RParen,
    Comma,
    Dot,
    Semicolon
};

struct TsqlToken {
    TsqlTokenKind kind = TsqlTokenKind::Word;
    QString text;
    int slot = -1; // String: index of its value in the literal list
    int pos = 0;   // offset in the batch
};

class TsqlTokenizer {
public:
    // Tokens of the batch; the values of its string literals are appended to
    // literals in order ('' unescaped, the N prefix dropped). Comments are
    // dropped. A literal, quoted name or comment left open raises HostError
    // (Database, as the server's syntax check would); a variable, a temporary
    // table, a binary literal or a character T-SQL gives no meaning here
    // raises HostError (Unsupported) naming it.
    static std::vector<TsqlToken> tokenize(const QString& batch, QStringList* literals);
};
