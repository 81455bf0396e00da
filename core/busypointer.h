#pragma once

// The hourglass of the whole program, for as long as a probe, a trace or a query runs. Each
// owner sets and resets its own share, so two owners never restore each other's pointer.
class BusyPointer
{
public:
    BusyPointer() = default;
    ~BusyPointer() { set(false); }
    BusyPointer(const BusyPointer &) = delete;
    BusyPointer &operator=(const BusyPointer &) = delete;

    void set(bool busy);
    bool isBusy() const { return m_busy; }

private:
    bool m_busy = false;
};
