// Waiting for what another thread or process does: always for a condition and with a deadline, never a fixed
// time.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>

namespace orva::test
{

/// Deadline of a wait that is expected to succeed: long enough for a loaded machine, in milliseconds.
inline constexpr DWORD kPatience = 20'000;

/// Asks `condition` every few milliseconds until it says true, and gives up after `timeout` milliseconds.
/// Returns what it said last. Does not pump messages.
bool WaitUntil(const std::function<bool()>& condition, DWORD timeout = kPatience);

/// The same, but dispatches this thread's window messages between the questions.
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

/// A kernel handle that closes itself.
using UniqueHandle = std::unique_ptr<HANDLE, HandleCloser>;

/// A manual-reset event.
UniqueHandle MakeEvent(bool set = false);

} // namespace orva::test
