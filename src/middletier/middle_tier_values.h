#pragma once
// Conversions the middle-tier objects share when they bind record values
// and property-string keys to their own statements.
#include <QString>
#include <QVariant>

// A record value bound where the table holds a whole number: empty or null
// counts as 0 (as the ERP's server converts ''), other text must be a number;
// raises HostError (type mismatch) otherwise.
qint64 WholeNumberValue(const QVariant& value, const QString& what);

// The value of a key of the host property string (case-insensitive); a
// missing key raises HostError.
QString PropsValue(const QString& props, const QString& key);
