#pragma once
// The rules of the T-SQL bridge for one statement: table hints, TOP, the
// T-SQL functions, DELETE/INSERT without FROM/INTO, and the refusals. The
// rewriter sees string literals only as slots, never as values, so its result
// is the same for every statement of the same shape.
#include "sql/tsql_tokenizer.h"

#include <QString>
#include <initializer_list>
#include <utility>
#include <vector>

// One rewritten statement: SQLite text with '?' for each parameter, and for
// each '?' the slot of the batch's literal bound to it (a literal may be used
// more than once when a rule repeats its expression).
struct TsqlTemplate {
    QString sql;
    std::vector<int> bindings;
};

class TsqlRewriter {
public:
    // The statement is tokens[begin, end): one statement of a split batch.
    TsqlRewriter(const std::vector<TsqlToken>& tokens, int begin, int end);

    // Raises HostError (Unsupported) naming the first construct it does not
    // know, or (Database) for a statement the server would refuse to parse.
    TsqlTemplate rewrite();

    // Slots of the literals used as LIKE patterns: the caller refuses a
    // pattern with '[', a character class SQLite's LIKE does not know.
    const std::vector<int>& likePatternSlots() const { return m_likeSlots; }

private:
    enum class StatementKind { Select, Delete, Insert, Update };
    enum class Operand { None, Number, Text, Date, Other };

    struct Out {
        QString text;
        int slot = -1;        // >= 0: a '?' bound to this literal
        bool glueNext = false; // no blank before the next token (a function name, a sign)
    };
    using OutList = std::vector<Out>;

    // State of one parenthesis level (the statement itself or a group).
    struct Level {
        bool top = false;
        bool compound = false;   // UNION / EXCEPT / INTERSECT seen here
        bool intersect = false;  // INTERSECT seen here
        bool unionOrExcept = false;
        QString limit;           // from SELECT TOP n
        bool inFrom = false;     // a ',' introduces another table
        bool inSelectList = false;
        bool itemStart = false;  // at the first token of a select-list item
        Operand last = Operand::None;
    };

    void sequence(int b, int e, OutList& out, bool top);
    int head(int i, int e, OutList& out);
    int keyword(int i, int e, const QString& upper, OutList& out, Level& lv);
    int selectClause(int i, int e, OutList& out, Level& lv);
    int tableRef(int i, int e, OutList& out, Level& lv);
    int tableHints(int lparen, const QString& table);
    int nameChain(int i, int e, OutList& out, QString* plain);
    int function(int i, const QString& name, OutList& out, Level& lv);
    void convertCall(const std::vector<std::pair<int, int>>& args, OutList& out, Level& lv);
    void strCall(const std::vector<std::pair<int, int>>& args, OutList& out, Level& lv);
    static void put(OutList& out, std::initializer_list<const char*> pieces);
    void putArgument(OutList& out, const std::pair<int, int>& arg);
    void arithmetic(int i, int e, const QString& op, Level& lv) const;
    Operand operandAt(int i, int e) const;
    void checkAliasAssignment(int i, int e) const;

    OutList expression(int b, int e);
    std::vector<std::pair<int, int>> arguments(int lparen) const;
    bool isWord(int i, int e, const char* upper) const;
    bool isIdentifier(int i, int e) const;
    int match(int paren) const { return m_match[size_t(paren - m_begin)]; }

    const std::vector<TsqlToken>& m_tok;
    int m_begin;
    int m_end;
    std::vector<int> m_match; // the matching parenthesis, by token from m_begin
    StatementKind m_kind = StatementKind::Select;
    std::vector<int> m_likeSlots;
};
