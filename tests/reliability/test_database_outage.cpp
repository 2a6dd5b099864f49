// The database goes away under a running station (the file moved, or locked
// by another program) and comes back: each scan in between ends with a box
// that says what is wrong, nothing counted is lost, no empty database appears
// in its place, and the first scan after its return works.
#include "reliability/reliability_station.h"
#include "support/brief_file_lock.h"
#include <QFileInfo>

class DatabaseOutageTest : public ReliabilityStationTest {
protected:
    // Boxes since the last call, each checked to be a plain error box.
    QStringList takeErrorBoxes()
    {
        QStringList texts;
        for (const ShownBox& box : m_rec->boxes) {
            EXPECT_EQ(box.title, QStringLiteral("Velto提示"));
            EXPECT_EQ(box.flags & 7, MsgBox::OkOnly);
            EXPECT_FALSE(box.text.trimmed().isEmpty());
            texts << box.text;
        }
        m_rec->boxes.clear();
        return texts;
    }
};

TEST_F(DatabaseOutageTest, AMovedDatabaseFileIsReportedAndTheStationGoesOnWhenItIsBack)
{
    frmPickigGoods& f = open();
    scan(controls(f).TxtID, QStringLiteral("10001"));
    scan(controls(f).TxtItemID, barcodeOf(1001));
    const QString b1008 = barcodeOf(1008), b1014 = barcodeOf(1014);
    const StationSnapshot counted = snapshot();
    m_rec->boxes.clear();

    const QString away = m_db + QStringLiteral(".away");
    ASSERT_TRUE(QFile::rename(m_db, away));
    scan(controls(f).TxtItemID, b1008);
    scan(controls(f).TxtItemID, QStringLiteral("6930000000000"));
    scan(controls(f).TxtID, QStringLiteral("10018"));
    const QStringList boxes = takeErrorBoxes();
    EXPECT_EQ(boxes.size(), 3) << boxes.join(QLatin1Char('\n')).toStdString();
    // Each names the file the station looked for.
    for (const QString& text : boxes)
        EXPECT_TRUE(text.contains(m_db)) << text.toStdString();
    // The station never makes an empty database where its own was.
    EXPECT_FALSE(QFileInfo::exists(m_db));
    EXPECT_EQ(snapshot(), counted);

    ASSERT_TRUE(QFile::rename(away, m_db));
    scan(controls(f).TxtItemID, b1008);
    EXPECT_EQ(controls(f).lblPickedNum->text(), QStringLiteral("2/4"));
    scan(controls(f).TxtItemID, b1014);
    scan(controls(f).TxtItemID, b1014);
    EXPECT_TRUE(controls(f).ImgSuccess->isVisible());
    EXPECT_TRUE(takeErrorBoxes().isEmpty());
    EXPECT_EQ(pickingOf(QStringLiteral("10001")), QStringLiteral("1/201"));
}

TEST_F(DatabaseOutageTest, ALockedDatabaseEndsTheScanAfterTheWaitAndTheNextScanWorks)
{
    frmPickigGoods& f = open();
    scan(controls(f).TxtID, QStringLiteral("10018"));
    scan(controls(f).TxtItemID, barcodeOf(1002));
    const QString b1015 = barcodeOf(1015), b1018 = barcodeOf(1018);
    const StationSnapshot counted = snapshot();
    m_rec->boxes.clear();

    // Another program holds the whole file: even reads wait, then fail.
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("outage_locker"));
        other.setDatabaseName(m_db);
        ASSERT_TRUE(other.open());
        QSqlQuery lock(other);
        ASSERT_TRUE(lock.exec(QStringLiteral("BEGIN EXCLUSIVE")));
        ASSERT_TRUE(lock.exec(QStringLiteral("UPDATE t_SystemProfile SET FValue = FValue")));
        scan(controls(f).TxtItemID, b1015);
        const QStringList boxes = takeErrorBoxes();
        ASSERT_EQ(boxes.size(), 1);
        EXPECT_TRUE(boxes[0].contains(QStringLiteral("locked"), Qt::CaseInsensitive)) << boxes[0].toStdString();
        EXPECT_EQ(snapshot(), counted);
        lock.exec(QStringLiteral("ROLLBACK"));
        other.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("outage_locker"));

    // A lock that goes while the station waits for it: the scan goes through.
    {
        BriefFileLock briefly(m_db, 300);
        ASSERT_TRUE(briefly.held());
        scan(controls(f).TxtItemID, b1015);
    }
    EXPECT_TRUE(takeErrorBoxes().isEmpty()) << "the engine gave up without waiting for the lock";
    EXPECT_EQ(controls(f).lblPickedNum->text(), QStringLiteral("2/3"));

    // Another station writes: reads go on, the saves of the pass wait and fail.
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("outage_writer"));
        other.setDatabaseName(m_db);
        ASSERT_TRUE(other.open());
        QSqlQuery write(other);
        ASSERT_TRUE(write.exec(QStringLiteral("BEGIN IMMEDIATE")));
        scan(controls(f).TxtItemID, b1018);
        EXPECT_TRUE(controls(f).ImgSuccess->isVisible());
        const QStringList boxes = takeErrorBoxes();
        EXPECT_GE(boxes.size(), 1);
        for (const QString& text : boxes)
            EXPECT_TRUE(text.contains(QStringLiteral("locked"), Qt::CaseInsensitive)) << text.toStdString();
        write.exec(QStringLiteral("ROLLBACK"));
        other.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("outage_writer"));
    EXPECT_EQ(pickingOf(QStringLiteral("10018")), QStringLiteral("0/0"));

    // Back to normal: the order is verified again from the start and lands.
    click(controls(f).CmdBtnRePick);
    for (int item : {1002, 1015, 1018})
        scan(controls(f).TxtItemID, barcodeOf(item));
    EXPECT_TRUE(takeErrorBoxes().isEmpty());
    EXPECT_EQ(pickingOf(QStringLiteral("10018")), QStringLiteral("1/201"));
}
