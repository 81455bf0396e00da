#pragma once

#include "platform/icmpecho.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>

// The texts the tracer raises for one reply, in the order it raises them.
struct ReplyReport {
    QStringList statusTexts;          // the status table's text, if the code has one; then " (code)"
    std::optional<QString> errorText; // "code:" for any status but success
    QString logLine;

    // hop: the hop number while tracing, nullopt for a single echo. detail: the detail text that
    // follows the code in the status and error texts and a failed single echo's log line.
    static ReplyReport of(const IcmpEcho::Reply &reply, std::optional<int> hop, const QString &detail);

    // The status table; nullopt for a code it has no text for (11002 among them).
    static std::optional<QString> statusText(uint32_t code);
};
