#include "core/window/f_ping.h"

#include "core/hostlist.h"
#include "core/ping.h"
#include "core/pinglog.h"
#include "core/pollingcycle.h"
#include "core/productinfo.h"
#include "core/retrytime.h"
#include "core/smsalerts.h"
#include "core/textnumbers.h"
#include "core/twips.h"
#include "core/trappedprocedure.h"
#include "core/window/hostcombobox.h"
#include "core/window/statuslamp.h"
#include "core/window/aboutbox.h"
#include "display/clssystray.h"
#include "display/hostlisteditor.h"
#include "display/pinggraph.h"
#include "trace/widgets/sdtrace.h"
#include "whois/countrytable.h"
#include "whois/wsock.h"
#include "core/window/texteditor.h"
#include "platform/clock.h"
#include "platform/settingsstore.h"
#include "platform/smsgateway.h"
#include "resources/resourceicon.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QComboBox>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QLineEdit>
#include <QPushButton>
#include <QGroupBox>
#include <QStackedWidget>
#include <QStatusBar>
#include <QToolButton>
#include <QTimer>

namespace {

const QString Load = QStringLiteral("Load");

QString loadSetting(const SettingsStore &settings, const char *key, const char *defaultValue)
{
    return settings.GetSetting(Load, QLatin1String(key), QLatin1String(defaultValue));
}

} // namespace

f_Ping::f_Ping(const Environment &env, QWidget *parent)
    : QMainWindow(parent)
    , m_env(env)
    , m_countries(std::make_unique<CountryTable>(CountryTable::locate(env.programDir, QCoreApplication::applicationDirPath())))
    , m_log(std::make_unique<PingLog>(env.programDir, env.logBaseName, env.settings, env.clock))
    , m_png(new Ping(this))
{
    setObjectName(QStringLiteral("f_Ping"));
    m_png->setObjectName(QStringLiteral("png"));
    m_cycle = new PollingCycle(*this, *m_png, m_levels, *m_log, env.clock, env.sink, this);
    m_sms = new SmsAlerts(env.settings, env.clock, env.sink, [this] { return m_cycle->isMonitoring(); },
                          &SmsGateway::create, this);
    m_cycle->setCheckSms([this](const QString &host, int value) { m_sms->CheckSMS(host, value); });
    m_gSysTray = new clsSysTray(this);
    m_gSysTray->setObjectName(QStringLiteral("gSysTray"));
    buildControls();
    connect(m_gSysTray, &clsSysTray::RButtonUp, this, [this] { m_mnuMain->popup(QCursor::pos()); });
    resize(sizeHint().expandedTo(QSize(640, 420)));
    setWindowTitle(productinfo::caption());
    setWindowIcon(ResourceIcon::load(QStringLiteral("A_")));
}

f_Ping::~f_Ping() = default;

void f_Ping::Form_Load()
{
    TrappedProcedure procedure(m_env.sink, QStringLiteral("f_Ping"), QStringLiteral("Form_Load"),
                               productinfo::productName());
    procedure.step(1, [&] {
        m_loadTime = m_env.clock.now();
        m_sms->setStartTime(m_loadTime);
        m_env.settings.SaveSetting(QStringLiteral("SMS"), QStringLiteral("StartTime"),
                                   m_loadTime.toString(QStringLiteral("dd/MM/yyyy hh:mm:ss")));
    });
    procedure.step(2, [&] { m_cycle->startHoldOff(); });
    procedure.step(3, [&] { m_levels.LoadLevelScale(m_env.settings); });
    procedure.step(4, [&] { setWindowTitle(productinfo::caption()); });
    procedure.step(5, [&] {
        const QSignalBlocker blocker(m_chkMode);
        m_chkMode->setChecked(false);
        chkMode_Click();
    });
    procedure.step(7, [&] { loadHostList(); });
    procedure.step(8, [&] {
        m_gSysTray->setSourceWindow(this);
        m_gSysTray->setDefaultDblClk(true);
        m_gSysTray->ChangeToolTip(windowTitle());
        // The graph's number of points follows its width now, so the layouts must have placed it,
        // hidden as the window still is.
        for (QWidget *level : {static_cast<QWidget *>(this), centralWidget(), static_cast<QWidget *>(m_display)}) {
            level->layout()->invalidate();
            level->layout()->activate();
        }
        m_graph->createPointBuffer();
        m_graph->RebuildGraphFrame(m_env.settings);
    });
    procedure.step(9, [&] {
        if (textnumbers::toInteger(loadSetting(m_env.settings, "AutoPing", "0")) == 1)
            Command1_Click();
    });
    procedure.step(10, [&] {
        if (textnumbers::toInteger(loadSetting(m_env.settings, "AutoHide", "0")) == 1)
            setWindowState(windowState() | Qt::WindowMinimized);
    });
    procedure.step(11, [&] { m_chkLog->setChecked(textnumbers::toInteger(loadSetting(m_env.settings, "AutoLog", "0")) != 0); });
    procedure.step(12, [&] {
        m_txtTime->setText(QString::number(textnumbers::toInteger(loadSetting(m_env.settings, "TimeOut", "10"))));
    });
    procedure.step(13, [&] { m_sms->InitSMS(); });
}

void f_Ping::loadHostList()
{
    m_cmb->clear();
    for (const QString &host : hostlist::load(m_env.programDir))
        m_cmb->addItem(host);
    if (m_cmb->count() > 0)
        m_cmb->setCurrentIndex(0);
}

bool f_Ping::isTraceMode() const
{
    return m_chkMode->isChecked();
}

void f_Ping::Command1_Click()
{
    if (!isTraceMode()) {
        m_cycle->Command1_Click(m_txtTime->text());
        return;
    }
    if (!m_cmb->currentText().isEmpty())
        m_sdTrace1->StartTrace(m_cmb->currentText(), retrytime::timerIntervalMs(m_txtTime->text()));
}

void f_Ping::Command2_Click()
{
    if (isTraceMode()) {
        m_sdTrace1->StopTrace();
        return;
    }
    m_cycle->Command2_Click();
    m_chkLog->setChecked(false);
    m_log->pause();
}

void f_Ping::chkMode_Click()
{
    // Stop runs in the mode being entered, so it stops that mode's activity: leaving Ping mode
    // cancels a trace and leaves the timer running; leaving Trace mode stops the timer.
    Command2_Click();
    {
        const QSignalBlocker blocker(m_chkHosts);
        m_chkHosts->setChecked(false);
    }
    chkHosts_Click();
    const bool trace = isTraceMode();
    const QString tip = trace ? QStringLiteral("Mode: Trace") : QStringLiteral("Mode: Ping");
    m_LDPIC->setIcon(ResourceIcon::load(trace ? QStringLiteral("TRACE") : QStringLiteral("PING")));
    m_LDPIC->setIconSize(QSize(twips::toPixels(240, logicalDpiX()), twips::toPixels(240, logicalDpiY())));
    m_LDPIC->setToolTip(tip);
    m_chkMode->setToolTip(tip);
    m_command1->setText(trace ? QStringLiteral("Trace") : QStringLiteral("Ping"));
    showModePage();
}

void f_Ping::showModePage()
{
    if (isTraceMode()) {
        m_display->setCurrentWidget(m_sdTrace1);
        m_sdTrace1->raise();
    } else {
        m_display->setCurrentWidget(m_graph);
    }
}

void f_Ping::txtTime_Change()
{
    m_env.settings.SaveSetting(Load, QStringLiteral("TimeOut"), QString::number(retrytime::storedTimeOut(m_txtTime->text())));
}

bool f_Ping::txtTime_Validate()
{
    const auto correction = retrytime::validate(m_txtTime->text());
    if (!correction)
        return true;
    m_env.sink.showMessage(correction->icon, correction->message, productinfo::productName());
    m_txtTime->setText(correction->text);
    return false;
}

bool f_Ping::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_txtTime && event->type() == QEvent::FocusOut && !m_validating) {
        m_validating = true;
        // The focus stays in the box after a correction, as leaving it was refused.
        if (!txtTime_Validate())
            m_txtTime->setFocus();
        m_validating = false;
    }
    return QMainWindow::eventFilter(watched, event);
}

void f_Ping::chkLog_Click()
{
    if (m_chkLog->isChecked())
        m_log->resume();
    else
        m_log->pause();
}

void f_Ping::cmdShowLog_Click()
{
    QString path;
    TrappedProcedure procedure(m_env.sink, QStringLiteral("f_Ping"), QStringLiteral("cmdShowLog_Click"),
                               productinfo::productName());
    procedure.step(1, [&] { path = m_log->logFileToShow(m_cmb->currentText()); });
    if (!path.isEmpty() && !texteditor::open(path))
        setStatusText(QStringLiteral("No text editor could be started for ") + path);
}

void f_Ping::cmdLogClear_Click()
{
    m_log->clearLog();
}

void f_Ping::cmb_Click()
{
    m_label1->clear();
    m_label2->clear();
}

void f_Ping::cmb_DropDown()
{
    const QString text = m_cmb->currentText();
    if (text.isEmpty())
        return;
    const int found = m_cmb->findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (found >= 0)
        m_cmb->setCurrentIndex(found);
    else
        m_cmb->addItem(text);
}

void f_Ping::chkHosts_Click()
{
    if (m_cycle->isMonitoring())
        Command2_Click();
    const bool editing = m_chkHosts->isChecked();
    if (editing) {
        QStringList entries;
        for (int i = 0; i < m_cmb->count(); ++i)
            entries << m_cmb->itemText(i);
        m_hostEditor->rebuild(entries);
        m_display->setCurrentWidget(m_hostEditor);
    } else {
        m_hostEditor->commitPendingEdit();
        showModePage();
    }
    // Nothing may be probed while the list is edited.
    m_cmb->setEnabled(!editing);
    m_command1->setEnabled(!editing);
    if (!editing)
        m_cmb->setFocus();
}

QTimer &f_Ping::Timer1()
{
    return m_cycle->Timer1();
}

QString f_Ping::hostText() const
{
    return m_cmb->currentText();
}

bool f_Ping::isMinimised() const
{
    return isMinimized();
}

void f_Ping::setTimeLabel(const QString &text)
{
    m_label1->setText(text);
}

QString f_Ping::addressLabel() const
{
    return m_label2->text();
}

void f_Ping::setAddressLabel(const QString &text)
{
    m_label2->setText(text);
}

void f_Ping::setLamp(uint32_t colour)
{
    m_shpStatus->setFillColor(colour);
}

void f_Ping::setBusyPointer(bool busy)
{
    m_pointer.set(busy);
}

void f_Ping::showProbing()
{
    setWindowIcon(ResourceIcon::load(QStringLiteral("YELLOW")));
    setWindowTitle(QStringLiteral("Pinging ..."));
    showInTray();
}

void f_Ping::showResultState(const QString &caption, const QString &levelName)
{
    setWindowIcon(ResourceIcon::load(isMinimised() ? levelName : QStringLiteral("A_")));
    setWindowTitle(caption);
    showInTray();
}

void f_Ping::showInTray()
{
    m_gSysTray->ChangeIcon(windowIcon());
    m_gSysTray->ChangeToolTip(windowTitle());
}

void f_Ping::addGraphPoint(int32_t value)
{
    m_graph->AddGraphPoint(value);
}

void f_Ping::fraGraph_DblClick()
{
    Command2_Click();
    TrappedProcedure procedure(m_env.sink, QStringLiteral("f_Ping"), QStringLiteral("fraGraph_DblClick"),
                               productinfo::productName());
    procedure.step(1, [&] { m_graph->RebuildGraphFrame(m_env.settings); });
}

void f_Ping::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    // Queued: hiding a window inside its own state change confuses some window managers.
    if (event->type() == QEvent::WindowStateChange)
        QTimer::singleShot(0, this, &f_Ping::Form_Resize);
}

void f_Ping::Form_Resize()
{
    if (m_unloaded)
        return;
    if (!isMinimised()) {
        setWindowIcon(ResourceIcon::load(QStringLiteral("A_")));
        return;
    }
    if (!m_gSysTray->MinToSysTray() && !m_toldNoTray) {
        m_toldNoTray = true;
        setStatusText(QStringLiteral("This desktop has no system tray: Sondar stays in the task bar when minimised."));
    }
    m_gSysTray->ChangeIcon(windowIcon());
}

void f_Ping::mnuMain_about_Click()
{
    AboutBox(this).exec();
}

void f_Ping::mnuMain_start_Click()
{
    Command1_Click();
}

void f_Ping::mnuMain_stop_Click()
{
    Command2_Click();
}

void f_Ping::mnuMain_show_Click()
{
    m_gSysTray->ShowNormal();
}

void f_Ping::mnuMain_exit_Click()
{
    close();
}

void f_Ping::setStatusText(const QString &text)
{
    m_lblStatus->setText(text);
}

void f_Ping::closeEvent(QCloseEvent *event)
{
    Form_QueryUnload();
    Form_Unload();
    event->accept();
}

void f_Ping::Form_QueryUnload()
{
    QStringList hosts;
    for (int i = 0; i < m_cmb->count(); ++i)
        hosts << m_cmb->itemText(i);
    hostlist::save(m_env.programDir, hosts);
}

void f_Ping::Form_Unload()
{
    if (m_unloaded)
        return;
    m_unloaded = true;
    m_gSysTray->RemoveFromSysTray();
    m_sdTrace1->StopTrace();
    m_pointer.set(false);
    m_log->pause();
    if (WSOCK::started())
        WSOCK::cleanUp();
    Q_EMIT unloaded();
}
