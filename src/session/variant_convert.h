#pragma once
// Conversions of host values the way the classic runtime does them: numbers
// round half to even, text must pass IsNumeric, a value outside the target
// range overflows. Failures raise HostError (13 type mismatch, 6 overflow,
// 94 invalid use of Null).
#include <QVariant>

double variantToDouble(const QVariant& value);   // CDbl
qint32 variantToLong(const QVariant& value);     // CLng
qint16 variantToInteger(const QVariant& value);  // CInt
