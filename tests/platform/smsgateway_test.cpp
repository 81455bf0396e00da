#include "platform/smsgateway.h"
#include "tests/platform/smsgatewayserver.h"

#include <QSignalSpy>
#include <QTimer>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

void sendSample(SmsGateway &gateway)
{
    gateway.send(QStringLiteral("123456"), QStringLiteral("pass"), QStringLiteral("7"), QStringLiteral("Beeline"),
                 QStringLiteral("6710123"), QStringLiteral("text"));
}

TEST(SmsGateway, ComponentIsCreatedOnlyForAbsoluteHttpOrHttpsUrls)
{
    const std::pair<const char *, bool> urls[] = {
        {"http://127.0.0.1:8080/sms", true}, {"https://sms.example.org/api/send", true}, {"HTTPS://sms.example.org/", true},
        {"", false}, {"sms.example.org/send", false}, {"/api/send", false}, {"ftp://sms.example.org/send", false},
        {"mailto:sms@example.org", false}, {"http://", false}, {"http://exa mple.org/", false},
    };
    for (const auto &[url, created] : urls)
        EXPECT_EQ(SmsGateway::create(QString::fromLatin1(url)) != nullptr, created) << url;
}

TEST(SmsGateway, OnlyA2xxAnswerCountsAsSent)
{
    for (const auto &[status, sent] : {std::pair(200, true), std::pair(204, true), std::pair(401, false), std::pair(503, false)}) {
        SmsGatewayServer server(status);
        auto gateway = SmsGateway::create(server.url());
        QSignalSpy finished(gateway.get(), &SmsGateway::finished);
        sendSample(*gateway);
        ASSERT_TRUE(finished.wait(10000)) << status;
        EXPECT_EQ(finished.at(0).at(0).toBool(), sent) << status;
        EXPECT_FALSE(gateway->hasPendingSend());
    }
}

TEST(SmsGateway, SilentGatewayEndsAtTheTimeOutWhileTheEventLoopKeepsRunning)
{
    SmsGatewayServer server;
    server.setSilent(true);
    auto gateway = SmsGateway::create(server.url());
    gateway->setTimeOut(300ms);
    QSignalSpy finished(gateway.get(), &SmsGateway::finished);
    int ticks = 0;
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, &ticker, [&ticks] { ++ticks; });
    ticker.start(20);

    sendSample(*gateway);
    EXPECT_TRUE(gateway->hasPendingSend());
    ASSERT_TRUE(finished.wait(10000));
    EXPECT_FALSE(finished.at(0).at(0).toBool());
    EXPECT_FALSE(gateway->hasPendingSend());
    EXPECT_EQ(server.requests.size(), 1);
    EXPECT_GT(ticks, 0);
}

} // namespace
