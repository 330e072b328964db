// The Backstage tab in Outlook 2010: its texts and pictures, its links, and "Update".
#include "end_to_end/OutlookFixture.h"
#include "end_to_end/Texts.h"
#include "harness/Files.h"
#include "harness/Registry.h"
#include "harness/Text.h"

#include <algorithm>

namespace orva::test
{

namespace
{

using testing::Contains;
using testing::IsSupersetOf;

constexpr wchar_t kFileView[] = L"OrvaHostFileView";
constexpr wchar_t kLink[] = L"OrvaHostLink";

class BackstageTest : public OutlookFixture
{
protected:
    BackstageTest() { Publish(UpdateInfo("1", "2", "0", kInstallerUrl)); }

    // The File view's controls of one window class, or of all.
    std::vector<HWND> Controls(const wchar_t* className = nullptr) const
    {
        std::vector<HWND> found;
        for (const HWND child : ChildWindows(MainWindow()))
        {
            if (className == nullptr || WindowClassName(child) == className)
            {
                found.push_back(child);
            }
        }
        return found;
    }

    // Starts Outlook with the tab open and waits until it is complete: the version lines come last.
    void OpenTab()
    {
        StartWithBackstage();
        ASSERT_TRUE(WaitForTrace("File view shows tab OrvaOSCBackStageTab"));
        ASSERT_TRUE(WaitUntil([&] {
            const auto texts = Texts();
            return std::find(texts.begin(), texts.end(), L"Version 1.2.0 (64-bit)") != texts.end();
        })) << DescribeWindows(m_outlook->Id());
    }

    std::vector<std::wstring> Texts() const
    {
        std::vector<std::wstring> texts;
        for (const HWND control : Controls())
        {
            texts.push_back(WindowText(control));
        }
        return texts;
    }
};

TEST_F(BackstageTest, ShowsTextsPicturesLinksVersionAndButton)
{
    OpenTab();
    ASSERT_EQ(Controls(kFileView).size(), 1u);
    const auto texts = Texts();
    for (const wchar_t* const text :
         {L"ORVA", L"ORVA Connector", L"More information", L"ORVA Connector information", L"FAQs",
          L"About this site", L"Version", L"Update"})
    {
        EXPECT_THAT(texts, Contains(std::wstring(text))) << Utf8(text);
    }
    EXPECT_THAT(Trace(), IsSupersetOf({"Outlook: picture of OrvaLogo: 132 x 55, transparent",
                                       "Outlook: picture of btnCheckUpdate: 36 x 36, transparent"}));
    ExpectOutlookGoesOn();
}

TEST_F(BackstageTest, UpdateOffersANewerBuildEachTimeItIsPressed)
{
    Publish(NewerBuild(kInstallerUrl));
    ExpectOffer();
    ExpectOffer();
    StartWithBackstage();
    CheckExplicitly(1);
    CheckExplicitly(2);
    ExpectOutlookGoesOn();
    EXPECT_EQ(m_server.Requests().size(), 2u);
}

TEST_F(BackstageTest, EachLinkOpensItsExactAddressInTheBrowser)
{
    // A browser that writes the address that it is called with to a file.
    const CTempFolder folder;
    const CRegistryTreeGuard kept(HKEY_LOCAL_MACHINE, L"Software\\Classes\\http");
    CRegistryValue protocol(HKEY_LOCAL_MACHINE, L"Software\\Classes\\http", L"URL Protocol");
    CRegistryValue command(HKEY_LOCAL_MACHINE, L"Software\\Classes\\http\\shell\\open\\command", L"");
    protocol.SetString(L"");

    const std::vector<std::pair<std::wstring, std::string>> links{
        {L"ORVA Connector information", "http://" ORVA_WEB_HOST "/outlook"},
        {L"FAQs", "http://" ORVA_WEB_HOST "/outlook/faqs"},
        {L"About this site", "http://" ORVA_WEB_HOST "/app/user?op=imprint"}};
    OpenTab();
    const auto controls = Controls(kLink);
    ASSERT_EQ(controls.size(), links.size());
    for (size_t i = 0; i < links.size(); ++i)
    {
        const auto& [label, address] = links[i];
        EXPECT_EQ(WindowText(controls[i]), label);
        const std::wstring file = folder.File(std::to_wstring(i));
        command.SetString(L"cmd.exe /c echo %1>\"" + file + L"\"");
        PostMessageW(controls[i], BM_CLICK, 0, 0);
        EXPECT_TRUE(WaitForFile(file, address.size())) << address;
        const std::string written = ReadFileBytes(file).value_or("");
        EXPECT_EQ(written.substr(0, written.find_last_not_of("\r\n ") + 1), address);
    }
    ExpectOutlookGoesOn();
}

} // namespace
} // namespace orva::test
