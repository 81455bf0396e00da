#pragma once

#include <QDialog>

// Product name, version, legal notice, the maker's web site, and the system's information tool.
class AboutBox : public QDialog
{
    Q_OBJECT

public:
    explicit AboutBox(QWidget *parent = nullptr);

    static QString websiteUrl();

    // The first system-information tool found on PATH; empty when none is installed.
    static QString systemInfoTool();

private:
    void cmdSysInfo_Click();
};
