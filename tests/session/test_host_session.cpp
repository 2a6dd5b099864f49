#include "host_fakes.h"
#include "host/host_error.h"
#include <QObject>

namespace {

class HostSession : public HostFixture {};

// A store that answers whatever value it was given and counts the questions.
class CannedShareProps : public IShareProps {
public:
    CannedShareProps(QVariant value, std::shared_ptr<int> asked) : m_value(std::move(value)), m_asked(std::move(asked)) {}
    QVariant GetProperty(qint64 processId, const QString& name) override
    {
        ++*m_asked;
        EXPECT_EQ(processId, CurrentProcessId());
        EXPECT_EQ(name, QStringLiteral("PropsString"));
        return m_value;
    }
    void SetProperty(qint64, const QString&, const QVariant&) override {}

private:
    QVariant m_value;
    std::shared_ptr<int> m_asked;
};

std::shared_ptr<int> storeAnswers(const QVariant& value)
{
    auto asked = std::make_shared<int>(0);
    RegisterServerObject(ProgIds::ShareProps, [value, asked] { return std::make_shared<CannedShareProps>(value, asked); });
    return asked;
}

} // namespace

TEST_F(HostSession, ParsesTheGrammarWithBracesBlanksAndABareKey)
{
    EXPECT_TRUE(ParsePropsString(QStringLiteral("A = 1 ; B={x;y=z} ; C")));
    const GoodsRecord props = HostProps();
    ASSERT_EQ(props.Keys(), QStringList({"A", "B", "C"}));
    EXPECT_EQ(props.GetValue("A").toString(), "1");
    EXPECT_EQ(props.GetValue("B").toString(), "x;y=z");
    EXPECT_EQ(props.GetValue("C").toString(), "");
    EXPECT_EQ(LastParsedPropsString(), "A = 1 ; B={x;y=z} ; C");

    // Text between the closing brace and the next ";" is dropped.
    ParsePropsString(QStringLiteral("CS={Data Source=a;Pwd=b} junk ;UserID=5;"));
    EXPECT_EQ(HostProps().GetValue("CS").toString(), "Data Source=a;Pwd=b");
    EXPECT_EQ(HostProps().GetValue("UserID").toString(), "5");
    EXPECT_EQ(HostProps().Count(), 2);

    // Parsing replaces the set, it does not merge.
    const GoodsRecord before = HostProps();
    ParsePropsString(QStringLiteral("Z=9;"));
    EXPECT_FALSE(HostProps().sameRecord(before));
    EXPECT_EQ(HostProps().Keys(), QStringList({"Z"}));

    ParsePropsString(QString());
    EXPECT_EQ(HostProps().Count(), 0);
    EXPECT_THROW(GetPropValue("A"), HostError);
}

TEST_F(HostSession, OnlyBlanksAreTrimmedFromKeysAndValues)
{
    struct Case {
        QString text;
        QString key;
        QString value;
    };
    const Case cases[] = {
        {QStringLiteral("  UserID  =  5  ;"), QStringLiteral("UserID"), QStringLiteral("5")},
        {QStringLiteral("\tUserID=5;"), QStringLiteral("\tUserID"), QStringLiteral("5")},
        {QStringLiteral("UserID\n=5;"), QStringLiteral("UserID\n"), QStringLiteral("5")},
        {QStringLiteral("UserID=\t5\r\n;"), QStringLiteral("UserID"), QStringLiteral("\t5\r\n")},
        // A tab in front of the brace: the value is not braced.
        {QStringLiteral("CS=\t{a};"), QStringLiteral("CS"), QStringLiteral("\t{a}")},
        {QStringLiteral("CS= {a;b\t} ;"), QStringLiteral("CS"), QStringLiteral("a;b\t")},
    };
    for (const Case& c : cases) {
        ParsePropsString(c.text);
        const GoodsRecord props = HostProps();
        ASSERT_EQ(props.Count(), 1) << c.text.toStdString();
        EXPECT_EQ(props.Keys().first(), c.key) << c.text.toStdString();
        EXPECT_EQ(props.GetValue(c.key).toString(), c.value) << c.text.toStdString();
    }

    // A key with a tab in front is another key.
    ParsePropsString(QStringLiteral("\tUserID=5;"));
    EXPECT_THROW(GetPropValue(QStringLiteral("UserID")), HostError);
}

TEST_F(HostSession, DuplicateKeysFailWhateverTheirCase)
{
    try {
        ParsePropsString(QStringLiteral("UserID=1;userid=2;"));
        FAIL() << "a key given twice must raise";
    } catch (const HostError& e) {
        EXPECT_EQ(e.number(), HostErrors::DuplicateKey);
    }
    EXPECT_EQ(LastParsedPropsString(), "UserID=1;userid=2;");
}

TEST_F(HostSession, GetPropValueParsesOnFirstUseThenKeepsItsSet)
{
    EXPECT_TRUE(HostProps().isNone());
    publishProps(QStringLiteral("UserID=5;DBName=demo;"));
    EXPECT_EQ(GetPropValue("userid"), "5");
    EXPECT_EQ(GetUserID(), 5);

    // The host logs in again: queries see the new string, the parsed set stays.
    publishProps(QStringLiteral("UserID=9;DBName=other;"));
    EXPECT_EQ(GetPropsString(), "UserID=9;DBName=other;");
    EXPECT_EQ(GetPropValue("DBName"), "demo");
    EXPECT_EQ(FindPropValue("DBName"), "other");

    ParsePropsString(GetPropsString());
    EXPECT_EQ(GetUserID(), 9);

    ParsePropsString(QStringLiteral("UserID=abc;"));
    EXPECT_THROW(GetUserID(), HostError);
    ParsePropsString(QStringLiteral("UserID=99999999999;"));
    EXPECT_THROW(GetUserID(), HostError);
    ParsePropsString(QStringLiteral("Other=1;"));
    EXPECT_THROW(GetUserID(), HostError);
}

TEST_F(HostSession, FindPropValueIsALoosePlainTextSearch)
{
    publishProps(QStringLiteral("UserID=5;ID=7;"));
    EXPECT_EQ(FindPropValue("ID"), "5");        // the tail of "UserID" matches first
    EXPECT_EQ(FindPropValue("userid"), "5");
    EXPECT_EQ(FindPropValue("Missing"), "");

    publishProps(QStringLiteral("CS={Data Source=x;Pwd=y};Pwd=z"));
    EXPECT_EQ(FindPropValue("Pwd"), "y}");      // braces mean nothing to this reader
    EXPECT_EQ(FindPropValue("CS"), "{Data Source=x");

    publishProps(QStringLiteral("A=1"));        // no final ";"
    EXPECT_EQ(FindPropValue("A"), "1");
    publishProps(QString());
    EXPECT_EQ(FindPropValue("A"), "");
}

TEST_F(HostSession, PropsStringComesFromTheHostObjectOrTheStoreAsText)
{
    auto asked = storeAnswers(QByteArray("UserID=3;"));
    EXPECT_EQ(GetPropsString(), "UserID=3;");
    EXPECT_EQ(GetPropsString(), "UserID=3;");
    EXPECT_EQ(*asked, 2);                       // never cached

    int hostObjectReads = 0;
    SetPropsHostObject([&hostObjectReads] { ++hostObjectReads; return QStringLiteral("UserID=4;"); });
    EXPECT_EQ(GetPropsString(), "UserID=4;");
    EXPECT_EQ(hostObjectReads, 1);
    EXPECT_EQ(*asked, 2);
    SetPropsHostObject(nullptr);

    QObject holder;
    holder.setProperty("PropsString", QStringLiteral("UserID=6;"));
    storeAnswers(QVariant::fromValue<QObject*>(&holder));
    EXPECT_EQ(GetPropsString(), "UserID=6;");
    EXPECT_EQ(GetUserID(), 6);

    storeAnswers(QVariant());
    EXPECT_EQ(GetPropsString(), "");

    RegisterServerObject(ProgIds::ShareProps, nullptr);
    EXPECT_THROW(GetPropsString(), HostError);
    EXPECT_THROW(FindPropValue("UserID"), HostError);
}
