#include "platform/smsgateway.h"
#include "tests/platform/smsgatewayserver.h"

#include <QSignalSpy>
#include <QTimer>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

class SmsGatewayUrl : public ::testing::TestWithParam<std::pair<std::string, bool>>
{
};

TEST_P(SmsGatewayUrl, ComponentIsCreatedOnlyForAbsoluteHttpOrHttpsUrls)
{
    EXPECT_EQ(SmsGateway::create(QString::fromStdString(GetParam().first)) != nullptr, GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(Urls, SmsGatewayUrl,
                         ::testing::Values(std::pair(std::string("http://127.0.0.1:8080/sms"), true),
                                           std::pair(std::string("https://sms.example.org/api/send"), true),
                                           std::pair(std::string("HTTPS://sms.example.org/"), true),
                                           std::pair(std::string(""), false),
                                           std::pair(std::string("sms.example.org/send"), false),
                                           std::pair(std::string("/api/send"), false),
                                           std::pair(std::string("ftp://sms.example.org/send"), false),
                                           std::pair(std::string("mailto:sms@example.org"), false),
                                           std::pair(std::string("http://"), false),
                                           std::pair(std::string("http://exa mple.org/"), false)));

void sendSample(SmsGateway &gateway)
{
    gateway.send(QStringLiteral("123456"), QStringLiteral("pass"), QStringLiteral("7"), QStringLiteral("Beeline"),
                 QStringLiteral("6710123"), QStringLiteral("text"));
}

class SmsGatewayAnswer : public ::testing::TestWithParam<std::pair<int, bool>>
{
};

TEST_P(SmsGatewayAnswer, OnlyA2xxAnswerCountsAsSent)
{
    SmsGatewayServer server(GetParam().first);
    auto gateway = SmsGateway::create(server.url());
    QSignalSpy finished(gateway.get(), &SmsGateway::finished);

    sendSample(*gateway);
    ASSERT_TRUE(finished.wait(10000));

    EXPECT_EQ(finished.at(0).at(0).toBool(), GetParam().second);
    EXPECT_FALSE(gateway->hasPendingSend());
}

INSTANTIATE_TEST_SUITE_P(Statuses, SmsGatewayAnswer,
                         ::testing::Values(std::pair(200, true), std::pair(204, true), std::pair(401, false),
                                           std::pair(503, false)));

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
