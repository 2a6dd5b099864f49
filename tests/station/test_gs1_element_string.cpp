// GS1 element strings in the three forms a station meets, and the codes that
// are none: what is read, what is refused and why.
#include "station/gs1_element_string.h"
#include <gtest/gtest.h>

namespace {

const QString GS{QChar(Gs1GroupSeparator)};

using Form = Gs1ElementString::Form;

QString describe(const Gs1ElementString& s)
{
    QStringList parts;
    for (const Gs1Element& e : s.elements)
        parts << QLatin1Char('(') + e.ai + QLatin1Char(')') + e.value;
    return parts.join(QString()) + (s.error.isEmpty() ? QString() : QStringLiteral(" error ") + s.error + QLatin1Char(' ') + s.errorAi);
}

} // namespace

TEST(Gs1ElementString, EveryFormReadsTheSameFields)
{
    const QList<Gs1Element> expected{{"01", "06931000010017"}, {"10", "LOT-A7"}, {"17", "261231"}, {"21", "W1-0001"}};
    const struct {
        const char* what;
        QString scan;
        Form form;
    } cases[] = {
        {"GS1-128", "]C10106931000010017" "10LOT-A7" + GS + "17261231" "21W1-0001", Form::SymbologyId},
        {"GS1 DataMatrix, GS after a fixed field too", "]d20106931000010017" + GS + "10LOT-A7" + GS + "1726123121W1-0001",
         Form::SymbologyId},
        {"GS1 QR", "]Q30106931000010017" "10LOT-A7" + GS + "1726123121W1-0001", Form::SymbologyId},
        {"GS1 DataBar", "]e00106931000010017" "10LOT-A7" + GS + "1726123121W1-0001", Form::SymbologyId},
        {"leading FNC1", GS + "0106931000010017" "10LOT-A7" + GS + "1726123121W1-0001", Form::LeadingFnc1},
        {"the sign a scan field keeps for GS", QChar(Gs1GroupSeparatorSign) + QStringLiteral("0106931000010017" "10LOT-A7")
                                                   + QChar(Gs1GroupSeparatorSign) + "1726123121W1-0001",
         Form::LeadingFnc1},
        {"human-readable", "(01)06931000010017(10)LOT-A7(17)261231(21)W1-0001", Form::HumanReadable},
    };
    for (const auto& c : cases) {
        const Gs1ElementString s = ParseGs1ElementString(c.scan);
        EXPECT_EQ(s.form, c.form) << c.what;
        EXPECT_TRUE(s.ok()) << c.what << ": " << describe(s).toStdString();
        EXPECT_EQ(s.elements, expected) << c.what << ": " << describe(s).toStdString();
        EXPECT_EQ(s.value("17"), QStringLiteral("261231")) << c.what;
        EXPECT_FALSE(s.value("30").has_value()) << c.what;
    }

    // Formatting gives back a string that reads the same.
    EXPECT_EQ(FormatGs1Transmitted(expected), "]C10106931000010017" "10LOT-A7" + GS + "1726123121W1-0001");
    EXPECT_EQ(FormatGs1HumanReadable(expected), "(01)06931000010017(10)LOT-A7(17)261231(21)W1-0001");
    EXPECT_EQ(ParseGs1ElementString(FormatGs1Transmitted(expected)).elements, expected);
}

TEST(Gs1ElementString, PlainCodesAreNoElementStrings)
{
    for (const char* plain : {"6931000010017", "W1-0001", "DX-USBC-1M", "", "]E06931000010017", "]C0123", "(ab)12",
                              "(88)123", "10001", "SF10001"}) {
        const Gs1ElementString s = ParseGs1ElementString(QString::fromUtf8(plain));
        EXPECT_FALSE(s.recognised()) << plain;
        EXPECT_TRUE(s.error.isEmpty()) << plain;
        EXPECT_TRUE(s.elements.isEmpty()) << plain;
    }
}

TEST(Gs1ElementString, WrongFieldsAreRefusedWithTheirReason)
{
    const struct {
        QString scan;
        const char* error;
        const char* ai;
    } cases[] = {
        {"(01)06931000010018", "GS1条码的校验位不正确", "01"},
        {"]C100106931000010017000", "GS1条码的校验位不正确", "00"},
        {"(01)0693100001001", "GS1条码的字段长度不正确", "01"},
        {"]C1010693100001001", "GS1条码的字段长度不正确", "01"},
        {"(01)0693100001001A", "GS1条码的字段含有不允许的字符", "01"},
        {"(17)261301", "GS1条码的日期不正确", "17"},
        {"(17)260230", "GS1条码的日期不正确", "17"},
        {"(15)250229", "GS1条码的日期不正确", "15"},
        {"(10)LOT A7", "GS1条码的字段含有不允许的字符", "10"},
        {"(10)批号", "GS1条码的字段含有不允许的字符", "10"},
        {"(21)" + QString(21, QLatin1Char('S')), "GS1条码的字段长度不正确", "21"},
        {"]C10106931000010017" "21" + QString(25, QLatin1Char('S')), "GS1条码的字段长度不正确", "21"},
        {"(30)12a", "GS1条码的字段含有不允许的字符", "30"},
        {"(37)123456789", "GS1条码的字段长度不正确", "37"},
        {"(10)", "GS1条码的字段长度不正确", "10"},
        {"(10)A(10)B", "GS1条码中同一标识符有不同的值", "10"},
        {"]C1", "GS1条码中没有数据", ""},
        {GS, "GS1条码中没有数据", ""},
        {"]d28812345", "GS1条码中有无法识别的应用标识符", "88"},
        {"]C10106931000010017" "88X", "GS1条码中有无法识别的应用标识符", "88"},
        {"]C1(01)06931000010017", "GS1条码中有无法识别的应用标识符", ""},
    };
    for (const auto& c : cases) {
        const Gs1ElementString s = ParseGs1ElementString(c.scan);
        EXPECT_TRUE(s.recognised()) << c.scan.toStdString();
        EXPECT_FALSE(s.ok()) << c.scan.toStdString();
        EXPECT_EQ(s.error, QString::fromUtf8(c.error)) << c.scan.toStdString() << ": " << describe(s).toStdString();
        EXPECT_EQ(s.errorAi, QString::fromUtf8(c.ai)) << c.scan.toStdString();
        EXPECT_TRUE(s.elements.isEmpty()) << c.scan.toStdString();
    }
}

TEST(Gs1ElementString, DatesCountsAndMeasures)
{
    // DD 00 is the month's end; a leap day only in a leap year.
    for (const char* good : {"260200", "240229", "261231", "260430", "000101"})
        EXPECT_TRUE(Gs1DateValid(QString::fromLatin1(good))) << good;
    for (const char* bad : {"260431", "250229", "261301", "260001", "2612", "26123a"})
        EXPECT_FALSE(Gs1DateValid(QString::fromLatin1(bad))) << bad;

    const Gs1ElementString counts = ParseGs1ElementString("]C10106931000010017" "3712" + GS + "3103001250" "30" "5");
    ASSERT_TRUE(counts.ok()) << describe(counts).toStdString();
    EXPECT_EQ(counts.value("37"), QStringLiteral("12"));
    EXPECT_EQ(counts.value("3103"), QStringLiteral("001250"));
    EXPECT_EQ(counts.value("30"), QStringLiteral("5"));

    // The same AI twice with the same value is one field said twice.
    EXPECT_TRUE(ParseGs1ElementString("(10)A(21)1(10)A").ok());
}

TEST(Gs1ElementString, GtinCandidatesDropOnlyLeadingZeros)
{
    EXPECT_EQ(Gs1GtinCandidates("06931000010017"), (QStringList{"06931000010017", "6931000010017"}));
    EXPECT_EQ(Gs1GtinCandidates("00012345678905"), (QStringList{"00012345678905", "0012345678905", "012345678905"}));
    EXPECT_EQ(Gs1GtinCandidates("00000012345670"),
              (QStringList{"00000012345670", "0000012345670", "000012345670", "12345670"}));
    EXPECT_EQ(Gs1GtinCandidates("16931000010014"), QStringList{"16931000010014"});
    EXPECT_TRUE(Gs1CheckDigitValid("6931000010314"));
    EXPECT_FALSE(Gs1CheckDigitValid("6931000010317"));
}
