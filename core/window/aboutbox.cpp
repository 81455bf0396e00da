#include "core/window/aboutbox.h"

#include "core/productinfo.h"
#include "core/window/systeminfodialog.h"
#include "resources/resourceicon.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QStandardPaths>

AboutBox::AboutBox(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("About ") + productinfo::productName());

    auto *icon = new QLabel(this);
    icon->setObjectName(QStringLiteral("picIcon"));
    icon->setPixmap(ResourceIcon::pixmap(QStringLiteral("A_"), 48));
    auto *title = new QLabel(QStringLiteral("<b>%1</b>").arg(productinfo::productName()), this);
    title->setObjectName(QStringLiteral("lblTitle"));
    auto *version = new QLabel(QStringLiteral("Version ") + productinfo::version(), this);
    version->setObjectName(QStringLiteral("lblVersion"));
    auto *description = new QLabel(QStringLiteral("Network latency monitor"), this);
    description->setObjectName(QStringLiteral("lblDescription"));
    auto *notice = new QLabel(productinfo::legalNotice(), this);
    notice->setObjectName(QStringLiteral("lblDisclaimer"));
    auto *link = new QLabel(QStringLiteral("<a href=\"%1\">%1</a>").arg(websiteUrl()), this);
    link->setObjectName(QStringLiteral("lblWebsite"));
    link->setTextFormat(Qt::RichText);
    link->setOpenExternalLinks(true); // the desktop opens it in the user's browser

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    auto *sysInfo = buttons->addButton(QStringLiteral("&System Info..."), QDialogButtonBox::ActionRole);
    sysInfo->setObjectName(QStringLiteral("cmdSysInfo"));
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("cmdOK"));
    connect(sysInfo, &QPushButton::clicked, this, &AboutBox::cmdSysInfo_Click);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto *layout = new QGridLayout(this);
    layout->addWidget(icon, 0, 0, 4, 1, Qt::AlignTop);
    layout->addWidget(title, 0, 1);
    layout->addWidget(version, 1, 1);
    layout->addWidget(description, 2, 1);
    layout->addWidget(link, 3, 1);
    layout->addWidget(notice, 4, 0, 1, 2);
    layout->addWidget(buttons, 5, 0, 1, 2);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

QString AboutBox::websiteUrl()
{
    return QStringLiteral("https://sondar.example.org/");
}

QString AboutBox::systemInfoTool()
{
    for (const char *tool : {"hardinfo", "kinfocenter", "gnome-system-monitor", "xfce4-taskmanager", "lxtask"}) {
        const QString path = QStandardPaths::findExecutable(QLatin1String(tool));
        if (!path.isEmpty())
            return path;
    }
    return {};
}

void AboutBox::cmdSysInfo_Click()
{
    const QString tool = systemInfoTool();
    if (!tool.isEmpty() && QProcess::startDetached(tool, {}))
        return;
    SystemInfoDialog(this).exec();
}
