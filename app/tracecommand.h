#pragma once

#include <QString>

// The timeout of each echo when `sondar trace` is given no --timeout.
constexpr int defaultTraceTimeoutMs = 1000;

// `sondar trace HOST [--timeout MS] [--dir PATH]`: traces the route to host without a window,
// printing every log line as it comes and then the table of hops. Ctrl-C cancels ("Canceled").
// programDir is where a country.txt of the user's own would lie. Runs on the caller's
// QCoreApplication, or on one of its own when there is none. Returns 0 when the destination
// answered, 1 when the trace ended otherwise, 2 when this system allows no ICMP socket.
int runTraceCommand(const QString &host, int timeoutMs, const QString &programDir);
