#include "tests/platform/smsgatewayserver.h"
#include "tests/window/windowfixture.h"

#include "platform/icmpecho.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {

// The window's SMS alerts, end to end: a real reply over the threshold reaches a real gateway.
class WindowSmsAlerts : public WindowFixture
{
protected:
    void SetUp() override
    {
        if (!IcmpEcho().isOpen())
            GTEST_SKIP() << "no ICMP socket can be opened here (needs root or net.ipv4.ping_group_range)";
        const QString sms = QStringLiteral("SMS");
        const std::pair<const char *, QString> values[] = {
            {"SendSMS", QStringLiteral("1")},         {"MobileNumber", QStringLiteral("6710123")},
            {"Carrier", QStringLiteral("Carrier")},   {"CountryCode", QStringLiteral("7")},
            {"ICQUIN", QStringLiteral("12345")},      {"ICQPass", QStringLiteral("secret")},
            {"IfGreater", QStringLiteral("1")},       {"Greater", QStringLiteral("-1")},
            {"GatewayURL", server.url()},
        };
        for (const auto &[key, value] : values)
            settings().SaveSetting(sms, QLatin1String(key), value);
        load();
        child<QComboBox>("cmb")->setEditText(QStringLiteral("127.0.0.1"));
        child<QLineEdit>("txtTime")->setText(QStringLiteral("1"));
    }

    SmsGatewayServer server;
};

TEST_F(WindowSmsAlerts, AReplyOverTheThresholdSendsOneMessageWhileMonitoring)
{
    QTest::mouseClick(child<QPushButton>("Command1"), Qt::LeftButton);
    ASSERT_TRUE(tickAfterHoldOff());
    ASSERT_TRUE(waitForOutcome());
    EXPECT_TRUE(child<QLabel>("imgSMS")->isVisibleTo(window.get()));
    EXPECT_EQ(child<QLabel>("lblStatus")->text(), QStringLiteral("Sending SMS ..."));
    ASSERT_TRUE(QTest::qWaitFor([this] { return !server.requests.isEmpty(); }, 5000));
    EXPECT_TRUE(server.requests.first().body.contains("127.0.0.1"));

    // The lock-out keeps the next crossing from sending.
    ASSERT_TRUE(tickAfterHoldOff());
    ASSERT_TRUE(waitForOutcome());
    QTest::qWait(200);
    EXPECT_EQ(server.requests.size(), 1);
}

TEST_F(WindowSmsAlerts, NothingIsSentOnceMonitoringStopped)
{
    QTest::mouseClick(child<QPushButton>("Command1"), Qt::LeftButton);
    ASSERT_TRUE(tickAfterHoldOff());
    QTest::mouseClick(child<QPushButton>("Command2"), Qt::LeftButton);
    ASSERT_TRUE(waitForOutcome());
    QTest::qWait(200);
    EXPECT_TRUE(server.requests.isEmpty());
    EXPECT_FALSE(child<QLabel>("imgSMS")->isVisibleTo(window.get()));
}

} // namespace
