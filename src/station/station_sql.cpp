#include "station/station_sql.h"
#include "host/platform.h"
#include <QStringList>

namespace {
const QString CrLf = QStringLiteral("\r\n");

QString quoted(const QString& code)
{
    return QStringLiteral("'") + code + QStringLiteral("'");
}
} // namespace

QString EmployeeSql(qint32 userId)
{
    return QStringLiteral("select t2.FItemID,t2.FNumber,t2.FShortNumber,t2.FName from t_User t1 "
                          "Inner join t_Emp t2 on t1.FEmpID=t2.FItemID and t1.FUserID=")
        + QString::number(userId);
}

QString CompanySettingSql(const QString& key)
{
    return QStringLiteral("SELECT FValue  FROM t_SystemProfile WHERE FCategory = 'EC' AND FKey = ") + quoted(key);
}

QString DeliverOnPickSql() { return CompanySettingSql(QStringLiteral("DeliveryWhenWeightedOrPick")); }
QString CreateStockBillSql() { return CompanySettingSql(QStringLiteral("CreateStockBillType")); }

QString OrderHeaderSql(const QString& code)
{
    return QStringLiteral(" select t1.FID,isnull(t1.FPIckingGoodsStatus,0) as FPIckingGoodsStatus,"
                          "ISNULL(t2.FIsLock,0) as FIsLock from ic_web2erporders t1 with(nolock) ")
        + CrLf
        + QStringLiteral(" left join IC_Web2ERPOrdersEx t2 with(nolock) on t1.fid =t2.fid ") + CrLf
        + QStringLiteral(" where t1.FUniqueCode =") + quoted(code)
        + QStringLiteral(" or t1.FLogisticsOrder =") + quoted(code) + QStringLiteral(" ") + CrLf;
}

QString SerialGoodsSql(const QString& code)
{
    QString sql = QStringLiteral("select 1 from ic_web2erpordersentry t1 with(nolock) inner join ic_web2erporders t2 with(nolock) ")
        + QStringLiteral("on t1.FID =t2.FID  LEFT Join t_ICItem t3 with(nolock) on t1.FItemID =t3.FItemID "
                         "where IsNull(t3.FIsSnManage,0)=1 and");
    if (IsNumeric(code))
        sql += QStringLiteral("  (t2.FUniqueCode =") + quoted(code) + QStringLiteral(" OR t2.FLogisticsOrder =")
            + quoted(code) + QStringLiteral(")");
    else
        sql += QStringLiteral("  t2.FLogisticsOrder =") + quoted(code);
    return sql;
}

QString GoodsNumSql(const QString& code, bool orderHasSerialGoods, bool barCodeOnly, bool countSerialGoods)
{
    QStringList pieces;
    pieces << QStringLiteral("Select t1.FItemID,t3.FName as FItemName,sum(t1.FQuantity) as FQuantity")
           << QStringLiteral(" from IC_Web2ERPOrdersEntry t1 with(nolock) ")
           << QStringLiteral(" INNER Join IC_Web2ERPOrders t2 with(nolock) on t1.FID=t2.FID AND t2.FOrderStatus = 6 ")
           << QStringLiteral(" LEFT Join t_ICItem t3 with(nolock) on t1.FItemID =t3.FItemID ");
    if (IsNumeric(code))
        pieces << QStringLiteral(" Where (t2.FUniqueCode =") + quoted(code) + QStringLiteral(" OR t2.FLogisticsOrder =")
                + quoted(code) + QStringLiteral(")");
    else
        pieces << QStringLiteral(" Where t2.FLogisticsOrder =") + quoted(code);
    // Goods mapped to a price-change material of the order's web shop are no goods to pick.
    pieces << QStringLiteral(" AND NOT EXISTS (SELECT 1")
           << QStringLiteral("FROM    IC_GoodsToMateriel t6 with(nolock) ")
           << QStringLiteral("INNER JOIN t_ICItem t7 with(nolock) ON t6.FMaterielCode = t7.FNumber")
           << QStringLiteral("WHERE t6.FIsPriceChange = 1 And t7.FItemID = t1.FItemID")
           << QStringLiteral("AND t6.FWebshopID = t2.FWebshopID)");
    if (orderHasSerialGoods) {
        pieces << QStringLiteral("group by t2.FOrderStatus, t3.FBarcode ,t3.FIsSnManage, t2.FLogisticsOrder,t2.FLogisticsComp, t1.FItemID,t3.FName ");
        if (barCodeOnly)
            pieces << (countSerialGoods ? QStringLiteral("having t3.FBarcode <> '' or IsNull(t3.FIsSnManage,0)=1 ")
                                        : QStringLiteral("having t3.FBarcode <> '' "));
    } else {
        pieces << QStringLiteral("group by t2.FOrderStatus, t3.FBarcode , t2.FLogisticsOrder,t2.FLogisticsComp, t1.FItemID,t3.FName ");
        if (barCodeOnly)
            pieces << QStringLiteral("having t3.FBarcode <> ''");
    }
    return pieces.join(CrLf);
}
