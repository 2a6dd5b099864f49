// What a GS1 scan asks of the goods scan, read against the demo warehouse.
#include "station/gs1_scan.h"
#include "station/station_fixture.h"

TEST(Gs1Scan, ElementStringsGiveTheirFieldsAndPlainCodesStayPlain)
{
    const Gs1Scan plain = ReadGs1Scan(QStringLiteral("6931000010017"));
    EXPECT_EQ(plain.kind, Gs1Scan::Kind::Plain);

    const Gs1Scan serial = ReadGs1Scan(QStringLiteral("(01)06931000010338(10)M2403(17)260219(21)MF-0001"));
    ASSERT_EQ(serial.kind, Gs1Scan::Kind::Read);
    EXPECT_EQ(serial.gtin, QStringLiteral("06931000010338"));
    EXPECT_EQ(serial.batch, QStringLiteral("M2403"));
    EXPECT_EQ(serial.expiry, QStringLiteral("260219"));
    EXPECT_EQ(serial.serial, QStringLiteral("MF-0001"));
    EXPECT_FALSE(serial.count.has_value());

    // A carton: the contained goods' GTIN and their count.
    const Gs1Scan carton = ReadGs1Scan(QStringLiteral("(02)06931000010147(37)12"));
    ASSERT_EQ(carton.kind, Gs1Scan::Kind::Read);
    EXPECT_EQ(carton.gtin, QStringLiteral("06931000010147"));
    EXPECT_EQ(carton.count, QStringLiteral("12"));

    // A refusal names its reason for translation and the AI as it stands.
    const Gs1Scan bad = ReadGs1Scan(QStringLiteral("(01)06931000010018"));
    ASSERT_EQ(bad.kind, Gs1Scan::Kind::Refused);
    EXPECT_EQ(bad.refusal, QStringLiteral("~$~GS1条码的校验位不正确^|^ (01)"));
}

TEST(Gs1Scan, ExpiryIsTheProductionDatePlusTheShelfLife)
{
    const auto serial = [](const QVariant& produced, int days) {
        GoodsRecord r;
        r.SetValue(QStringLiteral("FKFDate"), produced);
        r.SetValue(QStringLiteral("FKFPeriod"), days);
        return r;
    };
    const struct {
        const char* expiry;
        QVariant produced;
        int days;
        bool fits;
    } cases[] = {
        {"260219", QStringLiteral("2024-03-01"), 720, true},   // MF-0001 of the demo
        {"260220", QStringLiteral("2024-03-01"), 720, false},
        {"250219", QStringLiteral("2024-03-01"), 720, false},
        {"260219", QDateTime(QDate(2024, 3, 1), QTime(0, 0)), 720, true},   // a server's datetime
        {"260200", QStringLiteral("2026-01-29"), 30, true},    // DD 00: the month's last day
        {"260200", QStringLiteral("2026-01-28"), 30, false},
        {"991231", QString(), 0, true},                        // no production date, no limit
    };
    for (const auto& c : cases)
        EXPECT_EQ(Gs1ExpiryFits(QString::fromLatin1(c.expiry), serial(c.produced, c.days)), c.fits)
            << c.expiry << " " << c.produced.toString().toStdString() << "+" << c.days;
}

TEST_F(StationFormTest, GtinsAreLookedUpAsTheBarcodesTheyArePrintedAs)
{
    // The demo's barcodes are EAN-13: found by the GTIN-14 with a leading zero.
    const GoodsRecord shampoo = FindWebOrderGoodsByGtin(QStringLiteral("06931000010147"));
    EXPECT_EQ(shampoo.GetValue(QStringLiteral("FItemID")).toInt(), 1014);
    // The cable's inner pack code is no GTIN; a GTIN nobody has finds nothing.
    EXPECT_TRUE(FindWebOrderGoodsByGtin(QStringLiteral("06930000000000")).GetValue(QStringLiteral("FItemID")).isNull());
    // A GTIN-14 of its own (a carton) is tried as it stands first.
    dbExec(QStringLiteral("INSERT INTO t_Barcode (FItemID, FBarCode) VALUES (1014, '16931000010144')"));
    EXPECT_EQ(FindWebOrderGoodsByGtin(QStringLiteral("16931000010144")).GetValue(QStringLiteral("FItemID")).toInt(), 1014);
}
