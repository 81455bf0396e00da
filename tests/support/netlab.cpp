#include "tests/support/netlab.h"

#include <sys/stat.h>
#include <unistd.h>

namespace netlab {

namespace {

// The lab's client namespace as ip-netns names it; the same test that `ip netns identify` does.
bool insideClientNamespace()
{
    struct stat own {};
    struct stat client {};
    return stat("/proc/self/ns/net", &own) == 0 && stat("/run/netns/sdl-client", &client) == 0
        && own.st_dev == client.st_dev && own.st_ino == client.st_ino;
}

} // namespace

QString Address::text() const
{
    return QStringLiteral("%1.%2.%3.%4")
        .arg(value >> 24)
        .arg((value >> 16) & 0xff)
        .arg((value >> 8) & 0xff)
        .arg(value & 0xff);
}

std::optional<QString> skipReason()
{
    const QString told = qEnvironmentVariable("SONDAR_NETLAB_SKIP");
    if (!told.isEmpty())
        return told;
    if (geteuid() != 0)
        return QStringLiteral("the test lab needs root (network namespaces, raw sockets)");
    if (!insideClientNamespace())
        return QStringLiteral("not inside the test lab: run through tests/netlab/lab.sh exec");
    return std::nullopt;
}

} // namespace netlab
