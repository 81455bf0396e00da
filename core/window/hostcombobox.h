#pragma once

#include <QComboBox>

// The host drop-down `cmb`: tells when its list is about to open, as the window completes
// the typed host into the list then.
class HostComboBox : public QComboBox
{
    Q_OBJECT

public:
    using QComboBox::QComboBox;

    void showPopup() override;

Q_SIGNALS:
    void dropDown();
};
