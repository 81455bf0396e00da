#include "platform/profilefile.h"

#include "platform/initext.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace profilefile {
namespace {

QString cString(const QString &text)
{
    const qsizetype nul = text.indexOf(QChar(0));
    return nul < 0 ? text : text.left(nul);
}

QByteArray readForLookup(const QString &path)
{
    // Only regular files: a pipe or a device would block or never end.
    if (!QFileInfo(path).isFile())
        return {};
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.read(MaxFileSize);
}

// The whole file for an edit, or nothing when it exists but cannot be read whole:
// rewriting it from a part would destroy the rest.
std::optional<QByteArray> readForEdit(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return QByteArray();
    if (!info.isFile() || info.size() > MaxFileSize)
        return std::nullopt;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QByteArray bytes = file.read(MaxFileSize + 1);
    if (bytes.size() > MaxFileSize || file.error() != QFileDevice::NoError)
        return std::nullopt;
    return bytes;
}

bool validSection(const QString &name)
{
    return !name.isEmpty() && !name.contains(QLatin1Char(']')) && !name.contains(QLatin1Char('\r'))
        && !name.contains(QLatin1Char('\n'));
}

bool validKey(const QString &name)
{
    return !name.isEmpty() && !name.contains(QLatin1Char('=')) && !name.contains(QLatin1Char('\r'))
        && !name.contains(QLatin1Char('\n')) && !name.startsWith(QLatin1Char('['))
        && !name.startsWith(QLatin1Char(';'));
}

QString oneLine(QString value)
{
    value.replace(QLatin1Char('\r'), QLatin1Char(' '));
    value.replace(QLatin1Char('\n'), QLatin1Char(' '));
    return value;
}

bool replaceFile(const QString &path, const QByteArray &content)
{
    if (content.size() > MaxFileSize)
        return false;
    // Unbuffered, so that a short write (disk full) shows in the count: buffered, the flush in
    // commit() takes a cut write for a success and renames the cut file over the old one.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return false;
    if (file.write(content) != content.size()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

} // namespace

QString readString(const QString &path, const QString &section, const QString &key, const QString &defaultValue)
{
    const IniText text(readForLookup(path));
    const auto value = text.value(cString(section), cString(key));
    return value.value_or(defaultValue).left(ValueBufferSize - 1);
}

QStringList readSection(const QString &path, const QString &section)
{
    const IniText text(readForLookup(path));
    QStringList entries;
    qsizetype room = SectionBufferSize - 1; // the NUL that closes the list
    for (const QString &entry : text.sectionEntries(cString(section))) {
        // Whole entries only: a host name cut in two would be a host that does not exist.
        if (entry.size() + 1 > room)
            break;
        entries << entry;
        room -= entry.size() + 1;
    }
    return entries;
}

bool writeString(const QString &path, const QString &section, const std::optional<QString> &key,
                 const std::optional<QString> &value)
{
    const QString sectionName = cString(section).trimmed();
    const QString keyName = key ? cString(*key).trimmed() : QString();
    if (!validSection(sectionName) || (key && !validKey(keyName)))
        return false;
    const auto content = readForEdit(path);
    if (!content)
        return false;
    IniText text(*content);
    bool changed = false;
    if (!key)
        changed = text.removeSection(sectionName);
    else if (!value)
        changed = text.removeKey(sectionName, keyName);
    else
        changed = text.setValue(sectionName, keyName, oneLine(cString(*value)));
    return !changed || replaceFile(path, text.content());
}

} // namespace profilefile
