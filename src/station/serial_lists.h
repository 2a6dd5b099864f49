#pragma once
// The comma-joined lists a serial-managed goods line collects, one element per
// serial scanned: "FSeriNum", "FSerialID", "FKFPeriod", "FKFDate". The scan
// appends "," and the new value, so a list that holds anything starts with an
// empty element.
#include <QString>

// True when one element of the list equals the value. An empty list contains
// nothing, and an empty value is never contained: empty elements are what the
// joining leaves behind, not serial numbers.
bool SerialListContains(const QString& list, const QString& value);

// True as soon as one element differs from the value. An empty element and the
// element "0" are an absent value that differs from nothing. The same holds for
// the value itself: an empty or "0" value (a serial without shelf life or
// production date) differs from no element, so the order in which such serials
// are scanned does not decide whether a line accepts them. An empty list
// differs from nothing.
bool ListDiffersFrom(const QString& list, const QString& value);
