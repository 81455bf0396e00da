// The terminal monitor at a 1-second period for 60 samples to loopback: CPU time, peak RSS,
// and the open descriptors seen while it runs (they must not grow from probe to probe).

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <thread>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

int openDescriptors(pid_t pid)
{
    return int(QDir(QStringLiteral("/proc/%1/fd").arg(pid)).entryList(QDir::NoDotAndDotDot | QDir::AllEntries).size());
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int samples = argc > 1 ? std::atoi(argv[1]) : 60;
    const QString sondar = QFileInfo(QCoreApplication::applicationDirPath() + QStringLiteral("/../app/sondar")).canonicalFilePath();
    if (sondar.isEmpty()) {
        std::fprintf(stderr, "terminal_monitor_bench: build the sondar executable first\n");
        return 1;
    }
    QTemporaryDir dir;
    const QByteArray program = sondar.toLocal8Bit();
    const QByteArray count = QByteArray::number(samples);
    const QByteArray dirPath = dir.path().toLocal8Bit();

    const auto started = std::chrono::steady_clock::now();
    const pid_t pid = fork();
    if (pid == 0) {
        if (!freopen("/dev/null", "w", stdout))
            _exit(127);
        execl(program.constData(), program.constData(), "ping", "127.0.0.1", "--period", "1", "--count",
              count.constData(), "--dir", dirPath.constData(), static_cast<char *>(nullptr));
        _exit(127);
    }
    int firstDescriptors = 0, lastDescriptors = 0, mostDescriptors = 0;
    int status = 0;
    rusage usage{};
    while (wait4(pid, &status, WNOHANG, &usage) == 0) {
        const int n = openDescriptors(pid);
        if (n > 0) {
            firstDescriptors = firstDescriptors ? firstDescriptors : n;
            lastDescriptors = n;
            mostDescriptors = std::max(mostDescriptors, n);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(250));
    }
    const double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    const double cpu = double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
        + double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;

    std::printf("samples: %d at a 1 s period, exit status %d\n", samples, WIFEXITED(status) ? WEXITSTATUS(status) : -1);
    std::printf("wall time: %.1f s (the first 5 s are the start hold-off)\n", wall);
    std::printf("CPU time: %.3f s = %.3f %% of one core over the run\n", cpu, 100.0 * cpu / wall);
    std::printf("peak RSS: %.1f MB\n", double(usage.ru_maxrss) / 1024.0);
    // A probe holds its socket only while it waits; a leak would grow the count from probe to probe.
    std::printf("open descriptors: %d at start, %d at the end, %d at most (a probe's socket while it waits)\n",
                firstDescriptors, lastDescriptors, mostDescriptors);
    return 0;
}
