#pragma once
// The employees the base-list picker offers for a text: t_Emp rows whose
// number or name contains it, ordered by number.
#include <QList>
#include <QString>
#include <QVariant>

struct EmployeeRow {
    QVariant itemId;
    QString number;
    QString name;
};

QList<EmployeeRow> FindEmployees(const QString& props, const QString& text);
