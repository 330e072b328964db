// Fuzzes the reading of registration scripts, and walks what was read as the registry's writer does.
#include "Fuzz.h"
#include "platform/atl/RegistrationScript.h"

#include <algorithm>

namespace
{

using ATL::CRegistrationReplacements;
using ATL::CRegistrationScript;
using ATL::CRegistrationStep;
using ATL::kMaxRegistrationDepth;
using ATL::ParseRegistrationScript;
using ATL::RegistrationHive;
using Kind = CRegistrationStep::Kind;

CRegistrationReplacements Replacements()
{
    CRegistrationReplacements replacements;
    replacements.Set(L"MODULE", L"C:\\O'Neill {x}\\100%\\a.dll");
    replacements.Set(L"APPID", L"{AEC5}");
    replacements.Set(L"BRACE", L"}");
    replacements.Set(L"EMPTY", L"");
    replacements.Set(L"ZERO", std::wstring_view(L"\0", 1));
    return replacements;
}

void CheckName(const std::wstring& name)
{
    ORVA_PROPERTY(!name.empty());
    ORVA_PROPERTY(name.find(L'\\') == std::wstring::npos);
    ORVA_PROPERTY(name.find(L'\0') == std::wstring::npos);
}

// Goes through the steps with a stack of open keys. Every step finds the key that it needs, and at the end
// all are left.
void Walk(const std::vector<CRegistrationStep>& steps)
{
    std::vector<const CRegistrationStep*> open;
    for (const CRegistrationStep& step : steps)
    {
        ORVA_PROPERTY(step.kind == Kind::EnterKey || !step.forceRemove);
        ORVA_PROPERTY(open.empty() == (step.kind == Kind::EnterHive));
        switch (step.kind)
        {
        case Kind::EnterHive:
            open.push_back(&step);
            break;
        case Kind::EnterKey:
            CheckName(step.name);
            open.push_back(&step);
            // The hive, the keys with blocks, and a last one without.
            ORVA_PROPERTY(open.size() <= kMaxRegistrationDepth + 2);
            break;
        case Kind::Leave:
            open.pop_back();
            break;
        case Kind::SetValue:
            if (const auto* parts = std::get_if<std::vector<std::wstring>>(&step.data))
            {
                for (const std::wstring& part : *parts)
                {
                    ORVA_PROPERTY(!part.empty() && part.find(L"\\0") == std::wstring::npos);
                }
            }
            break;
        case Kind::DeleteKey:
            CheckName(step.name);
            break;
        }
    }
    ORVA_PROPERTY(open.empty());
}

std::wstring Quote(const std::wstring& text)
{
    std::wstring quoted = L"'";
    for (const wchar_t unit : text)
    {
        if (unit == L'\'')
        {
            quoted += L"''";
        }
        else if (unit == L'%')
        {
            quoted += L"%%";
        }
        else if (unit == L'\0')
        {
            quoted += L"%ZERO%";
        }
        else
        {
            quoted += unit;
        }
    }
    return quoted + L"'";
}

const wchar_t* HiveName(RegistrationHive hive)
{
    switch (hive)
    {
    case RegistrationHive::ClassesRoot:
        return L"HKCR";
    case RegistrationHive::CurrentUser:
        return L"HKCU";
    case RegistrationHive::LocalMachine:
        return L"HKLM";
    case RegistrationHive::Users:
        return L"HKU";
    case RegistrationHive::PerformanceData:
        return L"HKPD";
    case RegistrationHive::DynData:
        return L"HKDD";
    case RegistrationHive::CurrentConfig:
        break;
    }
    return L"HKCC";
}

std::wstring PrintData(const ATL::RegistrationData& data)
{
    if (const auto* text = std::get_if<std::wstring>(&data))
    {
        return L"s " + Quote(*text);
    }
    if (const auto* number = std::get_if<std::uint32_t>(&data))
    {
        return L"d " + std::to_wstring(*number);
    }
    if (const auto* bytes = std::get_if<std::vector<std::uint8_t>>(&data))
    {
        constexpr wchar_t kDigits[] = L"0123456789abcdef";
        std::wstring digits;
        for (const std::uint8_t byte : *bytes)
        {
            digits += kDigits[byte >> 4];
            digits += kDigits[byte & 15];
        }
        return L"b " + Quote(digits);
    }
    std::wstring joined;
    for (const std::wstring& part : std::get<std::vector<std::wstring>>(data))
    {
        joined += part + L"\\0";
    }
    return L"m " + Quote(joined);
}

// A script of the same steps. A key's block is opened by the first step inside it: the innermost level may
// have none.
std::wstring Print(const std::vector<CRegistrationStep>& steps)
{
    std::wstring text;
    std::vector<bool> hasBlock;
    for (const CRegistrationStep& step : steps)
    {
        if (step.kind != Kind::Leave && !hasBlock.empty() && !hasBlock.back())
        {
            text += L"{ ";
            hasBlock.back() = true;
        }
        text += step.forceRemove ? L"ForceRemove " : L"";
        text += step.noRemove ? L"NoRemove " : L"";
        switch (step.kind)
        {
        case Kind::EnterHive:
            text += HiveName(step.hive) + std::wstring(L" { ");
            hasBlock.push_back(true);
            break;
        case Kind::EnterKey:
            text += Quote(step.name) + L" ";
            hasBlock.push_back(false);
            break;
        case Kind::Leave:
            text += hasBlock.back() ? L"}\r\n" : L"";
            hasBlock.pop_back();
            break;
        case Kind::SetValue:
            text += L"val " + Quote(step.name) + L" = " + PrintData(step.data) + L"\r\n";
            break;
        case Kind::DeleteKey:
            text += L"Delete " + Quote(step.name) + L"\r\n";
            break;
        }
    }
    return text;
}

bool IsSame(const CRegistrationStep& left, const CRegistrationStep& right)
{
    return left.kind == right.kind && left.hive == right.hive && left.name == right.name &&
           left.forceRemove == right.forceRemove && left.noRemove == right.noRemove &&
           left.data == right.data;
}

// A default value set after the name of a key on the innermost level has no form of its own in a block.
bool IsPrintable(const std::vector<CRegistrationStep>& steps)
{
    std::size_t depth = 0;
    for (const CRegistrationStep& step : steps)
    {
        if (step.kind == Kind::EnterHive || step.kind == Kind::EnterKey)
        {
            ++depth;
        }
        else if (step.kind == Kind::Leave)
        {
            --depth;
        }
        else if (depth > kMaxRegistrationDepth + 1)
        {
            return false;
        }
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const CRegistrationReplacements replacements = Replacements();
    const std::wstring text = orva::fuzz::Units(orva::fuzz::Bytes(data, size));
    const CRegistrationScript script = ParseRegistrationScript(text, replacements);
    if (script.error != nullptr)
    {
        ORVA_PROPERTY(*script.error != '\0');
        ORVA_PROPERTY(script.errorOffset <= text.size());
        ORVA_PROPERTY(script.steps.empty());
        return 0;
    }
    Walk(script.steps);
    if (IsPrintable(script.steps))
    {
        const CRegistrationScript again = ParseRegistrationScript(Print(script.steps), replacements);
        ORVA_PROPERTY(again.error == nullptr);
        ORVA_PROPERTY(std::ranges::equal(script.steps, again.steps, IsSame));
    }
    return 0;
}
