// The host's value objects: records whose keys match in any case and whose
// version sees every write, lists, recordsets, the object factory, the
// numeric test and the property string.
#include "host/goods_record.h"
#include "host/host_error.h"
#include "host/object_factory.h"
#include "host/platform.h"
#include "host/props_text.h"
#include "host/record_list.h"
#include "host/recordset.h"
#include <gtest/gtest.h>

TEST(GoodsRecord, KeysMatchInAnyCaseCopiesShareAndEveryWriteRaisesTheVersion)
{
    GoodsRecord r;
    const quint64 start = r.version();
    r.SetValue("bSuccess", true);
    r.SetValue("log", "A");
    // the log pane reads "bsuccess", the form wrote "bSuccess": one entry
    r.SetValue("BSUCCESS", false);
    EXPECT_EQ(r.Count(), 2);
    EXPECT_EQ(r.KeyAt(0), "bSuccess") << "the key keeps the spelling it was added with";
    EXPECT_FALSE(r.GetValue("bsuccess", true).toBool());
    EXPECT_EQ(r.GetValue("missing", 7).toInt(), 7);
    EXPECT_THROW(r.Item("missing"), HostError);
    const quint64 afterWrites = r.version();
    EXPECT_GT(afterWrites, start);
    EXPECT_TRUE(r.Exists("LOG"));
    EXPECT_EQ(r.Item("Log").toString(), "A");
    EXPECT_EQ(r.version(), afterWrites) << "reads leave the version alone";

    // Writing the value it already has is still a write; so is a removal.
    r.SetValue("log", "A");
    const quint64 v = r.version();
    EXPECT_GT(v, afterWrites);
    EXPECT_THROW(r.Add("LOG", 1), HostError);
    r.Remove("bsuccess");
    EXPECT_GT(r.version(), v);

    // A copy is a handle on the same record; a clone another one.
    GoodsRecord alias = r;
    alias.SetValue("log", "B");
    EXPECT_EQ(r.GetValue("log").toString(), "B");
    EXPECT_EQ(alias.identity(), r.identity());
    GoodsRecord clone = r.clone();
    clone.SetValue("log", "C");
    EXPECT_NE(clone.identity(), r.identity());
    EXPECT_EQ(r.GetValue("log").toString(), "B");

    EXPECT_THROW(GoodsRecord::none().GetValue("x"), HostError);
}

TEST(RecordList, BoundsInsertRemove)
{
    auto record = [](int n) {
        GoodsRecord r;
        r.SetValue("n", n);
        return r;
    };
    RecordList list;
    EXPECT_EQ(list.LowerBound(), 0);
    EXPECT_EQ(list.UpperBound(), -1);
    list.Insert(0, record(1));   // at the end of an empty list, as the session log's first entry
    list.Insert(1, record(3));   // at the end again
    list.Insert(1, record(2));
    ASSERT_EQ(list.UpperBound(), 2);
    EXPECT_EQ(list.Item(1).GetValue("n").toInt(), 2);
    EXPECT_EQ(list.Item(2).GetValue("n").toInt(), 3);
    list.Remove(0);
    EXPECT_EQ(list.Item(0).GetValue("n").toInt(), 2);
    EXPECT_THROW(list.Item(5), HostError);
    EXPECT_THROW(list.Insert(3, record(9)), HostError);
    list.Clear();
    EXPECT_EQ(list.UpperBound(), -1);
}

// Reading rows: test_sql_engine.cpp; here what a recordset refuses.
TEST(Recordset, ForwardOnlyAndNoFieldPastTheEnd)
{
    Recordset rs({"FItemID", "FName"}, {{1, QVariant()}});
    EXPECT_THROW(rs.Fields("nope"), HostError);
    rs.MoveNext();
    EXPECT_TRUE(rs.isEOF());
    EXPECT_THROW(rs.Fields("FName"), HostError);
    EXPECT_THROW(rs.MoveNext(), HostError);
}

TEST(ObjectFactory, UnknownProgIdSharedStoreAndWrongInterface)
{
    EXPECT_THROW(CreateServerObject("No.Such"), HostError);
    auto store = CreateServerObjectAs<IShareProps>(ProgIds::ShareProps);
    store->SetProperty(CurrentProcessId(), "PropsString", "A=1;");
    // A second object sees the same process-wide store; other processes do not.
    auto again = CreateServerObjectAs<IShareProps>("propsmgr.shareprops");
    EXPECT_EQ(again->GetProperty(CurrentProcessId(), "propsstring").toString(), "A=1;");
    EXPECT_TRUE(again->GetProperty(CurrentProcessId() + 1, "PropsString").isNull());

    // The wrong interface is refused rather than misused.
    EXPECT_THROW(CreateServerObjectAs<IGetData>(ProgIds::ShareProps), HostError);
}

TEST(Platform, NumericTestAndComponentPaths)
{
    for (const char* yes : {"1", " 12 ", "-3", "+4.5", ".5", "5.", "1e3", "1E-3", "2d2", "\t7\t", "0000123"})
        EXPECT_TRUE(IsNumeric(QString::fromUtf8(yes))) << yes;
    for (const char* no : {"", "   ", "A12", "12A", "1.2.3", "e3", "1e", "+", "-", ".", "1,000", "&H10", "１２"})
        EXPECT_FALSE(IsNumeric(QString::fromUtf8(no))) << no;

    SetComponentFolder("/opt/station");
    EXPECT_EQ(ComponentPath("\\voice\\Error.wav"), "/opt/station/voice/Error.wav");
    SetComponentFolder(QString());
    EXPECT_TRUE(ComponentFolder().endsWith('/'));
}

TEST(PropsText, GrammarTrimsOnlyBlanksAndPasswordsAreMasked)
{
    const struct {
        QString text;
        QStringList keysAndValues;   // key, value, key, value...
    } grammar[] = {
        {"A = 1 ; B={x;y=z} ; C", {"A", "1", "B", "x;y=z", "C", ""}},
        // Text between the closing brace and the next ";" is dropped.
        {"CS={Data Source=a;Pwd=b} junk ;UserID=5;", {"CS", "Data Source=a;Pwd=b", "UserID", "5"}},
        {"  UserID  =  5  ;", {"UserID", "5"}},
        {"\tUserID=5;", {"\tUserID", "5"}},
        {"UserID\n=5;", {"UserID\n", "5"}},
        {"UserID=\t5\r\n;", {"UserID", "\t5\r\n"}},
        // A tab in front of the brace: the value is not braced.
        {"CS=\t{a};", {"CS", "\t{a}"}},
        {"CS= {a;b\t} ;", {"CS", "a;b\t"}},
        {"A=1;A=2;", {"A", "1", "A", "2"}},   // duplicates are the caller's affair
        {"=5;B=1", {}},                       // an empty key ends the reading
        {"", {}},
    };
    for (const auto& c : grammar) {
        QStringList got;
        for (const auto& [key, value] : SplitPropsText(c.text))
            got << key << value;
        EXPECT_EQ(got, c.keysAndValues) << c.text.toStdString();
    }

    // What error boxes and replay output may show of a connect string.
    const struct {
        const char* text;
        const char* masked;
    } cases[] = {
        {"UserID=1;ConnectString={Provider=SQLite;Data Source=/a.db;Password=s3cret};Lang=chs;",
         "UserID=1;ConnectString={Provider=SQLite;Data Source=/a.db;Password=***};Lang=chs;"},
        {"Data Source=s;User ID=sa;PASSWORD = Pa5 5w!;Initial Catalog=db",
         "Data Source=s;User ID=sa;PASSWORD = ***;Initial Catalog=db"},
        {"Driver=SQLite3;Database=/a.db;PWD = s3cret;UID=sa", "Driver=SQLite3;Database=/a.db;PWD = ***;UID=sa"},
        {"Server=s;pwd={se;c}}ret};Trusted=no", "Server=s;pwd=***;Trusted=no"},
        // other keys that merely contain the word stay
        {"OldPwd=1;PasswordHint=2;Data Source=/a.db", "OldPwd=1;PasswordHint=2;Data Source=/a.db"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(MaskPasswords(QString::fromUtf8(c.text)), QString::fromUtf8(c.masked)) << c.text;
}
