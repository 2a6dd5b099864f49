#pragma once
// One benchmark configuration run in this process: the real station form
// shown offscreen, the bench order of N lines loaded by its logistics number,
// then its goods scanned key by key as a scanner types them, in a shuffled
// order, the order re-picked each time it has passed, until enough scans are
// timed. The commands are replay-script lines (the launcher's --replay
// language), so a run can be written out and replayed by rnwdpicking.
#include <QJsonObject>
#include <QString>

struct StationBenchConfig {
    QString databaseFile;      // a demo database holding the bench order of `lines` lines
    int lines = 0;
    bool gridView = false;
    bool listedOrder = false;  // scan the lines top to bottom instead of in a shuffled order
    bool journal = true;       // the session journal, as in production; off to measure its cost
    int scans = 10000;         // scans timed after the first order has passed
    int loads = 5;             // re-pick loads timed after the first load
    int coldSessions = 2;      // sessions before the timed one that only load the order
    int floorSample = 200;     // scans whose statements are run again for the floor
    QString workFolder;        // the component's folder, the pictures, the database copy
    QString scriptOut;         // when set, the run's replay script is written there
};

// The figures of the run (see bench/README.md), with "errors" listing every
// check that failed: a message box, an order that did not pass, a scan that
// did not count.
QJsonObject RunStationBench(const StationBenchConfig& config);
