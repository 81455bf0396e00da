#include "app/sondarmain.h"

#include "app/pingcommand.h"
#include "app/terminalsink.h"
#include "app/tracecommand.h"
#include "app/windowcommand.h"
#include "core/productinfo.h"
#include "platform/clock.h"
#include "platform/programdir.h"
#include "platform/settingsstore.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <optional>

namespace {

const char *const Usage =
    "Usage: sondar [--dir PATH]                 open the monitor window\n"
    "       sondar ping HOST [--period S] [--count N] [--log] [--dir PATH]\n"
    "                                         watch HOST in the terminal: one line per sample\n"
    "                                         (time, address, level); exit 0 when the last\n"
    "                                         sample answered, 1 otherwise\n"
    "       sondar trace HOST [--timeout MS] [--dir PATH]\n"
    "                                         trace the route to HOST hop by hop: every log\n"
    "                                         line as it comes, then the table of hops;\n"
    "                                         Ctrl-C cancels\n"
    "       sondar --help | --version\n"
    "\n"
    "Options:\n"
    "  --dir PATH     program directory (hosts.ini, logs, country.txt); default:\n"
    "                 $SONDAR_HOME, else the executable's folder when writable,\n"
    "                 else ~/.local/share/Sondar\n"
    "  --period S     seconds between samples (default: the stored retry time)\n"
    "  --count N      stop after N samples (default: run until Ctrl-C)\n"
    "  --log          append every sample to the log\n"
    "  --timeout MS   how long each echo of a trace waits (default 1000)\n";

int usageError(const QString &message)
{
    std::fprintf(stderr, "sondar: %s\n\n%s", qPrintable(message), Usage);
    return 2;
}

bool hasDisplay()
{
    return qEnvironmentVariableIsSet("QT_QPA_PLATFORM") || qEnvironmentVariableIsSet("DISPLAY")
        || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

struct Arguments {
    QString command; // empty: the window
    QStringList positional;
    QString dir;
    QString period;
    QString count;
    QString timeout;
    bool log = false;
};

std::optional<Arguments> parse(const QStringList &args, QString &error)
{
    const std::pair<QLatin1String, QString Arguments::*> valued[] = {
        {QLatin1String("--dir"), &Arguments::dir},
        {QLatin1String("--period"), &Arguments::period},
        {QLatin1String("--count"), &Arguments::count},
        {QLatin1String("--timeout"), &Arguments::timeout},
    };
    Arguments parsed;
    for (int i = 1; i < args.size(); ++i) {
        const QString &arg = args.at(i);
        const auto option = std::find_if(std::begin(valued), std::end(valued),
                                         [&arg](const auto &entry) { return arg == entry.first; });
        if (option != std::end(valued)) {
            if (i + 1 >= args.size()) {
                error = arg + QStringLiteral(" needs a value");
                return std::nullopt;
            }
            parsed.*(option->second) = args.at(++i);
        } else if (arg == QLatin1String("--log")) {
            parsed.log = true;
        } else if (arg.startsWith(QLatin1String("--"))) {
            error = QStringLiteral("unknown option ") + arg;
            return std::nullopt;
        } else if (parsed.command.isEmpty() && parsed.positional.isEmpty()) {
            parsed.command = arg;
        } else {
            parsed.positional << arg;
        }
    }
    return parsed;
}

std::optional<int> wholeNumber(const QString &text, int minimum)
{
    bool ok = false;
    const int n = text.toInt(&ok);
    if (!ok || n < minimum)
        return std::nullopt;
    return n;
}

QString resolvedProgramDir(const QString &dirOption)
{
    const QString dir = programdir::resolve(dirOption, QCoreApplication::applicationDirPath());
    if (dir.isEmpty())
        std::fprintf(stderr, "sondar: cannot use the program directory %s\n", qPrintable(dirOption));
    return dir;
}

int trace(int argc, char **argv, const Arguments &parsed)
{
    int timeoutMs = defaultTraceTimeoutMs;
    if (!parsed.timeout.isEmpty()) {
        const auto timeout = wholeNumber(parsed.timeout, 1);
        if (!timeout || *timeout > 60000)
            return usageError(QStringLiteral("--timeout takes whole milliseconds from 1 to 60000"));
        timeoutMs = *timeout;
    }
    QCoreApplication app(argc, argv);
    const QString dir = resolvedProgramDir(parsed.dir);
    if (dir.isEmpty())
        return 2;
    return runTraceCommand(parsed.positional.first(), timeoutMs, dir);
}

} // namespace

int sondarMain(int argc, char **argv)
{
    QStringList args;
    for (int i = 0; i < argc; ++i)
        args << QString::fromLocal8Bit(argv[i]);
    if (args.contains(QLatin1String("--help")) || args.contains(QLatin1String("-h"))) {
        std::fputs(Usage, stdout);
        return 0;
    }
    if (args.contains(QLatin1String("--version"))) {
        std::printf("%s %s\n", qPrintable(productinfo::productName()), qPrintable(productinfo::version()));
        return 0;
    }
    QString error;
    const auto parsed = parse(args, error);
    if (!parsed)
        return usageError(error);

    if (parsed->command.isEmpty()) {
        if (!hasDisplay()) {
            std::fputs("sondar: no display to open the window on (DISPLAY and WAYLAND_DISPLAY are unset).\n"
                       "Watch a host in the terminal instead: sondar ping HOST\n",
                       stderr);
            return 1;
        }
        return runWindow(argc, argv, parsed->dir);
    }
    if (parsed->command != QLatin1String("ping") && parsed->command != QLatin1String("trace"))
        return usageError(QStringLiteral("unknown command ") + parsed->command);
    if (parsed->positional.size() != 1)
        return usageError(parsed->command + QStringLiteral(" takes one HOST"));
    if (parsed->command == QLatin1String("trace"))
        return trace(argc, argv, *parsed);

    PingCommandOptions options;
    options.host = parsed->positional.first();
    options.log = parsed->log;
    if (!parsed->period.isEmpty()) {
        const auto period = wholeNumber(parsed->period, 1);
        if (!period || *period > 60)
            return usageError(QStringLiteral("--period takes whole seconds from 1 to 60"));
        options.periodSeconds = *period;
    }
    if (!parsed->count.isEmpty()) {
        const auto count = wholeNumber(parsed->count, 1);
        if (!count)
            return usageError(QStringLiteral("--count takes a whole number of 1 or more"));
        options.count = *count;
    }

    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(productinfo::productName());
    QCoreApplication::setOrganizationName(productinfo::productName());
    const QString dir = resolvedProgramDir(parsed->dir);
    if (dir.isEmpty())
        return 2;
    SettingsStore settings;
    SystemClock clock;
    TerminalSink sink;
    const Environment env{settings, clock, sink, dir, programdir::executableBaseName(QCoreApplication::applicationFilePath())};
    return runPingCommand(options, env);
}
