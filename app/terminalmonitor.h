#pragma once

#include "core/cycleview.h"

#include <QObject>

#include <cstdio>

// The polling cycle's results as lines on a terminal: the time label's text, the address, the level.
class TerminalMonitor final : public QObject, public CycleView
{
    Q_OBJECT

public:
    TerminalMonitor(QString host, FILE *out, QObject *parent = nullptr);

    QString hostText() const override { return m_host; }
    bool isMinimised() const override { return false; }
    void setTimeLabel(const QString &text) override { m_timeLabel = text; }
    QString addressLabel() const override { return m_address; }
    void setAddressLabel(const QString &text) override { m_address = text; }
    void setLamp(uint32_t) override {}
    void setBusyPointer(bool) override {}
    void showProbing() override {}
    void showResultState(const QString &, const QString &) override {}
    void addGraphPoint(int32_t) override {}

    // Prints the sample that has just been shown.
    void printSample(const QString &levelName);

private:
    QString m_host;
    FILE *m_out;
    QString m_timeLabel;
    QString m_address;
};
