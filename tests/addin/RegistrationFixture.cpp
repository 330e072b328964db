#include "addin/RegistrationFixture.h"

#include "harness/Files.h"
#include "harness/ProcessRunner.h"
#include "harness/Text.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace orva::test
{
namespace
{

const std::pair<HKEY, const wchar_t*> kHives[] = {{HKEY_LOCAL_MACHINE, L"HKEY_LOCAL_MACHINE"},
                                                  {HKEY_CURRENT_USER, L"HKEY_CURRENT_USER"}};

std::wstring ReadUtf16(const std::wstring& file)
{
    const std::string bytes = ReadFileBytes(file).value_or("");
    if (!bytes.starts_with("\xFF\xFE"))
    {
        throw std::runtime_error("an export is not UTF-16");
    }
    std::wstring text(bytes.size() / sizeof(wchar_t) - 1, L'\0');
    std::memcpy(text.data(), bytes.data() + 2, text.size() * sizeof(wchar_t));
    return text;
}

void AddExport(CRegistryLines& lines, const std::wstring& key)
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
    for (const std::string& part : SplitLines(Utf8(ReadUtf16(file))))
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
            // Wine writes this key's name otherwise.
            if (const size_t list = at.find("\\Classes\\Typelib\\"); list != std::string::npos)
            {
                at.replace(list, std::strlen("\\Classes\\Typelib"), "\\Classes\\TypeLib");
            }
            line.clear();
        }
        if (!at.empty())
        {
            lines.insert(line.empty() ? at : at + " " + line);
        }
        line.clear();
    }
}

// "[KEY]", and "[KEY] NAME=DATA" for each value.
void AddKey(std::vector<std::string>& lines, const std::string& key,
            std::initializer_list<std::string> values = {})
{
    lines.push_back("[" + key + "]");
    for (const std::string& value : values)
    {
        lines.push_back("[" + key + "] " + value);
    }
}

// The DLL's path as an export shows it.
std::string EscapedPath()
{
    std::string escaped;
    for (const char c : Utf8(BuiltFile(kAddInModule)))
    {
        escaped += c == '\\' ? "\\\\" : std::string(1, c);
    }
    return escaped;
}

} // namespace

CRegistryLines ExportRegistry()
{
    CRegistryLines lines;
    for (const auto& [root, hive] : kHives)
    {
        AddExport(lines, std::wstring(hive) + L"\\Software");
    }
    return lines;
}

std::vector<std::string> Missing(const CRegistryLines& from, const CRegistryLines& in)
{
    std::vector<std::string> lines;
    std::ranges::set_difference(in, from, std::back_inserter(lines));
    return lines;
}

std::vector<std::string> ListLines()
{
    std::vector<std::string> lines;
    AddKey(lines, "HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Office");
    AddKey(lines, "HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Office\\Outlook");
    AddKey(lines, "HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Office\\Outlook\\Addins");
    return lines;
}

std::vector<std::string> EntryLines()
{
    std::vector<std::string> lines = ListLines();
    AddKey(lines, "HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Office\\Outlook\\Addins\\OrvaOscAddin.Connect",
           {R"("Description"="ORVA Connector")", R"("FriendlyName"="ORVA Connector")",
            R"("LoadBehavior"=dword:00000003)"});
    return lines;
}

std::vector<std::string> ClassLines(const std::string& hive)
{
    const std::string classes = hive + "\\Software\\Classes\\";
    const std::string id = "{9C7130EA-AEC4-4EA5-97B8-7D7172C9E051}";
    const std::string key = classes + "CLSID\\" + id;
    std::vector<std::string> lines;
    AddKey(lines, classes + "OrvaOscAddin.Connect.1", {R"(@="Connect Class")"});
    AddKey(lines, classes + "OrvaOscAddin.Connect.1\\CLSID", {"@=\"" + id + "\""});
    AddKey(lines, classes + "OrvaOscAddin.Connect", {R"(@="Connect Class")"});
    AddKey(lines, classes + "OrvaOscAddin.Connect\\CurVer", {R"(@="OrvaOscAddin.Connect.1")"});
    AddKey(lines, key, {R"(@="Connect Class")"});
    AddKey(lines, key + "\\ProgID", {R"(@="OrvaOscAddin.Connect.1")"});
    AddKey(lines, key + "\\VersionIndependentProgID", {R"(@="OrvaOscAddin.Connect")"});
    AddKey(lines, key + "\\Programmable");
    AddKey(lines, key + "\\InprocServer32",
           {"@=\"" + EscapedPath() + "\"", R"("ThreadingModel"="Apartment")"});
    AddKey(lines, key + "\\TypeLib", {R"(@="{ABF2CDBF-30F7-4827-9110-3BD6A8F1B786}")"});
    AddKey(lines, key + "\\Version", {R"(@="1.0")"});
    return lines;
}

std::vector<std::string> LibraryLines(const std::string& hive)
{
    const std::string id = "{ABF2CDBF-30F7-4827-9110-3BD6A8F1B786}";
    const std::string library = hive + "\\Software\\Classes\\TypeLib\\" + id + "\\1.0";
    const std::string callback =
        hive + "\\Software\\Classes\\Interface\\{CE895442-9981-4315-AA85-4B9A5C7739D8}";
    std::vector<std::string> lines;
    AddKey(lines, library, {R"(@="OrvaOscAddin 1.0 Type Library")"});
    AddKey(lines, library + "\\0\\win64", {"@=\"" + EscapedPath() + "\""});
    AddKey(lines, callback, {R"(@="IRibbonCallback")"});
    AddKey(lines, callback + "\\TypeLib", {"@=\"" + id + "\"", R"("Version"="1.0")"});
    return lines;
}

bool IsOfLibrary(const std::string& line)
{
    return line.find("\\Classes\\TypeLib\\{ABF2CDBF-30F7-4827-9110-3BD6A8F1B786}") != std::string::npos ||
           line.find("\\Classes\\Interface\\{CE895442-9981-4315-AA85-4B9A5C7739D8}") != std::string::npos;
}

std::string RegisteredKeys()
{
    std::string text;
    for (const auto& [root, hive] : kHives)
    {
        for (const wchar_t* const key :
             {kOfficeKey, kProgIdKey, kVersionedProgIdKey, kClassKey, kLibraryKey, kInterfaceKey})
        {
            text += Utf8(hive) + "\\" + Utf8(key) + "\n" + ExportRegistryKey(root, key);
        }
    }
    return text;
}

std::vector<std::string> RegisteredParts()
{
    // A subkey, because a test may have made the key itself.
    const std::tuple<const char*, const wchar_t*, const wchar_t*> parts[] = {
        {"entry", kAddInKey, L""},
        {"name", kProgIdKey, L"\\CurVer"},
        {"name with version", kVersionedProgIdKey, L"\\CLSID"},
        {"class", kClassKey, L"\\InprocServer32"},
        {"type library", kLibraryKey, L"\\1.0\\0"},
    };
    std::vector<std::string> found;
    for (const HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER})
    {
        for (const auto& [name, key, subkey] : parts)
        {
            if (RegistryKeyExists(root, std::wstring(key) + subkey))
            {
                found.push_back(std::string(name) + (root == HKEY_CURRENT_USER ? " of the user" : ""));
            }
        }
    }
    return found;
}

DWORD RegSvr32(std::vector<std::wstring> options)
{
    options.insert(options.begin(), L"/s");
    options.push_back(BuiltFile(kAddInModule));
    return RunProcess(L"regsvr32.exe", options).exitCode;
}

CRegistrationTest::CRegistrationTest()
{
    m_guard.Remove();
    Load();
}

void CRegistrationTest::Load(const std::wstring& path)
{
    m_module.reset();
    m_module = std::make_unique<CAddInModule>(path);
}

void CRegistrationTest::Load()
{
    Load(BuiltFile(kAddInModule));
}

} // namespace orva::test
