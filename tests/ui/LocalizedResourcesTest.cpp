// The choice of language from Office's settings, the loading of texts and resources, the message box and the
// search for the host's window.
#include "ui/LocalizedResources.h"

#include "harness/OfficeLanguage.h"
#include "harness/ProcessRunner.h"
#include "harness/Registry.h"
#include "harness/Text.h"
#include "harness/UserScript.h"
#include "harness/WindowDriver.h"
#include "res/resource.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <new>
#include <optional>

using namespace orva::test;

namespace
{
constexpr WORD kNoLanguage = 65535;

// No Office language is set until a test sets one. The old settings are restored afterwards.
class LocalizedResourcesTest : public testing::Test
{
protected:
    LocalizedResourcesTest()
    {
        for (CRegistryValue* value :
             {&m_userLanguage, &m_machineLanguage, &m_userInstall, &m_machineInstall, &m_user2007})
        {
            value->Remove();
        }
    }

    std::string Text(UINT id) const { return Utf8(m_resources.LoadString(id).GetString()); }

    // Removes the settings that are absent.
    static void Set(CRegistryValue& value, std::optional<DWORD> language)
    {
        value.Remove();
        if (language)
        {
            value.SetDword(*language);
        }
    }

    void ExpectNoTexts() const
    {
        for (UINT id = 100; id <= 143; ++id)
        {
            EXPECT_EQ(Text(id), "") << id;
        }
    }

    const std::wstring m_key = OfficeLanguageKey(14);
    CRegistryValue m_userLanguage{HKEY_CURRENT_USER, m_key, kOfficeLanguageValue};
    CRegistryValue m_machineLanguage{HKEY_LOCAL_MACHINE, m_key, kOfficeLanguageValue};
    CRegistryValue m_userInstall{HKEY_CURRENT_USER, m_key, L"InstallLanguage"};
    CRegistryValue m_machineInstall{HKEY_LOCAL_MACHINE, m_key, L"InstallLanguage"};
    CRegistryValue m_user2007{HKEY_CURRENT_USER, OfficeLanguageKey(12), kOfficeLanguageValue};
    CLocalizedResources m_resources;
};

// A top-level window for its lifetime.
class CTestWindow
{
public:
    explicit CTestWindow(DWORD style)
        : m_window(CreateWindowExW(0, L"STATIC", L"Test window", style, 10, 10, 200, 100, nullptr, nullptr,
                                   GetModuleHandleW(nullptr), nullptr))
    {
    }
    ~CTestWindow() { DestroyWindow(m_window); }
    CTestWindow(const CTestWindow&) = delete;
    CTestWindow& operator=(const CTestWindow&) = delete;
    HWND Handle() const { return m_window; }

private:
    HWND m_window;
};
} // namespace

TEST_F(LocalizedResourcesTest, TheAccessorGivesOneObject)
{
    EXPECT_EQ(&GetLocalizedResources(), &GetLocalizedResources());
}

TEST_F(LocalizedResourcesTest, TheOfficeVersionIs0UntilSet)
{
    EXPECT_EQ(m_resources.GetOfficeVersion(), 0);
    m_resources.SetOfficeVersion(14);
    EXPECT_EQ(m_resources.GetOfficeVersion(), 14);
}

TEST_F(LocalizedResourcesTest, WithoutAnOfficeVersionTheLanguageIs0WhateverTheRegistrySays)
{
    m_userLanguage.SetDword(1031);
    CRegistryValue version0(HKEY_CURRENT_USER, OfficeLanguageKey(0), kOfficeLanguageValue);
    version0.SetDword(1031);
    EXPECT_EQ(m_resources.GetUILanguage(), 0);
    m_resources.SetOfficeVersion(0);
    EXPECT_EQ(m_resources.GetUILanguage(), 0);

    CRegistryValue negative(HKEY_CURRENT_USER, OfficeLanguageKey(-1), kOfficeLanguageValue);
    negative.SetDword(1031);
    m_resources.SetOfficeVersion(-1);
    EXPECT_EQ(m_resources.GetUILanguage(), 0);
}

TEST_F(LocalizedResourcesTest, WithoutAnOfficeVersionTextsFollowTheThreadsLanguage)
{
    const LCID before = GetThreadLocale();
    SetThreadLocale(MAKELCID(1031, SORT_DEFAULT));
    EXPECT_EQ(Text(IDS_UPDATE_LATER), "Später");
    SetThreadLocale(MAKELCID(1033, SORT_DEFAULT));
    EXPECT_EQ(Text(IDS_UPDATE_LATER), "Later");
    SetThreadLocale(before);
}

TEST_F(LocalizedResourcesTest, ANewObjectHasVersion0WhateverItsMemoryHeld)
{
    m_userLanguage.SetDword(1031);
    // Memory full of the version of an Office that is in German.
    alignas(CLocalizedResources) std::array<std::byte, sizeof(CLocalizedResources)> memory;
    for (size_t i = 0; i < memory.size(); i += sizeof(int))
    {
        constexpr int kVersion = 14;
        std::memcpy(&memory[i], &kVersion, sizeof(kVersion));
    }
    auto* const resources = new (memory.data()) CLocalizedResources;
    const LCID before = GetThreadLocale();
    SetThreadLocale(MAKELCID(1033, SORT_DEFAULT));
    EXPECT_EQ(resources->GetOfficeVersion(), 0);
    EXPECT_STREQ(resources->LoadString(IDS_UPDATE_LATER), L"Later");
    SetThreadLocale(before);
    resources->~CLocalizedResources();
}

TEST_F(LocalizedResourcesTest, EveryOfficeWithATableFindsItsTexts)
{
    struct CCase
    {
        DWORD language;
        UINT id;
        const char* text;
    };
    for (const CCase& row :
         {CCase{1033, IDS_CANCEL, "Cancel"}, CCase{1031, IDS_CANCEL, "Abbrechen"},
          CCase{3082, IDS_UPDBUTTON_LABEL, "Actualizar"}, CCase{1034, IDS_UPDBUTTON_LABEL, "Actualizar"},
          CCase{2058, IDS_UPDBUTTON_LABEL, "Actualizar"}, CCase{11274, IDS_UPDBUTTON_LABEL, "Actualizar"},
          CCase{10, IDS_UPDBUTTON_LABEL, "Actualizar"}, CCase{1055, IDS_CANCEL, "İptal"},
          CCase{31, IDS_CANCEL, "İptal"}})
    {
        m_userLanguage.SetDword(row.language);
        m_resources.SetOfficeVersion(14);
        EXPECT_EQ(m_resources.GetUILanguage(), row.language);
        EXPECT_EQ(Text(row.id), row.text) << row.language;
    }
}

TEST_F(LocalizedResourcesTest, ALanguageWithoutATableHasEmptyTextsAndNotEnglishOnes)
{
    // French, and the other kinds of German and English: those tables are stored under one id only.
    for (const DWORD language : {1036u, 2055u, 3079u, 7u, 2057u, 9u, 65535u})
    {
        m_userLanguage.SetDword(language);
        m_resources.SetOfficeVersion(14);
        SCOPED_TRACE(language);
        ExpectNoTexts();
    }
}

// Only a language of 0 leads to the one of the installation; a missing one does not.
TEST_F(LocalizedResourcesTest, TheLanguageComesFromTheseSettings)
{
    struct CCase
    {
        std::optional<DWORD> user;
        std::optional<DWORD> machine;
        std::optional<DWORD> userInstall;
        std::optional<DWORD> machineInstall;
        WORD language;
    };
    constexpr std::nullopt_t kNone = std::nullopt;
    const CCase rows[] = {
        {kNone, kNone, kNone, kNone, kNoLanguage},
        {1031, kNone, kNone, kNone, 1031},
        {kNone, 1055, kNone, kNone, 1055},
        {1031, 1055, kNone, kNone, 1031},
        {0, kNone, kNone, 1033, 1033},
        {0, kNone, 1031, 1033, 1031},
        {0, kNone, kNone, kNone, kNoLanguage},
        {0, 1055, kNone, 1031, 1031},
        {kNone, 0, kNone, 1031, 1031},
        {kNone, kNone, 1031, 1031, kNoLanguage},
        // The low 16 bits count.
        {0x7FFF0407, kNone, kNone, kNone, 1031},
    };
    m_resources.SetOfficeVersion(14);
    for (const CCase& row : rows)
    {
        Set(m_userLanguage, row.user);
        Set(m_machineLanguage, row.machine);
        Set(m_userInstall, row.userInstall);
        Set(m_machineInstall, row.machineInstall);
        EXPECT_EQ(m_resources.GetUILanguage(), row.language) << "row " << &row - rows;
    }
}

TEST_F(LocalizedResourcesTest, OnlyTheSettingsOfTheGivenVersionAreRead)
{
    m_user2007.SetDword(1031);
    m_resources.SetOfficeVersion(14);
    EXPECT_EQ(m_resources.GetUILanguage(), kNoLanguage);
    m_resources.SetOfficeVersion(12);
    EXPECT_EQ(m_resources.GetUILanguage(), 1031);
    EXPECT_EQ(Text(IDS_UPDATE_LATER), "Später");
}

TEST_F(LocalizedResourcesTest, TheLanguageOfTextsStaysUntilTheVersionIsSetAgain)
{
    m_userLanguage.SetDword(1031);
    m_resources.SetOfficeVersion(14);
    m_userLanguage.SetDword(1033);
    EXPECT_EQ(m_resources.GetUILanguage(), 1033) << "the registry is read at every call";
    EXPECT_EQ(Text(IDS_UPDATE_LATER), "Später");
    m_resources.SetOfficeVersion(14);
    EXPECT_EQ(Text(IDS_UPDATE_LATER), "Later");
}

TEST_F(LocalizedResourcesTest, AnIdWithoutATextIsEmpty)
{
    m_userLanguage.SetDword(1033);
    m_resources.SetOfficeVersion(14);
    for (const UINT id : {0u, 6u, 10u, 96u, 100u, 143u, 144u, 1600u, 65535u, 0xFFFFFFFFu})
    {
        EXPECT_EQ(Text(id), "") << id;
    }
}

TEST_F(LocalizedResourcesTest, TheSecondSearchUsesTheIdAsABlocksName)
{
    m_userLanguage.SetDword(1031);
    m_resources.SetOfficeVersion(14);
    // No text has this id, but the block named 7 is there in English, and its entry 7 is a text.
    EXPECT_EQ(Text(7), "The ORVA Connector links Outlook to the ORVA business network.");
}

TEST_F(LocalizedResourcesTest, ResourceDataPointsAtTheResourcesBytes)
{
    const void* data = nullptr;
    DWORD size = 0;
    ASSERT_EQ(m_resources.LoadResourceData(IDR_LOGO_PNG, L"PNG", &data, &size), S_OK);
    ASSERT_GT(size, 100u);
    EXPECT_EQ(std::memcmp(data, "\x89PNG\r\n\x1a\n", 8), 0);
}

TEST_F(LocalizedResourcesTest, MissingResourceDataIsTheWin32ErrorAsAnHresult)
{
    const int untouched = 0;
    const void* data = &untouched;
    DWORD size = 17;
    EXPECT_EQ(m_resources.LoadResourceData(209, L"PNG", &data, &size),
              HRESULT_FROM_WIN32(ERROR_RESOURCE_NAME_NOT_FOUND));
    EXPECT_EQ(m_resources.LoadResourceData(IDR_LOGO_PNG, L"GIF", &data, &size),
              HRESULT_FROM_WIN32(ERROR_RESOURCE_TYPE_NOT_FOUND));
    EXPECT_EQ(data, &untouched);
    EXPECT_EQ(size, 17u);
}

TEST_F(LocalizedResourcesTest, TheMarkupIsLoadedWithItsByteOrderMarkAndNothingBehindIt)
{
    const auto markup = m_resources.LoadXmlResource(IDR_BACKSTAGE_XML);
    ASSERT_NE(markup, nullptr);
    EXPECT_TRUE(markup->starts_with(L"\uFEFF<?xml version=\"1.0\" encoding=\"utf-16\"?>\r\n<customUI "));
    EXPECT_TRUE(markup->ends_with(L"</customUI>\r\n"));
    EXPECT_EQ(markup->find(L'\0'), std::wstring::npos);
}

TEST_F(LocalizedResourcesTest, EachLoadingOfTheMarkupGivesANewString)
{
    const auto first = m_resources.LoadXmlResource(IDR_BACKSTAGE_XML);
    first->clear();
    EXPECT_FALSE(m_resources.LoadXmlResource(IDR_BACKSTAGE_XML)->empty());
}

TEST_F(LocalizedResourcesTest, MissingMarkupIsNull)
{
    EXPECT_EQ(m_resources.LoadXmlResource(204), nullptr);
}

TEST_F(LocalizedResourcesTest, AMessageHasTheProductsNameAndAnOkButtonAndBelongsToItsOwner)
{
    m_userLanguage.SetDword(1033);
    m_resources.SetOfficeVersion(14);
    const CTestWindow owner(WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    CUserScript user;
    user.AnswerBox(L"100% of \u00DCmlaut\nand a second line");
    user.Start();
    m_resources.ShowMessage(owner.Handle(), L"100% of \u00DCmlaut\nand a second line");
    const auto seen = user.Finish();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(Utf8(seen[0].caption), "ORVA Connector");
    EXPECT_EQ(Utf8(seen[0].text), "100% of \u00DCmlaut\nand a second line");
    EXPECT_EQ(seen[0].buttons.size(), 1u);
    EXPECT_EQ(seen[0].owner, owner.Handle());
    EXPECT_FALSE(seen[0].ownerEnabled);
    EXPECT_TRUE(IsWindowEnabled(owner.Handle()));
}

TEST_F(LocalizedResourcesTest, TheFirstVisibleTopLevelWindowOfTheProcessIsFound)
{
    const CTestWindow lower(WS_POPUP | WS_VISIBLE);
    const CTestWindow hidden(WS_POPUP);
    const CTestWindow upper(WS_POPUP | WS_VISIBLE);
    for (const HWND top : {upper.Handle(), lower.Handle()})
    {
        SetWindowPos(top, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
        SetWindowPos(hidden.Handle(), HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
        EXPECT_EQ(m_resources.FindOwnProcessWindow(), top);
    }
}

TEST_F(LocalizedResourcesTest, WithoutAVisibleTopLevelWindowNoneIsFound)
{
    const CTestWindow hidden(WS_POPUP);
    EXPECT_EQ(m_resources.FindOwnProcessWindow(), nullptr);
}

TEST_F(LocalizedResourcesTest, AWindowOfAnotherProcessIsPassedOver)
{
    const CChildProcess other({.program = L"notepad.exe"});
    const HWND theirs = WaitForWindow({.process = other.Id()});
    ASSERT_NE(theirs, nullptr);
    EXPECT_EQ(m_resources.FindOwnProcessWindow(), nullptr);

    const CTestWindow own(WS_POPUP | WS_VISIBLE);
    SetWindowPos(own.Handle(), theirs, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    EXPECT_EQ(m_resources.FindOwnProcessWindow(), own.Handle());
}
