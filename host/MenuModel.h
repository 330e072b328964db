// What all command-bar objects of one explorer share: the trace, command ids and who redraws the menu.
#pragma once

#include "host/Trace.h"

namespace orva::host
{

/// Notified of each change of a control, so that the real menu can be updated.
class IMenuObserver
{
public:
    virtual void MenuChanged() = 0;

protected:
    ~IMenuObserver() = default;
};

/// Must outlive every control: an add-in may keep references until the process ends.
class CMenuModel
{
public:
    explicit CMenuModel(CTrace& trace) : m_trace(trace) {}

    CTrace& Trace() const { return m_trace; }
    /// Null once the window is gone.
    void SetObserver(IMenuObserver* observer) { m_observer = observer; }
    void Changed() const
    {
        if (m_observer != nullptr)
        {
            m_observer->MenuChanged();
        }
    }
    /// Id of a menu item, unique in this explorer.
    unsigned NextCommand() { return m_nextCommand++; }

private:
    CTrace& m_trace;
    IMenuObserver* m_observer = nullptr;
    unsigned m_nextCommand = 40000;
};

} // namespace orva::host
