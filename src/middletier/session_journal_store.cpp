// RnHost.SessionJournal: the station session's journal in a SQLite file of
// its own in the per-user data folder, in WAL mode. A commit writes only what
// changed since the one before: the form's values, the log entries and the
// lines whose records were written, the order of the lines when it moved.
#include "host/host_error.h"
#include "host/record_keys.h"
#include "host/session_journal.h"
#include "middletier/middle_tier_values.h"
#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLockFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QTimer>
#include <QDebug>
#include <QUuid>
#include <climits>
#include <memory>
#include <unordered_map>
#include <vector>

namespace {

const QString kStateKeys = QStringLiteral("rnw_journal_");

HostError journalError(const QString& file, const QString& what)
{
    return HostError(HostErrors::Database, QStringLiteral("The session journal %1: %2").arg(file, what));
}

// The journal of a user and a database: the connect string (less nothing a
// user could tell apart) hashed, so two databases never share one.
QString journalFile(const QString& props)
{
    const QString user = PropsValue(props, QStringLiteral("UserID")).trimmed();
    const QString connect = PropsValue(props, QStringLiteral("ConnectString"));
    const QByteArray hash = QCryptographicHash::hash(connect.toUtf8(), QCryptographicHash::Sha1).toHex().left(16);
    QString folder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    if (folder.isEmpty())
        folder = QDir::homePath() + QStringLiteral("/.rnwdpicking");
    folder += QStringLiteral("/journal");
    return folder + QStringLiteral("/session-") + user + QLatin1Char('-') + QString::fromLatin1(hash) + QStringLiteral(".db");
}

// Record values as JSON, keys in their order, records within records.
QJsonValue toJson(const QVariant& value);

QJsonObject recordToJson(const GoodsRecord& record)
{
    QJsonArray keys, values;
    for (int i = 0; i < record.Count(); ++i) {
        keys.append(record.KeyAt(i));
        values.append(toJson(record.ValueAt(i)));
    }
    return QJsonObject{{QStringLiteral("k"), keys}, {QStringLiteral("v"), values}};
}

QJsonValue toJson(const QVariant& value)
{
    if (!value.isValid() || value.isNull())
        return QJsonValue(QJsonValue::Null);
    if (value.canConvert<GoodsRecord>() && value.typeId() == qMetaTypeId<GoodsRecord>()) {
        const GoodsRecord nested = value.value<GoodsRecord>();
        return nested.isNone() ? QJsonValue(QJsonValue::Null) : QJsonValue(QJsonObject{{QStringLiteral("r"), recordToJson(nested)}});
    }
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return QJsonValue(value.toLongLong());
    case QMetaType::Double:
    case QMetaType::Float:
        return value.toDouble();
    default:
        return value.toString();
    }
}

GoodsRecord recordFromJson(const QJsonObject& object);

QVariant fromJson(const QJsonValue& value)
{
    switch (value.type()) {
    case QJsonValue::Null:
    case QJsonValue::Undefined:
        return QVariant();
    case QJsonValue::Bool:
        return value.toBool();
    case QJsonValue::Double: {
        const double d = value.toDouble();
        const qint64 whole = qint64(d);
        if (double(whole) == d)
            return whole >= INT_MIN && whole <= INT_MAX ? QVariant(int(whole)) : QVariant(whole);
        return d;
    }
    case QJsonValue::String:
        return value.toString();
    case QJsonValue::Object:
        return QVariant::fromValue(recordFromJson(value.toObject().value(QStringLiteral("r")).toObject()));
    default:
        return QVariant();
    }
}

GoodsRecord recordFromJson(const QJsonObject& object)
{
    GoodsRecord record;
    const QJsonArray keys = object.value(QStringLiteral("k")).toArray();
    const QJsonArray values = object.value(QStringLiteral("v")).toArray();
    if (keys.size() != values.size())
        throw HostError(HostErrors::Database, QStringLiteral("a record of the journal is damaged"));
    for (qsizetype i = 0; i < keys.size(); ++i)
        record.SetValue(keys[i].toString(), fromJson(values[i]));
    return record;
}

QString compact(const QJsonObject& object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

// What a commit last wrote of one record: who it was and how often it had
// been written then.
struct Written {
    const void* identity = nullptr;
    quint64 version = 0;
};

class SessionJournal : public ISessionJournal {
public:
    SessionJournal()
    {
        m_pause.setSingleShot(true);
        m_pause.setInterval(kPauseMs);
        QObject::connect(&m_pause, &QTimer::timeout, [this] { checkpoint(); });
    }
    ~SessionJournal() override { closeDatabase(); }

    bool Claim(const QString& props) override
    {
        const QString file = journalFile(props);
        QDir().mkpath(QFileInfo(file).absolutePath());
        auto lock = std::make_unique<QLockFile>(file + QStringLiteral(".lock"));
        // Held for as long as the station is open; a lock left by a killed
        // station names a process that is gone and is taken over.
        lock->setStaleLockTime(0);
        if (!lock->tryLock(0))
            return false;
        m_lock = std::move(lock);
        return true;
    }

    bool Exists(const QString& props) override { return QFileInfo::exists(journalFile(props)); }

    JournalState Read(const QString& props) override
    {
        const QString file = journalFile(props);
        JournalState state;
        const auto read = [&](QSqlDatabase& db) {
            QSqlQuery q(db);
            const auto run = [&](const QString& sql) {
                if (!q.exec(sql))
                    throw journalError(file, q.lastError().text());
            };
            run(QStringLiteral("SELECT json FROM form WHERE id = 1"));
            if (!q.next())
                throw journalError(file, QStringLiteral("it holds no session"));
            state.form = parse(file, q.value(0).toString());
            run(QStringLiteral("SELECT json FROM log ORDER BY pos"));
            while (q.next())
                state.sessionLog.Add(recordFromJson(parse(file, q.value(0).toString())));
            run(QStringLiteral("SELECT code FROM keys ORDER BY rowid"));
            while (q.next())
                state.sessionKeys << q.value(0).toString();
            run(QStringLiteral("SELECT identities FROM line_order WHERE id = 1"));
            QJsonArray order;
            if (q.next())
                order = QJsonDocument::fromJson(q.value(0).toString().toUtf8()).array();
            std::unordered_map<QString, GoodsRecord> lines;
            run(QStringLiteral("SELECT identity, json FROM lines"));
            while (q.next())
                lines.emplace(q.value(0).toString(), recordFromJson(parse(file, q.value(1).toString())));
            for (const QJsonValue& identity : order) {
                const auto it = lines.find(identity.toString());
                if (it == lines.end())
                    throw journalError(file, QStringLiteral("a line of the order is missing"));
                state.lines.Add(it->second);
            }
        };
        // The journal this station writes is held exclusively: it is read
        // through the writer's own connection.
        if (m_open && file == m_file)
            read(m_db);
        else
            withConnection(file, false, read);
        return state;
    }

    QString SetAside(const QString& props) override
    {
        const QString file = journalFile(props);
        const QString aside = file + QStringLiteral(".unreadable-")
            + QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
        for (const QString& suffix : {QString(), QStringLiteral("-wal"), QStringLiteral("-shm")}) {
            if (QFileInfo::exists(file + suffix)) {
                QFile::remove(aside + suffix);
                if (!QFile::rename(file + suffix, aside + suffix))
                    throw journalError(file, QStringLiteral("it cannot be moved aside"));
            }
        }
        return aside;
    }

    void Start(const QString& props, const JournalState& state) override
    {
        closeDatabase();
        m_file = journalFile(props);
        QDir().mkpath(QFileInfo(m_file).absolutePath());
        for (const QString& suffix : {QString(), QStringLiteral("-wal"), QStringLiteral("-shm")})
            QFile::remove(m_file + suffix);
        openDatabase(true);
        inTransaction([&] {
            exec(QStringLiteral("CREATE TABLE form (id INTEGER PRIMARY KEY CHECK (id = 1), json TEXT NOT NULL)"));
            exec(QStringLiteral("CREATE TABLE log (pos INTEGER PRIMARY KEY, json TEXT NOT NULL)"));
            exec(QStringLiteral("CREATE TABLE keys (code TEXT PRIMARY KEY)"));
            exec(QStringLiteral("CREATE TABLE lines (identity TEXT PRIMARY KEY, json TEXT NOT NULL)"));
            exec(QStringLiteral("CREATE TABLE line_order (id INTEGER PRIMARY KEY CHECK (id = 1), identities TEXT NOT NULL)"));
        });
        Commit(state);
    }

    void Commit(const JournalState& state) override
    {
        if (!m_open)
            return;
        inTransaction([&] {
            writeForm(state.form);
            writeLog(state.sessionLog);
            writeKeys(state.sessionKeys);
            writeLines(state.lines);
        });
        m_pause.start();
    }

    void Remove() override
    {
        closeDatabase();
        if (!m_file.isEmpty()) {
            for (const QString& suffix : {QString(), QStringLiteral("-wal"), QStringLiteral("-shm")})
                QFile::remove(m_file + suffix);
            m_file.clear();
        }
        m_lock.reset();
    }

private:
    static QJsonObject parse(const QString& file, const QString& text)
    {
        QJsonParseError error{};
        const QJsonDocument doc = QJsonDocument::fromJson(text.toUtf8(), &error);
        if (error.error != QJsonParseError::NoError || !doc.isObject())
            throw journalError(file, QStringLiteral("a row is damaged (%1)").arg(error.errorString()));
        return doc.object();
    }

    template <class Work>
    static void withConnection(const QString& file, bool create, Work work)
    {
        const QString name = kStateKeys + QUuid::createUuid().toString(QUuid::WithoutBraces);
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
            db.setConnectOptions(create ? QString() : QStringLiteral("QSQLITE_OPEN_READONLY"));
            db.setDatabaseName(file);
            try {
                if (!QFileInfo::exists(file) && !create)
                    throw journalError(file, QStringLiteral("it is not there"));
                if (!db.open())
                    throw journalError(file, db.lastError().text());
                work(db);
            } catch (...) {
                db.close();
                QSqlDatabase::removeDatabase(name);
                throw;
            }
            db.close();
        }
        QSqlDatabase::removeDatabase(name);
    }

    void openDatabase(bool)
    {
        m_connection = kStateKeys + QUuid::createUuid().toString(QUuid::WithoutBraces);
        m_db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
        m_db.setDatabaseName(m_file);
        if (!m_db.open())
            throw journalError(m_file, m_db.lastError().text());
        m_open = true;
        // One station holds a journal (the claim), so no other connection
        // reads it while it is written: no file lock taken and released at
        // every commit, and the log's index kept in memory, not in a -shm file.
        exec(QStringLiteral("PRAGMA locking_mode=EXCLUSIVE"));
        exec(QStringLiteral("PRAGMA journal_mode=WAL"));
        // Each commit is in the log before the station answers, so a killed or
        // crashed station loses nothing. The log is flushed to the disk when it
        // is copied into the file, not at each commit (that costs a scan about
        // 4 ms): a power cut can lose the scans since the last pause.
        exec(QStringLiteral("PRAGMA synchronous=NORMAL"));
        // That copy runs when the worker pauses, not in the middle of a scan;
        // a station that never pauses copies it when the log reaches 16 MB.
        // (The log file keeps its size after a copy, so its size tells
        // nothing: the engine counts the pages written since.)
        exec(QStringLiteral("PRAGMA wal_autocheckpoint=%1").arg(kLogLimitPages));
        m_form.clear();
        m_log.clear();
        m_keys.clear();
        m_lines.clear();
        m_heldLines.clear();
    }

    // The log copied into the journal file and flushed; a failure here loses
    // nothing (the log still holds it) and is tried again at the next pause.
    void checkpoint()
    {
        if (!m_open)
            return;
        QSqlQuery q(m_db);
        if (!q.exec(QStringLiteral("PRAGMA wal_checkpoint(PASSIVE)")))
            qWarning().noquote() << "session journal:" << q.lastError().text();
    }

    void closeDatabase()
    {
        m_pause.stop();
        if (!m_connection.isEmpty()) {
            m_statements.clear();
            m_db.close();
            m_db = QSqlDatabase();
            QSqlDatabase::removeDatabase(m_connection);
            m_connection.clear();
        }
        m_open = false;
    }

    void exec(const QString& sql, const QVariantList& params = {})
    {
        auto it = m_statements.find(sql);
        if (it == m_statements.end()) {
            QSqlQuery q(m_db);
            if (!q.prepare(sql))
                throw journalError(m_file, q.lastError().text());
            it = m_statements.emplace(sql, q).first;
        }
        QSqlQuery& q = it->second;
        for (int i = 0; i < params.size(); ++i)
            q.bindValue(i, params[i]);
        if (!q.exec())
            throw journalError(m_file, q.lastError().text());
        q.finish();
    }

    template <class Work>
    void inTransaction(Work work)
    {
        if (!m_db.transaction())
            throw journalError(m_file, m_db.lastError().text());
        try {
            work();
        } catch (...) {
            m_db.rollback();
            // What was cached as written may not be: write everything next time.
            m_form.clear();
            m_log.clear();
            m_keys.clear();
            m_lines.clear();
            m_heldLines.clear();
            throw;
        }
        if (!m_db.commit())
            throw journalError(m_file, m_db.lastError().text());
    }

    void writeForm(const QJsonObject& form)
    {
        const QString text = compact(form);
        if (text == m_form)
            return;
        exec(QStringLiteral("INSERT OR REPLACE INTO form (id, json) VALUES (1, ?)"), {text});
        m_form = text;
    }

    void writeLog(const RecordList& log)
    {
        const int count = log.isNone() ? 0 : log.Count();
        if (count < int(m_log.size())) {
            exec(QStringLiteral("DELETE FROM log WHERE pos >= ?"), {count});
            m_log.resize(size_t(count));
        }
        for (int i = 0; i < count; ++i) {
            const GoodsRecord entry = log.Item(i);
            const Written now{entry.identity(), entry.version()};
            if (size_t(i) < m_log.size() && m_log[size_t(i)].identity == now.identity && m_log[size_t(i)].version == now.version)
                continue;
            exec(QStringLiteral("INSERT OR REPLACE INTO log (pos, json) VALUES (?, ?)"), {i, compact(recordToJson(entry))});
            if (size_t(i) >= m_log.size())
                m_log.resize(size_t(i) + 1);
            m_log[size_t(i)] = now;
        }
    }

    void writeKeys(const QStringList& keys)
    {
        if (keys == m_keys)
            return;
        exec(QStringLiteral("DELETE FROM keys"));
        for (const QString& code : keys)
            exec(QStringLiteral("INSERT OR IGNORE INTO keys (code) VALUES (?)"), {code});
        m_keys = keys;
    }

    // Lines are known by their records (held here, so no other record can
    // take an address): a scan writes the one line it counted, and the order
    // of the lines only when it moved.
    void writeLines(const RecordList& lines)
    {
        const int count = lines.isNone() ? 0 : lines.Count();
        std::vector<GoodsRecord> now;
        now.reserve(size_t(count));
        bool sameRecords = count == int(m_heldLines.size());
        for (int i = 0; i < count; ++i) {
            now.push_back(lines.Item(i));
            sameRecords = sameRecords && m_lines.count(now.back().identity()) == 1;
        }
        // Another order on the station: its lines replace the last one's.
        if (!sameRecords) {
            exec(QStringLiteral("DELETE FROM lines"));
            m_lines.clear();
        }
        bool moved = !sameRecords;
        for (int i = 0; i < count; ++i) {
            const GoodsRecord& line = now[size_t(i)];
            auto it = m_lines.find(line.identity());
            if (it == m_lines.end()) {
                const QString identity = line.GetValue(RecordKeys::GoodsID, QString()).toString() + QLatin1Char('/')
                    + line.GetValue(RecordKeys::FEntryID, QString()).toString();
                it = m_lines.emplace(line.identity(), LineWritten{identity, ~quint64(0)}).first;
            }
            if (it->second.version != line.version()) {
                exec(QStringLiteral("INSERT OR REPLACE INTO lines (identity, json) VALUES (?, ?)"),
                     {it->second.identity, compact(recordToJson(line))});
                it->second.version = line.version();
            }
            moved = moved || m_heldLines[size_t(i)].identity() != line.identity();
        }
        if (moved) {
            QJsonArray order;
            for (const GoodsRecord& line : now)
                order.append(m_lines[line.identity()].identity);
            exec(QStringLiteral("INSERT OR REPLACE INTO line_order (id, identities) VALUES (1, ?)"),
                 {QString::fromUtf8(QJsonDocument(order).toJson(QJsonDocument::Compact))});
        }
        m_heldLines = std::move(now);
    }

    static constexpr int kPauseMs = 2000;
    static constexpr int kLogLimitPages = 4096;   // 16 MB of 4 KB pages

    QString m_file;
    QTimer m_pause;
    std::unique_ptr<QLockFile> m_lock;
    QString m_connection;
    QSqlDatabase m_db;
    bool m_open = false;
    std::unordered_map<QString, QSqlQuery> m_statements;
    QString m_form;
    std::vector<Written> m_log;
    QStringList m_keys;
    struct LineWritten {
        QString identity;   // GoodsID/FEntryID
        quint64 version = 0;
    };
    std::unordered_map<const void*, LineWritten> m_lines;
    std::vector<GoodsRecord> m_heldLines;
};

const BuiltInServerObject registration(ProgIds::SessionJournal, [] { return std::make_shared<SessionJournal>(); });

} // namespace
