#pragma once
// A forward-only recordset as the middle tier hands it out: EOF, Fields(name)
// looked up case-insensitively, Value (a null QVariant is SQL NULL), MoveNext.
// The rows are read in full when the statement runs, so the connection is free
// again before the caller starts reading.
#include <QString>
#include <QStringList>
#include <QVariant>
#include <memory>
#include <vector>

class Recordset {
public:
    Recordset() = default;
    Recordset(QStringList columns, std::vector<std::vector<QVariant>> rows);

    bool isEOF() const { return m_pos >= m_rows.size(); }
    // The value of a column of the current row; a null QVariant for SQL NULL.
    // An unknown column or a read past the end raises HostError.
    QVariant Fields(const QString& name) const;
    bool HasField(const QString& name) const { return columnIndex(name) >= 0; }
    void MoveNext();
    int RecordCount() const { return int(m_rows.size()); }
    const QStringList& columns() const { return m_columns; }

private:
    int columnIndex(const QString& name) const;
    QStringList m_columns;
    std::vector<std::vector<QVariant>> m_rows;
    size_t m_pos = 0;
};

using RecordsetPtr = std::shared_ptr<Recordset>;
