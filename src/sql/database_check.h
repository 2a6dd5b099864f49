#pragma once
// Whether the session's database is one the station can work with, asked
// once before the station shows, so that a wrong file is named at the start
// instead of failing every scan.
#include <QString>
#include <QStringList>

// Raises HostError with a text that names the database and the problem: a
// missing file, a file that is no SQLite database or is damaged, a database
// without the tables the station reads and writes, a server that cannot be
// reached. A database that another program holds locked passes: the station
// reports the lock itself when a statement meets it.
void CheckStationDatabase(const QString& connectString);

// The tables the station and the middle tier read or write, the ones the
// check looks for, in the order the demo schema creates them.
QStringList StationTableNames();
