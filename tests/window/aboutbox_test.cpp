#include "core/productinfo.h"
#include "core/window/aboutbox.h"
#include "core/window/systeminfodialog.h"

#include <QApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

TEST(AboutBox, ShowsNameVersionNoticeAndTheMakersSite)
{
    AboutBox box;
    QStringList texts;
    for (const QLabel *label : box.findChildren<QLabel *>())
        texts << label->text();
    const QString all = texts.join(QLatin1Char('\n'));
    EXPECT_TRUE(all.contains(productinfo::productName()));
    EXPECT_TRUE(all.contains(productinfo::version()));
    EXPECT_TRUE(all.contains(productinfo::legalNotice()));
    EXPECT_TRUE(all.contains(AboutBox::websiteUrl()));
    EXPECT_TRUE(box.findChild<QLabel *>(QStringLiteral("lblWebsite"))->openExternalLinks());
}

TEST(AboutBox, WithoutASystemToolTheButtonShowsWhatQtKnows)
{
    QTemporaryDir emptyPath;
    const QByteArray savedPath = qgetenv("PATH");
    qputenv("PATH", emptyPath.path().toLocal8Bit());
    EXPECT_TRUE(AboutBox::systemInfoTool().isEmpty());

    AboutBox box;
    QString shown;
    QTimer::singleShot(0, [&] {
        if (auto *dialog = qobject_cast<SystemInfoDialog *>(QApplication::activeModalWidget())) {
            shown = dialog->findChild<QPlainTextEdit *>(QStringLiteral("txtSysInfo"))->toPlainText();
            dialog->reject();
        }
    });
    box.findChild<QPushButton *>(QStringLiteral("cmdSysInfo"))->click();
    qputenv("PATH", savedPath);
    EXPECT_TRUE(shown.contains(QStringLiteral("Kernel: "))) << shown.toStdString();
    EXPECT_TRUE(shown.contains(QStringLiteral("Qt: ")));
}

} // namespace
