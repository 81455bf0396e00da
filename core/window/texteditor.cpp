#include "core/window/texteditor.h"

#include <QDesktopServices>
#include <QGuiApplication>
#include <QProcess>
#include <QUrl>

namespace texteditor {
namespace {

bool hasDesktop()
{
    const QString platform = QGuiApplication::platformName();
    if (platform == QLatin1String("offscreen") || platform == QLatin1String("minimal"))
        return false;
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

} // namespace

bool open(const QString &path)
{
    QString editor = qEnvironmentVariable("VISUAL");
    if (editor.isEmpty())
        editor = qEnvironmentVariable("EDITOR");
    if (hasDesktop() || editor.isEmpty())
        return QDesktopServices::openUrl(QUrl::fromLocalFile(path));
    // The variable may carry arguments ("code -w"); the path goes last.
    QStringList command = QProcess::splitCommand(editor);
    if (command.isEmpty())
        return false;
    const QString program = command.takeFirst();
    return QProcess::startDetached(program, command << path);
}

} // namespace texteditor
