// The station killed after every command of a working session, and started
// again: answered yes, it stands exactly where it stood; answered no, it is
// empty; a journal that cannot be read is set aside with a message.
#include "support/brief_file_lock.h"
#include "support/live_launcher.h"
#include <QDirIterator>
#include <QJsonDocument>
#include <gtest/gtest.h>

namespace {

const QString kRestoreQuestion = QStringLiteral("Velto提示: 上次的校验没有正常结束，是否恢复？");

// Barcode and serial scans, a typed quantity, goods of another order, an order
// left and taken up again, passes and a re-pick (the barcodes of goods 1001,
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
};

// What the station shows, without what belongs to one step only.
QJsonObject shown(QJsonObject state)
{
    for (const char* key : {"step", "command", "voice", "boxes"})
        state.remove(QLatin1String(key));
    return state;
}

QString ordersOnServer(const ReplayHarness& h)
{
    return h.queryValue(QStringLiteral("SELECT group_concat(FUniqueCode || ':' || IFNULL(FPIckingGoodsStatus, 'n') || '/' "
                                       "|| IFNULL(FPickingGoodMan, 'n') || '/' || IFNULL(FDeliveryStatus, 'n'), ' ') "
                                       "FROM IC_Web2ERPOrders WHERE FUniqueCode IN ('10001', '10018', '10021')"))
               .toString()
        + QLatin1Char(' ')
        + h.queryValue(QStringLiteral("SELECT count(*) FROM IC_Web2ErpOrderSerial")).toString();
}

struct KillCase {
    bool grid;
    bool lockedAtKill;
};

class JournalKillReplay : public ::testing::TestWithParam<KillCase> {};

} // namespace

TEST_P(JournalKillReplay, AfterAKillAtAnyCommandTheStationComesBackAsItStood)
{
    const KillCase c = GetParam();
    for (int n = 1; n <= kSession.size(); ++n) {
        SCOPED_TRACE("killed after command " + std::to_string(n));
        ReplayHarness h;
        ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
        QStringList script = kSession.mid(0, n);
        if (c.grid)
            script.prepend(QStringLiteral("click chkShowText"));

        QJsonObject last;
        {
            LiveLauncher first(h);
            ASSERT_TRUE(first.start()) << first.error().toStdString();
            for (const QString& command : script) {
                const std::optional<QJsonObject> state = first.send(command);
                ASSERT_TRUE(state.has_value()) << command.toStdString() << ": " << first.error().toStdString();
                last = *state;
            }
            std::optional<BriefFileLock> lock;   // another program writing as the station dies
            if (c.lockedAtKill)
                lock.emplace(h.databaseFile(), 300);
            first.kill();
        }
        const QString server = ordersOnServer(h);

        LiveLauncher second(h);
        ASSERT_TRUE(second.start()) << second.error().toStdString();
        const std::optional<QJsonObject> back = second.send(QStringLiteral("state"));
        ASSERT_TRUE(back.has_value()) << second.error().toStdString();
        EXPECT_EQ(boxTexts(*back), QStringList{kRestoreQuestion});
        EXPECT_EQ(shown(*back), shown(last))
            << "before: " << QJsonDocument(shown(last)).toJson(QJsonDocument::Compact).toStdString()
            << "\nafter:  " << QJsonDocument(shown(*back)).toJson(QJsonDocument::Compact).toStdString();
        // Nothing was saved twice, nothing taken back.
        EXPECT_EQ(ordersOnServer(h), server);
        EXPECT_EQ(second.finish(), 0);

        // A clean end leaves no journal: the next start asks nothing.
        LiveLauncher third(h);
        ASSERT_TRUE(third.start());
        const std::optional<QJsonObject> fresh = third.send(QStringLiteral("state"));
        ASSERT_TRUE(fresh.has_value()) << third.error().toStdString();
        EXPECT_TRUE(boxTexts(*fresh).isEmpty());
        EXPECT_EQ(fresh->value(QStringLiteral("lblPickedNum")).toString(), QStringLiteral("0/"));
        third.finish();
        if (HasFailure())
            return;
    }
}

INSTANTIATE_TEST_SUITE_P(Views, JournalKillReplay,
                         ::testing::Values(KillCase{false, false}, KillCase{true, false}, KillCase{false, true},
                                           KillCase{true, true}),
                         [](const ::testing::TestParamInfo<KillCase>& info) {
                             return std::string(info.param.grid ? "grid" : "tiles")
                                 + (info.param.lockedAtKill ? "_locked" : "");
                         });

TEST(JournalReplay, AnsweredNoTheStationStartsEmptyAndAnUnreadableJournalIsSetAside)
{
    ReplayHarness h;
    ASSERT_TRUE(h.ready()) << h.lastError().toStdString();
    const QStringList script = kSession.mid(0, 8);
    {
        LiveLauncher first(h);
        ASSERT_TRUE(first.start());
        for (const QString& command : script)
            ASSERT_TRUE(first.send(command).has_value()) << first.error().toStdString();
        first.kill();
    }
    {
        LiveLauncher second(h);
        ASSERT_TRUE(second.start());
        const std::optional<QJsonObject> no = second.send(QStringLiteral("answer no"));
        ASSERT_TRUE(no.has_value()) << second.error().toStdString();
        EXPECT_EQ(boxTexts(*no), QStringList{kRestoreQuestion});
        EXPECT_EQ(no->value(QStringLiteral("TxtID")).toString(), QString());
        EXPECT_EQ(no->value(QStringLiteral("lblPickedNum")).toString(), QStringLiteral("0/"));
        EXPECT_TRUE(no->value(QStringLiteral("lines")).toArray().isEmpty());
        EXPECT_TRUE(no->value(QStringLiteral("log")).toArray().isEmpty());
        second.kill();   // dies again, with nothing done since the answer
    }
    {
        // Answered no, the old journal was dropped; the session after it died
        // with nothing done in it: nothing to ask.
        LiveLauncher third(h);
        ASSERT_TRUE(third.start());
        const std::optional<QJsonObject> state = third.send(QStringLiteral("scan TxtID 10002"));
        ASSERT_TRUE(state.has_value());
        EXPECT_TRUE(boxTexts(*state).isEmpty());
        third.kill();
    }

    // The journal of that session is damaged on the disk.
    QString folder;
    for (QDirIterator it(QDir(h.folder()).filePath(QStringLiteral("xdg-data")), {QStringLiteral("session-*.db")},
                         QDir::Files, QDirIterator::Subdirectories);
         it.hasNext();)
        folder = QFileInfo(it.next()).absolutePath();
    const QStringList journals = QDir(folder).entryList({QStringLiteral("session-*.db")});
    ASSERT_EQ(journals.size(), 1) << folder.toStdString();
    {
        QFile damaged(QDir(folder).filePath(journals[0]));
        ASSERT_TRUE(damaged.open(QIODevice::WriteOnly | QIODevice::Truncate));
        damaged.write("not a journal");
        QFile::remove(damaged.fileName() + QStringLiteral("-wal"));
        QFile::remove(damaged.fileName() + QStringLiteral("-shm"));
    }
    LiveLauncher fourth(h);
    ASSERT_TRUE(fourth.start());
    const std::optional<QJsonObject> empty = fourth.send(QStringLiteral("state"));
    ASSERT_TRUE(empty.has_value()) << fourth.error().toStdString();
    const QStringList texts = boxTexts(*empty);
    ASSERT_EQ(texts.size(), 1);
    EXPECT_TRUE(texts[0].startsWith(QStringLiteral("Velto提示: 上次的校验记录无法读取，已另存为"))) << texts[0].toStdString();
    EXPECT_EQ(empty->value(QStringLiteral("lblPickedNum")).toString(), QStringLiteral("0/"));
    EXPECT_EQ(QDir(folder).entryList({QStringLiteral("session-*.unreadable-*")}).size(), 1);
    EXPECT_EQ(fourth.finish(), 0);
}
