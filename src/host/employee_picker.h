#pragma once
// The host's base-list picker for employees (RnBaseList.EmployeePicker). The
// dialog is the host's; the rows come from a lookup handed in by the layer
// that reaches the database, which also registers the ProgID.
#include "host/server_objects.h"
#include <QList>
#include <QString>
#include <QVariant>
#include <functional>
#include <memory>

struct EmployeeRow {
    QVariant itemId;
    QString number;
    QString name;
};

// The employees offered for a text; may raise HostError.
using EmployeeLookup = std::function<QList<EmployeeRow>(const QString& props, const QString& text)>;

// The picker: a modal list of what the lookup answers for the filter's text.
std::shared_ptr<IEmployeePicker> MakeEmployeePicker(EmployeeLookup lookup);
