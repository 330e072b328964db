// Keeps a window disabled for as long as work on its behalf is going on.
#pragma once

#include <windows.h>

/// Disables a window and enables it again when destroyed, so that no way out of a block (an exception, an
/// early return) leaves the host's window dead. A null window is accepted and left alone.
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
