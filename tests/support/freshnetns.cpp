#include "tests/support/freshnetns.h"

#include <QFile>

#include <linux/capability.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <thread>

namespace freshnetns {

namespace {

QString systemError(const char *what)
{
    return QStringLiteral("%1: %2").arg(QLatin1String(what), QString::fromLocal8Bit(std::strerror(errno)));
}

std::optional<QString> bringLoopbackUp()
{
    const int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return systemError("socket");
    ifreq request{};
    std::strncpy(request.ifr_name, "lo", IFNAMSIZ - 1);
    std::optional<QString> failure;
    if (ioctl(fd, SIOCGIFFLAGS, &request) != 0)
        failure = systemError("SIOCGIFFLAGS lo");
    request.ifr_flags = short(request.ifr_flags | IFF_UP);
    if (!failure && ioctl(fd, SIOCSIFFLAGS, &request) != 0)
        failure = systemError("SIOCSIFFLAGS lo");
    close(fd);
    return failure;
}

} // namespace

std::optional<QString> skipReason()
{
    if (geteuid() != 0)
        return QStringLiteral("creating a network namespace needs root");
    return std::nullopt;
}

std::optional<QString> run(const std::function<void()> &body)
{
    std::optional<QString> failure;
    std::thread thread([&] {
        // unshare moves only the calling thread, which is why the body runs on a thread of its own.
        if (unshare(CLONE_NEWNET) != 0)
            failure = systemError("unshare(CLONE_NEWNET)");
        else
            failure = bringLoopbackUp();
        if (!failure)
            body();
    });
    thread.join();
    return failure;
}

bool dropRawCapability()
{
    // The raw system calls: they change the calling thread only, where libc would change all.
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[2]{};
    if (syscall(SYS_capget, &header, data) != 0)
        return false;
    data[CAP_NET_RAW / 32].effective &= ~(1u << (CAP_NET_RAW % 32));
    return syscall(SYS_capset, &header, data) == 0;
}

bool writeSysctl(const QString &name, const QString &value)
{
    QFile file(QStringLiteral("/proc/sys/") + name);
    return file.open(QIODevice::WriteOnly) && file.write(value.toUtf8()) == value.toUtf8().size() && file.flush();
}

} // namespace freshnetns
