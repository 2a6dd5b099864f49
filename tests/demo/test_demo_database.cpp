// The demo warehouse: schema, contents, pictures and determinism.
#include "demo/demo_database.h"
#include "host/host_error.h"
#include "sql/database_check.h"
#include "sql/text_collation.h"
#include "support/qt_print.h"
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QUuid>
#include <gtest/gtest.h>

namespace {

// A plain connection of the test's own, so these checks do not lean on the
// engine under test elsewhere.
class Db {
public:
    explicit Db(const QString& file) : m_name(QUuid::createUuid().toString())
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
        db.setDatabaseName(file);
        EXPECT_TRUE(db.open());
        RegisterTextCollation(db);
    }
    ~Db()
    {
        QSqlDatabase::database(m_name, false).close();
        QSqlDatabase::removeDatabase(m_name);
    }
    QList<QVariantList> rows(const QString& sql) const
    {
        QSqlQuery q(QSqlDatabase::database(m_name, false));
        EXPECT_TRUE(q.exec(sql)) << q.lastError().text().toStdString() << " in " << sql.toStdString();
        QList<QVariantList> out;
        while (q.next()) {
            QVariantList row;
            for (int c = 0; c < q.record().count(); ++c)
                row << q.value(c);
            out << row;
        }
        return out;
    }
    QVariant one(const QString& sql) const
    {
        const auto r = rows(sql);
        return r.isEmpty() || r.first().isEmpty() ? QVariant() : r.first().first();
    }
    qint64 count(const QString& table) const { return one(QStringLiteral("SELECT COUNT(*) FROM ") + table).toLongLong(); }

private:
    QString m_name;
};

bool validEan13(const QString& code)
{
    if (code.size() != 13)
        return false;
    int sum = 0;
    for (int i = 0; i < 12; ++i)
        sum += code.at(i).digitValue() * (i % 2 ? 3 : 1);
    return (10 - sum % 10) % 10 == code.at(12).digitValue();
}

} // namespace

TEST(DemoDatabase, HoldsTheWarehouseTheStationNeeds)
{
    QTemporaryDir dir;
    const QString file = dir.filePath("demo.db");
    CreateDemoDatabase(file);
    Db db(file);
    // The launcher's check keeps its own list of the station's tables; the demo
    // schema must create exactly those, or a fresh demo database would be refused
    // (or a site's database missing a table let through).
    EXPECT_EQ(SchemaTableNames(), StationTableNames());

    // items with a barcode carry it in both places, and it is a valid EAN-13
    const auto barcodes = db.rows("SELECT i.FItemID, i.FBarcode, b.FBarCode FROM t_ICItem i "
                                  "JOIN t_Barcode b ON b.FItemID = i.FItemID WHERE b.FBarCode GLOB '[0-9]*'");
    EXPECT_GE(barcodes.size(), 30);
    for (const auto& row : barcodes) {
        EXPECT_EQ(row[1].toString(), row[2].toString());
        EXPECT_TRUE(validEan13(row[2].toString())) << row[2].toString().toStdString();
    }
    EXPECT_EQ(db.one("SELECT COUNT(*) FROM t_ICItem WHERE IFNULL(FBarcode,'') = ''").toInt(), 9);
    // Serials and text comparison on this data: the lookups of tests/middletier and tests/sql.

    // pictures are gzip streams of real images
    const auto pictures = db.rows("SELECT FItemID, FFileName, FData FROM t_Accessory ORDER BY FID");
    ASSERT_EQ(pictures.size(), 37);   // three items go without a picture

    QStringList seen;
    for (const auto& row : pictures.mid(0, 5)) {
        // the system's tool for such files must read them
        QProcess gzip;
        gzip.start("gzip", {"-dc"});
        ASSERT_TRUE(gzip.waitForStarted());
        gzip.write(row[2].toByteArray());
        gzip.closeWriteChannel();
        ASSERT_TRUE(gzip.waitForFinished());
        EXPECT_EQ(gzip.exitCode(), 0);
        const QByteArray png = gzip.readAllStandardOutput();
        QImage image;
        ASSERT_TRUE(image.loadFromData(png)) << row[1].toString().toStdString();
        EXPECT_EQ(image.size(), QSize(160, 160));
        seen << QString::fromLatin1(png.toBase64());
    }
    seen.removeDuplicates();
    EXPECT_EQ(seen.size(), 5) << "each item has its own tile";
}

TEST(DemoDatabase, TwoRunsGiveTheSameRowsWithTheBenchmarkOrderAsRequested)
{
    QTemporaryDir dir;
    const QString first = dir.filePath("one.db");
    const QString second = dir.filePath("two.db");
    CreateDemoDatabase(first, 20);
    CreateDemoDatabase(second, 20);
    Db a(first);
    Db b(second);
    for (const QString& table : SchemaTableNames()) {
        const QString sql = "SELECT * FROM " + table + " ORDER BY rowid";
        EXPECT_EQ(a.rows(sql), b.rows(sql)) << table.toStdString();
    }

    EXPECT_EQ(BenchUniqueCode(20), "99000020");
    const QString fid = a.one("SELECT FID FROM IC_Web2ERPOrders WHERE FLogisticsOrder = 'BENCH20' "
                              "AND FUniqueCode = '99000020' AND FOrderStatus = 6").toString();
    ASSERT_FALSE(fid.isEmpty());
    // every line has an item with a barcode in both tables and a picture
    EXPECT_EQ(a.one("SELECT COUNT(*) FROM IC_Web2ERPOrdersEntry e JOIN t_ICItem i ON i.FItemID = e.FItemID "
                    "JOIN t_Barcode b ON b.FItemID = e.FItemID AND b.FBarCode = i.FBarcode "
                    "JOIN t_Accessory a ON a.FItemID = e.FItemID WHERE e.FID = " + fid).toInt(), 20);
    EXPECT_EQ(a.one("SELECT COUNT(DISTINCT FBarCode) FROM t_Barcode").toInt(), a.count("t_Barcode"));
    EXPECT_EQ(a.rows("SELECT MIN(FQuantity), MAX(FQuantity) FROM IC_Web2ERPOrdersEntry WHERE FID = " + fid),
              (QList<QVariantList>{{1, 3}}));

    // running again over an existing file replaces it rather than adding to it
    CreateDemoDatabase(first, 20);
    Db again(first);
    EXPECT_EQ(again.count("IC_Web2ERPOrders"), 31);
    EXPECT_EQ(again.count("t_ICItem"), 60);
    // A setting written to a missing file makes no file (settings flipped: tests/station).
    const QString missing = dir.filePath("missing.db");
    EXPECT_THROW(SetDemoSystemProfile(missing, "CreateStockBillType", "0"), HostError);
    EXPECT_FALSE(QFile::exists(missing));
}
