// Gives WinINet's documented answer to a handle that is closed under a waiting call, where Wine 8 does not.
#pragma once

#include "harness/ImportHook.h"

#include <windows.h>
#include <wininet.h>

#include <memory>

namespace orva::test
{

/// Windows documents that closing a request's handle ends a call that another thread has pending on it: the
/// call fails with ERROR_INTERNET_OPERATION_CANCELLED. Wine 8's WinINet lets the call wait on. For its
/// lifetime this class makes up for that, in this process and for one module, by these means and no more:
///
/// - It sees the module's calls of WinINet that the download makes, which go on unchanged but
///   for the handle. A call whose handle is closed meanwhile fails with
///   ERROR_INTERNET_OPERATION_CANCELLED whatever WinINet made of it.
/// - Wine's WinINet waits for its sockets in `connect` and `recv`. Within such a call both wait in slices of
///   kSlice milliseconds until the socket is ready, WinINet's own time is up or the handle has been closed;
///   then they fail with WSAECONNABORTED, which WinINet takes for a broken connection.
/// - The close goes on to WinINet when the calls under the handle have left it: Wine frees a connection under
///   the call that uses it.
/// - A handle's number is never given out again, and closing a parent closes what is below it. Wine gives a
///   number out again at once, so that of several downloads in one process one would act on another's.
///
/// What is measured with it is the module's own part of a
/// cancellation; that Windows ends the call at once is taken from its documentation. One object at a time. No
/// call of the module's may be pending at its end.
class CInterruptibleWinInet
{
public:
    /// How long a closed handle can go unnoticed at most, in milliseconds.
    static constexpr DWORD kSlice = 10;

    /// `module`: the program or DLL whose calls are meant. Throws std::runtime_error when a function is not
    /// imported as expected.
    explicit CInterruptibleWinInet(HMODULE module = GetModuleHandleW(nullptr));
    ~CInterruptibleWinInet();
    CInterruptibleWinInet(const CInterruptibleWinInet&) = delete;
    CInterruptibleWinInet& operator=(const CInterruptibleWinInet&) = delete;

    /// Calls that were interrupted so far.
    int Interrupted() const;

private:
    struct Hooks;
    std::unique_ptr<Hooks> m_hooks;
};

} // namespace orva::test
