// The station killed after every command of a working session and started
// again: answered yes, it stands exactly where it stood and goes on as if it
// had never stopped; answered no, it is empty; a journal that cannot be read
// is set aside with a message.
#include "support/brief_file_lock.h"
#include "support/replay_harness.h"
#include <QDirIterator>
#include <gtest/gtest.h>
#include <memory>
#include <optional>

namespace {

const QString kRestoreQuestion = QStringLiteral("Velto提示: 上次的校验没有正常结束，是否恢复？");

// Barcode and serial scans, a typed quantity, goods of another order, an order
// left and taken up again, passes and re-picks (the barcodes of goods 1001,
// 1014, 1002 and 1008, and of 1013, whose only order is not released for picking).
const QStringList kSession{
    "scan TxtID 10001",
    "scan TxtItemID 6931000010017",
    "scan TxtItemID 6931000010130",
    "type TxtNum 2",
    "scan TxtItemID 6931000010147",
    "scan TxtID 10018",
    "scan TxtItemID 6931000010024",
    "scan TxtID 10001",
    "scan TxtItemID 6931000010086",
    "click CmdBtnRePick",
    "scan TxtItemID 6931000010017",
    "click chkHaveSerial",
    "scan TxtID 10021",
    "scan TxtItemID W1-0001",
    "scan TxtItemID W1-0001",
    "scan TxtItemID W1-0002",
    "scan TxtItemID PAD-0001",
    "type TxtID +",   // "+" re-picks the order last scanned
    "click CmdBtnRePick",
};

// What the station shows, without what belongs to one step only.
QJsonObject shownState(QJsonObject state)
{
    for (const char* key : {"step", "command", "voice", "boxes"})
        state.remove(QLatin1String(key));
    return state;
}

QString onServer(const ReplayHarness& h)
{
    return h.orders(QStringLiteral("'10001', '10018', '10021'")) + QLatin1Char(' ') + h.serials();
}

class JournalReplay : public ::testing::TestWithParam<bool> {};

} // namespace

TEST_P(JournalReplay, KilledAfterEveryCommandTheStationComesBackAsItStood)
{
    QStringList session = kSession;
    if (GetParam())
        session.prepend(QStringLiteral("click chkShowText"));
    ReplayHarness whole;   // the session run through without a stop, on a database of its own
    const ReplayRun reference = whole.run(session);
    ASSERT_EQ(reference.steps.size(), session.size()) << reference.describe();

    ReplayHarness h;
    auto station = std::make_unique<LiveLauncher>(h);
    for (int n = 0; n < session.size(); ++n) {
        SCOPED_TRACE("killed after command " + std::to_string(n + 1));
        const QJsonObject last = station->send(session[n]);
        ASSERT_FALSE(last.isEmpty()) << station->error.toStdString();
        EXPECT_EQ(shownState(last), shownState(reference.steps[n])) << "the session run without a stop";
        // Keys typed into the order field without Enter are no handler's work
        // and not journalled: a station dying there comes back without them.
        if (session[n].startsWith(QLatin1String("type TxtID")))
            continue;
        {
            std::optional<BriefFileLock> lock;   // another program writing as the station dies
            if (n % 2)
                lock.emplace(h.databaseFile(), 300);
            station->kill();
        }
        const QString server = onServer(h);
        station = std::make_unique<LiveLauncher>(h);
        const QJsonObject back = station->send(QStringLiteral("state"));
        ASSERT_FALSE(back.isEmpty()) << station->error.toStdString();
        EXPECT_EQ(shown(back, "boxes"), kRestoreQuestion);
        EXPECT_EQ(shownState(back), shownState(last)) << "started again";
        EXPECT_EQ(onServer(h), server);   // nothing saved twice, nothing taken back
        if (HasFailure())
            return;
    }
    EXPECT_EQ(onServer(h), onServer(whole));

    // A clean end leaves no journal: the next start asks nothing.
    EXPECT_EQ(station->finish(), 0);
    station = std::make_unique<LiveLauncher>(h);
    expectShown(station->send(QStringLiteral("state")), {{"boxes", ""}, {"lblPickedNum", "0/"}, {"lines", ""}});

    // Killed after another serial order was left; answered no, the station is empty.
    expectShown(station->send(QStringLiteral("scan TxtID 10024")), {{"lblOrderNum", "3"}});
    expectShown(station->send(QStringLiteral("scan TxtItemID ET-0001")), {{"lblPickedNum", "1/3"}});
    station->send(QStringLiteral("scan TxtID 10002"));
    expectShown(station->send(QStringLiteral("scan TxtID 10018")), {{"log", "~10024"}});
    station->kill();
    station = std::make_unique<LiveLauncher>(h);
    expectShown(station->send(QStringLiteral("answer no")),
                {{"boxes", kRestoreQuestion}, {"TxtID", ""}, {"lblPickedNum", "0/"}, {"lines", ""}, {"log", ""}});
    // The old journal went with the answer; a session killed with nothing done leaves nothing to ask.
    station->kill();
    station = std::make_unique<LiveLauncher>(h);
    expectShown(station->send(QStringLiteral("scan TxtID 10002")), {{"boxes", ""}, {"lblOrderNum", "4"}});
    station->kill();

    // The journal of that session damaged on the disk is set aside with a message.
    QDirIterator journals(h.folder() + QStringLiteral("/xdg-data"), {QStringLiteral("session-*.db")}, QDir::Files,
                          QDirIterator::Subdirectories);
    ASSERT_TRUE(journals.hasNext());
    QFile damaged(journals.next());
    ASSERT_FALSE(journals.hasNext()) << damaged.fileName().toStdString();
    ASSERT_TRUE(damaged.open(QIODevice::WriteOnly | QIODevice::Truncate));
    damaged.write("not a journal");
    damaged.close();
    QFile::remove(damaged.fileName() + QStringLiteral("-wal"));
    QFile::remove(damaged.fileName() + QStringLiteral("-shm"));
    station = std::make_unique<LiveLauncher>(h);
    expectShown(station->send(QStringLiteral("state")),
                {{"boxes", "~Velto提示: 上次的校验记录无法读取，已另存为"}, {"boxes", "!\n"}, {"lblPickedNum", "0/"}});
    EXPECT_EQ(QFileInfo(damaged).dir().entryList({QStringLiteral("session-*.unreadable-*")}).size(), 1);
    EXPECT_EQ(station->finish(), 0);
}

INSTANTIATE_TEST_SUITE_P(Views, JournalReplay, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& info) { return info.param ? "grid" : "tiles"; });
