#include "app/windowcommand.h"

#include "core/productinfo.h"
#include "core/window/f_ping.h"
#include "core/window/messageboxsink.h"
#include "platform/clock.h"
#include "platform/icmpecho.h"
#include "platform/programdir.h"
#include "platform/settingsstore.h"

#include <QApplication>

#include <cstdio>

int runWindow(int argc, char **argv, const QString &dirOption)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(productinfo::productName());
    QApplication::setOrganizationName(productinfo::productName());
    QApplication::setApplicationVersion(productinfo::version());

    MessageBoxSink sink;
    const QString dir = programdir::resolve(dirOption, QCoreApplication::applicationDirPath());
    if (dir.isEmpty()) {
        sink.showMessage(MessageSink::Icon::Critical,
                         QStringLiteral("Cannot use the program directory ") + dirOption, productinfo::productName());
        return 2;
    }
    SettingsStore settings;
    SystemClock clock;
    const Environment env{settings, clock, sink, dir, programdir::executableBaseName(QCoreApplication::applicationFilePath())};

    f_Ping window(env);
    sink.setParent(&window);
    // Closing from the tray menu closes a hidden window, which alone would not end the program.
    QObject::connect(&window, &f_Ping::unloaded, &app, &QCoreApplication::quit, Qt::QueuedConnection);
    window.Form_Load();
    window.show();
    const QString help = IcmpEcho::unavailableHelp();
    if (!help.isEmpty())
        sink.showMessage(MessageSink::Icon::Warning, help, productinfo::productName());
    return app.exec();
}
