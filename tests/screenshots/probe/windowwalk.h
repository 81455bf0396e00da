#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

class QWidget;

// Works the main window the way a user does: Ping on the first host for a few samples, Stop,
// the mode picture, Trace on a chosen host. It writes what the window showed at each point,
// and the screenshots, for the check that started the program to judge.
class WindowWalk : public QObject
{
    Q_OBJECT

public:
    struct Plan {
        QString reportPath;
        QString pingShotPath;
        QString traceShotPath;
        QString traceHost;
        int samples = 5;
    };

    // Null when the check set no report path, so a stray load of the plugin changes nothing.
    static WindowWalk *fromEnvironment();

    explicit WindowWalk(Plan plan);

private:
    Q_SLOT void countSample() { ++m_samples; }
    void run();
    bool walk();
    bool grab(const QString &key, const QString &path);
    void noteLayout(const QString &mode);
    void note(const QString &key, const QString &value);
    void note(const QString &key, const QStringList &values);
    bool fail(const QString &why);

    template<typename T>
    T *control(const char *name);

    Plan m_plan;
    QPointer<QWidget> m_window;
    QStringList m_lines;
    int m_samples = 0;
};
