#include "core/window/systeminfodialog.h"

#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QPlainTextEdit>
#include <QScreen>
#include <QSysInfo>
#include <QThread>
#include <QVBoxLayout>

SystemInfoDialog::SystemInfoDialog(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("frmSysInfo"));
    setWindowTitle(QStringLiteral("System Information"));
    auto *text = new QPlainTextEdit(report(), this);
    text->setObjectName(QStringLiteral("txtSysInfo"));
    text->setReadOnly(true);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addWidget(buttons);
    resize(520, 360);
}

QString SystemInfoDialog::report()
{
    QStringList lines{
        QStringLiteral("Operating system: ") + QSysInfo::prettyProductName(),
        QStringLiteral("Kernel: ") + QSysInfo::kernelType() + QLatin1Char(' ') + QSysInfo::kernelVersion(),
        QStringLiteral("Architecture: ") + QSysInfo::currentCpuArchitecture(),
        QStringLiteral("Processors: ") + QString::number(QThread::idealThreadCount()),
        QStringLiteral("Host name: ") + QSysInfo::machineHostName(),
        QStringLiteral("Qt: ") + QString::fromLatin1(qVersion()),
        QStringLiteral("Display platform: ") + QGuiApplication::platformName(),
    };
    const auto screens = QGuiApplication::screens();
    for (const QScreen *screen : screens)
        lines << QStringLiteral("Screen %1: %2 x %3 at %4 dpi")
                     .arg(screen->name())
                     .arg(screen->size().width())
                     .arg(screen->size().height())
                     .arg(qRound(screen->logicalDotsPerInch()));
    return lines.join(QLatin1Char('\n'));
}
