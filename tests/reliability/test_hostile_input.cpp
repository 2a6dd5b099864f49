// Hostile input through the real widgets: typed key by key, pasted with
// Ctrl+V, dropped. Whatever comes in, every statement the station sends keeps
// the scanned code inside one quoted literal, the worker gets a clear message
// (or nothing happens, where an empty scan means nothing), and a refused input,
// like a call that fails, leaves the order's counts exactly as they were.
#include "reliability/reliability_station.h"

namespace {

const QString kMarker = QStringLiteral("Zq7");
const QString kUnknownGoods = QStringLiteral("找不到相应的发货单或商品");
const QString kUnknownOrder = QStringLiteral("找不到物流单号/唯一码/商品条码/序列号");
const QString kNotNumeric = QStringLiteral("商品数量只能为数值！");

// Each holds the marker, so that the statements that carry it can be found.
const char32_t kWide[] = {0x1F600, 0x20000};
const QStringList kPayloads{
    kMarker + QStringLiteral("' OR '1'='1\u2019; drop table t_ICItem; \u2018\u02BC\uFF07"),
    kMarker + QStringLiteral("\u0001\t\r\n\u007F\u200B\u202E\u2028\uFEFFend"),
    QStringLiteral("  ") + kMarker + QStringLiteral("%_[a-z]^\\ -- /* 商品１２３") + QString::fromUcs4(kWide, 2)
        + QStringLiteral("  "),
    kMarker + QString(9997, QLatin1Char('A')),
};

} // namespace

class HostileInputTest : public ReliabilityStationTest {
protected:
    enum class Path { Typed, Pasted, Dropped };

    void enter(QLineEdit* field, const QString& text, Path path)
    {
        if (path == Path::Pasted)
            paste(field, text);
        else if (path == Path::Dropped)
            drop(field, text);
        else
            type(field, text);
        press(field, Qt::Key_Return);
    }

    // Every statement sent to the middle tier since the last call carries the
    // code as one literal, whole.
    void expectCodeStaysOneLiteral(const QString& code)
    {
        int carried = 0;
        for (const HostCall& call : m_faults.calls().mid(m_seenCalls)) {
            if (!call.key.contains(QStringLiteral("SQL")))   // statements only
                continue;
            QStringList literals;
            ASSERT_TRUE(SplitTsqlLiterals(call.detail, &literals)) << call.detail.left(300).toStdString();
            EXPECT_EQ(call.detail.count(kMarker), literals.filter(kMarker).size())
                << "the code outside its quotes: " << call.detail.left(400).toStdString();
            for (const QString& literal : literals.filter(kMarker)) {
                EXPECT_EQ(literal, code);
                ++carried;
            }
        }
        m_seenCalls = m_faults.calls().size();
        EXPECT_GT(carried, 0) << "the code never reached a statement";
    }

    int m_seenCalls = 0;
};

TEST_F(HostileInputTest, HostileInputInEveryFieldAndFailingCallsCountNothing)
{
    frmPickigGoods& f = open();
    scan(controls(f).TxtID, QStringLiteral("10001"));
    scan(controls(f).TxtItemID, barcodeOf(1001));
    const QString counted = snapshot();

    // Empty and blank scans: nothing is looked up, nothing changes.
    for (const QString& blank : {QString(), QStringLiteral("    ")}) {
        for (ScanLineEdit* field : {controls(f).TxtItemID, controls(f).TxtEmployee}) {
            SCOPED_TRACE(field->objectName().toStdString() + " [" + blank.toStdString() + "]");
            m_seenCalls = m_faults.calls().size();
            controls(f).lblMessage->clear();
            enter(field, blank, Path::Typed);
            EXPECT_EQ(m_faults.calls().size(), m_seenCalls) << "a blank scan reached the middle tier";
            EXPECT_EQ(controls(f).lblMessage->text(), QString());
            EXPECT_EQ(snapshot(), counted);
        }
    }

    // Codes that are no goods (as barcodes, then as serials) and no order:
    // not found, no box, nothing counted. An order code leaves the order,
    // which comes back as it was, its verdict logged once.
    const QStringList targets{QStringLiteral("barcode"), QStringLiteral("serial"), QStringLiteral("order")};
    for (const QString& target : targets) {
        QLineEdit* field = target == targets[2] ? controls(f).TxtID : controls(f).TxtItemID;
        if (target != targets[0]) {
            // Into serial mode and back; the order comes back from the session log.
            click(controls(f).chkHaveSerial);
            scan(controls(f).TxtID, QStringLiteral("10001"));
        }
        const QString before = snapshot();
        ASSERT_EQ(controls(f).lblPickedNum->text(), QStringLiteral("1/4"));
        for (const QString& payload : kPayloads) {
            for (Path path : {Path::Typed, Path::Pasted, Path::Dropped}) {
                SCOPED_TRACE(target.toStdString() + " path " + std::to_string(int(path)) + ": "
                             + payload.left(30).toStdString());
                if (path == Path::Typed && payload.size() > 1000 && target != targets[0])
                    continue;   // the long code is typed key by key once
                m_seenCalls = m_faults.calls().size();
                m_rec->voices.clear();
                m_rec->boxes.clear();
                controls(f).lblMessage->clear();
                enter(field, payload, path);
                EXPECT_EQ(controls(f).lblMessage->text(), target == targets[2] ? kUnknownOrder : kUnknownGoods);
                EXPECT_TRUE(m_rec->boxes.isEmpty()) << boxTexts().join(QLatin1Char('\n')).toStdString();
                expectCodeStaysOneLiteral(ScanLineEdit::cleaned(payload).trimmed());
                if (target == targets[2]) {
                    EXPECT_EQ(controls(f).lblOrderNum->text(), QStringLiteral("0"));
                    scan(field, QStringLiteral("10001"));
                } else {
                    EXPECT_EQ(m_rec->voices, QStringList{QStringLiteral("\\voice\\findGoods.wav")});
                    EXPECT_EQ(controls(f).TxtNum->text(), QStringLiteral("1"));
                    EXPECT_TRUE(field->hasFocus());
                }
                EXPECT_EQ(snapshot(), before);
            }
        }
    }

    // A real barcode with quotes around it is that barcode: the quotes are just gone.
    enter(controls(f).TxtItemID, QStringLiteral("'") + barcodeOf(1008) + QStringLiteral("\u2019"), Path::Pasted);
    EXPECT_EQ(controls(f).lblPickedNum->text(), QStringLiteral("2/4"));
    const QString picked = snapshot();

    // Quantities: anything but a whole number of pieces is refused before a
    // line is touched, and said.
    for (const QString& quantity : {QStringLiteral("2' OR '1'='1"), QStringLiteral("\u0662"), QStringLiteral("-3"),
                                    QStringLiteral("99999"), kMarker + QString(9997, QLatin1Char('9'))}) {
        SCOPED_TRACE("TxtNum [" + quantity.left(20).toStdString() + "]");
        m_rec->boxes.clear();
        controls(f).lblMessage->clear();
        type(controls(f).TxtItemID, barcodeOf(1014));
        enter(controls(f).TxtNum, quantity, Path::Pasted);
        EXPECT_EQ(snapshot(), picked);
        EXPECT_TRUE(m_rec->boxes.isEmpty()) << boxTexts().join(QLatin1Char('\n')).toStdString();
        EXPECT_EQ(controls(f).lblMessage->text(), kNotNumeric);
    }
    type(controls(f).TxtNum, QStringLiteral("1"));

    // A call that fails in the middle of the order counts nothing either and
    // is said once: the goods lookup of a scan and of a typed quantity, the
    // order lookup of a code that is no goods, the verdict of the order left.
    const QString executeSql = HostFaultInjector::key(ProgIds::GetData, "ExecuteSQL");
    const QString header = HostFaultInjector::key(ProgIds::WebOrderInfo, "GetSingleSQLData");
    using Failing = std::tuple<QString, QLineEdit*, QString>;
    for (const auto& [key, field, code] : {Failing{executeSql, controls(f).TxtItemID, barcodeOf(1014)},
                                           Failing{executeSql, controls(f).TxtNum, QStringLiteral("2")},
                                           Failing{header, controls(f).TxtItemID, QStringLiteral("6930000000000")},
                                           Failing{executeSql, controls(f).TxtID, QStringLiteral("10018")}}) {
        SCOPED_TRACE("failing " + key.toStdString() + " after " + code.toStdString());
        m_rec->boxes.clear();
        m_faults.arm(key, m_faults.count(key) + 1);
        if (field == controls(f).TxtNum)
            type(controls(f).TxtItemID, barcodeOf(1014));
        scan(field, code);
        EXPECT_EQ(faultBoxes().size(), 1) << boxTexts().join(QLatin1Char('\n')).toStdString();
        EXPECT_EQ(snapshot(), picked);
        EXPECT_EQ(controls(f).TxtNum->text(), QStringLiteral("1"));
    }

    // The employee field takes any text but never runs a statement on it.
    const QString employee = controls(f).TxtEmployee->text();
    m_seenCalls = m_faults.calls().size();
    for (const QString& payload : kPayloads) {
        enter(controls(f).TxtEmployee, payload, Path::Pasted);
        EXPECT_EQ(controls(f).TxtEmployee->text(), ScanLineEdit::cleaned(payload)) << payload.left(30).toStdString();
    }
    EXPECT_EQ(m_faults.calls().size(), m_seenCalls);
    controls(f).TxtEmployee->setText(employee);

    // A scan of refused characters only (a lone quote) scans nothing: not the
    // code still standing in the goods field, from that field or the
    // quantity's, nor the order standing in the order field once it passed
    // (no verdict logged twice, no prompt, the focus stays).
    for (int round = 0; round < 2; ++round) {
        if (round == 1) {
            scan(controls(f).TxtItemID, barcodeOf(1014));
            scan(controls(f).TxtItemID, barcodeOf(1014));
            ASSERT_TRUE(controls(f).ImgSuccess->isVisible());
            EXPECT_EQ(pickingOf(QStringLiteral("10001")), QStringLiteral("1/201"));
        }
        for (ScanLineEdit* field : {controls(f).TxtItemID, controls(f).TxtNum, controls(f).TxtID}) {
            SCOPED_TRACE("lone quote in " + field->objectName().toStdString() + " round " + std::to_string(round));
            const QString before = snapshot();
            m_rec->voices.clear();
            scan(field, QStringLiteral("'"));
            EXPECT_EQ(snapshot(), before);
            EXPECT_TRUE(m_rec->voices.isEmpty()) << m_rec->voices.join(QLatin1Char(' ')).toStdString();
            EXPECT_TRUE((field == controls(f).TxtNum ? controls(f).TxtItemID : field)->hasFocus());
        }
    }
}
