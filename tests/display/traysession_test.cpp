#include "display/clssystray.h"
#include "resources/resourceicon.h"

#include <QApplication>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QToolTip>
#include <QWidget>

#include <gtest/gtest.h>

// The tray on a real X display: each TrayOnX11 case starts Xvfb (with the tray host tint2 or
// without one) and runs its TraySession case of this same executable there on the xcb platform.

namespace {

// Ends a program it started with a signal it can handle, so that Xvfb removes its lock file and socket.
struct Started {
    ~Started()
    {
        process.terminate();
        process.waitForFinished(5000);
    }
    QProcess process;
};

void runSession(bool withTray, const char *kind, const char *caseName)
{
    QStringList needed{QStringLiteral("Xvfb"), QStringLiteral("xwininfo"), QStringLiteral("xdotool"), QStringLiteral("import")};
    if (withTray)
        needed << QStringLiteral("tint2") << QStringLiteral("xprop");
    for (const QString &program : needed) {
        if (QStandardPaths::findExecutable(program).isEmpty())
            GTEST_SKIP() << program.toStdString() << " not installed (scripts/install-deps.sh)";
    }
    // Xvfb writes the number of the display it chose once it takes connections; -noreset keeps
    // what a client sets on the root window after that client has gone.
    Started server;
    server.process.start(QStringLiteral("Xvfb"), QStringLiteral("-displayfd 1 -noreset -screen 0 1024x768x24 -nolisten tcp").split(QLatin1Char(' ')));
    while (!server.process.canReadLine() && server.process.waitForReadyRead(15000)) {
    }
    const QByteArray display = server.process.readLine().trimmed();
    ASSERT_FALSE(display.isEmpty()) << "Xvfb did not start: " << server.process.readAllStandardError().toStdString();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), QLatin1Char(':') + QString::fromLatin1(display));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    // The tray of this display, not a notifier service that some session bus may offer.
    environment.remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));

    Started trayHost;
    QTemporaryDir dir;
    if (withTray) {
        // tint2 waits 15 s for a window manager to announce its desktops; there is none here.
        QProcess announce;
        announce.setProcessEnvironment(environment);
        announce.start(QStringLiteral("xprop"), QStringLiteral("-root -f _NET_NUMBER_OF_DESKTOPS 32c -set _NET_NUMBER_OF_DESKTOPS 1").split(QLatin1Char(' ')));
        ASSERT_TRUE(announce.waitForFinished(10000) && announce.exitCode() == 0);
        // A panel that is nothing but a system tray, along the bottom of the screen.
        QFile config(dir.filePath(QStringLiteral("tint2rc")));
        ASSERT_TRUE(config.open(QIODevice::WriteOnly));
        config.write("panel_items = S\npanel_size = 100% 32\npanel_position = bottom center horizontal\nsystray_icon_size = 24\n");
        config.close();
        trayHost.process.setProcessEnvironment(environment);
        trayHost.process.start(QStringLiteral("tint2"), {QStringLiteral("-c"), config.fileName()});
        ASSERT_TRUE(trayHost.process.waitForStarted(10000)) << "tint2 did not start";
    }

    environment.insert(QStringLiteral("SONDAR_TRAY_SESSION"), QLatin1String(kind));
    QProcess tests;
    tests.setProcessEnvironment(environment);
    tests.setProcessChannelMode(QProcess::MergedChannels);
    tests.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--gtest_filter=TraySession.") + QLatin1String(caseName)});
    EXPECT_TRUE(tests.waitForFinished(120000));
    const QString output = QString::fromLocal8Bit(tests.readAll());
    EXPECT_EQ(tests.exitStatus() == QProcess::NormalExit ? tests.exitCode() : -1, 0) << output.toStdString();
    EXPECT_TRUE(output.contains(QStringLiteral("[  PASSED  ] 1 test"))) << output.toStdString();
}

bool inSession(const char *kind)
{
    return qEnvironmentVariable("SONDAR_TRAY_SESSION") == QLatin1String(kind);
}

// What the X server says of a window, asked while this event loop keeps serving the window.
QByteArray run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, 20000))
        process.kill();
    process.waitForFinished();
    return process.readAllStandardOutput();
}

QString idOf(const QWidget *window)
{
    return QStringLiteral("0x") + QString::number(window->winId(), 16);
}

// A field of xwininfo about the window, with `tree` of its place among the windows.
QString field(const QWidget *window, const char *name, bool tree = false)
{
    QStringList arguments{QStringLiteral("-id"), idOf(window)};
    if (tree)
        arguments << QStringLiteral("-tree");
    const QString info = QString::fromLocal8Bit(run(QStringLiteral("xwininfo"), arguments));
    return QRegularExpression(QLatin1String(name) + QStringLiteral(":\\s+(\\S+)")).match(info).captured(1);
}

QColor centreOnScreen(const QWidget *window)
{
    const QImage image = QImage::fromData(run(QStringLiteral("import"), {QStringLiteral("-window"), idOf(window), QStringLiteral("png:-")}));
    return image.isNull() ? QColor() : image.pixelColor(image.width() / 2, image.height() / 2);
}

// The window through which Qt's tray icon sits in the tray.
QWidget *trayIconWindow()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() == QLatin1String("QSystemTrayIconSys"))
            return widget;
    }
    return nullptr;
}

} // namespace

TEST(TrayOnX11, MinimisedWindowGoesIntoTint2sTrayFollowsIconAndTipAndComesBackOnDoubleClick)
{
    runSession(true, "tray", "IntoTheTrayAndBack");
}

TEST(TrayOnX11, WithoutATrayHostTheMinimisedWindowStaysInTheTaskBar)
{
    runSession(false, "notray", "NoTrayHost");
}

namespace {

// The cases that run on the X display TrayOnX11 starts; registered only there, so they are
// neither listed nor skipped anywhere else.
void intoTheTrayAndBack()
{
    ASSERT_TRUE(QTest::qWaitFor(&clsSysTray::trayAvailable, 20000)) << "tint2 never took the tray";
    QWidget window;
    window.setWindowIcon(ResourceIcon::load(QStringLiteral("SALAT"))); // a bright green lamp
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    clsSysTray tray;
    tray.setSourceWindow(&window);
    QSignalSpy doubleClicks(&tray, &clsSysTray::LButtonDblClk);

    window.showMinimized();
    ASSERT_TRUE(tray.MinToSysTray());
    EXPECT_TRUE(QTest::qWaitFor([&] { return field(&window, "Map State") == QLatin1String("IsUnMapped"); }));
    QWidget *icon = nullptr;
    ASSERT_TRUE(QTest::qWaitFor([&] {
        return (icon = trayIconWindow()) && field(icon, "Parent window id", true) != field(icon, "Root window id", true);
    }, 10000)) << "tint2 never took the icon";
    EXPECT_TRUE(QTest::qWaitFor([&] { return centreOnScreen(icon) == QColor(Qt::green); })) << "the tray starts with the window's icon";

    tray.ChangeIcon(ResourceIcon::load(QStringLiteral("RED")));
    tray.ChangeToolTip(QStringLiteral("Sondar : No NET"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return centreOnScreen(icon) == QColor(Qt::red); }));
    const QString centre = QString::number(field(icon, "Absolute upper-left X").toInt() + field(icon, "Width").toInt() / 2)
        + QLatin1Char(' ') + QString::number(field(icon, "Absolute upper-left Y").toInt() + field(icon, "Height").toInt() / 2);
    // Never "--sync": xdotool then waits for a move that does not happen when the pointer is already there.
    run(QStringLiteral("xdotool"), QStringLiteral("mousemove %1").arg(centre).split(QLatin1Char(' ')));
    EXPECT_TRUE(QTest::qWaitFor([] { return QToolTip::isVisible() && QToolTip::text() == QStringLiteral("Sondar : No NET"); }))
        << "hovering the icon shows the new tip";

    run(QStringLiteral("xdotool"), QStringLiteral("mousemove %1 click --repeat 2 --delay 80 1").arg(centre).split(QLatin1Char(' ')));
    ASSERT_TRUE(QTest::qWaitFor([&] { return doubleClicks.count() == 1; }));
    EXPECT_TRUE(window.isVisible() && !window.isMinimized());
    EXPECT_TRUE(QTest::qWaitFor([&] { return field(&window, "Map State") == QLatin1String("IsViewable"); }));
    EXPECT_TRUE(QTest::qWaitFor([] { return !trayIconWindow() || !trayIconWindow()->isVisible(); })) << "the icon left the tray";
}

void noTrayHost()
{
    ASSERT_FALSE(clsSysTray::trayAvailable());
    QWidget window;
    window.setWindowIcon(ResourceIcon::load(QStringLiteral("A_")));
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    clsSysTray tray;
    tray.setSourceWindow(&window);

    window.showMinimized();
    EXPECT_FALSE(tray.MinToSysTray());
    EXPECT_TRUE(window.isVisible());
    QTest::qWait(200);
    EXPECT_EQ(field(&window, "Map State"), QStringLiteral("IsViewable")) << "the window was never withdrawn";
    EXPECT_EQ(trayIconWindow(), nullptr);
}

template<void (*body)()>
class SessionCase : public ::testing::Test
{
    void TestBody() override { body(); }
};

template<void (*body)()>
void registerIn(const char *kind, const char *name)
{
    if (inSession(kind))
        ::testing::RegisterTest("TraySession", name, nullptr, nullptr, __FILE__, __LINE__,
                                []() -> ::testing::Test * { return new SessionCase<body>; });
}

const bool sessionCasesRegistered = [] {
    registerIn<intoTheTrayAndBack>("tray", "IntoTheTrayAndBack");
    registerIn<noTrayHost>("notray", "NoTrayHost");
    return true;
}();

} // namespace
