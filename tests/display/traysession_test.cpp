#include "display/clssystray.h"
#include "resources/resourceicon.h"

#include "xsession.h"

#include <QApplication>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>
#include <QWidget>

#include <gtest/gtest.h>

// The tray on a real X display: each TrayOnX11 case starts Xvfb (with the tray host tint2 or
// without one) and runs its TraySession case of this same executable there on the xcb platform.

namespace {

void runSession(bool withTray, const char *kind, const char *caseName)
{
    const QString missing = XSession::missingPrograms(withTray);
    if (!missing.isEmpty())
        GTEST_SKIP() << missing.toStdString();
    XSession session;
    QString error;
    ASSERT_TRUE(session.start(withTray, &error)) << error.toStdString();
    QString output;
    EXPECT_EQ(session.runTests(QStringLiteral("TraySession.") + QLatin1String(caseName), QLatin1String(kind), &output), 0)
        << output.toStdString();
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

// Its attributes, or with `tree` its place among the windows.
QString xwininfo(const QWidget *window, bool tree = false)
{
    QStringList arguments{QStringLiteral("-id"), idOf(window)};
    if (tree)
        arguments << QStringLiteral("-tree");
    return QString::fromLocal8Bit(run(QStringLiteral("xwininfo"), arguments));
}

QString field(const QString &info, const char *name)
{
    return QRegularExpression(QLatin1String(name) + QStringLiteral(":\\s+(\\S+)")).match(info).captured(1);
}

bool embedded(const QWidget *window)
{
    const QString info = xwininfo(window, true);
    return field(info, "Parent window id") != field(info, "Root window id");
}

QColor centreOnScreen(const QWidget *window)
{
    const QImage image =
        QImage::fromData(run(QStringLiteral("import"), {QStringLiteral("-window"), idOf(window), QStringLiteral("png:-")}));
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

TEST(TraySession, IntoTheTrayAndBack)
{
    if (!inSession("tray"))
        GTEST_SKIP() << "runs on the X display that TrayOnX11 starts";
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
    EXPECT_TRUE(QTest::qWaitFor([&] { return field(xwininfo(&window), "Map State") == QLatin1String("IsUnMapped"); }));
    QWidget *icon = nullptr;
    ASSERT_TRUE(QTest::qWaitFor([&] { return (icon = trayIconWindow()) && embedded(icon); }, 10000)) << "tint2 never took the icon";
    EXPECT_TRUE(QTest::qWaitFor([&] { return centreOnScreen(icon) == QColor(Qt::green); })) << "the tray starts with the window's icon";

    tray.ChangeIcon(ResourceIcon::load(QStringLiteral("RED")));
    tray.ChangeToolTip(QStringLiteral("Sondar : No NET"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return centreOnScreen(icon) == QColor(Qt::red); }));
    const QString info = xwininfo(icon);
    const QString centre = QString::number(field(info, "Absolute upper-left X").toInt() + field(info, "Width").toInt() / 2)
        + QLatin1Char(' ') + QString::number(field(info, "Absolute upper-left Y").toInt() + field(info, "Height").toInt() / 2);
    // Never "--sync": xdotool then waits for a move that does not happen when the pointer is already there.
    run(QStringLiteral("xdotool"), QStringLiteral("mousemove %1").arg(centre).split(QLatin1Char(' ')));
    EXPECT_TRUE(QTest::qWaitFor([] { return QToolTip::isVisible() && QToolTip::text() == QStringLiteral("Sondar : No NET"); }))
        << "hovering the icon shows the new tip";

    run(QStringLiteral("xdotool"), QStringLiteral("mousemove %1 click --repeat 2 --delay 80 1").arg(centre).split(QLatin1Char(' ')));
    ASSERT_TRUE(QTest::qWaitFor([&] { return doubleClicks.count() == 1; }));
    EXPECT_TRUE(window.isVisible() && !window.isMinimized());
    EXPECT_TRUE(QTest::qWaitFor([&] { return field(xwininfo(&window), "Map State") == QLatin1String("IsViewable"); }));
    EXPECT_TRUE(QTest::qWaitFor([] { return !trayIconWindow() || !trayIconWindow()->isVisible(); })) << "the icon left the tray";
}

TEST(TraySession, NoTrayHost)
{
    if (!inSession("notray"))
        GTEST_SKIP() << "runs on the X display that TrayOnX11 starts";
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
    EXPECT_EQ(field(xwininfo(&window), "Map State"), QStringLiteral("IsViewable")) << "the window was never withdrawn";
    EXPECT_EQ(trayIconWindow(), nullptr);
}
