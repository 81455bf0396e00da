#pragma once

#include <QNetworkAccessManager>
#include <QObject>
#include <QString>
#include <QUrl>

#include <chrono>
#include <memory>

class QNetworkReply;

// The SMS component: hands a text for a mobile number to an HTTP(S) SMS gateway, one POST with
// a JSON body per message. Sending never blocks; each send ends with one finished().
class SmsGateway : public QObject
{
    Q_OBJECT

public:
    // The component for a gateway URL, or none when the URL is not an absolute http/https URL.
    static std::unique_ptr<SmsGateway> create(const QString &url);

    explicit SmsGateway(QUrl url, QObject *parent = nullptr);

    void setSenderName(const QString &name) { m_senderName = name; }
    void setSenderEmail(const QString &email) { m_senderEmail = email; }
    // The longest the gateway may stay silent before a send is given up.
    void setTimeOut(std::chrono::milliseconds timeOut) { m_timeOut = timeOut; }

    // The account and password authenticate the request and appear nowhere else.
    void send(const QString &account, const QString &password, const QString &countryCode, const QString &carrier,
              const QString &mobileNumber, const QString &message);

    bool hasPendingSend() const { return m_pending > 0; }

Q_SIGNALS:
    // ok: the gateway took the message with a 2xx answer.
    void finished(bool ok);

private:
    void replyFinished(QNetworkReply *reply);

    QUrl m_url;
    QString m_senderName;
    QString m_senderEmail;
    std::chrono::milliseconds m_timeOut = std::chrono::seconds(20);
    QNetworkAccessManager m_network;
    int m_pending = 0;
};
