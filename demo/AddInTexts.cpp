#include "demo/AddInTexts.h"

#include "OrvaVersion.h"
#include "harness/Files.h"
#include "res/resource.h"

#include <map>
#include <stdexcept>

namespace orva::demo
{

namespace
{

// Texts are kept in blocks of 16.
constexpr UINT kBlockSize = 16;
constexpr int kBits = 64;

void FillIn(std::wstring& text, const std::wstring& value)
{
    const size_t place = text.find_first_of(L"sd", text.find(L'%'));
    if (place != std::wstring::npos)
    {
        text.replace(place - 1, 2, value);
    }
}

} // namespace

DWORD LanguageId(const std::string& language)
{
    static const std::map<std::string, DWORD> ids = {{"en", 1033}, {"de", 1031}, {"es", 3082}, {"tr", 1055}};
    return ids.at(language);
}

CAddInTexts::CAddInTexts(const std::string& language)
    : m_module(
          LoadLibraryExW(test::BuiltFile(L"OrvaOscAddin.dll").c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE)),
      m_language(LOWORD(LanguageId(language)))
{
    if (m_module == nullptr)
    {
        throw std::runtime_error("OrvaOscAddin.dll cannot be read");
    }
}

CAddInTexts::~CAddInTexts()
{
    FreeLibrary(m_module);
}

std::wstring CAddInTexts::Get(UINT id) const
{
    const HRSRC found =
        FindResourceExW(m_module, RT_STRING, MAKEINTRESOURCEW(id / kBlockSize + 1), m_language);
    const HGLOBAL loaded = found != nullptr ? LoadResource(m_module, found) : nullptr;
    if (loaded == nullptr)
    {
        throw std::runtime_error("the add-in has no text " + std::to_string(id));
    }
    // Counted strings, one behind the other.
    const auto* text = static_cast<const wchar_t*>(LockResource(loaded));
    for (UINT i = 0; i < id % kBlockSize; ++i)
    {
        text += 1 + *text;
    }
    return std::wstring(text + 1, *text);
}

std::wstring CAddInTexts::With(UINT id, const std::wstring& value) const
{
    std::wstring text = Get(id);
    FillIn(text, value);
    return text;
}

std::wstring CAddInTexts::InstalledVersion() const
{
    std::wstring text = Get(IDS_VERSION_LINE1);
    for (const int number : {ORVA_VERSION_MAJOR, ORVA_VERSION_MINOR, ORVA_VERSION_BUILD, kBits})
    {
        FillIn(text, std::to_wstring(number));
    }
    return text;
}

} // namespace orva::demo
