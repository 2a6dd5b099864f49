#include "station/station_sql.h"
#include "support/expected_statements.h"
#include <QStringList>
#include <gtest/gtest.h>

using namespace ExpectedSql;

TEST(StationSql, PickerSettingsAndOrderHeader)
{
    EXPECT_EQ(EmployeeSql(17), picker(17));
    EXPECT_EQ(EmployeeSql(-3), picker(-3));
    EXPECT_EQ(DeliverOnPickSql(), DeliverOnPick);
    EXPECT_EQ(CreateStockBillSql(), CreateStockBill);
    EXPECT_EQ(OrderHeaderSql(QStringLiteral("SF 1")), orderHeader(QStringLiteral("SF 1")));
}

TEST(StationSql, SerialGoodsQuestionMatchesByCodeKind)
{
    EXPECT_EQ(SerialGoodsSql(QStringLiteral("10001")), serialGoods(QStringLiteral("10001"), true));
    EXPECT_EQ(SerialGoodsSql(QStringLiteral("SF10001")), serialGoods(QStringLiteral("SF10001"), false));
    // The numeric test of the classic runtime: blanks around and a decimal point are numeric, a letter is not.
    EXPECT_EQ(SerialGoodsSql(QStringLiteral(" 12.5 ")), serialGoods(QStringLiteral(" 12.5 "), true));
    EXPECT_EQ(SerialGoodsSql(QStringLiteral("12a")), serialGoods(QStringLiteral("12a"), false));
}

TEST(StationSql, GoodsNumEveryGroupingAndHavingVariant)
{
    // Every option against both kinds of order; without serial goods the serial option does not matter.
    for (bool hasSerialGoods : {true, false})
        for (bool chkBarCode : {false, true})
            for (bool chkHaveSerial : {false, true}) {
                SCOPED_TRACE(testing::Message() << "serial goods " << hasSerialGoods << ", barcode " << chkBarCode
                                                << ", have serial " << chkHaveSerial);
                EXPECT_EQ(GoodsNumSql(QStringLiteral("10001"), hasSerialGoods, chkBarCode, chkHaveSerial),
                          goodsQuantity(QStringLiteral("10001"), true, hasSerialGoods, chkBarCode, chkHaveSerial));
            }

    // A code with a letter matches by logistics number only; an empty code too.
    EXPECT_EQ(GoodsNumSql(QStringLiteral("SF10001"), false, false, false),
              goodsQuantity(QStringLiteral("SF10001"), false, false, false, false));
    EXPECT_EQ(GoodsNumSql(QString(), false, false, false), goodsQuantity(QString(), false, false, false, false));
    EXPECT_FALSE(GoodsNumSql(QStringLiteral("1"), false, true, false).endsWith(CrLf));
}
