#include "whois/countrytable.h"

#include <QDir>
#include <QFile>

namespace {

const QString fileName = QStringLiteral("country.txt");

} // namespace

CountryTable::CountryTable(QString filePath)
    : m_filePath(std::move(filePath))
{
}

QString CountryTable::locate(const QString &programDir, const QString &executableDir)
{
    const QString own = QDir(programDir).filePath(fileName);
    if (!programDir.isEmpty() && QFile::exists(own))
        return own;
    const QString beside = QDir(executableDir).filePath(fileName);
    // An installed program keeps it with its other data: <prefix>/share/sondar beside <prefix>/bin.
    const QString installed = QDir(executableDir).filePath(QStringLiteral("../share/sondar/") + fileName);
    return QFile::exists(beside) || !QFile::exists(installed) ? beside : QDir::cleanPath(installed);
}

QString CountryTable::lookup(const QString &code)
{
    if (code.isEmpty() || !QFile::exists(m_filePath))
        return {};
    if (m_rows.isEmpty())
        load();
    const QString wanted = code.toUpper();
    QString name;
    for (const Row &row : std::as_const(m_rows)) {
        if (row.code == wanted)
            name = row.name;
    }
    return name;
}

void CountryTable::load()
{
    QFile file(m_filePath);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).remove(QLatin1Char('\n'));
        const QStringList fields = line.split(QLatin1Char(';'));
        m_rows.append({fields.value(0), fields.value(1)});
    }
}
