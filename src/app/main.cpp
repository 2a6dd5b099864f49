// rnwdpicking: runs the station on its own, as the host would: publishes the
// session's property string, then shows the station through clsPackingGoods.
#include "app/launcher_options.h"
#include "app/replay_driver.h"
#include "demo/demo_database.h"
#include "host/error_reporter.h"
#include "host/lang_info.h"
#include "host/object_factory.h"
#include "host/platform.h"
#include "host/props_text.h"
#include "sql/database_check.h"
#include "sql/sql_engine.h"
#include "station/cls_packing_goods.h"
#include "station/frm_pickig_goods.h"
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTextStream>
#include <QTimer>
#include <cstdio>
#include <iostream>
#include <string>

namespace {

enum ExitCode { ExitOk = 0, ExitDatabase = 1, ExitUsage = 2 };

void printError(const QString& text)
{
    const QByteArray bytes = MaskPasswords(text).toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
    std::fflush(stderr);
}

// The demo database lives once per user; made on first use.
QString demoPropsString()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(folder);
    const QString file = QDir(folder).filePath(QStringLiteral("demo.db"));
    if (!QFileInfo::exists(file))
        CreateDemoDatabase(file);
    return DemoPropsString(file);
}

// Looks at the session's database once before the station shows, so that a
// station without a usable database says so at once instead of on every scan.
bool checkDatabase(const QString& props, QString& error)
{
    try {
        CheckStationDatabase(ConnectStringFromProps(props));
        return true;
    } catch (const HostError& e) {
        error = e.description();
    } catch (const std::exception& e) {
        error = QString::fromLocal8Bit(e.what());
    }
    return false;
}

// Live replay: the station opens when the first command arrives, so that a
// first `answer` answers the question it asks while it opens. False (with the
// line's number) on a malformed line.
bool readFirstCommand(QList<ReplayCommand>& commands, int& linesRead, int& badLine, QString& error)
{
    std::string raw;
    while (commands.isEmpty() && std::getline(std::cin, raw)) {
        ++linesRead;
        if (!ParseReplayScript(QString::fromStdString(raw), commands, badLine, error)) {
            badLine = linesRead;
            return false;
        }
        for (ReplayCommand& command : commands)
            command.lineNumber = linesRead;
    }
    return true;
}

bool readScript(const QString& source, QString& script, QString& error)
{
    QFile file;
    bool opened = false;
    if (source == QLatin1String("-")) {
        opened = file.open(stdin, QIODevice::ReadOnly);
    } else {
        file.setFileName(source);
        opened = file.open(QIODevice::ReadOnly);
    }
    if (!opened) {
        error = QStringLiteral("cannot read the replay script %1: %2").arg(source, file.errorString());
        return false;
    }
    script = QString::fromUtf8(file.readAll());
    return true;
}

frmPickigGoods* showingStation()
{
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* form = qobject_cast<frmPickigGoods*>(widget); form && form->isVisible())
            return form;
    return nullptr;
}

void runWhenShown(ReplayDriver* driver)
{
    if (frmPickigGoods* form = showingStation()) {
        driver->run(form);
        return;
    }
    QTimer::singleShot(10, [driver] { runWhenShown(driver); });
}

} // namespace

int main(int argc, char** argv)
{
    // A replay and the making of a demo database run without a screen.
    if (ArgumentsNeedNoScreen(argc, argv))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("rnwdpicking"));
    QApplication::setOrganizationName(QStringLiteral("RnWDPickingView"));

    LauncherOptions options;
    QString error;
    if (!ParseLauncherOptions(QApplication::arguments().mid(1), options, error)) {
        printError(error);
        printError(LauncherUsage());
        return ExitUsage;
    }
    if (options.help) {
        std::fputs(LauncherUsage().toUtf8().constData(), stdout);
        return ExitOk;
    }

    if (!options.initDemo.isEmpty()) {
        try {
            CreateDemoDatabase(options.initDemo, options.lines);
            return ExitOk;
        } catch (const HostError& e) {
            printError(e.description());
        } catch (const std::exception& e) {
            printError(QString::fromLocal8Bit(e.what()));
        }
        return ExitDatabase;
    }

    if (!options.lang.isEmpty())
        SetHostLanguageCode(options.lang);

    QString script;
    QList<ReplayCommand> commands;
    const bool live = options.replay == QLatin1String("-");
    int linesRead = 0;
    if (live) {
        int badLine = 0;
        if (!readFirstCommand(commands, linesRead, badLine, error)) {
            printError(QStringLiteral("line %1: %2").arg(badLine).arg(error));
            return ExitUsage;
        }
    } else if (!options.replay.isEmpty()) {
        if (!readScript(options.replay, script, error)) {
            printError(error);
            return ExitUsage;
        }
        int badLine = 0;
        if (!ParseReplayScript(script, commands, badLine, error)) {
            printError(QStringLiteral("line %1: %2").arg(badLine).arg(error));
            return ExitUsage;
        }
    }

    QString props;
    try {
        props = options.hasProps ? options.props : demoPropsString();
        CreateServerObjectAs<IShareProps>(ProgIds::ShareProps)
            ->SetProperty(CurrentProcessId(), QStringLiteral("PropsString"), props);
    } catch (const HostError& e) {
        printError(e.description());
        return ExitDatabase;
    } catch (const std::exception& e) {
        printError(QString::fromLocal8Bit(e.what()));
        return ExitDatabase;
    }

    if (!checkDatabase(props, error)) {
        printError(QStringLiteral("cannot open the database: %1").arg(error));
        if (options.replay.isEmpty())
            ShowHostMessage(MaskPasswords(error));
        return ExitDatabase;
    }

    std::unique_ptr<ReplayDriver> driver;
    if (!options.replay.isEmpty()) {
        driver = std::make_unique<ReplayDriver>(commands);
        if (live)
            driver->readOnFromStandardInput(linesRead);
        driver->install();
        QTimer::singleShot(0, [d = driver.get()] { runWhenShown(d); });
    }
    clsPackingGoods station;
    const int result = station.ShowForm();
    SqlEngine::closeAll();
    return driver && driver->exitCode() != 0 ? driver->exitCode() : result;
}
