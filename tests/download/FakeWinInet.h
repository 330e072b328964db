// An Internet without a network: stands in for WinINet in a test program that is linked with it.
#pragma once

#include "download/CallGates.h"

#include <windows.h>
#include <wininet.h>

#include <atomic>
#include <map>
#include <string>
#include <vector>

namespace orva::test
{

/// The source file defines the symbols through which the program's objects import WinINet, so the linker
/// takes none of these functions from the import library: InternetOpenW, InternetConnectW, HttpOpenRequestW,
/// HttpAddRequestHeadersW, HttpSendRequestW, HttpQueryInfoW, InternetReadFile, InternetCloseHandle,
/// InternetSetOptionW and InternetSetStatusCallbackW. What only works on texts (InternetCrackUrlW) stays
/// WinINet's own.
///
/// The contract is the documented one:
/// - A handle belongs to the one that it was made from. Closing a handle closes those that belong to it.
/// - A call on a closed handle fails with ERROR_INVALID_HANDLE, one on a handle of another kind with
///   ERROR_INTERNET_INCORRECT_HANDLE_TYPE, and a query or a read before the request was sent with
///   ERROR_INTERNET_INCORRECT_HANDLE_STATE.
/// - Closing a handle under a pending call of another thread makes that call fail with
///   ERROR_INTERNET_OPERATION_CANCELLED.
/// A handle's number is never given out again.
///
/// Each call passes its gates by the name of its function, and is recorded with its arguments and, if that
/// says more than success, its result. One object at a time.
class CFakeWinInet
{
public:
    explicit CFakeWinInet(CCallGates& gates);
    ~CFakeWinInet();
    CFakeWinInet(const CFakeWinInet&) = delete;
    CFakeWinInet& operator=(const CFakeWinInet&) = delete;

    /// How requests are answered: what HttpQueryInfoW gives for a level (HTTP_QUERY_), and what one read
    /// after the other gives. A part of the body that is longer than a read asks for is spread over several.
    std::map<DWORD, std::wstring> headers;
    std::vector<std::string> body;

    /// The names of the handles that have not been closed: "session", "connection", "request".
    std::vector<std::string> OpenHandles() const;
    /// The thread that opened the session: its id, and whether it has ended. 0 and false before that.
    DWORD Caller() const { return m_caller; }
    bool HasCallerEnded() const;

    struct Functions;

private:
    friend struct Functions;

    enum class Kind
    {
        /// Of a call without a handle.
        None,
        /// Of a call that looks at its handle itself.
        Any,
        Session,
        Connection,
        Request,
    };

    struct Handle
    {
        Kind kind;
        std::string name;
        HINTERNET parent;
        bool isOpen = true;
        bool isSent = false;
        /// The next byte to be read: of which part, and where in it.
        size_t part = 0;
        size_t offset = 0;
    };

    CCallGates& m_gates;
    std::map<HINTERNET, Handle> m_handles;
    std::atomic<DWORD> m_caller = 0;
    UniqueHandle m_callerHandle;
};

} // namespace orva::test
