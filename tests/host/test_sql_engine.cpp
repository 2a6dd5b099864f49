// The SQL engines: connect-string mapping, password masking, the embedded
// engine on real files, and the ODBC engine's failure path.
#include "host/demo_database.h"
#include "host/host_error.h"
#include "host/sql_engine.h"
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <ostream>

// Readable failure messages for Qt texts.
static void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}

namespace {

QString sqliteConnect(const QString& file)
{
    return QStringLiteral("Provider=SQLite;Data Source=") + file;
}

// A pristine demo database made once; tests that write use their own copy.
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

class SqlEngineTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        m_file = m_dir.filePath("demo.db");
        ASSERT_TRUE(QFile::copy(pristineDemo(), m_file));
    }
    void TearDown() override { SqlEngine::closeAll(); }

    std::shared_ptr<SqlEngine> engine() { return SqlEngine::forConnectString(sqliteConnect(m_file)); }
    qint64 scalar(const QString& sql)
    {
        auto rs = engine()->executeBound(sql);
        return rs->isEOF() ? -1 : rs->Fields(rs->columns().first()).toLongLong();
    }

    QTemporaryDir m_dir;
    QString m_file;
};

} // namespace

TEST(ConnectStringMapping, SqliteFormsAndBrokenStrings)
{
    ConnectionTarget t = MapConnectString("Provider=SQLite;Data Source=/var/lib/rnw/demo.db");
    EXPECT_EQ(t.kind, ConnectionTarget::Sqlite);
    EXPECT_EQ(t.sqliteFile, "/var/lib/rnw/demo.db");

    t = MapConnectString(" provider = sqlite ; data source = {/tmp/a;b/demo.db} ; ");
    EXPECT_EQ(t.kind, ConnectionTarget::Sqlite);
    EXPECT_EQ(t.sqliteFile, "/tmp/a;b/demo.db");

    try {
        MapConnectString("Provider=SQLite;");
        FAIL() << "a SQLite string without a file must be refused";
    } catch (const HostError& e) {
        EXPECT_EQ(e.number(), HostErrors::Database);
        EXPECT_TRUE(e.description().contains("Data Source"));
    }
    EXPECT_THROW(MapConnectString("Provider=SQLOLEDB.1;Initial Catalog=AIS;User ID=sa;Password=x"), HostError);
}

TEST(ConnectStringMapping, SqlServerThroughFreeTds)
{
    ConnectionTarget t = MapConnectString(
        "Provider=SQLOLEDB.1;Persist Security Info=True;Data Source=erp-db01;Initial Catalog=erpdata01;"
        "User ID=sa;Password=Pa55w!;Application Name=RnWDPicking");
    EXPECT_EQ(t.kind, ConnectionTarget::Odbc);
    EXPECT_EQ(t.odbcConnectString,
              "Driver=FreeTDS;Server=erp-db01;Database=erpdata01;UID=sa;PWD=Pa55w!;APP=RnWDPicking;ClientCharset=UTF-8;");
    EXPECT_EQ(t.loginTimeoutSeconds, 15);

    // port after a comma, a named instance, the local server, a timeout
    t = MapConnectString("Provider=SQLOLEDB;Data Source=tcp:10.0.0.5,14330;Initial Catalog=db;User ID=u;Password=p;Connect Timeout=4");
    EXPECT_EQ(t.odbcConnectString, "Driver=FreeTDS;Server=10.0.0.5;Port=14330;Database=db;UID=u;PWD=p;ClientCharset=UTF-8;");
    EXPECT_EQ(t.loginTimeoutSeconds, 4);
    t = MapConnectString("Provider=SQLOLEDB;Data Source=ERP\\SQL2019;Initial Catalog=db;Integrated Security=SSPI;User ID=ignored");
    EXPECT_EQ(t.odbcConnectString, "Driver=FreeTDS;Server=ERP\\SQL2019;Database=db;Trusted_Connection=Yes;ClientCharset=UTF-8;");
    t = MapConnectString("Provider=SQLOLEDB;Data Source=(local);Initial Catalog=db;User ID=u;Password=");
    EXPECT_EQ(t.odbcConnectString, "Driver=FreeTDS;Server=localhost;Database=db;UID=u;PWD=;ClientCharset=UTF-8;");

    // a password holding separators is braced, a '}' in it doubled
    t = MapConnectString("Provider=SQLOLEDB;Data Source=s;User ID=u;Password={a;b}");
    EXPECT_EQ(t.odbcConnectString, "Driver=FreeTDS;Server=s;UID=u;PWD={a;b};ClientCharset=UTF-8;");

    // ODBC strings pass on as written, less an OLE DB provider
    t = MapConnectString("Driver={ODBC Driver 18 for SQL Server};Server=db;Database=x;UID=u;PWD=p;");
    EXPECT_EQ(t.kind, ConnectionTarget::Odbc);
    EXPECT_EQ(t.odbcConnectString, "Driver=ODBC Driver 18 for SQL Server;Server=db;Database=x;UID=u;PWD=p;");
    t = MapConnectString("Provider=MSDASQL;DSN=ERP;UID=u;PWD=p");
    EXPECT_EQ(t.odbcConnectString, "DSN=ERP;UID=u;PWD=p;");
}

TEST(ConnectStringMapping, PasswordsAreMaskedEverywhere)
{
    EXPECT_EQ(MaskPasswords("Data Source=s;User ID=sa;Password=Pa55w!;Initial Catalog=db"),
              "Data Source=s;User ID=sa;Password=***;Initial Catalog=db");
    EXPECT_EQ(MaskPasswords("UserID=1;ConnectString={Provider=SQLOLEDB;Data Source=s;pwd=abc};Lang=chs;"),
              "UserID=1;ConnectString={Provider=SQLOLEDB;Data Source=s;pwd=***};Lang=chs;");
    EXPECT_EQ(MaskPasswords("Driver=FreeTDS;UID=u;PWD={a;b}};c};APP=x;"), "Driver=FreeTDS;UID=u;PWD=***;APP=x;");
    EXPECT_EQ(MaskPasswords("PASSWORD = x y z"), "PASSWORD = ***");
    // other keys that merely contain the word stay
    EXPECT_EQ(MaskPasswords("OldPwd=1;PasswordHint=2"), "OldPwd=1;PasswordHint=2");

    EXPECT_EQ(ConnectStringFromProps("UserID=1;connectstring={Provider=SQLite;Data Source=x.db};"),
              "Provider=SQLite;Data Source=x.db");
    try {
        ConnectStringFromProps("UserID=1;Lang=chs;");
        FAIL() << "no ConnectString must be refused";
    } catch (const HostError& e) {
        EXPECT_TRUE(e.description().contains("ConnectString"));
    }
    EXPECT_THROW(ConnectStringFromProps("UserID=1;ConnectString=;"), HostError);
}

TEST(OdbcEngine, AFailedOpenNeverShowsThePassword)
{
    const QString secret = "Sup3rSecretPw";
    auto engine = SqlEngine::forConnectString(
        "Provider=SQLOLEDB;Data Source=rnw-no-such-host.invalid;Initial Catalog=AIS;User ID=sa;Password=" + secret
        + ";Connect Timeout=2");
    for (int attempt = 0; attempt < 2; ++attempt) {
        try {
            engine->executeBatch("select 1");
            FAIL() << "there is no server to reach";
        } catch (const HostError& e) {
            EXPECT_EQ(e.number(), HostErrors::Database);
            EXPECT_FALSE(e.description().contains(secret)) << e.description().toStdString();
            EXPECT_FALSE(QString::fromUtf8(e.what()).contains(secret));
            EXPECT_TRUE(e.description().contains("rnw-no-such-host.invalid")) << e.description().toStdString();
        }
        EXPECT_FALSE(engine->isOpen());
    }
    SqlEngine::closeAll();
}

TEST_F(SqlEngineTest, MissingFileIsRefusedNotCreatedAndOpensOnceItComes)
{
    const QString later = m_dir.filePath("later.db");
    auto e = SqlEngine::forConnectString(sqliteConnect(later));
    for (int attempt = 0; attempt < 2; ++attempt) {
        try {
            e->executeBound("SELECT 1");
            FAIL() << "a missing file must not open";
        } catch (const HostError& error) {
            EXPECT_EQ(error.number(), HostErrors::Database);
            EXPECT_TRUE(error.description().contains(later)) << error.description().toStdString();
        }
        EXPECT_FALSE(QFile::exists(later));
        EXPECT_FALSE(e->isOpen());
    }
    ASSERT_TRUE(QFile::copy(m_file, later));
    EXPECT_EQ(e->executeBound("SELECT COUNT(*) AS N FROM t_ICItem")->Fields("N").toInt(), 40);
    EXPECT_TRUE(e->isOpen());

    // the file goes away while the connection is open: refused, not served stale
    ASSERT_TRUE(QFile::rename(later, later + ".moved"));
    EXPECT_THROW(e->executeBound("SELECT COUNT(*) FROM t_ICItem"), HostError);
    EXPECT_FALSE(e->isOpen());
    EXPECT_FALSE(QFile::exists(later));
    ASSERT_TRUE(QFile::rename(later + ".moved", later));
    EXPECT_EQ(e->executeBound("SELECT COUNT(*) AS N FROM t_Stock")->Fields("N").toInt(), 3);
}

TEST_F(SqlEngineTest, ReadsRowsNullsAndNamesAsTheStatementGivesThem)
{
    auto rs = engine()->executeBatch("select FItemID as Id, t.FName, t.FBarcode, t.FModel from t_ICItem t "
                                     "where t.FNumber = '04.004' or t.FNumber = '01.005'");
    EXPECT_EQ(rs->columns(), QStringList({"Id", "FName", "FBarcode", "FModel"}));
    ASSERT_EQ(rs->RecordCount(), 2);
    std::map<int, std::pair<QVariant, QString>> byId;
    for (; !rs->isEOF(); rs->MoveNext())
        byId[rs->Fields("id").toInt()] = {rs->Fields("FBARCODE"), rs->Fields("FName").toString()};
    // the cap's barcode is NULL, the cable's a real code; NULL stays distinguishable
    EXPECT_TRUE(byId[1023].first.isNull());
    EXPECT_FALSE(byId[1005].first.isNull());
    EXPECT_EQ(byId[1005].first.toString(), "6931000010055");
    EXPECT_EQ(byId[1023].second, "棒球帽");

    // an empty text is not NULL
    rs = engine()->executeBatch("select FBatchNo from IC_Web2ERPOrdersEntry where FEntryID = 1");
    ASSERT_FALSE(rs->isEOF());
    EXPECT_FALSE(rs->Fields("FBatchNo").isNull());
    EXPECT_EQ(rs->Fields("FBatchNo").toString(), "");

    // text compares without regard to case
    rs = engine()->executeBatch("select FID from IC_Web2ERPOrders where FLogisticsOrder ='sf10001'");
    ASSERT_FALSE(rs->isEOF());
    EXPECT_EQ(rs->Fields("FID").toInt(), 1);

    // a statement without rows gives an empty recordset, a SELECT without rows keeps its columns
    rs = engine()->executeBatch("select FID from IC_Web2ERPOrders where FLogisticsOrder ='NOPE'");
    EXPECT_TRUE(rs->isEOF());
    EXPECT_EQ(rs->columns(), QStringList({"FID"}));
}

TEST_F(SqlEngineTest, PreparedStatementsAreReusedWithTheRightRows)
{
    auto e = engine();
    const QString shape = "select FItemID from t_Barcode where FBarCode ='%1'";
    auto first = e->executeBatch(shape.arg("6931000010017"));
    const int prepared = e->preparedCount();
    EXPECT_GE(prepared, 1);
    auto second = e->executeBatch(shape.arg("6931000010055"));
    auto again = e->executeBatch(shape.arg("6931000010017"));
    auto none = e->executeBatch(shape.arg("0000000000000"));
    // literals are bound, so one shape is one prepared statement
    EXPECT_EQ(e->preparedCount(), prepared);
    ASSERT_FALSE(first->isEOF());
    ASSERT_FALSE(second->isEOF());
    ASSERT_FALSE(again->isEOF());
    EXPECT_EQ(first->Fields("FItemID").toInt(), 1001);
    EXPECT_EQ(second->Fields("FItemID").toInt(), 1005);
    EXPECT_EQ(again->Fields("FItemID").toInt(), 1001);
    EXPECT_TRUE(none->isEOF());

    // a quote inside a literal is a value, never SQL
    auto quoted = e->executeBatch("select FID from IC_Web2ERPOrders where FLogisticsOrder ='x'' or ''1''=''1'");
    EXPECT_TRUE(quoted->isEOF());
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM IC_Web2ERPOrders"), 30);
}

TEST_F(SqlEngineTest, BatchesRunAllOrNothing)
{
    auto e = engine();
    const qint64 before = scalar("SELECT COUNT(*) FROM IC_Web2ErpOrderSerial");
    const QString good = " Delete IC_Web2ErpOrderSerial where FEntryID=1\r\n"
                         " insert IC_Web2ErpOrderSerial (FID,FEntryID,FSerialNumber) values (0,1,'A')\r\n"
                         " insert IC_Web2ErpOrderSerial (FID,FEntryID,FSerialNumber) values (0,1,'B')";
    e->executeBatch(good);
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM IC_Web2ErpOrderSerial"), before + 2);

    // the third statement fails: the delete and the first insert go back too
    const QString bad = " Delete IC_Web2ErpOrderSerial where FEntryID=1\r\n"
                        " insert IC_Web2ErpOrderSerial (FID,FEntryID,FSerialNumber) values (0,1,'C')\r\n"
                        " insert IC_Web2ErpOrderSerial (FID,FEntryID,FNoSuchColumn) values (0,1,'D')";
    try {
        e->executeBatch(bad);
        FAIL() << "the batch names a column that does not exist";
    } catch (const HostError& error) {
        EXPECT_EQ(error.number(), HostErrors::Database);
        EXPECT_TRUE(error.description().contains("FNoSuchColumn")) << error.description().toStdString();
    }
    auto rows = e->executeBound("SELECT FSerialNumber FROM IC_Web2ErpOrderSerial WHERE FEntryID = 1 ORDER BY FSerialNumber");
    QStringList serials;
    for (; !rows->isEOF(); rows->MoveNext())
        serials << rows->Fields("FSerialNumber").toString();
    EXPECT_EQ(serials, QStringList({"A", "B"}));

    // a batch answers the rows of its last statement that has any
    auto rs = e->executeBatch(" Delete IC_Web2ErpOrderSerial where FEntryID=1\r\n"
                              "select COUNT(*) AS Left1 from IC_Web2ErpOrderSerial where FEntryID=1");
    ASSERT_FALSE(rs->isEOF());
    EXPECT_EQ(rs->Fields("Left1").toInt(), 0);
    EXPECT_TRUE(e->executeBatch(" Delete IC_Web2ErpOrderSerial where FEntryID=2")->columns().isEmpty());
}

TEST_F(SqlEngineTest, OwnTransactionsNestAndRollBack)
{
    auto e = engine();
    const QString update = "UPDATE t_Stock SET FName = ? WHERE FItemID = ?";
    EXPECT_THROW(e->inTransaction([&] {
        e->executeBound(update, {"甲", 1});
        e->inTransaction([&] { e->executeBound(update, {"乙", 2}); });   // joins
        throw std::runtime_error("the work fails after two writes");
    }),
                 std::runtime_error);
    auto rs = e->executeBound("SELECT FName FROM t_Stock WHERE FItemID IN (1, 2) ORDER BY FItemID");
    EXPECT_EQ(rs->Fields("FName").toString(), "成品仓");
    rs->MoveNext();
    EXPECT_EQ(rs->Fields("FName").toString(), "电商仓");

    e->inTransaction([&] { e->executeBound(update, {"丙", 3}); });
    EXPECT_EQ(e->executeBound("SELECT FName FROM t_Stock WHERE FItemID = ?", {3})->Fields("FName").toString(), "丙");

    // an engine error names the engine's complaint and leaves the engine usable
    try {
        e->executeBatch("select * from no_such_table");
        FAIL();
    } catch (const HostError& error) {
        EXPECT_EQ(error.number(), HostErrors::Database);
        EXPECT_TRUE(error.description().contains("no_such_table")) << error.description().toStdString();
    }
    EXPECT_TRUE(e->isOpen());
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM t_Stock"), 3);
    // one engine per connect string
    EXPECT_EQ(e.get(), engine().get());
}

TEST_F(SqlEngineTest, TextComparesAsOnTheServerCaseAndTrailingBlanksAside)
{
    auto db = engine();
    // 'SF10019 ' is stored with a trailing blank; one item's barcode is all blanks.
    db->executeBound(QStringLiteral("UPDATE IC_Web2ERPOrders SET FLogisticsOrder = ? WHERE FUniqueCode = ?"),
                     {QStringLiteral("SF10019 "), QStringLiteral("10019")});
    db->executeBound(QStringLiteral("UPDATE t_ICItem SET FBarcode = ? WHERE FItemID = 1015"), {QStringLiteral("   ")});

    struct Case {
        const char* sql;
        qint64 count;
    };
    const Case cases[] = {
        {"select count(*) from IC_Web2ERPOrders with(nolock) where FLogisticsOrder ='SF10019'", 1},
        {"select count(*) from IC_Web2ERPOrders with(nolock) where FLogisticsOrder ='sf10019  '", 1},
        {"select count(*) from IC_Web2ERPOrders with(nolock) where FLogisticsOrder =' SF10019'", 0},
        {"select count(*) from IC_Web2ERPOrders with(nolock) where FLogisticsOrder ='SF1001'", 0},
        {"select count(*) from t_ICItem with(nolock) where FItemID = 1015 and FBarcode <> ''", 0},
        {"select count(*) from t_ICItem with(nolock) where FItemID = 1015 and FBarcode = ''", 1},
        {"select count(*) from t_ICItem with(nolock) where FItemID = 1016 and FBarcode <> ''", 1},
        // Only blanks: a tab is text.
        {"select count(*) from t_ICItem with(nolock) where FItemID = 1015 and FBarcode = '\t'", 0},
    };
    for (const Case& c : cases) {
        const RecordsetPtr rs = db->executeBatch(QString::fromUtf8(c.sql));
        ASSERT_FALSE(rs->isEOF()) << c.sql;
        EXPECT_EQ(rs->Fields(rs->columns().first()).toLongLong(), c.count) << c.sql;
    }

    // Still a search of the index, not a scan of the table.
    for (const char* sql : {"EXPLAIN QUERY PLAN SELECT FID FROM IC_Web2ERPOrders WHERE FLogisticsOrder = 'SF10019'",
                            "EXPLAIN QUERY PLAN SELECT FItemID FROM t_Barcode WHERE FBarCode = '6931000010017'",
                            "EXPLAIN QUERY PLAN SELECT FSerialID FROM ICSerial WHERE FSerialNum = 'W1-0001'"}) {
        QStringList plan;
        for (RecordsetPtr rs = db->executeBound(QString::fromUtf8(sql)); !rs->isEOF(); rs->MoveNext())
            plan << rs->Fields(QStringLiteral("detail")).toString();
        EXPECT_TRUE(plan.join('|').contains(QStringLiteral("USING INDEX")) || plan.join('|').contains(QStringLiteral("USING COVERING INDEX")))
            << sql << ": " << plan.join('|').toStdString();
    }
}

TEST_F(SqlEngineTest, ADatabaseOfPlainNoCaseColumnsKeepsWorking)
{
    const QString file = m_dir.filePath(QStringLiteral("older.db"));
    {
        QFile f(file);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    }
    auto older = SqlEngine::forConnectString(sqliteConnect(file));
    older->executeBound(QStringLiteral("CREATE TABLE t_Barcode (FID INTEGER PRIMARY KEY, FItemID INTEGER, FBarCode TEXT COLLATE NOCASE)"));
    older->executeBound(QStringLiteral("CREATE INDEX IX_Barcode_BarCode ON t_Barcode (FBarCode)"));
    older->executeBound(QStringLiteral("INSERT INTO t_Barcode (FItemID, FBarCode) VALUES (1, 'dx-usbc-1m')"));
    const RecordsetPtr rs = older->executeBatch(QStringLiteral("select FItemID from t_Barcode with(nolock) where FBarCode ='DX-USBC-1M'"));
    ASSERT_FALSE(rs->isEOF());
    EXPECT_EQ(rs->Fields(QStringLiteral("FItemID")).toInt(), 1);
}
