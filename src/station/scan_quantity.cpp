#include "station/scan_quantity.h"
#include "host/platform.h"
#include <cmath>

std::optional<qint32> ScanQuantity(const QString& text)
{
    if (!IsNumeric(text))
        return std::nullopt;
    QString t = text.trimmed();
    // The numeric test also knows the "D" exponent; the parser only "E".
    t.replace(QLatin1Char('d'), QLatin1Char('e'));
    t.replace(QLatin1Char('D'), QLatin1Char('e'));
    bool ok = false;
    const double value = t.toDouble(&ok);
    if (!ok || !std::isfinite(value) || value != std::floor(value))
        return std::nullopt;
    if (value < 1 || value > MaxScanQuantity)
        return std::nullopt;
    return qint32(value);
}
