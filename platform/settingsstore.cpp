#include "platform/settingsstore.h"

#include <QSettings>

SettingsStore::SettingsStore()
    : m_settings(std::make_unique<QSettings>(QStringLiteral("Sondar"), QStringLiteral("Sondar")))
{
}

SettingsStore::SettingsStore(const QString &iniPath)
    : m_settings(std::make_unique<QSettings>(iniPath, QSettings::IniFormat))
{
}

SettingsStore::~SettingsStore() = default;

QString SettingsStore::GetSetting(const QString &section, const QString &key, const QString &defaultValue) const
{
    // Another instance may have saved since we last looked; the store is the only truth.
    m_settings->sync();
    const QVariant value = m_settings->value(section + QLatin1Char('/') + key);
    if (!value.isValid())
        return defaultValue;
    // A hand-edited INI value with an unquoted comma reads back as a list.
    if (value.userType() == QMetaType::QStringList)
        return value.toStringList().join(QStringLiteral(", "));
    return value.toString();
}

void SettingsStore::SaveSetting(const QString &section, const QString &key, const QString &value)
{
    m_settings->setValue(section + QLatin1Char('/') + key, value);
    m_settings->sync();
}

QString SettingsStore::fileName() const
{
    return m_settings->fileName();
}
