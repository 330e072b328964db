#include "download/FakeWinInet.h"

#include <algorithm>
#include <cstring>
#include <iomanip>
#include <sstream>

namespace orva::test
{
namespace
{

CFakeWinInet* g_fake = nullptr;
// Numbers that neither are small nor look like an address.
ULONG_PTR g_lastHandle = 0xCC0000;

std::string Texts(LPCWSTR* texts)
{
    if (texts == nullptr)
    {
        return "null";
    }
    std::string list;
    for (; *texts != nullptr; ++texts)
    {
        list += (list.empty() ? "" : ", ") + ShowText(*texts);
    }
    return "{" + list + "}";
}

std::string Number(DWORD number)
{
    return std::to_string(static_cast<int>(number));
}

std::string Bytes(const void* data, DWORD size)
{
    if (data == nullptr)
    {
        return "null";
    }
    std::ostringstream text;
    for (DWORD i = 0; i < size; ++i)
    {
        text << (i == 0 ? "" : " ") << std::hex << std::uppercase << std::setw(2) << std::setfill('0')
             << static_cast<unsigned>(static_cast<const unsigned char*>(data)[i]);
    }
    return "{" + text.str() + "}";
}

// What a call makes of its error: the last error, and whether it succeeded.
bool Succeeds(DWORD error)
{
    if (error != 0)
    {
        SetLastError(error);
    }
    return error == 0;
}

} // namespace

struct CFakeWinInet::Functions
{
    using Work = std::function<DWORD(CGatedCall& call)>;

    static std::string Name(HINTERNET handle)
    {
        const auto found = g_fake->m_handles.find(handle);
        return handle == nullptr ? "null" : found == g_fake->m_handles.end() ? "unknown" : found->second.name;
    }

    static bool IsOpen(HINTERNET handle)
    {
        const auto found = g_fake->m_handles.find(handle);
        return found != g_fake->m_handles.end() && found->second.isOpen;
    }

    // A call through its gates, on a handle of this kind: None for a call without a handle, Any for one that
    // looks at the handle itself. `work` does what the call is for and gives its error. Returns the error, 0
    // for success.
    static DWORD Run(const char* function, Kind kind, HINTERNET handle, const std::string& arguments,
                     const Work& work)
    {
        if (g_fake == nullptr)
        {
            return ERROR_CALL_NOT_IMPLEMENTED;
        }
        CGatedCall call(g_fake->m_gates, function);
        const std::string name = kind == Kind::None ? "" : Name(handle);
        call.Record(name + (name.empty() || arguments.empty() ? "" : ", ") + arguments);
        const bool isChecked = kind != Kind::None && kind != Kind::Any;
        const auto isClosed = [&] { return isChecked && !IsOpen(handle); };
        DWORD error = 0;
        call.Pass(CallStage::Before);
        if (isClosed())
        {
            error = ERROR_INVALID_HANDLE;
        }
        else if (isChecked && g_fake->m_handles.at(handle).kind != kind)
        {
            error = ERROR_INTERNET_INCORRECT_HANDLE_TYPE;
        }
        else
        {
            call.Pass(CallStage::Pending, isClosed);
            error = isClosed() ? ERROR_INTERNET_OPERATION_CANCELLED : call.Failure();
        }
        if (error == 0)
        {
            error = work(call);
        }
        if (error != 0)
        {
            call.RecordResult("error " + std::to_string(error));
        }
        call.Pass(CallStage::After);
        return error;
    }

    // The same for a call that makes a handle.
    static HINTERNET Make(const char* function, Kind kind, Kind made, const char* name, HINTERNET parent,
                          const std::string& arguments)
    {
        HINTERNET handle = nullptr;
        const DWORD error = Run(function, kind, parent, arguments, [&](CGatedCall& call) {
            const auto others = std::ranges::count_if(
                g_fake->m_handles, [&](const auto& each) { return each.second.kind == made; });
            g_lastHandle += 4;
            handle = reinterpret_cast<HINTERNET>(g_lastHandle);
            g_fake->m_handles[handle] = {made, name + (others == 0 ? "" : " " + std::to_string(others + 1)),
                                         parent};
            call.RecordResult(Name(handle));
            return 0;
        });
        return Succeeds(error) ? handle : nullptr;
    }

    static HINTERNET WINAPI Open(LPCWSTR agent, DWORD access, LPCWSTR proxy, LPCWSTR bypass, DWORD flags)
    {
        if (g_fake != nullptr)
        {
            g_fake->m_callerHandle.reset(OpenThread(SYNCHRONIZE, FALSE, GetCurrentThreadId()));
            g_fake->m_caller = GetCurrentThreadId();
        }
        return Make("InternetOpenW", Kind::None, Kind::Session, "session", nullptr,
                    ShowText(agent) + ", " + Number(access) + ", " + ShowText(proxy) + ", " +
                        ShowText(bypass) + ", " + ShowHex(flags));
    }

    static HINTERNET WINAPI Connect(HINTERNET session, LPCWSTR server, INTERNET_PORT port, LPCWSTR user,
                                    LPCWSTR password, DWORD service, DWORD flags, DWORD_PTR context)
    {
        return Make("InternetConnectW", Kind::Session, Kind::Connection, "connection", session,
                    ShowText(server) + ", " + Number(port) + ", " + ShowText(user) + ", " +
                        ShowText(password) + ", " + Number(service) + ", " + ShowHex(flags) + ", context " +
                        ShowHex(context));
    }

    static HINTERNET WINAPI OpenRequest(HINTERNET connection, LPCWSTR verb, LPCWSTR object, LPCWSTR version,
                                        LPCWSTR referrer, LPCWSTR* types, DWORD flags, DWORD_PTR context)
    {
        return Make("HttpOpenRequestW", Kind::Connection, Kind::Request, "request", connection,
                    ShowText(verb) + ", " + ShowText(object) + ", " + ShowText(version) + ", " +
                        ShowText(referrer) + ", " + Texts(types) + ", " + ShowHex(flags) + ", context " +
                        ShowHex(context));
    }

    static BOOL WINAPI AddHeaders(HINTERNET request, LPCWSTR text, DWORD length, DWORD modifiers)
    {
        return Succeeds(Run("HttpAddRequestHeadersW", Kind::Request, request,
                            ShowText(text) + ", " + Number(length) + ", " + ShowHex(modifiers),
                            [](CGatedCall&) { return 0; }));
    }

    static BOOL WINAPI Send(HINTERNET request, LPCWSTR text, DWORD length, LPVOID optional,
                            DWORD optionalLength)
    {
        return Succeeds(Run("HttpSendRequestW", Kind::Request, request,
                            ShowText(text) + ", " + Number(length) + ", " + Bytes(optional, optionalLength) +
                                ", " + Number(optionalLength),
                            [&](CGatedCall&) {
                                g_fake->m_handles.at(request).isSent = true;
                                return 0;
                            }));
    }

    static BOOL WINAPI QueryInfo(HINTERNET request, DWORD level, LPVOID buffer, LPDWORD size, LPDWORD)
    {
        return Succeeds(Run("HttpQueryInfoW", Kind::Request, request,
                            Number(level) + ", " + Number(buffer != nullptr ? *size : 0) + " bytes",
                            [&](CGatedCall&) -> DWORD {
                                if (!g_fake->m_handles.at(request).isSent)
                                {
                                    return ERROR_INTERNET_INCORRECT_HANDLE_STATE;
                                }
                                const auto found = g_fake->headers.find(level);
                                if (found == g_fake->headers.end())
                                {
                                    return ERROR_HTTP_HEADER_NOT_FOUND;
                                }
                                const auto length =
                                    static_cast<DWORD>(found->second.size() * sizeof(wchar_t));
                                const DWORD needed = length + sizeof(wchar_t);
                                if (buffer == nullptr || *size < needed)
                                {
                                    *size = needed;
                                    return ERROR_INSUFFICIENT_BUFFER;
                                }
                                memcpy(buffer, found->second.c_str(), needed);
                                *size = length;
                                return 0;
                            }));
    }

    static BOOL WINAPI ReadFile(HINTERNET request, LPVOID buffer, DWORD size, LPDWORD read)
    {
        *read = 0;
        return Succeeds(
            Run("InternetReadFile", Kind::Request, request, Number(size), [&](CGatedCall& call) -> DWORD {
                Handle& handle = g_fake->m_handles.at(request);
                if (!handle.isSent)
                {
                    return ERROR_INTERNET_INCORRECT_HANDLE_STATE;
                }
                if (handle.part < g_fake->body.size())
                {
                    const std::string& part = g_fake->body[handle.part];
                    *read = static_cast<DWORD>(part.copy(static_cast<char*>(buffer), size, handle.offset));
                    handle.offset += *read;
                    if (handle.offset == part.size())
                    {
                        ++handle.part;
                        handle.offset = 0;
                    }
                }
                call.RecordResult(Number(*read));
                return 0;
            }));
    }

    static void CloseTree(HINTERNET closed)
    {
        g_fake->m_handles.at(closed).isOpen = false;
        for (const auto& [handle, data] : g_fake->m_handles)
        {
            if (data.parent == closed)
            {
                CloseTree(handle);
            }
        }
    }

    static BOOL WINAPI Close(HINTERNET handle)
    {
        return Succeeds(Run("InternetCloseHandle", Kind::Any, handle, "", [&](CGatedCall& call) -> DWORD {
            if (!IsOpen(handle))
            {
                return ERROR_INVALID_HANDLE;
            }
            CloseTree(handle);
            call.Announce();
            return 0;
        }));
    }

    static BOOL WINAPI SetOption(HINTERNET handle, DWORD option, LPVOID, DWORD)
    {
        return Succeeds(
            Run("InternetSetOptionW", Kind::Any, handle, Number(option), [](CGatedCall&) { return 0; }));
    }

    static INTERNET_STATUS_CALLBACK WINAPI SetStatusCallback(HINTERNET handle, INTERNET_STATUS_CALLBACK)
    {
        Run("InternetSetStatusCallbackW", Kind::Any, handle, "", [](CGatedCall&) { return 0; });
        return nullptr;
    }
};

CFakeWinInet::CFakeWinInet(CCallGates& gates) : m_gates(gates)
{
    g_fake = this;
}

CFakeWinInet::~CFakeWinInet()
{
    g_fake = nullptr;
}

std::vector<std::string> CFakeWinInet::OpenHandles() const
{
    std::vector<std::string> names;
    for (const auto& [handle, data] : m_handles)
    {
        if (data.isOpen)
        {
            names.push_back(data.name);
        }
    }
    return names;
}

bool CFakeWinInet::HasCallerEnded() const
{
    return m_callerHandle && WaitForSingleObject(m_callerHandle.get(), 0) == WAIT_OBJECT_0;
}

// What the linker looks for on behalf of every object that calls these functions.
extern "C"
{
    decltype(&InternetOpenW) g_internetOpen asm("__imp_InternetOpenW") = &CFakeWinInet::Functions::Open;
    decltype(&InternetConnectW) g_internetConnect asm("__imp_InternetConnectW") =
        &CFakeWinInet::Functions::Connect;
    decltype(&HttpOpenRequestW) g_httpOpenRequest asm("__imp_HttpOpenRequestW") =
        &CFakeWinInet::Functions::OpenRequest;
    decltype(&HttpAddRequestHeadersW) g_httpAddRequestHeaders asm("__imp_HttpAddRequestHeadersW") =
        &CFakeWinInet::Functions::AddHeaders;
    decltype(&HttpSendRequestW) g_httpSendRequest asm("__imp_HttpSendRequestW") =
        &CFakeWinInet::Functions::Send;
    decltype(&HttpQueryInfoW) g_httpQueryInfo asm("__imp_HttpQueryInfoW") =
        &CFakeWinInet::Functions::QueryInfo;
    decltype(&InternetReadFile) g_internetReadFile asm("__imp_InternetReadFile") =
        &CFakeWinInet::Functions::ReadFile;
    decltype(&InternetCloseHandle) g_internetCloseHandle asm("__imp_InternetCloseHandle") =
        &CFakeWinInet::Functions::Close;
    decltype(&InternetSetOptionW) g_internetSetOption asm("__imp_InternetSetOptionW") =
        &CFakeWinInet::Functions::SetOption;
    decltype(&InternetSetStatusCallbackW) g_internetSetStatusCallback asm(
        "__imp_InternetSetStatusCallbackW") = &CFakeWinInet::Functions::SetStatusCallback;
}

} // namespace orva::test
