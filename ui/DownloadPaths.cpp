#include "ui/DownloadPaths.h"

#include <objbase.h>

#include <array>
#include <string>

// Exported by msvcrt.dll and its import library, but not declared by mingw-w64's headers.
extern "C" __declspec(dllimport) errno_t __cdecl _mktemp_s(char* nameTemplate, size_t sizeInChars);

namespace
{

constexpr char kNameTemplate[] = "oscXXXXXX";
constexpr wchar_t kNamePrefix[] = L"osc";
constexpr int kRandomCharacters = 6;
constexpr int kMaxFolderAttempts = 100;

// A name like MakeTempName's, but an unpredictable one.
CString MakeRandomName()
{
    constexpr std::wstring_view kAlphabet = L"abcdefghijklmnopqrstuvwxyz0123456789";
    GUID guid{};
    // A version 4 GUID is random except for a few fixed bits, none of which is in its first six bytes.
    if (FAILED(CoCreateGuid(&guid)))
    {
        return MakeTempName();
    }
    std::array<unsigned char, sizeof(guid)> bytes{};
    memcpy(bytes.data(), &guid, sizeof(guid));
    std::wstring name = kNamePrefix;
    for (int i = 0; i < kRandomCharacters; ++i)
    {
        name += kAlphabet[bytes[static_cast<size_t>(i)] % kAlphabet.size()];
    }
    return CString(name.c_str());
}

bool CreateFreshDirectory(const CString& path)
{
    return CreateDirectoryW(path, nullptr) || GetLastError() != ERROR_ALREADY_EXISTS;
}

} // namespace

CString GetFileNameFromUrl(const CString& url)
{
    const int slash = url.ReverseFind(L'/');
    return slash < 0 ? CString() : url.Mid(slash + 1);
}

CString GetTempDirectory()
{
    std::array<wchar_t, MAX_PATH> buffer{};
    const DWORD length = GetTempPathW(static_cast<DWORD>(buffer.size()), buffer.data());
    return length < buffer.size() ? CString(buffer.data()) : CString();
}

CString MakeTempName()
{
    std::array<char, sizeof(kNameTemplate)> name{};
    memcpy(name.data(), kNameTemplate, sizeof(kNameTemplate));
    _mktemp_s(name.data(), name.size());
    const std::wstring wide(name.begin(), name.end() - 1);
    return CString(wide.c_str());
}

CString CreateTempDownloadDirectory()
{
    const CString parent = GetTempDirectory();
    CString path = parent + MakeTempName();
    for (int attempt = 0; attempt < kMaxFolderAttempts; ++attempt)
    {
        if (CreateFreshDirectory(path))
        {
            return path + L"\\";
        }
        path = parent + MakeRandomName();
    }
    return CString();
}
