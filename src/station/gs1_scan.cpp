#include "station/gs1_scan.h"
#include "host/record_keys.h"
#include "orderdata/order_goods.h"
#include "station/gs1_element_string.h"
#include <QDate>
#include <QDateTime>

Gs1Scan ReadGs1Scan(const QString& code)
{
    Gs1Scan scan;
    const Gs1ElementString parsed = ParseGs1ElementString(code);
    if (!parsed.recognised())
        return scan;
    if (!parsed.ok()) {
        scan.kind = Gs1Scan::Kind::Refused;
        // The reason is translated; the AI it is about stays as it is.
        scan.refusal = parsed.errorAi.isEmpty()
            ? parsed.error
            : QStringLiteral("~$~") + parsed.error + QStringLiteral("^|^ (") + parsed.errorAi + QLatin1Char(')');
        return scan;
    }
    scan.kind = Gs1Scan::Kind::Read;
    scan.gtin = parsed.value(QStringLiteral("01"));
    if (!scan.gtin)
        scan.gtin = parsed.value(QStringLiteral("02"));
    scan.batch = parsed.value(QStringLiteral("10"));
    scan.expiry = parsed.value(QStringLiteral("17"));
    scan.serial = parsed.value(QStringLiteral("21"));
    scan.count = parsed.value(QStringLiteral("30"));
    if (!scan.count)
        scan.count = parsed.value(QStringLiteral("37"));
    return scan;
}

GoodsRecord FindWebOrderGoodsByGtin(const QString& gtin14)
{
    for (const QString& barCode : Gs1GtinCandidates(gtin14)) {
        GoodsRecord found = FindWebOrderGoodsByBarCode(barCode);
        if (!found.GetValue(RecordKeys::FItemID, QString()).toString().isEmpty())
            return found;
    }
    return GoodsRecord();
}

bool Gs1ExpiryFits(const QString& yymmdd, const GoodsRecord& serial)
{
    const QVariant produced = serial.GetValue(RecordKeys::FKFDate);
    QDate date = produced.typeId() == QMetaType::QDateTime ? produced.toDateTime().date()
               : produced.typeId() == QMetaType::QDate     ? produced.toDate()
                                                            : QDate::fromString(produced.toString().left(10), Qt::ISODate);
    if (!date.isValid())
        return true;
    const QDate limit = date.addDays(serial.GetValue(RecordKeys::FKFPeriod, 0).toInt());
    // The label's YYMMDD; DD 00 stands for the month's end.
    const int yy = yymmdd.left(2).toInt();
    const int mm = yymmdd.mid(2, 2).toInt();
    const int dd = yymmdd.mid(4, 2).toInt();
    if (limit.year() % 100 != yy || limit.month() != mm)
        return false;
    return dd == 0 ? limit.day() == limit.daysInMonth() : limit.day() == dd;
}
