// The SQL engines: connect-string mapping, both engines on real SQLite files
// (the embedded one, and ODBC through the SQLite driver), and the ODBC
// engine's failure path.
#include "host/host_error.h"
#include "sql/sql_engine.h"
#include "sql/sql_statement_trace.h"
#include "sql/text_collation.h"
#include "support/demo_database_fixture.h"
#include "support/qt_print.h"
#include "support/sqlite_odbc.h"
#include <QDateTime>
#include <QFile>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

// The text of the HostError the call raises (description and what()), after
// checking its number; a failure when it raises none.
template <typename Call>
QString errorText(Call&& call, long number = HostErrors::Database)
{
    try {
        call();
    } catch (const HostError& e) {
        EXPECT_EQ(e.number(), number);
        return e.description() + QLatin1Char('\n') + QString::fromUtf8(e.what());
    }
    ADD_FAILURE() << "no HostError raised";
    return {};
}

qint64 scalar(SqlEngine& e, const QString& sql)
{
    auto rs = e.executeBatch(sql);
    return rs->isEOF() ? -1 : rs->Fields(rs->columns().first()).toLongLong();
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
        return GetParam() == Engine::SqliteOdbc ? SqliteOdbcConnect(file) : "Provider=SQLite;Data Source=" + file;
    }
    std::shared_ptr<SqlEngine> engine() { return SqlEngine::forConnectString(connect(m_file)); }

    QTemporaryDir m_dir;
    QString m_file;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Engines, SqlEngineTest, ::testing::Values(Engine::Embedded, Engine::SqliteOdbc),
                         [](const ::testing::TestParamInfo<Engine>& info) {
                             return info.param == Engine::SqliteOdbc ? "SqliteOdbc" : "Embedded";
                         });

TEST(ConnectStringMapping, EachFormReachesItsEngine)
{
    const QString ext = TextCollationExtensionPath();
    EXPECT_TRUE(ext.endsWith("/librnwcollation.so"));
    // No ODBC string: the embedded engine on the file.
    const struct {
        QString in, odbc, file;
        bool bridge;
    } cases[] = {
        {"Provider=SQLite;Data Source=/var/lib/rnw/demo.db", "", "/var/lib/rnw/demo.db", false},
        {" provider = sqlite ; data source = {/tmp/a;b/demo.db} ; ", "", "/tmp/a;b/demo.db", false},
        {"Provider=SQLOLEDB.1;Persist Security Info=True;Data Source=erp-db01;Initial Catalog=erpdata01;"
         "User ID=sa;Password=Pa55w!;Application Name=RnWDPicking",
         "Driver=FreeTDS;Server=erp-db01;Database=erpdata01;UID=sa;PWD=Pa55w!;APP=RnWDPicking;ClientCharset=UTF-8;", "", false},
        // port after a comma, a named instance, the local server
        {"Provider=SQLOLEDB;Data Source=tcp:10.0.0.5,14330;Initial Catalog=db;User ID=u;Password=p;Connect Timeout=4",
         "Driver=FreeTDS;Server=10.0.0.5;Port=14330;Database=db;UID=u;PWD=p;ClientCharset=UTF-8;", "", false},
        {"Provider=SQLOLEDB;Data Source=ERP\\SQL2019;Initial Catalog=db;Integrated Security=SSPI;User ID=ignored",
         "Driver=FreeTDS;Server=ERP\\SQL2019;Database=db;Trusted_Connection=Yes;ClientCharset=UTF-8;", "", false},
        {"Provider=SQLOLEDB;Data Source=(local);Initial Catalog=db;User ID=u;Password=",
         "Driver=FreeTDS;Server=localhost;Database=db;UID=u;PWD=;ClientCharset=UTF-8;", "", false},
        // a password holding separators is braced
        {"Provider=SQLOLEDB;Data Source=s;User ID=u;Password={a;b}", "Driver=FreeTDS;Server=s;UID=u;PWD={a;b};ClientCharset=UTF-8;", "", false},
        // ODBC strings pass on as written, less an OLE DB provider
        {"Driver={ODBC Driver 18 for SQL Server};Server=db;Database=x;UID=u;PWD=p;",
         "Driver=ODBC Driver 18 for SQL Server;Server=db;Database=x;UID=u;PWD=p;", "", false},
        {"Provider=MSDASQL;DSN=ERP;UID=u;PWD=p", "DSN=ERP;UID=u;PWD=p;", "", false},
        // The driver registered as SQLite3 gets the bridge: never a new empty
        // file, 64-bit numbers, the embedded engine's wait for a lock and the
        // text comparison of the demo schema, loaded from beside the component.
        {"Driver=SQLite3;Database=/var/lib/rnw/demo.db",
         "Driver=SQLite3;Database=/var/lib/rnw/demo.db;NoCreat=1;BigInt=1;Timeout=5000;LoadExt=" + ext + ";", "/var/lib/rnw/demo.db", true},
        // braces and case; a wait of its own is kept, a NoCreat=0 or BigInt=0 is not
        {" driver = {sqlite3} ; Database={/tmp/a;b/demo.db};Timeout=800;NoCreat=0;bigint=0;PWD=x",
         "driver=sqlite3;Database={/tmp/a;b/demo.db};Timeout=800;PWD=x;NoCreat=1;BigInt=1;LoadExt=" + ext + ";", "/tmp/a;b/demo.db", true},
        // an extension of the site's own is loaded after ours
        {"Driver=SQLite3;Database=/d.db;LoadExt=/opt/ext/spatial.so",
         "Driver=SQLite3;Database=/d.db;NoCreat=1;BigInt=1;Timeout=5000;LoadExt=" + ext + ",/opt/ext/spatial.so;", "/d.db", true},
        // every other driver, SQLite's own library named by file included, gets the statements as written
        {"Driver=libsqlite3odbc.so;Database=/tmp/demo.db", "Driver=libsqlite3odbc.so;Database=/tmp/demo.db;", "", false},
        {"Driver=SQLite;Database=/tmp/demo.db", "Driver=SQLite;Database=/tmp/demo.db;", "", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.in.toStdString());
        const ConnectionTarget t = MapConnectString(c.in);
        EXPECT_EQ(t.kind, c.odbc.isEmpty() ? ConnectionTarget::Sqlite : ConnectionTarget::Odbc);
        EXPECT_EQ(t.odbcConnectString, c.odbc);
        EXPECT_EQ(t.sqliteFile, c.file);
        EXPECT_EQ(t.tsqlBridge, c.bridge);
    }
    EXPECT_EQ(MapConnectString(cases[2].in).loginTimeoutSeconds, 15);
    EXPECT_EQ(MapConnectString(cases[3].in).loginTimeoutSeconds, 4);

    EXPECT_TRUE(errorText([] { MapConnectString("Provider=SQLite;"); }).contains("Data Source"));
    EXPECT_TRUE(errorText([] { MapConnectString("Driver=SQLite3;Timeout=800"); }).contains("Database"));
    EXPECT_THROW(MapConnectString("Provider=SQLOLEDB.1;Initial Catalog=AIS;User ID=sa;Password=x"), HostError);

    // The connect string comes braced inside the host's property string.
    EXPECT_EQ(ConnectStringFromProps("UserID=1;connectstring={Provider=SQLite;Data Source=x.db};Lang=chs;"),
              "Provider=SQLite;Data Source=x.db");
    EXPECT_TRUE(errorText([] { ConnectStringFromProps("UserID=1;Lang=chs;"); }).contains("ConnectString"));
    EXPECT_THROW(ConnectStringFromProps("UserID=1;ConnectString=;"), HostError);
}

TEST(OdbcEngine, AFailedOpenNamesWhatFailedButNeverThePassword)
{
    const QString secret = "Sup3rSecretPw";
    QTemporaryDir dir;
    const QString missing = dir.filePath("missing.db");
    const bool sqliteDriver = SqliteOdbcUnavailableReason().isEmpty();
    const struct {
        QString connect, named;
        bool needsSqliteDriver;
    } cases[] = {
        {"Provider=SQLOLEDB;Data Source=rnw-no-such-host.invalid;Initial Catalog=AIS;User ID=sa;Password=" + secret
             + ";Connect Timeout=2",
         "rnw-no-such-host.invalid", false},
        {"Driver=SQLite3;Database=" + missing + ";PWD=" + secret, missing, true},
        {"Driver=SQLite3x;Database=" + missing + ";PWD=" + secret, "SQLite3x", true},
    };
    for (const auto& c : cases) {
        if (c.needsSqliteDriver && !sqliteDriver)
            continue;
        SCOPED_TRACE(c.named.toStdString());
        auto engine = SqlEngine::forConnectString(c.connect);
        for (int attempt = 0; attempt < 2; ++attempt) {
            const QString error = errorText([&] { engine->executeBatch("select 1"); });
            EXPECT_TRUE(error.contains(c.named)) << error.toStdString();
            EXPECT_FALSE(error.contains(secret)) << error.toStdString();
            EXPECT_FALSE(engine->isOpen());
        }
    }
    EXPECT_FALSE(QFile::exists(missing));
    SqlEngine::closeAll();
}

// A file lost or made unreadable under a running station: tests/reliability.
TEST_P(SqlEngineTest, AMissingFileIsRefusedNotCreatedAndOpenedOnceItComes)
{
    const QString later = m_dir.filePath("later.db");
    auto e = SqlEngine::forConnectString(connect(later));
    for (int attempt = 0; attempt < 2; ++attempt) {
        EXPECT_TRUE(errorText([&] { e->executeBound("SELECT 1"); }).contains(later));
        EXPECT_FALSE(QFile::exists(later));
        EXPECT_FALSE(e->isOpen());
    }
    ASSERT_TRUE(QFile::copy(m_file, later));
    EXPECT_EQ(scalar(*e, "SELECT COUNT(*) FROM t_ICItem"), 40);
    EXPECT_TRUE(e->isOpen());
    if (GetParam() == Engine::SqliteOdbc) {
        // the same driver named by its library is just another ODBC driver:
        // what the server would get, it gets, letter for letter
        auto plain = SqlEngine::forConnectString("Driver=libsqlite3odbc.so;Database=" + later);
        EXPECT_EQ(plain->executeBatch("select FName from t_ICItem where FItemID = 1023")->Fields("FName").toString(), "棒球帽");
        EXPECT_THROW(plain->executeBatch("select top 1 FName from t_ICItem with(nolock)"), HostError);
    }
}

TEST_P(SqlEngineTest, ReadsRowsNullsAndNamesAsTheStatementGivesThemThroughReusedStatements)
{
    auto e = engine();
    auto rs = e->executeBatch("select FItemID as Id, t.FName, t.FBarcode, t.FModel from t_ICItem t "
                              "where t.FNumber = '04.004' or t.FNumber = '01.005' order by FItemID");
    EXPECT_EQ(rs->columns(), QStringList({"Id", "FName", "FBarcode", "FModel"}));
    ASSERT_EQ(rs->RecordCount(), 2);
    EXPECT_EQ(rs->Fields("FBARCODE").toString(), "6931000010055");   // names in any case
    rs->MoveNext();
    EXPECT_EQ(rs->Fields("id").toInt(), 1023);
    EXPECT_EQ(rs->Fields("FName").toString(), "棒球帽");

    // an empty text is not NULL, nor is a NULL made empty
    rs = e->executeBatch("select ISNULL(FBarcode,'') as B, FBarcode, FItemID * 10000000 as Big "
                         "from t_ICItem with(nolock) where FItemID = 1023");
    EXPECT_EQ(rs->Fields("B").typeId(), QMetaType::QString);
    EXPECT_EQ(rs->Fields("B").toString(), "");
    EXPECT_TRUE(rs->Fields("FBarcode").isNull());
    // numbers come back as numbers, whole ones of 64 bits
    EXPECT_EQ(rs->Fields("Big").typeId(), QMetaType::LongLong);
    EXPECT_EQ(rs->Fields("Big").toLongLong(), 10230000000LL);
    EXPECT_EQ(scalar(*e, "select SUM(FQuantity) as Q from IC_Web2ERPOrdersEntry where FID = 1"), 4);
    // a first run without rows decides nothing about how later rows read
    const QString serialGoods = "select 1 from IC_Web2ERPOrdersEntry t1 with(nolock) where t1.FItemID ='%1'";
    EXPECT_TRUE(e->executeBatch(serialGoods.arg("9999"))->isEOF());
    rs = e->executeBatch(serialGoods.arg("1031"));
    ASSERT_FALSE(rs->isEOF());
    EXPECT_EQ(rs->Fields("1").typeId(), QMetaType::LongLong) << rs->Fields("1").typeName();

    // a SELECT without rows keeps its columns
    rs = e->executeBatch("select FID from IC_Web2ERPOrders where FLogisticsOrder ='NOPE'");
    EXPECT_TRUE(rs->isEOF());
    EXPECT_EQ(rs->columns(), QStringList({"FID"}));

    // Prepared statements are reused with the right rows.
    const QString shape = "select FItemID from t_Barcode where FBarCode ='%1'";
    const int before = e->preparedCount();
    auto first = e->executeBatch(shape.arg("6931000010017"));
    const int prepared = e->preparedCount();
    // the SQLite ODBC driver's statements are prepared for each run
    EXPECT_EQ(prepared - before, GetParam() == Engine::SqliteOdbc ? 0 : 1);
    auto second = e->executeBatch(shape.arg("6931000010055"));
    auto again = e->executeBatch(shape.arg("6931000010017"));
    // literals are bound, so one shape is one prepared statement
    EXPECT_EQ(e->preparedCount(), prepared);
    EXPECT_EQ(first->Fields("FItemID").toInt(), 1001);
    EXPECT_EQ(second->Fields("FItemID").toInt(), 1005);
    EXPECT_EQ(again->Fields("FItemID").toInt(), 1001);
    EXPECT_TRUE(e->executeBatch(shape.arg("0000000000000"))->isEOF());
}

TEST_P(SqlEngineTest, WritesAreAllOrNothing)
{
    auto e = engine();
    // a batch answers the rows of its last statement that has any
    EXPECT_EQ(scalar(*e, " Delete IC_Web2ErpOrderSerial where FEntryID=1\r\n"
                         "select COUNT(*) AS Left1 from IC_Web2ErpOrderSerial where FEntryID=1"),
              0);
    EXPECT_TRUE(e->executeBatch(" Delete IC_Web2ErpOrderSerial where FEntryID=2")->columns().isEmpty());

    // Own transactions nest: the inner one joins, and all goes back.
    const QString update = "UPDATE t_Stock SET FName = ? WHERE FItemID = ?";
    EXPECT_THROW(e->inTransaction([&] {
        e->executeBound(update, {"甲", 1});
        e->inTransaction([&] { e->executeBound(update, {"乙", 2}); });
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
    auto found = e->executeBatch("select FItemID, FName, LEN(FName) as N from t_Stock with(nolock) where FName ='" + wide + "'");
    ASSERT_FALSE(found->isEOF());
    EXPECT_EQ(found->Fields("FItemID").toInt(), 3);
    EXPECT_EQ(found->Fields("FName").toString(), wide);
    EXPECT_EQ(found->Fields("N").toInt(), 6) << "characters, not UTF-16 units or bytes";

    // an engine error names the engine's complaint and leaves the engine usable
    EXPECT_TRUE(errorText([&] { e->executeBatch("select * from no_such_table"); }).contains("no_such_table"));
    EXPECT_TRUE(e->isOpen());
    EXPECT_EQ(scalar(*e, "SELECT COUNT(*) FROM t_Stock"), 3);
    // one engine per connect string
    EXPECT_EQ(e.get(), engine().get());
}

TEST_P(SqlEngineTest, TextComparesAsOnTheServerCaseAndTrailingBlanksAside)
{
    auto db = engine();
    // 'SF10019 ' is stored with a trailing blank; one item's barcode is all blanks.
    db->executeBound("UPDATE IC_Web2ERPOrders SET FLogisticsOrder = ? WHERE FUniqueCode = ?", {"SF10019 ", "10019"});
    db->executeBound("UPDATE t_ICItem SET FBarcode = ? WHERE FItemID = 1015", {"   "});
    const struct {
        const char* where;
        qint64 count;
    } cases[] = {
        {"IC_Web2ERPOrders with(nolock) where FLogisticsOrder ='SF10019'", 1},
        {"IC_Web2ERPOrders with(nolock) where FLogisticsOrder ='sf10019  '", 1},
        {"IC_Web2ERPOrders with(nolock) where FLogisticsOrder =' SF10019'", 0},
        {"IC_Web2ERPOrders with(nolock) where FLogisticsOrder ='SF1001'", 0},
        {"IC_Web2ERPOrders with(nolock) where FLogisticsOrder ='sf10001'", 1},
        {"t_ICItem with(nolock) where FItemID = 1015 and FBarcode <> ''", 0},
        {"t_ICItem with(nolock) where FItemID = 1015 and FBarcode = ''", 1},
        {"t_ICItem with(nolock) where FItemID = 1016 and FBarcode <> ''", 1},
        // Only blanks: a tab is text.
        {"t_ICItem with(nolock) where FItemID = 1015 and FBarcode = '\t'", 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(scalar(*db, QStringLiteral("select count(*) from ") + QString::fromUtf8(c.where)), c.count) << c.where;

    // Still a search of the index, not a scan of the table.
    for (const char* sql : {"EXPLAIN QUERY PLAN SELECT FID FROM IC_Web2ERPOrders WHERE FLogisticsOrder = 'SF10019'",
                            "EXPLAIN QUERY PLAN SELECT FItemID FROM t_Barcode WHERE FBarCode = '6931000010017'",
                            "EXPLAIN QUERY PLAN SELECT FSerialID FROM ICSerial WHERE FSerialNum = 'W1-0001'"}) {
        QStringList plan;
        for (RecordsetPtr rs = db->executeBound(QString::fromUtf8(sql)); !rs->isEOF(); rs->MoveNext())
            plan << rs->Fields("detail").toString();
        EXPECT_TRUE(plan.join('|').contains(QRegularExpression("USING (COVERING )?INDEX"))) << sql << ": " << plan.join('|').toStdString();
    }

    // An older database of plain NOCASE columns keeps working.
    const QString file = m_dir.filePath("older.db");
    {
        QFile f(file);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    }
    auto older = SqlEngine::forConnectString(connect(file));
    older->executeBound("CREATE TABLE t_Barcode (FID INTEGER PRIMARY KEY, FItemID INTEGER, FBarCode TEXT COLLATE NOCASE)");
    older->executeBound("CREATE INDEX IX_Barcode_BarCode ON t_Barcode (FBarCode)");
    older->executeBound("INSERT INTO t_Barcode (FItemID, FBarCode) VALUES (1, 'dx-usbc-1m')");
    EXPECT_EQ(scalar(*older, "select FItemID from t_Barcode with(nolock) where FBarCode ='DX-USBC-1M'"), 1);
}

// The functions of the station's statements answer as on the server.
TEST_P(SqlEngineTest, TsqlFunctionsAnswerAsOnTheServer)
{
    auto e = engine();
    const struct {
        const char* tsql;
        const char* answer;   // nullptr: NULL
    } cases[] = {
        {"select Convert(Varchar(10),DateAdd(Day,365,'2024-01-05'),111)", "2025/01/04"},
        {"select Convert(Varchar(10),DateAdd(Day,1,'2024-02-28 23:10:00'),111)", "2024/02/29"},
        // The server drops the fraction of the days, toward zero.
        {"select Convert(Varchar(10),DateAdd(dd,-3.7,'2024-03-01'),111)", "2024/02/27"},
        {"select DateAdd(d,2.9,'2024-03-01 10:30:00')", "2024-03-03 10:30:00"},
        {"select convert(varchar(7), '2024-12-31 08:00:00', 111)", "2024/12"},
        {"select Convert(Varchar(10),DateAdd(Day,NULL,'2024-01-05'),111)", nullptr},
        {"select Convert(Varchar(10),DateAdd(Day,5,NULL),111)", nullptr},
        // A DateAdd result compares with dates written the same way.
        {"select case when DateAdd(Day,1,'2024-01-31') > '2024-01-31 23:59:59' then 1 else 0 end", "1"},
        {"select Str(0)", "         0"},
        {"select LTrim(Str(365))", "365"},
        {"select LTrim(Str('365'))", "365"},
        {"select Str(2.5)", "         3"},
        {"select Str(-2.5)", "        -3"},
        {"select Str(9999999999)", "9999999999"},
        {"select Str(9999999999.5)", "**********"},
        {"select Str(-999999999)", "-999999999"},
        {"select Str(-1000000000)", "**********"},
        {"select Str(7, 3)", "  7"},
        {"select Str(1000, 3, 0)", "***"},
        {"select Str(NULL)", nullptr},
        // Len does not count trailing blanks, leading ones it does.
        {"select Len('ab   ')", "2"},
        {"select Len('  ab')", "4"},
        {"select Len(N'序列号 ')", "3"},
        {"select Len('')", "0"},
        {"select Len(365)", "3"},
        {"select Len(NULL)", nullptr},
        {"select RTrim(LTrim('  a b  '))", "a b"},
        {"select ISNULL(FModel,'') from t_ICItem where FItemID = 1099", nullptr},
        {"select ISNULL(FBarcode,'-') from t_ICItem with(nolock) where FItemID = 1023", "-"},
        // TOP limits the SELECT it stands in, over a union too.
        {"select top 1 x from (select 3 x union all select 5 x union all select 4) a order by x desc", "5"},
        {"select x from (select top 2 x from (select 3 x union all select 5 union all select 4) b order by x) a order by x desc", "4"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tsql);
        const RecordsetPtr rs = e->executeBatch(QString::fromUtf8(c.tsql));
        const QVariant value = rs->isEOF() ? QVariant() : rs->Fields(rs->columns().first());
        if (c.answer)
            EXPECT_EQ(value.toString(), QString::fromUtf8(c.answer));
        else
            EXPECT_TRUE(value.isNull()) << value.toString().toStdString();
    }
    const QDateTime now = QDateTime::fromString(e->executeBatch("select GETDATE() as D")->Fields("D").toString(), "yyyy-MM-dd HH:mm:ss");
    ASSERT_TRUE(now.isValid());
    EXPECT_LE(qAbs(now.secsTo(QDateTime::currentDateTime())), 5);
}

// The statement counters and the capture list; a captured statement run again
// straight on the file gives the rows the station got.
TEST_P(SqlEngineTest, CountersFollowEveryStatementAndCaptureKeepsWhatRan)
{
    const QString barcodeLookup = "select top 1 t3.FBarCode ,t1.FItemID from IC_Web2ERPOrdersEntry t1 with(nolock) "
                                  " left join t_Barcode t3 with(nolock) on t1.FItemID=t3.FItemID  where t3.FBarCode  ='%1'";
    auto e = engine();
    e->executeBound("SELECT 1");   // opens the connection
    const SqlTraceCounters before = SqlStatementTrace::counters();
    e->executeBatch(barcodeLookup.arg("6931000010017"));
    // bound statements of the middle tier count as statements, not batches
    e->executeBound("SELECT FID FROM IC_Web2ERPOrders WHERE FID = ?", {1});
    SqlTraceCounters delta = SqlStatementTrace::counters() - before;
    EXPECT_EQ(delta.statements, 2);
    EXPECT_EQ(delta.batches, 1);
    EXPECT_GT(delta.engineNanoseconds, 0);
    EXPECT_GT(delta.bridgeNanoseconds, 0);

    // a batch of two writes runs in a transaction: BEGIN, two statements, COMMIT;
    // a statement the database refuses is counted as well
    const SqlTraceCounters beforeWrite = SqlStatementTrace::counters();
    e->executeBatch(" Delete IC_Web2ErpOrderSerial where FEntryID=1\r\n Delete IC_Web2ErpOrderSerial where FEntryID=2");
    EXPECT_THROW(e->executeBound("SELECT FNoSuchColumn FROM t_ICItem"), HostError);
    EXPECT_EQ((SqlStatementTrace::counters() - beforeWrite).statements, 5);

    // capture keeps only what ran while it was on; taking empties the list
    SqlStatementTrace::setCapturing(true);
    const RecordsetPtr found = e->executeBatch(barcodeLookup.arg("6931000010055"));
    EXPECT_TRUE(e->executeBatch(barcodeLookup.arg("0000000000000"))->isEOF());
    SqlStatementTrace::setCapturing(false);
    e->executeBatch(barcodeLookup.arg("6931000010017"));
    const std::vector<SqlTraceStatement> captured = SqlStatementTrace::takeCaptured();
    SqlStatementTrace::reset();
    ASSERT_EQ(captured.size(), 2u);
    EXPECT_TRUE(SqlStatementTrace::takeCaptured().empty());
    // as SQLite ran it, the code bound; one shape, one text
    const SqlTraceStatement& first = captured[0];
    EXPECT_EQ(first.params, QVariantList{"6931000010055"});
    EXPECT_EQ(first.rows, 1);
    EXPECT_EQ(captured[1].sql, first.sql);
    EXPECT_EQ(captured[1].params, QVariantList{"0000000000000"});
    EXPECT_EQ(captured[1].rows, 0);

    // run straight on the file, the statement answers what the engine answered
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "trace_replay");
        db.setDatabaseName(m_file);
        ASSERT_TRUE(db.open());
        RegisterTextCollation(db);
        QSqlQuery q(db);
        ASSERT_TRUE(q.prepare(first.sql));
        for (int i = 0; i < first.params.size(); ++i)
            q.bindValue(i, first.params[i]);
        ASSERT_TRUE(q.exec() && q.next());
        EXPECT_EQ(q.value("FItemID").toInt(), found->Fields("FItemID").toInt());
        EXPECT_FALSE(q.next());
        q = QSqlQuery();
        db.close();
    }
    QSqlDatabase::removeDatabase("trace_replay");
}
