#pragma once

#include <QHostAddress>
#include <QMap>
#include <QTcpServer>
#include <QTcpSocket>
#include <QVector>

#include <memory>

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
    {
        m_server.listen(QHostAddress::LocalHost);
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this, status] {
            while (QTcpSocket *socket = m_server.nextPendingConnection()) {
                auto buffer = std::make_shared<QByteArray>();
                QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
                QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket, buffer, status] {
                    buffer->append(socket->readAll());
                    const qsizetype headEnd = buffer->indexOf("\r\n\r\n");
                    if (headEnd < 0)
                        return;
                    const QList<QByteArray> lines = buffer->left(headEnd).split('\n');
                    const QList<QByteArray> requestLine = lines.first().trimmed().split(' ');
                    Request request{requestLine.value(0), requestLine.value(1), {}, {}};
                    for (const QByteArray &line : lines.mid(1)) {
                        if (const qsizetype colon = line.indexOf(':'); colon > 0)
                            request.headers.insert(line.left(colon).trimmed().toLower(), line.mid(colon + 1).trimmed());
                    }
                    const qsizetype length = request.headers.value("content-length", "0").toLongLong();
                    if (buffer->size() < headEnd + 4 + length)
                        return;
                    request.body = buffer->mid(headEnd + 4, length);
                    buffer->clear();
                    requests.append(request);
                    if (m_silent)
                        return;
                    socket->write("HTTP/1.1 " + QByteArray::number(status) + " Answer\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
                    socket->disconnectFromHost();
                });
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
        return QStringLiteral("http://127.0.0.1:%1/sms/send").arg(probe.serverPort());
    }

    QVector<Request> requests;

private:
    QTcpServer m_server;
    bool m_silent = false;
};
