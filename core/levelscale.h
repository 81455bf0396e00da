#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>

class SettingsStore;

// The nine levels that turn a round-trip time into a colour, and the background bands of the
// graph. The lists stay text as split from the settings and are converted at each use, so a bad
// item fails (RuntimeError: subscript out of range, type mismatch, overflow) only when a lookup
// reaches it, and the caller's trapped procedure reports it.
class LevelScale
{
public:
    struct BackScale {
        int16_t BackLevel = 0;
        QStringList BackValues;
        QStringList BackColors;

        // Band colour k: a numeric-value conversion of the text, then a long, so "-2147483624"
        // is the system colour reference 0x80000018.
        int32_t backColor(qsizetype k) const;
    };

    QStringList Values; // bounds in ms, read as 16-bit integers
    QStringList Colors; // colour values 0x00BBGGRR, read as 32-bit integers

    void LoadLevelScale(const SettingsStore &settings);

    // 0..8. A time at or above Values[7] is level 8 whatever Values[8] says, but Values[8] is
    // still read and must convert. The caller names a lost reply "RED" without asking.
    int LevelIndexForIcon(int32_t timeMs) const;

    // The colour of the first level whose bound is above the time; at or above the last bound pure red.
    int32_t LevelColorForGraph(float time) const;

    static QString LevelName(int index);

    // Read anew at each rebuild of the graph; the bounds default to the last level bound and its half.
    BackScale LoadBackScale(const SettingsStore &settings) const;

    static QStringList splitList(const QString &text);
};
