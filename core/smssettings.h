#pragma once

#include <QString>

#include <cstdint>

class SettingsStore;
class TrappedProcedure;

// The SMS settings of section "SMS" as InitSMS holds them. A field that fails to load keeps
// the value it had, as a failed assignment would leave it.
struct SmsSettings {
    int16_t SendSMS = 0;
    int16_t IfGreater = 0;
    int16_t Greater = 0;
    int16_t IfLess = 0;
    int16_t Less = 0;
    int16_t IfTimeout = 0;
    QString ICQUIN;
    QString ICQPass;
    QString MobileNumber;
    QString CountryCode;
    QString Carrier;
    QString Template;
    QString TimeoutTemplate;
    int16_t OnceTime = 0;
    QString GatewayURL;

    // Reads every key with its default as one step of the caller's procedure, lines 1 to
    // lastLoadLine in the order above; texts but the templates lose their outer blanks.
    void load(const SettingsStore &store, TrappedProcedure &procedure);
    static constexpr int lastLoadLine = 15;

    // Enough to log in and address a phone; GatewayURL is checked by creating the component.
    bool isComplete() const;

    static QString section() { return QStringLiteral("SMS"); }
};
