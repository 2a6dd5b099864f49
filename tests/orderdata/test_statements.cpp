// The statements as the server receives them, to the character.
#include "orderdata/order_goods.h"
#include "orderdata/serial_lookup.h"
#include "support/expected_statements.h"
#include <gtest/gtest.h>

using namespace ExpectedSql;

TEST(Statements, EachLookupIsSentAsTheServerExpectsIt)
{
    // Numeric: unique code or logistics number, the filter follows on the same line.
    EXPECT_EQ(BuildOrderGoodsSql(QStringLiteral("20240001")), orderGoods(QStringLiteral("20240001"), true));
    // Letters: logistics number only, and a line break before the filter.
    EXPECT_EQ(BuildOrderGoodsSql(QStringLiteral("SF1234567")), orderGoods(QStringLiteral("SF1234567"), false));
    // The runtime's numeric test decides, and the code goes in as scanned.
    EXPECT_TRUE(BuildOrderGoodsSql(QStringLiteral(" 12 ")).contains("(t2.FUniqueCode =' 12 ' OR t2.FLogisticsOrder =' 12 ')"));
    EXPECT_TRUE(BuildOrderGoodsSql(QStringLiteral("1.5E3")).contains("FUniqueCode ='1.5E3'"));
    EXPECT_TRUE(BuildOrderGoodsSql(QStringLiteral("12-34")).contains(" Where t2.FLogisticsOrder ='12-34'\r\n"));
    EXPECT_TRUE(BuildOrderGoodsSql(QStringLiteral("0x1F")).contains(" Where t2.FLogisticsOrder ='0x1F'\r\n"));
    EXPECT_TRUE(BuildOrderGoodsSql(QStringLiteral("a'b")).contains("FLogisticsOrder ='a'b'"));
    EXPECT_EQ(PriceChangeFilterSql(), priceChangeFilter());

    // The barcode lookup reads the barcode table of all web orders.
    EXPECT_EQ(BuildBarCodeLookupSql(QStringLiteral("6901234567892")), barcodeLookup(QStringLiteral("6901234567892")));
    EXPECT_EQ(BuildBarCodeLookupSql(QString()).count(CrLf), 5);

    // The serial lookup is the three-branch union, line by line.
    const QString sn = QStringLiteral("SN-0001");
    const QStringList expected = serialLookupLines(sn);
    ASSERT_EQ(expected.size(), 84);
    const QString sql = BuildSerialLookupSql(sn);
    EXPECT_EQ(sql, eachLine(expected));
    EXPECT_EQ(sql.count(CrLf), 84);
    EXPECT_EQ(sql.count("'SN-0001'"), 3);
    // The serial is pasted as scanned: a quote in it reaches the server unchanged.
    EXPECT_EQ(BuildSerialLookupSql(QStringLiteral("A'B")).count("='A'B'"), 3);
}
