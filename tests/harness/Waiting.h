// Waiting for another thread or process: for a condition and with a deadline, never for a fixed time.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>

namespace orva::test
{

/// Default deadline of a wait in milliseconds, long enough for a busy machine.
inline constexpr DWORD kPatience = 20'000;

/// Calls `condition` every few milliseconds until it is true or `timeout` milliseconds have passed. Returns
/// its last result. Does not pump messages.
bool WaitUntil(const std::function<bool()>& condition, DWORD timeout = kPatience);

/// Like WaitUntil, but dispatches this thread's window messages between the calls.
bool PumpUntil(const std::function<bool()>& condition, DWORD timeout = kPatience);

struct HandleCloser
{
    using pointer = HANDLE;
    void operator()(HANDLE handle) const
    {
        if (handle != INVALID_HANDLE_VALUE)
        {
            CloseHandle(handle);
        }
    }
};

/// A kernel handle that is closed at destruction.
using UniqueHandle = std::unique_ptr<HANDLE, HandleCloser>;

/// A new manual-reset event. Throws std::runtime_error if it cannot be created.
UniqueHandle MakeEvent();

} // namespace orva::test
