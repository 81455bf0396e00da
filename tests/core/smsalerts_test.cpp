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
    void save(const char *key, const QString &value) { store.SaveSetting(QStringLiteral("SMS"), QString::fromLatin1(key), value); }
    QString lastTime() const { return store.GetSetting(QStringLiteral("SMS"), QStringLiteral("LastTime")); }
    QTimer *timSent(const SmsAlerts &of) const { return of.findChild<QTimer *>(QStringLiteral("timSent")); }

    // Blanks around the texts, as a user may type them: they are trimmed.
    void saveCompleteSettings(const QString &gatewayUrl)
    {
        save("SendSMS", QStringLiteral("1"));
        save("ICQUIN", account);
        save("ICQPass", password);
        save("CountryCode", QStringLiteral("+7")); // typed with its plus, as the options dialog suggests
        save("MobileNumber", QStringLiteral(" 6710123"));
        save("Carrier", QStringLiteral("  Beeline "));
        save("GatewayURL", QLatin1Char(' ') + gatewayUrl);
    }

    // Passes one measurement and waits until the gateway has had its say, or a moment when no send is expected.
    // Then: what the window would show and what the alerts left behind.
    std::string check(int32_t pingTime, bool sends = true, SmsAlerts *of = nullptr)
    {
        SmsAlerts &target = of ? *of : alerts;
        QSignalSpy finished(&target, &SmsAlerts::sendFinished);
        QSignalSpy status(&target, &SmsAlerts::statusText);
        target.CheckSMS(QStringLiteral("ya.ru"), pingTime);
        const bool done = sends ? !finished.isEmpty() || finished.wait(10000) : QTest::qWaitFor([&] { return !finished.isEmpty(); }, 50);
        return QStringLiteral("sent %1 ok %2 img %3 lock %4 status %5 requests %6 LastTime %7 boxes %8")
            .arg(done)
            .arg(done && finished.at(0).at(0).toBool())
            .arg(target.imgSMSVisible())
            .arg(timSent(target)->isActive())
            .arg(status.isEmpty() ? QString() : status.at(0).at(0).toString())
            .arg(server.requests.size())
            .arg(lastTime())
            .arg(sink.messages.size())
            .toStdString();
    }

    // What twenty seconds would do, at once.
    void endLockOut()
    {
        timSent(alerts)->start(0);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !timSent(alerts)->isActive() && !alerts.imgSMSVisible(); }));
        timSent(alerts)->setInterval(20000);
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
    EXPECT_EQ(check(101), "sent 1 ok 1 img 1 lock 1 status Sending SMS ... requests 1 LastTime 15/11/2026 10:15:00 boxes 0");
    EXPECT_FALSE(alerts.hasPendingSend());

    ASSERT_EQ(server.requests.size(), 1);
    const auto &request = server.requests.first();
    EXPECT_EQ(request.method + ' ' + request.path, "POST /sms/send");
    EXPECT_TRUE(request.headers.value("authorization") == "Basic " + (account + QLatin1Char(':') + password).toUtf8().toBase64());
    EXPECT_TRUE(QJsonDocument::fromJson(request.body).object()
                == QJsonObject({{QStringLiteral("senderName"), QStringLiteral("Sondar")},
                                {QStringLiteral("senderEmail"), QStringLiteral("sondar@localhost")},
                                {QStringLiteral("account"), account},
                                {QStringLiteral("to"), QStringLiteral("+76710123")},
                                {QStringLiteral("carrier"), QStringLiteral("Beeline")},
                                {QStringLiteral("message"), QStringLiteral("Sondar ping statistics. ya.ru:\r\nPing time - 101")}}))
        << "the JSON body, which must not carry the password";
}

TEST_F(SmsAlertsTest, FailedOrImpossibleSendHidesImgSMSAndStillWritesLastTimeAndLocksOut)
{
    SmsGatewayServer failing(500);
    for (const QString &url : {failing.url(), SmsGatewayServer::refusedUrl(), QString()}) {
        SmsAlerts fresh{store, clock, sink, [] { return true; }, &SmsGateway::create};
        QSignalSpy shown(&fresh, &SmsAlerts::imgSMSVisibleChanged);
        saveCompleteSettings(url);
        save("LastTime", QString());
        fresh.InitSMS();
        sink.messages.clear(); // the error boxes of the empty URL are another test's
        EXPECT_EQ(check(150, true, &fresh), "sent 1 ok 0 img 0 lock 1 status Sending SMS ... requests 0 LastTime 15/11/2026 10:15:00 boxes 0")
            << url.toStdString();
        EXPECT_EQ(shown, (QList<QVariantList>{{true}, {false}}));
    }
}

TEST_F(SmsAlertsTest, DefaultSettingsAndStoppedMonitoringNeverSend)
{
    save("GatewayURL", server.url());
    alerts.InitSMS();
    for (const int32_t pingTime : {-1, 0, 101, 30000})
        EXPECT_EQ(check(pingTime, false), "sent 0 ok 0 img 0 lock 0 status  requests 0 LastTime  boxes 0");
    EXPECT_FALSE(alerts.hasComponent());
    saveCompleteSettings(server.url());
    alerts.InitSMS();
    monitoring = false;
    EXPECT_EQ(check(500, false), "sent 0 ok 0 img 0 lock 0 status  requests 0 LastTime  boxes 0");
}

TEST_F(SmsAlertsTest, TwoCrossingsFiveSecondsApartSendOneMessageUntilTimSentEnds)
{
    saveCompleteSettings(server.url());
    alerts.InitSMS();
    EXPECT_EQ(check(150), "sent 1 ok 1 img 1 lock 1 status Sending SMS ... requests 1 LastTime 15/11/2026 10:15:00 boxes 0");
    clock.advanceMs(5000);
    EXPECT_EQ(check(160, false), "sent 0 ok 0 img 1 lock 1 status  requests 1 LastTime 15/11/2026 10:15:00 boxes 0");
    EXPECT_TRUE(timSent(alerts)->isSingleShot());
    EXPECT_EQ(timSent(alerts)->interval(), 20000);
    clock.advanceMs(15000);
    endLockOut();
    EXPECT_EQ(check(170), "sent 1 ok 1 img 1 lock 1 status Sending SMS ... requests 2 LastTime 15/11/2026 10:15:20 boxes 0");
}

TEST_F(SmsAlertsTest, PeriodIsMeasuredFromTheStoredLastTimeAndUnparsableOneSendsNothing)
{
    // The clock reads 15/11/2026 10:15:00 and the run started at 10:00:00.
    const std::tuple<int16_t, const char *, bool> cases[] = {
        {0, "", true},                      // empty LastTime passes the half hour
        {3, "15/11/2026 08:00:00", false},  // Day blocks the same date
        {4, "15/11/2026 10:05:00", false},  // Start pinging blocks after the start
        {0, "last Tuesday", false},
    };
    saveCompleteSettings(server.url());
    alerts.setStartTime(QDateTime(QDate(2026, 11, 15), QTime(10, 0)));
    for (const auto &[onceTime, stored, sends] : cases) {
        save("OnceTime", QString::number(onceTime));
        save("LastTime", QString::fromLatin1(stored));
        alerts.InitSMS();
        const std::string unsent = QStringLiteral("sent 0 ok 0 img 0 lock 0 status  requests %1 LastTime %2 boxes 0")
                                       .arg(server.requests.size())
                                       .arg(QLatin1String(stored))
                                       .toStdString();
        const std::string state = check(150, sends);
        EXPECT_TRUE(sends ? state.starts_with("sent 1 ok 1 img 1") : state == unsent) << stored << ": " << state;
        endLockOut(); // the lock-out is another test's
    }
}

TEST_F(SmsAlertsTest, IncompleteSettingsCreateNothingQuietlyAndAnUnusableUrlShowsTheInitSMSBoxForEachComponentLine)
{
    const QString notSet = QStringLiteral("91:Object variable or With block variable not set\r\nError in f_Ping.InitSMS on line ");
    const QStringList boxes{QStringLiteral("429:ActiveX component can't create object\r\nError in f_Ping.InitSMS on line 17"),
                            notSet + QStringLiteral("18"), notSet + QStringLiteral("19"), notSet + QStringLiteral("20")};
    const std::pair<const char *, const char *> settings[] = {
        {"SendSMS", "0"}, {"MobileNumber", "67"}, {"Carrier", "   "}, {"CountryCode", ""}, {"ICQUIN", " 123 "}, {"ICQPass", ""},
        {"GatewayURL", ""}, {"GatewayURL", "ftp://127.0.0.1/sms"},
    };
    for (const auto &[key, value] : settings) {
        saveCompleteSettings(QString());
        save(key, QString::fromLatin1(value));
        sink.messages.clear();
        alerts.InitSMS();
        EXPECT_FALSE(alerts.hasComponent()) << key;
        EXPECT_EQ(sink.texts(), QLatin1String(key) == QLatin1String("GatewayURL") ? boxes : QStringList()) << key << " " << value;
        for (const auto &message : sink.messages) {
            EXPECT_EQ(message.icon, MessageSink::Icon::Critical);
            EXPECT_EQ(message.title, QStringLiteral("Sondar"));
            EXPECT_FALSE(message.text.contains(password) || message.text.contains(account));
        }
    }
}

TEST_F(SmsAlertsTest, ComponentOfAnEarlierInitSMSIsKeptWhenTheUrlTurnsUnusable)
{
    saveCompleteSettings(server.url());
    alerts.InitSMS();
    save("GatewayURL", QStringLiteral("not a url"));
    sink.messages.clear();
    alerts.InitSMS();
    EXPECT_EQ(check(150), "sent 1 ok 1 img 1 lock 1 status Sending SMS ... requests 1 LastTime 15/11/2026 10:15:00 boxes 1");
}

TEST_F(SmsAlertsTest, SettingsLoadWithTheirDefaultsTrimmedAndABadThresholdIsReportedOnItsLine)
{
    saveCompleteSettings(server.url());
    save("MobileNumber", QStringLiteral(" 6710123\t"));
    save("Template", QStringLiteral(" @HOST@ @PING@ "));
    save("Greater", QStringLiteral("fast"));
    save("Less", QStringLiteral(" 40 "));
    alerts.InitSMS();

    EXPECT_EQ(sink.texts(), QStringList(QStringLiteral("13:Type mismatch\r\nError in f_Ping.InitSMS on line 3")));
    EXPECT_TRUE(alerts.hasComponent());
    const SmsSettings &settings = alerts.settings();
    EXPECT_EQ(settings.MobileNumber, QStringLiteral("6710123\t"));
    EXPECT_EQ(settings.Template, QStringLiteral(" @HOST@ @PING@ "));
    EXPECT_EQ(settings.TimeoutTemplate, QStringLiteral("@HOST@:\r\nRequest timeout."));
    EXPECT_EQ(std::make_tuple(settings.IfGreater, settings.Greater, settings.Less, settings.OnceTime), std::make_tuple(1, 0, 40, 5));
}

} // namespace
