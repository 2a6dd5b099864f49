#include "host/recordset.h"
#include "host/host_error.h"

Recordset::Recordset(QStringList columns, std::vector<std::vector<QVariant>> rows)
    : m_columns(std::move(columns)), m_rows(std::move(rows)) {}

int Recordset::columnIndex(const QString& name) const
{
    for (int i = 0; i < m_columns.size(); ++i) {
        if (m_columns[i].compare(name, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

QVariant Recordset::Fields(const QString& name) const
{
    const int c = columnIndex(name);
    if (c < 0)
        throw HostError(3265, QStringLiteral("Item cannot be found in the collection corresponding to the requested name or ordinal: %1").arg(name));
    if (isEOF())
        throw HostError(3021, QStringLiteral("Either BOF or EOF is True, or the current record has been deleted."));
    const auto& row = m_rows[m_pos];
    return size_t(c) < row.size() ? row[size_t(c)] : QVariant();
}

void Recordset::MoveNext()
{
    if (isEOF())
        throw HostError(3021, QStringLiteral("Either BOF or EOF is True, or the current record has been deleted."));
    ++m_pos;
}
