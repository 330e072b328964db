#include "harness/PendingCalls.h"

#include <algorithm>
#include <map>
#include <mutex>

namespace orva::test
{
namespace
{

// What stands behind a handle that the module got.
struct Behind
{
    HINTERNET real;
    HINTERNET parent;
};

struct Calls
{
    std::mutex mutex;
    std::list<PendingCall> pending;
    std::map<HINTERNET, Behind> handles;
    ULONG_PTR last = 0x10000;
};

Calls& TheCalls()
{
    static Calls* const calls = new Calls;
    return *calls;
}

std::atomic<int> g_interrupted = 0;

} // namespace

HINTERNET GiveHandle(HINTERNET real, HINTERNET parent)
{
    if (real == nullptr)
    {
        return nullptr;
    }
    const DWORD error = GetLastError();
    const std::lock_guard lock(TheCalls().mutex);
    if (parent != nullptr && !TheCalls().handles.contains(parent))
    {
        return nullptr;
    }
    TheCalls().last += 4;
    const auto handle = reinterpret_cast<HINTERNET>(TheCalls().last);
    TheCalls().handles[handle] = {real, parent};
    SetLastError(error);
    return handle;
}

TakenHandles TakeHandles(HINTERNET handle)
{
    const std::lock_guard lock(TheCalls().mutex);
    auto& handles = TheCalls().handles;
    std::vector<HINTERNET> taken;
    if (handles.contains(handle))
    {
        taken.push_back(handle);
    }
    for (size_t index = 0; index < taken.size(); ++index)
    {
        for (const auto& [child, behind] : handles)
        {
            if (behind.parent == taken[index])
            {
                taken.push_back(child);
            }
        }
    }
    TakenHandles result{{taken.rbegin(), taken.rend()}, {}};
    for (const HINTERNET each : result.handles)
    {
        result.real.push_back(handles.at(each).real);
        handles.erase(each);
    }
    return result;
}

bool CancelCalls(const std::vector<HINTERNET>& handles)
{
    const std::lock_guard lock(TheCalls().mutex);
    bool isPending = false;
    for (PendingCall& call : TheCalls().pending)
    {
        if (std::ranges::find(handles, call.handle) != handles.end() && call.thread != GetCurrentThreadId())
        {
            call.cancelled = true;
            isPending = true;
        }
    }
    return isPending;
}

const PendingCall* OwnCall()
{
    const std::lock_guard lock(TheCalls().mutex);
    auto& pending = TheCalls().pending;
    const auto found = std::ranges::find_if(
        pending, [](const PendingCall& call) { return call.thread == GetCurrentThreadId(); });
    return found == pending.end() ? nullptr : &*found;
}

int InterruptedCalls()
{
    return g_interrupted;
}

void ForgetInterruptedCalls()
{
    g_interrupted = 0;
}

CPendingCall::CPendingCall(HINTERNET handle) : m_handle(handle)
{
    const std::lock_guard lock(TheCalls().mutex);
    const auto found = TheCalls().handles.find(handle);
    m_real = found == TheCalls().handles.end() ? nullptr : found->second.real;
    TheCalls().pending.emplace_front(GetCurrentThreadId(), handle);
    m_call = TheCalls().pending.begin();
}

CPendingCall::~CPendingCall()
{
    const std::lock_guard lock(TheCalls().mutex);
    TheCalls().pending.erase(m_call);
}

BOOL CPendingCall::Result(BOOL result) const
{
    const DWORD error = GetLastError();
    if (!m_call->cancelled)
    {
        SetLastError(error);
        return result;
    }
    ++g_interrupted;
    SetLastError(ERROR_INTERNET_OPERATION_CANCELLED);
    return FALSE;
}

} // namespace orva::test
