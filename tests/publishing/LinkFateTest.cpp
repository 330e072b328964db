// What is foretold of a link is what the add-in's download shows after "Install", on the system's WinINet.
#include "fixture/ProductFixture.h"
#include "harness/ImportHook.h"
#include "harness/LoopbackServer.h"
#include "harness/ProxySetting.h"
#include "harness/TempFolder.h"
#include "publishing/FindingRows.h"
#include "publishing/Forecast.h"
#include "publishing/LinkCheck.h"
#include "publishing/Text.h"
#include "ui/StartDownloadDialog.h"

#include <gtest/gtest.h>

#include <ostream>

namespace orva::test
{
namespace
{

using publishing::LinkFate;

std::vector<std::wstring> g_shown;

int WINAPI NoteMessage(HWND, LPCWSTR text, LPCWSTR, UINT)
{
    g_shown.emplace_back(text);
    return IDOK;
}

struct CLink
{
    const char* name;
    // "PORT" stands for one where nobody answers.
    std::string link;
    LinkFate fate;
};

void PrintTo(const CLink& link, std::ostream* out)
{
    *out << link.link;
}

using SleepFunction = void WINAPI(DWORD);

SleepFunction* g_sleep = nullptr;
DWORD g_thread = 0;

// The download shows its end for a second.
void WINAPI SleepElsewhere(DWORD milliseconds)
{
    if (GetCurrentThreadId() != g_thread)
    {
        g_sleep(milliseconds);
    }
}

class LinkFateTest : public testing::TestWithParam<CLink>
{
protected:
    LinkFateTest() { m_server.Refuse(); }

    std::string Link() const
    {
        std::string link = GetParam().link;
        const std::size_t port = link.find("PORT");
        return port == std::string::npos ? link : link.replace(port, 4, std::to_string(m_server.Port()));
    }

    CLoopbackServer m_server;
    CNoProxy m_noProxy;
    COfficeLanguage m_language{1033};
    CPrivateTemp m_temp;
};

TEST_P(LinkFateTest, IsWhatTheDownloadShows)
{
    const std::wstring link = publishing::Wide(Link());
    EXPECT_EQ(publishing::FateOf(link), GetParam().fate);

    const publishing::CUpdateText file =
        publishing::ReadAsTheAddIn(publishing::Wide(With(kGoodLink, Link())));
    const publishing::CForecast foretold =
        publishing::Foretell(file, {{1, 2, 0}, false}, 1033, publishing::Trigger::Request);

    g_shown.clear();
    const CImportHook message(GetModuleHandleW(nullptr), "USER32.dll", "MessageBoxW", &NoteMessage);
    const CImportHook sleep(GetModuleHandleW(nullptr), "KERNEL32.dll", "Sleep", &SleepElsewhere);
    g_sleep = sleep.Original<SleepFunction>();
    g_thread = GetCurrentThreadId();
    StartDownloadDialog(link.c_str(), nullptr);
    if (GetParam().fate == LinkFate::Downloaded)
    {
        // The download begins, and fails because nobody answers.
        EXPECT_TRUE(foretold.isDownloaded);
        EXPECT_EQ(g_shown.at(0), L"Error when connecting to the update server.");
        return;
    }
    EXPECT_FALSE(foretold.isDownloaded);
    std::vector<std::wstring> expected = foretold.afterInstall;
    if (GetParam().fate == LinkFate::NameTooLong)
    {
        // Where Windows does not find the path, Wine does not find the file.
        EXPECT_EQ(expected.at(0), L"File could not be created, error ID: 3");
        expected.at(0).back() = L'2';
    }
    EXPECT_EQ(g_shown, expected);
}

INSTANTIATE_TEST_SUITE_P(
    Links, LinkFateTest,
    testing::Values(CLink{"Usual", "http://127.0.0.1:PORT/setup.exe", LinkFate::Downloaded},
                    CLink{"Empty", "", LinkFate::NoFileName},
                    CLink{"NoSlash", "setup.exe", LinkFate::NoFileName},
                    CLink{"Folder", "http://h/folder/", LinkFate::NoFileName},
                    CLink{"NoScheme", "h/setup.exe", LinkFate::NotParsed},
                    CLink{"UnknownScheme", "httq://h/setup.exe", LinkFate::NotParsed},
                    CLink{"Device", "http://h/nul.exe", LinkFate::BadFileName},
                    CLink{"Stream", "http://h/setup.exe:stream", LinkFate::BadFileName},
                    CLink{"Parent", "http://h/..", LinkFate::BadFileName},
                    CLink{"Query", "http://h/get?setup.exe", LinkFate::BadFileName},
                    CLink{"Star", "http://h/setup*.exe", LinkFate::BadFileName},
                    CLink{"Quotes", "http://h/set\\\"up.exe", LinkFate::BadFileName},
                    CLink{"Bar", "http://h/set|up.exe", LinkFate::BadFileName},
                    CLink{"Less", "http://h/set<up.exe", LinkFate::BadFileName},
                    CLink{"TooLong", "http://h/" + std::string(300, 'x') + ".exe", LinkFate::NameTooLong},
                    CLink{"Https", "https://127.0.0.1:PORT/setup.exe", LinkFate::NotHttp},
                    CLink{"Ftp", "ftp://127.0.0.1:PORT/setup.exe", LinkFate::NotHttp}),
    [](const auto& row) { return row.param.name; });

} // namespace
} // namespace orva::test
