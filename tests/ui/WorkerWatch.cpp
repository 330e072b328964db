#include "ui/WorkerWatch.h"

#include "harness/ImportHook.h"
#include "harness/Text.h"

#include <winsock2.h>
#include <wininet.h>

#include <map>
#include <mutex>

namespace orva::test
{

WatchedDownload::~WatchedDownload()
{
    if (thread != nullptr)
    {
        CloseHandle(thread);
    }
}

void WatchedDownload::Enter(WorkerPhase next)
{
    phase = next;
    if (onPhase)
    {
        onPhase(next);
    }
}

struct CWorkerWatch::Hooks
{
    Hooks();
    ~Hooks() { the = nullptr; }

    static HINTERNET WINAPI OpenRequest(HINTERNET connection, LPCWSTR verb, LPCWSTR object, LPCWSTR version,
                                        LPCWSTR referrer, LPCWSTR* types, DWORD flags, DWORD_PTR context);
    static BOOL WINAPI SendRequest(HINTERNET request, LPCWSTR headers, DWORD headersLength, LPVOID optional,
                                   DWORD optionalLength);
    static BOOL WINAPI ReadFile(HINTERNET file, LPVOID buffer, DWORD size, LPDWORD read);
    static int WINAPI Receive(SOCKET socket, char* buffer, int size, int flags);
    // This thread's download, or null.
    WatchedDownload* Own();

    static Hooks* the;

    std::mutex mutex;
    std::map<std::string, WatchedDownload*> byPath;
    std::map<DWORD, WatchedDownload*> byThread;
    CImportHook open;
    CImportHook send;
    CImportHook read;
    CImportHook receive;
};

CWorkerWatch::Hooks* CWorkerWatch::Hooks::the = nullptr;

CWorkerWatch::Hooks::Hooks()
    : open((the = this, GetModuleHandleW(nullptr)), "wininet.dll", "HttpOpenRequestW", &OpenRequest),
      send(GetModuleHandleW(nullptr), "wininet.dll", "HttpSendRequestW", &SendRequest),
      read(GetModuleHandleW(nullptr), "wininet.dll", "InternetReadFile", &ReadFile),
      receive(GetModuleHandleW(L"wininet.dll"), "ws2_32.dll", "recv", &Receive)
{
}

WatchedDownload* CWorkerWatch::Hooks::Own()
{
    const std::lock_guard lock(mutex);
    const auto found = byThread.find(GetCurrentThreadId());
    return found == byThread.end() ? nullptr : found->second;
}

HINTERNET WINAPI CWorkerWatch::Hooks::OpenRequest(HINTERNET connection, LPCWSTR verb, LPCWSTR object,
                                                  LPCWSTR version, LPCWSTR referrer, LPCWSTR* types,
                                                  DWORD flags, DWORD_PTR context)
{
    WatchedDownload* download = nullptr;
    {
        const std::lock_guard lock(the->mutex);
        const auto found = the->byPath.find(Utf8(object));
        if (found != the->byPath.end())
        {
            download = found->second;
            the->byThread[GetCurrentThreadId()] = download;
        }
    }
    if (download != nullptr)
    {
        download->thread = OpenThread(SYNCHRONIZE, FALSE, GetCurrentThreadId());
        download->Enter(WorkerPhase::BeforeRequest);
    }
    const HINTERNET request = the->open.Original<decltype(OpenRequest)>()(connection, verb, object, version,
                                                                          referrer, types, flags, context);
    if (download != nullptr && request == nullptr)
    {
        const DWORD error = GetLastError();
        download->error = error;
        download->Enter(WorkerPhase::Failed);
        SetLastError(error);
    }
    return request;
}

BOOL WINAPI CWorkerWatch::Hooks::SendRequest(HINTERNET request, LPCWSTR headers, DWORD headersLength,
                                             LPVOID optional, DWORD optionalLength)
{
    WatchedDownload* const download = the->Own();
    if (download != nullptr)
    {
        download->Enter(WorkerPhase::Connecting);
    }
    const BOOL sent = the->send.Original<decltype(SendRequest)>()(request, headers, headersLength, optional,
                                                                  optionalLength);
    if (download != nullptr)
    {
        const DWORD error = GetLastError();
        download->error = sent ? 0 : error;
        DWORD status = 0;
        DWORD size = sizeof status;
        const bool isGood = sent &&
                            HttpQueryInfoW(request, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status,
                                           &size, nullptr) &&
                            status == HTTP_STATUS_OK;
        download->Enter(isGood ? WorkerPhase::Body : WorkerPhase::Failed);
        SetLastError(error);
    }
    return sent;
}

BOOL WINAPI CWorkerWatch::Hooks::ReadFile(HINTERNET file, LPVOID buffer, DWORD size, LPDWORD read)
{
    const BOOL done = the->read.Original<decltype(ReadFile)>()(file, buffer, size, read);
    WatchedDownload* const download = the->Own();
    if (download != nullptr && (!done || *read == 0))
    {
        const DWORD error = GetLastError();
        download->error = done ? 0 : error;
        download->Enter(done ? WorkerPhase::DataEnded : WorkerPhase::Failed);
        SetLastError(error);
    }
    return done;
}

int WINAPI CWorkerWatch::Hooks::Receive(SOCKET socket, char* buffer, int size, int flags)
{
    WatchedDownload* const download = the->Own();
    if (download != nullptr && download->phase == WorkerPhase::Connecting)
    {
        download->Enter(WorkerPhase::WaitingForHeaders);
    }
    return the->receive.Original<decltype(Receive)>()(socket, buffer, size, flags);
}

CWorkerWatch::CWorkerWatch() : m_hooks(std::make_unique<Hooks>()) {}

CWorkerWatch::~CWorkerWatch() = default;

void CWorkerWatch::Watch(WatchedDownload& download)
{
    const std::lock_guard lock(m_hooks->mutex);
    m_hooks->byPath[download.path] = &download;
}

void CWorkerWatch::Forget(WatchedDownload& download)
{
    const std::lock_guard lock(m_hooks->mutex);
    m_hooks->byPath.erase(download.path);
    std::erase_if(m_hooks->byThread, [&](const auto& entry) { return entry.second == &download; });
}

} // namespace orva::test
