#include "core/smssettings.h"

#include "core/textnumbers.h"
#include "core/trappedprocedure.h"
#include "platform/settingsstore.h"

namespace {

// Only blanks, as the settings were always trimmed: a tab typed into a field stays.
QString trimBlanks(const QString &text)
{
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last && text.at(first) == QLatin1Char(' '))
        ++first;
    while (last > first && text.at(last - 1) == QLatin1Char(' '))
        --last;
    return text.mid(first, last - first);
}

} // namespace

void SmsSettings::load(const SettingsStore &store, TrappedProcedure &procedure)
{
    int line = 0;
    const auto number = [&](int16_t &field, const char *key, const char *defaultValue) {
        procedure.step(++line, [&] {
            field = textnumbers::toInteger(
                store.GetSetting(section(), QString::fromLatin1(key), QString::fromLatin1(defaultValue)));
        });
    };
    const auto text = [&](QString &field, const char *key, const QString &defaultValue, bool trim) {
        procedure.step(++line, [&] {
            const QString value = store.GetSetting(section(), QString::fromLatin1(key), defaultValue);
            field = trim ? trimBlanks(value) : value;
        });
    };

    number(SendSMS, "SendSMS", "0");
    number(IfGreater, "IfGreater", "1");
    number(Greater, "Greater", "100");
    number(IfLess, "IfLess", "0");
    number(Less, "Less", "100");
    number(IfTimeout, "IfTimeout", "0");
    text(ICQUIN, "ICQUIN", {}, true);
    text(ICQPass, "ICQPass", {}, true);
    text(MobileNumber, "MobileNumber", {}, true);
    text(CountryCode, "CountryCode", {}, true);
    text(Carrier, "Carrier", {}, true);
    text(Template, "Template", QStringLiteral("@HOST@:\r\nPing time - @PING@"), false);
    text(TimeoutTemplate, "TimeoutTemplate", QStringLiteral("@HOST@:\r\nRequest timeout."), false);
    number(OnceTime, "OnceTime", "5");
    text(GatewayURL, "GatewayURL", {}, true);
    Q_ASSERT(line == lastLoadLine);
}

bool SmsSettings::isComplete() const
{
    return SendSMS != 0 && MobileNumber.size() >= 3 && !Carrier.isEmpty() && !CountryCode.isEmpty()
        && ICQUIN.size() >= 4 && !ICQPass.isEmpty();
}
