#include "station/station_sql.h"
#include <QStringList>
#include <gtest/gtest.h>

namespace {

const QString CrLf = QStringLiteral("\r\n");

// The quantity statement as a list of its pieces, so every case below spells
// out which pieces it expects.
QStringList goodsNumHead(const QString& where)
{
    return {
        QStringLiteral("Select t1.FItemID,t3.FName as FItemName,sum(t1.FQuantity) as FQuantity"),
        QStringLiteral(" from IC_Web2ERPOrdersEntry t1 with(nolock) "),
        QStringLiteral(" INNER Join IC_Web2ERPOrders t2 with(nolock) on t1.FID=t2.FID AND t2.FOrderStatus = 6 "),
        QStringLiteral(" LEFT Join t_ICItem t3 with(nolock) on t1.FItemID =t3.FItemID "),
        where,
        QStringLiteral(" AND NOT EXISTS (SELECT 1"),
        QStringLiteral("FROM    IC_GoodsToMateriel t6 with(nolock) "),
        QStringLiteral("INNER JOIN t_ICItem t7 with(nolock) ON t6.FMaterielCode = t7.FNumber"),
        QStringLiteral("WHERE t6.FIsPriceChange = 1 And t7.FItemID = t1.FItemID"),
        QStringLiteral("AND t6.FWebshopID = t2.FWebshopID)"),
    };
}

const QString NumericWhere = QStringLiteral(" Where (t2.FUniqueCode ='10001' OR t2.FLogisticsOrder ='10001')");
const QString SerialGroup = QStringLiteral(
    "group by t2.FOrderStatus, t3.FBarcode ,t3.FIsSnManage, t2.FLogisticsOrder,t2.FLogisticsComp, t1.FItemID,t3.FName ");
const QString PlainGroup = QStringLiteral(
    "group by t2.FOrderStatus, t3.FBarcode , t2.FLogisticsOrder,t2.FLogisticsComp, t1.FItemID,t3.FName ");

} // namespace

TEST(StationSql, PickerSettingsAndOrderHeader)
{
    EXPECT_EQ(EmployeeSql(17),
              QStringLiteral("select t2.FItemID,t2.FNumber,t2.FShortNumber,t2.FName from t_User t1 Inner join t_Emp t2 "
                             "on t1.FEmpID=t2.FItemID and t1.FUserID=17"));
    EXPECT_TRUE(EmployeeSql(-3).endsWith(QStringLiteral("t1.FUserID=-3")));

    EXPECT_EQ(DeliverOnPickSql(), QStringLiteral("SELECT FValue  FROM t_SystemProfile WHERE FCategory = 'EC' AND "
                                                 "FKey = 'DeliveryWhenWeightedOrPick'"));
    EXPECT_EQ(CreateStockBillSql(), QStringLiteral("SELECT FValue  FROM t_SystemProfile WHERE FCategory = 'EC' AND "
                                                   "FKey = 'CreateStockBillType'"));

    const QString header = QStringLiteral(
        " select t1.FID,isnull(t1.FPIckingGoodsStatus,0) as FPIckingGoodsStatus,ISNULL(t2.FIsLock,0) as FIsLock "
        "from ic_web2erporders t1 with(nolock) ") + CrLf
        + QStringLiteral(" left join IC_Web2ERPOrdersEx t2 with(nolock) on t1.fid =t2.fid ") + CrLf
        + QStringLiteral(" where t1.FUniqueCode ='SF 1' or t1.FLogisticsOrder ='SF 1' ") + CrLf;
    EXPECT_EQ(OrderHeaderSql(QStringLiteral("SF 1")), header);
}

TEST(StationSql, SerialGoodsQuestionMatchesByCodeKind)
{
    const QString head = QStringLiteral(
        "select 1 from ic_web2erpordersentry t1 with(nolock) inner join ic_web2erporders t2 with(nolock) "
        "on t1.FID =t2.FID  LEFT Join t_ICItem t3 with(nolock) on t1.FItemID =t3.FItemID where IsNull(t3.FIsSnManage,0)=1 and");
    EXPECT_EQ(SerialGoodsSql(QStringLiteral("10001")),
              head + QStringLiteral("  (t2.FUniqueCode ='10001' OR t2.FLogisticsOrder ='10001')"));
    EXPECT_EQ(SerialGoodsSql(QStringLiteral("SF10001")), head + QStringLiteral("  t2.FLogisticsOrder ='SF10001'"));
    // The numeric test of the classic runtime: blanks around and a decimal point are numeric, a letter is not.
    EXPECT_TRUE(SerialGoodsSql(QStringLiteral(" 12.5 ")).contains(QStringLiteral("FUniqueCode =' 12.5 '")));
    EXPECT_FALSE(SerialGoodsSql(QStringLiteral("12a")).contains(QStringLiteral("FUniqueCode")));
}

TEST(StationSql, GoodsNumEveryGroupingAndHavingVariant)
{
    // Order with serial goods.
    QStringList pieces = goodsNumHead(NumericWhere);
    EXPECT_EQ(GoodsNumSql(QStringLiteral("10001"), true, false, false), (pieces + QStringList{SerialGroup}).join(CrLf));
    EXPECT_EQ(GoodsNumSql(QStringLiteral("10001"), true, false, true), (pieces + QStringList{SerialGroup}).join(CrLf));
    EXPECT_EQ(GoodsNumSql(QStringLiteral("10001"), true, true, false),
              (pieces + QStringList{SerialGroup, QStringLiteral("having t3.FBarcode <> '' ")}).join(CrLf));
    EXPECT_EQ(GoodsNumSql(QStringLiteral("10001"), true, true, true),
              (pieces + QStringList{SerialGroup, QStringLiteral("having t3.FBarcode <> '' or IsNull(t3.FIsSnManage,0)=1 ")})
                  .join(CrLf));

    // Order without serial goods: the serial option does not matter.
    EXPECT_EQ(GoodsNumSql(QStringLiteral("10001"), false, false, false), (pieces + QStringList{PlainGroup}).join(CrLf));
    EXPECT_EQ(GoodsNumSql(QStringLiteral("10001"), false, false, true), (pieces + QStringList{PlainGroup}).join(CrLf));
    const QString plainHaving = (pieces + QStringList{PlainGroup, QStringLiteral("having t3.FBarcode <> ''")}).join(CrLf);
    EXPECT_EQ(GoodsNumSql(QStringLiteral("10001"), false, true, false), plainHaving);
    EXPECT_EQ(GoodsNumSql(QStringLiteral("10001"), false, true, true), plainHaving);

    // A code with a letter matches by logistics number only; an empty code too.
    pieces = goodsNumHead(QStringLiteral(" Where t2.FLogisticsOrder ='SF10001'"));
    EXPECT_EQ(GoodsNumSql(QStringLiteral("SF10001"), false, false, false), (pieces + QStringList{PlainGroup}).join(CrLf));
    pieces = goodsNumHead(QStringLiteral(" Where t2.FLogisticsOrder =''"));
    EXPECT_EQ(GoodsNumSql(QString(), false, false, false), (pieces + QStringList{PlainGroup}).join(CrLf));
    EXPECT_FALSE(GoodsNumSql(QStringLiteral("1"), false, true, false).endsWith(CrLf));
}
