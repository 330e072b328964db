#include "addin/RegistrationExport.h"

#include "addin/RegistrationFixture.h"
#include "harness/Files.h"
#include "harness/ProcessRunner.h"
#include "harness/Report.h"
#include "harness/TempFolder.h"
#include "harness/Text.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <stdexcept>

namespace orva::test
{
namespace
{

// A registry tree and its name in the report. A tree inside another one comes before it.
struct CTree
{
    const wchar_t* key;
    const char* name;
};

constexpr CTree kTrees[] = {
    {kAddInKey, "entry"},
    {L"Software\\Microsoft\\Office", "Outlook's list"},
    {kVersionedProgIdKey, "name with version"},
    {kProgIdKey, "name"},
    {kClassKey, "class"},
    {kLibraryKey, "type library"},
    {kInterfaceKey, "interface"},
};

struct CHive
{
    HKEY root;
    const char* longName;
    const wchar_t* shortName;
    const char* whose;
};

const CHive kHives[] = {
    {HKEY_LOCAL_MACHINE, "HKEY_LOCAL_MACHINE", L"HKLM", "of the machine"},
    {HKEY_CURRENT_USER, "HKEY_CURRENT_USER", L"HKCU", "of the user"},
};

bool IsAtOrBelow(const std::string& key, const std::string& tree)
{
    return key.size() >= tree.size() && _strnicmp(key.c_str(), tree.c_str(), tree.size()) == 0 &&
           (key.size() == tree.size() || key[tree.size()] == '\\');
}

// The tree that a line belongs to, behind a letter that sorts it in the order of the trees.
std::string Owner(const std::string& line)
{
    const std::string key = line.substr(1, line.find(']') - 1);
    char order = 'a';
    for (const CHive& hive : kHives)
    {
        for (const CTree& tree : kTrees)
        {
            if (IsAtOrBelow(key, std::string(hive.longName) + "\\" + Utf8(tree.key)))
            {
                return std::string(1, order) + tree.name + " " + hive.whose;
            }
            ++order;
        }
    }
    return std::string(1, order) + "elsewhere";
}

std::string Plural(size_t count, const std::string& noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

void Describe(std::string& text, const std::string& sign, const std::vector<std::string>& lines)
{
    struct CCount
    {
        size_t keys = 0;
        size_t values = 0;
    };
    std::map<std::string, CCount> counts;
    for (const std::string& line : lines)
    {
        CCount& count = counts[Owner(line)];
        ++(line.ends_with(']') ? count.keys : count.values);
    }
    for (const auto& [owner, count] : counts)
    {
        text += (text.empty() ? "" : "; ") + sign + " " + owner.substr(1) + " (";
        if (count.keys != 0)
        {
            text += Plural(count.keys, "key") + (count.values != 0 ? ", " : "");
        }
        if (count.values != 0)
        {
            text += Plural(count.values, "value");
        }
        text += ")";
    }
}

std::wstring Utf16(const std::string& bytes)
{
    constexpr char kMark[] = "\xFF\xFE";
    if (!bytes.starts_with(kMark))
    {
        throw std::runtime_error("an export is not UTF-16");
    }
    std::wstring text(bytes.size() / sizeof(wchar_t) - 1, L'\0');
    std::memcpy(text.data(), bytes.data() + 2, text.size() * sizeof(wchar_t));
    return text;
}

} // namespace

CRegistrationExport CRegistrationExport::Take()
{
    CRegistrationExport all;
    for (const CHive& hive : kHives)
    {
        if (IsThorough())
        {
            all.Add(std::wstring(hive.shortName) + L"\\Software");
            continue;
        }
        for (const CTree& tree : kTrees)
        {
            // Outlook's list includes the entry.
            if (tree.key != kAddInKey && RegistryKeyExists(hive.root, tree.key))
            {
                all.Add(std::wstring(hive.shortName) + L"\\" + tree.key);
            }
        }
    }
    return all;
}

void CRegistrationExport::Add(const std::wstring& key)
{
    const CTempFolder folder;
    const std::wstring file = folder.File(L"export.reg");
    const CProcessResult result = RunProcess(L"reg.exe", {L"export", key, file, L"/y"});
    if (result.exitCode != 0)
    {
        throw std::runtime_error("reg.exe does not export " + Utf8(key) + ": " + result.output);
    }
    std::string at;
    std::string line;
    for (const std::string& part : SplitLines(Utf8(Utf16(ReadFileBytes(file).value_or("")))))
    {
        line += part;
        if (line.ends_with('\\') && !line.starts_with('['))
        {
            // The data continues in the next line, which is indented.
            line.pop_back();
            continue;
        }
        if (line.starts_with('['))
        {
            at = line.find("Wow6432Node") == std::string::npos ? line : "";
            line.clear();
        }
        if (!at.empty())
        {
            m_lines.insert(line.empty() ? at : at + " " + line);
        }
        line.clear();
    }
}

std::string CRegistrationExport::DifferenceFrom(const CRegistrationExport& before) const
{
    std::string text;
    Describe(text, "+", Missing(before.m_lines, m_lines));
    Describe(text, "-", Missing(m_lines, before.m_lines));
    return text.empty() ? "nothing" : text;
}

} // namespace orva::test
