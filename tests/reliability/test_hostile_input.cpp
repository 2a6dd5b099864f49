// Hostile input through the real widgets: typed key by key, pasted with
// Ctrl+V, dropped. Whatever comes in, every statement the station sends keeps
// the scanned code inside one quoted literal, the worker gets a clear message
// (or nothing happens, where an empty scan means nothing), and a refused input
// leaves the order's counts exactly as they were.
#include "reliability/reliability_station.h"

namespace {

const QString kMarker = QStringLiteral("Zq7");
const QString kUnknownGoods = QStringLiteral("找不到相应的发货单或商品");
const QString kUnknownOrder = QStringLiteral("找不到物流单号/唯一码/商品条码/序列号");
const QString kNotNumeric = QStringLiteral("商品数量只能为数值！");

struct Payload {
    const char* name;
    QString text;
};

QString nonBmp(char32_t codePoint) { return QString::fromUcs4(&codePoint, 1); }

// Each holds the marker, so the statements that carry it can be found.
QList<Payload> hostilePayloads()
{
    return {
        {"quotes", kMarker + QStringLiteral("' OR '1'='1")},
        {"quote look-alikes", kMarker + QStringLiteral("\u2019; drop table t_ICItem; \u2018\u02BC\uFF07\u2032\u201B")},
        {"control and format characters", kMarker + QStringLiteral("\u0001\u0002\t\r\n\u007F\u200B\u202E\u2028\u2029\uFEFFend")},
        {"comment markers", kMarker + QStringLiteral(" -- x /* y */ z")},
        {"statement separator", kMarker + QStringLiteral("; delete from IC_Web2ERPOrders; select 1")},
        {"non-BMP characters", kMarker + nonBmp(0x1F600) + nonBmp(0x20000) + QStringLiteral("end") + nonBmp(0x2A6D6)},
        {"wildcards and brackets", kMarker + QStringLiteral("%_[a-z]^\\\"")},
        {"blanks around", QStringLiteral("   ") + kMarker + QStringLiteral("  x  ")},
        {"CJK and full-width", kMarker + QStringLiteral("商品１２３＃")},
        {"very long", kMarker + QString(9997, QLatin1Char('A'))},
    };
}

} // namespace

class HostileInputTest : public ReliabilityStationTest {
protected:
    enum class Path { Typed, Pasted, Dropped };

    void enter(QLineEdit* field, const QString& text, Path path)
    {
        switch (path) {
        case Path::Typed:
            scan(field, text);
            break;
        case Path::Pasted:
            paste(field, text);
            break;
        case Path::Dropped:
            drop(field, text);
            press(field, Qt::Key_Return);
            break;
        }
    }

    // Every statement sent to the middle tier since the last call carries the
    // code as one literal, whole. (What the bridge makes of such a statement
    // is fuzzed.)
    void expectCodeStaysOneLiteral(const QString& code, const std::string& trace)
    {
        SCOPED_TRACE(trace);
        int carried = 0;
        for (const HostCall& call : m_faults.calls().mid(m_seenCalls)) {
            if (!call.key.endsWith(QStringLiteral(".ExecuteSQL")) && !call.key.endsWith(QStringLiteral(".GetSingleSQLData")))
                continue;
            QStringList literals;
            QString shape;
            ASSERT_TRUE(SplitTsqlLiterals(call.detail, &literals, &shape)) << "a literal left open: " << call.detail.left(300).toStdString();
            EXPECT_FALSE(shape.contains(kMarker)) << "the code outside its quotes: " << shape.left(400).toStdString();
            for (const QString& literal : literals) {
                EXPECT_FALSE(literal.contains(QLatin1Char('\''))) << literal.left(200).toStdString();
                if (literal.contains(kMarker)) {
                    EXPECT_EQ(literal, code);
                    ++carried;
                }
            }
        }
        m_seenCalls = m_faults.calls().size();
        if (!code.isEmpty()) {
            EXPECT_GT(carried, 0) << "the code never reached a statement";
        }
    }

    void skipCallsSoFar() { m_seenCalls = m_faults.calls().size(); }

    int tableCount() const { return dbValue(QStringLiteral("SELECT COUNT(*) FROM sqlite_master WHERE type = 'table'")).toInt(); }

    int m_seenCalls = 0;
};

TEST_F(HostileInputTest, HostileGoodsAndOrderCodesAreAnsweredAndCountNothing)
{
    frmPickigGoods& f = open();
    scan(controls(f).TxtID, QStringLiteral("10001"));
    scan(controls(f).TxtItemID, barcodeOf(1001));
    const StationSnapshot counted = snapshot();
    ASSERT_EQ(counted.pickedNum, QStringLiteral("1/4"));
    const int tables = tableCount();
    const int orders = dbValue(QStringLiteral("SELECT COUNT(*) FROM IC_Web2ERPOrders")).toInt();

    for (bool serial : {false, true}) {
        if (serial != controls(f).chkHaveSerial->isChecked()) {
            click(controls(f).chkHaveSerial);
            scan(controls(f).TxtID, QStringLiteral("10001"));   // the order comes back from the session log
        }
        const StationSnapshot before = snapshot();
        ASSERT_EQ(before.lines, counted.lines);
        for (const Payload& p : hostilePayloads()) {
            for (Path path : {Path::Typed, Path::Pasted, Path::Dropped}) {
                const std::string trace = std::string(p.name) + (serial ? " serial" : " barcode") + " path " + std::to_string(int(path));
                SCOPED_TRACE(trace);
                if (path == Path::Typed && p.text.size() > 1000 && serial)
                    continue;   // the long code is typed key by key once
                skipCallsSoFar();
                m_rec->voices.clear();
                m_rec->boxes.clear();
                controls(f).lblMessage->clear();
                enter(controls(f).TxtItemID, p.text, path);
                EXPECT_EQ(controls(f).lblMessage->text(), kUnknownGoods);
                EXPECT_EQ(m_rec->voices, QStringList{QStringLiteral("\\voice\\findGoods.wav")});
                EXPECT_TRUE(m_rec->boxes.isEmpty()) << boxTexts().join(QLatin1Char('\n')).toStdString();
                EXPECT_EQ(snapshot(), before);
                EXPECT_EQ(controls(f).TxtNum->text(), QStringLiteral("1"));
                EXPECT_TRUE(controls(f).TxtItemID->hasFocus());
                expectCodeStaysOneLiteral(ScanLineEdit::cleaned(p.text).trimmed(), trace);
            }
        }
    }

    // A real barcode with a quote around it is that barcode: the quote is just gone.
    click(controls(f).chkHaveSerial);
    scan(controls(f).TxtID, QStringLiteral("10001"));
    paste(controls(f).TxtItemID, QStringLiteral("'") + barcodeOf(1008) + QStringLiteral("\u2019"));
    EXPECT_EQ(controls(f).lblPickedNum->text(), QStringLiteral("2/4"));
    // A scan of refused characters only (a lone quote) scans nothing: not the
    // code still standing in the goods field, from that field or the quantity's.
    for (ScanLineEdit* field : {controls(f).TxtItemID, controls(f).TxtNum}) {
        SCOPED_TRACE("lone quote in " + field->objectName().toStdString());
        const StationSnapshot before = snapshot();
        m_rec->voices.clear();
        scan(field, QStringLiteral("'"));
        EXPECT_EQ(snapshot(), before);
        EXPECT_TRUE(m_rec->voices.isEmpty()) << m_rec->voices.join(QLatin1Char(' ')).toStdString();
    }
    const StationSnapshot picked = snapshot();
    ASSERT_EQ(picked.pickedNum, QStringLiteral("2/4"));

    // Order codes: not found, and the order left had its verdict logged and
    // comes back as it was.
    for (const Payload& p : hostilePayloads()) {
        for (Path path : {Path::Typed, Path::Pasted}) {
            const std::string trace = std::string(p.name) + " order path " + std::to_string(int(path));
            SCOPED_TRACE(trace);
            if (path == Path::Typed && p.text.size() > 1000)
                continue;
            skipCallsSoFar();
            m_rec->boxes.clear();
            enter(controls(f).TxtID, p.text, path);
            EXPECT_EQ(controls(f).lblMessage->text(), kUnknownOrder);
            EXPECT_EQ(controls(f).lblOrderNum->text(), QStringLiteral("0"));
            EXPECT_TRUE(m_rec->boxes.isEmpty()) << boxTexts().join(QLatin1Char('\n')).toStdString();
            expectCodeStaysOneLiteral(ScanLineEdit::cleaned(p.text).trimmed(), trace);
            scan(controls(f).TxtID, QStringLiteral("10001"));
            const StationSnapshot back = snapshot();
            EXPECT_EQ(back.lines, picked.lines);
            EXPECT_EQ(back.pickedNum, picked.pickedNum);
            EXPECT_EQ(back.picked, picked.picked);
            EXPECT_EQ(back.sessionEntries, 1);
        }
    }
    EXPECT_EQ(tableCount(), tables);
    EXPECT_EQ(dbValue(QStringLiteral("SELECT COUNT(*) FROM IC_Web2ERPOrders")).toInt(), orders);

    // A lone quote in the order field of a passed order takes nothing up
    // again: no verdict logged twice, no prompt, the focus stays.
    scan(controls(f).TxtItemID, barcodeOf(1014));
    scan(controls(f).TxtItemID, barcodeOf(1014));
    ASSERT_TRUE(controls(f).ImgSuccess->isVisible());
    const StationSnapshot passed = snapshot();
    m_rec->voices.clear();
    scan(controls(f).TxtID, QStringLiteral("'"));
    EXPECT_EQ(snapshot(), passed);
    EXPECT_TRUE(m_rec->voices.isEmpty()) << m_rec->voices.join(QLatin1Char(' ')).toStdString();
    EXPECT_TRUE(controls(f).TxtID->hasFocus());
}

TEST_F(HostileInputTest, EmptyBlankAndHostileEntriesInEveryFieldAreRefusedOrIgnored)
{
    frmPickigGoods& f = open();
    scan(controls(f).TxtID, QStringLiteral("10001"));
    scan(controls(f).TxtItemID, barcodeOf(1001));
    const StationSnapshot counted = snapshot();
    const QString employee = controls(f).TxtEmployee->text();

    // Empty and blank scans: nothing is looked up, nothing changes.
    for (const QString& blank : {QString(), QStringLiteral("    ")}) {
        for (ScanLineEdit* field : {controls(f).TxtItemID, controls(f).TxtEmployee}) {
            SCOPED_TRACE(field->objectName().toStdString() + " [" + blank.toStdString() + "]");
            skipCallsSoFar();
            controls(f).lblMessage->clear();
            enter(field, blank, Path::Typed);
            EXPECT_EQ(m_faults.calls().size(), m_seenCalls) << "a blank scan reached the middle tier";
            EXPECT_EQ(controls(f).lblMessage->text(), QString());
            EXPECT_EQ(snapshot(), counted);
        }
    }
    // A blank order code logs the verdict of the order on the station and loads nothing.
    scan(controls(f).TxtID, QStringLiteral("   "));
    EXPECT_EQ(f.pickingState().CurrentOrderCode(), QStringLiteral("10001"));
    EXPECT_EQ(snapshot().lines, counted.lines);
    EXPECT_EQ(f.pickingState().SessionOrderLog().Count(), 1);
    const StationSnapshot logged = snapshot();
    EXPECT_EQ(logged.missing, 3);

    // Quantities: anything but a whole number of pieces is refused before a
    // line is touched. Typed key by key, each refused key empties the field at
    // once, so only texts that stay refused to the end are typed here.
    const QString barcode = barcodeOf(1008);
    struct Quantity {
        QString text;
        bool typed;
    };
    const QList<Quantity> quantities{
        {QString(), true}, {QStringLiteral("   "), true}, {QStringLiteral("x"), true}, {QStringLiteral("\u0662"), true},
        {QStringLiteral("2' OR '1'='1"), false}, {QStringLiteral("-3"), false}, {QStringLiteral("0"), false},
        {QStringLiteral("2.5"), false}, {QStringLiteral("99999"), false}, {QStringLiteral("1e9"), false},
        {kMarker + QString(9997, QLatin1Char('9')), false}};
    for (const Quantity& q : quantities) {
        for (Path path : {Path::Typed, Path::Pasted}) {
            if (path == Path::Typed && !q.typed)
                continue;
            SCOPED_TRACE("TxtNum [" + q.text.left(20).toStdString() + "] path " + std::to_string(int(path)));
            m_rec->boxes.clear();
            controls(f).lblMessage->clear();
            type(controls(f).TxtItemID, barcode);
            if (path == Path::Typed) {
                type(controls(f).TxtNum, q.text);
            } else {
                paste(controls(f).TxtNum, q.text, false);
            }
            press(controls(f).TxtNum, Qt::Key_Return);
            EXPECT_EQ(snapshot(), logged);
            EXPECT_TRUE(m_rec->boxes.isEmpty()) << boxTexts().join(QLatin1Char('\n')).toStdString();
            // The refusal is still said once Enter is pressed.
            EXPECT_EQ(controls(f).lblMessage->text(), kNotNumeric);
        }
    }
    // The employee field takes any text but never runs a statement on it.
    skipCallsSoFar();
    for (const Payload& p : hostilePayloads()) {
        paste(controls(f).TxtEmployee, p.text);
        EXPECT_EQ(controls(f).TxtEmployee->text(), ScanLineEdit::cleaned(p.text)) << p.name;
    }
    EXPECT_EQ(m_faults.calls().size(), m_seenCalls);
    EXPECT_EQ(snapshot(), logged);
    // The order goes on where it was, once the worker types a quantity again
    // (a refused one leaves the field empty, and an empty quantity scans nothing).
    controls(f).TxtEmployee->setText(employee);
    EXPECT_EQ(controls(f).TxtNum->text(), QString());
    scan(controls(f).TxtItemID, barcode);
    EXPECT_EQ(controls(f).lblMessage->text(), kNotNumeric);
    EXPECT_EQ(snapshot(), logged);
    type(controls(f).TxtNum, QStringLiteral("1"));
    scan(controls(f).TxtItemID, barcode);
    EXPECT_EQ(controls(f).lblPickedNum->text(), QStringLiteral("2/4"));
    type(controls(f).TxtItemID, barcodeOf(1014));
    paste(controls(f).TxtNum, QStringLiteral("2"), false);
    press(controls(f).TxtNum, Qt::Key_Return);
    EXPECT_EQ(controls(f).lblPickedNum->text(), QStringLiteral("4/4"));
    EXPECT_TRUE(controls(f).ImgSuccess->isVisible());

    // What a field keeps of any text is fuzzed; the keyboard is not: the quote
    // key and its look-alikes never show, whatever the field.
    for (ScanLineEdit* field : {controls(f).TxtEmployee, controls(f).TxtID, controls(f).TxtItemID, controls(f).TxtNum}) {
        type(field, QStringLiteral("1'2\u20193\uFF074"));
        EXPECT_EQ(field->text(), QStringLiteral("1234")) << field->objectName().toStdString();
    }
}
