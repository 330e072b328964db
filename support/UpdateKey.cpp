#include "support/UpdateKey.h"

#ifdef ORVA_UPDATE_KEY

#include "OrvaUpdateKey.h"

#include <windows.h>

#include <new>
#include <string_view>

namespace
{

constexpr CUpdateKey kKey{{ORVA_UPDATE_KEY_BYTES}};

// Empty if the system gives none.
std::wstring FinalPath(HANDLE file)
{
    // The longest path of Windows.
    std::wstring path(32'768, L'\0');
    path.resize(GetFinalPathNameByHandleW(file, path.data(), static_cast<DWORD>(path.size()),
                                          FILE_NAME_NORMALIZED | VOLUME_NAME_DOS));
    // The shell takes no path in the form that the function gives.
    constexpr std::wstring_view kPrefix = L"\\\\?\\";
    constexpr std::wstring_view kSharePrefix = L"\\\\?\\UNC\\";
    if (path.starts_with(kSharePrefix))
    {
        return L"\\\\" + path.substr(kSharePrefix.size());
    }
    return path.starts_with(kPrefix) ? path.substr(kPrefix.size()) : std::wstring();
}

std::wstring PathIfSignedByPublisher(const std::string& signedVersion, HANDLE file,
                                     const std::wstring& signature)
{
    try
    {
        return IsSignedBy(kKey, signedVersion, file, signature) ? FinalPath(file) : std::wstring();
    }
    catch (const std::bad_alloc&)
    {
        return {};
    }
}

} // namespace

const UpdateVerifier kUpdateVerifier = PathIfSignedByPublisher;

#else

const UpdateVerifier kUpdateVerifier = nullptr;

#endif
