#pragma once

#include <QProcess>
#include <QTemporaryDir>

#include <memory>

// A private X display for a test: Xvfb on a number it picks itself and, when asked, the panel
// tint2 holding a system tray. Both end with the session.
class XSession
{
public:
    ~XSession();

    // The programs this machine lacks for a session, as a reason to skip; empty when all are there.
    static QString missingPrograms(bool withTray);

    // False with `error` set when the display or the tray host did not come up.
    bool start(bool withTray, QString *error);

    // Runs this test executable on the display with the xcb platform and only `testFilter`.
    int runTests(const QString &testFilter, const QString &sessionKind, QString *output) const;

private:
    QProcessEnvironment environment() const;

    QTemporaryDir m_dir;
    QString m_display;
    std::unique_ptr<QProcess> m_server;
    std::unique_ptr<QProcess> m_trayHost;
};
