#include "orderdata/lookup_statements.h"
#include "host/platform.h"

namespace {
const QString CrLf = QStringLiteral("\r\n");
} // namespace

QString PriceChangeFilterSql()
{
    return QStringLiteral(" AND NOT EXISTS (SELECT 1") + CrLf
        + QStringLiteral("FROM    IC_GoodsToMateriel t6 with(nolock) ") + CrLf
        + QStringLiteral("INNER JOIN t_ICItem t7 with(nolock) ON t6.FMaterielCode = t7.FNumber") + CrLf
        + QStringLiteral("WHERE t6.FIsPriceChange = 1 And t7.FItemID = t1.FItemID") + CrLf
        + QStringLiteral("AND t6.FWebshopID = t2.FWebshopID)") + CrLf;
}

QString BuildOrderGoodsSql(const QString& code)
{
    QString sql;
    sql += QStringLiteral("Select t1.FEntryID,t1.FBatchNo,t1.FSPID,t1.FStockID,t1.FItemID,ISNULL(t3.FModel,'') as FModel,ISNULL(t3.FName,'') as FItemName,ISNULL(t3.FBarcode,'') AS FBarCode,ISNULL(t3.FSerialClassID,0) as FSerialClassID ,ISNULL(t4.FID,0) as FPicID,t5.FWebshopName,t1.FQuantity  ") + CrLf;
    sql += QStringLiteral(" from IC_Web2ERPOrdersEntry t1 with(nolock) ") + CrLf;
    sql += QStringLiteral(" INNER Join IC_Web2ERPOrders t2 with(nolock) on t1.FID=t2.FID AND t2.FOrderStatus = 6 ") + CrLf;
    sql += QStringLiteral(" LEFT Join t_ICItem t3 with(nolock) on t1.FItemID =t3.FItemID ") + CrLf;
    sql += QStringLiteral(" LEFT Join t_Accessory t4 with(nolock) on t1.FItemID=t4.FItemID ") + CrLf;
    sql += QStringLiteral(" LEFT JOIN IC_WebshopToStorage t5 with(nolock) ON t2.FWebshopID = t5.FWebshopID") + CrLf;
    // A code with letters can only be a logistics number. The numeric branch
    // has no line break before the filter; the server does not mind.
    if (IsNumeric(code))
        sql += QStringLiteral(" Where (t2.FUniqueCode ='") + code + QStringLiteral("' OR t2.FLogisticsOrder ='") + code + QStringLiteral("')");
    else
        sql += QStringLiteral(" Where t2.FLogisticsOrder ='") + code + QStringLiteral("'") + CrLf;
    sql += PriceChangeFilterSql();
    return sql;
}

QString BuildBarCodeLookupSql(const QString& barCode)
{
    return QStringLiteral("select top 1 t3.FBarCode ,t1.FItemID,t5.FSerialClassID  ")
        + QStringLiteral(" from IC_Web2ERPOrdersEntry t1 with(nolock) ")
        + QStringLiteral(" INNER Join IC_Web2ERPOrders t2 with(nolock) on t1.FID=t2.FID ")
        + QStringLiteral(" left join t_Barcode t3 with(nolock) on t1.FItemID=t3.FItemID ")
        + QStringLiteral(" LEFT Join t_Accessory t4 with(nolock)  on t1.FItemID=t4.FItemID ")
        + QStringLiteral(" LEFT Join t_ICItem t5 with(nolock) on t1.FItemID=t5.FItemID ")
        + QStringLiteral(" where t3.FBarCode  ='") + barCode + QStringLiteral("'")
        + PriceChangeFilterSql();
}

// The union's three branches: serials in a transfer not yet valid, every
// movement on a stock bill, and the opening balance. "top 1" without an order
// leaves the choice between branches to the server, as it always has.
QString BuildSerialLookupSql(const QString& serialNumber)
{
    QString sql;
    sql.reserve(12000);
    sql += QStringLiteral(" select  top 1 FSerialID, FSerialNum ,FItemID,FStockID,FStockPlace,FBatchNo,FStockName,FStockPlaceName,FItemnumber,FKFPeriod,FKFDate,FLimitDate,FSerialClassID,FSerialID,F_S001,FStatus from ") + CrLf;
    sql += QStringLiteral(" (Select ts.FSerialNum As FSerialNum,t.FItemID,ts.FStockID,ts.FStockPlace,ts.FBatchNo,tk.FName As FStockName,tp.FName As FStockPlaceName,t.FNumber as FItemnumber,") + CrLf;
    sql += QStringLiteral("      t.FName As FItemName,ta.FName As FAuxPropName,t.FModel,Case When ts.FKFPeriod=0 Then '' Else LTrim(Str(ts.FKFPeriod)) End As FKFPeriod,ts.FKFDate,") + CrLf;
    sql += QStringLiteral("      Case When ts.FKFDate='' Then '' Else Convert(Varchar(10),DateAdd(Day,ts.FKFPeriod,ts.FKFDate),111) End As FLimitDate,ts.FSerialClassID,ts.FSerialID,ts1.F_S001,") + CrLf;
    sql += QStringLiteral(" '预入库' As FStatus,") + CrLf;
    sql += QStringLiteral("          tk.FNumber As FStockNumber,tp.FNumber As FStockPlaceNumber,tko.FNumber As FOutStockNumber,tko.FName As FOutStockName,tpo.FNumber As FOutStockPlaceNumber,tpo.FName As FOutStockPlaceName,") + CrLf;
    sql += QStringLiteral("      '仓库调拨' As FLasttranType,") + CrLf;
    sql += QStringLiteral("  case when len(tt.FName)>0 then tt.Fname else tt3.Fname end as FWanglaiName, ") + CrLf;
    sql += QStringLiteral("      ts.FInterID,ts.FSNListID,1 As FSumSort,1 AS FOrder") + CrLf;
    sql += QStringLiteral("      From ICSerial ts with(nolock)") + CrLf;
    sql += QStringLiteral("      Inner Join ICStockBill tb with(nolock) On tb.FInterID=ts.FInterID") + CrLf;
    sql += QStringLiteral("      Inner Join ICSerial_F1 ts1 with(nolock)  On ts1.FSerialClassID=ts.FSerialClassID And ts1.FSerialID=ts.FSerialID") + CrLf;
    sql += QStringLiteral("      Inner Join t_ICItem t with(nolock) On t.FItemID=ts.FItemID") + CrLf;
    sql += QStringLiteral("      Left Join t_AuxItem ta with(nolock) On ta.FItemID=ts.FAuxPropID") + CrLf;
    sql += QStringLiteral("      Left Join t_Stock tk with(nolock) On tk.FItemID=ts.FStockID") + CrLf;
    sql += QStringLiteral("      Left Join t_StockPlace tp with(nolock) On tp.FSPID=ts.FStockPlace ") + CrLf;
    sql += QStringLiteral("      Left Join t_Stock tko with(nolock) On tko.FItemID=ts.FOutStockID") + CrLf;
    sql += QStringLiteral("      Left Join t_StockPlace tpo with(nolock) On tpo.FSPID=ts.FOutStockPlace") + CrLf;
    sql += QStringLiteral("      left join t_Supplier tt with(nolock) on tb.FSupplyID=tt.FitemID ") + CrLf;
    sql += QStringLiteral("       left join t_Organization tt3 with(nolock) on tb.FSupplyID=tt3.FItemID ") + CrLf;
    // "1AND" stays glued: the server reads it, and the statement is sent as it always was.
    sql += QStringLiteral("       Where ts.FSerialClassID=1AND ts.FTrantypeID = 41 AND ts.FValid=0  and ts.FSerialNum  ='") + serialNumber + QStringLiteral("'") + CrLf;
    sql += QStringLiteral("      UNION ALL") + CrLf;
    sql += QStringLiteral("      Select ts.FSerialNum As FSerialNum,t.FItemID,ts.FStockID,ts.FStockPlace,ts.FBatchNo,tk.FName As FStockName,tp.FName As FStockPlaceName,t.FNumber as FItemnumber,") + CrLf;
    sql += QStringLiteral("           t.FName As FItemName,ta.FName As FAuxPropName,t.FModel,Case When ts.FKFPeriod=0 Then '' Else LTrim(Str(ts.FKFPeriod)) End As FKFPeriod,ts.FKFDate, ") + CrLf;
    sql += QStringLiteral("           Case When ts.FKFDate='' Then '' Else Convert(Varchar(10),DateAdd(Day,ts.FKFPeriod,ts.FKFDate),111) End As FLimitDate,ts.FSerialClassID,ts.FSerialID,ts1.F_S001,") + CrLf;
    sql += QStringLiteral("           Case When ts.FTranTypeID In (1,2,5,10,40) And tb.FRob=1 And ts.FValid=0 Then '预入库' ") + CrLf;
    sql += QStringLiteral("      When ts.FTranTypeID In (1,2,5,10,40) And tb.FRob=1 And ts.FValid=1 Then '在库'") + CrLf;
    sql += QStringLiteral("      When ts.FTranTypeID In (1,2,5,10,40) And tb.FRob=-1 And ts.FValid=0 Then '预退库'") + CrLf;
    sql += QStringLiteral("      When ts.FTranTypeID In (1,2,5,10,40) And tb.FRob=-1 And ts.FValid=1 Then '退库'") + CrLf;
    sql += QStringLiteral("      When ts.FTranTypeID In (21,24,28,29,43) And tb.FRob=-1 And ts.FValid=0 Then '预入库'") + CrLf;
    sql += QStringLiteral("      When ts.FTranTypeID In (21,24,28,29,43) And tb.FRob=-1 And ts.FValid=1 Then '在库'") + CrLf;
    sql += QStringLiteral("      When ts.FTranTypeID In (21,24,28,29,43) And tb.FRob=1 And ts.FValid=0 Then '预出库'") + CrLf;
    sql += QStringLiteral("      When ts.FTranTypeID In (21,24,28,29,43) And tb.FRob=1 And ts.FValid=1 Then '出库'") + CrLf;
    sql += QStringLiteral("      When ts.FTranTypeID =41 And ts.FValid=1 Then '在库' ") + CrLf;
    sql += QStringLiteral("      When ts.FTranTypeID =41 And ts.FValid=0 Then '预出库' End As FStatus,") + CrLf;
    sql += QStringLiteral("      tk.FNumber As FStockNumber,tp.FNumber As FStockPlaceNumber,tko.FNumber As FOutStockNumber,tko.FName As FOutStockName,tpo.FNumber As FOutStockPlaceNumber,tpo.FName As FOutStockPlaceName,") + CrLf;
    sql += QStringLiteral("      Case When ts.FTranTypeID=1 Then '外购入库'") + CrLf;
    sql += QStringLiteral("      When ts.FTranTypeID=2 Then '产品入库'") + CrLf;
    sql += QStringLiteral("      When ts.FTranTypeID=5 Then '委外加工入库'") + CrLf;
    sql += QStringLiteral("      When ts.FTranTypeID=10 Then '其他入库'") + CrLf;
    sql += QStringLiteral("      When ts.FTranTypeID=21 Then '销售出库'") + CrLf;
    sql += QStringLiteral("      When ts.FTranTypeID=24 Then '生产领料'") + CrLf;
    sql += QStringLiteral("      When ts.FTranTypeID=28 Then '委外加工发出'") + CrLf;
    sql += QStringLiteral("      When ts.FTranTypeID=29 Then '其他出库'") + CrLf;
    sql += QStringLiteral("      When ts.FTranTypeID=40 Then '盘盈入库'") + CrLf;
    sql += QStringLiteral("      When ts.FTranTypeID=41 Then '仓库调拨'") + CrLf;
    sql += QStringLiteral("      When ts.FTranTypeID=43 Then '盘亏毁损'") + CrLf;
    sql += QStringLiteral("      When ts.FTranTypeID=-1 Then '初始化' End As FLasttranType,") + CrLf;
    sql += QStringLiteral("      case when len(tt.FName)>0 then tt.Fname else tt3.Fname end as FWanglaiName,") + CrLf;
    sql += QStringLiteral("      ts.FInterID,ts.FSNListID,1 As FSumSort,0 AS FOrder") + CrLf;
    sql += QStringLiteral("      From ICSerial ts with(nolock)") + CrLf;
    sql += QStringLiteral("      Inner Join ICStockBill tb with(nolock) On tb.FInterID=ts.FInterID") + CrLf;
    sql += QStringLiteral("      Inner Join ICSerial_F1 ts1 with(nolock) On ts1.FSerialClassID=ts.FSerialClassID And ts1.FSerialID=ts.FSerialID") + CrLf;
    sql += QStringLiteral("      Inner Join t_ICItem t with(nolock) On t.FItemID=ts.FItemID") + CrLf;
    sql += QStringLiteral("      Left Join t_AuxItem ta with(nolock) On ta.FItemID=ts.FAuxPropID") + CrLf;
    sql += QStringLiteral("      Left Join t_Stock tk with(nolock) On tk.FItemID=(case when ts.FTranTypeID=41 and ts.FValid=0 Then ts.foutstockid else ts.FStockID end)") + CrLf;
    sql += QStringLiteral("      Left Join t_StockPlace tp with(nolock) On tp.FSPID=(case when ts.FTranTypeID=41 and ts.FValid=0 Then ts.FoutStockPlace else ts.FStockPlace end )") + CrLf;
    sql += QStringLiteral("      Left Join t_Stock tko with(nolock) On tko.FItemID=ts.FOutStockID") + CrLf;
    sql += QStringLiteral("      Left Join t_StockPlace tpo with(nolock) On tpo.FSPID=ts.FOutStockPlace") + CrLf;
    sql += QStringLiteral("      left join t_Supplier tt with(nolock) on tb.FSupplyID=tt.FitemID") + CrLf;
    sql += QStringLiteral("      left join t_Organization tt3 with(nolock) on tb.FSupplyID=tt3.FItemID") + CrLf;
    sql += QStringLiteral("      Where ts.FSerialClassID=1 and  ts.FSerialNum  ='") + serialNumber + QStringLiteral("'") + CrLf;
    sql += QStringLiteral("      Union All") + CrLf;
    sql += QStringLiteral("      Select ts.FSerialNum As FSerialNum,t.FItemID,ts.FStockID,ts.FStockPlace,ts.FBatchNo,tk.FName As FStockName,tp.FName As FStockPlaceName,t.FNumber as FItemnumber,") + CrLf;
    sql += QStringLiteral("           t.FName As FItemName,ta.FName As FAuxPropName,t.FModel,Case When ts.FKFPeriod=0 Then '' Else LTrim(Str(ts.FKFPeriod)) End As FKFPeriod,ts.FKFDate,") + CrLf;
    sql += QStringLiteral("           Case When ts.FKFDate='' Then '' Else Convert(Varchar(10),DateAdd(Day,ts.FKFPeriod,ts.FKFDate),111) End As FLimitDate,ts.FSerialClassID,ts.FSerialID,ts1.F_S001,") + CrLf;
    sql += QStringLiteral("           Case ts.FValid When 1 Then '在库' Else '预入库' End As FStatus,         tk.FNumber As FStockNumber,tp.FNumber As FStockPlaceNumber,tko.FNumber As FOutStockNumber,tko.FName As FOutStockName,tpo.FNumber As FOutStockPlaceNumber,tpo.FName As FOutStockPlaceName,") + CrLf;
    sql += QStringLiteral("      '初始化' As FLasttranType,") + CrLf;
    sql += QStringLiteral("      case when len(tt.FName)>0 then tt.Fname else tt3.Fname end as FWanglaiName,") + CrLf;
    sql += QStringLiteral("      ts.FInterID,ts.FSNListID,1 As FSumSort,0 AS FOrder") + CrLf;
    sql += QStringLiteral("      From ICSerial ts with(nolock)") + CrLf;
    sql += QStringLiteral("      Inner Join IcInvInitial tb with(nolock) On tb.FSNListID=ts.FSNListID") + CrLf;
    sql += QStringLiteral("      Inner Join ICSerial_F1 ts1 with(nolock) On ts1.FSerialClassID=ts.FSerialClassID And ts1.FSerialID=ts.FSerialID") + CrLf;
    sql += QStringLiteral("      Inner Join t_ICItem t with(nolock) On t.FItemID=ts.FItemID") + CrLf;
    sql += QStringLiteral("      Left Join t_AuxItem ta with(nolock) On ta.FItemID=ts.FAuxPropID") + CrLf;
    sql += QStringLiteral("      Left Join t_Stock tk with(nolock) On tk.FItemID=(case when ts.FTranTypeID=41 and ts.FValid=0 Then ts.foutstockid else ts.FStockID end)") + CrLf;
    sql += QStringLiteral("      Left Join t_StockPlace tp with(nolock) On tp.FSPID=(case when ts.FTranTypeID=41 and ts.FValid=0 Then ts.FoutStockPlace else ts.FStockPlace end )") + CrLf;
    sql += QStringLiteral("      Left Join t_Stock tko with(nolock) On tko.FItemID=ts.FOutStockID") + CrLf;
    sql += QStringLiteral("      Left Join t_StockPlace tpo with(nolock) On tpo.FSPID=ts.FOutStockPlace") + CrLf;
    sql += QStringLiteral("      left join ICStockBill tbb with(nolock) on tbb.FInterID=ts.FInterID") + CrLf;
    sql += QStringLiteral("      left join t_Supplier tt with(nolock) on tbb.FSupplyID=tt.FitemID") + CrLf;
    sql += QStringLiteral("      left join t_Organization tt3 with(nolock) on tbb.FSupplyID=tt3.FItemID") + CrLf;
    sql += QStringLiteral("      Where ts.FSerialClassID=1 and ts.FSerialNum  ='") + serialNumber + QStringLiteral("'") + CrLf;
    sql += QStringLiteral("      ) a") + CrLf;
    return sql;
}
