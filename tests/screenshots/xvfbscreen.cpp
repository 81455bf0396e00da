#include "tests/screenshots/xvfbscreen.h"

XvfbScreen::~XvfbScreen()
{
    // Ended with a signal it handles, Xvfb removes its lock file and socket.
    if (m_server.state() != QProcess::NotRunning) {
        m_server.terminate();
        m_server.waitForFinished(5000);
    }
}

bool XvfbScreen::start(QSize size, QString *error)
{
    // Xvfb writes the number of the display it chose once it takes connections. The fixed dpi
    // keeps the program's point sizes the same on every machine.
    const QString screen = QStringLiteral("%1x%2x24").arg(size.width()).arg(size.height());
    m_server.start(QStringLiteral("Xvfb"), {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                                            QStringLiteral("0"), screen, QStringLiteral("-dpi"), QStringLiteral("96"),
                                            QStringLiteral("-nolisten"), QStringLiteral("tcp")});
    while (!m_server.canReadLine() && m_server.waitForReadyRead(15000)) {
    }
    const QByteArray number = m_server.readLine().trimmed();
    if (number.isEmpty()) {
        *error = QStringLiteral("Xvfb did not start: ") + QString::fromLocal8Bit(m_server.readAllStandardError());
        return false;
    }
    m_display = QLatin1Char(':') + QString::fromLatin1(number);
    return true;
}
