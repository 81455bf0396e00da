#include "app/pingcommand.h"

#include "app/terminalmonitor.h"
#include "core/levelscale.h"
#include "core/ping.h"
#include "core/pinglog.h"
#include "core/pollingcycle.h"
#include "core/productinfo.h"
#include "core/retrytime.h"
#include "core/smsalerts.h"
#include "core/textnumbers.h"
#include "core/trappedprocedure.h"
#include "platform/clock.h"
#include "platform/icmpecho.h"
#include "platform/settingsstore.h"
#include "platform/smsgateway.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <functional>
#include <cstdio>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int interruptPipe[2] = {-1, -1};

void onInterrupt(int)
{
    const char byte = 1;
    [[maybe_unused]] const auto written = ::write(interruptPipe[1], &byte, 1);
}

// Ctrl-C ends the run after the sample in flight, like closing the window.
void quitOnInterrupt(QObject *owner, const std::function<void()> &quit)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, interruptPipe) != 0)
        return;
    auto *notifier = new QSocketNotifier(interruptPipe[0], QSocketNotifier::Read, owner);
    QObject::connect(notifier, &QSocketNotifier::activated, owner, [quit] { quit(); });
    std::signal(SIGINT, onInterrupt);
    std::signal(SIGTERM, onInterrupt);
}

} // namespace

int runPingCommand(const PingCommandOptions &options, const Environment &env)
{
    const QString help = IcmpEcho::unavailableHelp();
    if (!help.isEmpty())
        std::fprintf(stderr, "%s\n", qPrintable(help));

    TrappedProcedure procedure(env.sink, QStringLiteral("f_Ping"), QStringLiteral("Form_Load"), productinfo::productName());
    LevelScale levels;
    procedure.step(3, [&] { levels.LoadLevelScale(env.settings); });
    PingLog log(env.programDir, env.logBaseName, env.settings, env.clock);
    if (!options.log)
        log.pause();

    QString period = QString::number(options.periodSeconds);
    if (options.periodSeconds <= 0)
        procedure.step(12, [&] {
            period = QString::number(textnumbers::toInteger(env.settings.GetSetting(
                QStringLiteral("Load"), QStringLiteral("TimeOut"), QStringLiteral("10"))));
        });

    TerminalMonitor monitor(options.host, stdout);
    Ping png;
    PollingCycle cycle(monitor, png, levels, log, env.clock, env.sink);
    SmsAlerts sms(env.settings, env.clock, env.sink, [&cycle] { return cycle.isMonitoring(); }, &SmsGateway::create);
    sms.setStartTime(env.clock.now());
    procedure.step(13, [&] { sms.InitSMS(); });
    cycle.setCheckSms([&sms](const QString &host, int value) { sms.CheckSMS(host, value); });
    // An alert on its way is delivered (or fails) before the program ends.
    const auto finish = [&sms] {
        if (sms.hasPendingSend())
            QObject::connect(&sms, &SmsAlerts::sendFinished, [] { QCoreApplication::quit(); });
        else
            QCoreApplication::quit();
    };
    int samples = 0;
    bool lastAnswered = false;
    QObject::connect(&cycle, &PollingCycle::sampleShown, &monitor, [&](int, const QString &levelName) {
        monitor.printSample(levelName);
        lastAnswered = levelName != QLatin1String("RED");
        if (options.count > 0 && ++samples >= options.count) {
            cycle.Command2_Click();
            finish();
        }
    });
    quitOnInterrupt(&monitor, [&] {
        cycle.Command2_Click();
        if (cycle.isBusy())
            QObject::connect(&cycle, &PollingCycle::sampleShown, &monitor, finish);
        else
            finish();
    });

    cycle.startHoldOff();
    cycle.Command1_Click(period);
    if (!cycle.isMonitoring()) {
        std::fprintf(stderr, "sondar: a period of %s seconds never probes\n", qPrintable(period));
        return 2;
    }
    QCoreApplication::exec();
    return lastAnswered ? 0 : 1;
}
