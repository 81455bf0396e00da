#pragma once

#include "core/busypointer.h"
#include "core/cycleview.h"
#include "core/environment.h"
#include "core/levelscale.h"

#include <QDateTime>
#include <QMainWindow>

#include <memory>

class PingLog;
class SmsAlerts;
class Ping;
class PollingCycle;
class CountryTable;
class PingGraph;
class QMenu;
class clsSysTray;
class HostComboBox;
class HostListEditor;
class QCheckBox;
class QStackedWidget;
class QToolButton;
class sdTrace;
class QLabel;
class QLineEdit;
class QPushButton;
class QTimer;
class StatusLamp;

// The main window: the host to watch, the retry time, Ping and Stop, the results and the log controls.
class f_Ping : public QMainWindow, public CycleView
{
    Q_OBJECT

public:
    explicit f_Ping(const Environment &env, QWidget *parent = nullptr);
    ~f_Ping() override;

    // Runs the start-up steps; the window is usable before and after, and shows itself afterwards.
    void Form_Load();

    void Command1_Click();
    void Command2_Click();
    void txtTime_Change();
    bool txtTime_Validate();
    void chkLog_Click();
    void cmdShowLog_Click();
    void cmdLogClear_Click();
    void cmb_Click();
    void cmb_DropDown();
    void chkHosts_Click();
    void chkMode_Click();
    void fraGraph_DblClick();
    void mnuMain_about_Click();
    void mnuMain_start_Click();
    void mnuMain_stop_Click();
    void mnuMain_show_Click();
    void mnuMain_exit_Click();

    PollingCycle &cycle() { return *m_cycle; }
    Ping &png() { return *m_png; }
    PingLog &log() { return *m_log; }
    SmsAlerts &sms() { return *m_sms; }
    sdTrace &traceView() { return *m_sdTrace1; }
    PingGraph &graph() { return *m_graph; }
    clsSysTray &sysTray() { return *m_gSysTray; }
    QMenu &trayMenu() { return *m_mnuMain; }
    bool isTraceMode() const;
    const QDateTime &loadTime() const { return m_loadTime; }
    QTimer &Timer1();

    // CycleView
    QString hostText() const override;
    bool isMinimised() const override;
    void setTimeLabel(const QString &text) override;
    QString addressLabel() const override;
    void setAddressLabel(const QString &text) override;
    void setLamp(uint32_t colour) override;
    void setBusyPointer(bool busy) override;
    void showProbing() override;
    void showResultState(const QString &caption, const QString &levelName) override;
    void addGraphPoint(int32_t value) override;

Q_SIGNALS:
    // The window has closed for good; the program ends with it even while it sat in the tray.
    void unloaded();

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildControls();
    void loadHostList();
    void Form_QueryUnload();
    void Form_Unload();
    void setStatusText(const QString &text);
    void showModePage();
    void buildTrayMenu();
    void Form_Resize();
    void showInTray();

    Environment m_env;
    LevelScale m_levels;
    std::unique_ptr<CountryTable> m_countries;
    std::unique_ptr<PingLog> m_log;
    Ping *m_png = nullptr;
    PollingCycle *m_cycle = nullptr;
    SmsAlerts *m_sms = nullptr;
    QDateTime m_loadTime;
    BusyPointer m_pointer;
    bool m_unloaded = false;
    bool m_validating = false; // the box's own message box takes the focus too

    HostComboBox *m_cmb = nullptr;
    QLineEdit *m_txtTime = nullptr;
    QPushButton *m_command1 = nullptr;
    QPushButton *m_command2 = nullptr;
    QLabel *m_label1 = nullptr;
    QLabel *m_label2 = nullptr;
    StatusLamp *m_shpStatus = nullptr;
    QCheckBox *m_chkLog = nullptr;
    QPushButton *m_cmdShowLog = nullptr;
    QPushButton *m_cmdLogClear = nullptr;
    QLabel *m_lblStatus = nullptr;
    QLabel *m_imgSMS = nullptr;
    QStackedWidget *m_display = nullptr;
    PingGraph *m_graph = nullptr;
    clsSysTray *m_gSysTray = nullptr;
    QMenu *m_mnuMain = nullptr;
    bool m_toldNoTray = false;
    HostListEditor *m_hostEditor = nullptr;
    QCheckBox *m_chkHosts = nullptr;
    QPushButton *m_cmdOptions = nullptr;
    QCheckBox *m_chkMode = nullptr;
    QToolButton *m_LDPIC = nullptr;
    sdTrace *m_sdTrace1 = nullptr;
};
