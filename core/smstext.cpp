#include "core/smstext.h"

#include "core/productinfo.h"
#include "core/smssettings.h"

namespace smstext {
namespace {

QString withPing(const SmsSettings &settings, const QString &host, int32_t pingTime)
{
    QString text = settings.Template;
    text.replace(QStringLiteral("@PING@"), QString::number(pingTime));
    return text.replace(QStringLiteral("@HOST@"), host);
}

} // namespace

std::optional<QString> messageFor(const SmsSettings &settings, const QString &host, int32_t pingTime,
                                  const QDateTime &now)
{
    QString text;
    if (settings.IfGreater == 1) {
        if (pingTime <= settings.Greater)
            return std::nullopt;
        text = withPing(settings, host, pingTime);
    } else if (settings.IfLess == 1) {
        if (pingTime >= settings.Less)
            return std::nullopt;
        text = withPing(settings, host, pingTime);
    } else if (settings.IfTimeout == 1) {
        if (pingTime != -1)
            return std::nullopt;
        text = settings.TimeoutTemplate;
        text.replace(QStringLiteral("@HOST@"), host);
    } else {
        return std::nullopt;
    }
    text.replace(QStringLiteral("@TIME@"), now.toString(QStringLiteral("dd.MM.yyyy hh:mm:ss")));
    return productinfo::productName() + QStringLiteral(" ping statistics. ") + text;
}

} // namespace smstext
