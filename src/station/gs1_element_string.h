#pragma once
// GS1 element strings as a scanner sends them or a person types them: a GTIN,
// a batch, dates, a serial and counts in one symbol. Plain text, no widgets.
//
// Three forms are recognised:
//   - a symbology identifier of a GS1 symbol (]C1 GS1-128, ]d2 GS1 DataMatrix,
//     ]Q3 GS1 QR Code, ]e0 GS1 DataBar) followed by the element string;
//   - a leading FNC1, sent as the GS character;
//   - the human-readable form, "(01)06931000010017(10)LOT-A7".
// In the first two, GS ends a variable-length field. Anything else is no
// element string and is left to the plain scan.
#include <QList>
#include <QString>
#include <optional>

// The group separator, and the visible sign a scan field keeps in its place
// (a field shows no control characters).
inline constexpr char16_t Gs1GroupSeparator = 0x1D;
inline constexpr char16_t Gs1GroupSeparatorSign = 0x241D;

struct Gs1Element {
    QString ai;      // "01", "10", "3103", ...
    QString value;
    bool operator==(const Gs1Element&) const = default;
};

struct Gs1ElementString {
    enum class Form { None, SymbologyId, LeadingFnc1, HumanReadable };
    Form form = Form::None;   // None: not an element string at all
    QList<Gs1Element> elements;
    // Empty when the string parsed; otherwise what is wrong, for the worker
    // (a fixed text of the station, followed by the AI it is about).
    QString error;
    QString errorAi;

    bool recognised() const { return form != Form::None; }
    bool ok() const { return recognised() && error.isEmpty(); }
    std::optional<QString> value(const QString& ai) const;
};

// Reads a scan. A scan in none of the three forms gives Form::None and no
// error. GS may arrive as the control character or as its visible sign.
Gs1ElementString ParseGs1ElementString(const QString& scan);

// The element string as a GS1-128 scanner transmits it: "]C1", the fields in
// order, GS after every variable-length field but the last.
QString FormatGs1Transmitted(const QList<Gs1Element>& elements);
// The same in the human-readable form, "(01)...(10)...".
QString FormatGs1HumanReadable(const QList<Gs1Element>& elements);

// The mod-10 check digit of a GS1 number (GTIN, SSCC) is right.
bool Gs1CheckDigitValid(const QString& digits);
// YYMMDD, where DD 00 stands for the month's last day; an impossible date is false.
bool Gs1DateValid(const QString& yymmdd);
// The GTIN-14 as the barcodes it may be printed as, longest first: the 14
// digits, then GTIN-13, GTIN-12 and GTIN-8 where the leading zeros allow.
QStringList Gs1GtinCandidates(const QString& gtin14);
