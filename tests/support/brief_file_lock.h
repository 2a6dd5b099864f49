#pragma once
// Another program holding a whole SQLite file for a moment, from a thread of
// its own: a station that waits for the lock gets through, one that does not
// wait fails at once.
#include <QSqlDatabase>
#include <QSqlQuery>
#include <chrono>
#include <future>
#include <thread>

class BriefFileLock {
public:
    BriefFileLock(const QString& file, int milliseconds)
    {
        std::promise<bool> locked;
        std::future<bool> taken = locked.get_future();
        m_thread = std::thread([file, milliseconds, locked = std::move(locked)]() mutable {
            const QString name = QStringLiteral("brief_file_lock");
            {
                QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
                db.setDatabaseName(file);
                QSqlQuery q(db);
                const bool ok = db.open() && q.exec(QStringLiteral("BEGIN EXCLUSIVE"))
                             && q.exec(QStringLiteral("UPDATE t_SystemProfile SET FValue = FValue"));
                locked.set_value(ok);
                std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
                q.exec(QStringLiteral("ROLLBACK"));
                db.close();
            }
            QSqlDatabase::removeDatabase(name);
        });
        m_held = taken.get();
    }
    ~BriefFileLock() { m_thread.join(); }
    BriefFileLock(const BriefFileLock&) = delete;
    BriefFileLock& operator=(const BriefFileLock&) = delete;

    bool held() const { return m_held; }

private:
    std::thread m_thread;
    bool m_held = false;
};
