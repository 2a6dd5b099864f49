// The launcher on the production engine's path: --props with a connect
// string for the SQLite ODBC driver runs the same session as the embedded
// engine, line for line, and refuses a driver or a file it cannot use.
#include "support/replay_harness.h"
#include "support/sqlite_odbc.h"
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

namespace {

const QString kSecret = QStringLiteral("Lnch3rSecret");

class OdbcReplay : public ::testing::Test {
protected:
    void SetUp() override
    {
        const QString reason = SqliteOdbcUnavailableReason();
        if (!reason.isEmpty())
            GTEST_SKIP() << "ODBC engine not run: " << reason.toStdString();
        ASSERT_TRUE(m_h.ready()) << m_h.lastError().toStdString();
    }

    static QString odbcProps(const QString& file, const QString& extra = QString())
    {
        return QStringLiteral("UserID=1;ConnectString={Driver=SQLite3;Database=%1%2};").arg(file, extra);
    }

    ReplayHarness m_h;
};

} // namespace

TEST_F(OdbcReplay, TheSessionThroughOdbcPrintsWhatTheEmbeddedEnginePrints)
{
    // A second demo database beside the harness's own, as the launcher made it.
    const QString odbcFile = m_h.folder() + QStringLiteral("/odbc.db");
    ASSERT_TRUE(QFile::copy(m_h.databaseFile(), odbcFile));
    const QString script = QStringLiteral(
        "scan TxtID 10005\n"
        "scan TxtItemID 6931000010215\n"
        "scan TxtItemID 6931000010291\n"       // passed, sent for delivery
        "click chkHaveSerial\n"
        "scan TxtID 10024\n"
        "scan TxtItemID MS-0003\n"
        "scan TxtItemID ET-0003\n"             // fits neither line
        "scan TxtItemID ET-0001\n"
        "scan TxtItemID ET-0002\n"             // passed, serial rows
        "click chkHaveSerial\n"
        "scan TxtID 10004\n"                   // refund applied for
        "scan TxtID sf10013\n"                 // not found: another shop's code
        "scan TxtID yt10013\n"
        "click chkShowText\n");
    const ReplayRun embedded = m_h.run(script);
    const ReplayRun odbc = m_h.run(script, {QStringLiteral("--props"), odbcProps(odbcFile)});
    ASSERT_EQ(embedded.exitCode, 0) << embedded.describe().toStdString();
    ASSERT_EQ(odbc.exitCode, 0) << odbc.describe().toStdString();
    ASSERT_EQ(odbc.steps.size(), 14) << odbc.describe().toStdString();
    ASSERT_EQ(embedded.steps.size(), odbc.steps.size());
    for (int i = 0; i < embedded.steps.size(); ++i)
        EXPECT_EQ(odbc.steps[i], embedded.steps[i]) << "step " << i + 1;

    EXPECT_TRUE(odbc.step(3).value(QStringLiteral("ImgSuccess")).toBool());
    EXPECT_EQ(odbc.step(1).value(QStringLiteral("txtWebshop")).toString(), QStringLiteral("京东自营店"));
    EXPECT_TRUE(odbc.step(9).value(QStringLiteral("ImgSuccess")).toBool());
    EXPECT_EQ(odbc.step(13).value(QStringLiteral("txtWebshop")).toString(), QStringLiteral("拼多多专营店"));

    // what each database holds, read past both engines
    const auto written = [&](const QString& file) {
        const auto value = [&](const QString& sql) { return ReplayHarness::queryValueOf(file, sql); };
        return QStringList{
            value(QStringLiteral("SELECT group_concat(r, ' ') FROM (SELECT FUniqueCode || ':' || quote(FPIckingGoodsStatus) || '/'"
                                        " || quote(FPickingGoodMan) || '/' || quote(FDeliveryStatus) AS r FROM IC_Web2ERPOrders"
                                        " WHERE FSendDate IS NOT NULL OR FPIckingGoodsStatus = 1 ORDER BY FID)")).toString(),
            value(QStringLiteral("SELECT group_concat(r, ' ') FROM (SELECT quote(FEntryID) || ':' || quote(FSerialNumber) || ':'"
                                        " || quote(FKFPeriod) AS r FROM IC_Web2ErpOrderSerial ORDER BY r)")).toString(),
            value(QStringLiteral("SELECT group_concat(r, ' ') FROM (SELECT quote(FKey) || ':' || quote(FName) || ':' || quote(FValue)"
                                        " AS r FROM t_UserProfile WHERE FUserID = 1 ORDER BY r)")).toString()};
    };
    const QStringList odbcRows = written(odbcFile);
    EXPECT_EQ(odbcRows, written(m_h.databaseFile()));
    EXPECT_TRUE(odbcRows[0].contains(QStringLiteral("10005:1/201/1"))) << odbcRows[0].toStdString();
    EXPECT_TRUE(odbcRows[0].contains(QStringLiteral("10024:1/201/1"))) << odbcRows[0].toStdString();
    EXPECT_EQ(odbcRows[1].count(QLatin1Char(' ')), 2) << odbcRows[1].toStdString();
    EXPECT_TRUE(odbcRows[2].contains(QStringLiteral("'PickGoods_chkShowText':'chkShowText':'1'"))) << odbcRows[2].toStdString();

    // the next start reads the options back through the same engine
    const ReplayRun again = m_h.run(QStringLiteral("state\n"), {QStringLiteral("--props"), odbcProps(odbcFile)});
    ASSERT_EQ(again.exitCode, 0) << again.describe().toStdString();
    EXPECT_EQ(again.last().value(QStringLiteral("view")).toString(), QStringLiteral("grid"));
}

TEST_F(OdbcReplay, AWrongDriverOrAMissingFileEndsTheLauncherWithItsName)
{
    const QString file = m_h.databaseFile();
    const QString missing = m_h.folder() + QStringLiteral("/not-there.db");
    const struct {
        QString props, named;
    } cases[] = {
        {odbcProps(missing, QStringLiteral(";PWD=") + kSecret), missing},
        {QStringLiteral("UserID=1;ConnectString={Driver=SQLite3-missing;Database=%1;PWD=%2};").arg(file, kSecret),
         QStringLiteral("SQLite3-missing")},
    };
    for (const auto& c : cases) {
        const ReplayRun r = m_h.run(QStringLiteral("state\n"), {QStringLiteral("--props"), c.props});
        EXPECT_EQ(r.exitCode, 1) << r.describe().toStdString();
        EXPECT_TRUE(r.steps.isEmpty()) << r.describe().toStdString();
        EXPECT_TRUE(r.standardError.contains(c.named)) << r.describe().toStdString();
        EXPECT_FALSE(r.standardError.contains(kSecret)) << r.describe().toStdString();
        EXPECT_FALSE(r.standardOutput.contains(kSecret)) << r.describe().toStdString();
    }
    // the driver was never let make an empty database in its place
    EXPECT_FALSE(QFileInfo::exists(missing));
}
