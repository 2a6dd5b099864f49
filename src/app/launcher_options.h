#pragma once
// The launcher's command line:
//   rnwdpicking [--demo | --props TEXT] [--lang chs|en|cht] [--replay FILE|-]
//   rnwdpicking --init-demo FILE [--lines N]
#include <QString>
#include <QStringList>

struct LauncherOptions {
    bool demo = false;
    QString props;            // --props TEXT
    bool hasProps = false;
    QString lang;             // chs, en or cht; empty leaves the host's language
    QString replay;           // a file, or "-" for standard input; empty: no replay
    QString initDemo;         // --init-demo FILE
    int lines = 0;            // --lines N with --init-demo
    bool help = false;
};

// Parses the arguments after the program name. On a mistake returns false
// with the reason in error.
bool ParseLauncherOptions(const QStringList& args, LauncherOptions& options, QString& error);
QString LauncherUsage();
// True when the raw arguments ask for a replay or a demo database (read
// before Qt starts, so that it can run offscreen).
bool ArgumentsNeedNoScreen(int argc, char** argv);
