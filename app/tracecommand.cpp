#include "app/tracecommand.h"

#include "platform/icmpecho.h"
#include "trace/trace.h"
#include "trace/tracegrid.h"
#include "whois/countrytable.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QStandardItemModel>
#include <QTextStream>

#include <csignal>
#include <fcntl.h>
#include <optional>
#include <unistd.h>

namespace {

int interruptPipe[2] = {-1, -1};

void onInterrupt(int)
{
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = write(interruptPipe[1], &byte, 1);
}

// Ctrl-C sets Cancelled, through a pipe because a signal handler may not touch Qt. The trace
// notices it before its next echo; a second Ctrl-C ends the program the usual way, for when an
// echo in flight takes long.
class InterruptCancels
{
public:
    explicit InterruptCancels(Trace &trace)
    {
        if (pipe2(interruptPipe, O_CLOEXEC | O_NONBLOCK) != 0)
            return;
        m_notifier.emplace(interruptPipe[0], QSocketNotifier::Read);
        QObject::connect(&*m_notifier, &QSocketNotifier::activated, &trace, [this, &trace] {
            char byte = 0;
            while (read(interruptPipe[0], &byte, 1) > 0) {
            }
            restoreHandler();
            trace.setCancelled(true);
        });
        struct sigaction action {};
        action.sa_handler = onInterrupt;
        sigemptyset(&action.sa_mask);
        m_installed = sigaction(SIGINT, &action, &m_previous) == 0;
    }

    ~InterruptCancels()
    {
        restoreHandler();
        m_notifier.reset();
        for (int &fd : interruptPipe) {
            if (fd >= 0)
                close(fd);
            fd = -1;
        }
    }

    InterruptCancels(const InterruptCancels &) = delete;
    InterruptCancels &operator=(const InterruptCancels &) = delete;

private:
    void restoreHandler()
    {
        if (m_installed)
            sigaction(SIGINT, &m_previous, nullptr);
        m_installed = false;
    }

    std::optional<QSocketNotifier> m_notifier;
    struct sigaction m_previous {};
    bool m_installed = false;
};

} // namespace

int runTraceCommand(const QString &host, int timeoutMs, const QString &programDir)
{
    static int argc = 1;
    static char name[] = "sondar";
    static char *argv[] = {name, nullptr};
    std::optional<QCoreApplication> ownApplication;
    if (!QCoreApplication::instance())
        ownApplication.emplace(argc, argv);

    QTextStream out(stdout);
    QTextStream err(stderr);
    if (const QString help = IcmpEcho::unavailableHelp(); !help.isEmpty()) {
        err << help << Qt::endl;
        return 2;
    }

    CountryTable countries(CountryTable::locate(programDir, QCoreApplication::applicationDirPath()));
    Trace trace(countries);
    QObject::connect(&trace, &Trace::LogString, &trace, [&out](const QString &line) { out << line << Qt::endl; });
    QStandardItemModel grid;
    {
        const InterruptCancels interrupt(trace);
        trace.setHostName(host);
        trace.DoTrace(&grid, timeoutMs);
    }

    out << Qt::endl;
    for (const QString &line : tracegrid::toText(grid))
        out << line << Qt::endl;
    return trace.logString() == QStringLiteral("Route Trace has Completed") ? 0 : 1;
}
