#include "middletier/middle_tier_values.h"
#include "host/host_error.h"
#include "host/props_text.h"

qint64 WholeNumberValue(const QVariant& value, const QString& what)
{
    if (value.isNull())
        return 0;
    const QString text = value.toString().trimmed();
    if (text.isEmpty())
        return 0;
    bool ok = false;
    const qint64 number = text.toLongLong(&ok);
    if (ok)
        return number;
    const double real = text.toDouble(&ok);
    if (ok && real == double(qint64(real)))
        return qint64(real);
    throw HostError(HostErrors::TypeMismatch, QStringLiteral("Type mismatch: %1 is not a whole number (%2).").arg(what, text));
}

QString PropsValue(const QString& props, const QString& key)
{
    for (const auto& pair : SplitPropsText(props)) {
        if (pair.first.compare(key, Qt::CaseInsensitive) == 0)
            return pair.second;
    }
    throw HostError(HostErrors::KeyNotFound, QStringLiteral("The host property string holds no %1.").arg(key));
}
