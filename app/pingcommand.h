#pragma once

#include "core/environment.h"

#include <QString>

struct PingCommandOptions {
    QString host;
    int periodSeconds = 0; // 0: the stored retry time
    int count = 0;         // 0: until interrupted
    bool log = false;
};

// The polling cycle without a window: one line per sample, the exit status of the last one.
int runPingCommand(const PingCommandOptions &options, const Environment &env);
