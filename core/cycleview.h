#pragma once

#include <QString>

#include <cstdint>

// What the polling cycle shows its results on: the main window, or the terminal monitor.
class CycleView
{
public:
    // Status lamp colours, 0x00BBGGRR.
    static constexpr uint32_t LampYellow = 65535;
    static constexpr uint32_t LampGreen = 65280;
    static constexpr uint32_t LampRed = 255;

    virtual ~CycleView() = default;

    virtual QString hostText() const = 0; // the drop-down's text
    virtual bool isMinimised() const = 0;
    virtual void setTimeLabel(const QString &text) = 0;
    virtual QString addressLabel() const = 0; // `Label2`
    virtual void setAddressLabel(const QString &text) = 0;
    virtual void setLamp(uint32_t colour) = 0;
    virtual void setBusyPointer(bool busy) = 0;
    // A probe goes out while minimised: the "YELLOW" icon and the "Pinging ..." caption.
    virtual void showProbing() = 0;
    // Caption and icons of one result: the level's icon when minimised, "A_" otherwise.
    virtual void showResultState(const QString &caption, const QString &levelName) = 0;
    // The newest graph point; a lost reply arrives as 0.
    virtual void addGraphPoint(int32_t value) = 0;
};
