// The ping graph's per-sample cost on a 1920-pixel-wide frame, and its memory over a day of
// samples at a 1-second period. Prints figures; asserts nothing.

#include "core/levelscale.h"
#include "display/pinggraph.h"
#include "platform/settingsstore.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QThread>

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <random>

namespace {

constexpr int frameWidth = 1920;
constexpr int frameHeight = 240;
constexpr int warmUpSamples = 500;
constexpr int measuredSamples = 5000;
constexpr int samplesPerDay = 86400;

QString cpuModel()
{
    QFile cpuinfo(QStringLiteral("/proc/cpuinfo"));
    if (!cpuinfo.open(QIODevice::ReadOnly))
        return QStringLiteral("unknown");
    for (QByteArray line = cpuinfo.readLine(); !line.isEmpty(); line = cpuinfo.readLine()) {
        if (line.startsWith("model name"))
            return QString::fromLatin1(line.mid(line.indexOf(':') + 1).trimmed());
    }
    return QStringLiteral("unknown");
}

long peakRssKb()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

long currentRssKb()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return -1;
    const QList<QByteArray> fields = statm.readAll().split(' ');
    return fields.size() > 1 ? fields[1].toLong() * (sysconf(_SC_PAGESIZE) / 1024) : -1;
}

// Replies as a line shows them: mostly tens of ms, some slow ones, a few lost, now and then one past the scale.
class Replies
{
public:
    int32_t next()
    {
        const int roll = int(m_random() % 1000);
        if (roll < 20)
            return 0;
        if (roll < 25)
            return 3000 + int32_t(m_random() % 2000);
        if (roll < 100)
            return 400 + int32_t(m_random() % 1200);
        return 20 + int32_t(m_random() % 180);
    }

private:
    std::mt19937 m_random{20261121};
};

struct Timing {
    double totalMs = 0;
    double maxMs = 0;
    int count = 0;

    void add(double ms)
    {
        totalMs += ms;
        maxMs = std::max(maxMs, ms);
        ++count;
    }
    void print(const char *what) const
    {
        std::printf("  %-44s mean %.3f ms  max %.3f ms  (%d samples)\n", what, totalMs / count, maxMs, count);
    }
};

double elapsedMs(const QElapsedTimer &timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    std::setvbuf(stdout, nullptr, _IOLBF, 0); // the day takes a while: show each figure as it comes

    QTemporaryDir dir;
    SettingsStore settings(dir.filePath(QStringLiteral("sondar.ini")));
    LevelScale levels;
    levels.LoadLevelScale(settings);

    PingGraph graph(levels);
    graph.resize(frameWidth, frameHeight);
    graph.createPointBuffer();
    graph.RebuildGraphFrame(settings);

    std::printf("graph_repaint_bench\n");
    std::printf("  machine: %s, %d logical cores; %s, kernel %s\n", qPrintable(cpuModel()), QThread::idealThreadCount(),
                qPrintable(QSysInfo::prettyProductName()), qPrintable(QSysInfo::kernelVersion()));
    std::printf("  Qt %s, platform %s, logical dpi %d\n", qVersion(), qPrintable(QGuiApplication::platformName()),
                graph.logicalDpiX());
    std::printf("  frame %dx%d px, plot area %dx%d px, %d points\n", frameWidth, frameHeight, graph.plotArea().width(),
                graph.plotArea().height(), graph.model().PointCount() + 1);

    // The widget paints into an image as the window's backing store would: only the plot area per sample.
    QImage image(graph.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    const QRegion plot(graph.plotArea());
    Replies replies;
    for (int i = 0; i < warmUpSamples; ++i) {
        graph.AddGraphPoint(replies.next());
        graph.render(&image, QPoint(), plot);
    }

    Timing addOnly, addAndRepaint, addAndFullRender;
    QElapsedTimer timer;
    for (int i = 0; i < measuredSamples; ++i) {
        timer.start();
        graph.AddGraphPoint(replies.next());
        addOnly.add(elapsedMs(timer));

        timer.start();
        graph.AddGraphPoint(replies.next());
        graph.render(&image, QPoint(), plot);
        addAndRepaint.add(elapsedMs(timer));

        timer.start();
        graph.AddGraphPoint(replies.next());
        graph.render(&image);
        addAndFullRender.add(elapsedMs(timer));
    }
    std::printf("per sample (goal: under 2 ms for the repaint)\n");
    addOnly.print("AddGraphPoint");
    addAndRepaint.print("AddGraphPoint + repaint of the plot area");
    addAndFullRender.print("AddGraphPoint + render of the whole frame");

    // A day at one sample a second, each repainted as in the window.
    std::printf("a day of samples (%d AddGraphPoint calls, each with its repaint)\n", samplesPerDay);
    const long peakBefore = peakRssKb();
    const long currentBefore = currentRssKb();
    long currentAfterHour = 0;
    timer.start();
    for (int second = 1; second <= samplesPerDay; ++second) {
        graph.AddGraphPoint(replies.next());
        graph.render(&image, QPoint(), plot);
        if (second == 3600)
            currentAfterHour = currentRssKb();
    }
    std::printf("  took %.0f ms\n", elapsedMs(timer));
    std::printf("  peak RSS   before %ld kB, after %ld kB (%+ld kB)\n", peakBefore, peakRssKb(), peakRssKb() - peakBefore);
    std::printf("  current RSS before %ld kB, after one hour %ld kB, after the day %ld kB\n", currentBefore, currentAfterHour,
                currentRssKb());
    return 0;
}
