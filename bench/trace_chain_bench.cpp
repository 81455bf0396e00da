// A full route trace over the test lab's chain (client -> r1 -> r2 -> r3 -> target): the time to
// "Route Trace has Completed", beside Debian's traceroute and mtr on the same chain in the same
// run. Run it inside the lab: tests/netlab/lab.sh exec build/bench/trace_chain_bench [runs]

#include "platform/icmpecho.h"
#include "trace/trace.h"
#include "whois/countrytable.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardItemModel>
#include <QSysInfo>
#include <QTextStream>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <optional>

namespace {

const QString target = QStringLiteral("10.201.4.2");
constexpr int timeoutMs = 1000;

QTextStream out(stdout);

struct Figures {
    QString name;
    QList<double> ms;
    double median() const
    {
        QList<double> sorted = ms;
        std::sort(sorted.begin(), sorted.end());
        return sorted.isEmpty() ? 0 : sorted[sorted.size() / 2];
    }
    double best() const { return ms.isEmpty() ? 0 : *std::min_element(ms.begin(), ms.end()); }
    double worst() const { return ms.isEmpty() ? 0 : *std::max_element(ms.begin(), ms.end()); }
};

// The lab's addresses mean something only inside its client namespace; anywhere else the
// packets would leave for a real network.
bool insideLab()
{
    if (!qEnvironmentVariableIsEmpty("SONDAR_NETLAB_SKIP"))
        return false;
    QProcess identify;
    identify.start(QStringLiteral("ip"), {QStringLiteral("netns"), QStringLiteral("identify"),
                                          QString::number(QCoreApplication::applicationPid())});
    return identify.waitForFinished(5000)
        && QString::fromUtf8(identify.readAllStandardOutput()).trimmed() == QStringLiteral("sdl-client");
}

QString cpuModel()
{
    QFile info(QStringLiteral("/proc/cpuinfo"));
    if (!info.open(QIODevice::ReadOnly))
        return QStringLiteral("unknown");
    for (QByteArray line; !(line = info.readLine()).isEmpty();) {
        if (line.startsWith("model name"))
            return QString::fromUtf8(line.mid(line.indexOf(':') + 1)).trimmed();
    }
    return QStringLiteral("unknown");
}

QString backendName()
{
    switch (IcmpEcho().backend()) {
    case IcmpEcho::Backend::PingSocket:
        return QStringLiteral("ping socket");
    case IcmpEcho::Backend::RawSocket:
        return QStringLiteral("raw socket");
    case IcmpEcho::Backend::Auto:
        break;
    }
    return QStringLiteral("none");
}

// One trace; the time to the completion line, or nullopt when it did not complete.
std::optional<double> sondarTrace(CountryTable &countries)
{
    Trace trace(countries);
    QStandardItemModel grid;
    QElapsedTimer clock;
    std::optional<double> completedMs;
    QObject::connect(&trace, &Trace::LogString, [&](const QString &line) {
        if (line == QStringLiteral("Route Trace has Completed"))
            completedMs = clock.nsecsElapsed() / 1e6;
    });
    trace.setHostName(target);
    clock.start();
    trace.DoTrace(&grid, timeoutMs);
    if (grid.rowCount() != 3)
        return std::nullopt;
    return completedMs;
}

// One run of a tool; the time to its exit, or nullopt when its report lacks the target.
std::optional<double> toolTrace(const QString &program, const QStringList &arguments, const QString &lastHop)
{
    QProcess tool;
    QElapsedTimer clock;
    clock.start();
    tool.start(program, arguments);
    if (!tool.waitForFinished(60000) || tool.exitStatus() != QProcess::NormalExit || tool.exitCode() != 0)
        return std::nullopt;
    const double ms = clock.nsecsElapsed() / 1e6;
    return tool.readAllStandardOutput().contains(lastHop.toUtf8()) ? std::optional<double>(ms) : std::nullopt;
}

void print(const Figures &figures, const Figures &base, int runs)
{
    out << QStringLiteral("%1  completed %2/%3  median %4 ms  best %5 ms  worst %6 ms")
               .arg(figures.name, -34)
               .arg(figures.ms.size())
               .arg(runs)
               .arg(figures.median(), 0, 'f', 2)
               .arg(figures.best(), 0, 'f', 2)
               .arg(figures.worst(), 0, 'f', 2);
    if (&figures != &base && base.median() > 0)
        out << QStringLiteral("  = %1 x Sondar").arg(figures.median() / base.median(), 0, 'f', 1);
    out << Qt::endl;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int runs = argc > 1 ? std::clamp(QString::fromLocal8Bit(argv[1]).toInt(), 1, 100) : 10;
    if (!insideLab()) {
        std::fputs("trace_chain_bench: run it inside the test lab: tests/netlab/lab.sh exec <this binary>\n", stderr);
        return 2;
    }

    out << "Machine: " << QSysInfo::prettyProductName() << ", kernel " << QSysInfo::kernelVersion() << ", "
        << cpuModel() << ", " << QThread::idealThreadCount() << " threads; Qt " << qVersion() << Qt::endl;
    out << "Chain: client -> r1 -> r2 -> r3 -> " << target << "; " << runs << " runs each; Sondar's ICMP: "
        << backendName() << ", echo time-out " << timeoutMs << " ms" << Qt::endl;

    CountryTable countries(QCoreApplication::applicationDirPath() + QStringLiteral("/../app/country.txt"));
    Figures sondar{QStringLiteral("Sondar Trace (TTL 2.., names)"), {}};
    Figures traceroute{QStringLiteral("traceroute -I -n -q 1"), {}};
    Figures mtr{QStringLiteral("mtr -r -c 1"), {}};
    for (int run = 0; run < runs; ++run) {
        if (const auto ms = sondarTrace(countries))
            sondar.ms << *ms;
        if (const auto ms = toolTrace(QStringLiteral("traceroute"),
                                      {QStringLiteral("-I"), QStringLiteral("-n"), QStringLiteral("-q"), QStringLiteral("1"), target}, target))
            traceroute.ms << *ms;
        if (const auto ms = toolTrace(QStringLiteral("mtr"), {QStringLiteral("-r"), QStringLiteral("-c"), QStringLiteral("1"), target},
                                      QStringLiteral("target.lab.example")))
            mtr.ms << *ms;
    }
    print(sondar, sondar, runs);
    print(traceroute, sondar, runs);
    print(mtr, sondar, runs);
    out << "The tools' times include starting their process; mtr's include its wait for late replies." << Qt::endl;
    return 0;
}
