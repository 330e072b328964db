// The baseline of the product's requests: the same requests with WinINet alone.
#pragma once

#include <windows.h>
#include <wininet.h>

#include <string>

namespace orva::bench
{

/// A WinINet handle that is closed at destruction.
class CInternetHandle
{
public:
    explicit CInternetHandle(HINTERNET handle);
    ~CInternetHandle();
    CInternetHandle(const CInternetHandle&) = delete;
    CInternetHandle& operator=(const CInternetHandle&) = delete;
    operator HINTERNET() const { return m_handle; }

private:
    HINTERNET m_handle;
};

/// Fetches `path` from `host` with the flags and headers of the update check. Returns the size in bytes.
/// Throws std::runtime_error on failure.
DWORD BareGet(const std::wstring& host, const std::wstring& path);

/// Downloads `path` from `host` and `port` into `file` with the flags and headers of the download dialog, in
/// reads of `chunk` bytes. Throws std::runtime_error on failure.
void BareDownload(const std::wstring& host, INTERNET_PORT port, const std::wstring& path,
                  const std::wstring& file, DWORD chunk);

} // namespace orva::bench
