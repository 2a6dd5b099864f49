#include "host/host_error.h"
#include "station/serial_rows.h"
#include "support/expected_statements.h"
#include <gtest/gtest.h>

namespace {
GoodsRecord line(int entry, const QString& batch, QVariant stock, QVariant place,
                 const QString& serials, const QString& ids, const QString& periods, const QString& dates)
{
    GoodsRecord r;
    r.SetValue("FEntryID", entry);
    r.SetValue("FSeriNum", serials);
    r.SetValue("FBatchNo", batch);
    r.SetValue("FSPID", place);
    r.SetValue("FStockID", stock);
    r.SetValue("FSerialID", ids);
    r.SetValue("FKFPeriod", periods);
    r.SetValue("FKFDate", dates);
    r.SetValue("GoodsID", 7);
    return r;
}
} // namespace

TEST(SerialRows, BatchDeletesEachEntryOnceThenInsertsItsRows)
{
    RecordList lines;
    lines.Add(line(11, "B1", 3, 4, ",SNA,SNB", ",101,102", ",365,0", ",2024/01/05,"));
    lines.Add(line(12, "", 3, 0, "", "", "", ""));
    lines.Add(line(13, "B9", 5, QVariant(), ",SNC", ",103", ",0", ","));

    // Each serial keeps the shelf life and date at its own position.
    const QString expected = QStringList{ExpectedSql::serialRowsDelete(11),
                                         ExpectedSql::serialRowsInsert("11,'SNA','B1',3,4,'101','2024/01/05',365"),
                                         ExpectedSql::serialRowsInsert("11,'SNB','B1',3,4,'102','',0"),
                                         ExpectedSql::serialRowsDelete(13),
                                         ExpectedSql::serialRowsInsert("13,'SNC','B9',5,0,'103','',0")}
                                 .join(ExpectedSql::CrLf);
    EXPECT_EQ(BuildSerialRowsSql(lines), expected);
    EXPECT_EQ(CollectSerialRows(lines).size(), 3);
    EXPECT_TRUE(CollectSerialRows(RecordList::none()).isEmpty());

    RecordList noSerials;
    noSerials.Add(line(12, "", 3, 0, "", "", "", ""));
    EXPECT_EQ(BuildSerialRowsSql(noSerials), QString());
}

TEST(SerialRows, RowsOfOneEntrySpreadOverTheListShareOneDelete)
{
    GoodsRecord a, b, c;
    for (GoodsRecord* r : {&a, &b, &c}) {
        r->SetValue("FBatchNo", "X");
        r->SetValue("FStockID", 1);
        r->SetValue("FSPID", 2);
        r->SetValue("FSerialID", "9");
        r->SetValue("FKFDate", "");
        r->SetValue("FKFPeriod", 0);
    }
    a.SetValue("FEntryID", 5); a.SetValue("FSeriNum", "S1");
    b.SetValue("FEntryID", 6); b.SetValue("FSeriNum", "S2");
    c.SetValue("FEntryID", 5); c.SetValue("FSeriNum", "S3");
    const QString sql = BuildSerialRowsSql(QList<GoodsRecord>{a, b, c});
    EXPECT_EQ(sql.count("Delete IC_Web2ErpOrderSerial where FEntryID=5"), 1);
    EXPECT_EQ(sql.count("Delete IC_Web2ErpOrderSerial where FEntryID=6"), 1);
    // The delete of entry 5 comes before both of its rows.
    const auto del5 = sql.indexOf("FEntryID=5");
    EXPECT_LT(del5, sql.indexOf("'S1'"));
    EXPECT_LT(del5, sql.indexOf("'S3'"));
    EXPECT_EQ(sql.count("\r\n"), 4);
    EXPECT_FALSE(sql.endsWith("\r\n"));
}

TEST(SerialRows, ValuesThatWouldBreakTheStatementAreKeptOut)
{
    // A batch number from the ERP with a quote stays inside its literal.
    RecordList quoted;
    quoted.Add(line(1, "O'B", 3, 4, ",S1", ",1", ",0", ","));
    EXPECT_TRUE(BuildSerialRowsSql(quoted).endsWith("1,'S1','O''B',3,4,'1','',0)"));

    // A bare column that is not a number is refused rather than pasted.
    RecordList badStock;
    badStock.Add(line(1, "B", QStringLiteral("3;drop"), 4, ",S1", ",1", ",0", ","));
    EXPECT_THROW(BuildSerialRowsSql(badStock), HostError);
    RecordList badPeriod;
    badPeriod.Add(line(1, "B", 3, 4, ",S1", ",1", ",1 year", ","));
    EXPECT_THROW(BuildSerialRowsSql(badPeriod), HostError);
}
