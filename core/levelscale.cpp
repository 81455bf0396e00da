#include "core/levelscale.h"

#include "core/textnumbers.h"
#include "platform/settingsstore.h"

namespace {

const QString loadSection = QStringLiteral("Load");
constexpr int32_t pureRed = 255;

} // namespace

int32_t LevelScale::BackScale::backColor(qsizetype k) const
{
    return textnumbers::toLong(textnumbers::val(textnumbers::item(BackColors, k)));
}

QStringList LevelScale::splitList(const QString &text)
{
    // Splitting an empty text gives no item at all, not one empty item.
    return text.isEmpty() ? QStringList() : text.split(QLatin1Char(';'));
}

void LevelScale::LoadLevelScale(const SettingsStore &settings)
{
    Values = splitList(settings.GetSetting(loadSection, QStringLiteral("PingValues"),
                                           QStringLiteral("200;400;600;800;1000;1200;1500;2000;3000")));
    Colors = splitList(
        settings.GetSetting(loadSection, QStringLiteral("PingColors"),
                            QStringLiteral("65280;49152;32768;8421376;8388608;16711680;16744576;8388736;12583104")));
}

int LevelScale::LevelIndexForIcon(int32_t timeMs) const
{
    for (int i = 0; i < 8; ++i) {
        if (timeMs < textnumbers::toInteger(textnumbers::item(Values, i)))
            return i;
    }
    // The last bound decides nothing here, yet it is read: it must exist and convert.
    static_cast<void>(textnumbers::toInteger(textnumbers::item(Values, 8)));
    return 8;
}

int32_t LevelScale::LevelColorForGraph(float time) const
{
    for (int i = 0; i < 9; ++i) {
        if (time < float(textnumbers::toInteger(textnumbers::item(Values, i))))
            return textnumbers::toLong(textnumbers::item(Colors, i));
    }
    return pureRed;
}

QString LevelScale::LevelName(int index)
{
    static const QStringList names{
        QStringLiteral("SALAT"),   QStringLiteral("GREEN"),   QStringLiteral("DARKGREEN"),
        QStringLiteral("CYAN"),    QStringLiteral("BLUE"),    QStringLiteral("DARKBLUE"),
        QStringLiteral("MAGENTA"), QStringLiteral("PURPLE"),  QStringLiteral("DARKRED"),
    };
    return textnumbers::item(names, index);
}

LevelScale::BackScale LevelScale::LoadBackScale(const SettingsStore &settings) const
{
    // The default is built before the store is asked, as an argument is, so a bad last bound
    // fails here even when the bands are stored.
    const QString &last = textnumbers::item(Values, Values.size() - 1);
    const QString defaultValues = last + QLatin1Char(';') + QString::number(textnumbers::toLong(last) / 2);

    BackScale scale;
    scale.BackLevel = textnumbers::toInteger(settings.GetSetting(loadSection, QStringLiteral("PingBackLevel"),
                                                                 QStringLiteral("2")));
    scale.BackValues = splitList(settings.GetSetting(loadSection, QStringLiteral("PingBackValues"), defaultValues));
    scale.BackColors = splitList(settings.GetSetting(loadSection, QStringLiteral("PingBackColors"),
                                                     QStringLiteral("-2147483624;16777152")));
    return scale;
}
