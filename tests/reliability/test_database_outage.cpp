// The database file moved away under a running station and brought back:
// each scan in between ends with a box that says what is wrong, nothing
// counted is lost, no empty database appears in its place, and the first
// scan after its return works. A locked file: LockTest in test_odbc_outage.cpp.
#include "reliability/reliability_station.h"
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
