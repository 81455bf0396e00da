#include "platform/smsgateway.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkReply>
#include <QNetworkRequest>

std::unique_ptr<SmsGateway> SmsGateway::create(const QString &url)
{
    const QUrl parsed(url, QUrl::StrictMode);
    const QString scheme = parsed.scheme().toLower();
    const bool web = scheme == QLatin1String("http") || scheme == QLatin1String("https");
    if (!parsed.isValid() || parsed.host().isEmpty() || !web)
        return nullptr;
    return std::make_unique<SmsGateway>(parsed);
}

SmsGateway::SmsGateway(QUrl url, QObject *parent)
    : QObject(parent)
    , m_url(std::move(url))
{
    connect(&m_network, &QNetworkAccessManager::finished, this, &SmsGateway::replyFinished);
}

void SmsGateway::send(const QString &account, const QString &password, const QString &countryCode,
                      const QString &carrier, const QString &mobileNumber, const QString &message)
{
    QNetworkRequest request(m_url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    // Sent up front: gateways answer a missing login with an error, not with a challenge.
    request.setRawHeader("Authorization", "Basic " + (account + QLatin1Char(':') + password).toUtf8().toBase64());
    request.setTransferTimeout(static_cast<int>(m_timeOut.count()));
    // The login must never follow a redirect to another site.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::SameOriginRedirectPolicy);

    // The options dialog suggests typing the code as "+7"; the number must not become "++7...".
    QString code = countryCode;
    while (code.startsWith(QLatin1Char('+')))
        code.remove(0, 1);

    const QJsonObject body{
        {QStringLiteral("senderName"), m_senderName},
        {QStringLiteral("senderEmail"), m_senderEmail},
        {QStringLiteral("account"), account},
        {QStringLiteral("to"), QLatin1Char('+') + code + mobileNumber},
        {QStringLiteral("carrier"), carrier},
        {QStringLiteral("message"), message},
    };
    ++m_pending;
    m_network.post(request, QJsonDocument(body).toJson(QJsonDocument::Compact));
}

void SmsGateway::replyFinished(QNetworkReply *reply)
{
    reply->deleteLater();
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const bool ok = reply->error() == QNetworkReply::NoError && status >= 200 && status < 300;
    --m_pending;
    Q_EMIT finished(ok);
}
