#include "app/launcher_options.h"
#include <cstring>

bool ParseLauncherOptions(const QStringList& args, LauncherOptions& options, QString& error)
{
    options = LauncherOptions();
    for (int i = 0; i < args.size(); ++i) {
        const QString& arg = args.at(i);
        auto value = [&](QString& target) {
            if (i + 1 >= args.size()) {
                error = QStringLiteral("%1 needs a value").arg(arg);
                return false;
            }
            target = args.at(++i);
            return true;
        };
        if (arg == QLatin1String("--demo")) {
            options.demo = true;
        } else if (arg == QLatin1String("--props")) {
            if (!value(options.props))
                return false;
            options.hasProps = true;
        } else if (arg == QLatin1String("--lang")) {
            if (!value(options.lang))
                return false;
            if (options.lang != QLatin1String("chs") && options.lang != QLatin1String("en")
                && options.lang != QLatin1String("cht")) {
                error = QStringLiteral("--lang takes chs, en or cht");
                return false;
            }
        } else if (arg == QLatin1String("--replay")) {
            if (!value(options.replay))
                return false;
        } else if (arg == QLatin1String("--init-demo")) {
            if (!value(options.initDemo))
                return false;
        } else if (arg == QLatin1String("--lines")) {
            QString text;
            if (!value(text))
                return false;
            bool ok = false;
            options.lines = text.toInt(&ok);
            if (!ok || options.lines < 0) {
                error = QStringLiteral("--lines takes a number of lines");
                return false;
            }
        } else if (arg == QLatin1String("--help") || arg == QLatin1String("-h")) {
            options.help = true;
        } else {
            error = QStringLiteral("unknown argument: %1").arg(arg);
            return false;
        }
    }
    if (options.demo && options.hasProps) {
        error = QStringLiteral("--demo and --props exclude each other");
        return false;
    }
    if (options.lines > 0 && options.initDemo.isEmpty()) {
        error = QStringLiteral("--lines goes with --init-demo");
        return false;
    }
    return true;
}

QString LauncherUsage()
{
    return QStringLiteral(
        "usage: rnwdpicking [--demo | --props TEXT] [--lang chs|en|cht] [--replay FILE|-]\n"
        "       rnwdpicking --init-demo FILE [--lines N]\n");
}

bool ArgumentsNeedNoScreen(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], "--replay") == 0 || std::strcmp(argv[i], "--init-demo") == 0)
            return true;
    return false;
}
