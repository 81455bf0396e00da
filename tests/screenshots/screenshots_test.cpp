#include "tests/screenshots/xvfbscreen.h"
#include "tests/support/files.h"
#include "tests/support/netlab.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRect>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>

namespace {

constexpr int Samples = 12;

// What the probe inside the program wrote: one fact a line, key first, fields tab-separated.
class Walk
{
public:
    explicit Walk(const QByteArray &report)
    {
        for (const QString &line : QString::fromUtf8(report).split(QLatin1Char('\n'), Qt::SkipEmptyParts))
            m_facts << line.split(QLatin1Char('\t'));
    }

    QString value(const QString &key, int field = 1) const
    {
        const QList<QStringList> found = all(key);
        return found.isEmpty() || found.first().size() <= field ? QString() : found.first().at(field);
    }

    QList<QStringList> all(const QString &key) const
    {
        QList<QStringList> found;
        for (const QStringList &fact : m_facts) {
            if (fact.first() == key)
                found << fact;
        }
        return found;
    }

    // The control's rectangle in the window, from "x,y WxH".
    QRect geometry(const QString &mode, const QString &control) const
    {
        for (const QStringList &fact : all(mode + QStringLiteral("Geometry"))) {
            if (fact.size() < 3 || fact.at(1) != control)
                continue;
            const QStringList parts = fact.at(2).split(QRegularExpression(QStringLiteral("[, x]")));
            if (parts.size() == 4)
                return QRect(parts[0].toInt(), parts[1].toInt(), parts[2].toInt(), parts[3].toInt());
        }
        return {};
    }

private:
    QList<QStringList> m_facts;
};

QSize parseSize(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char('x'));
    return parts.size() == 2 ? QSize(parts[0].toInt(), parts[1].toInt()) : QSize();
}

int countPixels(const QImage &image, const QRect &area, QRgb colour)
{
    int count = 0;
    const QRect inside = area.intersected(image.rect());
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        for (int x = inside.left(); x <= inside.right(); ++x) {
            if ((image.pixel(x, y) & 0xffffff) == (colour & 0xffffff))
                ++count;
        }
    }
    return count;
}

// The real sondar executable on its own X server, in a program directory and settings of its
// own, with the probe plugin loaded into it; the window is worked through both modes.
class ScreenshotsInLab : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (auto reason = netlab::skipReason())
            GTEST_SKIP() << reason->toStdString();
        if (QStandardPaths::findExecutable(QStringLiteral("Xvfb")).isEmpty())
            GTEST_SKIP() << "Xvfb is not installed (scripts/install-deps.sh)";
        ASSERT_TRUE(m_home.isValid());
        ASSERT_TRUE(QDir().mkpath(programDir()) && QDir().mkpath(m_home.filePath(QStringLiteral("config/Sondar")))
                    && QDir().mkpath(SONDAR_SCREENSHOT_DIR));
        ASSERT_TRUE(QDir().mkdir(runtimeDir()) && QFile::setPermissions(runtimeDir(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        ASSERT_TRUE(testfiles::write(QDir(programDir()).filePath(QStringLiteral("hosts.ini")),
                                     ("[HOST]\n1=" + netlab::kDelay150Name + "\n2=" + netlab::kTargetName + "\n3=" + netlab::kR2Name + "\n")
                                         .toUtf8()));
        // Ping is pressed by hand rather than by AutoPing, which would start with the retry box's
        // first text of 10 s instead of this period.
        ASSERT_TRUE(testfiles::write(m_home.filePath(QStringLiteral("config/Sondar/Sondar.conf")),
                                     "[Load]\nAutoPing=0\nAutoLog=1\nTimeOut=1\n"));
    }

    QString programDir() const { return m_home.filePath(QStringLiteral("program")); }
    QString runtimeDir() const { return m_home.filePath(QStringLiteral("runtime")); }

    static QString shotPath(const QString &name) { return QDir(QStringLiteral(SONDAR_SCREENSHOT_DIR)).filePath(name); }

    // Runs the program to the end of the walk; empty when it could not.
    std::optional<Walk> walkThrough(int scale, QSize screenSize, const QString &pingShot, const QString &traceShot)
    {
        XvfbScreen screen;
        QString error;
        if (!screen.start(screenSize, &error)) {
            ADD_FAILURE() << error.toStdString();
            return std::nullopt;
        }
        QFile::remove(pingShot);
        QFile::remove(traceShot);
        const QString report = m_home.filePath(QStringLiteral("walk.txt"));

        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char *name : {"DBUS_SESSION_BUS_ADDRESS", "WAYLAND_DISPLAY", "SONDAR_HOME", "QT_SCREEN_SCALE_FACTORS",
                                 "QT_AUTO_SCREEN_SCALE_FACTOR", "QT_FONT_DPI", "QT_STYLE_OVERRIDE"})
            environment.remove(QLatin1String(name));
        environment.insert(QStringLiteral("DISPLAY"), screen.display());
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        environment.insert(QStringLiteral("QT_SCALE_FACTOR"), QString::number(scale));
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home.filePath(QStringLiteral("config")));
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtimeDir());
        environment.insert(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral(SONDAR_SHOT_PLUGIN_PATH));
        environment.insert(QStringLiteral("QT_QPA_GENERIC_PLUGINS"), QStringLiteral("sondarshots"));
        environment.insert(QStringLiteral("SONDAR_SHOT_REPORT"), report);
        environment.insert(QStringLiteral("SONDAR_SHOT_PING"), pingShot);
        environment.insert(QStringLiteral("SONDAR_SHOT_TRACE"), traceShot);
        environment.insert(QStringLiteral("SONDAR_SHOT_TRACE_HOST"), netlab::kTargetName);
        environment.insert(QStringLiteral("SONDAR_SHOT_SAMPLES"), QString::number(Samples));

        QProcess program;
        program.setProcessEnvironment(environment);
        program.setProcessChannelMode(QProcess::MergedChannels);
        program.start(QStringLiteral(SONDAR_BINARY), {QStringLiteral("--dir"), programDir()});
        const bool finished = program.waitForFinished(300000);
        if (!finished)
            program.kill();
        const QString output = QString::fromLocal8Bit(program.readAll());
        if (!finished || program.exitStatus() != QProcess::NormalExit || program.exitCode() != 0) {
            ADD_FAILURE() << "sondar " << (finished ? "ended with code " + std::to_string(program.exitCode()) : "did not end")
                          << "; it said:\n"
                          << output.toStdString();
            return std::nullopt;
        }
        Walk walk(testfiles::read(report));
        for (const QStringList &error : walk.all(QStringLiteral("error")))
            ADD_FAILURE() << "in the window: " << error.value(1).toStdString() << "\nsondar said:\n" << output.toStdString();
        if (walk.value(QStringLiteral("result")) != QLatin1String("walked")) {
            ADD_FAILURE() << "the walk through the window did not finish";
            return std::nullopt;
        }
        return walk;
    }

    // The checks common to every scale: what the window showed, the log, the two images.
    void expectBothModes(const Walk &walk, int scale, const QString &pingShot, const QString &traceShot)
    {
        EXPECT_EQ(walk.value(QStringLiteral("hosts")), netlab::kDelay150Name);
        EXPECT_EQ(walk.value(QStringLiteral("pingHost")), netlab::kDelay150Name);
        EXPECT_GE(walk.value(QStringLiteral("samples")).toInt(), Samples);
        const QString time = walk.value(QStringLiteral("pingLabel1"));
        ASSERT_TRUE(time.startsWith(QLatin1String("Time: "))) << time.toStdString();
        // The responder answers no sooner than 150 ms after the request.
        EXPECT_GE(time.mid(6).toInt(), 150) << time.toStdString();
        EXPECT_EQ(walk.value(QStringLiteral("pingLabel2")), netlab::kDelay150.text());

        int logged = 0;
        const QDir dir(programDir());
        for (const QString &log : dir.entryList({QStringLiteral("*.log")}, QDir::Files))
            logged += testfiles::read(dir.filePath(log)).count(netlab::kDelay150Name.toUtf8());
        EXPECT_GE(logged, Samples) << "every sample is logged while logging is on";

        EXPECT_EQ(walk.value(QStringLiteral("traceModeChecked")), QStringLiteral("1"));
        EXPECT_EQ(walk.value(QStringLiteral("traceCommand1")), QStringLiteral("Trace"));
        EXPECT_EQ(walk.value(QStringLiteral("tracePictureTip")), QStringLiteral("Mode: Trace"));
        EXPECT_EQ(walk.value(QStringLiteral("traceFlxVisible")), QStringLiteral("1"));
        EXPECT_EQ(walk.value(QStringLiteral("traceHost")), netlab::kTargetName);
        EXPECT_EQ(walk.value(QStringLiteral("traceLabel1")), QStringLiteral("Route Trace has Completed"));
        EXPECT_EQ(walk.value(QStringLiteral("traceLabel2")), netlab::kTarget.text());
        EXPECT_EQ(walk.all(QStringLiteral("flxHeader")).value(0).mid(1),
                  (QStringList{QStringLiteral("N"), QStringLiteral("Host name"), QStringLiteral("IP Address"), QStringLiteral("Time, ms"),
                               QStringLiteral("Network"), QStringLiteral("Country")}));
        // The rows from the second router on: r2 by its name in Germany, r3, then the target.
        const QList<QStringList> hops = walk.all(QStringLiteral("hop"));
        ASSERT_EQ(hops.size(), netlab::kTargetHops - 1);
        EXPECT_EQ(hops[0].value(2), netlab::kR2Name);
        EXPECT_EQ(hops[0].value(3), netlab::kR2.text());
        EXPECT_EQ(hops[0].value(6), QStringLiteral("Germany"));
        EXPECT_EQ(hops[1].value(3), netlab::kR3.text());
        EXPECT_EQ(hops[2].value(2), netlab::kTargetName);
        EXPECT_EQ(hops[2].value(3), netlab::kTarget.text());

        const QSize window = parseSize(walk.value(QStringLiteral("windowSize")));
        ASSERT_TRUE(window.isValid());
        EXPECT_EQ(walk.value(QStringLiteral("onScreen")), QStringLiteral("1")) << "the window reaches off the screen";
        const QImage ping(pingShot);
        const QImage trace(traceShot);
        ASSERT_FALSE(ping.isNull()) << pingShot.toStdString();
        ASSERT_FALSE(trace.isNull()) << traceShot.toStdString();
        EXPECT_EQ(ping.size(), window * scale);
        EXPECT_EQ(trace.size(), window * scale);
        EXPECT_NE(ping, trace) << "the two modes show different pages";

        // The bars of 150 ms are drawn in the first level's colour, pure green by default.
        const QRect graph = walk.geometry(QStringLiteral("ping"), QStringLiteral("fraGraph"));
        ASSERT_TRUE(graph.isValid());
        const QRect graphPixels(graph.topLeft() * scale, graph.size() * scale);
        EXPECT_GE(countPixels(ping, graphPixels, qRgb(0, 255, 0)), Samples * scale * scale) << "no bars on the graph";
        EXPECT_EQ(countPixels(trace, graphPixels, qRgb(0, 255, 0)), 0) << "the graph still shows in Trace mode";

        // Nothing clipped, cut or on top of another control, in either mode.
        QStringList faults;
        for (const char *mode : {"pingLayoutFault", "traceLayoutFault"}) {
            for (const QStringList &fault : walk.all(QLatin1String(mode)))
                faults << fault.value(1);
        }
        EXPECT_TRUE(faults.isEmpty()) << "at " << scale * 100 << " %: " << faults.join(QStringLiteral("; ")).toStdString();
    }

    QTemporaryDir m_home;
};

TEST_F(ScreenshotsInLab, PingAndTraceModesAtNormalScaleShowSamplesAndHops)
{
    const QString pingShot = shotPath(QStringLiteral("ping.png"));
    const QString traceShot = shotPath(QStringLiteral("trace.png"));
    const auto walk = walkThrough(1, QSize(1024, 768), pingShot, traceShot);
    ASSERT_TRUE(walk);
    expectBothModes(*walk, 1, pingShot, traceShot);
}

TEST_F(ScreenshotsInLab, PingAndTraceModesAtDoubleScaleShowSamplesAndHops)
{
    const QString pingShot = shotPath(QStringLiteral("ping-200.png"));
    const QString traceShot = shotPath(QStringLiteral("trace-200.png"));
    const auto walk = walkThrough(2, QSize(2048, 1536), pingShot, traceShot);
    ASSERT_TRUE(walk);
    expectBothModes(*walk, 2, pingShot, traceShot);
}

} // namespace
