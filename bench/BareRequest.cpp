#include "bench/BareRequest.h"

#include <memory>
#include <stdexcept>
#include <vector>

namespace orva::bench
{

namespace
{

constexpr DWORD kBufferSize = 256001;
constexpr DWORD kWholeLength = static_cast<DWORD>(-1);

constexpr DWORD kCheckFlags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_EXISTING_CONNECT |
                              INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_RESYNCHRONIZE;
constexpr DWORD kDownloadFlags =
    INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_KEEP_CONNECTION;

constexpr LPCWSTR kAnything[] = {L"*/*", nullptr};

void Check(bool isGood, const char* step)
{
    if (!isGood)
    {
        throw std::runtime_error(step);
    }
}

void CheckStatus(HINTERNET request)
{
    DWORD status = 0;
    DWORD size = sizeof status;
    HttpQueryInfoW(request, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status, &size, nullptr);
    Check(status == HTTP_STATUS_OK, "status");
}

struct CloseFile
{
    void operator()(HANDLE file) const { CloseHandle(file); }
};

} // namespace

CInternetHandle::CInternetHandle(HINTERNET handle) : m_handle(handle)
{
    Check(handle != nullptr, "WinINet handle");
}

CInternetHandle::~CInternetHandle()
{
    InternetCloseHandle(m_handle);
}

DWORD BareGet(const std::wstring& host, const std::wstring& path)
{
    const CInternetHandle session(InternetOpenW(L"", INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
    const CInternetHandle connection(InternetConnectW(session, host.c_str(), INTERNET_DEFAULT_HTTP_PORT,
                                                      nullptr, nullptr, INTERNET_SERVICE_HTTP, 0, 1));
    const CInternetHandle request(
        HttpOpenRequestW(connection, L"GET", path.c_str(), nullptr, nullptr, nullptr, kCheckFlags, 1));
    HttpAddRequestHeadersW(request, L"Accept-Encoding: gzip", kWholeLength, HTTP_ADDREQ_FLAG_ADD_IF_NEW);
    Check(HttpSendRequestW(request, nullptr, 0, nullptr, 0) != FALSE, "HttpSendRequest");
    CheckStatus(request);

    const auto buffer = std::make_unique_for_overwrite<char[]>(kBufferSize);
    DWORD length = 0;
    DWORD read = 0;
    do
    {
        Check(InternetReadFile(request, buffer.get() + length, kBufferSize - length, &read) != FALSE,
              "InternetReadFile");
        length += read;
    } while (read != 0);
    return length;
}

void BareDownload(const std::wstring& host, INTERNET_PORT port, const std::wstring& path,
                  const std::wstring& file, DWORD chunk)
{
    const CInternetHandle session(
        InternetOpenW(L"OrvaBench", INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
    const CInternetHandle connection(
        InternetConnectW(session, host.c_str(), port, nullptr, nullptr, INTERNET_SERVICE_HTTP, 0, 0));
    const CInternetHandle request(HttpOpenRequestW(connection, nullptr, path.c_str(), nullptr, nullptr,
                                                   const_cast<LPCWSTR*>(kAnything), kDownloadFlags, 0));
    HttpAddRequestHeadersW(request, L"Accept-Encoding: identity, *;q=0\r\n", kWholeLength,
                           HTTP_ADDREQ_FLAG_ADD);
    HttpAddRequestHeadersW(request, L"User-Agent: ORVA OSC Outlook Add-In\r\n", kWholeLength,
                           HTTP_ADDREQ_FLAG_ADD);
    Check(HttpSendRequestW(request, nullptr, 0, nullptr, 0) != FALSE, "HttpSendRequest");
    CheckStatus(request);

    const HANDLE target = CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    Check(target != INVALID_HANDLE_VALUE, "CreateFile");
    const std::unique_ptr<void, CloseFile> closer(target);
    std::vector<char> buffer(chunk);
    DWORD read = 0;
    do
    {
        DWORD written = 0;
        Check(InternetReadFile(request, buffer.data(), chunk, &read) != FALSE, "InternetReadFile");
        Check(WriteFile(target, buffer.data(), read, &written, nullptr) != FALSE && written == read,
              "WriteFile");
    } while (read != 0);
}

} // namespace orva::bench
