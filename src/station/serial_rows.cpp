#include "station/serial_rows.h"
#include "host/host_error.h"
#include "host/platform.h"
#include "host/record_keys.h"
#include <QSet>
#include <QStringList>

namespace {
const QString kCrLf = QStringLiteral("\r\n");

QString text(const GoodsRecord& record, const QString& key)
{
    return record.GetValue(key, QString()).toString();
}

QString element(const QStringList& list, qsizetype i)
{
    return i < list.size() ? list.at(i) : QString();
}

// Numbers go into the statement bare, so only a number may go there.
QString sqlNumber(const QString& value, const char* column)
{
    const QString v = value.trimmed();
    if (v.isEmpty())
        return QStringLiteral("0");
    if (!IsNumeric(v))
        throw HostError(HostErrors::TypeMismatch,
                        QStringLiteral("Type mismatch: %1 '%2'").arg(QLatin1String(column), v));
    return v;
}

// Scanned codes cannot hold a quote, but batch numbers and dates come from the
// ERP and might; doubling keeps the literal closed.
QString sqlText(const QString& value)
{
    QString v = value;
    v.replace(QLatin1Char('\''), QLatin1String("''"));
    return QLatin1Char('\'') + v + QLatin1Char('\'');
}

QString insertStatement(const GoodsRecord& row)
{
    return QStringLiteral(" insert IC_Web2ErpOrderSerial (FID,FEntryID,FSerialNumber,FBatchNo,FStockID,FStockPlace,FSerialID,FKFDate,FKFPeriod) ")
        + QStringLiteral(" values (0,")
        + sqlNumber(text(row, RecordKeys::FEntryID), "FEntryID") + QLatin1Char(',')
        + sqlText(text(row, RecordKeys::FSeriNum)) + QLatin1Char(',')
        + sqlText(text(row, RecordKeys::FBatchNo)) + QLatin1Char(',')
        + sqlNumber(text(row, RecordKeys::FStockID), "FStockID") + QLatin1Char(',')
        + sqlNumber(text(row, RecordKeys::FSPID), "FStockPlace") + QLatin1Char(',')
        + sqlText(text(row, RecordKeys::FSerialID)) + QLatin1Char(',')
        + sqlText(text(row, RecordKeys::FKFDate)) + QLatin1Char(',')
        + sqlNumber(text(row, RecordKeys::FKFPeriod), "FKFPeriod")
        + QLatin1Char(')');
}
} // namespace

QList<GoodsRecord> CollectSerialRows(const RecordList& lines)
{
    QList<GoodsRecord> rows;
    if (lines.isNone())
        return rows;
    for (int i = lines.LowerBound(); i <= lines.UpperBound(); ++i) {
        const GoodsRecord line = lines.Item(i);
        const QString serials = text(line, RecordKeys::FSeriNum);
        if (serials.isEmpty())
            continue;
        const QStringList serialList = serials.split(QLatin1Char(','));
        const QStringList serialIds = text(line, RecordKeys::FSerialID).split(QLatin1Char(','));
        const QStringList periods = text(line, RecordKeys::FKFPeriod).split(QLatin1Char(','));
        const QStringList dates = text(line, RecordKeys::FKFDate).split(QLatin1Char(','));
        for (qsizetype k = 0; k < serialList.size(); ++k) {
            if (serialList.at(k).isEmpty())
                continue;
            GoodsRecord row;
            row.SetValue(RecordKeys::FEntryID, line.GetValue(RecordKeys::FEntryID));
            row.SetValue(RecordKeys::FSeriNum, serialList.at(k));
            row.SetValue(RecordKeys::FBatchNo, line.GetValue(RecordKeys::FBatchNo));
            row.SetValue(RecordKeys::FStockID, line.GetValue(RecordKeys::FStockID));
            row.SetValue(RecordKeys::FSPID, line.GetValue(RecordKeys::FSPID));
            row.SetValue(RecordKeys::FSerialID, element(serialIds, k));
            row.SetValue(RecordKeys::FKFDate, element(dates, k));
            row.SetValue(RecordKeys::FKFPeriod, element(periods, k));
            rows.append(row);
        }
    }
    return rows;
}

QString BuildSerialRowsSql(const QList<GoodsRecord>& rows)
{
    QStringList statements;
    QSet<QString> deleted;
    for (const GoodsRecord& row : rows) {
        const QString entry = sqlNumber(text(row, RecordKeys::FEntryID), "FEntryID");
        // One delete per entry, ahead of its first row: a second delete later in
        // the batch would wipe the rows just inserted.
        if (!deleted.contains(entry)) {
            statements << QStringLiteral(" Delete IC_Web2ErpOrderSerial where FEntryID=") + entry;
            deleted.insert(entry);
        }
        statements << insertStatement(row);
    }
    return statements.join(kCrLf);
}

QString BuildSerialRowsSql(const RecordList& lines)
{
    return BuildSerialRowsSql(CollectSerialRows(lines));
}
