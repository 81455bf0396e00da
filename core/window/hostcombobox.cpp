#include "core/window/hostcombobox.h"

void HostComboBox::showPopup()
{
    Q_EMIT dropDown();
    QComboBox::showPopup();
}
