#pragma once
// Reading the quotes of a statement: the string literals of T-SQL text, and
// whether every quote of a statement the bridge rewrote is one of its own.
#include <QRegularExpression>
#include <QString>
#include <QStringList>

// The string literals of a T-SQL text outside comments, '' unescaped; false
// when a literal is left open.
inline bool literalsOf(const QString& sql, QStringList& out)
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
inline bool quotesAreTheBridgesOwn(const QString& sql, qsizetype& placeholders)
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
