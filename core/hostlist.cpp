#include "core/hostlist.h"

#include "core/cini.h"

#include <QFileInfo>
#include <QHash>

namespace hostlist {
namespace {

const QString hostSection = QStringLiteral("HOST");

} // namespace

QString filePath(const QString &programDir)
{
    return programDir + QStringLiteral("/hosts.ini");
}

const QStringList &defaultHosts()
{
    static const QStringList hosts{
        QStringLiteral("www.google.com"), QStringLiteral("www.wikipedia.org"), QStringLiteral("www.debian.org"),
        QStringLiteral("www.kernel.org"), QStringLiteral("www.qt.io"), QStringLiteral("www.mozilla.org"),
    };
    return hosts;
}

QStringList load(const QString &programDir)
{
    const QString path = filePath(programDir);
    cINI ini(path);
    if (!QFileInfo::exists(path)) {
        for (qsizetype i = 0; i < defaultHosts().size(); ++i)
            ini.CreateSection(hostSection, QString::number(i + 1), defaultHosts().at(i));
    }
    // One read of the section rather than one file read per key: a hand-made file with
    // thousands of keys must not cost thousands of reads of the whole file at start-up.
    QHash<QString, QString> values;
    const QStringList entries = ini.GetSection(hostSection).split(QChar(0));
    for (const QString &entry : entries) {
        const qsizetype equals = entry.indexOf(QLatin1Char('='));
        if (equals > 0 && !values.contains(entry.left(equals)))
            values.insert(entry.left(equals), entry.mid(equals + 1));
    }
    QStringList hosts;
    for (int n = 1;; ++n) {
        const QString value = values.value(QString::number(n));
        if (value.isEmpty())
            break;
        hosts << value;
    }
    return hosts;
}

bool save(const QString &programDir, const QStringList &entries)
{
    const QString path = filePath(programDir);
    cINI ini(path);
    bool written = true;
    if (QFileInfo::exists(path))
        written = ini.DeleteSection(hostSection);
    for (qsizetype i = 0; i < entries.size(); ++i)
        written = ini.CreateSection(hostSection, QString::number(i + 1), entries.at(i)) && written;
    return written;
}

} // namespace hostlist
