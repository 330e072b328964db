// A machine on which something is missing or broken: registry keys, libraries, the log. Outlook goes on in
// every case.
#include "end_to_end/FaultFixture.h"
#include "end_to_end/Texts.h"

#include <ostream>
#include <span>

namespace orva::test
{

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Values;
using testing::ValuesIn;

// Wine's settings of which libraries the stand-in loads; an empty text means none.
constexpr wchar_t kLibrariesKey[] = L"Software\\Wine\\AppDefaults\\OutlookHost.exe\\DllOverrides";
constexpr const wchar_t* kTypeLibraryKeys[] = {
    // The add-in's own, Office's, and that of the add-in interfaces.
    kLibraryKey,
    L"Software\\Classes\\TypeLib\\{2DF8D04C-5BFA-101B-BDE5-00AA0044DE52}",
    L"Software\\Classes\\TypeLib\\{AC0714F2-3D04-11D1-AE7D-00A0C90F26F4}",
};

// Keys that are missing in both hives during its lifetime.
class CMissingKeys
{
public:
    explicit CMissingKeys(std::span<const wchar_t* const> keys) : m_guard(keys) { m_guard.Remove(); }

private:
    CBothHivesGuard m_guard;
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

// Faults during a check.
class MachineFaultsTest : public FaultFixture, public testing::WithParamInterface<CheckMode>
{
};

// Faults that last as long as Outlook runs.
class MachineStartFaultsTest : public FaultFixture
{
protected:
    // The start-up check makes its offer in spite of the fault.
    void ExpectOfferAtStart()
    {
        Publish(NewerBuild(kInstallerUrl));
        ExpectOffer();
        RunFaultyStart();
        EXPECT_THAT(Observed().shown, ElementsAre(kOfferCaption));
    }

    // Without a language all texts are empty, among them the message about an unreadable file.
    void ExpectEmptyTextAtStart()
    {
        Publish("<html>");
        m_user.AnswerBox(L"");
        RunFaultyStart();
        EXPECT_THAT(Observed().shown, ElementsAre(L""));
    }

    void ExpectNoAddIn()
    {
        Publish(NewerBuild(kInstallerUrl));
        RunFaultyStart(false);
        EXPECT_THAT(Observed().shown, IsEmpty());
        EXPECT_THAT(Observed().log, IsEmpty());
        EXPECT_THAT(Observed().left, IsEmpty());
    }

    // Ends the fault before the second check by destroying the object that causes it.
    template <typename Fault> void EndFaultWith(std::optional<Fault>& fault)
    {
        m_removeFault = [&fault] { fault.reset(); };
    }
};

// A key or a library without which Outlook cannot load the add-in.
struct CNeeded
{
    const char* name;
    const wchar_t* value;
};

void PrintTo(const CNeeded& needed, std::ostream* out)
{
    *out << needed.name;
}

std::string NameOf(const testing::TestParamInfo<CNeeded>& info)
{
    return info.param.name;
}

class MissingKeyTest : public MachineStartFaultsTest, public testing::WithParamInterface<CNeeded>
{
};

class MissingLibraryTest : public MachineStartFaultsTest, public testing::WithParamInterface<CNeeded>
{
};

INSTANTIATE_TEST_SUITE_P(Modes, MachineFaultsTest, ValuesIn(ModesOfThisRun()), NameOfMode);
INSTANTIATE_TEST_SUITE_P(Keys, MissingKeyTest,
                         Values(CNeeded{"Class", kClassKey},
                                CNeeded{"ClassNameOfItsVersion", kVersionedProgIdKey},
                                CNeeded{"OutlooksKeyOfTheAddIn", kAddInKey}),
                         NameOf);
INSTANTIATE_TEST_SUITE_P(Libraries, MissingLibraryTest,
                         Values(CNeeded{"Pictures", L"gdiplus"}, CNeeded{"Internet", L"wininet"}), NameOf);

} // namespace

TEST_P(MachineFaultsTest, LogFileHeldByAnotherProgram)
{
    CreateDirectoryW(LogFolder().c_str(), nullptr);
    const UniqueHandle held(CreateFileW(LogPath().c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_NE(held.get(), INVALID_HANDLE_VALUE);
    Publish(NewerBuild(kInstallerUrl));
    ExpectOffer();
    RunFault(GetParam());
    EXPECT_THAT(Observed().shown, ElementsAre(kOfferCaption));
    EXPECT_EQ(GetFileSize(held.get(), nullptr), 0u);
}

TEST_P(MachineFaultsTest, WithoutTheRichEditLibraryThereIsNoOffer)
{
    if (!CMissingLibrary::IsPossible())
    {
        GTEST_SKIP() << "takes the library away by Wine's settings";
    }
    // Without the control there is no dialog and so no offer. Nothing else fails.
    const CMissingLibrary missing(L"riched20");
    Publish(NewerBuild(kInstallerUrl));
    RunFault(GetParam());
    EXPECT_THAT(Observed().shown, IsEmpty());
    EXPECT_EQ(Observed().log.back(), "DetermineUpdateDescription");
}

TEST_F(MachineStartFaultsTest, TheStartUpCheckNeedsNoTypeLibrary)
{
    // Office registers its own again when it starts.
    std::optional<CMissingKeys> missing(kTypeLibraryKeys);
    EndFaultWith(missing);
    ExpectOfferAtStart();
}

TEST_F(MachineStartFaultsTest, TheStartUpCheckDoesNotNeedItsTypeLibrarysFile)
{
    std::optional<CRegistryValue> path(std::in_place, HKEY_LOCAL_MACHINE,
                                       std::wstring(kLibraryKey) + L"\\1.0\\0\\win64", L"");
    path->SetString(L"C:\\no\\such.dll");
    EndFaultWith(path);
    ExpectOfferAtStart();
}

TEST_F(MachineStartFaultsTest, WithoutItsTypeLibraryTheButtonDoesNothing)
{
    // Office asks for the dispatch id of the button's callback, which only the library has.
    std::optional<CMissingKeys> missing(std::span(kTypeLibraryKeys, 1));
    EndFaultWith(missing);
    Publish(NewerBuild(kInstallerUrl));
    m_triggerFault = [this] {
        ClickUpdate();
        EXPECT_TRUE(WaitForTrace("OrvaOscAddin.Connect: GetIDsOfNames(ButtonClicked) = 0x8002801D"));
    };
    RunFaultyStart();
    EXPECT_THAT(Observed().shown, IsEmpty());
    EXPECT_THAT(m_server.Requests(), testing::SizeIs(1));
}

TEST_F(MachineStartFaultsTest, LanguageSettingsMissing)
{
    const std::wstring key = OfficeLanguageKey(14);
    const wchar_t* const keys[] = {key.c_str()};
    std::optional<CMissingKeys> missing(keys);
    EndFaultWith(missing);
    ExpectEmptyTextAtStart();
}

TEST_F(MachineStartFaultsTest, LanguageThatIsAText)
{
    std::optional<CRegistryValue> value(std::in_place, HKEY_CURRENT_USER, OfficeLanguageKey(14),
                                        kOfficeLanguageValue);
    value->SetString(L"en");
    EndFaultWith(value);
    ExpectEmptyTextAtStart();
}

TEST_F(MachineStartFaultsTest, WithoutItsFileTheAddInIsNotLoaded)
{
    std::optional<CRegistryValue> path(std::in_place, HKEY_LOCAL_MACHINE,
                                       std::wstring(kClassKey) + L"\\InprocServer32", L"");
    path->SetString(L"C:\\no\\such.dll");
    EndFaultWith(path);
    ExpectNoAddIn();
}

TEST_P(MissingKeyTest, TheAddInIsNotLoaded)
{
    std::optional<CMissingKeys> missing(std::span(&GetParam().value, 1));
    EndFaultWith(missing);
    ExpectNoAddIn();
}

// As without any other library that the DLL imports.
TEST_P(MissingLibraryTest, TheAddInIsNotLoaded)
{
    if (!CMissingLibrary::IsPossible())
    {
        GTEST_SKIP() << "takes the library away by Wine's settings";
    }
    std::optional<CMissingLibrary> missing(GetParam().value);
    EndFaultWith(missing);
    ExpectNoAddIn();
}

} // namespace orva::test
