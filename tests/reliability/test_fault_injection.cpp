// Every host call of a station session fails once in turn: the station never
// lets an exception out, says what failed where the worker is told of
// failures, keeps the database consistent, and takes the next order as if
// nothing had happened. The session itself goes the same on both engines.
#include "reliability/reliability_station.h"
#include "support/sqlite_odbc.h"
#include <QRegularExpression>

namespace {

const QString kTitle = QStringLiteral("Velto提示");

// Calls whose failure the station rides over without a box: a prompt that
// does not sound, a picture that does not show, a text or font that stays
// as written.
bool isSilentSite(const QString& key)
{
    const QStringList silent{ProgIds::Sound, ProgIds::AccessoryView, ProgIds::Zip, ProgIds::ResLoader,
                             ProgIds::FrmResLoader};
    return silent.contains(key.section(QLatin1Char('.'), 0, -2));
}

// A call site: the key and what the call carried, a statement with the
// literals that hold a digit (scanned codes) masked, so that the same code
// line scanning another order is the same site while the two company
// settings ('EC' and their keys) stay two sites.
QString siteOf(const HostCall& call)
{
    QString site = call.key + QLatin1Char(' ') + call.detail;
    QStringList literals;
    SplitTsqlLiterals(call.detail, &literals);
    for (const QString& literal : literals)
        if (literal.contains(QRegularExpression(QStringLiteral("\\d"))))
            site.replace(QLatin1Char('\'') + literal + QLatin1Char('\''), QStringLiteral("'?'"));
    return site.simplified();
}

} // namespace

class FaultInjectionTest : public ReliabilityStationTest {
protected:
    // The session every fault is injected into: barcode order, goods of
    // another order, a typed quantity, a pass with delivery, a refusal, a
    // serial order that passes with its serial rows, re-pick, one more scan.
    // Returns before the close.
    void runSessionUpToClose()
    {
        frmPickigGoods& f = open();
        scan(controls(f).TxtID, QStringLiteral("10001"));
        scan(controls(f).TxtItemID, barcodeOf(1001));
        scan(controls(f).TxtItemID, QStringLiteral("6931000010130"));
        scan(controls(f).TxtItemID, barcodeOf(1008));
        type(controls(f).TxtItemID, barcodeOf(1014));
        scan(controls(f).TxtNum, QStringLiteral("2"));
        click(controls(f).chkHaveSerial);   // scans 10001 again: verified now, refused
        scan(controls(f).TxtID, QStringLiteral("10021"));
        for (const char* serial : {"W1-0001", "W1-0002", "PAD-0001"})
            scan(controls(f).TxtItemID, QString::fromLatin1(serial));
        click(controls(f).chkHaveSerial);   // back to barcodes: 10021 is refused now
        scan(controls(f).TxtID, QStringLiteral("10001"));
        click(controls(f).CmdBtnRePick);
        scan(controls(f).TxtItemID, barcodeOf(1001));
    }

    // The close question of the unfinished order is answered No.
    bool closeSession()
    {
        m_rec->answers.enqueue(MsgBox::No);
        bool closed = false;
        m_guard.run([&] { closed = closeStation(); }, QStringLiteral("close"));
        return closed;
    }

    // The next order on this station, all its goods, the pass on the server.
    // Delivery follows the company settings, read when the station opens: a
    // station that could not read them does not deliver.
    void expectNextOrderPasses(bool delivers)
    {
        frmPickigGoods& f = *m_form;
        if (controls(f).chkHaveSerial->isChecked())
            click(controls(f).chkHaveSerial);
        scan(controls(f).TxtID, QStringLiteral("10018"));
        ASSERT_EQ(controls(f).lblOrderNum->text(), QStringLiteral("3"));
        for (int item : {1002, 1015, 1018})
            scan(controls(f).TxtItemID, barcodeOf(item));
        EXPECT_EQ(controls(f).lblPickedNum->text(), QStringLiteral("3/3"));
        EXPECT_TRUE(controls(f).ImgSuccess->isVisible());
        EXPECT_TRUE(pickingOf(QStringLiteral("10018")).startsWith(QStringLiteral("1/")));
        EXPECT_EQ(dbValue(QStringLiteral("SELECT FDeliveryStatus FROM IC_Web2ERPOrders WHERE FUniqueCode = '10018'")).toInt(),
                  delivers ? 1 : 0);
    }

    // Nothing half-written on the server: a verified order names the picker
    // the station showed and an unverified one none, an order sent for
    // delivery is a verified one, and an order's serial rows are all there or
    // none. (10001 is re-picked at the end of the session: a re-pick takes
    // back the status, never a delivery already made.)
    void expectNothingHalfWritten(int stationPicker)
    {
        const QString halfWritten = dbValue(
            QStringLiteral("SELECT group_concat(FUniqueCode, ' ') FROM IC_Web2ERPOrders WHERE FUniqueCode IN ('10001', '10018', '10021')"
                           " AND (IFNULL(FPickingGoodMan, 0) <> (CASE WHEN FPIckingGoodsStatus = 1 THEN ? ELSE 0 END)"
                           " OR (FDeliveryStatus = 1 AND IFNULL(FPIckingGoodsStatus, 0) <> 1 AND FUniqueCode <> '10001')"
                           " OR (FSendDate IS NOT NULL) <> (IFNULL(FDeliveryStatus, 0) = 1))"),
            {stationPicker}).toString();
        EXPECT_TRUE(halfWritten.isEmpty())
            << halfWritten.toStdString() << " in " << writtenRows().join(QLatin1Char(' ')).toStdString();
        const int rows = dbValue(QStringLiteral("SELECT COUNT(*) FROM IC_Web2ErpOrderSerial s JOIN IC_Web2ERPOrdersEntry e "
                                                "ON e.FEntryID = s.FEntryID JOIN IC_Web2ERPOrders o ON o.FID = e.FID "
                                                "WHERE o.FUniqueCode = '10021'"))
                             .toInt();
        EXPECT_TRUE(rows == 0 || rows == 3) << rows << " serial rows";
    }

    // The database as it was made, no station, no engine, no order state.
    void freshDatabase()
    {
        m_form.reset();
        SqlEngine::closeAll();
        ResetSessionState();
        ResetHostSession();
        ResetLanguageCache();
        QFile::remove(m_db);
        ASSERT_TRUE(QFile::copy(pristineDemo(), m_db));
        QFile::setPermissions(m_db, QFile::ReadOwner | QFile::WriteOwner);
        m_rec->boxes.clear();
        m_rec->answers.clear();
        m_faults.disarm();
        m_faults.resetCounts();
    }

    // What the session writes; quote() tells text ('1') from numbers (1).
    QStringList writtenRows() const
    {
        return {dbValue(QStringLiteral("SELECT group_concat(FUniqueCode || ':' || quote(FPIckingGoodsStatus) || '/'"
                                       " || quote(FPickingGoodMan) || '/' || quote(FDeliveryStatus) || '/' || (FSendDate IS NULL),"
                                       " ' ') FROM IC_Web2ERPOrders"))
                    .toString(),
                dbValue(QStringLiteral("SELECT group_concat(r, ' ') FROM (SELECT quote(FEntryID) || '|' || quote(FSerialNumber)"
                                       " || '|' || quote(FBatchNo) || '|' || quote(FStockID) || '|' || quote(FStockPlace) || '|'"
                                       " || quote(FSerialID) || '|' || quote(FKFDate) || '|' || quote(FKFPeriod) AS r"
                                       " FROM IC_Web2ErpOrderSerial ORDER BY r)"))
                    .toString()};
    }
};

TEST_F(FaultInjectionTest, EveryCallSiteFailsOnceInTurnAndTheStationCarriesOn)
{
    // First a clean run: it reaches every kind of call and lists the call
    // sites in the order they come. 10021 passed with its serial rows; 10001
    // is back on the station after re-pick.
    runSessionUpToClose();
    EXPECT_EQ(pickingOf(QStringLiteral("10021")), QStringLiteral("1/201"));
    EXPECT_EQ(controls(m_form).lblPickedNum->text(), QStringLiteral("1/4"));
    EXPECT_EQ(pickingOf(QStringLiteral("10001")), QStringLiteral("0/0"));
    const int beforeClose = m_faults.calls().size();
    ASSERT_TRUE(closeSession());
    EXPECT_TRUE(m_rec->boxes.size() == 1 && m_rec->boxes[0].flags == (MsgBox::YesNo | MsgBox::Question))
        << boxTexts().join(QLatin1Char('\n')).toStdString();
    const QList<HostCall> clean = m_faults.calls();
    // The same session through the production path of QODBC and unixODBC,
    // with the SQLite ODBC driver in place of the server, asks the middle
    // tier the same things and writes the same rows.
    if (SqliteOdbcUnavailableReason().isEmpty()) {
        const QStringList rows = writtenRows();
        freshDatabase();
        publishProps(SqliteOdbcProps(m_db, 1));
        m_faults.resetCounts();
        runSessionUpToClose();
        closeSession();
        const QList<HostCall> odbc = m_faults.calls();
        for (int i = 0; i < clean.size(); ++i)
            ASSERT_EQ(odbc.value(i).key + odbc.value(i).detail, clean[i].key + clean[i].detail) << i;
        EXPECT_EQ(odbc.size(), clean.size());
        EXPECT_EQ(writtenRows(), rows);
        publishProps(DemoPropsString(m_db, 1));
    }
    QSet<QString> keys;
    for (const HostCall& c : clean)
        keys.insert(c.key);
    // The 7 operations the injector counts and the creation of each of its
    // 10 objects: the session reaches them all.
    EXPECT_EQ(keys.size(), 17) << QStringList(keys.values()).join(QLatin1Char(' ')).toStdString();

    // The first and the last call of each site (the order scan and the pass
    // read the same header, a load and a pass write the same status), and
    // every fifth fetch of the property string, which each middle-tier call
    // makes afresh from a new property store.
    const QString newProps = HostFaultInjector::key(ProgIds::ShareProps, "new");
    QHash<QString, int> first, last;
    QSet<int> picked;
    for (int i = 0; i < clean.size(); ++i) {
        const QString name = siteOf(clean[i]);
        first.insert(name, first.value(name, i));
        last.insert(name, i);
        if (clean[i].key == newProps && clean[i].number % 5 == 1)
            picked << i;
    }
    for (const QHash<QString, int>* ends : {&first, &last})
        for (int i : *ends)
            picked << i;
    QList<int> sites = picked.values();
    std::sort(sites.begin(), sites.end());
    ASSERT_GE(sites.size(), 60) << "too few call sites: the session no longer reaches them";

    for (int i : sites) {
        const HostCall& site = clean[i];
        const bool atClose = i >= beforeClose;
        SCOPED_TRACE(siteOf(site).left(140).toStdString() + " #" + std::to_string(site.number));
        freshDatabase();
        m_faults.arm(site.key, site.number);

        runSessionUpToClose();
        // The picker the station showed: none when it could not be read.
        const int stationPicker = controls(m_form).TxtEmployee->property("Tag").toInt();
        // Delivery follows the two company settings, read when the station
        // opens: a station that could not read them does not deliver.
        int settingsRead = 0;
        for (const HostCall& call : m_faults.calls())
            settingsRead += !call.failed && call.detail.contains(QStringLiteral("t_SystemProfile")) ? 1 : 0;
        // A call of the close fails there; the next order comes on a reopened station.
        EXPECT_EQ(m_faults.fired(), !atClose);
        if (atClose) {
            closeSession();
            EXPECT_TRUE(m_faults.fired()) << "the armed call never came";
            m_form.reset();
            open();
        }
        m_faults.disarm();
        expectNextOrderPasses(settingsRead == 2);
        closeSession();

        EXPECT_TRUE(m_guard.escapes().isEmpty()) << m_guard.escapes().join(QLatin1Char('\n')).toStdString();
        m_guard.clear();
        // One box names the failure, titled as every error box is; none for a silent one.
        const QStringList boxes = faultBoxes();
        if (isSilentSite(site.key))
            EXPECT_TRUE(boxes.isEmpty()) << boxes.join(QLatin1Char('\n')).toStdString();
        else
            EXPECT_TRUE(boxes.size() == 1 && boxes[0].startsWith(kTitle + QStringLiteral(": ")))
                << boxTexts().join(QLatin1Char('\n')).toStdString();
        expectNothingHalfWritten(stationPicker);
    }
}
