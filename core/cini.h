#pragma once

#include <QString>

// An INI file reached through the profile-file functions; the path is its one field.
// Every operation goes to the file: nothing is cached.
class cINI
{
public:
    cINI() = default;
    explicit cINI(QString filePath);

    const QString &FilePath() const { return m_filePath; }
    void setFilePath(const QString &path) { m_filePath = path; }

    // The value cut at its first NUL; empty when absent.
    QString GetVal(const QString &section, const QString &key) const;
    // The section's key=value entries separated by NUL, without the closing NUL.
    QString GetSection(const QString &section) const;

    // The write operations answer false when the file was left unchanged by a failure.
    bool CreateSection(const QString &section, const QString &key, const QString &value);
    bool DeleteSection(const QString &section);
    bool DeleteKey(const QString &section, const QString &key);
    bool DeleteValue(const QString &section, const QString &key);

private:
    QString m_filePath;
};
