#pragma once
// The grammar of the host property string: key "=" value ";", a value in
// braces may hold ";" and "=". Returns the pairs in order, duplicates included;
// the caller decides what a duplicate means.
#include <QList>
#include <QPair>
#include <QString>

QList<QPair<QString, QString>> SplitPropsText(const QString& text);

// The text with every password value replaced by "***" (Password=, Pwd=,
// in a connect string or a property string, braces honoured).
QString MaskPasswords(const QString& text);
