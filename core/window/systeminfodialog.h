#pragma once

#include <QDialog>

// What Qt knows of this system, for desktops without a system-information tool.
class SystemInfoDialog : public QDialog
{
    Q_OBJECT

public:
    explicit SystemInfoDialog(QWidget *parent = nullptr);

    static QString report();
};
