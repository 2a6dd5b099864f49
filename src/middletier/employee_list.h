#pragma once
// The employees the base-list picker offers for a text: t_Emp rows whose
// number or name contains it, ordered by number. This file also registers the
// built-in RnBaseList.EmployeePicker, the host's dialog over this lookup.
#include "host/employee_picker.h"
#include <QList>
#include <QString>

QList<EmployeeRow> FindEmployees(const QString& props, const QString& text);
