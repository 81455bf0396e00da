#include "whois/wsock.h"

#include <QHostInfo>
#include <QObject>
#include <QTest>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

// Longer than any host name: refused without asking a name server, so no traffic leaves.
const QString unresolvable = QString(300, QLatin1Char('x'));

// A listening TCP socket on loopback, plain POSIX so a reset and an orderly close can be told apart.
class LoopbackServer
{
public:
    LoopbackServer()
    {
        m_listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        bind(m_listener, reinterpret_cast<sockaddr *>(&address), sizeof address);
        listen(m_listener, 4);
        socklen_t length = sizeof address;
        getsockname(m_listener, reinterpret_cast<sockaddr *>(&address), &length);
        m_port = ntohs(address.sin_port);
    }
    ~LoopbackServer()
    {
        if (m_peer >= 0)
            close(m_peer);
        close(m_listener);
    }
    uint16_t port() const { return m_port; }
    int accept()
    {
        m_peer = ::accept(m_listener, nullptr, nullptr);
        return m_peer;
    }

private:
    int m_listener = -1;
    int m_peer = -1;
    uint16_t m_port = 0;
};

TEST(WsockStartUp, SetsTheProcessWideFlagThatCleanUpClears)
{
    ASSERT_TRUE(WSOCK::startUp());
    EXPECT_TRUE(WSOCK::started());
    WSOCK::cleanUp();
    EXPECT_FALSE(WSOCK::started());
}

TEST(WsockNames, LocalHostNameIsThisMachinesName)
{
    EXPECT_EQ(WSOCK::localHostName(), QHostInfo::localHostName());
}

TEST(WsockNames, AddressToHostNameGivesTheNameOrUnknown)
{
    EXPECT_EQ(WSOCK::hostNameOf(QStringLiteral("127.0.0.1")), QStringLiteral("localhost"));
    EXPECT_EQ(WSOCK::hostNameOf(QStringLiteral("not an address")), QStringLiteral("Unknown"));
    EXPECT_EQ(WSOCK::hostNameOf(QString()), QStringLiteral("Unknown"));
}

TEST(WsockNames, NameToDottedGivesTheFirstAddressOrNoIp)
{
    EXPECT_EQ(WSOCK::dottedAddressOf(QStringLiteral("localhost")), QStringLiteral("127.0.0.1"));
    EXPECT_EQ(WSOCK::dottedAddressOf(QStringLiteral("10.20.30.40")), QStringLiteral("10.20.30.40"));
    // Not empty: callers that look for an empty text do not see the failure.
    EXPECT_EQ(WSOCK::dottedAddressOf(unresolvable), QStringLiteral("No IP"));
    EXPECT_EQ(WSOCK::dottedAddressOf(QString()), QStringLiteral("No IP"));
    EXPECT_EQ(WSOCK::dottedAddressOf(QString::fromLatin1("a\0b", 3)), QStringLiteral("No IP"));
}

TEST(WsockAddresses, TextToAddressParsesDottedThenLooksTheNameUp)
{
    EXPECT_EQ(WSOCK::addressOf(QStringLiteral("10.1.2.3")), 0x0a010203u);
    EXPECT_EQ(WSOCK::addressOf(QStringLiteral("localhost")), 0x7f000001u);
    EXPECT_EQ(WSOCK::addressOf(unresolvable), WSOCK::noAddress);
    EXPECT_EQ(WSOCK::addressOf(QStringLiteral("No IP")), WSOCK::noAddress);
    // The broadcast address reads the same as a failure.
    EXPECT_EQ(WSOCK::addressOf(QStringLiteral("255.255.255.255")), WSOCK::noAddress);
}

TEST(WsockAddresses, AddressToDottedWritesTheFirstByteFirst)
{
    EXPECT_EQ(WSOCK::dottedOf(0x7f000001), QStringLiteral("127.0.0.1"));
    EXPECT_EQ(WSOCK::dottedOf(0xc0a80a01), QStringLiteral("192.168.10.1"));
    EXPECT_EQ(WSOCK::dottedOf(WSOCK::noAddress), QStringLiteral("255.255.255.255"));
}

TEST(WsockConnect, ConnectsWithAnAbortiveCloseAndSendsTheWholeString)
{
    LoopbackServer server;
    QString serverAddress;
    const int socket = WSOCK::connectTo(QStringLiteral("localhost"), server.port(), nullptr, {}, false, &serverAddress);
    ASSERT_GE(socket, 0);
    EXPECT_EQ(serverAddress, QStringLiteral("127.0.0.1"));

    linger setting{};
    socklen_t length = sizeof setting;
    ASSERT_EQ(getsockopt(socket, SOL_SOCKET, SO_LINGER, &setting, &length), 0);
    EXPECT_EQ(setting.l_onoff, 1);
    EXPECT_EQ(setting.l_linger, 0);

    const int peer = server.accept();
    ASSERT_GE(peer, 0);
    EXPECT_EQ(WSOCK::sendString(socket, QStringLiteral("-L 10.1.2.0\r\n")), 13);
    char received[64] = {};
    EXPECT_EQ(recv(peer, received, 13, MSG_WAITALL), 13);
    EXPECT_STREQ(received, "-L 10.1.2.0\r\n");

    // Linger 0: the server sees a reset, not an orderly end of stream.
    WSOCK::closeSocket(socket);
    EXPECT_EQ(recv(peer, received, sizeof received, 0), -1);
    EXPECT_EQ(errno, ECONNRESET);
}

TEST(WsockConnect, FailsWithMinusOneWhenRefusedOrUnresolved)
{
    uint16_t closedPort = 0;
    {
        LoopbackServer gone;
        closedPort = gone.port();
    }
    EXPECT_EQ(WSOCK::connectTo(QStringLiteral("127.0.0.1"), closedPort), -1);
    EXPECT_EQ(WSOCK::connectTo(unresolvable, 43), -1);
    EXPECT_EQ(WSOCK::connectTo(QStringLiteral("255.255.255.255"), 43), -1);
}

TEST(WsockConnect, SendOnAClosedConnectionGivesMinusOneWithoutKillingTheProcess)
{
    LoopbackServer server;
    const int socket = WSOCK::connectTo(QStringLiteral("127.0.0.1"), server.port());
    ASSERT_GE(socket, 0);
    close(server.accept());
    // The first send may still be taken by the kernel; the reset it draws fails the next ones.
    qint64 sent = 0;
    for (int attempt = 0; attempt < 20 && sent >= 0; ++attempt) {
        sent = WSOCK::sendString(socket, QStringLiteral("query\r\n"));
        QTest::qWait(10);
    }
    EXPECT_EQ(sent, -1);
    WSOCK::closeSocket(socket);
}

struct Readiness {
    int writable = 0;
    int readable = 0;
};

void connectWithReadiness(bool async)
{
    LoopbackServer server;
    QObject window;
    Readiness seen;
    int reported = -1;
    const int socket = WSOCK::connectTo(
        QStringLiteral("127.0.0.1"), server.port(), &window,
        [&](int s, QSocketNotifier::Type event) {
            reported = s;
            if (event == QSocketNotifier::Write) {
                ++seen.writable;
            } else {
                ++seen.readable;
                char drained[64];
                while (recv(s, drained, sizeof drained, MSG_DONTWAIT) > 0) {
                }
            }
        },
        async);
    ASSERT_GE(socket, 0);
    const int peer = server.accept();
    ASSERT_GE(peer, 0);

    EXPECT_TRUE(QTest::qWaitFor([&] { return seen.writable == 1; }, 2000));
    EXPECT_EQ(reported, socket);
    EXPECT_EQ(seen.readable, 0);

    ASSERT_EQ(send(peer, "answer", 6, 0), 6);
    EXPECT_TRUE(QTest::qWaitFor([&] { return seen.readable >= 1; }, 2000));
    const int afterData = seen.readable;

    shutdown(peer, SHUT_WR);
    EXPECT_TRUE(QTest::qWaitFor([&] { return seen.readable > afterData; }, 2000));
    // The end of the stream is told once, and a connected socket is writable only once.
    QTest::qWait(100);
    EXPECT_EQ(seen.readable, afterData + 1);
    EXPECT_EQ(seen.writable, 1);

    WSOCK::closeSocket(socket);
}

TEST(WsockConnect, ReportsConnectedDataAndCloseToTheWindowOnce)
{
    connectWithReadiness(false);
}

TEST(WsockConnect, AsynchronousConnectReportsTheSameWay)
{
    connectWithReadiness(true);
}

} // namespace
