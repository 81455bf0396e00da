#include "platform/programdir.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace programdir {
namespace {

QString usable(const QString &path)
{
    if (path.isEmpty() || !QDir().mkpath(path))
        return {};
    return QDir(path).canonicalPath();
}

bool writable(const QString &dir)
{
    const QFileInfo info(dir);
    return info.isDir() && info.isWritable();
}

} // namespace

QString resolve(const QString &dirOption, const QString &executableDir)
{
    if (!dirOption.isEmpty())
        return usable(dirOption);
    const QString home = qEnvironmentVariable("SONDAR_HOME");
    if (!home.isEmpty())
        return usable(home);
    if (writable(executableDir))
        return QDir(executableDir).canonicalPath();
    return usable(QDir::homePath() + QStringLiteral("/.local/share/Sondar"));
}

QString executableBaseName(const QString &executablePath)
{
    return QFileInfo(executablePath).completeBaseName();
}

} // namespace programdir
