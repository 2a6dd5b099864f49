#pragma once
// The station on either engine: the embedded one, or the production path of
// QODBC and unixODBC with the SQLite ODBC driver in place of the server. Each
// run has a fresh copy of the demo database; the fixture's own reads go
// straight to the file, past both engines.
#include "reliability/reliability_station.h"
#include "support/sqlite_odbc.h"

enum class StationEngine { Embedded, SqliteOdbc };

inline const char* engineName(StationEngine engine)
{
    return engine == StationEngine::SqliteOdbc ? "SqliteOdbc" : "Embedded";
}

class EngineStationTest : public ReliabilityStationTest {
protected:
    // Empty when the engine can run here, else why not.
    static QString unavailableReason(StationEngine engine)
    {
        return engine == StationEngine::SqliteOdbc ? SqliteOdbcUnavailableReason() : QString();
    }

    // A fresh demo database named after the engine, and the session of a
    // user on it through that engine.
    void useEngine(StationEngine engine, int userId = 1)
    {
        m_engine = engine;
        m_db = m_dir.filePath(QStringLiteral("%1.db").arg(QLatin1String(engineName(engine))));
        QFile::remove(m_db);
        ASSERT_TRUE(QFile::copy(pristineDemo(), m_db));
        QFile::setPermissions(m_db, QFile::ReadOwner | QFile::WriteOwner);
        publish(userId);
    }

    void publish(int userId = 1)
    {
        const QString props = m_engine == StationEngine::SqliteOdbc ? SqliteOdbcProps(m_db, userId)
                                                                    : DemoPropsString(m_db, userId);
        CreateServerObjectAs<IShareProps>(ProgIds::ShareProps)
            ->SetProperty(CurrentProcessId(), QStringLiteral("PropsString"), props);
    }

    StationEngine m_engine = StationEngine::Embedded;
};
