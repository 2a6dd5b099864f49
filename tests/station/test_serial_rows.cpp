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

TEST(SerialRows, EachEntryIsDeletedOnceThenItsRowsInsertedAndNothingBreaksTheStatement)
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
    RecordList noSerials;
    noSerials.Add(line(12, "", 3, 0, "", "", "", ""));
    EXPECT_EQ(BuildSerialRowsSql(noSerials), QString());

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
