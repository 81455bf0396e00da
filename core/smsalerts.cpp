#include "core/smsalerts.h"

#include "core/productinfo.h"
#include "core/runtimeerror.h"
#include "core/smsperiod.h"
#include "core/smstext.h"
#include "core/trappedprocedure.h"
#include "platform/clock.h"
#include "platform/settingsstore.h"
#include "platform/smsgateway.h"

using namespace std::chrono_literals;

namespace {

// The lines of InitSMS after the settings have been read; the completeness test is a line of its own.
enum InitLine { CheckLine = SmsSettings::lastLoadLine + 1, CreateLine, NameLine, EmailLine, TimeOutLine };

QDateTime toWholeSeconds(const QDateTime &time)
{
    return QDateTime(time.date(), QTime(time.time().hour(), time.time().minute(), time.time().second()));
}

QString lastTimeKey()
{
    return QStringLiteral("LastTime");
}

} // namespace

SmsAlerts::SmsAlerts(SettingsStore &store, const Clock &clock, MessageSink &sink, std::function<bool()> isMonitoring,
                     SmsGatewayFactory createComponent, QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_clock(clock)
    , m_sink(sink)
    , m_isMonitoring(std::move(isMonitoring))
    , m_createComponent(std::move(createComponent))
    , m_startTime(toWholeSeconds(clock.now()))
    , m_timSent(this)
{
    m_timSent.setObjectName(QStringLiteral("timSent"));
    m_timSent.setSingleShot(true);
    m_timSent.setInterval(20s);
    connect(&m_timSent, &QTimer::timeout, this, &SmsAlerts::timSent_Timer);
}

SmsAlerts::~SmsAlerts() = default;

void SmsAlerts::setStartTime(const QDateTime &startTime)
{
    // The run's start is compared with LastTime, which keeps whole seconds.
    m_startTime = toWholeSeconds(startTime);
}

void SmsAlerts::InitSMS()
{
    TrappedProcedure procedure(m_sink, QStringLiteral("f_Ping"), QStringLiteral("InitSMS"), productinfo::productName());
    m_settings.load(m_store, procedure);
    if (!m_settings.isComplete())
        return;
    procedure.step(CreateLine, [this] {
        auto created = m_createComponent(m_settings.GatewayURL);
        if (!created)
            throw RuntimeError(429, QStringLiteral("ActiveX component can't create object"));
        m_component = std::move(created);
        connect(m_component.get(), &SmsGateway::finished, this, &SmsAlerts::componentFinished);
    });
    procedure.step(NameLine, [this] { component().setSenderName(productinfo::productName()); });
    procedure.step(EmailLine, [this] { component().setSenderEmail(QStringLiteral("sondar@localhost")); });
    procedure.step(TimeOutLine, [this] { component().setTimeOut(20s); });
}

void SmsAlerts::CheckSMS(const QString &host, int32_t pingTime)
{
    if (m_settings.SendSMS == 0 || !m_isMonitoring() || m_timSent.isActive())
        return;
    const auto last = smsperiod::parseLastTime(m_store.GetSetting(SmsSettings::section(), lastTimeKey()));
    if (!last) {
        setImgSMSVisible(false);
        return;
    }
    const QDateTime now = m_clock.now();
    if (!smsperiod::allowsSending(m_settings.OnceTime, *last, now, m_startTime))
        return;
    const auto text = smstext::messageFor(m_settings, host, pingTime, now);
    if (!text)
        return;
    Q_EMIT statusText(QStringLiteral("Sending SMS ..."));
    setImgSMSVisible(true);
    m_timSent.start();
    SendSMS(*text);
}

bool SmsAlerts::hasPendingSend() const
{
    return m_component && m_component->hasPendingSend();
}

void SmsAlerts::SendSMS(const QString &text)
{
    // Without a component the send fails at once; LastTime is written all the same.
    const bool handedOver = m_component != nullptr;
    if (handedOver)
        m_component->send(m_settings.ICQUIN, m_settings.ICQPass, m_settings.CountryCode, m_settings.Carrier,
                          m_settings.MobileNumber, text);
    else
        setImgSMSVisible(false);
    m_store.SaveSetting(SmsSettings::section(), lastTimeKey(), smsperiod::formatLastTime(m_clock.now()));
    if (!handedOver)
        Q_EMIT sendFinished(false);
}

void SmsAlerts::timSent_Timer()
{
    // Single-shot, so the lock-out is already off.
    setImgSMSVisible(false);
}

void SmsAlerts::componentFinished(bool ok)
{
    if (!ok)
        setImgSMSVisible(false);
    Q_EMIT sendFinished(ok);
}

void SmsAlerts::setImgSMSVisible(bool visible)
{
    if (m_imgSMSVisible == visible)
        return;
    m_imgSMSVisible = visible;
    Q_EMIT imgSMSVisibleChanged(visible);
}

SmsGateway &SmsAlerts::component() const
{
    if (!m_component)
        throw RuntimeError(91, QStringLiteral("Object variable or With block variable not set"));
    return *m_component;
}
