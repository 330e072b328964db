#include "addin/RegistrationFixture.h"

#include "harness/Files.h"
#include "harness/ProcessRunner.h"
#include "harness/Text.h"

#include <algorithm>
#include <regex>

namespace orva::test
{
namespace
{

constexpr const wchar_t* kKnownKeys[] = {
    L"Software\\Microsoft\\Office", kProgIdKey, kVersionedProgIdKey, kClassKey, kLibraryKey, kInterfaceKey,
};

void AddLines(CRegistryLines& lines, const std::string& hive, const std::string& exported)
{
    std::string key;
    for (const std::string& line : SplitLines(exported))
    {
        if (line.starts_with('['))
        {
            key = hive + "\\" + line.substr(1, line.size() - 2);
            lines.insert(key);
        }
        else
        {
            lines.insert(key + " : " + line);
        }
    }
}

// Whether the system itself wrote this line when it registered the type library.
bool IsLibraryLine(const std::string& line)
{
    static const std::regex library(
        R"(^HK..\\Software\\Classes\\(TypeLib\\\{ABF2CDBF-30F7-4827-9110-3BD6A8F1B786\})"
        R"(|Interface\\\{CE895442-9981-4315-AA85-4B9A5C7739D8\}))",
        std::regex::icase);
    return std::regex_search(line, library);
}

} // namespace

CRegistryLines ReadRegistry(Extent extent)
{
    CRegistryLines lines;
    for (const auto& [root, hive] :
         {std::pair(HKEY_LOCAL_MACHINE, "HKLM"), std::pair(HKEY_CURRENT_USER, "HKCU")})
    {
        if (extent == Extent::Everything)
        {
            AddLines(lines, hive, ExportRegistryKey(root, L"Software"));
            continue;
        }
        for (const wchar_t* const key : kKnownKeys)
        {
            if (RegistryKeyExists(root, key))
            {
                AddLines(lines, hive, ExportRegistryKey(root, key));
            }
        }
    }
    std::erase_if(lines,
                  [](const std::string& line) { return line.find("Wow6432Node") != std::string::npos; });
    return lines;
}

std::vector<std::string> Missing(const CRegistryLines& from, const CRegistryLines& in)
{
    std::vector<std::string> lines;
    std::set_difference(in.begin(), in.end(), from.begin(), from.end(), std::back_inserter(lines));
    return lines;
}

std::vector<std::string> AddInLines()
{
    const std::string office = "HKLM\\Software\\Microsoft\\Office";
    const std::string key = office + "\\Outlook\\Addins\\OrvaOscAddin.Connect";
    return {office,
            office + "\\Outlook",
            office + "\\Outlook\\Addins",
            key,
            key + " : Description = REG_SZ \"ORVA Connector\"",
            key + " : FriendlyName = REG_SZ \"ORVA Connector\"",
            key + " : LoadBehavior = REG_DWORD 0x00000003"};
}

std::vector<std::string> ClassLines(const std::string& hive)
{
    const std::string classes = hive + "\\Software\\Classes\\";
    const std::string id = "{9C7130EA-AEC4-4EA5-97B8-7D7172C9E051}";
    const std::string versioned = classes + "OrvaOscAddin.Connect.1";
    const std::string progId = classes + "OrvaOscAddin.Connect";
    const std::string key = classes + "CLSID\\" + id;
    return {versioned,
            versioned + " : @ = REG_SZ \"Connect Class\"",
            versioned + "\\CLSID",
            versioned + "\\CLSID : @ = REG_SZ \"" + id + "\"",
            progId,
            progId + " : @ = REG_SZ \"Connect Class\"",
            progId + "\\CurVer",
            progId + "\\CurVer : @ = REG_SZ \"OrvaOscAddin.Connect.1\"",
            key,
            key + " : @ = REG_SZ \"Connect Class\"",
            key + "\\ProgID",
            key + "\\ProgID : @ = REG_SZ \"OrvaOscAddin.Connect.1\"",
            key + "\\VersionIndependentProgID",
            key + "\\VersionIndependentProgID : @ = REG_SZ \"OrvaOscAddin.Connect\"",
            key + "\\Programmable",
            key + "\\InprocServer32",
            key + "\\InprocServer32 : @ = REG_SZ \"" + Utf8(BuiltFile(kAddInModule)) + "\"",
            key + "\\InprocServer32 : ThreadingModel = REG_SZ \"Apartment\"",
            key + "\\TypeLib",
            key + "\\TypeLib : @ = REG_SZ \"{ABF2CDBF-30F7-4827-9110-3BD6A8F1B786}\"",
            key + "\\Version",
            key + "\\Version : @ = REG_SZ \"1.0\""};
}

DWORD RegSvr32(std::vector<std::wstring> options)
{
    options.push_back(BuiltFile(kAddInModule));
    return RunProcess(L"regsvr32.exe", options).exitCode;
}

CRegistrationTest::CRegistrationTest()
{
    m_guard.Remove();
    Load(BuiltFile(kAddInModule));
}

void CRegistrationTest::Load(const std::wstring& path)
{
    m_module.reset();
    m_module = std::make_unique<CAddInModule>(path);
}

void CRegistrationTest::Mark(Extent extent)
{
    m_extent = extent;
    m_before = ReadRegistry(extent);
}

std::vector<std::string> CRegistrationTest::Added(bool withLibrary) const
{
    std::vector<std::string> lines = Missing(m_before, ReadRegistry(m_extent));
    if (!withLibrary)
    {
        std::erase_if(lines, IsLibraryLine);
    }
    return lines;
}

std::vector<std::string> CRegistrationTest::Removed() const
{
    return Missing(ReadRegistry(m_extent), m_before);
}

} // namespace orva::test
