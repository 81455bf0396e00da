#pragma once

#include "core/levelscale.h"
#include "platform/settingsstore.h"

#include <QTemporaryDir>

#include <initializer_list>
#include <utility>

// A real settings file in a temporary folder with the given "Load" keys, and the level scale read from it.
struct GraphSettings {
    explicit GraphSettings(std::initializer_list<std::pair<const char *, const char *>> loadKeys = {})
        : store(dir.filePath(QStringLiteral("sondar.ini")))
    {
        for (const auto &[key, value] : loadKeys)
            store.SaveSetting(QStringLiteral("Load"), QString::fromLatin1(key), QString::fromLatin1(value));
        levels.LoadLevelScale(store);
    }

    QTemporaryDir dir;
    SettingsStore store;
    LevelScale levels;
};
