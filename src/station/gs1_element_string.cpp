#include "station/gs1_element_string.h"
#include <QDate>
#include <array>

namespace {

enum class Chars { Digits, Cset82 };
enum class Check { None, CheckDigit, Date };

// One Application Identifier, or a family of them sharing a prefix (the
// measures 31nn..36nn, the GLNs 41n): the AI is `aiLength` digits starting
// with `prefix`. Fixed fields need no GS after them; variable ones end at GS.
struct AiSpec {
    const char* prefix;
    int aiLength;
    int minLength;
    int maxLength;
    bool fixed;
    Chars chars;
    Check check;
};

// The AIs the station reads and those that travel with them on goods labels.
constexpr std::array<AiSpec, 42> kAiTable{{
    {"00", 2, 18, 18, true, Chars::Digits, Check::CheckDigit},   // SSCC
    {"01", 2, 14, 14, true, Chars::Digits, Check::CheckDigit},   // GTIN
    {"02", 2, 14, 14, true, Chars::Digits, Check::CheckDigit},   // GTIN of contained goods
    {"10", 2, 1, 20, false, Chars::Cset82, Check::None},         // batch
    {"11", 2, 6, 6, true, Chars::Digits, Check::Date},           // production date
    {"12", 2, 6, 6, true, Chars::Digits, Check::Date},           // due date
    {"13", 2, 6, 6, true, Chars::Digits, Check::Date},           // packaging date
    {"15", 2, 6, 6, true, Chars::Digits, Check::Date},           // best before
    {"16", 2, 6, 6, true, Chars::Digits, Check::Date},           // sell by
    {"17", 2, 6, 6, true, Chars::Digits, Check::Date},           // expiry
    {"20", 2, 2, 2, true, Chars::Digits, Check::None},           // variant
    {"21", 2, 1, 20, false, Chars::Cset82, Check::None},         // serial
    {"22", 2, 1, 20, false, Chars::Cset82, Check::None},         // consumer product variant
    {"240", 3, 1, 30, false, Chars::Cset82, Check::None},        // additional product id
    {"241", 3, 1, 30, false, Chars::Cset82, Check::None},        // customer part number
    {"250", 3, 1, 30, false, Chars::Cset82, Check::None},        // secondary serial
    {"251", 3, 1, 30, false, Chars::Cset82, Check::None},        // reference to source entity
    {"30", 2, 1, 8, false, Chars::Digits, Check::None},          // variable count
    {"31", 4, 6, 6, true, Chars::Digits, Check::None},           // trade measures
    {"32", 4, 6, 6, true, Chars::Digits, Check::None},
    {"33", 4, 6, 6, true, Chars::Digits, Check::None},
    {"34", 4, 6, 6, true, Chars::Digits, Check::None},
    {"35", 4, 6, 6, true, Chars::Digits, Check::None},
    {"36", 4, 6, 6, true, Chars::Digits, Check::None},
    {"37", 2, 1, 8, false, Chars::Digits, Check::None},          // count of trade items
    {"400", 3, 1, 30, false, Chars::Cset82, Check::None},        // customer's order number
    {"41", 3, 13, 13, true, Chars::Digits, Check::CheckDigit},   // GLNs (410..417)
    {"90", 2, 1, 30, false, Chars::Cset82, Check::None},         // mutually agreed
    {"91", 2, 1, 90, false, Chars::Cset82, Check::None},         // company internal
    {"92", 2, 1, 90, false, Chars::Cset82, Check::None},
    {"93", 2, 1, 90, false, Chars::Cset82, Check::None},
    {"94", 2, 1, 90, false, Chars::Cset82, Check::None},
    {"95", 2, 1, 90, false, Chars::Cset82, Check::None},
    {"96", 2, 1, 90, false, Chars::Cset82, Check::None},
    {"97", 2, 1, 90, false, Chars::Cset82, Check::None},
    {"98", 2, 1, 90, false, Chars::Cset82, Check::None},
    {"99", 2, 1, 90, false, Chars::Cset82, Check::None},
    {"03", 2, 14, 14, true, Chars::Digits, Check::CheckDigit},
    {"04", 2, 16, 16, true, Chars::Digits, Check::None},
    {"14", 2, 6, 6, true, Chars::Digits, Check::None},
    {"18", 2, 6, 6, true, Chars::Digits, Check::None},
    {"19", 2, 6, 6, true, Chars::Digits, Check::None},
}};

// Texts shown to the worker (translated where they are shown).
const char* const kErrorEmpty = "GS1条码中没有数据";
const char* const kErrorUnknownAi = "GS1条码中有无法识别的应用标识符";
const char* const kErrorLength = "GS1条码的字段长度不正确";
const char* const kErrorChars = "GS1条码的字段含有不允许的字符";
const char* const kErrorCheckDigit = "GS1条码的校验位不正确";
const char* const kErrorDate = "GS1条码的日期不正确";
const char* const kErrorConflict = "GS1条码中同一标识符有不同的值";

const QStringList kSymbologyIds{QStringLiteral("]C1"), QStringLiteral("]d2"), QStringLiteral("]Q3"), QStringLiteral("]e0")};

bool isDigit(QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); }

bool isGs(QChar c) { return c.unicode() == Gs1GroupSeparator || c.unicode() == Gs1GroupSeparatorSign; }

// GS1's character set 82, less the single quote, which never reaches a scan.
bool inCset82(QChar c)
{
    const char16_t u = c.unicode();
    if (u >= 'A' && u <= 'Z')
        return true;
    if (u >= 'a' && u <= 'z')
        return true;
    if (u >= '0' && u <= '9')
        return true;
    static const QString punctuation = QStringLiteral("!\"%&()*+,-./:;<=>?_");
    return punctuation.contains(c);
}

// The table entry of the AI at the start of text, and the AI's length; nullptr when
// no AI of the table starts there.
const AiSpec* aiAt(QStringView text, QString* ai)
{
    for (const AiSpec& spec : kAiTable) {
        const QLatin1StringView prefix(spec.prefix);
        if (text.size() < spec.aiLength || !text.startsWith(prefix))
            continue;
        const QStringView candidate = text.left(spec.aiLength);
        bool digits = true;
        for (QChar c : candidate)
            digits = digits && isDigit(c);
        if (!digits)
            continue;
        *ai = candidate.toString();
        return &spec;
    }
    return nullptr;
}

const AiSpec* specOf(const QString& ai)
{
    QString found;
    const AiSpec* spec = aiAt(ai, &found);
    return spec && found == ai ? spec : nullptr;
}

// What is wrong with a value for its AI; nullptr when nothing.
const char* valueError(const AiSpec& spec, const QString& value)
{
    if (value.size() < spec.minLength || value.size() > spec.maxLength)
        return kErrorLength;
    for (QChar c : value) {
        if (spec.chars == Chars::Digits ? !isDigit(c) : !inCset82(c))
            return kErrorChars;
    }
    if (spec.check == Check::CheckDigit && !Gs1CheckDigitValid(value))
        return kErrorCheckDigit;
    if (spec.check == Check::Date && !Gs1DateValid(value))
        return kErrorDate;
    return nullptr;
}

// The two digits an unknown AI begins with, for the message; "" when the
// text does not even begin with digits.
QString leadingAi(QStringView text)
{
    return text.size() >= 2 && isDigit(text.at(0)) && isDigit(text.at(1)) ? text.left(2).toString() : QString();
}

class Reader {
public:
    explicit Reader(Gs1ElementString& out) : m_out(out) {}

    // Fields one after the other; GS ends a variable field.
    void readTransmitted(QStringView text)
    {
        qsizetype i = 0;
        while (i < text.size() && isGs(text.at(i)))
            ++i;   // FNC1 in first position, sometimes sent once more
        if (i >= text.size())
            return fail(kErrorEmpty, QString());
        while (i < text.size()) {
            QString ai;
            const AiSpec* spec = aiAt(text.mid(i), &ai);
            if (!spec)
                return fail(kErrorUnknownAi, leadingAi(text.mid(i)));
            i += spec->aiLength;
            qsizetype end = i;
            if (spec->fixed) {
                end = qMin(text.size(), i + spec->maxLength);
            } else {
                while (end < text.size() && !isGs(text.at(end)))
                    ++end;
            }
            const QString value = text.mid(i, end - i).toString();
            if (value.contains(QChar(Gs1GroupSeparator)) || value.contains(QChar(Gs1GroupSeparatorSign)))
                return fail(kErrorLength, ai);
            if (!add(*spec, ai, value))
                return;
            i = end;
            // A GS after a fixed field is more than needed, and harmless.
            if (i < text.size() && isGs(text.at(i)))
                ++i;
        }
    }

    // "(AI)value(AI)value": a value runs to the next "(" that opens a known AI.
    void readHumanReadable(QStringView text)
    {
        qsizetype i = 0;
        while (i < text.size()) {
            QString ai;
            const qsizetype aiEnd = closingOfAi(text, i, &ai);
            if (aiEnd < 0)
                return fail(kErrorUnknownAi, leadingAi(text.mid(i + 1)));
            qsizetype end = aiEnd + 1;
            QString nextAi;
            while (end < text.size() && !(text.at(end) == QLatin1Char('(') && closingOfAi(text, end, &nextAi) >= 0))
                ++end;
            if (!add(*specOf(ai), ai, text.mid(aiEnd + 1, end - aiEnd - 1).toString()))
                return;
            i = end;
        }
        if (m_out.elements.isEmpty())
            fail(kErrorEmpty, QString());
    }

    // Where "(" at `open` is followed by a known AI and ")": the index of ")",
    // or -1.
    static qsizetype closingOfAi(QStringView text, qsizetype open, QString* ai)
    {
        if (open >= text.size() || text.at(open) != QLatin1Char('('))
            return -1;
        const qsizetype close = text.indexOf(QLatin1Char(')'), open + 1);
        if (close < 0 || close - open - 1 < 2 || close - open - 1 > 4)
            return -1;
        const QString candidate = text.mid(open + 1, close - open - 1).toString();
        if (!specOf(candidate))
            return -1;
        *ai = candidate;
        return close;
    }

private:
    bool add(const AiSpec& spec, const QString& ai, const QString& value)
    {
        if (const char* error = valueError(spec, value)) {
            fail(error, ai);
            return false;
        }
        for (const Gs1Element& e : m_out.elements) {
            if (e.ai == ai && e.value != value) {
                fail(kErrorConflict, ai);
                return false;
            }
        }
        m_out.elements.append({ai, value});
        return true;
    }

    void fail(const char* error, const QString& ai)
    {
        m_out.error = QString::fromUtf8(error);
        m_out.errorAi = ai;
    }

    Gs1ElementString& m_out;
};

int daysInMonth(int year, int month)
{
    return QDate(year, month, 1).daysInMonth();
}

// GS1's century rule: the year lies from 49 years back to 50 years ahead.
int fullYear(int yy)
{
    const int now = QDate::currentDate().year();
    int year = now / 100 * 100 + yy;
    if (year - now > 50)
        year -= 100;
    else if (now - year > 49)
        year += 100;
    return year;
}

} // namespace

std::optional<QString> Gs1ElementString::value(const QString& ai) const
{
    for (const Gs1Element& e : elements)
        if (e.ai == ai)
            return e.value;
    return std::nullopt;
}

Gs1ElementString ParseGs1ElementString(const QString& scan)
{
    Gs1ElementString result;
    Reader reader(result);
    if (scan.size() >= 3 && kSymbologyIds.contains(scan.left(3))) {
        result.form = Gs1ElementString::Form::SymbologyId;
        reader.readTransmitted(QStringView(scan).mid(3));
    } else if (!scan.isEmpty() && isGs(scan.at(0))) {
        result.form = Gs1ElementString::Form::LeadingFnc1;
        reader.readTransmitted(scan);
    } else {
        QString ai;
        if (Reader::closingOfAi(scan, 0, &ai) < 0)
            return result;   // a plain code
        result.form = Gs1ElementString::Form::HumanReadable;
        reader.readHumanReadable(scan);
    }
    if (!result.error.isEmpty())
        result.elements.clear();
    return result;
}

QString FormatGs1Transmitted(const QList<Gs1Element>& elements)
{
    QString text = QStringLiteral("]C1");
    for (qsizetype i = 0; i < elements.size(); ++i) {
        text += elements[i].ai + elements[i].value;
        const AiSpec* spec = specOf(elements[i].ai);
        if (spec && !spec->fixed && i + 1 < elements.size())
            text += QChar(Gs1GroupSeparator);
    }
    return text;
}

QString FormatGs1HumanReadable(const QList<Gs1Element>& elements)
{
    QString text;
    for (const Gs1Element& e : elements)
        text += QLatin1Char('(') + e.ai + QLatin1Char(')') + e.value;
    return text;
}

bool Gs1CheckDigitValid(const QString& digits)
{
    if (digits.size() < 2)
        return false;
    int sum = 0;
    // Weights 3, 1, 3, ... from the digit left of the check digit.
    for (qsizetype i = digits.size() - 2, weight = 3; i >= 0; --i, weight = 4 - weight) {
        if (!isDigit(digits.at(i)))
            return false;
        sum += (digits.at(i).unicode() - '0') * int(weight);
    }
    const QChar check = digits.back();
    return isDigit(check) && (10 - sum % 10) % 10 == check.unicode() - '0';
}

bool Gs1DateValid(const QString& yymmdd)
{
    if (yymmdd.size() != 6)
        return false;
    for (QChar c : yymmdd)
        if (!isDigit(c))
            return false;
    const int yy = yymmdd.left(2).toInt();
    const int mm = yymmdd.mid(2, 2).toInt();
    const int dd = yymmdd.mid(4, 2).toInt();
    if (mm < 1 || mm > 12)
        return false;
    return dd <= daysInMonth(fullYear(yy), mm);
}

QStringList Gs1GtinCandidates(const QString& gtin14)
{
    QStringList candidates{gtin14};
    if (gtin14.size() != 14)
        return candidates;
    for (int length : {13, 12, 8}) {
        const qsizetype dropped = 14 - length;
        bool zeros = true;
        for (qsizetype i = 0; i < dropped; ++i)
            zeros = zeros && gtin14.at(i) == QLatin1Char('0');
        if (zeros)
            candidates << gtin14.right(length);
    }
    return candidates;
}

// Where a scan field has turned GS into its sign, the date and the table
// above read the same text.
