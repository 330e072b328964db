// What is found in the replies of a web server, for the update file and for the installer.
#include "fixture/ProductFixture.h"
#include "harness/Compression.h"
#include "harness/Files.h"
#include "harness/LoopbackServer.h"
#include "harness/ProxySetting.h"
#include "publishing/FindingRows.h"
#include "publishing/Report.h"
#include "publishing/Text.h"

#include <gmock/gmock.h>

#include <ostream>

namespace orva::test
{
namespace
{

using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr char kFilePath[] = "/UpdateInfo.txt";
constexpr char kInstallerPath[] = "/OrvaSetup-1.3.0.exe";

const std::string& Installer()
{
    static const std::string bytes = ReadFileBytes(BuiltFile(L"newer\\OrvaSetup-1.3.0.exe")).value();
    return bytes;
}

class ServerCheckTest : public testing::Test
{
protected:
    ServerCheckTest() { m_server.On(kInstallerPath, CHttpReply(200, Installer())); }

    // kGoodFile, with its installer on this server.
    std::string File() const { return With(kGoodLink, m_server.Url(kInstallerPath)); }

    publishing::CCheckResult Check(const CServerScript& reply)
    {
        m_server.On(kFilePath, reply);
        return publishing::Check({.source = m_server.WideUrl(kFilePath)});
    }

    std::vector<CExpectedFinding> Found(const CServerScript& reply)
    {
        const publishing::CCheckResult result = Check(reply);
        return FindingsOf(result.findings, publishing::PlainReport(result));
    }

    // With this reply to the request for the installer.
    std::vector<CExpectedFinding> FoundOfInstaller(const CServerScript& reply)
    {
        m_server.On(kInstallerPath, reply);
        return Found(CHttpReply(200, File()));
    }

    // A URL where nobody answers.
    std::string Secure(const std::string& scheme)
    {
        m_nobody.Refuse();
        return scheme + "://127.0.0.1:" + std::to_string(m_nobody.Port()) + "/moved";
    }

    CLoopbackServer m_server;
    CLoopbackServer m_nobody;
    CNoProxy m_noProxy;
    COfficeLanguage m_language{1033};
};

TEST_F(ServerCheckTest, AGoodServerGivesTheFactsAndNoFindings)
{
    const publishing::CCheckResult result =
        Check(CHttpReply(200, GzipBytes(File())).Header("Content-Encoding", "gzip"));
    EXPECT_THAT(result.findings.All(), testing::IsEmpty());
    ASSERT_TRUE(result.server && result.installer);
    EXPECT_EQ(result.server->status, 200u);
    EXPECT_EQ(result.server->date, publishing::Wide(kReplyDate));
    EXPECT_EQ(result.server->contentType, L"text/plain");
    EXPECT_EQ(result.server->coding, L"gzip");
    EXPECT_EQ(result.server->redirectedTo, L"");
    EXPECT_EQ(result.server->size, File().size());
    EXPECT_EQ(result.installer->source, m_server.WideUrl(kInstallerPath));
    EXPECT_EQ(result.installer->size, Installer().size());
    EXPECT_EQ(result.installer->version, L"1.3.0");
}

TEST_F(ServerCheckTest, RequestsAreLikeTheAddIns)
{
    Check(CHttpReply(200, File()));
    const auto requests = m_server.Requests();
    ASSERT_EQ(requests.size(), 3u);
    for (std::size_t i = 0; i < 2; ++i)
    {
        EXPECT_EQ(requests[i].requestLine, "GET /UpdateInfo.txt? HTTP/1.1");
        EXPECT_EQ(requests[i].Header("Accept-Encoding"), "gzip");
    }
    EXPECT_EQ(requests[2].requestLine, "GET /OrvaSetup-1.3.0.exe HTTP/1.1");
    EXPECT_EQ(requests[2].Header("Accept"), "*/*");
    EXPECT_EQ(requests[2].Header("Accept-Encoding"), "identity, *;q=0");
    EXPECT_EQ(requests[2].Header("User-Agent"), "ORVA OSC Outlook Add-In");
}

TEST_F(ServerCheckTest, AReplyWithoutAUsableDateIsAnErrorAndForetoldAsTheAddInTakesIt)
{
    const publishing::CCheckResult result = Check(CHttpReply(200, File()).WithoutDate());
    EXPECT_THAT(FindingsOf(result.findings, publishing::PlainReport(result)),
                ElementsAre(CExpectedFinding{
                    "no-date", "Error: the server sends no Date header, which the add-in needs"}));
    for (const publishing::CUserForecast& one : result.forecasts)
    {
        EXPECT_EQ(one.forecast.messages.size(), one.trigger == publishing::Trigger::Start ? 0u : 1u);
        EXPECT_FALSE(one.forecast.offer);
    }
    EXPECT_EQ(result.forecasts[7].forecast.messages.at(0), L"Error when connecting to the update server.");

    EXPECT_THAT(
        Found(CHttpReply(200, File()).Header("Date", "today")),
        ElementsAre(CExpectedFinding{
            "no-date", "Error: the server sends a Date header that the add-in cannot read: \"today\""}));
}

TEST_F(ServerCheckTest, ABodyThatIsCutOrDamagedIsAnError)
{
    EXPECT_EQ(Found(CHttpReply(200, File()).ContentLength(1000))[0].line,
              "Error: the server ends the file after " + std::to_string(File().size()) + " of 1000 bytes");
    std::string gzip = GzipBytes(File());
    gzip[gzip.size() / 2] = static_cast<char>(~gzip[gzip.size() / 2]);
    EXPECT_EQ(Found(CHttpReply(200, gzip).Header("Content-Encoding", "gzip"))[0].line,
              "Error: the server sends a damaged gzip body");
    EXPECT_EQ(Found(CHttpReply(200, GzipBytes(File() + std::string(256'000, ' ')))
                        .Header("Content-Encoding", "gzip"))[0]
                  .line,
              "Error: the server sends more than the 256000 bytes that the add-in reads");
}

struct CReplyRow
{
    const char* name;
    CHttpReply (*reply)(const std::string& file);
    std::vector<CExpectedFinding> findings;
};

void PrintTo(const CReplyRow& row, std::ostream* out)
{
    *out << row.name;
}

class ReplyRowTest : public ServerCheckTest, public testing::WithParamInterface<CReplyRow>
{
};

TEST_P(ReplyRowTest, IsReportedInTheseWords)
{
    EXPECT_THAT(Found(GetParam().reply(File())), ElementsAreArray(GetParam().findings));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ReplyRowTest,
    testing::Values(
        CReplyRow{"Status404",
                  [](const std::string&) { return CHttpReply(404, "gone"); },
                  {{"status", "Error: the server answers with status 404, not 200"}}},
        CReplyRow{"NoBody",
                  [](const std::string&) { return CHttpReply(200, ""); },
                  {{"empty", "Error: the file is empty"}}},
        CReplyRow{"ZeroByteAtTheBeginning",
                  [](const std::string& file) { return CHttpReply(200, std::string(1, '\0') + file); },
                  {{"zero-byte", "Error: byte 1 is zero: the add-in does not read beyond it"}}},
        CReplyRow{"Deflate",
                  [](const std::string& file) {
                      return CHttpReply(200, file).Header("Content-Encoding", "deflate");
                  },
                  {{"coding", "Error: the server uses a coding that the add-in does not know: \"deflate\""}}},
        CReplyRow{
            "HtmlPage",
            [](const std::string& file) { return CHttpReply(200, file).Header("Content-Type", "text/html"); },
            {{"content-type",
              "Warning: the server sends the file as \"text/html\" and not as \"text/plain\" or "
              "\"application/json\""}}},
        CReplyRow{"Utf16",
                  [](const std::string& file) {
                      return CHttpReply(200, file).Header("Content-Type", "text/plain; charset=utf-16");
                  },
                  {{"content-type",
                    "Error: the server says that the file is UTF-16, which the add-in does not read: "
                    "\"text/plain; charset=utf-16\""}}}),
    [](const auto& row) { return row.param.name; });

TEST_F(ServerCheckTest, ARedirectionIsFollowedAndAWarning)
{
    m_server.On("/new.txt", CHttpReply(200, File()));
    EXPECT_THAT(Found(CHttpReply(302).Header("Location", m_server.Url("/new.txt"))),
                ElementsAre(CExpectedFinding{"redirect", "Warning: the server redirects to " +
                                                             m_server.Url("/new.txt")}));
}

TEST_F(ServerCheckTest, ARedirectionToHttpsIsAnErrorAndForetoldAsNoAnswer)
{
    const std::string secure = Secure("HTTPS");
    m_server.On("/next.txt", CHttpReply(301).Header("Location", secure));
    for (const std::string& location : {secure, std::string("/next.txt")})
    {
        const publishing::CCheckResult result = Check(CHttpReply(302).Header("Location", location));
        const std::string to = publishing::Utf8(result.server->redirectedTo);
        EXPECT_STRCASEEQ(to.c_str(), secure.c_str());
        EXPECT_THAT(FindingsOf(result.findings, publishing::PlainReport(result)),
                    ElementsAre(CExpectedFinding{"redirect", "Error: the server redirects to " + to +
                                                                 ", and Windows does not follow from http to "
                                                                 "https"}));
        for (const publishing::CUserForecast& one : result.forecasts)
        {
            const bool isStart = one.trigger == publishing::Trigger::Start;
            EXPECT_EQ(one.forecast.messages.size(), isStart ? 0u : 1u);
            EXPECT_FALSE(one.forecast.offer);
        }
    }
}

TEST_F(ServerCheckTest, ARedirectionOfTheInstallerToHttpsIsAnError)
{
    const std::string secure = Secure("https");
    EXPECT_THAT(FoundOfInstaller(CHttpReply(302).Header("Location", secure)),
                ElementsAre(CExpectedFinding{"redirect", "Error: the installer is at " + secure +
                                                             ", to which the server redirects, and Windows "
                                                             "does not follow from http to https"}));
}

TEST_F(ServerCheckTest, RedirectionsWithoutEndAreAnError)
{
    m_server.On("/loop.exe", CHttpReply(302).Header("Location", m_server.Url("/loop.exe")));
    EXPECT_THAT(
        FoundOfInstaller(CHttpReply(302).Header("Location", m_server.Url("/loop.exe"))),
        ElementsAre(CExpectedFinding{"installer-not-there", "Error: the installer cannot be downloaded: the "
                                                            "server answers with status 302"}));
}

TEST_F(ServerCheckTest, AnInstallerThatIsNotThereOrComesCutIsAnError)
{
    EXPECT_THAT(
        FoundOfInstaller(CHttpReply(404)),
        ElementsAre(CExpectedFinding{"installer-not-there", "Error: the installer cannot be downloaded: the "
                                                            "server answers with status 404"}));
    EXPECT_THAT(
        FoundOfInstaller(CHttpReply(200, Installer()).Without("Content-Length")),
        ElementsAre(CExpectedFinding{"no-length", "Error: the installer comes without a Content-Length, so "
                                                  "that a cut download is not noticed"}));
    const std::string half = Installer().substr(0, Installer().size() / 2);
    const std::string size = std::to_string(Installer().size());
    EXPECT_EQ(FoundOfInstaller(CHttpReply(200, half).ContentLength(Installer().size()))[0].line,
              "Error: the installer ends after " + std::to_string(half.size()) + " of " + size + " bytes");
    EXPECT_THAT(
        FoundOfInstaller(CHttpReply(200, "<!DOCTYPE html>")),
        ElementsAre(CExpectedFinding{"installer-not-program", "Error: the installer is no whole program for "
                                                              "64-bit or 32-bit Windows"}));
    EXPECT_EQ(FoundOfInstaller(CHttpReply(200, Installer()).ContentLength(2'147'483'648))[0].line,
              "Error: the installer has 2 GiB or more, beyond what the add-in downloads");
    m_server.On("/moved.exe", CHttpReply(200, Installer()));
    EXPECT_THAT(FoundOfInstaller(CHttpReply(302).Header("Location", m_server.Url("/moved.exe"))),
                ElementsAre(CExpectedFinding{"redirect", "Warning: the installer is at " +
                                                             m_server.Url("/moved.exe") +
                                                             ", to which the server redirects"}));
}

TEST_F(ServerCheckTest, TheInstallerHasToBeTheFileOnThisMachineIfThereIsOne)
{
    m_server.On(kFilePath, CHttpReply(200, File()));
    const std::wstring same = BuiltFile(L"newer\\OrvaSetup-1.3.0.exe");
    EXPECT_THAT(publishing::Check({.source = m_server.WideUrl(kFilePath), .installer = same}).findings.All(),
                testing::IsEmpty());
    // A setup program keeps its payload behind the sections, where nothing else looks.
    m_server.On(kInstallerPath, CHttpReply(200, Installer().substr(0, Installer().size() - 1)));
    const publishing::CCheckResult result =
        publishing::Check({.source = m_server.WideUrl(kFilePath), .installer = same});
    EXPECT_THAT(
        FindingsOf(result.findings, publishing::PlainReport(result)),
        ElementsAre(CExpectedFinding{"installer-differs",
                                     "Error: the installer is another file than " + publishing::Utf8(same)}));
}

TEST_F(ServerCheckTest, ASilentServerIsAnError)
{
    m_server.Refuse();
    const publishing::CCheckResult result = publishing::Check({.source = m_server.WideUrl(kFilePath)});
    EXPECT_THAT(FindingsOf(result.findings, publishing::PlainReport(result)),
                ElementsAre(CExpectedFinding{"no-answer", "Error: the server does not answer"}));
    EXPECT_FALSE(result.server);
}

// Of this path it asks for nothing: it is longer than the add-in's client takes.
TEST_F(ServerCheckTest, AFileThatOnlyTheAddInDoesNotGetIsAnError)
{
    const std::string path = "/" + std::string(300, 'a');
    m_server.On(path, CHttpReply(200, File()));
    const publishing::CCheckResult result = publishing::Check({.source = m_server.WideUrl(path)});
    EXPECT_THAT(FindingsOf(result.findings, publishing::PlainReport(result)),
                ElementsAre(CExpectedFinding{
                    "no-answer", "Error: the server does not give the file to the add-in's own client"}));
}

} // namespace
} // namespace orva::test
