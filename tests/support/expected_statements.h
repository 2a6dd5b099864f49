// The statements the station sends, written out once for every test that
// compares against them or runs them on the demo database. Built from the
// texts alone (no product code), so a change in the product shows up here.
#pragma once

#include <QString>
#include <QStringList>

namespace ExpectedSql {

inline const QString CrLf = QStringLiteral("\r\n");

// Lines joined by CR LF, the last one ended by CR LF as well.
inline QString eachLine(const QStringList& pieces)
{
    return pieces.join(CrLf) + CrLf;
}

// The lines of the filter that leaves out price-change goods.
inline const QStringList PriceChangeFilterTail = {
    "FROM    IC_GoodsToMateriel t6 with(nolock) ",
    "INNER JOIN t_ICItem t7 with(nolock) ON t6.FMaterielCode = t7.FNumber",
    "WHERE t6.FIsPriceChange = 1 And t7.FItemID = t1.FItemID",
    "AND t6.FWebshopID = t2.FWebshopID)",
};

inline QString priceChangeFilter()
{
    return eachLine(QStringList{" AND NOT EXISTS (SELECT 1"} + PriceChangeFilterTail);
}

// A numeric code matches unique code or logistics number, any other the
// logistics number only; the caller says which kind the code is.
inline QString orderGoods(const QString& code, bool numeric)
{
    QString sql = eachLine({
        "Select t1.FEntryID,t1.FBatchNo,t1.FSPID,t1.FStockID,t1.FItemID,ISNULL(t3.FModel,'') as FModel,ISNULL(t3.FName,'') as FItemName,ISNULL(t3.FBarcode,'') AS FBarCode,ISNULL(t3.FSerialClassID,0) as FSerialClassID ,ISNULL(t4.FID,0) as FPicID,t5.FWebshopName,t1.FQuantity  ",
        " from IC_Web2ERPOrdersEntry t1 with(nolock) ",
        " INNER Join IC_Web2ERPOrders t2 with(nolock) on t1.FID=t2.FID AND t2.FOrderStatus = 6 ",
        " LEFT Join t_ICItem t3 with(nolock) on t1.FItemID =t3.FItemID ",
        " LEFT Join t_Accessory t4 with(nolock) on t1.FItemID=t4.FItemID ",
        " LEFT JOIN IC_WebshopToStorage t5 with(nolock) ON t2.FWebshopID = t5.FWebshopID"});
    if (numeric)
        sql += " Where (t2.FUniqueCode ='" + code + "' OR t2.FLogisticsOrder ='" + code + "')";
    else
        sql += " Where t2.FLogisticsOrder ='" + code + "'" + CrLf;
    return sql + priceChangeFilter();
}

inline QString barcodeLookup(const QString& barCode)
{
    return "select top 1 t3.FBarCode ,t1.FItemID,t5.FSerialClassID  "
           " from IC_Web2ERPOrdersEntry t1 with(nolock) "
           " INNER Join IC_Web2ERPOrders t2 with(nolock) on t1.FID=t2.FID "
           " left join t_Barcode t3 with(nolock) on t1.FItemID=t3.FItemID "
           " LEFT Join t_Accessory t4 with(nolock)  on t1.FItemID=t4.FItemID "
           " LEFT Join t_ICItem t5 with(nolock) on t1.FItemID=t5.FItemID "
           " where t3.FBarCode  ='" + barCode + "'" + priceChangeFilter();
}

// The three-branch union of the serial lookup, one entry a line (84 lines).
inline QStringList serialLookupLines(const QString& serial)
{
    return {
        " select  top 1 FSerialID, FSerialNum ,FItemID,FStockID,FStockPlace,FBatchNo,FStockName,FStockPlaceName,FItemnumber,FKFPeriod,FKFDate,FLimitDate,FSerialClassID,FSerialID,F_S001,FStatus from ",
        " (Select ts.FSerialNum As FSerialNum,t.FItemID,ts.FStockID,ts.FStockPlace,ts.FBatchNo,tk.FName As FStockName,tp.FName As FStockPlaceName,t.FNumber as FItemnumber,",
        "      t.FName As FItemName,ta.FName As FAuxPropName,t.FModel,Case When ts.FKFPeriod=0 Then '' Else LTrim(Str(ts.FKFPeriod)) End As FKFPeriod,ts.FKFDate,",
        "      Case When ts.FKFDate='' Then '' Else Convert(Varchar(10),DateAdd(Day,ts.FKFPeriod,ts.FKFDate),111) End As FLimitDate,ts.FSerialClassID,ts.FSerialID,ts1.F_S001,",
        " '预入库' As FStatus,",
        "          tk.FNumber As FStockNumber,tp.FNumber As FStockPlaceNumber,tko.FNumber As FOutStockNumber,tko.FName As FOutStockName,tpo.FNumber As FOutStockPlaceNumber,tpo.FName As FOutStockPlaceName,",
        "      '仓库调拨' As FLasttranType,",
        "  case when len(tt.FName)>0 then tt.Fname else tt3.Fname end as FWanglaiName, ",
        "      ts.FInterID,ts.FSNListID,1 As FSumSort,1 AS FOrder",
        "      From ICSerial ts with(nolock)",
        "      Inner Join ICStockBill tb with(nolock) On tb.FInterID=ts.FInterID",
        "      Inner Join ICSerial_F1 ts1 with(nolock)  On ts1.FSerialClassID=ts.FSerialClassID And ts1.FSerialID=ts.FSerialID",
        "      Inner Join t_ICItem t with(nolock) On t.FItemID=ts.FItemID",
        "      Left Join t_AuxItem ta with(nolock) On ta.FItemID=ts.FAuxPropID",
        "      Left Join t_Stock tk with(nolock) On tk.FItemID=ts.FStockID",
        "      Left Join t_StockPlace tp with(nolock) On tp.FSPID=ts.FStockPlace ",
        "      Left Join t_Stock tko with(nolock) On tko.FItemID=ts.FOutStockID",
        "      Left Join t_StockPlace tpo with(nolock) On tpo.FSPID=ts.FOutStockPlace",
        "      left join t_Supplier tt with(nolock) on tb.FSupplyID=tt.FitemID ",
        "       left join t_Organization tt3 with(nolock) on tb.FSupplyID=tt3.FItemID ",
        "       Where ts.FSerialClassID=1AND ts.FTrantypeID = 41 AND ts.FValid=0  and ts.FSerialNum  ='" + serial + "'",
        "      UNION ALL",
        "      Select ts.FSerialNum As FSerialNum,t.FItemID,ts.FStockID,ts.FStockPlace,ts.FBatchNo,tk.FName As FStockName,tp.FName As FStockPlaceName,t.FNumber as FItemnumber,",
        "           t.FName As FItemName,ta.FName As FAuxPropName,t.FModel,Case When ts.FKFPeriod=0 Then '' Else LTrim(Str(ts.FKFPeriod)) End As FKFPeriod,ts.FKFDate, ",
        "           Case When ts.FKFDate='' Then '' Else Convert(Varchar(10),DateAdd(Day,ts.FKFPeriod,ts.FKFDate),111) End As FLimitDate,ts.FSerialClassID,ts.FSerialID,ts1.F_S001,",
        "           Case When ts.FTranTypeID In (1,2,5,10,40) And tb.FRob=1 And ts.FValid=0 Then '预入库' ",
        "      When ts.FTranTypeID In (1,2,5,10,40) And tb.FRob=1 And ts.FValid=1 Then '在库'",
        "      When ts.FTranTypeID In (1,2,5,10,40) And tb.FRob=-1 And ts.FValid=0 Then '预退库'",
        "      When ts.FTranTypeID In (1,2,5,10,40) And tb.FRob=-1 And ts.FValid=1 Then '退库'",
        "      When ts.FTranTypeID In (21,24,28,29,43) And tb.FRob=-1 And ts.FValid=0 Then '预入库'",
        "      When ts.FTranTypeID In (21,24,28,29,43) And tb.FRob=-1 And ts.FValid=1 Then '在库'",
        "      When ts.FTranTypeID In (21,24,28,29,43) And tb.FRob=1 And ts.FValid=0 Then '预出库'",
        "      When ts.FTranTypeID In (21,24,28,29,43) And tb.FRob=1 And ts.FValid=1 Then '出库'",
        "      When ts.FTranTypeID =41 And ts.FValid=1 Then '在库' ",
        "      When ts.FTranTypeID =41 And ts.FValid=0 Then '预出库' End As FStatus,",
        "      tk.FNumber As FStockNumber,tp.FNumber As FStockPlaceNumber,tko.FNumber As FOutStockNumber,tko.FName As FOutStockName,tpo.FNumber As FOutStockPlaceNumber,tpo.FName As FOutStockPlaceName,",
        "      Case When ts.FTranTypeID=1 Then '外购入库'",
        "      When ts.FTranTypeID=2 Then '产品入库'",
        "      When ts.FTranTypeID=5 Then '委外加工入库'",
        "      When ts.FTranTypeID=10 Then '其他入库'",
        "      When ts.FTranTypeID=21 Then '销售出库'",
        "      When ts.FTranTypeID=24 Then '生产领料'",
        "      When ts.FTranTypeID=28 Then '委外加工发出'",
        "      When ts.FTranTypeID=29 Then '其他出库'",
        "      When ts.FTranTypeID=40 Then '盘盈入库'",
        "      When ts.FTranTypeID=41 Then '仓库调拨'",
        "      When ts.FTranTypeID=43 Then '盘亏毁损'",
        "      When ts.FTranTypeID=-1 Then '初始化' End As FLasttranType,",
        "      case when len(tt.FName)>0 then tt.Fname else tt3.Fname end as FWanglaiName,",
        "      ts.FInterID,ts.FSNListID,1 As FSumSort,0 AS FOrder",
        "      From ICSerial ts with(nolock)",
        "      Inner Join ICStockBill tb with(nolock) On tb.FInterID=ts.FInterID",
        "      Inner Join ICSerial_F1 ts1 with(nolock) On ts1.FSerialClassID=ts.FSerialClassID And ts1.FSerialID=ts.FSerialID",
        "      Inner Join t_ICItem t with(nolock) On t.FItemID=ts.FItemID",
        "      Left Join t_AuxItem ta with(nolock) On ta.FItemID=ts.FAuxPropID",
        "      Left Join t_Stock tk with(nolock) On tk.FItemID=(case when ts.FTranTypeID=41 and ts.FValid=0 Then ts.foutstockid else ts.FStockID end)",
        "      Left Join t_StockPlace tp with(nolock) On tp.FSPID=(case when ts.FTranTypeID=41 and ts.FValid=0 Then ts.FoutStockPlace else ts.FStockPlace end )",
        "      Left Join t_Stock tko with(nolock) On tko.FItemID=ts.FOutStockID",
        "      Left Join t_StockPlace tpo with(nolock) On tpo.FSPID=ts.FOutStockPlace",
        "      left join t_Supplier tt with(nolock) on tb.FSupplyID=tt.FitemID",
        "      left join t_Organization tt3 with(nolock) on tb.FSupplyID=tt3.FItemID",
        "      Where ts.FSerialClassID=1 and  ts.FSerialNum  ='" + serial + "'",
        "      Union All",
        "      Select ts.FSerialNum As FSerialNum,t.FItemID,ts.FStockID,ts.FStockPlace,ts.FBatchNo,tk.FName As FStockName,tp.FName As FStockPlaceName,t.FNumber as FItemnumber,",
        "           t.FName As FItemName,ta.FName As FAuxPropName,t.FModel,Case When ts.FKFPeriod=0 Then '' Else LTrim(Str(ts.FKFPeriod)) End As FKFPeriod,ts.FKFDate,",
        "           Case When ts.FKFDate='' Then '' Else Convert(Varchar(10),DateAdd(Day,ts.FKFPeriod,ts.FKFDate),111) End As FLimitDate,ts.FSerialClassID,ts.FSerialID,ts1.F_S001,",
        "           Case ts.FValid When 1 Then '在库' Else '预入库' End As FStatus,         tk.FNumber As FStockNumber,tp.FNumber As FStockPlaceNumber,tko.FNumber As FOutStockNumber,tko.FName As FOutStockName,tpo.FNumber As FOutStockPlaceNumber,tpo.FName As FOutStockPlaceName,",
        "      '初始化' As FLasttranType,",
        "      case when len(tt.FName)>0 then tt.Fname else tt3.Fname end as FWanglaiName,",
        "      ts.FInterID,ts.FSNListID,1 As FSumSort,0 AS FOrder",
        "      From ICSerial ts with(nolock)",
        "      Inner Join IcInvInitial tb with(nolock) On tb.FSNListID=ts.FSNListID",
        "      Inner Join ICSerial_F1 ts1 with(nolock) On ts1.FSerialClassID=ts.FSerialClassID And ts1.FSerialID=ts.FSerialID",
        "      Inner Join t_ICItem t with(nolock) On t.FItemID=ts.FItemID",
        "      Left Join t_AuxItem ta with(nolock) On ta.FItemID=ts.FAuxPropID",
        "      Left Join t_Stock tk with(nolock) On tk.FItemID=(case when ts.FTranTypeID=41 and ts.FValid=0 Then ts.foutstockid else ts.FStockID end)",
        "      Left Join t_StockPlace tp with(nolock) On tp.FSPID=(case when ts.FTranTypeID=41 and ts.FValid=0 Then ts.FoutStockPlace else ts.FStockPlace end )",
        "      Left Join t_Stock tko with(nolock) On tko.FItemID=ts.FOutStockID",
        "      Left Join t_StockPlace tpo with(nolock) On tpo.FSPID=ts.FOutStockPlace",
        "      left join ICStockBill tbb with(nolock) on tbb.FInterID=ts.FInterID",
        "      left join t_Supplier tt with(nolock) on tbb.FSupplyID=tt.FitemID",
        "      left join t_Organization tt3 with(nolock) on tbb.FSupplyID=tt3.FItemID",
        "      Where ts.FSerialClassID=1 and ts.FSerialNum  ='" + serial + "'",
        "      ) a",
    };
}

inline QString serialLookup(const QString& serial)
{
    return eachLine(serialLookupLines(serial));
}

inline QString orderHeader(const QString& code)
{
    return eachLine({" select t1.FID,isnull(t1.FPIckingGoodsStatus,0) as FPIckingGoodsStatus,ISNULL(t2.FIsLock,0) as FIsLock from ic_web2erporders t1 with(nolock) ",
                     " left join IC_Web2ERPOrdersEx t2 with(nolock) on t1.fid =t2.fid ",
                     " where t1.FUniqueCode ='" + code + "' or t1.FLogisticsOrder ='" + code + "' "});
}

// Whether the order holds serial goods; numeric as for orderGoods.
inline QString serialGoods(const QString& code, bool numeric)
{
    QString sql = "select 1 from ic_web2erpordersentry t1 with(nolock) inner join ic_web2erporders t2 with(nolock) "
                  "on t1.FID =t2.FID  LEFT Join t_ICItem t3 with(nolock) on t1.FItemID =t3.FItemID where IsNull(t3.FIsSnManage,0)=1 and";
    if (numeric)
        sql += "  (t2.FUniqueCode ='" + code + "' OR t2.FLogisticsOrder ='" + code + "')";
    else
        sql += "  t2.FLogisticsOrder ='" + code + "'";
    return sql;
}

// The goods totals of an order under the barcode and serial options; no CR LF at the end.
inline QString goodsQuantity(const QString& code, bool numeric, bool hasSerialGoods, bool chkBarCode, bool chkHaveSerial)
{
    QStringList pieces = {"Select t1.FItemID,t3.FName as FItemName,sum(t1.FQuantity) as FQuantity",
                          " from IC_Web2ERPOrdersEntry t1 with(nolock) ",
                          " INNER Join IC_Web2ERPOrders t2 with(nolock) on t1.FID=t2.FID AND t2.FOrderStatus = 6 ",
                          " LEFT Join t_ICItem t3 with(nolock) on t1.FItemID =t3.FItemID "};
    if (numeric)
        pieces << " Where (t2.FUniqueCode ='" + code + "' OR t2.FLogisticsOrder ='" + code + "')";
    else
        pieces << " Where t2.FLogisticsOrder ='" + code + "'";
    pieces << " AND NOT EXISTS (SELECT 1" << PriceChangeFilterTail;
    if (hasSerialGoods) {
        pieces << "group by t2.FOrderStatus, t3.FBarcode ,t3.FIsSnManage, t2.FLogisticsOrder,t2.FLogisticsComp, t1.FItemID,t3.FName ";
        if (chkBarCode)
            pieces << (chkHaveSerial ? "having t3.FBarcode <> '' or IsNull(t3.FIsSnManage,0)=1 " : "having t3.FBarcode <> '' ");
    } else {
        pieces << "group by t2.FOrderStatus, t3.FBarcode , t2.FLogisticsOrder,t2.FLogisticsComp, t1.FItemID,t3.FName ";
        if (chkBarCode)
            pieces << "having t3.FBarcode <> ''";
    }
    return pieces.join(CrLf);
}

inline const QString DeliverOnPick =
    QStringLiteral("SELECT FValue  FROM t_SystemProfile WHERE FCategory = 'EC' AND FKey = 'DeliveryWhenWeightedOrPick'");

inline QString picker(int userId)
{
    return "select t2.FItemID,t2.FNumber,t2.FShortNumber,t2.FName from t_User t1 Inner join t_Emp t2 on t1.FEmpID=t2.FItemID and t1.FUserID="
         + QString::number(userId);
}

// One statement of the serial rows batch; the statements are joined by CR LF, none after the last.
inline QString serialRowsDelete(int entry)
{
    return " Delete IC_Web2ErpOrderSerial where FEntryID=" + QString::number(entry);
}

// values: the text between "(0," and the closing parenthesis, as the product pastes it.
inline QString serialRowsInsert(const QString& values)
{
    return " insert IC_Web2ErpOrderSerial (FID,FEntryID,FSerialNumber,FBatchNo,FStockID,FStockPlace,FSerialID,FKFDate,FKFPeriod) "
           " values (0," + values + ")";
}

// The goods of a web order for the tiles: no table hints, one line break.
inline QString tileGoods(const QString& code, bool numeric)
{
    QString sql = "Select t1.FItemID,t3.FName as FItemName,sum(t1.FQuantity) as FQuantity,t4.FID as FPicID  "
                  " from IC_Web2ERPOrdersEntry t1 "
                  " INNER Join IC_Web2ERPOrders t2 on t1.FID=t2.FID AND t2.FOrderStatus = 6 "
                  " LEFT Join t_ICItem t3 on t1.FItemID =t3.FItemID "
                  " LEFT Join t_Accessory t4 on t1.FItemID=t4.FItemID ";
    if (numeric)
        sql += " Where t2.FUniqueCode ='" + code + "' OR t2.FLogisticsOrder ='" + code + "'";
    else
        sql += " Where t2.FLogisticsOrder ='" + code + "'";
    return sql + CrLf + "group by t2.FOrderStatus, t3.FBarcode , t2.FLogisticsOrder,t2.FLogisticsComp, t1.FItemID,t3.FName ,t4.FID  ";
}

inline QString tileGoodsIndexByBarCode(const QString& barcode)
{
    return "select  t3.FBarCode ,t1.FItemID  " + QString(" from IC_Web2ERPOrdersEntry t1 ")
         + " INNER Join IC_Web2ERPOrders t2 on t1.FID=t2.FID " + " left join t_Barcode t3 on t1.FItemID=t3.FItemID "
         + " LEFT Join t_Accessory t4 on t1.FItemID=t4.FItemID " + " where t3.FBarCode  ='" + barcode + "'"
         + " AND NOT EXISTS (SELECT 1" + CrLf + "FROM    IC_GoodsToMateriel t6" + CrLf
         + "INNER JOIN t_ICItem t7 ON t6.FMaterielCode = t7.FNumber" + CrLf
         + "WHERE t6.FIsPriceChange = 1 And t7.FItemID = t1.FItemID" + CrLf + "AND t6.FWebshopID = t2.FWebshopID)" + CrLf;
}

} // namespace ExpectedSql
