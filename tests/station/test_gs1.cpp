// GS1 element strings in the three forms a station meets, and the codes that
// are none: what is read, what is refused and why; what a GS1 scan then asks
// of the goods scan, read against the demo warehouse.
#include "station/gs1_element_string.h"
#include "station/gs1_scan.h"
#include "station/station_fixture.h"

namespace {

const QString GS{QChar(Gs1GroupSeparator)};

using Form = Gs1ElementString::Form;

// "(AI)value..." of what was read, then " error <reason> <AI>"; "plain" for no element string.
QString describe(const Gs1ElementString& s)
{
    if (!s.recognised())
        return s.elements.isEmpty() && s.error.isEmpty() ? QStringLiteral("plain") : QStringLiteral("plain with fields");
    QString text;
    for (const Gs1Element& e : s.elements)
        text += QLatin1Char('(') + e.ai + QLatin1Char(')') + e.value;
    return text + (s.error.isEmpty() ? QString() : QStringLiteral(" error ") + s.error + QLatin1Char(' ') + s.errorAi);
}

} // namespace

TEST(Gs1ElementString, EveryFormReadsTheSameFields)
{
    const QList<Gs1Element> expected{{"01", "06931000010017"}, {"10", "LOT-A7"}, {"17", "261231"}, {"21", "W1-0001"}};
    const QString sign{QChar(Gs1GroupSeparatorSign)};   // what a scan field keeps for GS
    const struct {
        QString scan;
        Form form;
    } cases[] = {
        {"]C10106931000010017" "10LOT-A7" + GS + "17261231" "21W1-0001", Form::SymbologyId},   // GS1-128
        {"]d20106931000010017" + GS + "10LOT-A7" + GS + "1726123121W1-0001", Form::SymbologyId},   // GS after a fixed field
        {GS + "0106931000010017" "10LOT-A7" + GS + "1726123121W1-0001", Form::LeadingFnc1},
        {sign + "0106931000010017" "10LOT-A7" + sign + "1726123121W1-0001", Form::LeadingFnc1},
        {"(01)06931000010017(10)LOT-A7(17)261231(21)W1-0001", Form::HumanReadable},
    };
    for (const auto& c : cases) {
        const Gs1ElementString s = ParseGs1ElementString(c.scan);
        EXPECT_EQ(s.form, c.form) << c.scan.toStdString();
        EXPECT_TRUE(s.ok() && s.elements == expected) << c.scan.toStdString() << ": " << describe(s).toStdString();
        EXPECT_EQ(s.value("17"), QStringLiteral("261231")) << c.scan.toStdString();
        EXPECT_FALSE(s.value("30").has_value()) << c.scan.toStdString();
    }

    // Formatting gives back a string that reads the same.
    EXPECT_EQ(FormatGs1Transmitted(expected), "]C10106931000010017" "10LOT-A7" + GS + "1726123121W1-0001");
    EXPECT_EQ(FormatGs1HumanReadable(expected), "(01)06931000010017(10)LOT-A7(17)261231(21)W1-0001");
    EXPECT_EQ(ParseGs1ElementString(FormatGs1Transmitted(expected)).elements, expected);
}

TEST(Gs1ElementString, FieldsAreReadOrRefusedWithTheirReasonAndPlainCodesStayPlain)
{
    // What is read as (AI)value, or " error <reason> <AI>", or "plain".
    const struct {
        QString scan;
        const char* read;
    } cases[] = {
        {"]C10106931000010017" "3712" + GS + "3103001250" "30" "5", "(01)06931000010017(37)12(3103)001250(30)5"},
        {"(10)A(21)1(10)A", "(10)A(21)1(10)A"},   // the same AI twice with the same value is one field said twice
        {"(01)06931000010018", " error GS1条码的校验位不正确 01"},
        {"(01)0693100001001", " error GS1条码的字段长度不正确 01"},
        {"(01)0693100001001A", " error GS1条码的字段含有不允许的字符 01"},
        {"(17)261301", " error GS1条码的日期不正确 17"},
        {"(10)LOT A7", " error GS1条码的字段含有不允许的字符 10"},
        {"]C10106931000010017" "21" + QString(25, QLatin1Char('S')), " error GS1条码的字段长度不正确 21"},
        {"(37)123456789", " error GS1条码的字段长度不正确 37"},
        {"(10)A(10)B", " error GS1条码中同一标识符有不同的值 10"},
        {"]C1", " error GS1条码中没有数据 "},
        {"]C10106931000010017" "88X", " error GS1条码中有无法识别的应用标识符 88"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(describe(ParseGs1ElementString(c.scan)), QString::fromUtf8(c.read)) << c.scan.toStdString();
    for (const char* plain : {"6931000010017", "W1-0001", "", "]E06931000010017", "]C0123", "(ab)12", "(88)123"})
        EXPECT_EQ(describe(ParseGs1ElementString(QString::fromUtf8(plain))), QStringLiteral("plain")) << plain;
}

TEST(Gs1Scan, ElementStringsGiveTheirFieldsAndTheExpiryMustFitTheSerial)
{
    EXPECT_EQ(ReadGs1Scan(QStringLiteral("6931000010017")).kind, Gs1Scan::Kind::Plain);
    // A carton: the contained goods' GTIN and their count.
    const Gs1Scan carton = ReadGs1Scan(QStringLiteral("(02)06931000010147(37)12"));
    ASSERT_EQ(carton.kind, Gs1Scan::Kind::Read);
    EXPECT_EQ(carton.gtin, QStringLiteral("06931000010147"));
    EXPECT_EQ(carton.count, QStringLiteral("12"));
    EXPECT_FALSE(carton.serial.has_value());
    // A refusal names its reason for translation and the AI as it stands.
    const Gs1Scan bad = ReadGs1Scan(QStringLiteral("(01)06931000010018"));
    EXPECT_EQ(bad.kind, Gs1Scan::Kind::Refused);
    EXPECT_EQ(bad.refusal, QStringLiteral("~$~GS1条码的校验位不正确^|^ (01)"));

    // The expiry read is the production date plus the shelf life of the serial.
    const struct {
        const char* expiry;
        const char* produced;
        int days;
        bool fits;
    } cases[] = {
        {"260219", "2024-03-01", 720, true},   // MF-0001 of the demo
        {"260220", "2024-03-01", 720, false},
        {"260200", "2026-01-29", 30, true},    // DD 00: the month's last day
        {"260200", "2026-01-28", 30, false},
        {"991231", "", 0, true},               // no production date, no limit
    };
    for (const auto& c : cases) {
        GoodsRecord serial;
        serial.SetValue(QStringLiteral("FKFDate"), QString::fromLatin1(c.produced));
        serial.SetValue(QStringLiteral("FKFPeriod"), c.days);
        EXPECT_EQ(Gs1ExpiryFits(QString::fromLatin1(c.expiry), serial), c.fits) << c.expiry << " " << c.produced;
    }
}

TEST_F(StationFormTest, GtinsAreLookedUpAsTheBarcodesTheyArePrintedAs)
{
    // The demo's barcodes are EAN-13: found by the GTIN-14 with a leading zero.
    const GoodsRecord shampoo = FindWebOrderGoodsByGtin(QStringLiteral("06931000010147"));
    EXPECT_EQ(shampoo.GetValue(QStringLiteral("FItemID")).toInt(), 1014);
    // The cable's inner pack code is no GTIN; a GTIN nobody has finds nothing.
    EXPECT_TRUE(FindWebOrderGoodsByGtin(QStringLiteral("06930000000000")).GetValue(QStringLiteral("FItemID")).isNull());
    // A GTIN-14 of its own (a carton) is tried as it stands first.
    dbExec(QStringLiteral("INSERT INTO t_Barcode (FItemID, FBarCode) VALUES (1014, '16931000010144')"));
    EXPECT_EQ(FindWebOrderGoodsByGtin(QStringLiteral("16931000010144")).GetValue(QStringLiteral("FItemID")).toInt(), 1014);
}
