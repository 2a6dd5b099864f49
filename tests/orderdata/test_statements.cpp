// The statements as the server receives them, written out here line by line.
#include "orderdata/order_goods.h"
#include "orderdata/serial_lookup.h"
#include <gtest/gtest.h>

namespace {

const QString CrLf = QStringLiteral("\r\n");

// Lines joined by CR LF, the last one ended by CR LF as well.
QString lines(const QStringList& l) { return l.join(CrLf) + CrLf; }

const QStringList OrderHead = {
    "Select t1.FEntryID,t1.FBatchNo,t1.FSPID,t1.FStockID,t1.FItemID,ISNULL(t3.FModel,'') as FModel,ISNULL(t3.FName,'') as FItemName,ISNULL(t3.FBarcode,'') AS FBarCode,ISNULL(t3.FSerialClassID,0) as FSerialClassID ,ISNULL(t4.FID,0) as FPicID,t5.FWebshopName,t1.FQuantity  ",
    " from IC_Web2ERPOrdersEntry t1 with(nolock) ",
    " INNER Join IC_Web2ERPOrders t2 with(nolock) on t1.FID=t2.FID AND t2.FOrderStatus = 6 ",
    " LEFT Join t_ICItem t3 with(nolock) on t1.FItemID =t3.FItemID ",
    " LEFT Join t_Accessory t4 with(nolock) on t1.FItemID=t4.FItemID ",
    " LEFT JOIN IC_WebshopToStorage t5 with(nolock) ON t2.FWebshopID = t5.FWebshopID",
};

const QStringList FilterTail = {
    "FROM    IC_GoodsToMateriel t6 with(nolock) ",
    "INNER JOIN t_ICItem t7 with(nolock) ON t6.FMaterielCode = t7.FNumber",
    "WHERE t6.FIsPriceChange = 1 And t7.FItemID = t1.FItemID",
    "AND t6.FWebshopID = t2.FWebshopID)",
};

} // namespace

TEST(Statements, OrderGoodsTakesNumericCodesBothWaysAndOthersAsLogisticsNumbers)
{
    // Numeric: unique code or logistics number, the filter follows on the same line.
    EXPECT_EQ(BuildOrderGoodsSql(QStringLiteral("20240001")),
              lines(OrderHead + QStringList{" Where (t2.FUniqueCode ='20240001' OR t2.FLogisticsOrder ='20240001') AND NOT EXISTS (SELECT 1"} + FilterTail));
    // Letters: logistics number only, and a line break before the filter.
    EXPECT_EQ(BuildOrderGoodsSql(QStringLiteral("SF1234567")),
              lines(OrderHead + QStringList{" Where t2.FLogisticsOrder ='SF1234567'", " AND NOT EXISTS (SELECT 1"} + FilterTail));
    // The runtime's numeric test decides, and the code goes in as scanned.
    EXPECT_TRUE(BuildOrderGoodsSql(QStringLiteral(" 12 ")).contains("(t2.FUniqueCode =' 12 ' OR t2.FLogisticsOrder =' 12 ')"));
    EXPECT_TRUE(BuildOrderGoodsSql(QStringLiteral("1.5E3")).contains("FUniqueCode ='1.5E3'"));
    EXPECT_TRUE(BuildOrderGoodsSql(QStringLiteral("12-34")).contains(" Where t2.FLogisticsOrder ='12-34'\r\n"));
    EXPECT_TRUE(BuildOrderGoodsSql(QStringLiteral("0x1F")).contains(" Where t2.FLogisticsOrder ='0x1F'\r\n"));
    EXPECT_TRUE(BuildOrderGoodsSql(QStringLiteral("a'b")).contains("FLogisticsOrder ='a'b'"));
    EXPECT_EQ(PriceChangeFilterSql(), lines(QStringList{" AND NOT EXISTS (SELECT 1"} + FilterTail));
}

TEST(Statements, BarCodeLookupReadsTheBarcodeTableOfAllWebOrders)
{
    const QString expected = QStringLiteral(
        "select top 1 t3.FBarCode ,t1.FItemID,t5.FSerialClassID  "
        " from IC_Web2ERPOrdersEntry t1 with(nolock) "
        " INNER Join IC_Web2ERPOrders t2 with(nolock) on t1.FID=t2.FID "
        " left join t_Barcode t3 with(nolock) on t1.FItemID=t3.FItemID "
        " LEFT Join t_Accessory t4 with(nolock)  on t1.FItemID=t4.FItemID "
        " LEFT Join t_ICItem t5 with(nolock) on t1.FItemID=t5.FItemID "
        " where t3.FBarCode  ='6901234567892'");
    EXPECT_EQ(BuildBarCodeLookupSql(QStringLiteral("6901234567892")),
              expected + lines(QStringList{" AND NOT EXISTS (SELECT 1"} + FilterTail));
    EXPECT_EQ(BuildBarCodeLookupSql(QString()).count(CrLf), 5);
}

TEST(Statements, SerialLookupIsTheThreeBranchUnionLineByLine)
{
    const QString sn = QStringLiteral("SN-0001");
    const QStringList expected = {
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
        "       Where ts.FSerialClassID=1AND ts.FTrantypeID = 41 AND ts.FValid=0  and ts.FSerialNum  ='" + sn + "'",
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
        "      Where ts.FSerialClassID=1 and  ts.FSerialNum  ='" + sn + "'",
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
        "      Where ts.FSerialClassID=1 and ts.FSerialNum  ='" + sn + "'",
        "      ) a",
    };
    ASSERT_EQ(expected.size(), 84);
    const QString sql = BuildSerialLookupSql(sn);
    EXPECT_EQ(sql, lines(expected));
    EXPECT_EQ(sql.count(CrLf), 84);
    EXPECT_EQ(sql.count("'SN-0001'"), 3);
    // The serial is pasted as scanned: a quote in it reaches the server unchanged.
    EXPECT_EQ(BuildSerialLookupSql(QStringLiteral("A'B")).count("='A'B'"), 3);
}
