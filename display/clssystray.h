#pragma once

#include <QIcon>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QSystemTrayIcon>

#include <cstdint>

class QWidget;

// The main window's icon in the tray while it is minimised. The tray's mouse messages become six
// events; a left double click restores the window by itself unless told not to. Messages carry
// the classic mouse message numbers (513..518), whatever the desktop delivers them by.
class clsSysTray : public QObject
{
    Q_OBJECT

public:
    // The notification record as it is filled for the tray.
    struct NotifyIconData {
        uint32_t cbSize = 88;
        uint32_t uID = 1;
        uint32_t uFlags = 7; // message + icon + tip
        uint32_t uCallbackMessage = 512;
        QIcon hIcon;
        QString szTip; // always 64 characters; see tipField()
    };

    explicit clsSysTray(QObject *parent = nullptr);

    QString ToolTip() const { return TipText; }
    void setToolTip(const QString &text) { ChangeToolTip(text); }
    QIcon Icon() const { return NotifyData.hIcon; }
    void setIcon(const QIcon &icon) { ChangeIcon(icon); }
    bool DefaultDblClk() const { return DefaultDblClkFlag; }
    void setDefaultDblClk(bool restores) { DefaultDblClkFlag = restores; }
    QWidget *SourceWindow() const { return SourceWindowRef; }
    void setSourceWindow(QWidget *window);

    void ShowNormal();
    void RemoveFromSysTray();
    void IconInSysTray();
    // Returns whether the window was hidden into the tray. Without a tray on this desktop it
    // stays minimised in the task bar, so that it can always be brought back.
    bool MinToSysTray();
    void ChangeIcon(const QIcon &icon);
    void ChangeToolTip(const QString &text);

    // One mouse message from the tray: 513..518 raise their event, anything else is ignored, and a
    // message that arrives while an event is being handled is dropped.
    void trayMessage(int32_t message);

    const NotifyIconData &notifyData() const { return NotifyData; }

    static bool trayAvailable();
    static int32_t messageForActivation(QSystemTrayIcon::ActivationReason reason);
    // The text and one NUL, padded with blanks to 64 characters; 64 characters or more are cut
    // to 64 and carry no NUL.
    static QString tipField(const QString &text);
    // What the tray shows of a tip field: up to the NUL, at most 63 characters.
    static QString shownTip(const QString &field);

signals:
    void LButtonDblClk();
    void LButtonDown();
    void LButtonUp();
    void RButtonDblClk();
    void RButtonDown();
    void RButtonUp();

private:
    NotifyIconData NotifyData;
    QString TipText;
    QPointer<QWidget> SourceWindowRef;
    bool DefaultDblClkFlag = true;
    bool m_busy = false;
    QSystemTrayIcon m_trayIcon;
};
