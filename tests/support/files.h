#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

// Whole-file reads and writes for tests that check what the program left on disk.
namespace testfiles {

inline QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline bool write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace testfiles
