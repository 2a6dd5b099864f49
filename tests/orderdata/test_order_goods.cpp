#include "middle_tier_fakes.h"
#include "orderdata/order_goods.h"
#include "host/error_reporter.h"
#include <QTemporaryDir>

namespace {

class OrderGoods : public HostFixture {
protected:
    void SetUp() override
    {
        HostFixture::SetUp();
        ASSERT_TRUE(folder.isValid());
        SetComponentFolder(folder.path());
        publishProps(Props);
        getData = useFakeGetData();
        accessory = useFakeAccessoryView();
        boxes = recordMessageBoxes();
    }

    // Answers the order statement with these rows, anything else with nothing.
    void answerOrder(const QList<OrderRow>& rows)
    {
        getData->answer = [rows](const QString& sql) {
            return sql.startsWith("Select t1.FEntryID") ? orderGoodsRecordset(rows) : std::make_shared<Recordset>();
        };
    }

    const QString Props = QStringLiteral("UserID=7;ConnectString={Provider=SQLite;Data Source=x.db};");
    QTemporaryDir folder;
    std::shared_ptr<GetDataLog> getData;
    std::shared_ptr<AccessoryLog> accessory;
    std::shared_ptr<HostRecorder> boxes;
};

OrderRow row(int entry, int item, QVariant picId, QVariant webshop = QStringLiteral("Shop A"), int quantity = 1)
{
    OrderRow r;
    r.entryId = entry;
    r.itemId = item;
    r.picId = std::move(picId);
    r.webshop = std::move(webshop);
    r.quantity = quantity;
    r.name = QStringLiteral("Goods %1").arg(item);
    return r;
}

QStringList entries(const GoodsRecord& record)
{
    QStringList shown;
    for (int i = 0; i < record.Count(); ++i)
        shown << record.KeyAt(i) + "=" + record.ValueAt(i).toString();
    return shown;
}

} // namespace

TEST_F(OrderGoods, LinesHoldTheirEntriesInOrderWithPicturesAndTypes)
{
    OrderRow first = row(11, 101, 7, QStringLiteral("Shop A"), 3);
    first.barCode = QStringLiteral("6901");
    first.batchNo = QStringLiteral("B1");
    first.serialClass = 1;
    first.model = QStringLiteral("M-1");
    first.spId = 4;
    first.stockId = 5;
    answerOrder({first, row(12, 102, 0, QStringLiteral("Shop B")), row(13, 103, QVariant())});

    EXPECT_TRUE(GetGoodsLineSet().isNone());
    EXPECT_FALSE(HasGoodsLines());
    const RecordList lines = LoadOrderGoods(QStringLiteral("20240001"));

    ASSERT_EQ(getData->sqls.size(), 1);
    EXPECT_EQ(getData->sqls[0], BuildOrderGoodsSql(QStringLiteral("20240001")));
    EXPECT_EQ(getData->props[0], Props);
    ASSERT_EQ(lines.UpperBound(), 2);
    EXPECT_TRUE(lines.sameList(GetGoodsLineSet()));
    EXPECT_TRUE(HasGoodsLines());
    EXPECT_EQ(GetWebshopName().toString(), "Shop A");    // the first row's shop only

    const GoodsRecord line = lines.Item(0);
    EXPECT_EQ(entries(line), QStringList({"FEntryID=11", "FSeriNum=", "FBatchNo=B1", "FSPID=4", "FStockID=5",
                                          "FSerialID=", "FKFPeriod=", "FKFDate=", "GoodsID=101", "GoodsName=Goods 101",
                                          "GoodsOrderCnt=3", "GoodsPickCnt=0", "GoodsBarCode=6901", "GoodsCheckedCnt=0",
                                          "FSerialClassID=1", "FModel=M-1", "FPicID=7",
                                          "GoodsPicture=" + PictureTempFolder() + "Tmp_101"}));
    for (const char* key : {"FSeriNum", "FSerialID", "FKFPeriod", "FKFDate"}) {
        EXPECT_EQ(line.GetValue(key).typeId(), QMetaType::QString) << key;
        EXPECT_TRUE(line.GetValue(key).toString().isEmpty()) << key;
        EXPECT_FALSE(line.GetValue(key).toString().isNull()) << key;   // would bind as NULL
    }
    for (const char* key : {"GoodsPickCnt", "GoodsCheckedCnt"}) {
        EXPECT_EQ(line.GetValue(key).typeId(), QMetaType::Short) << key;
        EXPECT_EQ(line.GetValue(key).toInt(), 0) << key;
    }
    // A numeric picture id names the picture file, even id 0 whose file never comes.
    EXPECT_EQ(lines.Item(1).GetValue("GoodsPicture").toString(), PictureTempFolder() + "Tmp_102");
    EXPECT_EQ(lines.Item(2).GetValue("GoodsPicture").toString(), "");
    EXPECT_FALSE(lines.Item(2).GetValue("GoodsPicture").toString().isNull());
    EXPECT_EQ(accessory->ids, QList<int>({7, 0}));
    EXPECT_EQ(accessory->props, QStringList({Props, Props}));
    EXPECT_EQ(PictureTempFolder(), QDir(folder.path()).absolutePath() + "/temp/");
    EXPECT_FALSE(PictureTempFolderIsPerUser());
    EXPECT_TRUE(boxes->texts().isEmpty());
}

TEST_F(OrderGoods, TheOneSetIsEmptiedInPlaceAndDroppedAtTheEnd)
{
    EXPECT_TRUE(LoadOrderGoods(QString()).isNone());      // nothing loaded yet, nothing asked
    EXPECT_EQ(getData->created, 0);

    answerOrder({row(1, 101, 0), row(2, 102, 0)});
    const RecordList first = LoadOrderGoods(QStringLiteral("SF1"));
    const GoodsRecord oldLine = first.Item(0);
    answerOrder({row(3, 103, 0, QVariant())});
    const RecordList second = LoadOrderGoods(QStringLiteral("SF2"));
    EXPECT_TRUE(second.sameList(first));                  // the views keep seeing the set
    ASSERT_EQ(first.Count(), 1);
    EXPECT_EQ(first.Item(0).GetValue("GoodsID").toInt(), 103);
    EXPECT_EQ(oldLine.GetValue("GoodsID").toInt(), 101);  // lines are new records, not reused
    EXPECT_EQ(GetWebshopName().toString(), "");           // null shop of the first row
    EXPECT_EQ(getData->created, 2);                       // one object per query

    // An empty code changes nothing but the shop name.
    answerOrder({row(4, 104, 0)});
    EXPECT_TRUE(LoadOrderGoods(QString()).sameList(first));
    EXPECT_EQ(first.Count(), 1);
    EXPECT_EQ(getData->sqls.size(), 2);

    LoadOrderGoods(QStringLiteral("SF3"));
    EXPECT_EQ(GetWebshopName().toString(), "Shop A");
    LoadOrderGoods(QString());
    EXPECT_EQ(GetWebshopName().toString(), "");
    EXPECT_EQ(GetWebshopName().typeId(), QMetaType::QString);
    EXPECT_FALSE(GetWebshopName().toString().isNull());

    answerOrder({});
    EXPECT_EQ(LoadOrderGoods(QStringLiteral("SF4")).UpperBound(), -1);
    EXPECT_FALSE(HasGoodsLines());

    SetCurrentGoodsID(QStringLiteral("101"));
    SetClearPictureFolder(false);
    ResetSessionState();
    EXPECT_TRUE(GetGoodsLineSet().isNone());
    EXPECT_FALSE(HasGoodsLines());
    EXPECT_EQ(CurrentGoodsID(), "0");
    EXPECT_TRUE(ClearPictureFolderPending());
    answerOrder({row(5, 105, 0)});
    EXPECT_FALSE(LoadOrderGoods(QStringLiteral("SF5")).sameList(first));
    EXPECT_EQ(first.Count(), 0);                          // the old set is left as it was
}

TEST_F(OrderGoods, AFailureKeepsTheLinesReadSoFarAndIsReportedOnce)
{
    // The third picture id does not fit the attachment id's 32 bits.
    answerOrder({row(1, 101, 1), row(2, 102, 0), row(3, 103, QStringLiteral("3000000000")), row(4, 104, 0)});
    const RecordList lines = LoadOrderGoods(QStringLiteral("20240001"));
    EXPECT_EQ(lines.Count(), 2);
    EXPECT_EQ(lines.Item(1).GetValue("GoodsID").toInt(), 102);
    EXPECT_TRUE(HasGoodsLines());
    ASSERT_EQ(boxes->texts().size(), 1);
    EXPECT_EQ(boxes->texts()[0], "Overflow");
    EXPECT_EQ(boxes->titles()[0], VeltoTitle);

    getData->answer = [](const QString&) -> RecordsetPtr {
        throw HostError(HostErrors::Database, QStringLiteral("no such table: IC_Web2ERPOrdersEntry"));
    };
    EXPECT_TRUE(LoadOrderGoods(QStringLiteral("SF1")).sameList(lines));
    EXPECT_EQ(lines.Count(), 0);
    EXPECT_EQ(boxes->texts().value(1), "no such table: IC_Web2ERPOrdersEntry");

    // A column the statement did not deliver ends the load the same way.
    getData->answer = [](const QString&) {
        return std::make_shared<Recordset>(QStringList{"FEntryID"}, std::vector<std::vector<QVariant>>{{1}});
    };
    LoadOrderGoods(QStringLiteral("SF1"));
    EXPECT_EQ(lines.Count(), 0);
    EXPECT_EQ(boxes->texts().size(), 3);

    RegisterServerObject(ProgIds::GetData, nullptr);
    LoadOrderGoods(QStringLiteral("SF1"));
    EXPECT_EQ(boxes->texts().size(), 4);
    EXPECT_TRUE(boxes->texts()[3].contains(ProgIds::GetData));
}

TEST_F(OrderGoods, LineIndexComparesIdsAsText)
{
    EXPECT_EQ(FindGoodsLineIndex(0, QStringLiteral("1")), -2);   // no set needed for this answer
    EXPECT_THROW(FindGoodsLineIndex(5, QStringLiteral("1")), HostError);

    OrderRow asDouble = row(2, 0, 0);
    asDouble.itemId = 101.0;                     // engines may answer ids as floating numbers
    answerOrder({row(1, 101, 0), asDouble, row(3, 102, 0), row(4, 101, 0)});
    LoadOrderGoods(QStringLiteral("SF1"));
    EXPECT_EQ(FindGoodsLineIndex(101, QStringLiteral("1")), 0);
    EXPECT_EQ(FindGoodsLineIndex(101, QStringLiteral("2")), 1);
    EXPECT_EQ(FindGoodsLineIndex(101, QStringLiteral("4")), 3);
    EXPECT_EQ(FindGoodsLineIndex(102, QStringLiteral("1")), -1);
    EXPECT_EQ(FindGoodsLineIndex(101, QStringLiteral("01")), -1);
    EXPECT_EQ(FindGoodsLineIndex(101, QString()), -1);
    EXPECT_EQ(FindGoodsLineIndex(0, QStringLiteral("1")), -2);
}

TEST_F(OrderGoods, BarCodeLookupAnswersItemAndSerialClassOrNothing)
{
    getData->answer = [](const QString& sql) {
        if (!sql.contains("='6901'"))
            return std::make_shared<Recordset>(QStringList{"FBarCode", "FItemID", "FSerialClassID"}, std::vector<std::vector<QVariant>>{});
        return std::make_shared<Recordset>(QStringList{"FBarCode", "FItemID", "FSerialClassID"},
                                           std::vector<std::vector<QVariant>>{{"6901", 101, 1}});
    };
    const GoodsRecord found = FindWebOrderGoodsByBarCode(QStringLiteral("6901"));
    EXPECT_EQ(found.Keys(), QStringList({"FItemID", "FSerialClassID"}));
    EXPECT_EQ(found.GetValue("FItemID").toInt(), 101);
    EXPECT_EQ(found.GetValue("FSerialClassID").toInt(), 1);
    EXPECT_EQ(getData->sqls.last(), BuildBarCodeLookupSql(QStringLiteral("6901")));
    EXPECT_EQ(getData->props.last(), Props);

    const GoodsRecord unknown = FindWebOrderGoodsByBarCode(QStringLiteral("0000"));
    EXPECT_FALSE(unknown.isNone());
    EXPECT_EQ(unknown.Count(), 0);

    // No handler here: the goods scan reports the failure.
    getData->answer = [](const QString&) -> RecordsetPtr { throw HostError(HostErrors::Database, QStringLiteral("down")); };
    EXPECT_THROW(FindWebOrderGoodsByBarCode(QStringLiteral("6901")), HostError);
    EXPECT_TRUE(boxes->texts().isEmpty());
}

TEST_F(OrderGoods, PicturesGoToTheUsersCacheWhenTheComponentFolderCannotHoldThem)
{
    // A plain file where the folder should be: not even root can create temp/ in it.
    const QString blocked = folder.path() + "/component";
    ASSERT_TRUE(writeFile(blocked, "not a folder"));
    SetComponentFolder(blocked);
    answerOrder({row(1, 101, 0)});
    LoadOrderGoods(QStringLiteral("SF1"));
    EXPECT_TRUE(PictureTempFolderIsPerUser());
    EXPECT_TRUE(PictureTempFolder().endsWith("/temp/"));
    EXPECT_FALSE(PictureTempFolder().startsWith(blocked));
    EXPECT_TRUE(QFileInfo(PictureTempFolder()).isDir());
    EXPECT_EQ(GetGoodsLineSet().Item(0).GetValue("GoodsPicture").toString(), PictureTempFolder() + "Tmp_101");

    SetComponentFolder(folder.path());
    LoadOrderGoods(QStringLiteral("SF1"));
    EXPECT_FALSE(PictureTempFolderIsPerUser());
}
