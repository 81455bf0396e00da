#pragma once

#include <QString>

class Clock;
class MessageSink;
class SettingsStore;

// What every front end hands the monitor: where its files live and the services it talks through.
struct Environment {
    SettingsStore &settings;
    const Clock &clock;
    MessageSink &sink;
    QString programDir;  // hosts.ini, the logs, country.txt
    QString logBaseName; // the executable's name: the common log is <logBaseName>.log
};
