#pragma once

#include <QString>

#include <memory>

class QSettings;

// The per-user settings store: text values by section and key under the application "Sondar".
// A missing key yields the caller's default; every save reaches the disk before it returns.
class SettingsStore
{
public:
    // The user's store (organisation and application "Sondar").
    SettingsStore();
    // A store kept in the given INI file, for tests and portable set-ups.
    explicit SettingsStore(const QString &iniPath);
    ~SettingsStore();

    QString GetSetting(const QString &section, const QString &key, const QString &defaultValue = {}) const;
    void SaveSetting(const QString &section, const QString &key, const QString &value);

    QString fileName() const;

private:
    std::unique_ptr<QSettings> m_settings;
};
