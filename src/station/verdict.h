#pragma once
// The verdict of an order as the log shows it: the code, then what went wrong.
#include <QString>

struct VerdictText {
    QString text;
    bool success;
};

// code + "异常", then ", 超出"+excess+"件", ", 缺少"+missing+"件", ", 误拣"+wrong+"件";
// "超出0件" and "缺少0件" are cut out, then ",,"; when all three counts are 0 the
// remaining "," go and "异常" becomes "通过".
VerdictText ComposeVerdict(const QString& code, qint32 excess, qint32 missing, qint32 wrong);

// What lblPickInfo says about an order's counts: excess first, then goods of
// another order, else nothing.
QString PickInfoFor(qint32 excess, qint32 wrong);
