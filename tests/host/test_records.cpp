#include "host/goods_record.h"
#include "host/host_error.h"
#include "host/object_factory.h"
#include "host/platform.h"
#include "host/props_text.h"
#include "host/record_list.h"
#include "host/recordset.h"
#include <gtest/gtest.h>

TEST(GoodsRecord, KeysAreCaseInsensitiveOrderedAndShared)
{
    GoodsRecord r;
    r.SetValue("bSuccess", true);
    r.SetValue("log", "A");
    r.SetValue("BSUCCESS", false);     // same key: replaced in place
    EXPECT_EQ(r.Count(), 2);
    EXPECT_EQ(r.KeyAt(0), "bSuccess");
    EXPECT_FALSE(r.GetValue("bsuccess").toBool());
    EXPECT_EQ(r.GetValue("missing", 7).toInt(), 7);
    EXPECT_THROW(r.Item("missing"), HostError);
    EXPECT_THROW(r.Add("LOG", 1), HostError);

    GoodsRecord alias = r;             // a handle, not a copy
    alias.SetValue("log", "B");
    EXPECT_EQ(r.GetValue("log").toString(), "B");
    GoodsRecord copy = r.clone();
    copy.SetValue("log", "C");
    EXPECT_EQ(r.GetValue("log").toString(), "B");

    EXPECT_THROW(GoodsRecord::none().GetValue("x"), HostError);
}

TEST(RecordList, BoundsInsertRemove)
{
    RecordList list;
    EXPECT_EQ(list.LowerBound(), 0);
    EXPECT_EQ(list.UpperBound(), -1);
    GoodsRecord a, b, c;
    a.SetValue("n", 1); b.SetValue("n", 2); c.SetValue("n", 3);
    list.Add(a); list.Add(c); list.Insert(1, b);
    ASSERT_EQ(list.UpperBound(), 2);
    EXPECT_EQ(list.Item(1).GetValue("n").toInt(), 2);
    list.Remove(0);
    EXPECT_EQ(list.Item(0).GetValue("n").toInt(), 2);
    EXPECT_THROW(list.Item(5), HostError);
    EXPECT_THROW(list.Insert(9, a), HostError);
    list.Clear();
    EXPECT_EQ(list.UpperBound(), -1);
}

TEST(Recordset, ForwardOnlyCaseInsensitiveFieldsAndNull)
{
    Recordset rs({"FItemID", "FName"}, {{1, QVariant()}, {2, "x"}});
    ASSERT_FALSE(rs.isEOF());
    EXPECT_EQ(rs.Fields("fitemid").toInt(), 1);
    EXPECT_TRUE(rs.Fields("FNAME").isNull());
    EXPECT_THROW(rs.Fields("nope"), HostError);
    rs.MoveNext();
    EXPECT_EQ(rs.Fields("FName").toString(), "x");
    rs.MoveNext();
    EXPECT_TRUE(rs.isEOF());
    EXPECT_THROW(rs.Fields("FName"), HostError);
    EXPECT_THROW(rs.MoveNext(), HostError);
}

TEST(ObjectFactory, UnknownProgIdRegisterAndRestore)
{
    EXPECT_THROW(CreateServerObject("No.Such"), HostError);
    auto store = CreateServerObjectAs<IShareProps>(ProgIds::ShareProps);
    store->SetProperty(CurrentProcessId(), "PropsString", "A=1;");
    // A second object sees the same process-wide store; other processes do not.
    auto again = CreateServerObjectAs<IShareProps>("propsmgr.shareprops");
    EXPECT_EQ(again->GetProperty(CurrentProcessId(), "propsstring").toString(), "A=1;");
    EXPECT_TRUE(again->GetProperty(CurrentProcessId() + 1, "PropsString").isNull());

    struct Fake : IShareProps {
        QVariant GetProperty(qint64, const QString&) override { return "fake"; }
        void SetProperty(qint64, const QString&, const QVariant&) override {}
    };
    RegisterServerObject(ProgIds::ShareProps, [] { return std::make_shared<Fake>(); });
    EXPECT_EQ(CreateServerObjectAs<IShareProps>(ProgIds::ShareProps)->GetProperty(1, "x").toString(), "fake");
    RestoreBuiltInServerObjects(ProgIds::ShareProps);
    EXPECT_EQ(CreateServerObjectAs<IShareProps>(ProgIds::ShareProps)->GetProperty(CurrentProcessId(), "PropsString").toString(), "A=1;");
    // The wrong interface is refused rather than misused.
    EXPECT_THROW(CreateServerObjectAs<IGetData>(ProgIds::ShareProps), HostError);
}

TEST(Platform, NumericTestAcceptsWhatTheRuntimeAccepts)
{
    for (const char* yes : {"1", " 12 ", "-3", "+4.5", ".5", "5.", "1e3", "1E-3", "2d2", "\t7\t", "0000123"})
        EXPECT_TRUE(IsNumeric(QString::fromUtf8(yes))) << yes;
    for (const char* no : {"", "   ", "A12", "12A", "1.2.3", "e3", "1e", "+", "-", ".", "1,000", "&H10", "１２"})
        EXPECT_FALSE(IsNumeric(QString::fromUtf8(no))) << no;
}

TEST(Platform, ComponentPathsUseTheComponentFolder)
{
    SetComponentFolder("/opt/station");
    EXPECT_EQ(ComponentPath("\\voice\\Error.wav"), "/opt/station/voice/Error.wav");
    EXPECT_EQ(ComponentPath("\\images\\default.jpg"), "/opt/station/images/default.jpg");
    SetComponentFolder(QString());
    EXPECT_TRUE(ComponentFolder().endsWith('/'));
}

TEST(PropsText, GrammarOfThePropertyString)
{
    auto p = SplitPropsText("A = 1 ; B={x;y=z} ; C");
    ASSERT_EQ(p.size(), 3);
    EXPECT_EQ(p[0], qMakePair(QString("A"), QString("1")));
    EXPECT_EQ(p[1], qMakePair(QString("B"), QString("x;y=z")));
    EXPECT_EQ(p[2], qMakePair(QString("C"), QString("")));
    EXPECT_TRUE(SplitPropsText("").isEmpty());
    EXPECT_EQ(SplitPropsText("A=1;A=2;").size(), 2);   // duplicates are the caller's affair
    EXPECT_TRUE(SplitPropsText("=5;B=1").isEmpty());   // an empty key ends the reading
}
