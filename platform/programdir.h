#pragma once

#include <QString>

// The folder that holds hosts.ini, the logs, country.txt and the analysis folder.
namespace programdir {

// --dir PATH wins, then $SONDAR_HOME, then the executable's folder when it is writable,
// else ~/.local/share/Sondar. The folder is created when missing; empty when none can be had.
QString resolve(const QString &dirOption, const QString &executableDir);

// The executable's file name without its extension ("sondar"): the common log's base name.
QString executableBaseName(const QString &executablePath);

} // namespace programdir
