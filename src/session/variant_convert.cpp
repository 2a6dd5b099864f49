#include "session/variant_convert.h"
#include "host/host_error.h"
#include "host/platform.h"
#include <cmath>
#include <limits>

namespace {

constexpr long InvalidUseOfNull = 94;

double toDouble(const QVariant& value)
{
    if (value.isNull())
        throw HostError(InvalidUseOfNull, QStringLiteral("Invalid use of Null"));
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool() ? -1.0 : 0.0;   // True is -1 to the host
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Double:
    case QMetaType::Float:
        return value.toDouble();
    default:
        break;
    }
    QString text = value.toString();
    if (!IsNumeric(text))
        throw HostError(HostErrors::TypeMismatch, QStringLiteral("Type mismatch"));
    text = text.trimmed();
    text.replace(QLatin1Char('d'), QLatin1Char('e')).replace(QLatin1Char('D'), QLatin1Char('e'));
    bool ok = false;
    const double d = text.toDouble(&ok);
    if (!ok)
        throw HostError(HostErrors::Overflow, QStringLiteral("Overflow"));
    return d;
}

double roundHalfEven(double d)
{
    return std::nearbyint(d);   // the default rounding mode is to nearest, ties to even
}

template <class T>
T convert(const QVariant& value)
{
    const double d = roundHalfEven(toDouble(value));
    if (!std::isfinite(d) || d < double(std::numeric_limits<T>::min()) || d > double(std::numeric_limits<T>::max()))
        throw HostError(HostErrors::Overflow, QStringLiteral("Overflow"));
    return T(d);
}

} // namespace

double variantToDouble(const QVariant& value) { return toDouble(value); }
qint32 variantToLong(const QVariant& value) { return convert<qint32>(value); }
qint16 variantToInteger(const QVariant& value) { return convert<qint16>(value); }
