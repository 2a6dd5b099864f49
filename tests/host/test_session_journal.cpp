// The session journal keeps what it was given, commit after commit, and gives
// it back whole. A station killed and started again, and a journal that cannot
// be read: tests/replay.
#include "host/session_journal.h"
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

GoodsRecord line(int goods, int entry, int checked, const QString& serials = QString())
{
    GoodsRecord r;
    r.SetValue("FEntryID", entry);
    r.SetValue("FSeriNum", serials);
    r.SetValue("GoodsID", goods);
    r.SetValue("GoodsName", QStringLiteral("商品%1").arg(goods));
    r.SetValue("GoodsOrderCnt", 2.0);
    r.SetValue("GoodsPickCnt", QVariant::fromValue<qint16>(qint16(checked)));
    r.SetValue("GoodsCheckedCnt", checked);
    r.SetValue("FPicID", QVariant());
    return r;
}

// Every key and value of a record, records inside it included.
QString describe(const GoodsRecord& r)
{
    QStringList parts;
    for (int k = 0; k < r.Count(); ++k) {
        const QVariant v = r.ValueAt(k);
        QString text = v.isNull() ? QStringLiteral("null") : v.toString();
        if (v.typeId() == qMetaTypeId<GoodsRecord>())
            text = "{" + describe(v.value<GoodsRecord>()) + "}";
        parts << r.KeyAt(k) + "=" + text;
    }
    return parts.join(';');
}

QStringList describe(const RecordList& list)
{
    QStringList out;
    for (int i = 0; i < list.Count(); ++i)
        out << describe(list.Item(i));
    return out;
}

// Another user on the same database, the same user on another database.
const QString kOtherUser = QStringLiteral("UserID=8;ConnectString={Provider=SQLite;Data Source=/srv/a.db};");
const QString kOtherDatabase = QStringLiteral("UserID=7;ConnectString={Provider=SQLite;Data Source=/srv/b.db};");

class SessionJournalTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        m_dataHome = qgetenv("XDG_DATA_HOME");
        qputenv("XDG_DATA_HOME", m_dir.path().toUtf8());
        m_props = QStringLiteral("UserID=7;ConnectString={Provider=SQLite;Data Source=/srv/a.db};");
        m_journal = CreateServerObjectAs<ISessionJournal>(ProgIds::SessionJournal);
    }
    void TearDown() override { qputenv("XDG_DATA_HOME", m_dataHome); }

    QTemporaryDir m_dir;
    QByteArray m_dataHome;
    QString m_props;
    std::shared_ptr<ISessionJournal> m_journal;
};

} // namespace

TEST_F(SessionJournalTest, WhatWasCommittedLastIsReadBackWhole)
{
    JournalState state;
    state.form = QJsonObject{{"CurrentOrderCode", "10001"}, {"lblPickedNum", "1/4"}, {"ImgSuccess", false}};
    state.lines.Add(line(1001, 1, 1));
    state.lines.Add(line(1008, 2, 0));
    state.lines.Add(line(1031, 3, 1, ",W1-0001"));
    EXPECT_FALSE(m_journal->Exists(m_props));
    m_journal->Start(m_props, state);
    EXPECT_TRUE(m_journal->Exists(m_props));

    // Counts, serials, the order of the lines, the log and its keys change.
    state.lines.Item(1).SetValue("GoodsCheckedCnt", 2);
    state.lines.Item(2).SetValue("FSeriNum", ",W1-0001,W1-0002");
    const GoodsRecord moved = state.lines.Item(0);
    state.lines.Remove(0);
    state.lines.Add(moved);
    GoodsRecord entry;
    entry.SetValue("ID", "10018");
    GoodsRecord states;
    states.SetValue("1002/9", QVariant::fromValue(line(1002, 9, 1)));
    entry.SetValue("PickedNum", QVariant::fromValue(states));
    entry.SetValue("bSuccess", true);
    entry.SetValue("log", QStringLiteral("10018通过   误拣0件"));
    state.sessionLog.Add(entry);
    state.sessionKeys << "10018";
    state.form["lblPickedNum"] = "3/4";
    m_journal->Commit(state);
    entry.SetValue("log", QStringLiteral("10018异常, , 缺少1件, 误拣0件"));
    m_journal->Commit(state);

    const JournalState read = m_journal->Read(m_props);
    EXPECT_EQ(read.form, state.form);
    EXPECT_EQ(read.sessionKeys, state.sessionKeys);
    EXPECT_EQ(describe(read.lines), describe(state.lines));
    EXPECT_EQ(describe(read.sessionLog), describe(state.sessionLog));
    m_journal->Remove();
    EXPECT_FALSE(m_journal->Exists(m_props));
}

TEST_F(SessionJournalTest, OneStationAtATimeHoldsTheJournalOfAUserAndDatabase)
{
    ASSERT_TRUE(m_journal->Claim(m_props));
    auto second = CreateServerObjectAs<ISessionJournal>(ProgIds::SessionJournal);
    EXPECT_FALSE(second->Claim(m_props));
    // Another user, or another database, has a journal of its own.
    m_journal->Start(m_props, JournalState{});
    for (const QString& other : {kOtherUser, kOtherDatabase}) {
        EXPECT_FALSE(second->Exists(other));
        EXPECT_TRUE(CreateServerObjectAs<ISessionJournal>(ProgIds::SessionJournal)->Claim(other));
    }
    m_journal->Remove();   // a clean close lets the next station take it
    EXPECT_TRUE(second->Claim(m_props));
}

TEST_F(SessionJournalTest, CommitsOfSingleCountsOnALargeOrderAreReadBack)
{
    JournalState state;
    for (int i = 0; i < 500; ++i)
        state.lines.Add(line(90000 + i, i + 1, 0));
    m_journal->Start(m_props, state);
    for (int i = 0; i < 50; ++i) {
        state.lines.Item(i * 7).SetValue("GoodsCheckedCnt", 1);
        state.form["lblPickedNum"] = QString::number(i + 1) + "/1000";
        m_journal->Commit(state);
    }
    EXPECT_EQ(m_journal->Read(m_props).lines.Item(49 * 7).GetValue("GoodsCheckedCnt").toInt(), 1);
}
