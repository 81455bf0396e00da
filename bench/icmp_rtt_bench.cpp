// Round-trip error of the ICMP echo handle against the test lab's delayed responder: for each
// backend and each delay, N echoes, and how far the measured time lies from the delay.
// Run inside the lab: tests/netlab/lab.sh exec <build>/bench/icmp_rtt_bench [N]

#include "platform/icmpecho.h"
#include "tests/support/netlab.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>

#include <sys/utsname.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace {

QString cpuModel()
{
    QFile cpuinfo(QStringLiteral("/proc/cpuinfo"));
    if (!cpuinfo.open(QIODevice::ReadOnly))
        return QStringLiteral("unknown");
    for (const QByteArray &line : cpuinfo.readAll().split('\n')) {
        if (line.startsWith("model name"))
            return QString::fromUtf8(line.mid(line.indexOf(':') + 1).trimmed());
    }
    return QStringLiteral("unknown");
}

void printMachine()
{
    utsname name{};
    uname(&name);
    std::printf("machine: %s %s %s %s %s\n", name.sysname, name.nodename, name.release, name.version, name.machine);
    std::printf("cpu: %s, %u hardware threads\n", qPrintable(cpuModel()), std::thread::hardware_concurrency());
}

// The lab's addresses mean something only inside its client namespace; elsewhere they would
// leave the machine.
QString whyNotInLab()
{
    const QString told = qEnvironmentVariable("SONDAR_NETLAB_SKIP");
    if (!told.isEmpty())
        return told;
    QProcess identify;
    identify.start(QStringLiteral("ip"), {QStringLiteral("netns"), QStringLiteral("identify")});
    if (!identify.waitForFinished(5000))
        return QStringLiteral("cannot tell the network namespace (ip netns identify)");
    if (identify.readAllStandardOutput().trimmed() != "sdl-client")
        return QStringLiteral("not inside the test lab: run it through tests/netlab/lab.sh exec");
    return {};
}

const char *nameOf(IcmpEcho::Backend backend)
{
    switch (backend) {
    case IcmpEcho::Backend::PingSocket:
        return "ping socket";
    case IcmpEcho::Backend::RawSocket:
        return "raw socket";
    case IcmpEcho::Backend::Auto:
        break;
    }
    return "none";
}

void measure(IcmpEcho::Backend backend, netlab::Address address, int delayMs, int samples)
{
    const QByteArray payload = QByteArrayLiteral("Echo this String of data");
    double sumUs = 0;
    double maxUs = 0;
    double sumMsError = 0;
    int maxMsError = 0;
    int answered = 0;
    for (int i = 0; i < samples; ++i) {
        IcmpEcho echo(backend);
        const IcmpEcho::Result result = echo.sendEcho(address.value, payload, 255, delayMs + 1000);
        if (result.replyCount != 1 || result.reply.status != IcmpEcho::Success)
            continue;
        ++answered;
        const double errorUs = double(result.reply.roundTripUs) - delayMs * 1000.0;
        sumUs += errorUs;
        maxUs = std::max(maxUs, std::abs(errorUs));
        const int msError = int(result.reply.roundTripMs) - delayMs;
        sumMsError += msError;
        maxMsError = std::max(maxMsError, std::abs(msError));
    }
    if (answered == 0) {
        std::printf("  %-11s %5d ms: no reply in %d tries\n", nameOf(backend), delayMs, samples);
        return;
    }
    std::printf("  %-11s %5d ms: n=%-3d mean error %+8.1f us (%+.3f ms), max |error| %7.1f us (%.3f ms);"
                " whole-ms field: mean %+.2f ms, max |error| %d ms\n",
                nameOf(backend), delayMs, answered, sumUs / answered, sumUs / answered / 1000.0, maxUs,
                maxUs / 1000.0, sumMsError / answered, maxMsError);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int samples = argc > 1 ? std::max(1, std::atoi(argv[1])) : 20;
    printMachine();
    const QString notInLab = whyNotInLab();
    if (!notInLab.isEmpty()) {
        std::printf("icmp_rtt_bench: the test lab is not up here (%s); nothing measured\n", qPrintable(notInLab));
        return 1;
    }
    std::printf("default backend: %s\n", nameOf(IcmpEcho().backend()));
    std::printf("round-trip error against the lab responder, %d samples per delay:\n", samples);
    const std::pair<netlab::Address, int> delays[] = {
        {netlab::kReply, 0}, {netlab::kDelay1, 1}, {netlab::kDelay150, 150}, {netlab::kDelay1000, 1000}};
    for (const IcmpEcho::Backend backend : {IcmpEcho::Backend::PingSocket, IcmpEcho::Backend::RawSocket}) {
        if (!IcmpEcho(backend).isOpen()) {
            std::printf("  %-11s cannot be opened here\n", nameOf(backend));
            continue;
        }
        for (const auto &[address, delayMs] : delays)
            measure(backend, address, delayMs, samples);
    }
    return 0;
}
