// The serial rows of a passed order are one batch: when its last insert
// fails, the deletes and inserts before it are undone too, so an order keeps
// either its old rows or its new ones, never a mix or none.
#include "reliability/reliability_station.h"
#include <QRegularExpression>

class SerialBatchTest : public ReliabilityStationTest {
protected:
    QString storedSerials() const
    {
        return dbValue(QStringLiteral("SELECT group_concat(r, ' ') FROM (SELECT s.FEntryID || ':' || s.FSerialNumber || ':' || "
                                      "s.FSerialID AS r FROM IC_Web2ErpOrderSerial s ORDER BY r)"))
            .toString();
    }

    void scanSerials(frmPickigGoods& f, const QStringList& serials)
    {
        for (const QString& serial : serials)
            scan(controls(f).TxtItemID, serial);
    }
};

TEST_F(SerialBatchTest, ALastInsertThatFailsLeavesTheEarlierRowsAsTheyWere)
{
    const QStringList serials{QStringLiteral("W1-0001"), QStringLiteral("W1-0002"), QStringLiteral("PAD-0001")};
    frmPickigGoods& f = open();
    click(controls(f).chkHaveSerial);
    scan(controls(f).TxtID, QStringLiteral("10021"));
    ASSERT_EQ(controls(f).lblOrderNum->text(), QStringLiteral("3"));
    scanSerials(f, serials);
    ASSERT_TRUE(controls(f).ImgSuccess->isVisible());
    const QString first = storedSerials();
    ASSERT_EQ(first.count(QLatin1Char(' ')), 2) << first.toStdString();

    // Verified again; this time the database refuses the batch's last insert.
    QString refused;
    m_faults.setBeforeCall([&](const HostCall& call) {
        if (!call.key.endsWith(QStringLiteral(".ExecuteSQL")) || !call.detail.contains(QStringLiteral("insert IC_Web2ErpOrderSerial")))
            return;
        const auto inserts = QRegularExpression(QStringLiteral("values \\(0,\\d+,'([^']*)'")).globalMatch(call.detail);
        for (auto it = inserts; it.hasNext();)
            refused = it.next().captured(1);
        dbExec(QStringLiteral("CREATE TRIGGER refuse_last BEFORE INSERT ON IC_Web2ErpOrderSerial WHEN NEW.FSerialNumber = '%1' "
                              "BEGIN SELECT RAISE(ABORT, 'disk full while writing serials'); END")
                   .arg(refused));
    });
    click(controls(f).CmdBtnRePick);
    ASSERT_EQ(pickingOf(QStringLiteral("10021")), QStringLiteral("0/0"));
    m_rec->boxes.clear();
    scanSerials(f, serials);
    m_faults.setBeforeCall(nullptr);
    ASSERT_FALSE(refused.isEmpty()) << "no serial batch was sent";
    EXPECT_EQ(storedSerials(), first);
    QStringList texts = boxTexts();
    ASSERT_EQ(texts.size(), 1) << texts.join(QLatin1Char('\n')).toStdString();
    EXPECT_TRUE(texts[0].contains(QStringLiteral("disk full while writing serials"))) << texts[0].toStdString();
    // The pass is the worker's to see; the server was not told of it, so the
    // order can be verified once more.
    EXPECT_TRUE(controls(f).ImgSuccess->isVisible());
    EXPECT_EQ(pickingOf(QStringLiteral("10021")), QStringLiteral("0/0"));

    dbExec(QStringLiteral("DROP TRIGGER refuse_last"));
    click(controls(f).CmdBtnRePick);
    m_rec->boxes.clear();
    scanSerials(f, {serials[2], serials[0], serials[1]});
    EXPECT_TRUE(m_rec->boxes.isEmpty()) << boxTexts().join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(storedSerials(), first);   // replaced, not doubled
    EXPECT_EQ(pickingOf(QStringLiteral("10021")), QStringLiteral("1/201"));
}

TEST_F(SerialBatchTest, AFirstPassWhoseBatchFailsWritesNoRowAtAll)
{
    frmPickigGoods& f = open();
    click(controls(f).chkHaveSerial);
    scan(controls(f).TxtID, QStringLiteral("10021"));
    // Whichever insert comes last is refused; the others ran before it in the
    // same batch.
    dbExec(QStringLiteral("CREATE TRIGGER refuse_third BEFORE INSERT ON IC_Web2ErpOrderSerial "
                          "WHEN (SELECT COUNT(*) FROM IC_Web2ErpOrderSerial) >= 2 "
                          "BEGIN SELECT RAISE(ABORT, 'constraint failed'); END"));
    for (const char* serial : {"W1-0001", "W1-0002", "PAD-0001"})
        scan(controls(f).TxtItemID, QString::fromLatin1(serial));
    EXPECT_EQ(storedSerials(), QString());
    EXPECT_EQ(boxTexts().filter(QStringLiteral("constraint failed")).size(), 1) << boxTexts().join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(pickingOf(QStringLiteral("10021")), QStringLiteral("0/0"));
    // The engine is not left inside the failed transaction: the next write lands.
    dbExec(QStringLiteral("DROP TRIGGER refuse_third"));
    click(controls(f).chkHaveSerial);
    scan(controls(f).TxtID, QStringLiteral("10018"));
    for (int item : {1002, 1015, 1018})
        scan(controls(f).TxtItemID, barcodeOf(item));
    EXPECT_EQ(pickingOf(QStringLiteral("10018")), QStringLiteral("1/201"));
}
