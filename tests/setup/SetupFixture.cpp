#include "setup/SetupFixture.h"

#include "OrvaVersion.h"
#include "harness/Files.h"
#include "harness/Text.h"
#include "harness/Waiting.h"

#include <ostream>

namespace orva::test
{
namespace
{

// What a setup changes under HKEY_LOCAL_MACHINE.
constexpr const wchar_t* kChangedKeys[] = {kAddInKey,   kProgIdKey,    kVersionedProgIdKey,    kClassKey,
                                           kLibraryKey, kInterfaceKey, kInterfaceFor32BitsKey, kEntryKey,
                                           kSavedKey};
constexpr wchar_t kSessionManager[] = L"SYSTEM\\CurrentControlSet\\Control\\Session Manager";
constexpr wchar_t kPending[] = L"PendingFileRenameOperations";

CSetupVersion MakeVersion(int minor, const std::wstring& folder)
{
    const std::wstring version = std::to_wstring(ORVA_VERSION_MAJOR) + L"." + std::to_wstring(minor) + L"." +
                                 std::to_wstring(ORVA_VERSION_BUILD);
    return {version, BuiltFile(folder + L"OrvaSetup-" + version + L".exe"),
            BuiltFile(folder + L"OrvaOscAddin.dll")};
}

} // namespace

const CSetupVersion& OldVersion()
{
    static const CSetupVersion version = MakeVersion(ORVA_VERSION_MINOR, L"");
    return version;
}

const CSetupVersion& NewVersion()
{
    static const CSetupVersion version = MakeVersion(ORVA_VERSION_MINOR + 1, L"newer\\");
    return version;
}

const CSetupVersion& LatestVersion()
{
    static const CSetupVersion version = MakeVersion(ORVA_VERSION_MINOR + 2, L"latest\\");
    return version;
}

std::wstring InstallFolder()
{
    wchar_t folder[MAX_PATH] = L"";
    GetEnvironmentVariableW(L"ProgramFiles", folder, MAX_PATH);
    return std::wstring(folder) + L"\\ORVA Connector";
}

std::wstring InstalledModule()
{
    return InstallFolder() + L"\\OrvaOscAddin.dll";
}

std::wstring InstalledUninstaller()
{
    return InstallFolder() + L"\\Uninstall.exe";
}

std::vector<std::wstring> InstalledFiles(const std::vector<std::wstring>& others)
{
    std::vector<std::wstring> names = {L"OrvaOscAddin.dll", L"Third-party notices.txt", L"Uninstall.exe"};
    names.insert(names.end(), others.begin(), others.end());
    return names;
}

std::wstring RegisteredModule()
{
    return RegistryString(HKEY_LOCAL_MACHINE, std::wstring(kClassKey) + L"\\InprocServer32", L"")
        .value_or(L"");
}

CInstalledState TakeState()
{
    CInstalledState state;
    if (FolderExists(InstallFolder()))
    {
        state.files[L""] = "the folder";
        for (const std::wstring& name : ListFolder(InstallFolder()))
        {
            state.files[name] = ReadFileBytes(InstallFolder() + L"\\" + name).value_or("cannot be read");
        }
    }
    for (const wchar_t* const key : kChangedKeys)
    {
        state.registry += Utf8(key) + "\n" + ExportRegistryKey(HKEY_LOCAL_MACHINE, key);
    }
    return state;
}

void PrintTo(const CInstalledState& state, std::ostream* stream)
{
    for (const auto& [name, bytes] : state.files)
    {
        *stream << Utf8(name) << ": " << bytes.size() << " bytes\n";
    }
    *stream << state.registry;
}

CUninstallerCopy::CUninstallerCopy()
{
    WriteFileBytes(Path(), *ReadFileBytes(InstalledUninstaller()));
}

SetupFixture::SetupFixture()
    : m_entry(HKEY_LOCAL_MACHINE, kEntryKey), m_saved(HKEY_LOCAL_MACHINE, kSavedKey),
      m_pending(HKEY_LOCAL_MACHINE, kSessionManager, kPending)
{
    RemovePath(InstallFolder());
    m_registration.Remove();
    m_entry.Remove();
    m_saved.Remove();
    m_pending.Remove();
}

SetupFixture::~SetupFixture()
{
    RemovePath(InstallFolder());
}

DWORD SetupFixture::Run(const std::wstring& setup, const std::vector<std::wstring>& arguments)
{
    return RunProcess(setup, arguments).exitCode;
}

void SetupFixture::Install(const CSetupVersion& version)
{
    ASSERT_EQ(Run(version.setup), kSetupDone);
    ASSERT_NO_FATAL_FAILURE(ExpectInstalled(version));
}

void SetupFixture::RunUninstaller()
{
    ASSERT_EQ(Run(InstalledUninstaller()), kSetupDone);
    // What was started only starts a copy of itself in the temporary folder, which removes the uninstaller at
    // its end and holds the name until then.
    ASSERT_TRUE(WaitUntil([] { return !FileExists(InstalledUninstaller()); }));
    ASSERT_TRUE(WaitUntil([] {
        const UniqueHandle setup(OpenMutexW(SYNCHRONIZE, FALSE, kSetupMutex));
        return setup.get() == nullptr;
    }));
}

void SetupFixture::Uninstall()
{
    ASSERT_NO_FATAL_FAILURE(RunUninstaller());
    const CInstalledState nothing;
    EXPECT_EQ(TakeState().files, nothing.files);
    for (const wchar_t* const key : kChangedKeys)
    {
        EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, key)) << Utf8(key);
    }
}

DWORD SetupFixture::UninstallInPlace()
{
    return Run(InstalledUninstaller(), InPlace({L"/S"}));
}

std::vector<std::wstring> SetupFixture::InPlace(std::vector<std::wstring> arguments)
{
    // Without quotation marks, although there are blanks in it: so NSIS wants it.
    std::wstring rest = L"_?=" + InstallFolder();
    for (size_t blank = rest.find(L' '); blank != std::wstring::npos; blank = rest.find(L' '))
    {
        arguments.push_back(rest.substr(0, blank));
        rest.erase(0, blank + 1);
    }
    arguments.push_back(rest);
    return arguments;
}

void SetupFixture::ExpectOldStays(DWORD code, const std::function<void()>& endFault)
{
    EXPECT_EQ(Run(NewVersion().setup), code);
    endFault();
    ExpectInstalled(OldVersion());
}

UniqueHandle SetupFixture::LockFile(const std::wstring& path)
{
    UniqueHandle file(CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_NE(file.get(), INVALID_HANDLE_VALUE);
    return file;
}

void SetupFixture::ExpectInstalled(const CSetupVersion& version)
{
    EXPECT_EQ(ListFolder(InstallFolder()), InstalledFiles());
    // Not compared as texts, whose failure would print half a megabyte.
    EXPECT_TRUE(ReadFileBytes(InstalledModule()) == ReadFileBytes(version.module));
    EXPECT_EQ(RegistryString(HKEY_LOCAL_MACHINE, kEntryKey, L"DisplayVersion"), version.version);
    EXPECT_EQ(RegisteredModule(), InstalledModule());
    EXPECT_EQ(RegistryDword(HKEY_LOCAL_MACHINE, kAddInKey, L"LoadBehavior"), 3u);
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kSavedKey));
}

std::vector<std::wstring> SetupFixture::DeletedAtNextStart()
{
    const auto values = TakeRegistrySnapshot(HKEY_LOCAL_MACHINE, kSessionManager)->values;
    const auto found = values.find(kPending);
    std::vector<std::wstring> files;
    if (found == values.end())
    {
        return files;
    }
    // Pairs of texts: a file, and its new name or an empty text.
    const auto* text = reinterpret_cast<const wchar_t*>(found->second.bytes.data());
    const auto* const end = text + found->second.bytes.size() / sizeof(wchar_t);
    bool isFile = true;
    for (std::wstring part; text < end; ++text)
    {
        if (*text != L'\0')
        {
            part += *text;
            continue;
        }
        // NSIS has the uninstaller's copy in the temporary folder deleted so.
        const std::wstring file = part.starts_with(L"\\??\\") ? part.substr(4) : part;
        if (isFile && file.starts_with(InstallFolder()))
        {
            files.push_back(file);
        }
        isFile = !isFile;
        part.clear();
    }
    return files;
}

} // namespace orva::test
