#include "host/host_error.h"
#include "sql/tsql_bridge.h"
#include "support/expected_statements.h"

#include <QDateTime>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <gtest/gtest.h>

namespace {

using Rows = std::vector<std::vector<QVariant>>;

// The serial-number lookup exactly as the station builds it.
QString serialLookupStatement(const QString& serial)
{
    return ExpectedSql::serialLookup(serial);
}

class TsqlOnSqlite : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("tsql_bridge_test"));
        m_db.setDatabaseName(QStringLiteral(":memory:"));
        ASSERT_TRUE(m_db.open()) << m_db.lastError().text().toStdString();
    }

    void TearDown() override
    {
        m_db.close();
        m_db = QSqlDatabase();
        QSqlDatabase::removeDatabase(QStringLiteral("tsql_bridge_test"));
    }

    // Plain SQLite, for the tables of a test.
    void setUp(const QStringList& statements)
    {
        for (const QString& sql : statements) {
            QSqlQuery q(m_db);
            ASSERT_TRUE(q.exec(sql)) << sql.toStdString() << ": " << q.lastError().text().toStdString();
        }
    }

    // A T-SQL batch through the bridge; the rows of its last statement.
    Rows run(const QString& batch)
    {
        Rows rows;
        for (const SqliteStatement& s : RewriteTsqlForSqlite(batch)) {
            rows.clear();
            QSqlQuery q(m_db);
            if (!q.prepare(s.sql)) {
                ADD_FAILURE() << s.sql.toStdString() << ": " << q.lastError().text().toStdString();
                return {};
            }
            for (const QVariant& p : s.params)
                q.addBindValue(p);
            if (!q.exec()) {
                ADD_FAILURE() << s.sql.toStdString() << ": " << q.lastError().text().toStdString();
                return {};
            }
            while (q.next()) {
                std::vector<QVariant> row;
                for (int c = 0; c < q.record().count(); ++c)
                    row.push_back(q.value(c));
                rows.push_back(std::move(row));
            }
        }
        return rows;
    }

    // The one value of a one-row, one-column query.
    QVariant value(const QString& batch)
    {
        const Rows rows = run(batch);
        if (rows.size() != 1 || rows[0].size() != 1) {
            ADD_FAILURE() << "not one value: " << batch.toStdString();
            return QVariant(QStringLiteral("<no value>"));
        }
        return rows[0][0];
    }

    QString text(const QString& batch) { return value(batch).toString(); }

    QSqlDatabase m_db;
};

} // namespace

TEST_F(TsqlOnSqlite, DatesFormatLikeTheServer)
{
    EXPECT_EQ(text(QStringLiteral("select Convert(Varchar(10),DateAdd(Day,365,'2024-01-05'),111)")), QStringLiteral("2025/01/04"));
    EXPECT_EQ(text(QStringLiteral("select Convert(Varchar(10),DateAdd(Day,1,'2024-02-28 23:10:00'),111)")), QStringLiteral("2024/02/29"));
    // The server drops the fraction of the days, toward zero.
    EXPECT_EQ(text(QStringLiteral("select Convert(Varchar(10),DateAdd(dd,-3.7,'2024-03-01'),111)")), QStringLiteral("2024/02/27"));
    EXPECT_EQ(text(QStringLiteral("select DateAdd(d,2.9,'2024-03-01 10:30:00')")), QStringLiteral("2024-03-03 10:30:00"));
    EXPECT_EQ(text(QStringLiteral("select convert(varchar(7), '2024-12-31 08:00:00', 111)")), QStringLiteral("2024/12"));
    EXPECT_TRUE(value(QStringLiteral("select Convert(Varchar(10),DateAdd(Day,NULL,'2024-01-05'),111)")).isNull());
    EXPECT_TRUE(value(QStringLiteral("select Convert(Varchar(10),DateAdd(Day,5,NULL),111)")).isNull());
    // A DateAdd result compares with dates written the same way.
    EXPECT_EQ(value(QStringLiteral("select case when DateAdd(Day,1,'2024-01-31') > '2024-01-31 23:59:59' then 1 else 0 end")).toInt(), 1);

    const QDateTime now = QDateTime::fromString(text(QStringLiteral("select GETDATE()")), QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    ASSERT_TRUE(now.isValid());
    EXPECT_LE(qAbs(now.secsTo(QDateTime::currentDateTime())), 5);
}

TEST_F(TsqlOnSqlite, StrLTrimLenAndIsNullGiveTheServerResults)
{
    EXPECT_EQ(text(QStringLiteral("select Str(0)")), QStringLiteral("         0"));
    EXPECT_EQ(text(QStringLiteral("select Str(365)")), QStringLiteral("       365"));
    EXPECT_EQ(text(QStringLiteral("select LTrim(Str(0))")), QStringLiteral("0"));
    EXPECT_EQ(text(QStringLiteral("select LTrim(Str(365))")), QStringLiteral("365"));
    EXPECT_EQ(text(QStringLiteral("select LTrim(Str('365'))")), QStringLiteral("365"));
    EXPECT_EQ(text(QStringLiteral("select Str(2.5)")), QStringLiteral("         3"));
    EXPECT_EQ(text(QStringLiteral("select Str(-2.5)")), QStringLiteral("        -3"));
    EXPECT_EQ(text(QStringLiteral("select Str(9999999999)")), QStringLiteral("9999999999"));
    EXPECT_EQ(text(QStringLiteral("select Str(9999999999.5)")), QStringLiteral("**********"));
    EXPECT_EQ(text(QStringLiteral("select Str(-999999999)")), QStringLiteral("-999999999"));
    EXPECT_EQ(text(QStringLiteral("select Str(-1000000000)")), QStringLiteral("**********"));
    EXPECT_EQ(text(QStringLiteral("select Str(7, 3)")), QStringLiteral("  7"));
    EXPECT_EQ(text(QStringLiteral("select Str(1000, 3, 0)")), QStringLiteral("***"));
    EXPECT_TRUE(value(QStringLiteral("select Str(NULL)")).isNull());

    // Len does not count trailing blanks, leading ones it does.
    EXPECT_EQ(value(QStringLiteral("select Len('ab   ')")).toInt(), 2);
    EXPECT_EQ(value(QStringLiteral("select Len('  ab')")).toInt(), 4);
    EXPECT_EQ(value(QStringLiteral("select Len(N'序列号 ')")).toInt(), 3);
    EXPECT_EQ(value(QStringLiteral("select Len('')")).toInt(), 0);
    EXPECT_EQ(value(QStringLiteral("select Len(365)")).toInt(), 3);
    EXPECT_TRUE(value(QStringLiteral("select Len(NULL)")).isNull());
    EXPECT_EQ(text(QStringLiteral("select RTrim(LTrim('  a b  '))")), QStringLiteral("a b"));

    setUp({QStringLiteral("create table t_ICItem (FItemID INTEGER, FNumber TEXT COLLATE NOCASE, "
                          "FName TEXT COLLATE NOCASE, FModel TEXT COLLATE NOCASE)"),
           QStringLiteral("insert into t_ICItem values (1, 'P-01', 'Phone', NULL), (2, 'P-02', NULL, 'M2')")});
    const Rows rows = run(QStringLiteral("select FItemID, ISNULL(FModel,'') as FModel, IsNull(FName,'-') from t_ICItem with(nolock) order by FItemID"));
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0][1].toString(), QString());
    EXPECT_FALSE(rows[0][1].isNull());
    EXPECT_EQ(rows[1][1].toString(), QStringLiteral("M2"));
    EXPECT_EQ(rows[1][2].toString(), QStringLiteral("-"));

    // Text columns compare without case, as on the server; a NULL is not ''.
    EXPECT_EQ(value(QStringLiteral("select count(*) from t_ICItem where FNumber = 'p-01'")).toInt(), 1);
    EXPECT_EQ(value(QStringLiteral("select Case When FModel='' Then 'empty' Else 'other' End from t_ICItem where FItemID=1")).toString(),
              QStringLiteral("other"));
}

TEST_F(TsqlOnSqlite, TopOverUnionAndTheSerialRowsBatch)
{
    const Rows top = run(QStringLiteral("select top 1 x from (select 3 x union all select 5 x union all select 4) a order by x desc"));
    ASSERT_EQ(top.size(), 1u);
    EXPECT_EQ(top[0][0].toInt(), 5);
    const Rows inner = run(QStringLiteral("select x from (select top 2 x from (select 3 x union all select 5 union all select 4) b order by x) a order by x desc"));
    ASSERT_EQ(inner.size(), 2u);
    EXPECT_EQ(inner[0][0].toInt(), 4);

    setUp({QStringLiteral("create table IC_Web2ErpOrderSerial (FID INTEGER, FEntryID INTEGER, FSerialNumber TEXT COLLATE NOCASE, "
                          "FBatchNo TEXT COLLATE NOCASE, FStockID INTEGER, FStockPlace INTEGER, FSerialID TEXT COLLATE NOCASE, "
                          "FKFDate TEXT COLLATE NOCASE, FKFPeriod INTEGER)")});
    auto batch = [](const QString& second) {
        const QString insert = QStringLiteral(" insert IC_Web2ErpOrderSerial (FID,FEntryID,FSerialNumber,FBatchNo,FStockID,FStockPlace,FSerialID,FKFDate,FKFPeriod) ");
        return QStringLiteral(" Delete IC_Web2ErpOrderSerial where FEntryID=5\r\n")
               + insert + QStringLiteral(" values (0,5,'SN-1','B1',3,4,'11','2024-01-05',365)\r\n")
               + insert + QStringLiteral(" values (0,5,'") + second + QStringLiteral("','B1',3,4,'12','',0)\r\n")
               + QStringLiteral(" Delete IC_Web2ErpOrderSerial where FEntryID=6\r\n")
               + insert + QStringLiteral(" values (0,6,'SN-3','B2',3,4,'13','2024-02-01',30)\r\n");
    };
    run(batch(QStringLiteral("SN-2")));
    run(batch(QStringLiteral("SN-2b"))); // verified again: replaced, not doubled
    const Rows rows = run(QStringLiteral("select FEntryID, FSerialNumber, FKFPeriod, FKFDate from IC_Web2ErpOrderSerial order by FEntryID, FSerialNumber"));
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0][1].toString(), QStringLiteral("SN-1"));
    EXPECT_EQ(rows[0][2].toInt(), 365);
    EXPECT_EQ(rows[1][1].toString(), QStringLiteral("SN-2b"));
    EXPECT_EQ(rows[1][3].toString(), QString());
    EXPECT_EQ(rows[2][0].toInt(), 6);
}

TEST_F(TsqlOnSqlite, SerialLookupRunsAndItsShapeIsCached)
{
    setUp({
        QStringLiteral("create table ICSerial (FSerialID INTEGER, FSerialNum TEXT COLLATE NOCASE, FItemID INTEGER, FStockID INTEGER, "
                       "FStockPlace INTEGER, FBatchNo TEXT COLLATE NOCASE, FKFPeriod INTEGER, FKFDate TEXT COLLATE NOCASE, "
                       "FSerialClassID INTEGER, FTranTypeID INTEGER, FValid INTEGER, FInterID INTEGER, FSNListID INTEGER, "
                       "FAuxPropID INTEGER, FOutStockID INTEGER, FOutStockPlace INTEGER)"),
        QStringLiteral("create table ICStockBill (FInterID INTEGER, FRob INTEGER, FSupplyID INTEGER)"),
        QStringLiteral("create table ICSerial_F1 (FSerialClassID INTEGER, FSerialID INTEGER, F_S001 TEXT COLLATE NOCASE)"),
        QStringLiteral("create table t_ICItem (FItemID INTEGER, FNumber TEXT COLLATE NOCASE, FName TEXT COLLATE NOCASE, FModel TEXT COLLATE NOCASE)"),
        QStringLiteral("create table t_AuxItem (FItemID INTEGER, FName TEXT COLLATE NOCASE)"),
        QStringLiteral("create table t_Stock (FItemID INTEGER, FNumber TEXT COLLATE NOCASE, FName TEXT COLLATE NOCASE)"),
        QStringLiteral("create table t_StockPlace (FSPID INTEGER, FNumber TEXT COLLATE NOCASE, FName TEXT COLLATE NOCASE)"),
        QStringLiteral("create table t_Supplier (FItemID INTEGER, FName TEXT COLLATE NOCASE)"),
        QStringLiteral("create table t_Organization (FItemID INTEGER, FName TEXT COLLATE NOCASE)"),
        QStringLiteral("create table IcInvInitial (FSNListID INTEGER)"),
        QStringLiteral("insert into t_ICItem values (10, 'P-10', 'Phone', 'X1')"),
        QStringLiteral("insert into t_Stock values (2, 'S2', 'Main')"),
        QStringLiteral("insert into t_StockPlace values (3, 'A-3', 'Shelf 3')"),
        QStringLiteral("insert into ICStockBill values (100, 1, 7)"),
        QStringLiteral("insert into IcInvInitial values (50)"),
        // A purchase receipt in stock with a shelf life of a year.
        QStringLiteral("insert into ICSerial values (1, 'SN-365', 10, 2, 3, 'B1', 365, '2024-01-05', 1, 1, 1, 100, 0, 0, 0, 0)"),
        // No shelf life, stored in lower case.
        QStringLiteral("insert into ICSerial values (2, 'sn-zero', 10, 2, 3, 'B2', 0, '2024-02-01', 1, 1, 1, 100, 0, 0, 0, 0)"),
        // On a stock bill and in the opening balance: two rows of the union.
        QStringLiteral("insert into ICSerial values (3, 'SN-TWICE', 10, 2, 3, 'B3', 30, '', 1, 1, 1, 100, 50, 0, 0, 0)"),
        // Another serial class is never found.
        QStringLiteral("insert into ICSerial values (4, 'SN-CLASS2', 10, 2, 3, 'B4', 30, '2024-01-01', 2, 1, 1, 100, 0, 0, 0, 0)"),
        QStringLiteral("insert into ICSerial_F1 values (1, 1, ''), (1, 2, ''), (1, 3, ''), (2, 4, '')"),
    });

    // The first statement is rewritten, the others of the same shape come from the cache.
    std::vector<QString> statements;
    for (int k = 0; k < 25; ++k)
        statements.push_back(serialLookupStatement(QStringLiteral("SN-%1").arg(k)));
    std::vector<SqliteStatement> cold;
    for (int k = 0; k < 5; ++k) {
        ClearTsqlBridgeCache();
        cold = RewriteTsqlForSqlite(statements[k]);
    }
    ASSERT_EQ(cold.size(), 1u);
    EXPECT_TRUE(cold[0].sql.endsWith(QStringLiteral(") a LIMIT 1")));
    EXPECT_FALSE(cold[0].sql.contains(QStringLiteral("nolock"), Qt::CaseInsensitive));
    EXPECT_EQ(cold[0].params.count(QStringLiteral("SN-4")), 3);

    for (int k = 5; k < 25; ++k) {
        const auto cached = RewriteTsqlForSqlite(statements[k]);
        ASSERT_EQ(cached.size(), 1u);
        EXPECT_EQ(cached[0].sql, cold[0].sql);
        EXPECT_EQ(cached[0].params.count(QStringLiteral("SN-%1").arg(k)), 3);
    }
    const TsqlBridgeCacheStats stats = TsqlBridgeCacheStatistics();
    EXPECT_EQ(stats.misses, 1);
    EXPECT_EQ(stats.hits, 20);

    auto lookup = [this](const QString& serial) {
        QSqlQuery q(m_db);
        const auto r = RewriteTsqlForSqlite(serialLookupStatement(serial));
        EXPECT_TRUE(q.prepare(r[0].sql)) << q.lastError().text().toStdString();
        for (const QVariant& p : r[0].params)
            q.addBindValue(p);
        EXPECT_TRUE(q.exec()) << q.lastError().text().toStdString();
        std::vector<QSqlRecord> rows;
        while (q.next())
            rows.push_back(q.record());
        return rows;
    };

    auto found = lookup(QStringLiteral("SN-365"));
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].value(QStringLiteral("FItemID")).toInt(), 10);
    EXPECT_EQ(found[0].value(QStringLiteral("FBatchNo")).toString(), QStringLiteral("B1"));
    EXPECT_EQ(found[0].value(QStringLiteral("FKFPeriod")).toString(), QStringLiteral("365"));
    EXPECT_EQ(found[0].value(QStringLiteral("FLimitDate")).toString(), QStringLiteral("2025/01/04"));
    EXPECT_EQ(found[0].value(QStringLiteral("FStatus")).toString(), QStringLiteral("在库"));
    EXPECT_EQ(found[0].value(QStringLiteral("FStockName")).toString(), QStringLiteral("Main"));

    found = lookup(QStringLiteral("SN-ZERO"));
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].value(QStringLiteral("FKFPeriod")).toString(), QString());
    EXPECT_EQ(found[0].value(QStringLiteral("FLimitDate")).toString(), QStringLiteral("2024/02/01"));

    found = lookup(QStringLiteral("SN-TWICE"));
    ASSERT_EQ(found.size(), 1u); // TOP 1 over both branches
    EXPECT_EQ(found[0].value(QStringLiteral("FLimitDate")).toString(), QString());
    EXPECT_EQ(found[0].value(QStringLiteral("FKFPeriod")).toString(), QStringLiteral("30"));

    EXPECT_TRUE(lookup(QStringLiteral("SN-CLASS2")).empty());
    EXPECT_TRUE(lookup(QStringLiteral("SN-NONE")).empty());

    // A serial holding a quote breaks the statement; the error reaches the caller.
    EXPECT_THROW(RewriteTsqlForSqlite(serialLookupStatement(QStringLiteral("SN'1"))), HostError);
}
