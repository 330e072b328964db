// A window is disabled exactly as long as the guard lives.
#include "support/DisabledWindow.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace
{

class DisabledWindow : public testing::Test
{
protected:
    DisabledWindow()
        : m_window(CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPED, 0, 0, 10, 10, nullptr, nullptr, nullptr,
                                   nullptr))
    {
    }
    ~DisabledWindow() override { DestroyWindow(m_window); }

    HWND m_window;
};

} // namespace

TEST_F(DisabledWindow, IsDisabledInTheBlockAndEnabledAfterIt)
{
    ASSERT_TRUE(IsWindowEnabled(m_window));
    {
        const CDisabledWindow disabled(m_window);
        EXPECT_FALSE(IsWindowEnabled(m_window));
    }
    EXPECT_TRUE(IsWindowEnabled(m_window));
}

TEST_F(DisabledWindow, IsEnabledWhenAnExceptionLeavesTheBlock)
{
    EXPECT_THROW(
        {
            const CDisabledWindow disabled(m_window);
            throw std::runtime_error("x");
        },
        std::runtime_error);
    EXPECT_TRUE(IsWindowEnabled(m_window));
}

TEST_F(DisabledWindow, IsEnabledAtTheEndEvenIfItWasDisabledBefore)
{
    EnableWindow(m_window, FALSE);
    {
        const CDisabledWindow disabled(m_window);
    }
    EXPECT_TRUE(IsWindowEnabled(m_window));
}

TEST_F(DisabledWindow, NoWindowIsNoError)
{
    const CDisabledWindow disabled(nullptr);
    EXPECT_TRUE(IsWindowEnabled(m_window));
}

TEST_F(DisabledWindow, AWindowThatIsDestroyedMeanwhileIsNoError)
{
    SetLastError(ERROR_SUCCESS);
    {
        const CDisabledWindow disabled(m_window);
        DestroyWindow(m_window);
    }
    // Nothing but the attempt to enable a window that is gone.
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_WINDOW_HANDLE));
    EXPECT_FALSE(IsWindow(m_window));
}
