// The SQL engines: connect-string mapping, password masking, both engines on
// real SQLite files (the embedded one, and ODBC through the SQLite driver),
// and the ODBC engine's failure path.
#include "demo/demo_database.h"
#include "host/host_error.h"
#include "host/props_text.h"
#include "sql/sql_engine.h"
#include "sql/sql_statement_trace.h"
#include "support/demo_database_fixture.h"
#include "support/qt_print.h"
#include "support/sqlite_odbc.h"
#include "support/unreadable_file.h"
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <ostream>

namespace {

QString sqliteConnect(const QString& file)
{
    return QStringLiteral("Provider=SQLite;Data Source=") + file;
}

enum class Engine { Embedded, SqliteOdbc };

// Each case runs on the embedded engine and through the SQLite ODBC driver:
// the same file and the same statements must give the same answers.
class SqlEngineTest : public ::testing::TestWithParam<Engine> {
protected:
    void SetUp() override
    {
        if (GetParam() == Engine::SqliteOdbc) {
            const QString reason = SqliteOdbcUnavailableReason();
            if (!reason.isEmpty())
                GTEST_SKIP() << "ODBC engine not run: " << reason.toStdString();
        }
        ASSERT_TRUE(m_dir.isValid());
        m_file = m_dir.filePath("demo.db");
        ASSERT_TRUE(QFile::copy(pristineDemo(), m_file));
    }
    void TearDown() override { SqlEngine::closeAll(); }

    QString connect(const QString& file) const
    {
        return GetParam() == Engine::SqliteOdbc ? SqliteOdbcConnect(file) : sqliteConnect(file);
    }
    std::shared_ptr<SqlEngine> engine() { return SqlEngine::forConnectString(connect(m_file)); }
    qint64 scalar(const QString& sql)
    {
        auto rs = engine()->executeBound(sql);
        return rs->isEOF() ? -1 : rs->Fields(rs->columns().first()).toLongLong();
    }

    QTemporaryDir m_dir;
    QString m_file;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Engines, SqlEngineTest, ::testing::Values(Engine::Embedded, Engine::SqliteOdbc),
                         [](const ::testing::TestParamInfo<Engine>& info) {
                             return info.param == Engine::SqliteOdbc ? "SqliteOdbc" : "Embedded";
                         });

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

TEST(ConnectStringMapping, TheSqliteOdbcDriverGetsTheBridgeAndTheFileRules)
{
    ConnectionTarget t = MapConnectString("Driver=SQLite3;Database=/var/lib/rnw/demo.db");
    EXPECT_EQ(t.kind, ConnectionTarget::Odbc);
    EXPECT_TRUE(t.tsqlBridge);
    EXPECT_EQ(t.sqliteFile, "/var/lib/rnw/demo.db");
    // never a new empty file, 64-bit numbers, the embedded engine's wait for a lock
    // and the text comparison of the demo schema, loaded from beside the component
    EXPECT_EQ(t.odbcConnectString, "Driver=SQLite3;Database=/var/lib/rnw/demo.db;NoCreat=1;BigInt=1;Timeout=5000;LoadExt="
                                       + TextCollationExtensionPath() + ";");
    EXPECT_TRUE(TextCollationExtensionPath().endsWith("/librnwcollation.so"));

    // braces and case; a wait of its own is kept, a NoCreat=0 or BigInt=0 is not
    t = MapConnectString(" driver = {sqlite3} ; Database={/tmp/a;b/demo.db};Timeout=800;NoCreat=0;bigint=0;PWD=x");
    EXPECT_TRUE(t.tsqlBridge);
    EXPECT_EQ(t.sqliteFile, "/tmp/a;b/demo.db");
    EXPECT_EQ(t.odbcConnectString, "driver=sqlite3;Database={/tmp/a;b/demo.db};Timeout=800;PWD=x;NoCreat=1;BigInt=1;LoadExt="
                                       + TextCollationExtensionPath() + ";");
    // an extension of the site's own is loaded after ours
    t = MapConnectString("Driver=SQLite3;Database=/d.db;LoadExt=/opt/ext/spatial.so");
    EXPECT_TRUE(t.odbcConnectString.endsWith("LoadExt=" + TextCollationExtensionPath() + ",/opt/ext/spatial.so;"))
        << t.odbcConnectString.toStdString();

    try {
        MapConnectString("Driver=SQLite3;Timeout=800");
        FAIL() << "a SQLite ODBC string without a file must be refused";
    } catch (const HostError& e) {
        EXPECT_TRUE(e.description().contains("Database")) << e.description().toStdString();
    }

    // every other driver, SQLite's own library named by file included, and
    // every SQL Server string get the statements as written
    EXPECT_FALSE(MapConnectString("Driver=libsqlite3odbc.so;Database=/tmp/demo.db").tsqlBridge);
    EXPECT_FALSE(MapConnectString("Driver=SQLite;Database=/tmp/demo.db").tsqlBridge);
    EXPECT_FALSE(MapConnectString("Driver={ODBC Driver 18 for SQL Server};Server=db;Database=x").tsqlBridge);
    EXPECT_FALSE(MapConnectString("Provider=SQLOLEDB;Data Source=s;Initial Catalog=db;User ID=u;Password=p").tsqlBridge);
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

TEST(OdbcEngine, OnlyTheSqliteDriverGetsTheBridge)
{
    const QString reason = SqliteOdbcUnavailableReason();
    if (!reason.isEmpty())
        GTEST_SKIP() << "ODBC engine not run: " << reason.toStdString();
    QTemporaryDir dir;
    const QString file = dir.filePath("demo.db");
    ASSERT_TRUE(QFile::copy(pristineDemo(), file));
    const QString tsql = "select top 1 FName from t_ICItem with(nolock) where FNumber ='04.004'";

    SqlStatementTrace::reset();
    SqlStatementTrace::setCapturing(true);
    auto bridged = SqlEngine::forConnectString(SqliteOdbcConnect(file));
    auto rs = bridged->executeBatch(tsql);
    ASSERT_FALSE(rs->isEOF());
    EXPECT_EQ(rs->Fields("FName").toString(), "棒球帽");
    auto ran = SqlStatementTrace::takeCaptured();
    ASSERT_EQ(ran.size(), 1u);
    EXPECT_TRUE(ran[0].sql.contains("LIMIT 1")) << ran[0].sql.toStdString();
    EXPECT_FALSE(ran[0].sql.contains("nolock")) << ran[0].sql.toStdString();
    EXPECT_EQ(ran[0].params, QVariantList{QString("04.004")});

    // the same driver named by its library is just another ODBC driver:
    // what the server would get, it gets, letter for letter
    SqlStatementTrace::setCapturing(true);
    auto plain = SqlEngine::forConnectString("Driver=libsqlite3odbc.so;Database=" + file);
    const QString common = "select FName from t_ICItem where FItemID = 1023";
    rs = plain->executeBatch(common);
    ASSERT_FALSE(rs->isEOF());
    EXPECT_EQ(rs->Fields("FName").toString(), "棒球帽");
    EXPECT_THROW(plain->executeBatch(tsql), HostError);
    ran = SqlStatementTrace::takeCaptured();
    SqlStatementTrace::setCapturing(false);
    ASSERT_EQ(ran.size(), 2u);
    EXPECT_EQ(ran[0].sql, common);
    EXPECT_TRUE(ran[0].params.isEmpty());
    EXPECT_EQ(ran[1].sql, tsql);
    SqlEngine::closeAll();
}

TEST(OdbcEngine, AWrongDriverOrAMissingFileIsNamedWithoutThePassword)
{
    const QString reason = SqliteOdbcUnavailableReason();
    if (!reason.isEmpty())
        GTEST_SKIP() << "ODBC engine not run: " << reason.toStdString();
    QTemporaryDir dir;
    const QString secret = "Sup3rSecretPw";
    const QString missing = dir.filePath("missing.db");
    const struct {
        QString connect, named;
    } cases[] = {
        {"Driver=SQLite3;Database=" + missing + ";PWD=" + secret, missing},
        {"Driver=SQLite3x;Database=" + missing + ";PWD=" + secret, "SQLite3x"},
    };
    for (const auto& c : cases) {
        auto engine = SqlEngine::forConnectString(c.connect);
        try {
            engine->executeBatch("select 1");
            FAIL() << "must not open: " << c.connect.toStdString();
        } catch (const HostError& e) {
            EXPECT_EQ(e.number(), HostErrors::Database);
            EXPECT_TRUE(e.description().contains(c.named)) << e.description().toStdString();
            EXPECT_FALSE(e.description().contains(secret)) << e.description().toStdString();
        }
        EXPECT_FALSE(engine->isOpen());
    }
    EXPECT_FALSE(QFile::exists(missing));
    SqlEngine::closeAll();
}

TEST_P(SqlEngineTest, MissingFileIsRefusedNotCreatedAndOpensOnceItComes)
{
    const QString later = m_dir.filePath("later.db");
    auto e = SqlEngine::forConnectString(connect(later));
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

TEST_P(SqlEngineTest, AFileMadeUnreadableIsLetGoAndOpenedAgainWhenItIsBack)
{
    auto e = engine();
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM t_Stock"), 3);
    ASSERT_TRUE(e->isOpen());
    {
        UnreadableFile locked(m_file);
        ASSERT_TRUE(locked.effective()) << locked.error().toStdString();
        // the open handle would still read and write: refused instead, twice
        for (int attempt = 0; attempt < 2; ++attempt) {
            try {
                e->executeBatch("update t_Stock set FName = FName where FItemID = 1");
                FAIL() << "the station may no longer use the file";
            } catch (const HostError& error) {
                EXPECT_EQ(error.number(), HostErrors::Database);
                EXPECT_TRUE(error.description().contains(m_file)) << error.description().toStdString();
            }
            EXPECT_FALSE(e->isOpen());
        }
    }
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM t_Stock"), 3);
    EXPECT_TRUE(e->isOpen());
}

TEST_P(SqlEngineTest, ReadsRowsNullsAndNamesAsTheStatementGivesThem)
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

    // an empty text is not NULL, nor is a NULL made empty
    rs = engine()->executeBatch("select FBatchNo from IC_Web2ERPOrdersEntry where FEntryID = 1");
    ASSERT_FALSE(rs->isEOF());
    EXPECT_FALSE(rs->Fields("FBatchNo").isNull());
    EXPECT_EQ(rs->Fields("FBatchNo").typeId(), QMetaType::QString);
    EXPECT_EQ(rs->Fields("FBatchNo").toString(), "");
    rs = engine()->executeBatch("select ISNULL(FBarcode,'') as B, FBarcode, FItemID * 10000000 as Big, FName "
                                "from t_ICItem with(nolock) where FItemID = 1023");
    ASSERT_FALSE(rs->isEOF());
    EXPECT_EQ(rs->Fields("B").typeId(), QMetaType::QString);
    EXPECT_EQ(rs->Fields("B").toString(), "");
    EXPECT_TRUE(rs->Fields("FBarcode").isNull());
    // numbers come back as numbers, whole ones of 64 bits
    EXPECT_EQ(rs->Fields("Big").typeId(), QMetaType::LongLong);
    EXPECT_EQ(rs->Fields("Big").toLongLong(), 10230000000LL);
    EXPECT_EQ(rs->Fields("FName").toString(), "棒球帽");
    rs = engine()->executeBatch("select COUNT(*) as N, SUM(FQuantity) as Q from IC_Web2ERPOrdersEntry where FID = 1");
    EXPECT_EQ(rs->Fields("N").typeId(), QMetaType::LongLong);
    EXPECT_EQ(rs->Fields("N").toInt(), 3);
    EXPECT_TRUE(rs->Fields("Q").typeId() == QMetaType::LongLong || rs->Fields("Q").typeId() == QMetaType::Double)
        << rs->Fields("Q").typeName();
    EXPECT_EQ(rs->Fields("Q").toInt(), 4);
    // a first run without rows decides nothing about how later rows read
    const QString serialGoods = "select 1 from IC_Web2ERPOrdersEntry t1 with(nolock) where t1.FItemID ='%1'";
    EXPECT_TRUE(engine()->executeBatch(serialGoods.arg("9999"))->isEOF());
    rs = engine()->executeBatch(serialGoods.arg("1031"));
    ASSERT_FALSE(rs->isEOF());
    EXPECT_EQ(rs->Fields("1").typeId(), QMetaType::LongLong) << rs->Fields("1").typeName();

    // text compares without regard to case
    rs = engine()->executeBatch("select FID from IC_Web2ERPOrders where FLogisticsOrder ='sf10001'");
    ASSERT_FALSE(rs->isEOF());
    EXPECT_EQ(rs->Fields("FID").toInt(), 1);

    // a statement without rows gives an empty recordset, a SELECT without rows keeps its columns
    rs = engine()->executeBatch("select FID from IC_Web2ERPOrders where FLogisticsOrder ='NOPE'");
    EXPECT_TRUE(rs->isEOF());
    EXPECT_EQ(rs->columns(), QStringList({"FID"}));
}

TEST_P(SqlEngineTest, PreparedStatementsAreReusedWithTheRightRows)
{
    auto e = engine();
    const QString shape = "select FItemID from t_Barcode where FBarCode ='%1'";
    auto first = e->executeBatch(shape.arg("6931000010017"));
    const int prepared = e->preparedCount();
    // the SQLite ODBC driver's statements are prepared for each run
    EXPECT_EQ(prepared, GetParam() == Engine::SqliteOdbc ? 0 : 1);
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

TEST_P(SqlEngineTest, BatchesRunAllOrNothing)
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

TEST_P(SqlEngineTest, OwnTransactionsNestAndRollBack)
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

    // text goes in and comes back whole, beyond the basic plane too
    const QString wide = QString::fromUtf8("丙仓 \xF0\xA0\x80\x80 \xF0\x9F\x93\xA6");
    e->inTransaction([&] { e->executeBound(update, {wide, 3}); });
    EXPECT_EQ(e->executeBound("SELECT FName FROM t_Stock WHERE FItemID = ?", {3})->Fields("FName").toString(), wide);
    auto found = e->executeBatch("select FItemID, LEN(FName) as N from t_Stock with(nolock) where FName ='" + wide + "'");
    ASSERT_FALSE(found->isEOF());
    EXPECT_EQ(found->Fields("FItemID").toInt(), 3);
    EXPECT_EQ(found->Fields("N").toInt(), 6) << "characters, not UTF-16 units or bytes";

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

TEST_P(SqlEngineTest, TextComparesAsOnTheServerCaseAndTrailingBlanksAside)
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

TEST_P(SqlEngineTest, ADatabaseOfPlainNoCaseColumnsKeepsWorking)
{
    const QString file = m_dir.filePath(QStringLiteral("older.db"));
    {
        QFile f(file);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    }
    auto older = SqlEngine::forConnectString(connect(file));
    older->executeBound(QStringLiteral("CREATE TABLE t_Barcode (FID INTEGER PRIMARY KEY, FItemID INTEGER, FBarCode TEXT COLLATE NOCASE)"));
    older->executeBound(QStringLiteral("CREATE INDEX IX_Barcode_BarCode ON t_Barcode (FBarCode)"));
    older->executeBound(QStringLiteral("INSERT INTO t_Barcode (FItemID, FBarCode) VALUES (1, 'dx-usbc-1m')"));
    const RecordsetPtr rs = older->executeBatch(QStringLiteral("select FItemID from t_Barcode with(nolock) where FBarCode ='DX-USBC-1M'"));
    ASSERT_FALSE(rs->isEOF());
    EXPECT_EQ(rs->Fields(QStringLiteral("FItemID")).toInt(), 1);
}
