// The main window's controls and their layout.

#include "core/window/f_ping.h"

#include "core/smsalerts.h"
#include "core/window/hostcombobox.h"
#include "core/window/statuslamp.h"
#include "display/hostlisteditor.h"
#include "display/pinggraph.h"
#include "resources/resourceicon.h"
#include "trace/widgets/sdtrace.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QMenu>
#include <QHBoxLayout>

#include <array>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QStatusBar>
#include <QToolButton>

namespace {

template<typename T, typename... Args>
T *named(const char *name, Args &&...args)
{
    auto *widget = new T(std::forward<Args>(args)...);
    widget->setObjectName(QLatin1String(name));
    return widget;
}

} // namespace

void f_Ping::buildControls()
{
    auto *central = named<QWidget>("picMain", this);

    // The mode picture lies over the mode check box and toggles it.
    m_chkMode = named<QCheckBox>("chkMode", central);
    m_chkMode->hide();
    connect(m_chkMode, &QCheckBox::toggled, this, &f_Ping::chkMode_Click);
    m_LDPIC = named<QToolButton>("LDPIC", central);
    m_LDPIC->setAutoRaise(true);
    connect(m_LDPIC, &QToolButton::clicked, m_chkMode, &QCheckBox::toggle);

    m_cmb = named<HostComboBox>("cmb", central);
    m_cmb->setEditable(true);
    m_cmb->setInsertPolicy(QComboBox::NoInsert);
    m_cmb->setMinimumContentsLength(20);
    m_cmb->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_cmb->setToolTip(QStringLiteral("Host name or address to watch"));
    connect(m_cmb, &QComboBox::activated, this, &f_Ping::cmb_Click);
    connect(m_cmb, &HostComboBox::dropDown, this, &f_Ping::cmb_DropDown);

    auto *lblTime = named<QLabel>("lblTime", QStringLiteral("Retry time, s:"), central);
    m_txtTime = named<QLineEdit>("txtTime", QStringLiteral("10"), central);
    m_txtTime->setMaxLength(5);
    m_txtTime->setFixedWidth(m_txtTime->fontMetrics().horizontalAdvance(QStringLiteral("00000")) + 16);
    m_txtTime->setAlignment(Qt::AlignRight);
    lblTime->setBuddy(m_txtTime);
    connect(m_txtTime, &QLineEdit::textChanged, this, &f_Ping::txtTime_Change);
    m_txtTime->installEventFilter(this);

    m_command1 = named<QPushButton>("Command1", QStringLiteral("Ping"), central);
    m_command1->setDefault(true);
    connect(m_command1, &QPushButton::clicked, this, &f_Ping::Command1_Click);
    m_command2 = named<QPushButton>("Command2", QStringLiteral("Stop"), central);
    connect(m_command2, &QPushButton::clicked, this, &f_Ping::Command2_Click);

    m_shpStatus = named<StatusLamp>("shpStatus", central);
    m_label1 = named<QLabel>("Label1", central);
    m_label1->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_label1->setMinimumWidth(m_label1->fontMetrics().horizontalAdvance(QStringLiteral("Ping failed :  request timed out")));
    m_label2 = named<QLabel>("Label2", central);
    m_label2->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_label2->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    m_display = named<QStackedWidget>("picDisplay", central);
    m_graph = new PingGraph(m_levels, m_display);
    m_graph->setObjectName(QStringLiteral("fraGraph"));
    m_display->addWidget(m_graph);
    connect(m_graph, &PingGraph::doubleClicked, this, &f_Ping::fraGraph_DblClick);
    m_sdTrace1 = new sdTrace(*m_countries, m_display);
    m_sdTrace1->setObjectName(QStringLiteral("sdTrace1"));
    m_display->addWidget(m_sdTrace1);
    m_hostEditor = named<HostListEditor>("HostListEditor", m_display);
    m_display->addWidget(m_hostEditor);
    connect(m_hostEditor, &HostListEditor::entryAppended, this, [this](const QString &host) { m_cmb->addItem(host); });
    connect(m_hostEditor, &HostListEditor::entryReplaced, this, [this](int index, const QString &host) {
        if (index < m_cmb->count())
            m_cmb->setItemText(index, host);
    });

    m_chkHosts = named<QCheckBox>("chkHosts", QStringLiteral("Edit hosts list"), central);
    connect(m_chkHosts, &QCheckBox::toggled, this, &f_Ping::chkHosts_Click);
    m_chkLog = named<QCheckBox>("chkLog", QStringLiteral("Log"), central);
    // toggled, not clicked: the box changed in code must act like a click, and an unchanged one must not.
    connect(m_chkLog, &QCheckBox::toggled, this, &f_Ping::chkLog_Click);
    m_cmdShowLog = named<QPushButton>("cmdShowLog", QStringLiteral("Show Log"), central);
    connect(m_cmdShowLog, &QPushButton::clicked, this, &f_Ping::cmdShowLog_Click);
    m_cmdLogClear = named<QPushButton>("cmdLogClear", QStringLiteral("Clear Log"), central);
    connect(m_cmdLogClear, &QPushButton::clicked, this, &f_Ping::cmdLogClear_Click);
    m_cmdOptions = named<QPushButton>("cmdOptions", QStringLiteral("Options..."), central);

    auto *top = new QHBoxLayout;
    top->addWidget(m_LDPIC);
    top->addWidget(m_cmb, 1);
    top->addSpacing(8);
    top->addWidget(lblTime);
    top->addWidget(m_txtTime);
    top->addWidget(m_command1);
    top->addWidget(m_command2);

    auto *results = new QHBoxLayout;
    results->addWidget(m_shpStatus);
    results->addWidget(m_label1, 1);
    results->addWidget(m_label2);

    auto *bottom = new QHBoxLayout;
    bottom->addWidget(m_chkHosts);
    bottom->addWidget(m_chkLog);
    bottom->addStretch(1);
    bottom->addWidget(m_cmdShowLog);
    bottom->addWidget(m_cmdLogClear);
    bottom->addWidget(m_cmdOptions);

    auto *layout = new QVBoxLayout(central);
    layout->addLayout(top);
    layout->addLayout(results);
    layout->addWidget(m_display, 1);
    layout->addLayout(bottom);
    setCentralWidget(central);

    m_lblStatus = named<QLabel>("lblStatus", this);
    statusBar()->addWidget(m_lblStatus, 1);
    m_imgSMS = named<QLabel>("imgSMS", this);
    m_imgSMS->setPixmap(ResourceIcon::pixmap(QStringLiteral("YELLOW"), m_lblStatus->fontMetrics().height()));
    m_imgSMS->setToolTip(QStringLiteral("Sending SMS ..."));
    m_imgSMS->hide();
    statusBar()->addPermanentWidget(m_imgSMS);
    connect(m_sms, &SmsAlerts::imgSMSVisibleChanged, m_imgSMS, &QWidget::setVisible);
    connect(m_sms, &SmsAlerts::statusText, this, &f_Ping::setStatusText);
    m_sdTrace1->setCaptionTargets(m_cmb, m_label2, m_label1);
    buildTrayMenu();
}

void f_Ping::buildTrayMenu()
{
    m_mnuMain = named<QMenu>("mnuMain", this);
    const std::pair<const char *, const char *> entries[] = {
        {"mnuMain_about", "&About"}, {"mnuMain_start", "&Start"}, {"mnuMain_stop", "Sto&p"},
        {nullptr, nullptr},          {"mnuMain_show", "Sho&w"},   {"mnuMain_exit", "&Exit"},
    };
    const std::array handlers{&f_Ping::mnuMain_about_Click, &f_Ping::mnuMain_start_Click, &f_Ping::mnuMain_stop_Click,
                              &f_Ping::mnuMain_show_Click, &f_Ping::mnuMain_exit_Click};
    auto handler = handlers.begin();
    for (const auto &[name, caption] : entries) {
        if (!name) {
            m_mnuMain->addSeparator();
            continue;
        }
        QAction *action = m_mnuMain->addAction(QLatin1String(caption));
        action->setObjectName(QLatin1String(name));
        connect(action, &QAction::triggered, this, *handler++);
    }
}
