// What the download asks of the Internet, call by call, and what it makes of the answers.
#include "download/DownloadFixture.h"
#include "fixture/UserTexts.h"
#include "harness/Text.h"
#include "harness/WindowDriver.h"

#include <afxwin.h>

#include <gmock/gmock.h>

namespace orva::test
{
namespace
{

using testing::ElementsAre;

class DownloadRequestTest : public CFakeDownloadTest
{
protected:
    /// The download has shown the error and its end, and left no file.
    void ExpectConnectError() const
    {
        ExpectShown(ErrorAndCancellation());
        EXPECT_EQ(FileLeft(), std::nullopt);
    }

    /// What is to be seen when the worker is about to make this read.
    SeenDownload SeenBeforeRead(int number)
    {
        SeenDownload seen;
        const CallId read{"InternetReadFile", number};
        m_gates.Hold(read, CallStage::Before);
        Download([&] {
            EXPECT_TRUE(m_gates.WaitUntilHeld(read, CallStage::Before));
            Dialog();
            seen = Look();
        });
        return seen;
    }
};

TEST_F(DownloadRequestTest, MakesTheseCallsInThisOrder)
{
    const LPCWSTR before = AfxGetModuleState()->m_lpszCurrentAppName;
    AfxGetModuleState()->m_lpszCurrentAppName = L"Application";
    Download();
    AfxGetModuleState()->m_lpszCurrentAppName = before;
    EXPECT_THAT(
        Lines({}),
        ElementsAre(
            "_beginthreadex()", "InternetOpenW(\"Application\", 0, null, null, 0x0) = session",
            "InternetConnectW(session, \"downloads.example\", 80, null, null, 3, 0x0, context 0x0) = "
            "connection",
            "HttpOpenRequestW(connection, null, \"/outlook/setup.exe\", null, null, {\"*/*\"}, "
            "0x84400000, context 0x0) = request",
            "HttpAddRequestHeadersW(request, \"Accept-Encoding: identity, *;q=0\r\n\", -1, 0x20000000)",
            "HttpAddRequestHeadersW(request, \"User-Agent: ORVA OSC Outlook Add-In\r\n\", -1, "
            "0x20000000)",
            "HttpSendRequestW(request, null, 0, null, 0)",
            // The status, the content encoding and the content length.
            "HttpQueryInfoW(request, 19, 32 bytes)", "HttpQueryInfoW(request, 29, 32 bytes) = error 12150",
            "HttpQueryInfoW(request, 5, 32 bytes)", "GetTickCount()",
            "InternetReadFile(request, 1024) = 1024", "WriteFile(1024)", "GetTickCount()",
            "InternetReadFile(request, 1024) = 500", "WriteFile(500)", "GetTickCount()",
            "InternetReadFile(request, 1024) = 0", "CloseHandle(file)",
            "PostMessageW(dialog, WM_APP + 1, 0, 0)", "Sleep(1000)", "InternetCloseHandle(request)",
            "InternetCloseHandle(connection)", "InternetCloseHandle(session)",
            R"(ShellExecuteExW(112, 0x0, null, "runas", "FOLDER\setup.exe", "", null, 1))"));
    EXPECT_EQ(FileLeft(), kWholeFile);
}

TEST_F(DownloadRequestTest, PassesPortAndQueryOn)
{
    m_url = L"http://downloads.example:8080/get?file=/setup.exe";
    Download();
    EXPECT_THAT(
        Lines({"InternetConnectW", "HttpOpenRequestW"}),
        ElementsAre("InternetConnectW(session, \"downloads.example\", 8080, null, null, 3, 0x0, context "
                    "0x0) = connection",
                    "HttpOpenRequestW(connection, null, \"/get?file=/setup.exe\", null, null, "
                    "{\"*/*\"}, 0x84400000, context 0x0) = request"));
}

// Only plain HTTP is served: no other service is known to the call, and the request has no secure flag.
TEST_F(DownloadRequestTest, PassesTheLinksServiceOnAsItStands)
{
    m_url = L"https://downloads.example/setup.exe";
    m_gates.Fail({"InternetConnectW", 1}, ERROR_INVALID_PARAMETER);
    Download();
    EXPECT_THAT(Lines({"InternetConnectW", "Http"}),
                ElementsAre("InternetConnectW(session, \"downloads.example\", 443, null, null, 4107, 0x0, "
                            "context 0x0) = error 87"));
    ExpectConnectError();
}

TEST_F(DownloadRequestTest, ReadsOnlyTheBodyOfStatus200)
{
    m_winInet.headers[HTTP_QUERY_STATUS_CODE] = L"404";
    Download();
    EXPECT_THAT(Lines({"HttpQueryInfoW", "InternetReadFile"}),
                ElementsAre("HttpQueryInfoW(request, 19, 32 bytes)"));
    ExpectConnectError();
}

TEST_F(DownloadRequestTest, AnyOtherStatusIsAFailure)
{
    m_winInet.headers[HTTP_QUERY_STATUS_CODE] = L"201";
    Download();
    ExpectConnectError();
}

TEST_F(DownloadRequestTest, AStatusThatIsNoNumberIsAFailure)
{
    m_winInet.headers[HTTP_QUERY_STATUS_CODE] = L"OK";
    Download();
    ExpectConnectError();
}

TEST_F(DownloadRequestTest, AnOddContentEncodingDoesNotMatter)
{
    m_winInet.headers[HTTP_QUERY_CONTENT_ENCODING] = L"a name that does not fit the buffer";
    Download();
    EXPECT_EQ(FileLeft(), kWholeFile);
}

TEST_F(DownloadRequestTest, AReadGetsAtMost1024Bytes)
{
    m_winInet.body = {std::string(2500, 'x')};
    Download();
    EXPECT_THAT(Lines({"InternetReadFile", "WriteFile"}),
                ElementsAre("InternetReadFile(request, 1024) = 1024", "WriteFile(1024)",
                            "InternetReadFile(request, 1024) = 1024", "WriteFile(1024)",
                            "InternetReadFile(request, 1024) = 452", "WriteFile(452)",
                            "InternetReadFile(request, 1024) = 0"));
    EXPECT_EQ(FileLeft(), std::string(2500, 'x'));
}

TEST_F(DownloadRequestTest, AWorkerThatCannotBeStartedIsACancellationAndLeavesTheEmptyFile)
{
    m_gates.Fail({"_beginthreadex", 1}, ERROR_NOT_ENOUGH_MEMORY);
    Download();
    EXPECT_THAT(Lines({}), ElementsAre("_beginthreadex() = error 8", Cancellation()[0]));
    EXPECT_EQ(FileLeft(), "");
}

// Whatever call throws: nothing leaves the thread, and the dialog ends.
TEST_F(DownloadRequestTest, AnExceptionOfTheWorkersIsAFailure)
{
    m_gates.Throw({"InternetReadFile", 2}, [] { throw std::bad_alloc(); });
    Download();
    ExpectConnectError();
}

TEST_F(DownloadRequestTest, AClassLibraryExceptionOfTheWorkersIsAFailure)
{
    m_gates.Throw({"InternetReadFile", 2}, [] { AfxThrowInvalidArgException(); });
    Download();
    ExpectConnectError();
}

/// The byte of a body of ten, a read each, at which the reply is cut.
class DownloadCutBodyTest : public DownloadRequestTest, public testing::WithParamInterface<int>
{
protected:
    DownloadCutBodyTest()
    {
        m_winInet.headers[HTTP_QUERY_CONTENT_LENGTH] = L"10";
        m_winInet.body.clear();
        for (char byte = '0'; byte <= '9'; ++byte)
        {
            m_winInet.body.emplace_back(1, byte);
        }
    }
};

TEST_P(DownloadCutBodyTest, AReadThatFailsDeletesTheFile)
{
    m_gates.Fail({"InternetReadFile", GetParam() + 1}, ERROR_INTERNET_CONNECTION_RESET);
    Download();
    ExpectConnectError();
}

// Nobody compares with the announced length: what WinINet takes for the end is the end.
TEST_P(DownloadCutBodyTest, AnEarlyEndLeavesWhatHasCome)
{
    m_winInet.body.resize(static_cast<size_t>(GetParam()));
    Download();
    EXPECT_EQ(FileLeft(), std::string("0123456789").substr(0, static_cast<size_t>(GetParam())));
    ExpectShown(Installer());
}

INSTANTIATE_TEST_SUITE_P(Bytes, DownloadCutBodyTest, testing::Range(0, 11));

TEST_F(DownloadRequestTest, AFileThatCannotBeWrittenIsDeletedWithWhatItHas)
{
    m_gates.Fail({"WriteFile", 2}, ERROR_DISK_FULL);
    Download();
    ExpectConnectError();
}

// 3 of 10 MiB in the first 30 seconds.
TEST_F(DownloadRequestTest, ShowsPercentageTimeAndRate)
{
    constexpr int kReads = 3 * 1024;
    m_winInet.headers[HTTP_QUERY_CONTENT_LENGTH] = L"10485760";
    m_winInet.body = {std::string(size_t{kReads} * 1024, 'x')};
    m_system.ticks.assign(kReads, 5000);
    m_system.ticks.push_back(35'000);
    const SeenDownload seen = SeenBeforeRead(kReads + 1);
    EXPECT_EQ(seen.caption, L"Download: 30% of setup.exe");
    EXPECT_EQ(seen.time, L"70s (3072kb of 10240kb complete)");
    EXPECT_EQ(seen.rate, L"104 kb/s");
    EXPECT_EQ(seen.status, L"Download started");
}

TEST_F(DownloadRequestTest, TheRateIsOfTheTimeSinceItWasShownLast)
{
    m_winInet.body = {std::string(1024, 'x'), std::string(1024, 'x')};
    m_system.ticks = {0, 2000, 3001};
    EXPECT_EQ(SeenBeforeRead(3).rate, L"1 kb/s");
}

TEST_F(DownloadRequestTest, TimeAndRateAreNotShownWithinASecond)
{
    m_system.ticks = {0, 500, 1000};
    const SeenDownload seen = SeenBeforeRead(3);
    EXPECT_EQ(seen.caption, L"Download: 100% of setup.exe");
    EXPECT_EQ(seen.time, L"");
    EXPECT_EQ(seen.rate, L"");
}

TEST_F(DownloadRequestTest, TimeAndRateAreShownOnceASecondIsOver)
{
    m_system.ticks = {0, 500, 1001};
    const SeenDownload seen = SeenBeforeRead(3);
    EXPECT_EQ(seen.time, L"0s (1kb of 1kb complete)");
    EXPECT_EQ(seen.rate, L"1 kb/s");
}

TEST_F(DownloadRequestTest, WithoutALengthTheRateAloneIsShown)
{
    m_winInet.headers.erase(HTTP_QUERY_CONTENT_LENGTH);
    m_winInet.body = {std::string(1024, 'x'), std::string(1024, 'x'), std::string(1024, 'x')};
    m_system.ticks = {0, 0, 0, 1024};
    const SeenDownload seen = SeenBeforeRead(4);
    EXPECT_EQ(seen.caption, kTemplateCaption);
    EXPECT_EQ(seen.time, L"");
    EXPECT_EQ(seen.rate, L"3 kb/s");
}

TEST_F(DownloadRequestTest, ZeroPercentIsNotShown)
{
    m_winInet.headers[HTTP_QUERY_CONTENT_LENGTH] = L"102500";
    EXPECT_EQ(SeenBeforeRead(2).caption, kTemplateCaption);
}

// The counts are unsigned, and what is left is computed with them.
TEST_F(DownloadRequestTest, MoreThanTheAnnouncedLengthShowsOddNumbers)
{
    m_winInet.headers[HTTP_QUERY_CONTENT_LENGTH] = L"1000";
    m_system.ticks = {0, 0, 2000};
    const SeenDownload seen = SeenBeforeRead(3);
    EXPECT_EQ(seen.caption, L"Download: 152% of setup.exe");
    EXPECT_EQ(seen.time, L"5636439s (1kb of 0kb complete)");
}

// The clock starts again at 0 every 49.7 days: the time since the last look is right all the same, the time
// since the start is not.
TEST_F(DownloadRequestTest, AClockThatStartsAgainShowsANegativeTimeOnce)
{
    m_winInet.headers[HTTP_QUERY_CONTENT_LENGTH] = L"2048";
    m_system.ticks = {0xFFFFFF00, 1000};
    const SeenDownload seen = SeenBeforeRead(2);
    EXPECT_EQ(seen.time, L"-4294966s (1kb of 2kb complete)");
    EXPECT_EQ(seen.rate, L"0 kb/s");
}

} // namespace
} // namespace orva::test
