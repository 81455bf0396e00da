#include "display/clssystray.h"

#include <QWidget>

#include <functional>

#include <gtest/gtest.h>

namespace {

// The events a tray raised, by name, in the order they came.
void recordEvents(clsSysTray &tray, QStringList &raised)
{
    const std::pair<void (clsSysTray::*)(), const char *> events[] = {
        {&clsSysTray::LButtonDblClk, "LButtonDblClk"}, {&clsSysTray::LButtonDown, "LButtonDown"},
        {&clsSysTray::LButtonUp, "LButtonUp"},         {&clsSysTray::RButtonDblClk, "RButtonDblClk"},
        {&clsSysTray::RButtonDown, "RButtonDown"},     {&clsSysTray::RButtonUp, "RButtonUp"},
    };
    for (const auto &[signal, name] : events)
        QObject::connect(&tray, signal, &tray, [&raised, name = name] { raised << QLatin1String(name); });
}

QSystemTrayIcon *trayIconOf(clsSysTray &tray)
{
    return tray.findChild<QSystemTrayIcon *>();
}

} // namespace

TEST(clsSysTray, EachMouseMessageAndDesktopActivationRaisesItsEventAndOthersNone)
{
    auto raisedBy = [](const std::function<void(clsSysTray &)> &send) {
        clsSysTray tray;
        QStringList raised;
        recordEvents(tray, raised);
        send(tray);
        return raised;
    };
    auto only = [](const char *event) { return event ? QStringList{QLatin1String(event)} : QStringList(); };
    const std::pair<int32_t, const char *> messages[] = {
        {513, "LButtonDown"}, {514, "LButtonUp"}, {515, "LButtonDblClk"}, {516, "RButtonDown"}, {517, "RButtonUp"},
        {518, "RButtonDblClk"}, {512, nullptr},   {519, nullptr},         {0, nullptr},
    };
    for (const auto &[message, event] : messages)
        EXPECT_EQ(raisedBy([&](clsSysTray &tray) { tray.trayMessage(message); }), only(event)) << "message " << message;
    const std::pair<QSystemTrayIcon::ActivationReason, const char *> activations[] = {
        {QSystemTrayIcon::Trigger, "LButtonUp"}, {QSystemTrayIcon::DoubleClick, "LButtonDblClk"},
        {QSystemTrayIcon::Context, "RButtonUp"}, {QSystemTrayIcon::MiddleClick, nullptr},
    };
    for (const auto &[reason, event] : activations)
        EXPECT_EQ(raisedBy([&](clsSysTray &tray) { emit trayIconOf(tray)->activated(reason); }), only(event)) << "reason " << reason;
}

TEST(clsSysTray, MessageArrivingWhileAnEventIsHandledIsDropped)
{
    clsSysTray tray;
    QStringList raised;
    recordEvents(tray, raised);
    QObject::connect(&tray, &clsSysTray::RButtonUp, &tray, [&tray] { tray.trayMessage(513); });
    tray.trayMessage(517);
    tray.trayMessage(513); // the handler has returned: the flag is down again
    EXPECT_EQ(raised, (QStringList{QStringLiteral("RButtonUp"), QStringLiteral("LButtonDown")}));
}

TEST(clsSysTray, LeftDoubleClickRestoresTheWindowAndRemovesTheIconUnlessDefaultDblClkIsOff)
{
    for (const bool restores : {true, false}) {
        QWidget window;
        window.setWindowIcon(QIcon(QPixmap(16, 16)));
        clsSysTray tray;
        tray.setSourceWindow(&window);
        if (!restores)
            tray.setDefaultDblClk(false); // it restores unless told not to
        window.showMinimized();
        window.hide(); // as it is while in the tray
        tray.IconInSysTray();
        QStringList raised;
        recordEvents(tray, raised);

        tray.trayMessage(515);
        EXPECT_EQ(window.isVisible(), restores);
        EXPECT_EQ(window.isMinimized(), !restores);
        EXPECT_EQ(trayIconOf(tray)->isVisible(), !restores);
        EXPECT_EQ(raised, QStringList{QStringLiteral("LButtonDblClk")});
    }
}

TEST(clsSysTray, ToolTipFieldIsSixtyFourCharactersWithANulUnderSixtyFourAndTheTrayShowsAtMostSixtyThree)
{
    const std::tuple<int, int, int> cases[] = {{10, 10, 10}, {63, 63, 63}, {64, -1, 63}, {100, -1, 63}}; // length, NUL at, shown
    for (const auto &[length, nulAt, shown] : cases) {
        QString text;
        for (int i = 0; i < length; ++i)
            text += QChar(u'a' + i % 26);
        clsSysTray tray;
        tray.setToolTip(text);
        const QString field = tray.notifyData().szTip;
        EXPECT_EQ(field.size(), 64) << length;
        EXPECT_TRUE(field.startsWith(text.left(64))) << length;
        EXPECT_EQ(field.indexOf(QChar(0)), nulAt) << length;
        EXPECT_EQ(field.count(QLatin1Char(' ')), std::max(0, 63 - length)) << length;
        EXPECT_EQ(trayIconOf(tray)->toolTip(), text.left(shown)) << length;
        EXPECT_EQ(tray.ToolTip(), text) << length;
    }
}

TEST(clsSysTray, ChangeToolTipRenamesTheWindowOnlyWhileItIsMinimised)
{
    QWidget window;
    window.setWindowTitle(QStringLiteral("Sondar"));
    clsSysTray tray;
    tray.setSourceWindow(&window);
    window.show();
    tray.ChangeToolTip(QStringLiteral("Sondar : 150ms"));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Sondar"));
    window.showMinimized();
    tray.ChangeToolTip(QStringLiteral("Sondar : No NET"));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Sondar : No NET"));
}
