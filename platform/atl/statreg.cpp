#include "platform/atl/statreg.h"

#include "platform/atl/RegistrationWriter.h"

#include <limits>
#include <new>

namespace ATL
{

namespace
{

// A module opened for its resources only.
class CDataModule
{
public:
    explicit CDataModule(LPCOLESTR fileName)
        : m_module(LoadLibraryExW(fileName, nullptr, LOAD_LIBRARY_AS_DATAFILE))
    {
    }
    ~CDataModule()
    {
        if (m_module)
        {
            FreeLibrary(m_module);
        }
    }
    CDataModule(const CDataModule&) = delete;
    CDataModule& operator=(const CDataModule&) = delete;

    operator HMODULE() const { return m_module; }

private:
    HMODULE m_module;
};

std::wstring Decode(UINT codePage, std::string_view bytes)
{
    if (bytes.empty())
    {
        return {};
    }
    if (bytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
    {
        AtlThrow(E_OUTOFMEMORY);
    }
    const int size = static_cast<int>(bytes.size());
    const int length = MultiByteToWideChar(codePage, 0, bytes.data(), size, nullptr, 0);
    std::wstring text(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(codePage, 0, bytes.data(), size, text.data(), length);
    return text;
}

std::wstring DecodeScript(std::string_view bytes)
{
    if (bytes.starts_with("\xFF\xFE"))
    {
        bytes.remove_prefix(2);
        std::wstring text;
        text.reserve(bytes.size() / 2);
        for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        {
            const unsigned low = static_cast<unsigned char>(bytes[i]);
            const unsigned high = static_cast<unsigned char>(bytes[i + 1]);
            text.push_back(static_cast<wchar_t>(low | (high << 8)));
        }
        return text;
    }
    if (bytes.starts_with("\xEF\xBB\xBF"))
    {
        return Decode(CP_UTF8, bytes.substr(3));
    }
    return Decode(CP_ACP, bytes);
}

} // namespace

HRESULT STDMETHODCALLTYPE CRegObject::QueryInterface(REFIID riid, void** ppv)
{
    if (ppv == nullptr)
    {
        return E_POINTER;
    }
    *ppv = IsEqualIID(riid, IID_IUnknown) ? this : nullptr;
    return *ppv ? S_OK : E_NOINTERFACE;
}

ULONG STDMETHODCALLTYPE CRegObject::AddRef()
{
    return 1;
}

ULONG STDMETHODCALLTYPE CRegObject::Release()
{
    return 1;
}

HRESULT STDMETHODCALLTYPE CRegObject::AddReplacement(LPCOLESTR lpszKey, LPCOLESTR lpszItem)
{
    if (lpszKey == nullptr || lpszItem == nullptr)
    {
        return E_INVALIDARG;
    }
    try
    {
        m_replacements.Set(lpszKey, lpszItem);
        return S_OK;
    }
    catch (const std::bad_alloc&)
    {
        return E_OUTOFMEMORY;
    }
}

HRESULT STDMETHODCALLTYPE CRegObject::ClearReplacements()
{
    m_replacements.Clear();
    return S_OK;
}

HRESULT CRegObject::ResourceRegisterSz(LPCOLESTR resFileName, LPCOLESTR szID, LPCOLESTR szType) noexcept
{
    return RunResource(resFileName, szID, szType, true);
}

HRESULT CRegObject::ResourceUnregisterSz(LPCOLESTR resFileName, LPCOLESTR szID, LPCOLESTR szType) noexcept
{
    return RunResource(resFileName, szID, szType, false);
}

HRESULT CRegObject::RunResource(LPCOLESTR resFileName, LPCOLESTR szID, LPCOLESTR szType,
                                bool bRegister) noexcept
{
    try
    {
        const CDataModule module(resFileName);
        if (module == nullptr)
        {
            return AtlHresultFromLastError();
        }
        HRSRC resource = FindResourceW(module, szID, szType);
        if (resource == nullptr)
        {
            return AtlHresultFromLastError();
        }
        HGLOBAL loaded = LoadResource(module, resource);
        const void* bytes = loaded ? LockResource(loaded) : nullptr;
        if (bytes == nullptr)
        {
            return AtlHresultFromLastError();
        }
        return RunRegistrationScript(
            DecodeScript({static_cast<const char*>(bytes), SizeofResource(module, resource)}), m_replacements,
            bRegister);
    }
    catch (const CAtlException& e)
    {
        return e.m_hr;
    }
    catch (const std::bad_alloc&)
    {
        return E_OUTOFMEMORY;
    }
}

HRESULT RunRegistrationScript(std::wstring_view text, const CRegistrationReplacements& replacements,
                              bool bRegister) noexcept
{
    try
    {
        const CRegistrationScript script = ParseRegistrationScript(text, replacements);
        if (script.error)
        {
            return DISP_E_EXCEPTION;
        }
        bool perUser = false;
        AtlGetPerUserRegistration(&perUser);
        return bRegister ? WriteRegistration(script.steps, perUser)
                         : RemoveRegistration(script.steps, perUser);
    }
    catch (const std::bad_alloc&)
    {
        return E_OUTOFMEMORY;
    }
}

} // namespace ATL
