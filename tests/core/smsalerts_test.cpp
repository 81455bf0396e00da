#include "core/smsalerts.h"
#include "platform/settingsstore.h"
#include "platform/smsgateway.h"
#include "tests/platform/smsgatewayserver.h"
#include "tests/support/recordingsink.h"
#include "tests/support/testclock.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// Fake credentials; assertions on them never print them.
const QString account = QStringLiteral("123456");
const QString password = QStringLiteral("s3cret!");

class SmsAlertsTest : public ::testing::Test
{
protected:
    void save(const char *key, const QString &value)
    {
        store.SaveSetting(QStringLiteral("SMS"), QString::fromLatin1(key), value);
    }
    QString lastTime() const { return store.GetSetting(QStringLiteral("SMS"), QStringLiteral("LastTime")); }
    QTimer *timSent() const { return alerts.findChild<QTimer *>(QStringLiteral("timSent")); }

    void saveCompleteSettings(const QString &gatewayUrl)
    {
        save("SendSMS", QStringLiteral("1"));
        save("ICQUIN", account);
        save("ICQPass", password);
        // Typed with its plus, as the options dialog suggests.
        save("CountryCode", QStringLiteral("+7"));
        save("MobileNumber", QStringLiteral("6710123"));
        save("Carrier", QStringLiteral("Beeline"));
        save("GatewayURL", gatewayUrl);
    }

    // Sends one greater-rule alert and waits until the gateway has had its say.
    bool alertAndWait(int32_t pingTime = 150)
    {
        QSignalSpy finished(&alerts, &SmsAlerts::sendFinished);
        alerts.CheckSMS(QStringLiteral("ya.ru"), pingTime);
        return !finished.isEmpty() || finished.wait(10000);
    }

    QTemporaryDir dir;
    SettingsStore store{dir.filePath(QStringLiteral("sondar.ini"))};
    TestClock clock{QDateTime(QDate(2026, 11, 15), QTime(10, 15))};
    RecordingSink sink;
    bool monitoring = true;
    SmsGatewayServer server;
    SmsAlerts alerts{store, clock, sink, [this] { return monitoring; }, &SmsGateway::create};
};

TEST_F(SmsAlertsTest, GreaterRuleAlertPostsTheMessageToTheGatewayAndShowsImgSMS)
{
    saveCompleteSettings(server.url());
    alerts.InitSMS();
    QSignalSpy status(&alerts, &SmsAlerts::statusText);
    QSignalSpy shown(&alerts, &SmsAlerts::imgSMSVisibleChanged);
    QSignalSpy finished(&alerts, &SmsAlerts::sendFinished);

    alerts.CheckSMS(QStringLiteral("ya.ru"), 101);
    EXPECT_TRUE(alerts.hasPendingSend());
    ASSERT_TRUE(finished.wait(10000));

    EXPECT_TRUE(finished.at(0).at(0).toBool());
    EXPECT_FALSE(alerts.hasPendingSend());
    ASSERT_EQ(status.size(), 1);
    EXPECT_EQ(status.at(0).at(0).toString(), QStringLiteral("Sending SMS ..."));
    ASSERT_EQ(shown.size(), 1);
    EXPECT_TRUE(alerts.imgSMSVisible());
    EXPECT_EQ(lastTime(), QStringLiteral("15/11/2026 10:15:00"));

    ASSERT_EQ(server.requests.size(), 1);
    const auto &request = server.requests.first();
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.path, "/sms/send");
    EXPECT_TRUE(request.headers.value("authorization")
                == "Basic " + (account + QLatin1Char(':') + password).toUtf8().toBase64());
    const QJsonObject body = QJsonDocument::fromJson(request.body).object();
    EXPECT_EQ(body.value(QStringLiteral("senderName")).toString(), QStringLiteral("Sondar"));
    EXPECT_EQ(body.value(QStringLiteral("senderEmail")).toString(), QStringLiteral("sondar@localhost"));
    EXPECT_TRUE(body.value(QStringLiteral("account")).toString() == account);
    EXPECT_EQ(body.value(QStringLiteral("to")).toString(), QStringLiteral("+76710123"));
    EXPECT_EQ(body.value(QStringLiteral("carrier")).toString(), QStringLiteral("Beeline"));
    EXPECT_EQ(body.value(QStringLiteral("message")).toString(),
              QStringLiteral("Sondar ping statistics. ya.ru:\r\nPing time - 101"));
    EXPECT_FALSE(request.body.contains(password.toUtf8()));
    EXPECT_TRUE(sink.messages.isEmpty());
}

class SmsAlertsGatewayFailure : public SmsAlertsTest, public ::testing::WithParamInterface<bool>
{
};

TEST_P(SmsAlertsGatewayFailure, FailedSendHidesImgSMSAndStillWritesLastTime)
{
    SmsGatewayServer failing(500);
    saveCompleteSettings(GetParam() ? SmsGatewayServer::refusedUrl() : failing.url());
    alerts.InitSMS();
    QSignalSpy shown(&alerts, &SmsAlerts::imgSMSVisibleChanged);
    QSignalSpy finished(&alerts, &SmsAlerts::sendFinished);

    alerts.CheckSMS(QStringLiteral("ya.ru"), 150);
    ASSERT_TRUE(finished.wait(10000));

    EXPECT_FALSE(finished.at(0).at(0).toBool());
    ASSERT_EQ(shown.size(), 2);
    EXPECT_FALSE(alerts.imgSMSVisible());
    EXPECT_EQ(lastTime(), QStringLiteral("15/11/2026 10:15:00"));
    // The lock-out holds even though the message did not go out.
    EXPECT_TRUE(timSent()->isActive());
    EXPECT_TRUE(sink.messages.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Gateways, SmsAlertsGatewayFailure, ::testing::Values(false, true),
                         [](const auto &info) { return info.param ? "RefusedConnection" : "ServerError500"; });

TEST_F(SmsAlertsTest, WithoutAComponentTheSendFailsAtOnceAndStillWritesLastTime)
{
    save("SendSMS", QStringLiteral("1"));
    alerts.InitSMS();
    QSignalSpy shown(&alerts, &SmsAlerts::imgSMSVisibleChanged);
    QSignalSpy finished(&alerts, &SmsAlerts::sendFinished);

    alerts.CheckSMS(QStringLiteral("ya.ru"), 150);

    ASSERT_EQ(finished.size(), 1);
    EXPECT_FALSE(finished.at(0).at(0).toBool());
    EXPECT_EQ(shown.size(), 2);
    EXPECT_FALSE(alerts.imgSMSVisible());
    EXPECT_FALSE(alerts.hasPendingSend());
    EXPECT_EQ(lastTime(), QStringLiteral("15/11/2026 10:15:00"));
    EXPECT_TRUE(sink.messages.isEmpty());
}

TEST_F(SmsAlertsTest, DefaultSettingsNeverSend)
{
    save("GatewayURL", server.url());
    alerts.InitSMS();
    QSignalSpy shown(&alerts, &SmsAlerts::imgSMSVisibleChanged);
    QSignalSpy status(&alerts, &SmsAlerts::statusText);

    for (const int32_t pingTime : {-1, 0, 101, 30000})
        alerts.CheckSMS(QStringLiteral("ya.ru"), pingTime);
    QTest::qWait(50);

    EXPECT_TRUE(shown.isEmpty());
    EXPECT_TRUE(status.isEmpty());
    EXPECT_TRUE(server.requests.isEmpty());
    EXPECT_TRUE(lastTime().isEmpty());
    EXPECT_FALSE(alerts.hasComponent());
    EXPECT_TRUE(sink.messages.isEmpty());
}

TEST_F(SmsAlertsTest, NothingIsSentWhileMonitoringIsStopped)
{
    saveCompleteSettings(server.url());
    alerts.InitSMS();
    monitoring = false;

    alerts.CheckSMS(QStringLiteral("ya.ru"), 500);
    QTest::qWait(50);

    EXPECT_FALSE(alerts.imgSMSVisible());
    EXPECT_TRUE(server.requests.isEmpty());
    EXPECT_TRUE(lastTime().isEmpty());
}

TEST_F(SmsAlertsTest, TwoCrossingsFiveSecondsApartSendOneMessageUntilTimSentEnds)
{
    saveCompleteSettings(server.url());
    alerts.InitSMS();

    ASSERT_TRUE(alertAndWait(150));
    clock.advanceMs(5000);
    alerts.CheckSMS(QStringLiteral("ya.ru"), 160);
    QTest::qWait(50);
    EXPECT_EQ(server.requests.size(), 1);

    QTimer *timer = timSent();
    ASSERT_NE(timer, nullptr);
    EXPECT_TRUE(timer->isActive());
    EXPECT_TRUE(timer->isSingleShot());
    EXPECT_EQ(timer->interval(), 20000);

    // Twenty seconds on: let the real timer fire now instead of waiting for it.
    clock.advanceMs(15000);
    timer->start(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !alerts.imgSMSVisible(); }));
    EXPECT_FALSE(timer->isActive());

    ASSERT_TRUE(alertAndWait(170));
    EXPECT_EQ(server.requests.size(), 2);
    EXPECT_EQ(lastTime(), QStringLiteral("15/11/2026 10:15:20"));
}

struct StoredPeriodCase {
    const char *name;
    int16_t onceTime;
    const char *lastTime;
    bool sent;
};

void PrintTo(const StoredPeriodCase &c, std::ostream *os)
{
    *os << c.name;
}

class SmsAlertsStoredPeriod : public SmsAlertsTest, public ::testing::WithParamInterface<StoredPeriodCase>
{
};

// The clock reads 15/11/2026 10:15:00 and the run started at 10:00:00.
TEST_P(SmsAlertsStoredPeriod, PeriodIsMeasuredFromTheStoredLastTime)
{
    saveCompleteSettings(server.url());
    save("OnceTime", QString::number(GetParam().onceTime));
    save("LastTime", QString::fromLatin1(GetParam().lastTime));
    alerts.setStartTime(QDateTime(QDate(2026, 11, 15), QTime(10, 0)));
    alerts.InitSMS();
    QSignalSpy finished(&alerts, &SmsAlerts::sendFinished);

    alerts.CheckSMS(QStringLiteral("ya.ru"), 150);
    if (GetParam().sent)
        ASSERT_TRUE(finished.wait(10000));
    else
        QTest::qWait(50);

    EXPECT_EQ(server.requests.size(), GetParam().sent ? 1 : 0);
    EXPECT_EQ(alerts.imgSMSVisible(), GetParam().sent);
    EXPECT_TRUE(sink.messages.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    OnceTime, SmsAlertsStoredPeriod,
    ::testing::Values(StoredPeriodCase{"EmptyLastTimePassesHalfHour", 0, "", true},
                      StoredPeriodCase{"DaySameDateBlocks", 3, "15/11/2026 08:00:00", false},
                      StoredPeriodCase{"StartPingingAfterStartBlocks", 4, "15/11/2026 10:05:00", false},
                      StoredPeriodCase{"StartPingingAtStartPasses", 4, "15/11/2026 10:00:00", true},
                      StoredPeriodCase{"YearAfter2029ReadsAs1930AndPasses", 3, "15/11/2030 10:00:00", true}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(SmsAlertsTest, UnparsableLastTimeHidesImgSMSSendsNothingAndShowsNothing)
{
    saveCompleteSettings(server.url());
    save("LastTime", QStringLiteral("last Tuesday"));
    alerts.InitSMS();
    QSignalSpy status(&alerts, &SmsAlerts::statusText);

    alerts.CheckSMS(QStringLiteral("ya.ru"), 150);
    QTest::qWait(50);

    EXPECT_FALSE(alerts.imgSMSVisible());
    EXPECT_FALSE(timSent()->isActive());
    EXPECT_TRUE(status.isEmpty());
    EXPECT_TRUE(server.requests.isEmpty());
    EXPECT_EQ(lastTime(), QStringLiteral("last Tuesday"));
    EXPECT_TRUE(sink.messages.isEmpty());
}

struct IncompleteCase {
    const char *name;
    const char *key;
    const char *value;
};

void PrintTo(const IncompleteCase &c, std::ostream *os)
{
    *os << c.name;
}

class SmsAlertsIncomplete : public SmsAlertsTest, public ::testing::WithParamInterface<IncompleteCase>
{
};

TEST_P(SmsAlertsIncomplete, IncompleteSettingsCreateNoComponentAndShowNothing)
{
    saveCompleteSettings(QString());
    save(GetParam().key, QString::fromLatin1(GetParam().value));

    alerts.InitSMS();

    EXPECT_FALSE(alerts.hasComponent());
    EXPECT_TRUE(sink.messages.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Settings, SmsAlertsIncomplete,
                         ::testing::Values(IncompleteCase{"SmsOff", "SendSMS", "0"},
                                           IncompleteCase{"ShortMobileNumber", "MobileNumber", "67"},
                                           IncompleteCase{"BlankCarrier", "Carrier", "   "},
                                           IncompleteCase{"NoCountryCode", "CountryCode", ""},
                                           IncompleteCase{"ShortAccountOnceTrimmed", "ICQUIN", " 123 "},
                                           IncompleteCase{"NoPassword", "ICQPass", ""}),
                         [](const auto &info) { return std::string(info.param.name); });

class SmsAlertsBadGateway : public SmsAlertsTest, public ::testing::WithParamInterface<const char *>
{
};

TEST_P(SmsAlertsBadGateway, UnusableGatewayUrlShowsTheInitSMSErrorBoxForEachComponentLine)
{
    saveCompleteSettings(QString::fromLatin1(GetParam()));

    alerts.InitSMS();

    EXPECT_FALSE(alerts.hasComponent());
    EXPECT_EQ(sink.texts(),
              QStringList({QStringLiteral("429:ActiveX component can't create object\r\n"
                                          "Error in f_Ping.InitSMS on line 17"),
                           QStringLiteral("91:Object variable or With block variable not set\r\n"
                                          "Error in f_Ping.InitSMS on line 18"),
                           QStringLiteral("91:Object variable or With block variable not set\r\n"
                                          "Error in f_Ping.InitSMS on line 19"),
                           QStringLiteral("91:Object variable or With block variable not set\r\n"
                                          "Error in f_Ping.InitSMS on line 20")}));
    for (const auto &message : sink.messages) {
        EXPECT_EQ(message.icon, MessageSink::Icon::Critical);
        EXPECT_EQ(message.title, QStringLiteral("Sondar"));
        EXPECT_FALSE(message.text.contains(password) || message.text.contains(account));
    }
}

INSTANTIATE_TEST_SUITE_P(Urls, SmsAlertsBadGateway,
                         ::testing::Values("", "   ", "ftp://127.0.0.1/sms", "127.0.0.1/sms"));

TEST_F(SmsAlertsTest, ComponentOfAnEarlierInitSMSIsKeptWhenTheUrlTurnsUnusable)
{
    saveCompleteSettings(server.url());
    alerts.InitSMS();
    save("GatewayURL", QStringLiteral("not a url"));

    alerts.InitSMS();
    ASSERT_TRUE(alertAndWait());

    EXPECT_EQ(sink.messages.size(), 1);
    EXPECT_EQ(server.requests.size(), 1);
}

TEST_F(SmsAlertsTest, NonNumericThresholdIsReportedOnItsLineAndTheOtherSettingsLoad)
{
    saveCompleteSettings(server.url());
    save("Greater", QStringLiteral("fast"));
    save("Less", QStringLiteral(" 40 "));

    alerts.InitSMS();

    EXPECT_EQ(sink.texts(), QStringList(QStringLiteral("13:Type mismatch\r\nError in f_Ping.InitSMS on line 3")));
    EXPECT_EQ(alerts.settings().Greater, 0);
    EXPECT_EQ(alerts.settings().Less, 40);
    EXPECT_TRUE(alerts.hasComponent());
}

TEST_F(SmsAlertsTest, TextSettingsLoseTheirOuterBlanksButTemplatesKeepThem)
{
    save("Carrier", QStringLiteral("  Beeline "));
    save("MobileNumber", QStringLiteral(" 6710123\t"));
    save("GatewayURL", QStringLiteral(" http://127.0.0.1/sms "));
    save("Template", QStringLiteral(" @HOST@ @PING@ "));

    alerts.InitSMS();

    const SmsSettings &settings = alerts.settings();
    EXPECT_EQ(settings.Carrier, QStringLiteral("Beeline"));
    EXPECT_EQ(settings.MobileNumber, QStringLiteral("6710123\t"));
    EXPECT_EQ(settings.GatewayURL, QStringLiteral("http://127.0.0.1/sms"));
    EXPECT_EQ(settings.Template, QStringLiteral(" @HOST@ @PING@ "));
    EXPECT_EQ(settings.TimeoutTemplate, QStringLiteral("@HOST@:\r\nRequest timeout."));
    EXPECT_EQ(settings.IfGreater, 1);
    EXPECT_EQ(settings.Greater, 100);
    EXPECT_EQ(settings.OnceTime, 5);
}

} // namespace
