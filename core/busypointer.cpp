#include "core/busypointer.h"

#include <QCursor>
#include <QGuiApplication>

void BusyPointer::set(bool busy)
{
    if (busy == m_busy)
        return;
    m_busy = busy;
    if (busy)
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QGuiApplication::restoreOverrideCursor();
}
