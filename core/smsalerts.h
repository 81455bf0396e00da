#pragma once

#include "core/smssettings.h"

#include <QDateTime>
#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

class Clock;
class MessageSink;
class SettingsStore;
class SmsGateway;

// Makes the SMS component for a gateway URL; none when the URL cannot be used.
using SmsGatewayFactory = std::function<std::unique_ptr<SmsGateway>(const QString &url)>;

// The SMS alerts of the main window: sends a message when a measurement crosses the user's
// rules, at most once per 20-second lock-out (`timSent`) and per chosen period. The window
// shows `imgSMS` and the status text from the signals; the terminal monitor may show nothing.
class SmsAlerts : public QObject
{
    Q_OBJECT

public:
    // isMonitoring tells whether the polling timer runs; the product's factory is SmsGateway::create.
    SmsAlerts(SettingsStore &store, const Clock &clock, MessageSink &sink, std::function<bool()> isMonitoring,
              SmsGatewayFactory createComponent, QObject *parent = nullptr);
    ~SmsAlerts() override;

    // When the window loaded, for the "Start pinging" period; the construction time until then.
    void setStartTime(const QDateTime &startTime);

    // Reloads the settings and, when they are complete, creates the component anew.
    void InitSMS();
    // One answered probe; -1 for a host that gave no answer. Cheap while SMS is off.
    void CheckSMS(const QString &host, int32_t pingTime);

    bool imgSMSVisible() const { return m_imgSMSVisible; }
    bool hasComponent() const { return m_component != nullptr; }
    // A message is still on its way to the gateway; sendFinished() follows.
    bool hasPendingSend() const;
    const SmsSettings &settings() const { return m_settings; }

Q_SIGNALS:
    void imgSMSVisibleChanged(bool visible);
    void statusText(const QString &text);
    void sendFinished(bool ok);

private:
    void SendSMS(const QString &text);
    void timSent_Timer();
    void componentFinished(bool ok);
    void setImgSMSVisible(bool visible);
    SmsGateway &component() const;

    SettingsStore &m_store;
    const Clock &m_clock;
    MessageSink &m_sink;
    std::function<bool()> m_isMonitoring;
    SmsGatewayFactory m_createComponent;
    SmsSettings m_settings;
    std::unique_ptr<SmsGateway> m_component;
    QDateTime m_startTime;
    QTimer m_timSent;
    bool m_imgSMSVisible = false;
};
