#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QMap>
#include <QTcpServer>
#include <QTcpSocket>
#include <QVector>

#include <memory>
#include <optional>

// A small HTTP/1.1 server on 127.0.0.1 that plays an SMS gateway: it keeps every request and
// answers each with a fixed status, or never answers at all.
class SmsGatewayServer
{
public:
    struct Request {
        QByteArray method;
        QByteArray path;
        QMap<QByteArray, QByteArray> headers; // names in lower case
        QByteArray body;
    };

    explicit SmsGatewayServer(int status = 200)
        : m_status(status)
    {
        m_server.listen(QHostAddress::LocalHost);
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            while (QTcpSocket *socket = m_server.nextPendingConnection()) {
                auto buffer = std::make_shared<QByteArray>();
                QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket, buffer] {
                    buffer->append(socket->readAll());
                    if (auto request = parse(*buffer)) {
                        buffer->clear();
                        answer(socket, std::move(*request));
                    }
                });
                QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
    }

    void setSilent(bool silent) { m_silent = silent; }
    QString url() const { return QStringLiteral("http://127.0.0.1:%1/sms/send").arg(m_server.serverPort()); }

    // A URL on a loopback port where nothing listens.
    static QString refusedUrl()
    {
        QTcpServer probe;
        probe.listen(QHostAddress::LocalHost);
        const quint16 port = probe.serverPort();
        probe.close();
        return QStringLiteral("http://127.0.0.1:%1/sms/send").arg(port);
    }

    QVector<Request> requests;

private:
    static std::optional<Request> parse(const QByteArray &buffer)
    {
        const qsizetype headEnd = buffer.indexOf("\r\n\r\n");
        if (headEnd < 0)
            return std::nullopt;
        const QList<QByteArray> lines = buffer.left(headEnd).split('\n');
        const QList<QByteArray> requestLine = lines.first().trimmed().split(' ');
        Request request;
        request.method = requestLine.value(0);
        request.path = requestLine.value(1);
        for (qsizetype i = 1; i < lines.size(); ++i) {
            const qsizetype colon = lines[i].indexOf(':');
            if (colon > 0)
                request.headers.insert(lines[i].left(colon).trimmed().toLower(), lines[i].mid(colon + 1).trimmed());
        }
        const qsizetype length = request.headers.value("content-length", "0").toLongLong();
        if (buffer.size() < headEnd + 4 + length)
            return std::nullopt;
        request.body = buffer.mid(headEnd + 4, length);
        return request;
    }

    void answer(QTcpSocket *socket, Request request)
    {
        requests.append(std::move(request));
        if (m_silent)
            return;
        socket->write("HTTP/1.1 " + QByteArray::number(m_status)
                      + " Answer\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
        socket->disconnectFromHost();
    }

    QTcpServer m_server;
    int m_status;
    bool m_silent = false;
};
