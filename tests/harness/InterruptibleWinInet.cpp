#include "harness/InterruptibleWinInet.h"

#include "harness/PendingCalls.h"

#include <winsock2.h>

namespace orva::test
{
namespace
{

// A cancelled call returns within this time, in milliseconds.
constexpr ULONGLONG kLeaveTime = 2000;

// The socket that WinINet has made non-blocking on this thread, to see whether there is more.
thread_local SOCKET t_notWaiting = INVALID_SOCKET;

timeval Slice()
{
    return {0, static_cast<long>(CInterruptibleWinInet::kSlice * 1000)};
}

} // namespace

struct CInterruptibleWinInet::Hooks
{
    explicit Hooks(HMODULE module);
    ~Hooks() { s_current = nullptr; }

    static HINTERNET WINAPI Open(LPCWSTR agent, DWORD access, LPCWSTR proxy, LPCWSTR bypass, DWORD flags);
    static HINTERNET WINAPI ConnectTo(HINTERNET session, LPCWSTR server, INTERNET_PORT port, LPCWSTR user,
                                      LPCWSTR password, DWORD service, DWORD flags, DWORD_PTR context);
    static HINTERNET WINAPI OpenRequest(HINTERNET connection, LPCWSTR verb, LPCWSTR object, LPCWSTR version,
                                        LPCWSTR referrer, LPCWSTR* types, DWORD flags, DWORD_PTR context);
    static BOOL WINAPI AddHeaders(HINTERNET request, LPCWSTR headers, DWORD length, DWORD modifiers);
    static BOOL WINAPI QueryInfo(HINTERNET request, DWORD level, LPVOID buffer, LPDWORD size, LPDWORD index);
    static BOOL WINAPI SendRequest(HINTERNET request, LPCWSTR headers, DWORD headersLength, LPVOID optional,
                                   DWORD optionalLength);
    static BOOL WINAPI ReadFile(HINTERNET file, LPVOID buffer, DWORD size, LPDWORD read);
    static BOOL WINAPI CloseInternetHandle(HINTERNET handle);
    // What the module gets for a handle made in this call. If the parent has been closed meanwhile, the new
    // handle is closed at once, before WinINet can reuse the parent's number.
    static HINTERNET Give(const CPendingCall& call, HINTERNET real);
    static int WINAPI Control(SOCKET socket, long command, u_long* argument);
    static int WINAPI Receive(SOCKET socket, char* buffer, int size, int flags);
    static int WINAPI Connect(SOCKET socket, const sockaddr* address, int size);

    // Returns `module`: the first hook may be called as soon as it is made, and needs the object.
    HMODULE BecomeCurrent(HMODULE module)
    {
        s_current = this;
        return module;
    }

    static Hooks* s_current;

    HMODULE winInet;
    CImportHook control;
    CImportHook receive;
    CImportHook connect;
    CImportHook open;
    CImportHook connectTo;
    CImportHook openRequest;
    CImportHook addHeaders;
    CImportHook queryInfo;
    CImportHook send;
    CImportHook read;
    CImportHook close;
};

CInterruptibleWinInet::Hooks* CInterruptibleWinInet::Hooks::s_current = nullptr;

CInterruptibleWinInet::Hooks::Hooks(HMODULE module)
    : winInet(BecomeCurrent(GetModuleHandleW(L"wininet.dll"))),
      control(winInet, "ws2_32.dll", "ioctlsocket", &Control),
      receive(winInet, "ws2_32.dll", "recv", &Receive), connect(winInet, "ws2_32.dll", "connect", &Connect),
      open(module, "wininet.dll", "InternetOpenW", &Open),
      connectTo(module, "wininet.dll", "InternetConnectW", &ConnectTo),
      openRequest(module, "wininet.dll", "HttpOpenRequestW", &OpenRequest),
      addHeaders(module, "wininet.dll", "HttpAddRequestHeadersW", &AddHeaders),
      queryInfo(module, "wininet.dll", "HttpQueryInfoW", &QueryInfo),
      send(module, "wininet.dll", "HttpSendRequestW", &SendRequest),
      read(module, "wininet.dll", "InternetReadFile", &ReadFile),
      close(module, "wininet.dll", "InternetCloseHandle", &CloseInternetHandle)
{
}

HINTERNET WINAPI CInterruptibleWinInet::Hooks::Open(LPCWSTR agent, DWORD access, LPCWSTR proxy,
                                                    LPCWSTR bypass, DWORD flags)
{
    return GiveHandle(s_current->open.Original<decltype(Open)>()(agent, access, proxy, bypass, flags),
                      nullptr);
}

HINTERNET CInterruptibleWinInet::Hooks::Give(const CPendingCall& call, HINTERNET real)
{
    const HINTERNET given = call.Give(real);
    if (given == nullptr && real != nullptr)
    {
        s_current->close.Original<decltype(CloseInternetHandle)>()(real);
        SetLastError(ERROR_INTERNET_OPERATION_CANCELLED);
    }
    return given;
}

HINTERNET WINAPI CInterruptibleWinInet::Hooks::ConnectTo(HINTERNET session, LPCWSTR server,
                                                         INTERNET_PORT port, LPCWSTR user, LPCWSTR password,
                                                         DWORD service, DWORD flags, DWORD_PTR context)
{
    const CPendingCall call(session);
    return Give(call, s_current->connectTo.Original<decltype(ConnectTo)>()(
                          call.Real(), server, port, user, password, service, flags, context));
}

HINTERNET WINAPI CInterruptibleWinInet::Hooks::OpenRequest(HINTERNET connection, LPCWSTR verb, LPCWSTR object,
                                                           LPCWSTR version, LPCWSTR referrer, LPCWSTR* types,
                                                           DWORD flags, DWORD_PTR context)
{
    const CPendingCall call(connection);
    return Give(call, s_current->openRequest.Original<decltype(OpenRequest)>()(
                          call.Real(), verb, object, version, referrer, types, flags, context));
}

BOOL WINAPI CInterruptibleWinInet::Hooks::AddHeaders(HINTERNET request, LPCWSTR headers, DWORD length,
                                                     DWORD modifiers)
{
    const CPendingCall call(request);
    return s_current->addHeaders.Original<decltype(AddHeaders)>()(call.Real(), headers, length, modifiers);
}

BOOL WINAPI CInterruptibleWinInet::Hooks::QueryInfo(HINTERNET request, DWORD level, LPVOID buffer,
                                                    LPDWORD size, LPDWORD index)
{
    const CPendingCall call(request);
    return s_current->queryInfo.Original<decltype(QueryInfo)>()(call.Real(), level, buffer, size, index);
}

BOOL WINAPI CInterruptibleWinInet::Hooks::SendRequest(HINTERNET request, LPCWSTR headers, DWORD headersLength,
                                                      LPVOID optional, DWORD optionalLength)
{
    const CPendingCall call(request);
    return call.Result(s_current->send.Original<decltype(SendRequest)>()(call.Real(), headers, headersLength,
                                                                         optional, optionalLength));
}

BOOL WINAPI CInterruptibleWinInet::Hooks::ReadFile(HINTERNET file, LPVOID buffer, DWORD size, LPDWORD read)
{
    const CPendingCall call(file);
    return call.Result(s_current->read.Original<decltype(ReadFile)>()(call.Real(), buffer, size, read));
}

BOOL WINAPI CInterruptibleWinInet::Hooks::CloseInternetHandle(HINTERNET handle)
{
    const TakenHandles taken = TakeHandles(handle);
    const ULONGLONG start = GetTickCount64();
    while (CancelCalls(taken.handles) && GetTickCount64() - start < kLeaveTime)
    {
        Sleep(1);
    }
    if (taken.real.empty())
    {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    BOOL closed = FALSE;
    for (const HINTERNET each : taken.real)
    {
        closed = s_current->close.Original<decltype(CloseInternetHandle)>()(each);
    }
    return closed;
}

int WINAPI CInterruptibleWinInet::Hooks::Control(SOCKET socket, long command, u_long* argument)
{
    if (command == static_cast<long>(FIONBIO) && argument != nullptr)
    {
        t_notWaiting = *argument != 0 ? socket : INVALID_SOCKET;
    }
    return s_current->control.Original<decltype(Control)>()(socket, command, argument);
}

int WINAPI CInterruptibleWinInet::Hooks::Receive(SOCKET socket, char* buffer, int size, int flags)
{
    const auto original = s_current->receive.Original<decltype(Receive)>();
    const PendingCall* const call = OwnCall();
    if (call == nullptr || socket == t_notWaiting)
    {
        return original(socket, buffer, size, flags);
    }
    DWORD limit = 0;
    int limitSize = sizeof limit;
    getsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<char*>(&limit), &limitSize);
    const ULONGLONG start = GetTickCount64();
    u_long notWaiting = 1;
    ioctlsocket(socket, static_cast<long>(FIONBIO), &notWaiting);
    int received = original(socket, buffer, size, flags);
    int error = received < 0 ? WSAGetLastError() : 0;
    while (error == WSAEWOULDBLOCK)
    {
        if (call->cancelled)
        {
            error = WSAECONNABORTED;
        }
        else if (limit != 0 && GetTickCount64() - start >= limit)
        {
            error = WSAETIMEDOUT;
        }
        else
        {
            fd_set ready;
            FD_ZERO(&ready);
            FD_SET(socket, &ready);
            timeval slice = Slice();
            ::select(0, &ready, nullptr, nullptr, &slice);
            // Tried whatever select says, which does not see every broken connection.
            received = original(socket, buffer, size, flags);
            error = received < 0 ? WSAGetLastError() : 0;
        }
    }
    u_long waiting = 0;
    ioctlsocket(socket, static_cast<long>(FIONBIO), &waiting);
    WSASetLastError(error);
    return received;
}

int WINAPI CInterruptibleWinInet::Hooks::Connect(SOCKET socket, const sockaddr* address, int size)
{
    const auto original = s_current->connect.Original<decltype(Connect)>();
    const PendingCall* const call = OwnCall();
    u_long notWaiting = 1;
    if (call == nullptr || ioctlsocket(socket, static_cast<long>(FIONBIO), &notWaiting) != 0)
    {
        return original(socket, address, size);
    }
    int error = original(socket, address, size) == 0 ? 0 : WSAGetLastError();
    while (error == WSAEWOULDBLOCK)
    {
        fd_set connected;
        fd_set failed;
        FD_ZERO(&connected);
        FD_ZERO(&failed);
        FD_SET(socket, &connected);
        FD_SET(socket, &failed);
        timeval slice = Slice();
        if (call->cancelled)
        {
            error = WSAECONNABORTED;
        }
        else if (::select(0, nullptr, &connected, &failed, &slice) != 0)
        {
            int errorSize = sizeof error;
            getsockopt(socket, SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &errorSize);
        }
    }
    u_long waiting = 0;
    ioctlsocket(socket, static_cast<long>(FIONBIO), &waiting);
    WSASetLastError(error);
    return error == 0 ? 0 : SOCKET_ERROR;
}

CInterruptibleWinInet::CInterruptibleWinInet(HMODULE module) : m_hooks(std::make_unique<Hooks>(module))
{
    ForgetInterruptedCalls();
}

CInterruptibleWinInet::~CInterruptibleWinInet() = default;

int CInterruptibleWinInet::Interrupted() const
{
    return InterruptedCalls();
}

} // namespace orva::test
