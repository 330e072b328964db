// CString::Format: the placeholders of the Microsoft runtime's wide printf, filled in from checked arguments.
#include "afxstrplaceholder_.h"
#include "afxstrvalue_.h"

#include <cwchar>
#include <string_view>

namespace
{

bool IsOneOf(wchar_t type, std::wstring_view types)
{
    return types.find(type) != std::wstring_view::npos;
}

// Appends what takes the place of the placeholder between `percent` and `next`, for which an argument is
// used up. One that cannot be filled in stays as it is.
void Replace(const FormatPlaceholder& placeholder, const wchar_t* percent, const wchar_t* next,
             CFormatArguments& arguments, std::wstring& result)
{
    if (!IsOneOf(placeholder.type, L"diuoxXcCsSeEfFgGaAp"))
    {
        // No placeholder at all: only its percent sign goes, which is also how %% becomes one.
        result.append(percent + 1, next);
        return;
    }
    const CFormatArgument* const argument = arguments.Take();
    const auto isFor = [&](std::wstring_view types, CFormatArgument::Kind kind) {
        return IsOneOf(placeholder.type, types) && !placeholder.isBroken && argument != nullptr &&
               argument->GetKind() == kind;
    };
    if (isFor(L"diuoxX", CFormatArgument::Kind::kInteger))
    {
        result += FormatInteger(placeholder, *argument);
    }
    else if (isFor(L"cC", CFormatArgument::Kind::kInteger))
    {
        result += FormatCharacter(placeholder, *argument);
    }
    else if (isFor(L"sS", FormatStringKind(placeholder)))
    {
        result += FormatString(placeholder, *argument);
    }
    else
    {
        result.append(percent, next);
    }
}

} // namespace

void CString::FormatArguments(LPCWSTR format, std::initializer_list<CFormatArgument> arguments)
{
    CFormatArguments rest({arguments.begin(), arguments.size()});
    // Made aside first: the text itself may be the format or among the arguments.
    std::wstring result;
    const wchar_t* next = format != nullptr ? format : L"";
    while (const wchar_t* const percent = std::wcschr(next, L'%'))
    {
        result.append(next, percent);
        next = percent + 1;
        const FormatPlaceholder placeholder = ReadFormatPlaceholder(next, rest);
        Replace(placeholder, percent, next, rest, result);
    }
    result += next;
    m_text.Assign(result);
}
