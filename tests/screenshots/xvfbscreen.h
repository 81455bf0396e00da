#pragma once

#include <QProcess>
#include <QSize>
#include <QString>

// An X server of its own for one run of the program: Xvfb on a display number it picks itself,
// one screen of the given size at 96 dpi. It ends with the object.
class XvfbScreen
{
public:
    ~XvfbScreen();

    // False with `error` set when the server did not come up.
    bool start(QSize size, QString *error);

    QString display() const { return m_display; }

private:
    QProcess m_server;
    QString m_display;
};
