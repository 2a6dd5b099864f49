// Every host call of a station session fails once in turn: the station never
// lets an exception out, says what failed where the worker is told of
// failures, keeps the database consistent, and takes the next order as if
// nothing had happened.
#include "reliability/reliability_station.h"
#include <QRegularExpression>
#include <QSet>

namespace {

const QString kTitle = QStringLiteral("Velto提示");

// Calls whose failure the station rides over without a box: a prompt that
// does not sound, a picture that does not show, a text or font that stays
// as written.
bool isSilentSite(const QString& key)
{
    return key.startsWith(ProgIds::Sound + QLatin1Char('.')) || key.startsWith(ProgIds::AccessoryView + QLatin1Char('.'))
        || key.startsWith(ProgIds::Zip + QLatin1Char('.')) || key.startsWith(ProgIds::ResLoader + QLatin1Char('.'))
        || key.startsWith(ProgIds::FrmResLoader + QLatin1Char('.'));
}

// A call site: the operation and, for statements, the statement with its
// scanned values masked, so that the same code line scanning another order is
// the same site while the two company settings stay two sites.
QString siteOf(const HostCall& call)
{
    // The status write of a load (0) and of a pass (1); each prompt; each
    // profile key.
    if (call.key.endsWith(QStringLiteral(".SavePickingGoods")))
        return call.key + QStringLiteral(" status ") + call.detail.section(QLatin1Char('='), -1);
    if (call.key.startsWith(ProgIds::Sound) || call.key.startsWith(ProgIds::UserProfile))
        return call.key + QLatin1Char(' ') + call.detail;
    if (!call.key.endsWith(QStringLiteral(".ExecuteSQL")) && !call.key.endsWith(QStringLiteral(".GetSingleSQLData")))
        return call.key;
    QStringList literals;
    QString shape;
    if (!SplitTsqlLiterals(call.detail, &literals, &shape))
        return call.key + QStringLiteral(" (unparsed)");
    // Masked literals are those with a digit (codes); words like 'EC' stay.
    QString site = call.detail;
    for (const QString& literal : literals)
        if (literal.contains(QRegularExpression(QStringLiteral("\\d"))))
            site.replace(QLatin1Char('\'') + literal + QLatin1Char('\''), QStringLiteral("'?'"));
    return call.key + QLatin1Char(' ') + site.simplified();
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
        scan(controls(f).TxtItemID, m_barcodes[1001]);
        scan(controls(f).TxtItemID, QStringLiteral("6931000010130"));
        scan(controls(f).TxtItemID, m_barcodes[1008]);
        type(controls(f).TxtItemID, m_barcodes[1014]);
        scan(controls(f).TxtNum, QStringLiteral("2"));
        click(controls(f).chkHaveSerial);   // scans 10001 again: verified now, refused
        scan(controls(f).TxtID, QStringLiteral("10021"));
        for (const char* serial : {"W1-0001", "W1-0002", "PAD-0001"})
            scan(controls(f).TxtItemID, QString::fromLatin1(serial));
        click(controls(f).chkHaveSerial);   // back to barcodes: 10021 is refused now
        scan(controls(f).TxtID, QStringLiteral("10001"));
        click(controls(f).CmdBtnRePick);
        scan(controls(f).TxtItemID, m_barcodes[1001]);
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
    void expectNextOrderPasses(const std::string& after, bool delivers = true)
    {
        SCOPED_TRACE(after);
        frmPickigGoods& f = *m_form;
        if (controls(f).chkHaveSerial->isChecked())
            click(controls(f).chkHaveSerial);
        scan(controls(f).TxtID, QStringLiteral("10018"));
        ASSERT_EQ(controls(f).lblOrderNum->text(), QStringLiteral("3"));
        for (int item : {1002, 1015, 1018})
            scan(controls(f).TxtItemID, m_barcodes[item]);
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
    void expectNothingHalfWritten(const std::string& after, int stationPicker = 201)
    {
        SCOPED_TRACE(after);
        for (const char* code : {"10001", "10018", "10021"}) {
            const QString where = QStringLiteral(" FROM IC_Web2ERPOrders WHERE FUniqueCode = '%1'").arg(QLatin1String(code));
            const int status = dbValue(QStringLiteral("SELECT IFNULL(FPIckingGoodsStatus, 0)") + where).toInt();
            const int picker = dbValue(QStringLiteral("SELECT IFNULL(FPickingGoodMan, 0)") + where).toInt();
            const int delivered = dbValue(QStringLiteral("SELECT IFNULL(FDeliveryStatus, 0)") + where).toInt();
            const bool sent = !dbValue(QStringLiteral("SELECT FSendDate") + where).isNull();
            EXPECT_EQ(picker, status == 1 ? stationPicker : 0) << code;
            if (qstrcmp(code, "10001") != 0) {
                EXPECT_TRUE(delivered == 0 || status == 1) << code << " delivered but not verified";
            }
            EXPECT_EQ(sent, delivered == 1) << code;
        }
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

    static int failuresSoFar()
    {
        return ::testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
    }

    void SetUp() override
    {
        ReliabilityStationTest::SetUp();
        for (int item : {1001, 1002, 1008, 1014, 1015, 1018})
            m_barcodes[item] = barcodeOf(item);
    }

    QHash<int, QString> m_barcodes;
};

TEST_F(FaultInjectionTest, EveryCallSiteFailsOnceInTurnAndTheStationCarriesOn)
{
    // First a clean run: it reaches every kind of call and lists the call
    // sites in the order they come. 10021 passed with its serial rows; 10001
    // is back on the station after re-pick.
    runSessionUpToClose();
    EXPECT_EQ(pickingOf(QStringLiteral("10021")), QStringLiteral("1/201"));
    EXPECT_EQ(dbValue(QStringLiteral("SELECT COUNT(*) FROM IC_Web2ErpOrderSerial")).toInt(), 3);
    EXPECT_EQ(m_form->pickingState().CurrentOrderCode(), QStringLiteral("10001"));
    EXPECT_EQ(controls(m_form).lblPickedNum->text(), QStringLiteral("1/4"));
    EXPECT_EQ(pickingOf(QStringLiteral("10001")), QStringLiteral("0/0"));
    const int beforeClose = m_faults.calls().size();
    ASSERT_TRUE(closeSession());
    EXPECT_TRUE(m_rec->boxes.size() == 1 && m_rec->boxes[0].flags == (MsgBox::YesNo | MsgBox::Question))
        << boxTexts().join(QLatin1Char('\n')).toStdString();
    const QList<HostCall> clean = m_faults.calls();
    QSet<QString> keys;
    for (const HostCall& c : clean)
        keys.insert(c.key);
    for (const QString& expected :
         {HostFaultInjector::key(ProgIds::GetData, "ExecuteSQL"), HostFaultInjector::key(ProgIds::GetData, "CheckReturnBills"),
          HostFaultInjector::key(ProgIds::SaveData, "SavePickingGoods"), HostFaultInjector::key(ProgIds::SaveData, "UpdateDeliveryData"),
          HostFaultInjector::key(ProgIds::WebOrderInfo, "GetSingleSQLData"), HostFaultInjector::key(ProgIds::UserProfile, "LoadUserProfile"),
          HostFaultInjector::key(ProgIds::UserProfile, "SaveUserProfile"), HostFaultInjector::key(ProgIds::AccessoryView, "GetID"),
          HostFaultInjector::key(ProgIds::Zip, "DeCompress"), HostFaultInjector::key(ProgIds::Sound, "Play")})
        EXPECT_TRUE(keys.contains(expected)) << expected.toStdString();

    struct Site {
        QString name;
        QString key;
        int number;
        bool atClose;
    };
    // The first and the last call of each site (the order scan and the pass
    // read the same header, a load and a pass write the same status).
    QList<Site> sites;
    QHash<QString, int> last;
    for (int i = 0; i < clean.size(); ++i) {
        const QString name = siteOf(clean[i]);
        if (!last.contains(name))
            sites.append({name, clean[i].key, clean[i].number, i >= beforeClose});
        last.insert(name, i);
    }
    for (const Site& first : QList<Site>(sites)) {
        const int i = last.value(first.name);
        if (clean[i].number != first.number)
            sites.append({first.name, clean[i].key, clean[i].number, i >= beforeClose});
    }
    ASSERT_GE(sites.size(), 30) << "too few call sites: the session no longer reaches them";
    // Every middle-tier call fetches the property string afresh: every fifth
    // fetch of the session fails too.
    const QString getProperty = HostFaultInjector::key(ProgIds::ShareProps, "GetProperty");
    ASSERT_GT(m_faults.count(getProperty), 40);
    for (int i = 0; i < clean.size(); ++i)
        if (clean[i].key == getProperty && clean[i].number % 5 == 1 && clean[i].number != 1)
            sites.append({siteOf(clean[i]), getProperty, clean[i].number, i >= beforeClose});

    int survived = 0;
    for (const Site& site : sites) {
        const std::string trace = site.name.left(140).toStdString() + " #" + std::to_string(site.number);
        SCOPED_TRACE(trace);
        const int failuresBefore = failuresSoFar();
        freshDatabase();
        m_faults.arm(site.key, site.number);

        runSessionUpToClose();
        // The picker the station showed: none when it could not be read.
        const int stationPicker = controls(m_form).TxtEmployee->property("Tag").toInt();
        std::printf("  fault at %s #%d\n", qPrintable(site.name.left(110)), site.number);
        const bool firedBeforeClose = !m_faults.failures().isEmpty();
        // Delivery follows the two company settings, read when the station opens.
        int settingsRead = 0;
        for (const HostCall& call : m_faults.calls())
            settingsRead += !call.failed && call.detail.contains(QStringLiteral("t_SystemProfile")) ? 1 : 0;
        EXPECT_EQ(firedBeforeClose, !site.atClose);
        if (firedBeforeClose) {
            m_faults.disarm();
            expectNextOrderPasses("the next order on the same station", settingsRead == 2);
            closeSession();
        } else {
            closeSession();
            EXPECT_FALSE(m_faults.failures().isEmpty()) << "the armed call never came";
            m_faults.disarm();
            m_form.reset();
            open();
            expectNextOrderPasses("the next order on a reopened station");
            m_guard.run([this] { m_form->closeWithoutAsking(); }, QStringLiteral("close"));
        }

        EXPECT_TRUE(m_guard.escapes().isEmpty()) << m_guard.escapes().join(QLatin1Char('\n')).toStdString();
        m_guard.clear();
        const QStringList boxes = faultBoxes();
        if (isSilentSite(site.key)) {
            EXPECT_TRUE(boxes.isEmpty()) << boxes.join(QLatin1Char('\n')).toStdString();
        } else {
            // One box names the failure; it is titled as every error box is.
            EXPECT_TRUE(boxes.size() == 1 && boxes[0].startsWith(kTitle + QStringLiteral(": ")))
                << boxTexts().join(QLatin1Char('\n')).toStdString();
        }
        expectNothingHalfWritten(trace, stationPicker);
        const QString statuses = dbValue(QStringLiteral("SELECT group_concat(IFNULL(FPIckingGoodsStatus,'n'), '') FROM IC_Web2ERPOrders "
                                                        "WHERE FUniqueCode IN ('10001','10021','10018')"))
                                     .toString();
        EXPECT_FALSE(statuses.contains(QRegularExpression(QStringLiteral("[^01]")))) << statuses.toStdString();
        if (failuresSoFar() == failuresBefore)
            ++survived;
    }
    RecordProperty("sites", int(sites.size()));
    std::printf("fault injection: %d call sites failed in turn, %d survived\n", int(sites.size()), survived);
    EXPECT_EQ(survived, sites.size());
}

TEST_F(FaultInjectionTest, ObjectsThatCannotBeCreatedAreReportedLikeFailingCalls)
{
    for (const QString& progId : {ProgIds::GetData, ProgIds::SaveData, ProgIds::WebOrderInfo, ProgIds::UserProfile}) {
        SCOPED_TRACE(progId.toStdString());
        freshDatabase();
        m_faults.armCreation(progId, 1);
        runSessionUpToClose();
        EXPECT_EQ(boxTexts().filter(QStringLiteral("can't create object: ") + progId).size(), 1)
            << boxTexts().join(QLatin1Char('\n')).toStdString();
        m_faults.disarm();
        expectNextOrderPasses("after the object came back");
        m_guard.run([this] { m_form->closeWithoutAsking(); }, QStringLiteral("close"));
    }
}

TEST_F(FaultInjectionTest, AFailureInTheMiddleOfAnOrderKeepsWhatWasCounted)
{
    frmPickigGoods& f = open();
    scan(controls(f).TxtID, QStringLiteral("10001"));
    scan(controls(f).TxtItemID, m_barcodes[1001]);
    const StationSnapshot counted = snapshot();
    ASSERT_EQ(counted.pickedNum, QStringLiteral("1/4"));
    const QString executeSql = HostFaultInjector::key(ProgIds::GetData, "ExecuteSQL");
    const QString header = HostFaultInjector::key(ProgIds::WebOrderInfo, "GetSingleSQLData");

    struct Case {
        const char* what;
        QString key;
        QLineEdit* field;
        QString code;
    };
    const QList<Case> cases{
        {"barcode lookup of a goods scan", executeSql, controls(f).TxtItemID, m_barcodes[1008]},
        {"order lookup of a code that is no goods", header, controls(f).TxtItemID, QStringLiteral("6930000000000")},
        {"verdict of the order being left", executeSql, controls(f).TxtID, QStringLiteral("10018")},
        {"typed quantity's goods scan", executeSql, controls(f).TxtNum, QStringLiteral("2")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        m_rec->boxes.clear();
        m_faults.arm(c.key, m_faults.count(c.key) + 1);
        if (c.field == controls(f).TxtNum)
            type(controls(f).TxtItemID, m_barcodes[1014]);
        scan(c.field, c.code);
        EXPECT_EQ(faultBoxes().size(), 1) << boxTexts().join(QLatin1Char('\n')).toStdString();
        EXPECT_EQ(snapshot(), counted);
        EXPECT_EQ(controls(f).TxtNum->text(), QStringLiteral("1"));
    }

    // Nothing was lost: the rest of the order passes as if no call had failed.
    m_rec->boxes.clear();
    for (int item : {1008, 1014, 1014})
        scan(controls(f).TxtItemID, m_barcodes[item]);
    EXPECT_EQ(controls(f).lblPickedNum->text(), QStringLiteral("4/4"));
    EXPECT_TRUE(controls(f).ImgSuccess->isVisible());
    EXPECT_EQ(pickingOf(QStringLiteral("10001")), QStringLiteral("1/201"));
    EXPECT_TRUE(m_rec->boxes.isEmpty()) << boxTexts().join(QLatin1Char('\n')).toStdString();
}

TEST_F(FaultInjectionTest, SavesThatFailAtThePassAreReportedAndTheOrderStaysPassed)
{
    const QString save = HostFaultInjector::key(ProgIds::SaveData, "SavePickingGoods");
    const QString deliver = HostFaultInjector::key(ProgIds::SaveData, "UpdateDeliveryData");
    struct Case {
        const char* what;
        bool failSave, failDelivery;
        const char* picking;   // status/picker on the server afterwards
        int delivered;
    };
    const Case cases[] = {
        {"no failure", false, false, "1/201", 1},
        {"the status save fails", true, false, "0/0", 0},
        {"the status save and the delivery fail", true, true, "0/0", 0},
        {"the delivery fails", false, true, "1/201", 0},
    };
    StationSnapshot clean;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        freshDatabase();
        frmPickigGoods& f = open();
        scan(controls(f).TxtID, QStringLiteral("10018"));
        scan(controls(f).TxtItemID, m_barcodes[1002]);
        scan(controls(f).TxtItemID, m_barcodes[1015]);
        if (c.failSave)
            m_faults.arm(save, m_faults.count(save) + 1);
        if (c.failDelivery)
            m_faults.arm(deliver, m_faults.count(deliver) + 1);
        const int deliveriesBefore = m_faults.count(deliver);
        scan(controls(f).TxtItemID, m_barcodes[1018]);

        // One box for the one failure the worker must hear of; a delivery is
        // not even tried for an order the server did not take as verified.
        EXPECT_EQ(faultBoxes().size(), c.failSave || c.failDelivery ? 1 : 0) << boxTexts().join(QLatin1Char('\n')).toStdString();
        EXPECT_EQ(m_faults.count(deliver) > deliveriesBefore, !c.failSave);
        EXPECT_EQ(pickingOf(QStringLiteral("10018")), QLatin1String(c.picking));
        EXPECT_EQ(dbValue(QStringLiteral("SELECT IFNULL(FDeliveryStatus, 0) FROM IC_Web2ERPOrders WHERE FUniqueCode = '10018'")).toInt(),
                  c.delivered);
        expectNothingHalfWritten(c.what);
        // The station shows the pass all the same, its counts as the clean pass left them.
        EXPECT_TRUE(controls(f).ImgSuccess->isVisible());
        EXPECT_EQ(controls(f).lblPickedNum->text(), QStringLiteral("3/3"));
        ASSERT_EQ(f.pickingState().SessionOrderLog().Count(), 1);
        EXPECT_TRUE(f.pickingState().SessionOrderLog().Item(0).GetValue(QStringLiteral("bSuccess")).toBool());
        if (clean.currentOrder.isEmpty())
            clean = snapshot();
        EXPECT_EQ(snapshot(), clean);

        // A re-pick and a new pass save everything.
        m_faults.disarm();
        click(controls(f).CmdBtnRePick);
        m_rec->boxes.clear();
        for (int item : {1002, 1015, 1018})
            scan(controls(f).TxtItemID, m_barcodes[item]);
        EXPECT_TRUE(m_rec->boxes.isEmpty()) << boxTexts().join(QLatin1Char('\n')).toStdString();
        EXPECT_EQ(pickingOf(QStringLiteral("10018")), QStringLiteral("1/201"));
        EXPECT_EQ(dbValue(QStringLiteral("SELECT FDeliveryStatus FROM IC_Web2ERPOrders WHERE FUniqueCode = '10018'")).toInt(), 1);
        expectNothingHalfWritten("after the re-pick");
        m_guard.run([this] { m_form->closeWithoutAsking(); }, QStringLiteral("close"));
    }
}
