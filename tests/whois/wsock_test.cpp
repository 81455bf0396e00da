#include "whois/wsock.h"

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
        close(m_peer);
        close(m_listener);
    }
    uint16_t port() const { return m_port; }
    int accept() { return m_peer = ::accept(m_listener, nullptr, nullptr); }

private:
    int m_listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int m_peer = -1;
    uint16_t m_port = 0;
};

TEST(Wsock, StartUpSetsTheProcessWideFlagThatCleanUpClears)
{
    ASSERT_TRUE(WSOCK::startUp());
    EXPECT_TRUE(WSOCK::started());
    WSOCK::cleanUp();
    EXPECT_FALSE(WSOCK::started());
}

TEST(Wsock, NamesAndAddressesConvertWithTheirOwnFailureValues)
{
    EXPECT_EQ(WSOCK::hostNameOf(QStringLiteral("127.0.0.1")), QStringLiteral("localhost"));
    EXPECT_EQ(WSOCK::hostNameOf(QStringLiteral("not an address")), QStringLiteral("Unknown"));
    EXPECT_EQ(WSOCK::hostNameOf(QString()), QStringLiteral("Unknown"));
    EXPECT_EQ(WSOCK::dottedAddressOf(QStringLiteral("localhost")), QStringLiteral("127.0.0.1"));
    EXPECT_EQ(WSOCK::dottedAddressOf(QStringLiteral("10.20.30.40")), QStringLiteral("10.20.30.40"));
    // Not empty: callers that look for an empty text do not see the failure.
    for (const QString &name : {unresolvable, QString(), QString::fromLatin1("a\0b", 3)})
        EXPECT_EQ(WSOCK::dottedAddressOf(name), QStringLiteral("No IP"));
    EXPECT_EQ(WSOCK::addressOf(QStringLiteral("10.1.2.3")), 0x0a010203u);
    EXPECT_EQ(WSOCK::addressOf(QStringLiteral("localhost")), 0x7f000001u);
    // The broadcast address reads the same as a failure.
    for (const QString &text : {unresolvable, QStringLiteral("No IP"), QStringLiteral("255.255.255.255")})
        EXPECT_EQ(WSOCK::addressOf(text), WSOCK::noAddress);
    EXPECT_EQ(WSOCK::dottedOf(0xc0a80a01), QStringLiteral("192.168.10.1"));
}

TEST(Wsock, ConnectsWithAnAbortiveCloseAndSendsTheWholeString)
{
    LoopbackServer server;
    QString serverAddress;
    const int socket = WSOCK::connectTo(QStringLiteral("localhost"), server.port(), nullptr, {}, false, &serverAddress);
    ASSERT_GE(socket, 0);
    EXPECT_EQ(serverAddress, QStringLiteral("127.0.0.1"));
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

TEST(Wsock, ConnectFailsWithMinusOneWhenRefusedOrUnresolvedAndSendOnAClosedConnectionTooWithoutKillingTheProcess)
{
    uint16_t closedPort = 0;
    {
        LoopbackServer gone;
        closedPort = gone.port();
    }
    for (const QString &host : {QStringLiteral("127.0.0.1"), unresolvable, QStringLiteral("255.255.255.255")})
        EXPECT_EQ(WSOCK::connectTo(host, closedPort), -1) << host.toStdString();

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

TEST(Wsock, ConnectReportsConnectedDataAndCloseToTheWindowOnceWhetherItWaitsForTheHandshakeOrNot)
{
    for (const bool async : {false, true}) {
        SCOPED_TRACE(async ? "asynchronous" : "synchronous");
        LoopbackServer server;
        QObject window;
        int writable = 0;
        int readable = 0;
        int reported = -1;
        const int socket = WSOCK::connectTo(QStringLiteral("127.0.0.1"), server.port(), &window,
            [&](int s, QSocketNotifier::Type event) {
                reported = s;
                if (event == QSocketNotifier::Write) {
                    ++writable;
                    return;
                }
                ++readable;
                char drained[64];
                while (recv(s, drained, sizeof drained, MSG_DONTWAIT) > 0) {
                }
            },
            async);
        ASSERT_GE(socket, 0);
        const int peer = server.accept();
        ASSERT_GE(peer, 0);
        EXPECT_TRUE(QTest::qWaitFor([&] { return writable == 1; }, 2000));
        EXPECT_EQ(reported, socket);
        EXPECT_EQ(readable, 0);

        ASSERT_EQ(send(peer, "answer", 6, 0), 6);
        EXPECT_TRUE(QTest::qWaitFor([&] { return readable >= 1; }, 2000));
        const int afterData = readable;
        shutdown(peer, SHUT_WR);
        EXPECT_TRUE(QTest::qWaitFor([&] { return readable > afterData; }, 2000));
        // The end of the stream is told once, and a connected socket is writable only once.
        QTest::qWait(100);
        EXPECT_EQ(readable, afterData + 1);
        EXPECT_EQ(writable, 1);
        WSOCK::closeSocket(socket);
    }
}

} // namespace
