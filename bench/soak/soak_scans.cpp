// Ten thousand scans in one station session: orders picked, passed, re-picked
// and picked again, with a wrong scan in each round. Memory stays flat, no
// file handle is left behind, and the log pane keeps up with the session log.
// RNW_RELIABILITY_SCANS sets the count; a sanitizer build runs 1,000.
#include "reliability/reliability_station.h"
#include <QDir>
#include <QElapsedTimer>
#include <QFile>

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr int kDefaultScans = 1000;
constexpr bool kSanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr int kDefaultScans = 1000;
constexpr bool kSanitized = true;
#else
constexpr int kDefaultScans = 10000;
constexpr bool kSanitized = false;
#endif
#else
constexpr int kDefaultScans = 10000;
constexpr bool kSanitized = false;
#endif

int scanCount()
{
    bool ok = false;
    const int n = qEnvironmentVariableIntValue("RNW_RELIABILITY_SCANS", &ok);
    return ok && n > 0 ? n : kDefaultScans;
}

// Resident memory of this process, in KiB.
qint64 residentKiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').value(0).toLongLong();
    return -1;
}

int openDescriptors()
{
    return int(QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System).size());
}

struct LoadOrder {
    QString code;
    QStringList goods;   // one barcode per unit, in scan order
};

QList<LoadOrder> loadOrders()
{
    auto times = [](const char* code, int n) { return QStringList(QList<QString>(n, QString::fromLatin1(code))); };
    return {
        {QStringLiteral("10001"), QStringList{QStringLiteral("6931000010017"), QStringLiteral("6931000010086")} + times("6931000010147", 2)},
        {QStringLiteral("10018"), {QStringLiteral("6931000010024"), QStringLiteral("6931000010154"), QStringLiteral("6931000010185")}},
        {QStringLiteral("10013"), times("6931000010284", 2) + QStringList{QStringLiteral("6931000010291"), QStringLiteral("6931000010390")}},
        {QStringLiteral("10005"), {QStringLiteral("6931000010215"), QStringLiteral("6931000010291")}},
        {QStringLiteral("SF10014"), {QStringLiteral("6931000010215"), QStringLiteral("6931000010222")}},
        {QStringLiteral("10019"), times("6931000010048", 2)},
        {QStringLiteral("10029"), times("6931000010222", 10)},
    };
}

const QString kWrongGoods = QStringLiteral("6931000010130");

} // namespace

class LoadTest : public ReliabilityStationTest {};

TEST_F(LoadTest, TenThousandScansKeepMemoryHandlesAndTheLogSteady)
{
    const int target = scanCount();
    const QList<LoadOrder> orders = loadOrders();
    frmPickigGoods& f = open();

    int scans = 0;
    int passes = 0;
    QStringList problems;
    qint64 rssStart = -1, rssAt1000 = -1;
    int fdStart = -1;
    QElapsedTimer clock;

    // One round of an order: bring it on the station fresh (re-pick once it
    // has passed), one wrong scan, then every unit.
    auto round = [&](const LoadOrder& order) {
        scan(controls(f).TxtID, order.code);
        ++scans;
        if (controls(f).lblMessage->text() == QStringLiteral("此单已校验通过")) {
            controls(f).TxtID->setText(order.code);
            click(controls(f).CmdBtnRePick);
        }
        const int total = int(order.goods.size());
        if (controls(f).lblOrderNum->text() != QString::number(total) || controls(f).lblPickedNum->text() != QStringLiteral("0/")) {
            problems << QStringLiteral("%1 did not load fresh: %2 %3").arg(order.code, controls(f).lblOrderNum->text(), controls(f).lblPickedNum->text());
            return;
        }
        scan(controls(f).TxtItemID, kWrongGoods);
        ++scans;
        if (controls(f).lblPickInfo->text() != QStringLiteral("非本单商品"))
            problems << order.code + QStringLiteral(": the wrong scan was not refused");
        for (const QString& barcode : order.goods) {
            scan(controls(f).TxtItemID, barcode);
            ++scans;
        }
        if (!controls(f).ImgSuccess->isVisible() || controls(f).lblPickedNum->text() != QStringLiteral("%1/%1").arg(total))
            problems << QStringLiteral("%1 did not pass: %2").arg(order.code, controls(f).lblPickedNum->text());
        else
            ++passes;
        // What the station's own event loop does between two scans: tiles let
        // go by the last load are deleted once their clicks have finished.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        // The injector's call log would be the one thing here that grows.
        m_faults.resetCounts();
        // Re-picked orders start over in the log: one entry per order, always.
        if (f.pickingState().SessionOrderLog().Count() != f.pickingState().SessionOrderKeys().Count() || f.pickingState().SessionOrderLog().Count() > orders.size())
            problems << QStringLiteral("session log of %1 entries for %2 orders").arg(f.pickingState().SessionOrderLog().Count()).arg(f.pickingState().SessionOrderKeys().Count());
        if (f.pickingState().SessionOrderLog().Count() >= 2 && controls(f).LogList1->shownCount() != f.pickingState().SessionOrderLog().Count())
            problems << QStringLiteral("log pane shows %1 of %2").arg(controls(f).LogList1->shownCount()).arg(f.pickingState().SessionOrderLog().Count());
    };

    // Warm-up: every order once, so that caches, pictures and prepared
    // statements exist before the first reading.
    for (const LoadOrder& order : orders)
        round(order);
    ASSERT_TRUE(problems.isEmpty()) << problems.join(QLatin1Char('\n')).toStdString();
    rssStart = residentKiB();
    fdStart = openDescriptors();
    const int warmScans = scans;
    clock.start();
    for (int i = 0; scans - warmScans < target && problems.size() < 20; ++i) {
        round(orders[i % orders.size()]);
        if (rssAt1000 < 0 && scans - warmScans >= 1000)
            rssAt1000 = residentKiB();
    }
    const qint64 elapsed = clock.elapsed();
    const qint64 rssEnd = residentKiB();
    const int fdEnd = openDescriptors();
    const int done = scans - warmScans;

    std::printf("load: %d scans (%d passes) in %lld ms, %.2f ms a scan; RSS %lld KiB at start, %lld after 1,000, %lld after %d; "
                "descriptors %d -> %d\n",
                done, passes, static_cast<long long>(elapsed), double(elapsed) / qMax(1, done), static_cast<long long>(rssStart),
                static_cast<long long>(rssAt1000), static_cast<long long>(rssEnd), done, fdStart, fdEnd);
    RecordProperty("scans", done);
    RecordProperty("rss_start_kib", QString::number(rssStart).toStdString());
    RecordProperty("rss_1000_kib", QString::number(rssAt1000).toStdString());
    RecordProperty("rss_end_kib", QString::number(rssEnd).toStdString());

    EXPECT_TRUE(problems.isEmpty()) << problems.join(QLatin1Char('\n')).toStdString();
    EXPECT_GE(done, target);
    EXPECT_LE(fdEnd, fdStart) << "file handles left open";
    EXPECT_EQ(f.pickingState().SessionOrderLog().Count(), orders.size());
    EXPECT_EQ(controls(f).LogList1->shownCount(), orders.size());
    EXPECT_TRUE(m_rec->boxes.isEmpty()) << boxTexts().mid(0, 5).join(QLatin1Char('\n')).toStdString();
    // A sanitizer keeps freed memory aside for a while: its RSS says nothing.
    // The first rounds fill the tile pictures' cache (64 MB at most: each load
    // rewrites the pictures, so each load is new to it); after that, flat.
    if (!kSanitized && rssAt1000 > 0) {
        EXPECT_LT(rssEnd - rssAt1000, 16 * 1024) << "memory grows with the scans";
        EXPECT_LT(rssEnd - rssStart, 96 * 1024) << "more than the picture cache";
    }
    // Every order on the server: passed by the picker of the session.
    for (const LoadOrder& order : orders)
        EXPECT_EQ(dbValue(QStringLiteral("SELECT FPIckingGoodsStatus || '/' || FPickingGoodMan FROM IC_Web2ERPOrders "
                                         "WHERE FUniqueCode = ? OR FLogisticsOrder = ?"),
                          {order.code, order.code})
                      .toString(),
                  QStringLiteral("1/201"))
            << order.code.toStdString();
}
