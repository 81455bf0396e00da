#pragma once

#include <QDateTime>
#include <QString>

#include <cstdint>
#include <optional>

struct SmsSettings;

// The text of an SMS alert for one measurement, or nullopt when no rule asks for one.
namespace smstext {

// Only the first rule switched on is looked at: greater, then less, then no answer (-1).
// The chosen template gets "@PING@" (the rules on time only), "@HOST@" and "@TIME@" replaced,
// in that order, and the application's title in front.
std::optional<QString> messageFor(const SmsSettings &settings, const QString &host, int32_t pingTime,
                                  const QDateTime &now);

} // namespace smstext
