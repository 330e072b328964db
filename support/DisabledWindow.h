// Keeps a window disabled during a block.
#pragma once

#include <windows.h>

/// Disables a window and enables it again when destroyed, also after an exception or an early return. A null
/// window is ignored.
class CDisabledWindow
{
public:
    explicit CDisabledWindow(HWND window) noexcept : m_window(window)
    {
        if (m_window != nullptr)
        {
            EnableWindow(m_window, FALSE);
        }
    }

    ~CDisabledWindow()
    {
        if (m_window != nullptr)
        {
            EnableWindow(m_window, TRUE);
        }
    }

    CDisabledWindow(const CDisabledWindow&) = delete;
    CDisabledWindow& operator=(const CDisabledWindow&) = delete;

private:
    HWND m_window;
};
