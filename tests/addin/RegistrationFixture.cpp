#include "addin/RegistrationFixture.h"

#include "harness/Files.h"
#include "harness/ProcessRunner.h"
#include "harness/Text.h"
#include "harness/Watchdog.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace orva::test
{
namespace
{

const std::pair<HKEY, const wchar_t*> kHives[] = {{HKEY_LOCAL_MACHINE, L"HKEY_LOCAL_MACHINE"},
                                                  {HKEY_CURRENT_USER, L"HKEY_CURRENT_USER"}};

// In milliseconds. A hive is large, and the machine may be busy.
constexpr DWORD kExportPatience = 120'000;

void Replace(std::string& text, const std::string& part, const std::string& by)
{
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + by.size()))
    {
        text.replace(at, part.size(), by);
    }
}

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

// The lines of an export's text.
void AddLines(CRegistryLines& lines, const std::string& text)
{
    std::string at;
    std::string line;
    for (const std::string& part : SplitLines(text))
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
            Replace(at, "\\Classes\\Typelib\\", "\\Classes\\TypeLib\\");
            line.clear();
        }
        if (!at.empty())
        {
            lines.insert(line.empty() ? at : at + " " + line);
        }
        line.clear();
    }
}

void AddExport(CRegistryLines& lines, const std::wstring& key)
{
    const CTempFolder folder;
    const std::wstring file = folder.File(L"export.reg");
    const CProcessResult result = RunProcess(L"reg.exe", {L"export", key, file, L"/y"}, kExportPatience);
    if (result.exitCode != 0)
    {
        throw std::runtime_error("reg.exe does not export " + Utf8(key) + ": " + result.output);
    }
    AddLines(lines, Utf8(ReadUtf16(file)));
}

// Exports as they should be. HIVE and MODULE stand for a hive and the DLL's path.
constexpr char kList[] = R"(
[HKEY_LOCAL_MACHINE\Software\Microsoft\Office]
[HKEY_LOCAL_MACHINE\Software\Microsoft\Office\Outlook]
[HKEY_LOCAL_MACHINE\Software\Microsoft\Office\Outlook\Addins]
)";

constexpr char kEntry[] = R"(
[HKEY_LOCAL_MACHINE\Software\Microsoft\Office\Outlook\Addins\OrvaOscAddin.Connect]
"Description"="ORVA Connector"
"FriendlyName"="ORVA Connector"
"LoadBehavior"=dword:00000003
)";

constexpr char kClass[] = R"(
[HIVE\Software\Classes\OrvaOscAddin.Connect.1]
@="Connect Class"
[HIVE\Software\Classes\OrvaOscAddin.Connect.1\CLSID]
@="{9C7130EA-AEC4-4EA5-97B8-7D7172C9E051}"
[HIVE\Software\Classes\OrvaOscAddin.Connect]
@="Connect Class"
[HIVE\Software\Classes\OrvaOscAddin.Connect\CurVer]
@="OrvaOscAddin.Connect.1"
[HIVE\Software\Classes\CLSID\{9C7130EA-AEC4-4EA5-97B8-7D7172C9E051}]
@="Connect Class"
[HIVE\Software\Classes\CLSID\{9C7130EA-AEC4-4EA5-97B8-7D7172C9E051}\ProgID]
@="OrvaOscAddin.Connect.1"
[HIVE\Software\Classes\CLSID\{9C7130EA-AEC4-4EA5-97B8-7D7172C9E051}\VersionIndependentProgID]
@="OrvaOscAddin.Connect"
[HIVE\Software\Classes\CLSID\{9C7130EA-AEC4-4EA5-97B8-7D7172C9E051}\Programmable]
[HIVE\Software\Classes\CLSID\{9C7130EA-AEC4-4EA5-97B8-7D7172C9E051}\InprocServer32]
@="MODULE"
"ThreadingModel"="Apartment"
[HIVE\Software\Classes\CLSID\{9C7130EA-AEC4-4EA5-97B8-7D7172C9E051}\TypeLib]
@="{ABF2CDBF-30F7-4827-9110-3BD6A8F1B786}"
[HIVE\Software\Classes\CLSID\{9C7130EA-AEC4-4EA5-97B8-7D7172C9E051}\Version]
@="1.0"
)";

constexpr char kLibrary[] = R"(
[HIVE\Software\Classes\TypeLib\{ABF2CDBF-30F7-4827-9110-3BD6A8F1B786}\1.0]
@="OrvaOscAddin 1.0 Type Library"
[HIVE\Software\Classes\TypeLib\{ABF2CDBF-30F7-4827-9110-3BD6A8F1B786}\1.0\0\win64]
@="MODULE"
[HIVE\Software\Classes\Interface\{CE895442-9981-4315-AA85-4B9A5C7739D8}]
@="IRibbonCallback"
[HIVE\Software\Classes\Interface\{CE895442-9981-4315-AA85-4B9A5C7739D8}\TypeLib]
@="{ABF2CDBF-30F7-4827-9110-3BD6A8F1B786}"
"Version"="1.0"
)";

std::vector<std::string> LinesOf(std::string text, const std::string& hive = "")
{
    // An export doubles the backslashes of a value.
    std::string module = Utf8(BuiltFile(kAddInModule));
    Replace(module, "\\", "\\\\");
    Replace(text, "HIVE", hive);
    Replace(text, "MODULE", module);
    CRegistryLines lines;
    AddLines(lines, text);
    return {lines.begin(), lines.end()};
}

} // namespace

CRegistryLines ExportRegistry()
{
    SetTestDeadline(2 * kExportPatience);
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
    return LinesOf(kList);
}

std::vector<std::string> EntryLines()
{
    return Joined(ListLines(), LinesOf(kEntry));
}

std::vector<std::string> ClassLines(const std::string& hive)
{
    return LinesOf(kClass, hive);
}

std::vector<std::string> LibraryLines(const std::string& hive)
{
    return LinesOf(kLibrary, hive);
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
