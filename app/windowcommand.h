#pragma once

#include <QString>

// Opens the monitor window and runs until it closes.
int runWindow(int argc, char **argv, const QString &dirOption);
