#include "xsession.h"

#include <QCoreApplication>
#include <QFile>
#include <QStandardPaths>

namespace {

// A panel that is nothing but a system tray, along the bottom of the screen.
const char tint2Config[] = "panel_items = S\npanel_size = 100% 32\npanel_position = bottom center horizontal\n"
                           "systray_icon_size = 24\n";

} // namespace

XSession::~XSession()
{
    // Ended with a signal it can handle, Xvfb removes its lock file and socket.
    for (QProcess *process : {m_trayHost.get(), m_server.get()}) {
        if (process && process->state() != QProcess::NotRunning) {
            process->terminate();
            process->waitForFinished(5000);
        }
    }
}

QString XSession::missingPrograms(bool withTray)
{
    QStringList needed{QStringLiteral("Xvfb"), QStringLiteral("xwininfo"), QStringLiteral("xdotool"), QStringLiteral("import")};
    if (withTray)
        needed << QStringLiteral("tint2") << QStringLiteral("xprop");
    QStringList missing;
    for (const QString &program : needed) {
        if (QStandardPaths::findExecutable(program).isEmpty())
            missing << program;
    }
    return missing.isEmpty() ? QString() : missing.join(QStringLiteral(", ")) + QStringLiteral(" not installed (scripts/install-deps.sh)");
}

bool XSession::start(bool withTray, QString *error)
{
    // Xvfb writes the number of the display it chose once it takes connections; -noreset keeps
    // what a client sets on the root window after that client has gone.
    m_server = std::make_unique<QProcess>();
    m_server->start(QStringLiteral("Xvfb"), {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-noreset"),
                                             QStringLiteral("-screen"), QStringLiteral("0"), QStringLiteral("1024x768x24"),
                                             QStringLiteral("-nolisten"), QStringLiteral("tcp")});
    while (!m_server->canReadLine() && m_server->waitForReadyRead(15000)) {
    }
    const QByteArray number = m_server->readLine().trimmed();
    if (number.isEmpty()) {
        *error = QStringLiteral("Xvfb did not start: ") + QString::fromLocal8Bit(m_server->readAllStandardError());
        return false;
    }
    m_display = QLatin1Char(':') + QString::fromLatin1(number);
    if (!withTray)
        return true;

    // tint2 waits 15 s for a window manager to announce its desktops; there is none here.
    QProcess announce;
    announce.setProcessEnvironment(environment());
    announce.start(QStringLiteral("xprop"), {QStringLiteral("-root"), QStringLiteral("-f"), QStringLiteral("_NET_NUMBER_OF_DESKTOPS"),
                                             QStringLiteral("32c"), QStringLiteral("-set"), QStringLiteral("_NET_NUMBER_OF_DESKTOPS"),
                                             QStringLiteral("1")});
    QFile config(m_dir.filePath(QStringLiteral("tint2rc")));
    if (!announce.waitForFinished(10000) || announce.exitCode() != 0 || !config.open(QIODevice::WriteOnly)
        || config.write(tint2Config) < 0) {
        *error = QStringLiteral("could not prepare the display for tint2");
        return false;
    }
    config.close();
    m_trayHost = std::make_unique<QProcess>();
    m_trayHost->setProcessEnvironment(environment());
    m_trayHost->start(QStringLiteral("tint2"), {QStringLiteral("-c"), config.fileName()});
    if (!m_trayHost->waitForStarted(10000)) {
        *error = QStringLiteral("tint2 did not start");
        return false;
    }
    return true;
}

QProcessEnvironment XSession::environment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), m_display);
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    // The tray of this display, not a notifier service that some session bus may offer.
    environment.remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    return environment;
}

int XSession::runTests(const QString &testFilter, const QString &sessionKind, QString *output) const
{
    QProcessEnvironment environment = this->environment();
    environment.insert(QStringLiteral("SONDAR_TRAY_SESSION"), sessionKind);
    QProcess tests;
    tests.setProcessEnvironment(environment);
    tests.setProcessChannelMode(QProcess::MergedChannels);
    tests.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--gtest_filter=") + testFilter});
    const bool finished = tests.waitForFinished(120000);
    *output = QString::fromLocal8Bit(tests.readAll());
    return finished && tests.exitStatus() == QProcess::NormalExit ? tests.exitCode() : -1;
}
