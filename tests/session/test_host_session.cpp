#include "host_fakes.h"
#include "host/host_error.h"
#include "session/variant_convert.h"
#include <QObject>

using HostSession = HostFixture;

TEST_F(HostSession, GetPropValueParsesOnFirstUseThenKeepsItsSet)
{
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

    // A key with a tab in front is another key.
    for (const char* props : {"UserID=abc;", "UserID=99999999999;", "Other=1;", "\tUserID=5;"}) {
        ParsePropsString(QString::fromLatin1(props));   // replaces the set, does not merge
        EXPECT_THROW(GetUserID(), HostError) << props;
    }
    try {
        ParsePropsString(QStringLiteral("UserID=1;userid=2;"));
        ADD_FAILURE() << "a key given twice must raise";
    } catch (const HostError& e) {
        EXPECT_EQ(e.number(), HostErrors::DuplicateKey);
    }
    EXPECT_EQ(LastParsedPropsString(), "UserID=1;userid=2;");
}

TEST_F(HostSession, FindPropValueIsALoosePlainTextSearch)
{
    const struct {
        const char* props;
        const char* key;
        const char* value;
    } cases[] = {
        {"UserID=5;ID=7;", "ID", "5"},   // the tail of "UserID" matches first
        {"UserID=5;ID=7;", "userid", "5"},
        {"UserID=5;ID=7;", "Missing", ""},
        {"CS={Data Source=x;Pwd=y};Pwd=z", "Pwd", "y}"},   // braces mean nothing to this reader
        {"CS={Data Source=x;Pwd=y};Pwd=z", "CS", "{Data Source=x"},
        {"A=1", "A", "1"},   // no final ";"
        {"", "A", ""},
    };
    for (const auto& c : cases) {
        publishProps(QString::fromLatin1(c.props));
        EXPECT_EQ(FindPropValue(QString::fromLatin1(c.key)), QString::fromLatin1(c.value)) << c.props << " " << c.key;
    }
}

TEST_F(HostSession, PropsStringComesFromTheHostObjectOrTheStoreAsText)
{
    auto store = CreateServerObjectAs<IShareProps>(ProgIds::ShareProps);
    auto put = [&store](const QVariant& v) {
        store->SetProperty(CurrentProcessId(), QStringLiteral("PropsString"), v);
    };
    put(QByteArray("UserID=3;"));
    EXPECT_EQ(GetPropsString(), "UserID=3;");

    int hostObjectReads = 0;
    SetPropsHostObject([&hostObjectReads] { ++hostObjectReads; return QStringLiteral("UserID=4;"); });
    EXPECT_EQ(GetPropsString(), "UserID=4;");
    EXPECT_EQ(hostObjectReads, 1);
    SetPropsHostObject(nullptr);

    QObject holder;
    holder.setProperty("PropsString", QStringLiteral("UserID=6;"));
    put(QVariant::fromValue<QObject*>(&holder));
    EXPECT_EQ(GetPropsString(), "UserID=6;");
    EXPECT_EQ(GetUserID(), 6);
    put(QVariant());
    EXPECT_EQ(GetPropsString(), "");

    RegisterServerObject(ProgIds::ShareProps, nullptr);
    EXPECT_THROW(GetPropsString(), HostError);
    EXPECT_THROW(FindPropValue("UserID"), HostError);
}

// Numbers as the host converts them: halves to even, True is -1, text must be
// a number, and what does not fit overflows.
TEST_F(HostSession, ValuesConvertAsTheHostConvertsThem)
{
    const struct {
        QVariant value;
        qint32 converted;
    } longs[] = {{2.5, 2}, {3.5, 4}, {-2.5, -2}, {QStringLiteral(" 12 "), 12}, {QStringLiteral("7.5"), 8}, {true, -1}, {false, 0}};
    for (const auto& c : longs)
        EXPECT_EQ(variantToLong(c.value), c.converted) << c.value.toString().toStdString();
    EXPECT_EQ(variantToDouble(true), -1.0);
    EXPECT_EQ(variantToInteger(32767.4), 32767);

    const struct {
        QVariant value;
        long error;
    } failures[] = {{QStringLiteral("abc"), HostErrors::TypeMismatch}, {32767.5, HostErrors::Overflow}, {QVariant(), 94}};
    for (const auto& c : failures) {
        try {
            variantToInteger(c.value);
            ADD_FAILURE() << c.value.toString().toStdString() << " converted";
        } catch (const HostError& e) {
            EXPECT_EQ(e.number(), c.error) << c.value.toString().toStdString();
        }
    }
}
