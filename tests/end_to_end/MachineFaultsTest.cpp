// A machine on which something is missing or broken: registry keys, libraries, the log. Outlook goes on in
// every case.
#include "end_to_end/FaultFixture.h"
#include "end_to_end/Texts.h"
#include "harness/Files.h"

namespace orva::test
{

namespace
{

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::ValuesIn;

constexpr char kTable[] = "machine-faults";
// Wine's settings of which libraries the stand-in loads; an empty text means none.
constexpr wchar_t kLibrariesKey[] = L"Software\\Wine\\AppDefaults\\OutlookHost.exe\\DllOverrides";
constexpr const wchar_t* kTypeLibraryKeys[] = {
    // The add-in's own, Office's, and that of the add-in interfaces.
    kLibraryKey,
    L"Software\\Classes\\TypeLib\\{2DF8D04C-5BFA-101B-BDE5-00AA0044DE52}",
    L"Software\\Classes\\TypeLib\\{AC0714F2-3D04-11D1-AE7D-00A0C90F26F4}",
};

// Removes a key in both hives for its lifetime.
class CMissingKey
{
public:
    explicit CMissingKey(const std::wstring& key)
        : m_machine(HKEY_LOCAL_MACHINE, key), m_user(HKEY_CURRENT_USER, key)
    {
        m_machine.Remove();
        m_user.Remove();
    }

private:
    CRegistryTreeGuard m_machine;
    CRegistryTreeGuard m_user;
};

// Makes a system library impossible to load in the stand-in Outlook.
class CMissingLibrary
{
public:
    explicit CMissingLibrary(const std::wstring& name)
        : m_name(HKEY_CURRENT_USER, kLibrariesKey, name),
          m_path(HKEY_CURRENT_USER, kLibrariesKey, L"*" + name)
    {
        m_name.SetString(L"");
        m_path.SetString(L"");
    }

    static bool IsPossible() { return RegistryKeyExists(HKEY_CURRENT_USER, L"Software\\Wine"); }

private:
    CRegistryValue m_name;
    CRegistryValue m_path;
};

// Faults during a check: the server publishes an offer, and the user chooses "Later".
class MachineFaultsTest : public FaultFixture, public testing::WithParamInterface<CheckMode>
{
protected:
    void Run(int number, const std::string& fault)
    {
        RunFault(kTable, FaultLabel(number, fault), GetParam());
    }

    void RunOffer(int number, const std::string& fault)
    {
        Publish(NewerBuild(kInstallerUrl));
        m_user.OnDialog(kOfferCaption, [](HWND dialog) { EXPECT_TRUE(ClickButton(dialog, kLaterButton)); });
        Run(number, fault);
        EXPECT_THAT(Observed().shown, ElementsAre(kOfferCaption));
        EXPECT_THAT(Observed().left, IsEmpty());
    }
};

// Faults that last as long as Outlook runs.
class MachineStartFaultsTest : public FaultFixture
{
protected:
    void RunWithoutAddIn(int number, const std::string& fault)
    {
        Publish(NewerBuild(kInstallerUrl));
        RunFaultyStart(kTable, FaultLabel(number, fault), false);
        EXPECT_THAT(Observed().shown, IsEmpty());
        EXPECT_THAT(Observed().log, IsEmpty());
        EXPECT_THAT(Observed().left, IsEmpty());
    }

    // The start-up check makes its offer in spite of the fault.
    void ExpectOfferAtStart(int number, const std::string& fault)
    {
        Publish(NewerBuild(kInstallerUrl));
        m_user.OnDialog(kOfferCaption, [](HWND dialog) { EXPECT_TRUE(ClickButton(dialog, kLaterButton)); });
        RunFaultyStart(kTable, FaultLabel(number, fault), true);
        EXPECT_THAT(Observed().shown, ElementsAre(kOfferCaption));
    }

    // Ends the fault before the second check by destroying the object that causes it.
    template <typename Fault> void EndFaultWith(std::optional<Fault>& fault)
    {
        m_removeFault = [this, &fault] {
            fault.reset();
            Publish(g_latestInfo);
        };
    }
};

INSTANTIATE_TEST_SUITE_P(Modes, MachineFaultsTest, ValuesIn(ModesOfThisRun()), NameOfMode);

} // namespace

TEST_P(MachineFaultsTest, LogSwitchMissing)
{
    CRegistryValue missing(HKEY_CURRENT_USER, kLogSwitchKey, kLogSwitchValue);
    missing.Remove();
    RunOffer(1, "LogSwitchMissing");
    EXPECT_THAT(Observed().log, IsEmpty());
    EXPECT_FALSE(FolderExists(LogFolder()));
}

TEST_P(MachineFaultsTest, LogFolderIsAFile)
{
    DeleteLog();
    WriteFileBytes(LogFolder(), "kept");
    RunOffer(2, "LogFolderIsAFile");
    EXPECT_EQ(ReadFileBytes(LogFolder()), "kept");
}

TEST_P(MachineFaultsTest, LogFileIsAFolder)
{
    CreateDirectoryW(LogFolder().c_str(), nullptr);
    ASSERT_TRUE(CreateDirectoryW(LogPath().c_str(), nullptr));
    RunOffer(3, "LogFileIsAFolder");
    EXPECT_TRUE(FolderExists(LogPath()));
}

TEST_P(MachineFaultsTest, LogFileHeldByAnotherProgram)
{
    CreateDirectoryW(LogFolder().c_str(), nullptr);
    const UniqueHandle held(CreateFileW(LogPath().c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_NE(held.get(), INVALID_HANDLE_VALUE);
    RunOffer(4, "LogFileHeldByAnotherProgram");
}

TEST_P(MachineFaultsTest, LogFileReadOnly)
{
    CreateDirectoryW(LogFolder().c_str(), nullptr);
    WriteFileBytes(LogPath(), "");
    ASSERT_TRUE(SetFileAttributesW(LogPath().c_str(), FILE_ATTRIBUTE_READONLY));
    RunOffer(5, "LogFileReadOnly");
}

TEST_P(MachineFaultsTest, RichEditLibraryMissing)
{
    if (!CMissingLibrary::IsPossible())
    {
        GTEST_SKIP() << "takes the library away by Wine's settings";
    }
    // Without the control there is no dialog and so no offer. Nothing else fails.
    const CMissingLibrary missing(L"riched20");
    Publish(NewerBuild(kInstallerUrl));
    Run(14, "RichEditLibraryMissing");
    EXPECT_THAT(Observed().shown, IsEmpty());
    EXPECT_THAT(Observed().log, Contains("DetermineUpdateDescription"));
}

TEST_F(MachineStartFaultsTest, TypeLibrariesNotRegistered)
{
    // Office registers its own again when it starts. The start-up check needs none.
    std::vector<std::unique_ptr<CMissingKey>> missing;
    for (const wchar_t* const key : kTypeLibraryKeys)
    {
        missing.push_back(std::make_unique<CMissingKey>(key));
    }
    m_removeFault = [&] {
        missing.clear();
        Publish(g_latestInfo);
    };
    ExpectOfferAtStart(11, "TypeLibrariesNotRegistered");
}

TEST_F(MachineStartFaultsTest, OwnTypeLibraryOfAMissingFile)
{
    std::optional<CMissingKey> missing(kTypeLibraryKeys[0]);
    std::optional<CRegistryValue> path(std::in_place, HKEY_LOCAL_MACHINE,
                                       std::wstring(kTypeLibraryKeys[0]) + L"\\1.0\\0\\win64", L"");
    path->SetString(L"C:\\no\\such.dll");
    m_removeFault = [&] {
        path.reset();
        missing.reset();
        Publish(g_latestInfo);
    };
    ExpectOfferAtStart(12, "OwnTypeLibraryOfAFileThatIsMissing");
}

TEST_F(MachineStartFaultsTest, WithoutItsTypeLibraryTheButtonDoesNothing)
{
    // Office asks for the dispatch id of the button's callback, which only the library has.
    std::optional<CMissingKey> missing(kTypeLibraryKeys[0]);
    EndFaultWith(missing);
    Publish(NewerBuild(kInstallerUrl));
    m_triggerFault = [this] {
        ClickUpdate();
        EXPECT_TRUE(WaitForTrace("GetIDsOfNames(ButtonClicked) = 0x8"));
    };
    RunFaultyStart(kTable, FaultLabel(13, "OwnTypeLibraryNotRegistered"), true);
    EXPECT_THAT(Observed().shown, IsEmpty());
}

TEST_F(MachineStartFaultsTest, LanguageSettingsMissing)
{
    // Without a language all texts are empty, including the message about an unreadable file.
    std::optional<CMissingKey> missing(OfficeLanguageKey(14));
    EndFaultWith(missing);
    Publish("<html>");
    AnswerWhateverComes();
    RunFaultyStart(kTable, FaultLabel(21, "OfficeLanguageMissing"), true);
    EXPECT_THAT(Observed().shown, ElementsAre(L""));
}

TEST_F(MachineStartFaultsTest, LanguageThatIsAText)
{
    std::optional<CRegistryValue> value;
    value.emplace(HKEY_CURRENT_USER, OfficeLanguageKey(14), kOfficeLanguageValue);
    value->SetString(L"en");
    EndFaultWith(value);
    Publish("<html>");
    AnswerWhateverComes();
    RunFaultyStart(kTable, FaultLabel(22, "OfficeLanguageThatIsAText"), true);
    EXPECT_EQ(Observed().shown.size(), 1u);
}

TEST_F(MachineStartFaultsTest, ClassNotRegistered)
{
    std::optional<CMissingKey> missing(kClassKey);
    EndFaultWith(missing);
    RunWithoutAddIn(31, "ClassNotRegistered");
}

TEST_F(MachineStartFaultsTest, ClassNameOfItsVersionMissing)
{
    std::optional<CMissingKey> missing(L"Software\\Classes\\OrvaOscAddin.Connect.1");
    EndFaultWith(missing);
    RunWithoutAddIn(32, "ClassNameOfItsVersionMissing");
}

TEST_F(MachineStartFaultsTest, AddInKeyMissing)
{
    std::optional<CMissingKey> missing(L"Software\\Microsoft\\Office\\Outlook\\Addins\\OrvaOscAddin.Connect");
    EndFaultWith(missing);
    RunWithoutAddIn(33, "OutlooksKeyOfTheAddInMissing");
}

TEST_F(MachineStartFaultsTest, ModuleMissing)
{
    std::optional<CRegistryTreeGuard> kept(std::in_place, HKEY_LOCAL_MACHINE, kClassKey);
    std::optional<CRegistryValue> path(std::in_place, HKEY_LOCAL_MACHINE,
                                       std::wstring(kClassKey) + L"\\InprocServer32", L"");
    path->SetString(L"C:\\no\\such.dll");
    EndFaultWith(path);
    RunWithoutAddIn(34, "AddInsFileMissing");
}

TEST_F(MachineStartFaultsTest, PictureLibraryMissing)
{
    if (!CMissingLibrary::IsPossible())
    {
        GTEST_SKIP() << "takes the library away by Wine's settings";
    }
    // Without it the DLL cannot be loaded, as without any other imported library.
    std::optional<CMissingLibrary> missing(L"gdiplus");
    EndFaultWith(missing);
    RunWithoutAddIn(35, "GdiPlusMissing");
}

TEST_F(MachineStartFaultsTest, InternetLibraryMissing)
{
    if (!CMissingLibrary::IsPossible())
    {
        GTEST_SKIP() << "takes the library away by Wine's settings";
    }
    std::optional<CMissingLibrary> missing(L"wininet");
    EndFaultWith(missing);
    RunWithoutAddIn(36, "WinInetMissing");
}

} // namespace orva::test
