// The engines' statement counters and capture list: what they count, what
// they keep, and that a captured statement run again straight on SQLite
// gives the rows the station got.
#include "host/host_error.h"
#include "sql/sql_engine.h"
#include "sql/sql_statement_trace.h"
#include "sql/text_collation.h"
#include "support/demo_database_fixture.h"
#include <QSqlDatabase>
#include <QSqlQuery>
#include <gtest/gtest.h>

namespace {

class SqlTraceTest : public DemoDatabaseTest {
protected:
    void TearDown() override
    {
        SqlStatementTrace::setCapturing(false);
        SqlStatementTrace::reset();
        DemoDatabaseTest::TearDown();
    }
    std::shared_ptr<SqlEngine> engine() { return SqlEngine::forConnectString("Provider=SQLite;Data Source=" + m_file); }
};

const QString kBarcodeLookup = QStringLiteral(
    "select top 1 t3.FBarCode ,t1.FItemID from IC_Web2ERPOrdersEntry t1 with(nolock) "
    " left join t_Barcode t3 with(nolock) on t1.FItemID=t3.FItemID  where t3.FBarCode  ='%1'");

} // namespace

TEST_F(SqlTraceTest, CountersFollowEveryStatementAndCaptureKeepsWhatRan)
{
    auto e = engine();
    e->executeBound("SELECT 1");   // opens the connection
    const SqlTraceCounters before = SqlStatementTrace::counters();
    e->executeBatch(kBarcodeLookup.arg("6931000010017"));
    // bound statements of the middle tier count as statements, not batches
    e->executeBound("SELECT FID FROM IC_Web2ERPOrders WHERE FID = ?", {1});
    SqlTraceCounters delta = SqlStatementTrace::counters() - before;
    EXPECT_EQ(delta.statements, 2);
    EXPECT_EQ(delta.batches, 1);
    EXPECT_GT(delta.engineNanoseconds, 0);
    EXPECT_GT(delta.bridgeNanoseconds, 0);
    // capture is off unless asked for
    EXPECT_FALSE(SqlStatementTrace::isCapturing());
    EXPECT_TRUE(SqlStatementTrace::takeCaptured().empty());

    // a batch of two writes runs in a transaction: BEGIN, two statements, COMMIT;
    // a statement the database refuses is counted as well
    const SqlTraceCounters beforeWrite = SqlStatementTrace::counters();
    e->executeBatch(" Delete IC_Web2ErpOrderSerial where FEntryID=1\r\n Delete IC_Web2ErpOrderSerial where FEntryID=2");
    EXPECT_THROW(e->executeBound("SELECT FNoSuchColumn FROM t_ICItem"), HostError);
    EXPECT_EQ((SqlStatementTrace::counters() - beforeWrite).statements, 5);

    SqlStatementTrace::setCapturing(true);
    const RecordsetPtr found = e->executeBatch(kBarcodeLookup.arg("6931000010055"));
    EXPECT_TRUE(e->executeBatch(kBarcodeLookup.arg("0000000000000"))->isEOF());
    SqlStatementTrace::setCapturing(false);
    e->executeBatch(kBarcodeLookup.arg("6931000010017"));   // after capture: not kept
    const std::vector<SqlTraceStatement> captured = SqlStatementTrace::takeCaptured();
    ASSERT_EQ(captured.size(), 2u);
    EXPECT_TRUE(SqlStatementTrace::takeCaptured().empty()) << "taking empties the list";
    // as SQLite ran it: hint gone, TOP turned into LIMIT, the code bound; one shape, one text
    const SqlTraceStatement& first = captured[0];
    EXPECT_FALSE(first.sql.contains("nolock", Qt::CaseInsensitive)) << first.sql.toStdString();
    EXPECT_TRUE(first.sql.contains("LIMIT 1")) << first.sql.toStdString();
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
        ASSERT_TRUE(q.exec());
        ASSERT_TRUE(q.next());
        EXPECT_EQ(q.value("FItemID").toInt(), found->Fields("FItemID").toInt());
        EXPECT_EQ(q.value("FItemID").toInt(), 1005);
        EXPECT_FALSE(q.next());
        q = QSqlQuery();
        db.close();
    }
    QSqlDatabase::removeDatabase("trace_replay");

    SqlStatementTrace::reset();
    const SqlTraceCounters zero = SqlStatementTrace::counters();
    EXPECT_EQ(zero.statements, 0);
    EXPECT_EQ(zero.engineNanoseconds, 0);
    EXPECT_EQ(zero.batches, 0);
}
