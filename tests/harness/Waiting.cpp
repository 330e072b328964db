#include "harness/Waiting.h"

#include <stdexcept>

namespace orva::test
{

namespace
{

// Milliseconds between two calls of the condition.
constexpr DWORD kInterval = 5;

} // namespace

bool WaitUntil(const std::function<bool()>& condition, DWORD timeout)
{
    const ULONGLONG end = GetTickCount64() + timeout;
    while (!condition())
    {
        if (GetTickCount64() >= end)
        {
            return false;
        }
        Sleep(kInterval);
    }
    return true;
}

bool PumpUntil(const std::function<bool()>& condition, DWORD timeout)
{
    return WaitUntil(
        [&] {
            MSG message;
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            {
                TranslateMessage(&message);
                DispatchMessageW(&message);
            }
            return condition();
        },
        timeout);
}

UniqueHandle MakeEvent()
{
    UniqueHandle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    if (!event)
    {
        throw std::runtime_error("cannot create an event");
    }
    return event;
}

} // namespace orva::test
