// Every statement the station sends, assembled here from its pieces exactly
// as the station writes them, run through clsGetData.ExecuteSQL on the demo
// database, with the rows a hand check of the demo data expects.
#include "demo/demo_database.h"
#include "host/host_error.h"
#include "host/object_factory.h"
#include "host/platform.h"
#include "sql/sql_engine.h"
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <gtest/gtest.h>
#include <ostream>
#include <iostream>

// Readable failure messages for Qt texts.
static void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}

namespace {

const QString CRLF = QStringLiteral("\r\n");

QString eachLine(const QStringList& pieces)
{
    QString text;
    for (const QString& piece : pieces)
        text += piece + CRLF;
    return text;
}

QString priceChangeFilter()
{
    return eachLine({" AND NOT EXISTS (SELECT 1",
                     "FROM    IC_GoodsToMateriel t6 with(nolock) ",
                     "INNER JOIN t_ICItem t7 with(nolock) ON t6.FMaterielCode = t7.FNumber",
                     "WHERE t6.FIsPriceChange = 1 And t7.FItemID = t1.FItemID",
                     "AND t6.FWebshopID = t2.FWebshopID)"});
}

QString orderGoodsSql(const QString& code)
{
    QString sql = eachLine({
        "Select t1.FEntryID,t1.FBatchNo,t1.FSPID,t1.FStockID,t1.FItemID,ISNULL(t3.FModel,'') as FModel,ISNULL(t3.FName,'') as FItemName,ISNULL(t3.FBarcode,'') AS FBarCode,ISNULL(t3.FSerialClassID,0) as FSerialClassID ,ISNULL(t4.FID,0) as FPicID,t5.FWebshopName,t1.FQuantity  ",
        " from IC_Web2ERPOrdersEntry t1 with(nolock) ",
        " INNER Join IC_Web2ERPOrders t2 with(nolock) on t1.FID=t2.FID AND t2.FOrderStatus = 6 ",
        " LEFT Join t_ICItem t3 with(nolock) on t1.FItemID =t3.FItemID ",
        " LEFT Join t_Accessory t4 with(nolock) on t1.FItemID=t4.FItemID ",
        " LEFT JOIN IC_WebshopToStorage t5 with(nolock) ON t2.FWebshopID = t5.FWebshopID"});
    if (IsNumeric(code))
        sql += " Where (t2.FUniqueCode ='" + code + "' OR t2.FLogisticsOrder ='" + code + "')";
    else
        sql += " Where t2.FLogisticsOrder ='" + code + "'" + CRLF;
    return sql + priceChangeFilter();
}

QString barcodeLookupSql(const QString& barCode)
{
    return "select top 1 t3.FBarCode ,t1.FItemID,t5.FSerialClassID  "
           " from IC_Web2ERPOrdersEntry t1 with(nolock) "
           " INNER Join IC_Web2ERPOrders t2 with(nolock) on t1.FID=t2.FID "
           " left join t_Barcode t3 with(nolock) on t1.FItemID=t3.FItemID "
           " LEFT Join t_Accessory t4 with(nolock)  on t1.FItemID=t4.FItemID "
           " LEFT Join t_ICItem t5 with(nolock) on t1.FItemID=t5.FItemID "
           " where t3.FBarCode  ='" + barCode + "'" + priceChangeFilter();
}

QStringList serialLines(const QString& serial)
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

QString serialLookupSql(const QString& serial)
{
    return eachLine(serialLines(serial));
}

// One branch of the union on its own (lines first..last, counted from 1).
QString serialBranchSql(const QString& serial, int first, int last)
{
    QStringList lines = serialLines(serial).mid(first - 1, last - first + 1);
    lines[0].replace(" (Select ", " Select ");
    return eachLine(lines);
}

QString orderHeaderSql(const QString& code)
{
    return eachLine({" select t1.FID,isnull(t1.FPIckingGoodsStatus,0) as FPIckingGoodsStatus,ISNULL(t2.FIsLock,0) as FIsLock from ic_web2erporders t1 with(nolock) ",
                     " left join IC_Web2ERPOrdersEx t2 with(nolock) on t1.fid =t2.fid ",
                     " where t1.FUniqueCode ='" + code + "' or t1.FLogisticsOrder ='" + code + "' "});
}

QString serialGoodsTestSql(const QString& code)
{
    QString sql = "select 1 from ic_web2erpordersentry t1 with(nolock) inner join ic_web2erporders t2 with(nolock) ";
    sql += "on t1.FID =t2.FID  LEFT Join t_ICItem t3 with(nolock) on t1.FItemID =t3.FItemID where IsNull(t3.FIsSnManage,0)=1 and";
    if (IsNumeric(code))
        sql += "  (t2.FUniqueCode ='" + code + "' OR t2.FLogisticsOrder ='" + code + "')";
    else
        sql += "  t2.FLogisticsOrder ='" + code + "'";
    return sql;
}

QString goodsQuantitySql(const QString& code, bool serialGoods, bool chkBarCode, bool chkHaveSerial)
{
    QStringList pieces = {"Select t1.FItemID,t3.FName as FItemName,sum(t1.FQuantity) as FQuantity",
                          " from IC_Web2ERPOrdersEntry t1 with(nolock) ",
                          " INNER Join IC_Web2ERPOrders t2 with(nolock) on t1.FID=t2.FID AND t2.FOrderStatus = 6 ",
                          " LEFT Join t_ICItem t3 with(nolock) on t1.FItemID =t3.FItemID "};
    if (IsNumeric(code))
        pieces << " Where (t2.FUniqueCode ='" + code + "' OR t2.FLogisticsOrder ='" + code + "')";
    else
        pieces << " Where t2.FLogisticsOrder ='" + code + "'";
    pieces << " AND NOT EXISTS (SELECT 1" << "FROM    IC_GoodsToMateriel t6 with(nolock) "
           << "INNER JOIN t_ICItem t7 with(nolock) ON t6.FMaterielCode = t7.FNumber"
           << "WHERE t6.FIsPriceChange = 1 And t7.FItemID = t1.FItemID" << "AND t6.FWebshopID = t2.FWebshopID)";
    if (serialGoods) {
        pieces << "group by t2.FOrderStatus, t3.FBarcode ,t3.FIsSnManage, t2.FLogisticsOrder,t2.FLogisticsComp, t1.FItemID,t3.FName ";
        if (chkBarCode)
            pieces << (chkHaveSerial ? "having t3.FBarcode <> '' or IsNull(t3.FIsSnManage,0)=1 " : "having t3.FBarcode <> '' ");
    } else {
        pieces << "group by t2.FOrderStatus, t3.FBarcode , t2.FLogisticsOrder,t2.FLogisticsComp, t1.FItemID,t3.FName ";
        if (chkBarCode)
            pieces << "having t3.FBarcode <> ''";
    }
    return pieces.join(CRLF);
}

const QString kDeliverOnPickSql = "SELECT FValue  FROM t_SystemProfile WHERE FCategory = 'EC' AND FKey = 'DeliveryWhenWeightedOrPick'";
const QString kCreateStockBillSql = "SELECT FValue  FROM t_SystemProfile WHERE FCategory = 'EC' AND FKey = 'CreateStockBillType'";

QString pickerSql(int userId)
{
    return "select t2.FItemID,t2.FNumber,t2.FShortNumber,t2.FName from t_User t1 Inner join t_Emp t2 on t1.FEmpID=t2.FItemID and t1.FUserID="
         + QString::number(userId);
}

struct SerialRow {
    int entry;
    QString serial, batch;
    int stock, place;
    QString serialId, kfDate;
    int kfPeriod;
};

QString serialRowsSql(const QList<QPair<int, QList<SerialRow>>>& lines)
{
    QStringList batch;
    for (const auto& [entry, rows] : lines) {
        batch << " Delete IC_Web2ErpOrderSerial where FEntryID=" + QString::number(entry);
        for (const SerialRow& r : rows) {
            batch << " insert IC_Web2ErpOrderSerial (FID,FEntryID,FSerialNumber,FBatchNo,FStockID,FStockPlace,FSerialID,FKFDate,FKFPeriod) "
                     " values (0,"
                         + QString::number(r.entry) + ",'" + r.serial + "','" + r.batch + "'," + QString::number(r.stock) + ","
                         + QString::number(r.place) + ",'" + r.serialId + "','" + r.kfDate + "'," + QString::number(r.kfPeriod) + ")";
        }
    }
    return batch.join(CRLF);
}

QString tileListSql(const QString& code)
{
    QString sql = "Select t1.FItemID,t3.FName as FItemName,sum(t1.FQuantity) as FQuantity,t4.FID as FPicID  "
                  " from IC_Web2ERPOrdersEntry t1 "
                  " INNER Join IC_Web2ERPOrders t2 on t1.FID=t2.FID AND t2.FOrderStatus = 6 "
                  " LEFT Join t_ICItem t3 on t1.FItemID =t3.FItemID "
                  " LEFT Join t_Accessory t4 on t1.FItemID=t4.FItemID ";
    if (IsNumeric(code))
        sql += " Where t2.FUniqueCode ='" + code + "' OR t2.FLogisticsOrder ='" + code + "'";
    else
        sql += " Where t2.FLogisticsOrder ='" + code + "'";
    return sql + CRLF + "group by t2.FOrderStatus, t3.FBarcode , t2.FLogisticsOrder,t2.FLogisticsComp, t1.FItemID,t3.FName ,t4.FID  ";
}

QString goodsIndexByBarCodeSql(const QString& barcode)
{
    return "select  t3.FBarCode ,t1.FItemID  " + QString(" from IC_Web2ERPOrdersEntry t1 ")
         + " INNER Join IC_Web2ERPOrders t2 on t1.FID=t2.FID " + " left join t_Barcode t3 on t1.FItemID=t3.FItemID "
         + " LEFT Join t_Accessory t4 on t1.FItemID=t4.FItemID " + " where t3.FBarCode  ='" + barcode + "'"
         + " AND NOT EXISTS (SELECT 1" + CRLF + "FROM    IC_GoodsToMateriel t6" + CRLF
         + "INNER JOIN t_ICItem t7 ON t6.FMaterielCode = t7.FNumber" + CRLF
         + "WHERE t6.FIsPriceChange = 1 And t7.FItemID = t1.FItemID" + CRLF + "AND t6.FWebshopID = t2.FWebshopID)" + CRLF;
}

QString cell(const QVariant& v)
{
    return v.isNull() ? QStringLiteral("NULL") : v.toString();
}

// The rows of the columns named, one text per row with '|' between values.
QStringList table(const RecordsetPtr& rs, const QStringList& columns, bool sorted = false)
{
    QStringList rows;
    for (; !rs->isEOF(); rs->MoveNext()) {
        QStringList values;
        for (const QString& c : columns)
            values << cell(rs->Fields(c));
        rows << values.join('|');
    }
    if (sorted)
        rows.sort();
    return rows;
}

const QString& pristineDemo()
{
    static QTemporaryDir dir;
    static const QString file = [] {
        const QString f = dir.filePath("pristine.db");
        CreateDemoDatabase(f);
        return f;
    }();
    return file;
}

class StatementProof : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        m_file = m_dir.filePath("demo.db");
        ASSERT_TRUE(QFile::copy(pristineDemo(), m_file));
        m_props = DemoPropsString(m_file);
    }
    void TearDown() override { SqlEngine::closeAll(); }

    RecordsetPtr run(const QString& sql)
    {
        return CreateServerObjectAs<IGetData>(ProgIds::GetData)->ExecuteSQL(m_props, sql);
    }
    double total(const QString& sql)
    {
        double sum = 0;
        for (auto rs = run(sql); !rs->isEOF(); rs->MoveNext())
            sum += rs->Fields("FQuantity").toDouble();
        return sum;
    }

    QTemporaryDir m_dir;
    QString m_file;
    QString m_props;
};

const QStringList kGoodsColumns = {"FEntryID", "FBatchNo", "FSPID", "FStockID", "FItemID", "FModel", "FItemName",
                                   "FBarCode", "FSerialClassID", "FPicID", "FWebshopName", "FQuantity"};

} // namespace

TEST_F(StatementProof, OrderGoodsByNumericAndOtherCodes)
{
    // the price-change cup of the Tmall order is left out
    EXPECT_EQ(table(run(orderGoodsSql("10008")), kGoodsColumns, true),
              QStringList({"13||0|2|1024|1.2kg|坚果礼盒|6931000010246|0|23|天猫旗舰店|1",
                           "14||0|2|1025|250g 明前|绿茶|6931000010253|0|24|天猫旗舰店|2"}));
    // a numeric code also matches a numeric logistics number
    EXPECT_EQ(table(run(orderGoodsSql("773000000002")), kGoodsColumns, true),
              QStringList({"4||0|2|1005|USB-C 1米|数据线|6931000010055|0|5|京东自营店|3",
                           "5||0|2|1016|120g 薄荷|牙膏|6931000010161|0|16|京东自营店|1"}));
    // an item without a t_ICItem row, in a shop without a name
    EXPECT_EQ(table(run(orderGoodsSql("SF10010")), kGoodsColumns, true),
              QStringList({"18||0|2|1099||||0|0|NULL|1",
                           "19||0|2|1017|软毛 4支装|牙刷|6931000010178|0|17|NULL|1"}));
    // serial lines carry their stock, place and batch
    EXPECT_EQ(table(run(orderGoodsSql("sn10024")), kGoodsColumns, true),
              QStringList({"57|G2405|5|2|1038|G3 静音|无线鼠标|6931000010383|1|36|天猫旗舰店|1",
                           "58|T2401|1|2|1034|S3 声波|电动牙刷||1|32|天猫旗舰店|1",
                           "59|T2402|2|2|1034|S3 声波|电动牙刷||1|32|天猫旗舰店|1"}));
    // a code with letters is a logistics number only; other statuses are not picked
    EXPECT_TRUE(run(orderGoodsSql("TB10027"))->isEOF());
    EXPECT_EQ(table(run(orderGoodsSql("YT10027")), {"FEntryID", "FItemID"}), QStringList({"63|1016"}));
    EXPECT_TRUE(run(orderGoodsSql("10007"))->isEOF());
    EXPECT_TRUE(run(orderGoodsSql("SF10007"))->isEOF());
    EXPECT_EQ(table(run(orderGoodsSql("10017")), {"FEntryID", "FItemID", "FQuantity"}), QStringList({"46|1026|3"}));
}

TEST_F(StatementProof, BarcodeLookupOverAllWebOrders)
{
    const QStringList columns = {"FBarCode", "FItemID", "FSerialClassID"};
    EXPECT_EQ(table(run(barcodeLookupSql("6931000010017")), columns), QStringList({"6931000010017|1001|0"}));
    EXPECT_EQ(table(run(barcodeLookupSql("6931000010314")), columns), QStringList({"6931000010314|1031|1"}));
    // the inner-pack code of the cable, in other letter case
    EXPECT_EQ(table(run(barcodeLookupSql("dx-usbc-1m")), {"FItemID"}), QStringList({"1005"}));
    // goods of an order in another status still count as web-order goods
    EXPECT_EQ(table(run(barcodeLookupSql("6931000010130")), {"FItemID"}), QStringList({"1013"}));
    // the cup is a price-change product in the Tmall shop only
    EXPECT_EQ(table(run(barcodeLookupSql("6931000010109")), {"FItemID"}), QStringList({"1010"}));
    // the slippers are web-order goods only as a price-change product: not found
    EXPECT_TRUE(run(barcodeLookupSql("6931000010406"))->isEOF());
    EXPECT_TRUE(run(barcodeLookupSql("6930000000000"))->isEOF());
}

TEST_F(StatementProof, SerialLookupFindsEachBranch)
{
    const QStringList columns = {"FItemID", "FSerialNum", "FSerialID", "FBatchNo", "FStockID", "FStockPlace",
                                 "FKFPeriod", "FKFDate", "FLimitDate", "FStatus"};
    // shelf life 0 comes back as ''
    EXPECT_EQ(table(run(serialLookupSql("W1-0001")), columns), QStringList({"1031|W1-0001|1|W2405|2|1||||在库"}));
    EXPECT_EQ(table(run(serialLookupSql("w1-0001")), {"FSerialNum"}), QStringList({"W1-0001"}));
    // shelf life and production date, with the limit date the statement computes
    EXPECT_EQ(table(run(serialLookupSql("MF-0001")), columns),
              QStringList({"1033|MF-0001|8|M2403|2|3|720|2024-03-01|2026/02/19|在库"}));
    EXPECT_EQ(table(run(serialLookupSql("MF-0003")), {"FKFPeriod", "FLimitDate"}), QStringList({"540|2025/08/23"}));
    EXPECT_EQ(table(run(serialLookupSql("MF-0004")), {"FKFDate", "FLimitDate"}), QStringList({"2024-04-15|2026/04/05"}));
    // opening balance only (third branch)
    EXPECT_EQ(table(run(serialLookupSql("RT-0001")), columns), QStringList({"1035|RT-0001|15||2|4||||在库"}));
    EXPECT_EQ(table(run(serialLookupSql("RT-0004")), {"FStatus"}), QStringList({"预入库"}));
    // a transfer not yet valid: found, at its target stock and place
    EXPECT_EQ(table(run(serialLookupSql("RT-0002")), {"FItemID", "FStockID", "FStockPlace"}), QStringList({"1035|2|4"}));
    // the batch that only the order's second toothbrush line has
    EXPECT_EQ(table(run(serialLookupSql("ET-0002")), {"FItemID", "FBatchNo", "FStockPlace"}), QStringList({"1034|T2402|2"}));
    // another serial class, or no such serial: no row
    EXPECT_TRUE(run(serialLookupSql("SPK-0001"))->isEOF());
    EXPECT_TRUE(run(serialLookupSql("NOPE-0001"))->isEOF());
    // a quote in the serial breaks the statement; the caller gets the error
    try {
        run(serialLookupSql("W1'0001"));
        FAIL() << "a quote must break the statement";
    } catch (const HostError& e) {
        EXPECT_TRUE(e.number() == HostErrors::Database || e.number() == HostErrors::Unsupported);
    }
}

TEST_F(StatementProof, SerialBranchesGiveTheStatusTable)
{
    const QStringList columns = {"FSerialNum", "FStatus", "FLasttranType", "FStockName", "FStockPlaceName", "FWanglaiName", "FOrder"};
    // branch 2, serial by serial, against the status table
    const QMap<QString, QString> branch2 = {
        {"W1-0001", "W1-0001|在库|外购入库|电商仓|A区-01货架|深圳华强电子有限公司|0"},
        {"PAD-0003", "PAD-0003|预出库|仓库调拨|成品仓|B区-01货架|杭州云仓电子商务有限公司|0"},
        {"MF-0003", "MF-0003|在库|外购入库|电商仓|B区-01货架|深圳华强电子有限公司|0"},
        {"ET-0003", "ET-0003|在库|其他入库|电商仓|B区-01货架|深圳华强电子有限公司|0"},
        {"RT-0002", "RT-0002|预出库|仓库调拨|成品仓|B区-01货架|杭州云仓电子商务有限公司|0"},
        {"RT-0003", "RT-0003|在库|外购入库|电商仓|B区-02货架|深圳华强电子有限公司|0"},
        {"KB01-B0", "KB01-B0|预入库|外购入库|电商仓|C区-01货架|深圳华强电子有限公司|0"},
        {"KB02-B1", "KB02-B1|在库|产品入库|电商仓|C区-01货架|深圳华强电子有限公司|0"},
        {"KB05-R0", "KB05-R0|预退库|委外加工入库|电商仓|C区-01货架|深圳华强电子有限公司|0"},
        {"KB10-R1", "KB10-R1|退库|其他入库|电商仓|C区-01货架|深圳华强电子有限公司|0"},
        {"KB40-B1", "KB40-B1|在库|盘盈入库|电商仓|C区-01货架|深圳华强电子有限公司|0"},
        {"KB21-R0", "KB21-R0|预入库|销售出库|电商仓|C区-01货架|杭州云仓电子商务有限公司|0"},
        {"KB24-R1", "KB24-R1|在库|生产领料|电商仓|C区-01货架|杭州云仓电子商务有限公司|0"},
        {"KB28-B0", "KB28-B0|预出库|委外加工发出|电商仓|C区-01货架|杭州云仓电子商务有限公司|0"},
        {"KB29-B1", "KB29-B1|出库|其他出库|电商仓|C区-01货架|杭州云仓电子商务有限公司|0"},
        {"KB43-B1", "KB43-B1|出库|盘亏毁损|电商仓|C区-01货架|杭州云仓电子商务有限公司|0"},
        {"KB41-B1", "KB41-B1|在库|仓库调拨|电商仓|C区-01货架|杭州云仓电子商务有限公司|0"},
        // an invalid transfer shows the outgoing stock and place
        {"KB41-R0", "KB41-R0|预出库|仓库调拨|成品仓|B区-01货架|杭州云仓电子商务有限公司|0"},
    };
    const QMap<QString, QString> branch1 = {
        {"PAD-0003", "PAD-0003|预入库|仓库调拨|电商仓|A区-02货架|杭州云仓电子商务有限公司|1"},
        {"RT-0002", "RT-0002|预入库|仓库调拨|电商仓|B区-02货架|杭州云仓电子商务有限公司|1"},
        {"KB41-R0", "KB41-R0|预入库|仓库调拨|电商仓|C区-01货架|杭州云仓电子商务有限公司|1"},
    };
    const QMap<QString, QString> branch3 = {
        {"PAD-0001", "PAD-0001|在库|初始化|电商仓|A区-02货架|NULL|0"},
        {"PAD-0002", "PAD-0002|在库|初始化|电商仓|A区-02货架|NULL|0"},
        {"RT-0001", "RT-0001|在库|初始化|电商仓|B区-02货架|NULL|0"},
        {"RT-0004", "RT-0004|预入库|初始化|电商仓|B区-02货架|NULL|0"},
    };
    int serials = 0;
    for (auto all = run("select FSerialNum from ICSerial where FSerialClassID=1"); !all->isEOF(); all->MoveNext()) {
        const QString serial = all->Fields("FSerialNum").toString();
        ++serials;
        SCOPED_TRACE(serial.toStdString());
        const QStringList one = table(run(serialBranchSql(serial, 2, 21)), columns);
        const QStringList two = table(run(serialBranchSql(serial, 23, 62)), columns);
        const QStringList three = table(run(serialBranchSql(serial, 64, 83)), columns);
        EXPECT_EQ(one, branch1.contains(serial) ? QStringList{branch1[serial]} : QStringList());
        EXPECT_EQ(three, branch3.contains(serial) ? QStringList{branch3[serial]} : QStringList());
        if (branch2.contains(serial)) {
            EXPECT_EQ(two, QStringList{branch2[serial]});
        } else if (!branch3.contains(serial)) {
            // the remaining serials were bought in and sit in stock
            ASSERT_EQ(two.size(), 1);
            EXPECT_TRUE(two[0].startsWith(serial + "|在库|")) << two[0].toStdString();
        } else {
            EXPECT_TRUE(two.isEmpty());
        }
        // whatever wins the union, the station reads the same stock values
        const QStringList outer = table(run(serialLookupSql(serial)), {"FItemID", "FStockID", "FStockPlace", "FBatchNo"});
        EXPECT_EQ(outer.size(), 1);
    }
    EXPECT_EQ(serials, 33);
}

TEST_F(StatementProof, OrderHeaderThroughGetSingleSqlData)
{
    auto info = CreateServerObjectAs<IWebOrderInfo>(ProgIds::WebOrderInfo);
    auto header = [&](const QString& code) {
        auto r = info->GetSingleSQLData(m_props, orderHeaderSql(code));
        return r ? QStringList({r->KeyAt(0), r->KeyAt(1), r->KeyAt(2)}).join(',') + "=" + cell(r->ValueAt(0)) + "|"
                       + cell(r->ValueAt(1)) + "|" + cell(r->ValueAt(2))
                 : QString("nothing");
    };
    EXPECT_EQ(header("10003"), "FID,FPIckingGoodsStatus,FIsLock=3|0|1");
    EXPECT_EQ(header("SF10006"), "FID,FPIckingGoodsStatus,FIsLock=6|1|0");
    EXPECT_EQ(header("10014"), "FID,FPIckingGoodsStatus,FIsLock=14|0|0");   // NULL status reads 0
    EXPECT_EQ(header("10019"), "FID,FPIckingGoodsStatus,FIsLock=19|0|0");
    EXPECT_EQ(header("TB10027"), "FID,FPIckingGoodsStatus,FIsLock=27|0|0");  // the header query takes any unique code
    EXPECT_EQ(header("773000000002"), "FID,FPIckingGoodsStatus,FIsLock=2|0|0");
    EXPECT_EQ(header("10099"), "nothing");
}

TEST_F(StatementProof, GoodsTotalsUnderEveryOption)
{
    auto hasSerialGoods = [&](const QString& code) { return run(serialGoodsTestSql(code))->RecordCount() > 0; };
    EXPECT_TRUE(hasSerialGoods("10021"));
    EXPECT_TRUE(hasSerialGoods("SN10021"));
    EXPECT_EQ(run(serialGoodsTestSql("10012"))->RecordCount(), 2);
    EXPECT_FALSE(hasSerialGoods("10001"));
    EXPECT_FALSE(hasSerialGoods("10011"));

    // plain goods: the barcode option drops goods without a barcode
    EXPECT_EQ(total(goodsQuantitySql("10001", false, false, false)), 4);
    EXPECT_EQ(total(goodsQuantitySql("10001", false, true, false)), 4);
    EXPECT_EQ(total(goodsQuantitySql("10011", false, false, false)), 4);
    EXPECT_EQ(total(goodsQuantitySql("10011", false, true, false)), 0);
    EXPECT_EQ(total(goodsQuantitySql("SF10010", false, false, false)), 2);
    EXPECT_EQ(total(goodsQuantitySql("SF10010", false, true, false)), 1);   // the unknown item has no barcode
    // one item on two entries is one group
    EXPECT_EQ(table(run(goodsQuantitySql("10009", false, false, false)), {"FItemID", "FItemName", "FQuantity"}, true),
              QStringList({"1006|充电头|3", "1010|玻璃水杯|1"}));
    EXPECT_EQ(total(goodsQuantitySql("10008", false, false, false)), 3);   // price-change cup left out
    EXPECT_EQ(total(goodsQuantitySql("10007", false, false, false)), 0);   // not status 6
    EXPECT_EQ(total(goodsQuantitySql("TB10027", false, false, false)), 0);

    // serial goods: with the serial option, serial goods count without a barcode
    EXPECT_EQ(total(goodsQuantitySql("10012", true, false, false)), 4);
    EXPECT_EQ(total(goodsQuantitySql("10012", true, true, false)), 2);
    EXPECT_EQ(total(goodsQuantitySql("10012", true, true, true)), 3);
    EXPECT_EQ(total(goodsQuantitySql("SN10021", true, true, false)), 2);
    EXPECT_EQ(total(goodsQuantitySql("SN10021", true, true, true)), 3);
    EXPECT_EQ(total(goodsQuantitySql("10024", true, true, false)), 1);
    EXPECT_EQ(total(goodsQuantitySql("10024", true, true, true)), 3);
}

TEST_F(StatementProof, SettingsAndPicker)
{
    EXPECT_EQ(table(run(kDeliverOnPickSql), {"FValue"}), QStringList({"1"}));
    EXPECT_EQ(table(run(kCreateStockBillSql), {"FValue"}), QStringList({"1"}));
    SqlEngine::closeAll();
    SetDemoSystemProfile(m_file, "DeliveryWhenWeightedOrPick", "0");
    EXPECT_EQ(table(run(kDeliverOnPickSql), {"FValue"}), QStringList({"0"}));
    EXPECT_EQ(table(run(kCreateStockBillSql), {"FValue"}), QStringList({"1"}));

    const QStringList columns = {"FItemID", "FNumber", "FShortNumber", "FName"};
    EXPECT_EQ(table(run(pickerSql(1)), columns), QStringList({"201|E001|zw|张伟"}));
    EXPECT_EQ(table(run(pickerSql(3)), columns), QStringList({"203|E003|wf|王芳"}));
    EXPECT_EQ(run(pickerSql(4))->RecordCount(), 0);   // a user without employee
    EXPECT_EQ(run(pickerSql(77))->RecordCount(), 0);
}

TEST_F(StatementProof, SerialRowsAreReplacedPerLine)
{
    const QString batch = serialRowsSql({
        {53, {{53, "W1-0001", "W2405", 2, 1, "1", "", 0}, {53, "W1-0002", "W2405", 2, 1, "2", "", 0}}},
        {54, {{54, "PAD-0001", "P2404", 2, 2, "5", "", 0}}},
    });
    ASSERT_TRUE(batch.contains(CRLF));
    run(batch);
    run(batch);   // verified a second time: replaced, not doubled
    const QStringList columns = {"FID", "FEntryID", "FSerialNumber", "FBatchNo", "FStockID", "FStockPlace", "FSerialID", "FKFDate", "FKFPeriod"};
    EXPECT_EQ(table(run("select * from IC_Web2ErpOrderSerial"), columns, true),
              QStringList({"0|53|W1-0001|W2405|2|1|1||0", "0|53|W1-0002|W2405|2|1|2||0", "0|54|PAD-0001|P2404|2|2|5||0"}));

    // with shelf life
    run(serialRowsSql({{56, {{56, "MF-0001", "M2403", 2, 3, "8", "2024-03-01", 720}}}}));
    EXPECT_EQ(table(run("select FSerialNumber, FKFDate, FKFPeriod from IC_Web2ErpOrderSerial where FEntryID=56"),
                    {"FSerialNumber", "FKFDate", "FKFPeriod"}),
              QStringList({"MF-0001|2024-03-01|720"}));
    EXPECT_EQ(run("select COUNT(*) AS N from IC_Web2ErpOrderSerial")->Fields("N").toInt(), 4);
}

TEST_F(StatementProof, TileListAndBarcodeIndexStatements)
{
    const QStringList columns = {"FItemID", "FItemName", "FQuantity", "FPicID"};
    // one tile per item, quantities of its entries summed
    EXPECT_EQ(table(run(tileListSql("10009")), columns, true), QStringList({"1006|充电头|3|6", "1010|玻璃水杯|1|10"}));
    // no price-change filter in this statement
    EXPECT_EQ(table(run(tileListSql("SF10008")), columns, true),
              QStringList({"1010|玻璃水杯|1|10", "1024|坚果礼盒|1|23", "1025|绿茶|2|24"}));
    // an item without a picture, and an item without a t_ICItem row
    EXPECT_EQ(table(run(tileListSql("10020")), columns, true), QStringList({"1023|棒球帽|1|NULL", "1039|雨伞|1|37"}));
    EXPECT_EQ(table(run(tileListSql("10010")), columns, true), QStringList({"1017|牙刷|1|17", "1099|NULL|1|NULL"}));
    EXPECT_TRUE(run(tileListSql("10007"))->isEOF());
    EXPECT_TRUE(run(tileListSql("TB10027"))->isEOF());

    auto lastItem = [&](const QString& barcode) {
        QString item;
        for (auto rs = run(goodsIndexByBarCodeSql(barcode)); !rs->isEOF(); rs->MoveNext())
            item = rs->Fields("FItemID").toString();
        return item;
    };
    // every entry with these goods in any order
    EXPECT_EQ(run(goodsIndexByBarCodeSql("6931000010017"))->RecordCount(), 2);
    EXPECT_EQ(lastItem("6931000010017"), "1001");
    EXPECT_EQ(run(goodsIndexByBarCodeSql("6931000010109"))->RecordCount(), 2);   // Tmall's price-change line left out
    EXPECT_EQ(lastItem("6931000010406"), "");
    EXPECT_EQ(lastItem("0000"), "");
}

TEST_F(StatementProof, FastEnoughForAScan)
{
    const QString bench = m_dir.filePath("bench.db");
    CreateDemoDatabase(bench, 500);
    m_props = DemoPropsString(bench);
    SqlEngine::closeAll();

    QElapsedTimer timer;
    timer.start();
    auto rs = run(orderGoodsSql("BENCH500"));
    const qint64 loadMs = timer.elapsed();
    EXPECT_EQ(rs->RecordCount(), 500);
    EXPECT_EQ(run(orderGoodsSql(BenchUniqueCode(500)))->RecordCount(), 500);

    timer.restart();
    double quantity = 0;
    for (int i = 0; i < 200; ++i)
        quantity += total(goodsQuantitySql("BENCH500", false, true, false));
    const double totalMs = timer.nsecsElapsed() / 1e6 / 200;

    timer.restart();
    int found = 0;
    for (int i = 1; i <= 200; ++i) {
        const QString twelve = "69399" + QString("%1").arg(i, 7, 10, QChar('0'));
        int sum = 0;
        for (int d = 0; d < 12; ++d)
            sum += twelve.at(d).digitValue() * (d % 2 ? 3 : 1);
        found += run(barcodeLookupSql(twelve + QString::number((10 - sum % 10) % 10)))->RecordCount();
    }
    const double lookupMs = timer.nsecsElapsed() / 1e6 / 200;
    timer.restart();
    for (int i = 0; i < 50; ++i)
        run(serialLookupSql("KB41-R0"));
    const double serialMs = timer.nsecsElapsed() / 1e6 / 50;

    EXPECT_EQ(found, 200);
    EXPECT_GT(quantity, 0);
    std::cout << "order of 500 lines: " << loadMs << " ms; goods total: " << totalMs << " ms; barcode lookup: " << lookupMs
              << " ms; serial lookup: " << serialMs << " ms\n";
    // generous bounds: the sanitizer build runs these too
    EXPECT_LT(loadMs, 1000);
    EXPECT_LT(lookupMs, 20);
    EXPECT_LT(serialMs, 50);
}
