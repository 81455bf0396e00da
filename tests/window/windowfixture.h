#pragma once

#include "core/environment.h"
#include "core/pollingcycle.h"
#include "core/window/f_ping.h"
#include "platform/settingsstore.h"
#include "tests/support/files.h"
#include "tests/support/recordingsink.h"
#include "tests/support/testclock.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

// A real main window in a temporary program directory with its own settings file,
// a test clock and a sink that keeps every message box.
class WindowFixture : public ::testing::Test
{
protected:
    void TearDown() override
    {
        if (window)
            window->close();
        window.reset();
    }

    SettingsStore &settings() { return m_settings; }

    void load()
    {
        window = std::make_unique<f_Ping>(Environment{m_settings, clock, sink, dir.path(), QStringLiteral("sondar")});
        window->Form_Load();
        window->show();
    }

    template<typename T>
    T *child(const char *name) const
    {
        T *found = window->findChild<T *>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << "no control named " << name;
        return found;
    }

    // One tick once the start hold-off has passed; true when a probe went out.
    bool tickAfterHoldOff()
    {
        clock.advanceMs(5000);
        window->cycle().Timer1_Timer();
        return window->cycle().isBusy();
    }

    bool waitForOutcome(int ms = 15000)
    {
        return QTest::qWaitFor([this] { return !window->cycle().isBusy(); }, ms);
    }

    QByteArray readFile(const QString &name) const { return testfiles::read(dir.filePath(name)); }

    QTemporaryDir dir;
    TestClock clock;
    RecordingSink sink;
    std::unique_ptr<f_Ping> window;

private:
    SettingsStore m_settings{dir.filePath(QStringLiteral("settings.ini"))};
};
