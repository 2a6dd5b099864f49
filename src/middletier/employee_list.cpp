// RnBaseList.EmployeePicker: the host's picker dialog over t_Emp.
#include "middletier/employee_list.h"
#include "host/object_factory.h"
#include "host/record_keys.h"
#include "sql/sql_engine.h"

namespace {

// LIKE pattern of a text, its own wildcards taken literally.
QString containsPattern(const QString& text)
{
    QString escaped;
    for (QChar c : text.trimmed()) {
        if (c == QLatin1Char('\\') || c == QLatin1Char('%') || c == QLatin1Char('_') || c == QLatin1Char('['))
            escaped += QLatin1Char('\\');
        escaped += c;
    }
    return QLatin1Char('%') + escaped + QLatin1Char('%');
}

} // namespace

QList<EmployeeRow> FindEmployees(const QString& props, const QString& text)
{
    const QString pattern = containsPattern(text);
    RecordsetPtr rs = SqlEngine::forProps(props)->executeBound(
        QStringLiteral("SELECT FItemID, FNumber, FName FROM t_Emp "
                       "WHERE FNumber LIKE ? ESCAPE '\\' OR FName LIKE ? ESCAPE '\\' ORDER BY FNumber"),
        {pattern, pattern});
    QList<EmployeeRow> rows;
    for (; !rs->isEOF(); rs->MoveNext())
        rows.append({rs->Fields(RecordKeys::FItemID), rs->Fields(QStringLiteral("FNumber")).toString(),
                     rs->Fields(QStringLiteral("FName")).toString()});
    return rows;
}


namespace {

const BuiltInServerObject registration(ProgIds::EmployeePicker, [] { return MakeEmployeePicker(FindEmployees); });

} // namespace
