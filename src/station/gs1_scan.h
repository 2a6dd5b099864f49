#pragma once
// What a GS1 element string scanned into TxtItemID asks of the goods scan: the
// GTIN to look up in barcode mode, the serial in serial mode, a count that
// stands for the quantity, and the batch and expiry a serial must fit. A scan
// that is no element string is a plain code and goes the plain way.
#include "host/goods_record.h"
#include <QString>
#include <optional>

struct Gs1Scan {
    enum class Kind { Plain, Refused, Read };
    Kind kind = Kind::Plain;
    // Refused: the message for lblMessage (a composite text: the reason
    // translated, the AI as it stands).
    QString refusal;
    std::optional<QString> gtin;     // AI 01 (02 when there is no 01)
    std::optional<QString> batch;    // AI 10
    std::optional<QString> expiry;   // AI 17, YYMMDD
    std::optional<QString> serial;   // AI 21
    std::optional<QString> count;    // AI 30, else 37
};

Gs1Scan ReadGs1Scan(const QString& code);

// The goods of a GTIN through the plain barcode lookup: the 14 digits first,
// then GTIN-13, GTIN-12 and GTIN-8 where only zeros are dropped. The record of
// the first that is found; an empty record when none is.
GoodsRecord FindWebOrderGoodsByGtin(const QString& gtin14);

// Whether a serial's lookup record fits the expiry of its label: the limit
// date is the production date (FKFDate) plus the shelf life in days
// (FKFPeriod). A serial without a production date has no limit, and fits.
bool Gs1ExpiryFits(const QString& yymmdd, const GoodsRecord& serial);
