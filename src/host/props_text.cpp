#include "host/props_text.h"
#include "host/platform.h"
#include <QRegularExpression>

QList<QPair<QString, QString>> SplitPropsText(const QString& text)
{
    QList<QPair<QString, QString>> pairs;
    QString rest = text;
    for (;;) {
        QString key;
        const int eq = rest.indexOf(QLatin1Char('='));
        if (eq < 0) {
            key = rest;
            rest.clear();
        } else {
            key = rest.left(eq);
            rest = rest.mid(eq + 1);
        }
        // Blanks only: a tab or a line break belongs to the text ("\tUserID" is not UserID).
        key = TrimBlanks(key);

        QString value;
        rest = TrimBlanks(rest);
        if (rest.startsWith(QLatin1Char('{'))) {
            rest = rest.mid(1);
            const int close = rest.indexOf(QLatin1Char('}'));
            if (close < 0) {
                value = rest;
                rest.clear();
            } else {
                value = rest.left(close);
                rest = rest.mid(close + 1);
                const int semi = rest.indexOf(QLatin1Char(';'));
                rest = semi < 0 ? QString() : rest.mid(semi + 1);
            }
        } else {
            const int semi = rest.indexOf(QLatin1Char(';'));
            if (semi < 0) {
                value = rest;
                rest.clear();
            } else {
                value = rest.left(semi);
                rest = rest.mid(semi + 1);
            }
        }
        value = TrimBlanks(value);

        if (key.isEmpty())
            break;
        pairs.append({key, value});
    }
    return pairs;
}

QString MaskPasswords(const QString& text)
{
    // key, '=', then a braced value ("}}" inside it) or a plain value up to ';' or '}'
    static const QRegularExpression password(
        QStringLiteral("(\\b(?:password|pwd)\\s*=\\s*)(\\{(?:[^}]|\\}\\})*\\}|[^;}]*)"),
        QRegularExpression::CaseInsensitiveOption);
    QString masked = text;
    masked.replace(password, QStringLiteral("\\1***"));
    return masked;
}
