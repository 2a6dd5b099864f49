// Lines are matched to goods by the text of "GoodsID"; integers take a
// shortcut that must answer exactly as the text would.
#include "middle_tier_fakes.h"
#include "orderdata/order_goods.h"
#include <QTemporaryDir>

TEST(SameIdText, IntegersAndTextAnswerAlike)
{
    for (const QVariant& v : {QVariant(50001), QVariant(qlonglong(50001)), QVariant::fromValue<qint16>(1001),
                              QVariant(uint(50001)), QVariant(50001.0), QVariant(QStringLiteral("50001"))}) {
        const qint32 id = v.toInt();
        EXPECT_TRUE(SameIdText(v, id)) << v.toString().toStdString();
        EXPECT_FALSE(SameIdText(v, id + 1)) << v.toString().toStdString();
        // the shortcut agrees with the text comparison it stands for
        EXPECT_EQ(SameIdText(v, id), v.toString() == QString::number(id));
    }
    EXPECT_TRUE(SameIdText(QVariant(-7), -7));
    EXPECT_FALSE(SameIdText(QVariant(qlonglong(4294967297LL)), 1)) << "no wrap-around";
    // text compares as written: blanks or a fraction are another text
    EXPECT_FALSE(SameIdText(QVariant(QStringLiteral(" 12")), 12));
    EXPECT_FALSE(SameIdText(QVariant(12.5), 12));
    EXPECT_FALSE(SameIdText(QVariant(true), 1));
    EXPECT_FALSE(SameIdText(QVariant(), 0)) << "NULL reads as the empty text";
    EXPECT_TRUE(SameIdText(QVariant(QStringLiteral("0")), 0));
}

namespace {
class SameIdTextIndex : public HostFixture {};
} // namespace

TEST_F(SameIdTextIndex, LineIndexFindsGoodsAndEntryAsText)
{
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    SetComponentFolder(folder.path());
    publishProps(QStringLiteral("UserID=1;"));
    // Ids as the database hands them out, and one line whose id is text.
    auto getData = useFakeGetData();
    getData->answer = [](const QString&) {
        OrderRow a;
        a.entryId = qlonglong(1);
        a.itemId = qlonglong(50001);
        a.quantity = 1.0;
        OrderRow b = a;
        b.entryId = qlonglong(2);
        b.itemId = QStringLiteral("50002");
        OrderRow c = a;
        c.entryId = qlonglong(3);
        return orderGoodsRecordset({a, b, c});
    };
    const RecordList set = LoadOrderGoods(QStringLiteral("SF1"));
    ASSERT_EQ(set.Count(), 3);
    EXPECT_EQ(FindGoodsLineIndex(50001, QStringLiteral("1")), 0);
    EXPECT_EQ(FindGoodsLineIndex(50001, QStringLiteral("3")), 2);
    EXPECT_EQ(FindGoodsLineIndex(50002, QStringLiteral("2")), 1);
    EXPECT_EQ(FindGoodsLineIndex(50002, QStringLiteral("3")), -1);
    EXPECT_EQ(FindGoodsLineIndex(50003, QStringLiteral("1")), -1);
    EXPECT_EQ(FindGoodsLineIndex(0, QStringLiteral("1")), -2);
}
