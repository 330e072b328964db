#include "ui/LocalizedResources.h"

#include "res/resource.h"
#include "support/RegistryUtilities.h"

#include <atlbase.h>

#include <cstddef>
#include <cstdint>

namespace
{
constexpr WORD kFallbackLanguage = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US);

// A resource's bytes; they live as long as the module, so nothing has to be freed.
struct ResourceBytes
{
    const void* data = nullptr;
    DWORD size = 0;
};

// Loads a resource that FindResource returned; false with the Win32 error set when that is null or cannot be
// loaded.
bool LoadResourceBytes(HINSTANCE module, HRSRC resource, ResourceBytes& bytes)
{
    const HGLOBAL loaded = resource != nullptr ? LoadResource(module, resource) : nullptr;
    if (loaded == nullptr)
    {
        return false;
    }
    bytes.data = LockResource(loaded);
    bytes.size = SizeofResource(module, resource);
    return bytes.data != nullptr;
}

// The string `index` of a block of the string table: counted strings, each a 16-bit length and that many
// units. Empty when the entry is empty, does not exist or does not lie inside the block.
CString FindString(const ResourceBytes& block, UINT index)
{
    const auto* const units = static_cast<const wchar_t*>(block.data);
    const std::size_t end = block.size / sizeof(wchar_t);
    // The walk compares its position, in units, with the size in bytes; kept as it is. The bytes after the
    // block are not ours and are not read: every entry there counts as empty.
    const auto lengthAt = [&](std::size_t position) {
        return position < end ? std::size_t{units[position]} : std::size_t{0};
    };
    std::size_t position = 0;
    UINT count = 0;
    for (; position < block.size && count != index; ++count)
    {
        position += lengthAt(position) + 1;
    }
    const std::size_t length = lengthAt(position);
    if (count != index || length == 0 || length > end - position - 1)
    {
        return CString();
    }
    return CString(units + position + 1, static_cast<int>(length));
}
} // namespace

// Not in an initializer list, which follows the order of the fields: the language depends on the version.
CLocalizedResources::CLocalizedResources()
{
    m_officeVersion = 0;
    m_langId = GetUILanguage();
    m_hInstance = _AtlBaseModule.GetModuleInstance();
}

void CLocalizedResources::SetOfficeVersion(int version)
{
    m_officeVersion = version;
    m_langId = GetUILanguage();
}

WORD CLocalizedResources::GetUILanguage() const
{
    if (m_officeVersion <= 0)
    {
        return 0;
    }
    CString key;
    key.Format(L"SOFTWARE\\Microsoft\\Office\\%d.0\\Common\\LanguageResources", m_officeVersion);

    std::int32_t language = ReadRegistryDword(key.GetString(), L"UILanguage");
    // 0 means "as installed". A missing value reads as -1, which does not lead to the install language: every
    // text is empty then. Kept as it is.
    if (language == 0)
    {
        language = ReadRegistryDword(key.GetString(), L"InstallLanguage");
    }
    return LOWORD(language);
}

CString CLocalizedResources::LoadString(UINT id) const
{
    return LoadString(id, m_langId);
}

CString CLocalizedResources::LoadString(UINT id, WORD language) const
{
    const UINT block = (id >> 4) + 1;
    HRSRC found = FindResourceExW(m_hInstance, RT_STRING, MAKEINTRESOURCEW(block), language);
    if (found == nullptr)
    {
        // This names the string instead of its block, so nothing is found and the text is empty. Kept on
        // purpose: a language without a table shows empty texts and not English ones.
        found = FindResourceExW(m_hInstance, RT_STRING, MAKEINTRESOURCEW(id), kFallbackLanguage);
    }
    ResourceBytes bytes;
    if (!LoadResourceBytes(m_hInstance, found, bytes))
    {
        return CString();
    }
    return FindString(bytes, id % 16);
}

HRESULT CLocalizedResources::LoadResourceData(UINT id, const wchar_t* type, const void** data,
                                              DWORD* size) const
{
    ResourceBytes bytes;
    if (!LoadResourceBytes(m_hInstance, FindResourceW(m_hInstance, MAKEINTRESOURCEW(id), type), bytes))
    {
        return HRESULT_FROM_WIN32(GetLastError());
    }
    *data = bytes.data;
    *size = bytes.size;
    return S_OK;
}

std::unique_ptr<std::wstring> CLocalizedResources::LoadXmlResource(UINT id) const
{
    const void* data = nullptr;
    DWORD size = 0;
    if (FAILED(LoadResourceData(id, L"XML", &data, &size)))
    {
        return nullptr;
    }
    return std::make_unique<std::wstring>(static_cast<const wchar_t*>(data), size / sizeof(wchar_t));
}

void CLocalizedResources::ShowMessage(HWND owner, const CString& text) const
{
    MessageBoxW(owner, text, LoadString(IDS_APPTITLE), MB_OK);
}

HWND CLocalizedResources::FindOwnProcessWindow() const
{
    for (HWND window = GetTopWindow(GetDesktopWindow()); window != nullptr;
         window = GetWindow(window, GW_HWNDNEXT))
    {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        if (process == GetCurrentProcessId() && IsWindowVisible(window))
        {
            return window;
        }
    }
    return nullptr;
}

CLocalizedResources& GetLocalizedResources()
{
    static CLocalizedResources resources;
    return resources;
}
