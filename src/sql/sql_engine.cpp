#include "sql/sql_engine.h"
#include "host/host_error.h"
#include "host/platform.h"
#include "host/props_text.h"
#include "sql/odbc_engine.h"
#include "sql/sqlite_engine.h"
#include <QCoreApplication>
#include <QHash>
#include <QMutex>
#include <QRegularExpression>
#include <initializer_list>

namespace {

// The value of the first key of `names` that the pairs hold; a null QString
// when none does. Keys compare case-insensitively, blanks inside them count
// as written ("User ID", "UserID" both accepted by listing both).
QString valueOf(const QList<QPair<QString, QString>>& pairs, std::initializer_list<const char*> names)
{
    for (const char* name : names) {
        for (const auto& pair : pairs) {
            if (pair.first.compare(QLatin1String(name), Qt::CaseInsensitive) == 0)
                return pair.second.isNull() ? QString(QLatin1String("")) : pair.second;
        }
    }
    return QString();
}

bool hasKey(const QList<QPair<QString, QString>>& pairs, std::initializer_list<const char*> names)
{
    return !valueOf(pairs, names).isNull();
}

bool isTrue(const QString& value)
{
    const QString v = value.trimmed().toLower();
    return v == QLatin1String("sspi") || v == QLatin1String("true") || v == QLatin1String("yes");
}

// An ODBC attribute value: braced when it holds a character that would end
// or open a value, with '}' doubled inside the braces.
QString odbcValue(const QString& value)
{
    static const QRegularExpression special(QStringLiteral("[;{}=]|^\\s|\\s$"));
    if (!value.contains(special))
        return value;
    QString escaped = value;
    escaped.replace(QLatin1Char('}'), QLatin1String("}}"));
    return QLatin1Char('{') + escaped + QLatin1Char('}');
}

void appendAttribute(QString& text, const QString& key, const QString& value)
{
    text += key + QLatin1Char('=') + odbcValue(value) + QLatin1Char(';');
}

struct EngineRegistry {
    QMutex mutex;
    QHash<QString, std::shared_ptr<SqlEngine>> engines;
};

// Never destroyed: connections are closed when the application object goes
// (post routine), before Qt's own SQL statics; a static destructor running
// after those would close them into freed state.
EngineRegistry& registry()
{
    static EngineRegistry* r = [] {
        qAddPostRoutine(SqlEngine::closeAll);
        return new EngineRegistry;
    }();
    return *r;
}

} // namespace

QString TextCollationExtensionPath()
{
    return ComponentFolder() + QStringLiteral("librnwcollation.so");
}

ConnectionTarget MapConnectString(const QString& connectString)
{
    const auto pairs = SplitPropsText(connectString);
    ConnectionTarget target;

    const QString provider = valueOf(pairs, {"Provider"}).trimmed();
    if (provider.compare(QLatin1String("SQLite"), Qt::CaseInsensitive) == 0) {
        target.kind = ConnectionTarget::Sqlite;
        target.sqliteFile = valueOf(pairs, {"Data Source", "DataSource", "Database"}).trimmed();
        if (target.sqliteFile.isEmpty())
            throw HostError(HostErrors::Database, QStringLiteral("The connect string names no database file (Data Source)."));
        return target;
    }

    target.kind = ConnectionTarget::Odbc;
    if (valueOf(pairs, {"Driver"}).trimmed().compare(QLatin1String("SQLite3"), Qt::CaseInsensitive) == 0) {
        target.tsqlBridge = true;
        target.sqliteFile = valueOf(pairs, {"Database"}).trimmed();
        if (target.sqliteFile.isEmpty())
            throw HostError(HostErrors::Database, QStringLiteral("The connect string names no database file (Database)."));
        bool timeoutGiven = false;
        QString extensions = TextCollationExtensionPath();
        for (const auto& pair : pairs) {
            if (pair.first.compare(QLatin1String("LoadExt"), Qt::CaseInsensitive) == 0) {
                extensions += QLatin1Char(',') + pair.second;
                continue;
            }
            if (pair.first.compare(QLatin1String("Provider"), Qt::CaseInsensitive) == 0
                || pair.first.compare(QLatin1String("NoCreat"), Qt::CaseInsensitive) == 0
                || pair.first.compare(QLatin1String("BigInt"), Qt::CaseInsensitive) == 0)
                continue;
            timeoutGiven = timeoutGiven || pair.first.compare(QLatin1String("Timeout"), Qt::CaseInsensitive) == 0;
            appendAttribute(target.odbcConnectString, pair.first, pair.second);
        }
        // a missing file is an error, never a new empty database
        appendAttribute(target.odbcConnectString, QStringLiteral("NoCreat"), QStringLiteral("1"));
        // whole numbers in 64 bits, as SQLite keeps them: the driver would
        // otherwise cut them to 32
        appendAttribute(target.odbcConnectString, QStringLiteral("BigInt"), QStringLiteral("1"));
        if (!timeoutGiven)
            appendAttribute(target.odbcConnectString, QStringLiteral("Timeout"), QString::number(kSqliteBusyTimeoutMs));
        // text compares as on the embedded engine: the driver loads the collation
        appendAttribute(target.odbcConnectString, QStringLiteral("LoadExt"), extensions);
        return target;
    }
    if (hasKey(pairs, {"Driver", "DSN", "FileDSN"})) {
        // already an ODBC string: handed on as it is, less the OLE DB provider
        for (const auto& pair : pairs) {
            if (pair.first.compare(QLatin1String("Provider"), Qt::CaseInsensitive) != 0)
                appendAttribute(target.odbcConnectString, pair.first, pair.second);
        }
        return target;
    }

    // An OLE DB string for SQL Server: the same server through FreeTDS.
    QString server = valueOf(pairs, {"Data Source", "Server", "Address", "Addr", "Network Address"}).trimmed();
    if (server.isEmpty())
        throw HostError(HostErrors::Database, QStringLiteral("The connect string names no server (Data Source)."));
    if (server.startsWith(QLatin1String("tcp:"), Qt::CaseInsensitive))
        server = server.mid(4);
    QString port;
    const int comma = server.indexOf(QLatin1Char(','));
    if (comma >= 0) {
        port = server.mid(comma + 1).trimmed();
        server = server.left(comma).trimmed();
    }
    if (server == QLatin1String(".") || server.compare(QLatin1String("(local)"), Qt::CaseInsensitive) == 0)
        server = QStringLiteral("localhost");

    QString& out = target.odbcConnectString;
    appendAttribute(out, QStringLiteral("Driver"), QStringLiteral("FreeTDS"));
    appendAttribute(out, QStringLiteral("Server"), server);
    if (!port.isEmpty())
        appendAttribute(out, QStringLiteral("Port"), port);
    const QString database = valueOf(pairs, {"Initial Catalog", "Database"});
    if (!database.isEmpty())
        appendAttribute(out, QStringLiteral("Database"), database);
    if (isTrue(valueOf(pairs, {"Integrated Security", "Trusted_Connection"}))) {
        appendAttribute(out, QStringLiteral("Trusted_Connection"), QStringLiteral("Yes"));
    } else {
        const QString user = valueOf(pairs, {"User ID", "UserID", "UID", "User"});
        if (!user.isNull())
            appendAttribute(out, QStringLiteral("UID"), user);
        const QString password = valueOf(pairs, {"Password", "PWD"});
        if (!password.isNull())
            appendAttribute(out, QStringLiteral("PWD"), password);
    }
    const QString app = valueOf(pairs, {"Application Name", "App"});
    if (!app.isEmpty())
        appendAttribute(out, QStringLiteral("APP"), app);
    // the ERP's texts are Chinese: have the driver hand them over as UTF-8
    appendAttribute(out, QStringLiteral("ClientCharset"), QStringLiteral("UTF-8"));
    bool ok = false;
    const int timeout = valueOf(pairs, {"Connect Timeout", "Connection Timeout"}).trimmed().toInt(&ok);
    if (ok && timeout > 0)
        target.loginTimeoutSeconds = timeout;
    return target;
}

QString ConnectStringFromProps(const QString& props)
{
    for (const auto& pair : SplitPropsText(props)) {
        if (pair.first.compare(QLatin1String("ConnectString"), Qt::CaseInsensitive) == 0 && !pair.second.trimmed().isEmpty())
            return pair.second;
    }
    throw HostError(HostErrors::Database,
                    QStringLiteral("The host property string holds no ConnectString: no database to work with."));
}

std::shared_ptr<SqlEngine> SqlEngine::forConnectString(const QString& connectString)
{
    EngineRegistry& r = registry();
    {
        QMutexLocker lock(&r.mutex);
        if (auto engine = r.engines.value(connectString))
            return engine;
    }
    const ConnectionTarget target = MapConnectString(connectString);
    std::shared_ptr<SqlEngine> engine;
    if (target.kind == ConnectionTarget::Sqlite)
        engine = std::make_shared<SqliteEngine>(target.sqliteFile);
    else
        engine = std::make_shared<OdbcEngine>(target);
    QMutexLocker lock(&r.mutex);
    auto& slot = r.engines[connectString];
    if (!slot)
        slot = engine;
    return slot;
}

std::shared_ptr<SqlEngine> SqlEngine::forProps(const QString& props)
{
    return forConnectString(ConnectStringFromProps(props));
}

void SqlEngine::closeAll()
{
    QHash<QString, std::shared_ptr<SqlEngine>> engines;
    {
        EngineRegistry& r = registry();
        QMutexLocker lock(&r.mutex);
        engines.swap(r.engines);
    }
    for (const auto& engine : engines)
        engine->close();
}
