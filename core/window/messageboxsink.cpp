#include "core/window/messageboxsink.h"

#include <QMessageBox>

void MessageBoxSink::showMessage(Icon icon, const QString &text, const QString &title)
{
    const QMessageBox::Icon boxIcon = icon == Icon::Critical ? QMessageBox::Critical
        : icon == Icon::Warning                              ? QMessageBox::Warning
                                                             : QMessageBox::Information;
    QMessageBox box(boxIcon, title, text, QMessageBox::Ok, m_parent);
    box.exec();
}
