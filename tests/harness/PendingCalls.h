// The WinINet handles that a module under test holds, and its calls that are pending on them.
#pragma once

#include <windows.h>
#include <wininet.h>

#include <atomic>
#include <list>
#include <vector>

namespace orva::test
{

/// A call that a thread of the module's has pending.
struct PendingCall
{
    PendingCall(DWORD itsThread, HINTERNET itsHandle) : thread(itsThread), handle(itsHandle) {}

    DWORD thread;
    HINTERNET handle;
    std::atomic<bool> cancelled = false;
};

/// The number that the module gets for a handle of WinINet's, as a child of `parent` or of none. Null for
/// null, and for one whose parent has been closed meanwhile. A number is never given twice.
HINTERNET GiveHandle(HINTERNET real, HINTERNET parent);

/// Handles of the module's and, in the same order, what stands behind them.
struct TakenHandles
{
    std::vector<HINTERNET> handles;
    std::vector<HINTERNET> real;
};

/// Takes a handle and all below it from the module, the lowest first.
TakenHandles TakeHandles(HINTERNET handle);

/// Tells other threads' calls under these handles that they are cancelled. Returns whether there are any.
bool CancelCalls(const std::vector<HINTERNET>& handles);

/// This thread's pending call, or null. It stays as long as the thread is in it.
const PendingCall* OwnCall();

/// How many calls have ended as cancelled since ForgetInterruptedCalls.
int InterruptedCalls();
void ForgetInterruptedCalls();

/// Notes a pending call for its lifetime.
class CPendingCall
{
public:
    explicit CPendingCall(HINTERNET handle);
    ~CPendingCall();
    CPendingCall(const CPendingCall&) = delete;
    CPendingCall& operator=(const CPendingCall&) = delete;

    /// WinINet's own handle; null if the handle has been closed or never was one.
    HINTERNET Real() const { return m_real; }
    /// A handle to give to the module for one that was made under this call's, as GiveHandle says.
    HINTERNET Give(HINTERNET real) const { return GiveHandle(real, m_handle); }
    /// The call's result, which is a failure if its handle was closed.
    BOOL Result(BOOL result) const;

private:
    HINTERNET m_handle;
    HINTERNET m_real;
    std::list<PendingCall>::iterator m_call;
};

} // namespace orva::test
