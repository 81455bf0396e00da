#include "app/sondarmain.h"

#include <cstdio>

int sondarMain(int, char **)
{
    std::puts("Sondar " SONDAR_VERSION);
    return 0;
}
