#include "core/cini.h"

#include "platform/profilefile.h"

cINI::cINI(QString filePath)
    : m_filePath(std::move(filePath))
{
}

QString cINI::GetVal(const QString &section, const QString &key) const
{
    const QString value = profilefile::readString(m_filePath, section, key);
    const qsizetype nul = value.indexOf(QChar(0));
    return nul < 0 ? value : value.left(nul);
}

QString cINI::GetSection(const QString &section) const
{
    return profilefile::readSection(m_filePath, section).join(QChar(0));
}

bool cINI::CreateSection(const QString &section, const QString &key, const QString &value)
{
    return profilefile::writeString(m_filePath, section, key, value);
}

bool cINI::DeleteSection(const QString &section)
{
    return profilefile::writeString(m_filePath, section, std::nullopt, std::nullopt);
}

bool cINI::DeleteKey(const QString &section, const QString &key)
{
    return profilefile::writeString(m_filePath, section, key, std::nullopt);
}

bool cINI::DeleteValue(const QString &section, const QString &key)
{
    return profilefile::writeString(m_filePath, section, key, QString());
}
