#pragma once

#include <QString>
#include <QStringList>

// The hosts to choose from, kept in "hosts.ini" (section "HOST", keys "1".."n") in the program directory.
namespace hostlist {

QString filePath(const QString &programDir);

// Written when the file does not exist at start-up.
const QStringList &defaultHosts();

// The list in key order, up to the first key whose value is empty or absent; a missing file
// is first created with the defaults. A list longer than the section buffer ends where the buffer does.
QStringList load(const QString &programDir);

// Rewrites the section from the entries, keys "1".."n" in order, so the file mirrors the list.
// False when some write failed.
bool save(const QString &programDir, const QStringList &entries);

} // namespace hostlist
