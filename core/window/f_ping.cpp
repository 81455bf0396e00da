#include "core/window/f_ping.h"

#include "core/hostlist.h"
#include "core/ping.h"
#include "core/pinglog.h"
#include "core/pollingcycle.h"
#include "core/productinfo.h"
#include "core/retrytime.h"
#include "core/smsalerts.h"
#include "core/textnumbers.h"
#include "core/trappedprocedure.h"
#include "core/window/statuslamp.h"
#include "core/window/texteditor.h"
#include "platform/clock.h"
#include "platform/settingsstore.h"
#include "platform/smsgateway.h"
#include "resources/resourceicon.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStatusBar>
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
    , m_log(std::make_unique<PingLog>(env.programDir, env.logBaseName, env.settings, env.clock))
    , m_png(new Ping(this))
{
    setObjectName(QStringLiteral("f_Ping"));
    m_png->setObjectName(QStringLiteral("png"));
    m_cycle = new PollingCycle(*this, *m_png, m_levels, *m_log, env.clock, env.sink, this);
    m_sms = new SmsAlerts(env.settings, env.clock, env.sink, [this] { return m_cycle->isMonitoring(); },
                          &SmsGateway::create, this);
    m_cycle->setCheckSms([this](const QString &host, int value) { m_sms->CheckSMS(host, value); });
    buildControls();
    setWindowTitle(productinfo::caption());
    setWindowIcon(ResourceIcon::load(QStringLiteral("A_")));
}

f_Ping::~f_Ping()
{
    setBusyPointer(false);
}

void f_Ping::buildControls()
{
    auto *central = new QWidget(this);
    auto *grid = new QGridLayout(central);

    m_cmb = new QComboBox(central);
    m_cmb->setObjectName(QStringLiteral("cmb"));
    m_cmb->setEditable(true);
    m_cmb->setInsertPolicy(QComboBox::NoInsert);
    m_cmb->setMinimumContentsLength(24);
    m_cmb->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    connect(m_cmb, &QComboBox::activated, this, &f_Ping::cmb_Click);

    auto *lblTime = new QLabel(QStringLiteral("Retry time, s:"), central);
    lblTime->setObjectName(QStringLiteral("lblTime"));
    m_txtTime = new QLineEdit(QStringLiteral("10"), central);
    m_txtTime->setObjectName(QStringLiteral("txtTime"));
    m_txtTime->setMaxLength(5);
    m_txtTime->setFixedWidth(m_txtTime->fontMetrics().horizontalAdvance(QStringLiteral("00000")) + 16);
    lblTime->setBuddy(m_txtTime);
    connect(m_txtTime, &QLineEdit::textChanged, this, &f_Ping::txtTime_Change);
    m_txtTime->installEventFilter(this);

    m_command1 = new QPushButton(QStringLiteral("Ping"), central);
    m_command1->setObjectName(QStringLiteral("Command1"));
    m_command1->setDefault(true);
    connect(m_command1, &QPushButton::clicked, this, &f_Ping::Command1_Click);
    m_command2 = new QPushButton(QStringLiteral("Stop"), central);
    m_command2->setObjectName(QStringLiteral("Command2"));
    connect(m_command2, &QPushButton::clicked, this, &f_Ping::Command2_Click);

    m_shpStatus = new StatusLamp(central);
    m_shpStatus->setObjectName(QStringLiteral("shpStatus"));
    m_label1 = new QLabel(central);
    m_label1->setObjectName(QStringLiteral("Label1"));
    m_label1->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_label2 = new QLabel(central);
    m_label2->setObjectName(QStringLiteral("Label2"));
    m_label2->setTextInteractionFlags(Qt::TextSelectableByMouse);

    m_chkLog = new QCheckBox(QStringLiteral("Log"), central);
    m_chkLog->setObjectName(QStringLiteral("chkLog"));
    // toggled, not clicked: the box changed in code must act like a click, and an unchanged one must not.
    connect(m_chkLog, &QCheckBox::toggled, this, &f_Ping::chkLog_Click);
    m_cmdShowLog = new QPushButton(QStringLiteral("Show Log"), central);
    m_cmdShowLog->setObjectName(QStringLiteral("cmdShowLog"));
    connect(m_cmdShowLog, &QPushButton::clicked, this, &f_Ping::cmdShowLog_Click);
    m_cmdLogClear = new QPushButton(QStringLiteral("Clear Log"), central);
    m_cmdLogClear->setObjectName(QStringLiteral("cmdLogClear"));
    connect(m_cmdLogClear, &QPushButton::clicked, this, &f_Ping::cmdLogClear_Click);

    grid->addWidget(m_cmb, 0, 0, 1, 3);
    grid->addWidget(lblTime, 0, 3);
    grid->addWidget(m_txtTime, 0, 4);
    grid->addWidget(m_command1, 0, 5);
    grid->addWidget(m_command2, 0, 6);

    auto *results = new QHBoxLayout;
    results->addWidget(m_shpStatus);
    results->addWidget(m_label1, 2);
    results->addWidget(m_label2, 1);
    grid->addLayout(results, 1, 0, 1, 7);

    auto *logRow = new QHBoxLayout;
    logRow->addWidget(m_chkLog);
    logRow->addStretch(1);
    logRow->addWidget(m_cmdShowLog);
    logRow->addWidget(m_cmdLogClear);
    grid->addLayout(logRow, 2, 0, 1, 7);
    grid->setRowStretch(3, 1);
    grid->setColumnStretch(0, 1);
    setCentralWidget(central);

    m_lblStatus = new QLabel(this);
    m_lblStatus->setObjectName(QStringLiteral("lblStatus"));
    statusBar()->addWidget(m_lblStatus, 1);
    m_imgSMS = new QLabel(this);
    m_imgSMS->setObjectName(QStringLiteral("imgSMS"));
    m_imgSMS->setPixmap(ResourceIcon::pixmap(QStringLiteral("YELLOW"), m_lblStatus->fontMetrics().height()));
    m_imgSMS->setToolTip(QStringLiteral("Sending SMS ..."));
    m_imgSMS->hide();
    statusBar()->addPermanentWidget(m_imgSMS);
    connect(m_sms, &SmsAlerts::imgSMSVisibleChanged, m_imgSMS, &QWidget::setVisible);
    connect(m_sms, &SmsAlerts::statusText, this, &f_Ping::setStatusText);
}

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
    procedure.step(7, [&] { loadHostList(); });
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

void f_Ping::Command1_Click()
{
    m_cycle->Command1_Click(m_txtTime->text());
}

void f_Ping::Command2_Click()
{
    m_cycle->Command2_Click();
    m_chkLog->setChecked(false);
    m_log->pause();
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
    static bool validating = false;
    if (watched == m_txtTime && event->type() == QEvent::FocusOut && !validating) {
        validating = true;
        // The focus stays in the box after a correction, as leaving it was refused.
        if (!txtTime_Validate())
            m_txtTime->setFocus();
        validating = false;
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
    if (busy == m_busyPointer)
        return;
    m_busyPointer = busy;
    if (busy)
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QGuiApplication::restoreOverrideCursor();
}

void f_Ping::showProbing()
{
    setWindowIcon(ResourceIcon::load(QStringLiteral("YELLOW")));
    setWindowTitle(QStringLiteral("Pinging ..."));
}

void f_Ping::showResultState(const QString &caption, const QString &levelName)
{
    setWindowIcon(ResourceIcon::load(isMinimised() ? levelName : QStringLiteral("A_")));
    setWindowTitle(caption);
}

void f_Ping::addGraphPoint(int32_t)
{
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
    m_log->pause();
    setBusyPointer(false);
}
