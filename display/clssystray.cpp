#include "display/clssystray.h"

#include <QScopedValueRollback>
#include <QWidget>

#include <algorithm>

namespace {

constexpr int tipFieldLength = 64;

} // namespace

clsSysTray::clsSysTray(QObject *parent)
    : QObject(parent)
    , m_trayIcon(this)
{
    NotifyData.szTip = tipField(QString());
    connect(&m_trayIcon, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) { trayMessage(messageForActivation(reason)); });
}

void clsSysTray::setSourceWindow(QWidget *window)
{
    SourceWindowRef = window;
    // The tray must never be handed an empty picture: until the first ChangeIcon it shows the window's.
    if (window && NotifyData.hIcon.isNull())
        ChangeIcon(window->windowIcon());
}

void clsSysTray::ShowNormal()
{
    if (SourceWindowRef)
        SourceWindowRef->showNormal();
    RemoveFromSysTray();
}

void clsSysTray::RemoveFromSysTray()
{
    m_trayIcon.hide();
}

void clsSysTray::IconInSysTray()
{
    m_trayIcon.show();
}

bool clsSysTray::MinToSysTray()
{
    if (!trayAvailable())
        return false;
    IconInSysTray();
    if (SourceWindowRef)
        SourceWindowRef->hide();
    return true;
}

void clsSysTray::ChangeIcon(const QIcon &icon)
{
    NotifyData.hIcon = icon;
    m_trayIcon.setIcon(icon);
}

void clsSysTray::ChangeToolTip(const QString &text)
{
    TipText = text;
    NotifyData.szTip = tipField(text);
    m_trayIcon.setToolTip(shownTip(NotifyData.szTip));
    if (SourceWindowRef && SourceWindowRef->isMinimized())
        SourceWindowRef->setWindowTitle(text);
}

void clsSysTray::trayMessage(int32_t message)
{
    // A handler that runs its own event loop (the tray menu) must not see the next click.
    if (m_busy)
        return;
    const QScopedValueRollback<bool> busy(m_busy, true);
    switch (message) {
    case 513:
        emit LButtonDown();
        break;
    case 514:
        emit LButtonUp();
        break;
    case 515:
        if (DefaultDblClkFlag)
            ShowNormal();
        emit LButtonDblClk();
        break;
    case 516:
        emit RButtonDown();
        break;
    case 517:
        emit RButtonUp();
        break;
    case 518:
        emit RButtonDblClk();
        break;
    default:
        break;
    }
}

bool clsSysTray::trayAvailable()
{
    return QSystemTrayIcon::isSystemTrayAvailable();
}

int32_t clsSysTray::messageForActivation(QSystemTrayIcon::ActivationReason reason)
{
    // The desktop reports a click once it is complete, and a right click as a request for the menu.
    switch (reason) {
    case QSystemTrayIcon::Trigger:
        return 514;
    case QSystemTrayIcon::DoubleClick:
        return 515;
    case QSystemTrayIcon::Context:
        return 517;
    default: // a plain move over the icon, which raises nothing
        return 512;
    }
}

QString clsSysTray::tipField(const QString &text)
{
    return (text + QChar(0)).leftJustified(tipFieldLength, QLatin1Char(' '), true);
}

QString clsSysTray::shownTip(const QString &field)
{
    const qsizetype end = field.indexOf(QChar(0));
    return field.left(end < 0 ? tipFieldLength - 1 : std::min<qsizetype>(end, tipFieldLength - 1));
}
