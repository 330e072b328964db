// A plain window of the test's own thread, which the class library knows nothing of.
#pragma once

#include <gtest/gtest.h>

#include <windows.h>

class CTestWindow
{
public:
    /// A visible overlapped window, or with a `parent` and WS_CHILD in `style` a child.
    explicit CTestWindow(HWND parent = nullptr, DWORD style = WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                         const wchar_t* className = L"OrvaTestWindow")
    {
        WNDCLASSW windowClass = {};
        windowClass.lpfnWndProc = DefWindowProcW;
        windowClass.hInstance = GetModuleHandleW(nullptr);
        windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
        windowClass.lpszClassName = L"OrvaTestWindow";
        RegisterClassW(&windowClass);
        m_window = CreateWindowExW(0, className, L"test window", style, 300, 200, 500, 400, parent, nullptr,
                                   windowClass.hInstance, nullptr);
        EXPECT_TRUE(m_window) << GetLastError();
    }
    ~CTestWindow()
    {
        if (IsWindow(m_window))
        {
            DestroyWindow(m_window);
        }
    }
    CTestWindow(const CTestWindow&) = delete;
    CTestWindow& operator=(const CTestWindow&) = delete;

    operator HWND() const { return m_window; }

private:
    HWND m_window;
};
