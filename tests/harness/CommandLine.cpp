#include "harness/CommandLine.h"

#include <windows.h>

#include <cwchar>

namespace orva::test
{

namespace
{

struct CompareNames
{
    bool operator()(const std::wstring& left, const std::wstring& right) const
    {
        return _wcsicmp(left.c_str(), right.c_str()) < 0;
    }
};

std::wstring Quoted(const std::wstring& argument)
{
    if (!argument.empty() && argument.find_first_of(L" \t\n\v\"") == std::wstring::npos)
    {
        return argument;
    }
    std::wstring quoted = L"\"";
    size_t backslashes = 0;
    for (const wchar_t character : argument)
    {
        if (character == L'"')
        {
            // Backslashes before a quote are doubled, and the quote is escaped by one more.
            quoted.append(backslashes + 1, L'\\');
        }
        backslashes = character == L'\\' ? backslashes + 1 : 0;
        quoted += character;
    }
    quoted.append(backslashes, L'\\');
    return quoted + L"\"";
}

} // namespace

std::wstring JoinCommandLine(const std::wstring& program, const std::vector<std::wstring>& arguments)
{
    std::wstring line = Quoted(program);
    for (const std::wstring& argument : arguments)
    {
        line += L" " + Quoted(argument);
    }
    return line;
}

std::wstring EnvironmentBlock(const std::map<std::wstring, std::wstring>& changes)
{
    std::map<std::wstring, std::wstring, CompareNames> variables;
    wchar_t* const strings = GetEnvironmentStringsW();
    for (const wchar_t* entry = strings; *entry; entry += wcslen(entry) + 1)
    {
        const std::wstring text = entry;
        // From 1, because the name of a hidden variable begins with an equals sign: "=C:=...".
        const size_t equals = text.find(L'=', 1);
        variables[text.substr(0, equals)] = text.substr(equals + 1);
    }
    FreeEnvironmentStringsW(strings);
    for (const auto& [name, value] : changes)
    {
        if (value.empty())
        {
            variables.erase(name);
        }
        else
        {
            variables[name] = value;
        }
    }
    std::wstring block;
    for (const auto& [name, value] : variables)
    {
        block += name + L"=" + value + L'\0';
    }
    return block + L'\0';
}

} // namespace orva::test
