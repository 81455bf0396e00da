#pragma once

#include "core/messagesink.h"

#include <QString>

#include <optional>

// The rules of the retry-time box: what each edit stores and what leaving the box corrects.
namespace retrytime {

// The `TimeOut` setting an edit of the box stores: "0" put in front and read as an integer,
// below 1 stored as 10, above 60 as 60.
int storedTimeOut(const QString &text);

struct Correction {
    MessageSink::Icon icon;
    QString message;
    QString text; // what the box shows afterwards
};

// Leaving the box: not numeric -> "Invalid number!" and "10"; above 60 -> the 60-seconds note and "60".
std::optional<Correction> validate(const QString &text);

// Interval of the polling timer for the box's text, in ms (the text read as a number).
int timerIntervalMs(const QString &text);

// How long one probe may wait: interval - 100 below 10 s, else exactly 10 s.
int probeTimeoutMs(int intervalMs);

} // namespace retrytime
