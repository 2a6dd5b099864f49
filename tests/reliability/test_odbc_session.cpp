// A whole station session through the production engine's path (QODBC,
// unixODBC, the SQLite ODBC driver) gives exactly what the embedded engine
// gives: the same screens after every step, the same rows written, the same
// calls to the middle tier. (That a serial batch is one transaction on both
// engines: OdbcOutageTest.)
#include "reliability/engine_station.h"
#include <QRegularExpression>

namespace {

QString valueText(const QVariant& value)
{
    if (value.isNull())
        return QStringLiteral("NULL");
    return value.toString() + QLatin1Char('<') + QLatin1String(value.typeName()) + QLatin1Char('>');
}

} // namespace

class OdbcSessionTest : public EngineStationTest {
protected:
    struct Session {
        QStringList screens;                        // one per step
        QStringList database;                       // what the session left in the tables it writes
        QList<HostCall> calls;                      // every call to a host object
        QString firstGoodsName;                     // of the first order, as loaded
        QString firstGoodsNameOnFile;
    };

    // What a worker sees and what the station holds after a step.
    QString screen(const QString& step)
    {
        const frmPickigGoods& f = *m_form;
        QStringList s{step,
                      QStringLiteral("order=") + f.pickingState().CurrentOrderCode(),
                      QStringLiteral("TxtID=") + controls(f).TxtID->text(),
                      QStringLiteral("TxtItemID=") + controls(f).TxtItemID->text(),
                      QStringLiteral("TxtNum=") + controls(f).TxtNum->text(),
                      QStringLiteral("TxtEmployee=") + controls(f).TxtEmployee->text(),
                      QStringLiteral("webshop=") + controls(f).txtWebshop->text(),
                      QStringLiteral("message=") + controls(f).lblMessage->text(),
                      QStringLiteral("info=") + controls(f).lblPickInfo->text(),
                      QStringLiteral("total=") + controls(f).lblOrderNum->text(),
                      QStringLiteral("picked=") + controls(f).lblPickedNum->text(),
                      QStringLiteral("counts=%1/%2/%3/%4").arg(f.pickingState().pickedNum()).arg(f.pickingState().excessNum()).arg(f.pickingState().errorNum()).arg(f.pickingState().missingNum()),
                      QStringLiteral("passed=%1").arg(controls(f).ImgSuccess->isVisible()),
                      QStringLiteral("view=") + (f.IsGridView() ? QStringLiteral("grid") : QStringLiteral("tiles")),
                      QStringLiteral("options=%1%2%3").arg(controls(f).chkBarCode->isChecked()).arg(controls(f).chkHaveSerial->isChecked()).arg(int(controls(f).chkShowText->checkState()))};
        const RecordList lines = GetGoodsLineSet();
        for (int i = 0; !lines.isNone() && i < lines.Count(); ++i) {
            const GoodsRecord line = lines.Item(i);
            QStringList entries;
            for (int k = 0; k < line.Count(); ++k)
                entries << line.KeyAt(k) + QLatin1Char('=') + valueText(line.ValueAt(k));
            s << QStringLiteral("line: ") + entries.join(QLatin1Char(' '));
        }
        for (const QString& row : controls(f).LogList1->allRowTexts())
            s << QStringLiteral("log: ") + row;
        for (const ShownBox& box : m_rec->boxes)
            s << QStringLiteral("box: %1: %2 (%3)").arg(box.title, box.text).arg(box.flags);
        s << QStringLiteral("voices: ") + m_rec->voices.join(QLatin1Char(' '));
        m_rec->boxes.clear();
        m_rec->voices.clear();
        return s.join(QLatin1Char('\n'));
    }

    // The rows the session writes; quote() tells text ('1') from numbers (1).
    QStringList databaseText() const
    {
        return {
            dbValue(QStringLiteral(
                "SELECT group_concat(r, ' ') FROM (SELECT FUniqueCode || ':' || quote(FPIckingGoodsStatus) || '/' || quote(FPickingGoodMan)"
                " || '/' || quote(FDeliveryStatus) || '/' || CASE WHEN FSendDate IS NULL THEN 'NULL'"
                " WHEN FSendDate GLOB '[0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9]T[0-9][0-9]:*' THEN 'now' ELSE quote(FSendDate) END AS r"
                " FROM IC_Web2ERPOrders ORDER BY FID)"))
                .toString(),
            dbValue(QStringLiteral(
                "SELECT group_concat(r, ' ') FROM (SELECT quote(FID) || '|' || quote(FEntryID) || '|' || quote(FSerialNumber) || '|'"
                " || quote(FBatchNo) || '|' || quote(FStockID) || '|' || quote(FStockPlace) || '|' || quote(FSerialID) || '|'"
                " || quote(FKFDate) || '|' || quote(FKFPeriod) AS r FROM IC_Web2ErpOrderSerial ORDER BY r)"))
                .toString(),
            dbValue(QStringLiteral(
                "SELECT group_concat(r, ' ') FROM (SELECT quote(FUserID) || '|' || quote(FCategory) || '|' || quote(FKey) || '|'"
                " || quote(FName) || '|' || quote(FValue) AS r FROM t_UserProfile ORDER BY r)"))
                .toString(),
        };
    }

    QString barcode(int itemId) const { return barcodeOf(itemId); }

    Session runSession(StationEngine engine)
    {
        Session session;
        useEngine(engine);
        m_faults.resetCounts();
        m_rec->boxes.clear();
        m_rec->voices.clear();
        auto step = [&](const QString& label, const std::function<void()>& action) {
            action();
            session.screens << screen(label);
        };

        frmPickigGoods* f = &open();
        session.screens << screen(QStringLiteral("open"));
        // goods with Chinese names, passed and sent for delivery
        step(QStringLiteral("order 10001"), [&] { scan(controls(f).TxtID, QStringLiteral("10001")); });
        if (!GetGoodsLineSet().isNone() && GetGoodsLineSet().Count() > 0) {
            session.firstGoodsName = GetGoodsLineSet().Item(0).GetValue(QStringLiteral("GoodsName")).toString();
            session.firstGoodsNameOnFile = dbValue(QStringLiteral("SELECT FName FROM t_ICItem WHERE FItemID = 1001")).toString();
        }
        for (int item : {1001, 1008, 1014, 1014})
            step(QStringLiteral("goods %1").arg(item), [&] { scan(controls(f).TxtItemID, barcode(item)); });
        // a serial order: its rows in one batch
        step(QStringLiteral("serial mode"), [&] { click(controls(f).chkHaveSerial); });
        step(QStringLiteral("order 10021"), [&] { scan(controls(f).TxtID, QStringLiteral("10021")); });
        for (const QString& serial : {QStringLiteral("W1-0001"), QStringLiteral("W1-0002"), QStringLiteral("PAD-0001")})
            step(serial, [&] { scan(controls(f).TxtItemID, serial); });
        // re-pick: the rows are replaced, not added to
        step(QStringLiteral("re-pick"), [&] { click(controls(f).CmdBtnRePick); });
        for (const QString& serial : {QStringLiteral("W1-0003"), QStringLiteral("W1-0001"), QStringLiteral("PAD-0002")})
            step(serial, [&] { scan(controls(f).TxtItemID, serial); });
        step(QStringLiteral("barcode mode"), [&] { click(controls(f).chkHaveSerial); });
        // NULLs: an item without a row, a web shop without a name, goods without barcode
        step(QStringLiteral("order 10010"), [&] { scan(controls(f).TxtID, QStringLiteral("10010")); });
        step(QStringLiteral("order 10020"), [&] { scan(controls(f).TxtID, QStringLiteral("10020")); });
        step(QStringLiteral("goods 1039"), [&] { scan(controls(f).TxtItemID, barcode(1039)); });
        // quantities, goods of another order
        step(QStringLiteral("order 10002"), [&] { scan(controls(f).TxtID, QStringLiteral("10002")); });
        step(QStringLiteral("quantity 3"), [&] { type(controls(f).TxtNum, QStringLiteral("3")); });
        step(QStringLiteral("goods 1005"), [&] { scan(controls(f).TxtItemID, barcode(1005)); });
        step(QStringLiteral("foreign goods"), [&] { scan(controls(f).TxtItemID, barcode(1013)); });
        step(QStringLiteral("goods 1016"), [&] { scan(controls(f).TxtItemID, barcode(1016)); });
        // the options are saved at the close and read back at the next start
        step(QStringLiteral("grid"), [&] { click(controls(f).chkShowText); });
        step(QStringLiteral("all goods"), [&] { click(controls(f).chkBarCode); });
        m_guard.run([&] { closeStation(); }, QStringLiteral("close"));
        session.screens << QStringLiteral("closed=%1").arg(!m_form->isVisible());
        f = &open();
        session.screens << screen(QStringLiteral("reopened"));
        step(QStringLiteral("order 10011"), [&] { scan(controls(f).TxtID, QStringLiteral("10011")); });
        step(QStringLiteral("order 10006"), [&] { scan(controls(f).TxtID, QStringLiteral("10006")); });
        m_guard.run([&] { closeStation(); }, QStringLiteral("close"));

        session.calls = m_faults.calls();
        session.database = databaseText();
        SqlEngine::closeAll();
        return session;
    }
};

TEST_F(OdbcSessionTest, AWholeSessionThroughOdbcGivesWhatTheEmbeddedEngineGives)
{
    const QString reason = unavailableReason(StationEngine::SqliteOdbc);
    if (!reason.isEmpty())
        GTEST_SKIP() << "ODBC session not run: " << reason.toStdString();

    const Session embedded = runSession(StationEngine::Embedded);
    const Session odbc = runSession(StationEngine::SqliteOdbc);

    // The embedded run is the reference: check that it is the session meant.
    ASSERT_EQ(embedded.screens.size(), odbc.screens.size());
    EXPECT_FALSE(embedded.firstGoodsName.isEmpty());
    EXPECT_EQ(embedded.firstGoodsName, embedded.firstGoodsNameOnFile);
    EXPECT_EQ(odbc.firstGoodsName, odbc.firstGoodsNameOnFile);
    EXPECT_TRUE(odbc.firstGoodsName.contains(QRegularExpression(QStringLiteral("\\p{Han}")))) << odbc.firstGoodsName.toStdString();

    // Every screen, line by line.
    for (int i = 0; i < embedded.screens.size(); ++i)
        EXPECT_EQ(odbc.screens[i], embedded.screens[i]) << "step " << i;

    // The same rows written, and the ones meant.
    EXPECT_EQ(odbc.database, embedded.database);
    ASSERT_EQ(odbc.database.size(), 3);
    for (const QString& order : {QStringLiteral("10001"), QStringLiteral("10021"), QStringLiteral("10002")})
        EXPECT_TRUE(odbc.database[0].contains(order + QStringLiteral(":1/201/1/now"))) << odbc.database[0].toStdString();
    const QStringList serialRows = odbc.database[1].split(QLatin1Char(' '));
    ASSERT_EQ(serialRows.size(), 3) << odbc.database[1].toStdString();
    EXPECT_TRUE(serialRows[0].startsWith(QStringLiteral("0|53|'W1-0001'|"))) << serialRows[0].toStdString();
    EXPECT_TRUE(serialRows[1].startsWith(QStringLiteral("0|53|'W1-0003'|"))) << serialRows[1].toStdString();
    EXPECT_TRUE(serialRows[2].startsWith(QStringLiteral("0|54|'PAD-0002'|"))) << serialRows[2].toStdString();
    EXPECT_TRUE(odbc.database[2].contains(QStringLiteral("1|'EC'|'PickGoods_chkShowText'|'chkShowText'|'1'"))) << odbc.database[2].toStdString();
    EXPECT_TRUE(odbc.database[2].contains(QStringLiteral("1|'EC'|'PickGoods_chkBarCode'|'chkBarCode'|'0'"))) << odbc.database[2].toStdString();
    ASSERT_GE(odbc.screens.size(), 3);
    const QString reopened = *std::find_if(odbc.screens.begin(), odbc.screens.end(),
                                           [](const QString& s) { return s.startsWith(QStringLiteral("reopened\n")); });
    EXPECT_TRUE(reopened.contains(QStringLiteral("\nview=grid\n"))) << reopened.toStdString();
    EXPECT_TRUE(reopened.contains(QStringLiteral("\noptions=002\n"))) << reopened.toStdString();

    // The station asked the middle tier the same things in the same order.
    ASSERT_EQ(odbc.calls.size(), embedded.calls.size());
    for (int i = 0; i < embedded.calls.size(); ++i) {
        EXPECT_EQ(odbc.calls[i].key, embedded.calls[i].key) << "call " << i;
        EXPECT_EQ(odbc.calls[i].detail, embedded.calls[i].detail) << "call " << i;
    }
}
