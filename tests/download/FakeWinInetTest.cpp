// That the WinINet of these tests keeps the documented contract which the others count on.
#include "download/FakeWinInet.h"

#include <gmock/gmock.h>

#include <thread>

namespace orva::test
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

class FakeWinInetTest : public testing::Test
{
protected:
    /// A request that has been sent.
    FakeWinInetTest()
    {
        m_session = InternetOpenW(L"agent", INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0);
        m_connection =
            InternetConnectW(m_session, L"server", 80, nullptr, nullptr, INTERNET_SERVICE_HTTP, 0, 0);
        m_request = HttpOpenRequestW(m_connection, nullptr, L"/", nullptr, nullptr, nullptr, 0, 0);
        m_winInet.body = {"data"};
        EXPECT_TRUE(HttpSendRequestW(m_request, nullptr, 0, nullptr, 0));
    }

    /// The last error of a read that fails, 0 for one that succeeds.
    static DWORD Read(HINTERNET request)
    {
        char buffer[16];
        DWORD read = 0;
        return InternetReadFile(request, buffer, sizeof buffer, &read) ? 0 : GetLastError();
    }

    /// The error of a read under which this handle is closed.
    DWORD ReadUnderClose(HINTERNET closed)
    {
        const CallId read{"InternetReadFile", 1};
        m_gates.Hold(read, CallStage::Pending);
        DWORD error = 0;
        std::thread reader([&] { error = Read(m_request); });
        EXPECT_TRUE(m_gates.WaitUntilHeld(read, CallStage::Pending));
        EXPECT_TRUE(InternetCloseHandle(closed));
        reader.join();
        return error;
    }

    CCallGates m_gates;
    CFakeWinInet m_winInet{m_gates};
    HINTERNET m_session;
    HINTERNET m_connection;
    HINTERNET m_request;
};

TEST_F(FakeWinInetTest, ClosingTheRequestEndsItsPendingCall)
{
    EXPECT_EQ(ReadUnderClose(m_request), DWORD{ERROR_INTERNET_OPERATION_CANCELLED});
}

TEST_F(FakeWinInetTest, ClosingTheConnectionEndsAPendingCallOfItsRequest)
{
    EXPECT_EQ(ReadUnderClose(m_connection), DWORD{ERROR_INTERNET_OPERATION_CANCELLED});
}

TEST_F(FakeWinInetTest, ClosingTheSessionEndsAPendingCallOfItsRequest)
{
    EXPECT_EQ(ReadUnderClose(m_session), DWORD{ERROR_INTERNET_OPERATION_CANCELLED});
    EXPECT_THAT(m_winInet.OpenHandles(), IsEmpty());
}

TEST_F(FakeWinInetTest, AnotherRequestIsNotDisturbed)
{
    const HINTERNET other = HttpOpenRequestW(m_connection, nullptr, L"/", nullptr, nullptr, nullptr, 0, 0);
    InternetCloseHandle(m_request);
    EXPECT_TRUE(HttpSendRequestW(other, nullptr, 0, nullptr, 0));
    EXPECT_EQ(Read(other), 0U);
    EXPECT_THAT(m_winInet.OpenHandles(), ElementsAre("session", "connection", "request 2"));
}

TEST_F(FakeWinInetTest, AClosedHandleIsInvalidAndClosedOnce)
{
    EXPECT_TRUE(InternetCloseHandle(m_request));
    EXPECT_EQ(Read(m_request), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_FALSE(InternetCloseHandle(m_request));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
}

TEST_F(FakeWinInetTest, AHandleOfAnotherKindOrARequestThatWasNotSentFails)
{
    EXPECT_EQ(Read(m_connection), DWORD{ERROR_INTERNET_INCORRECT_HANDLE_TYPE});
    EXPECT_EQ(Read(nullptr), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_EQ(Read(HttpOpenRequestW(m_connection, nullptr, L"/", nullptr, nullptr, nullptr, 0, 0)),
              DWORD{ERROR_INTERNET_INCORRECT_HANDLE_STATE});
}

TEST_F(FakeWinInetTest, AQueryTellsTheSizeItNeeds)
{
    m_winInet.headers = {{HTTP_QUERY_STATUS_CODE, L"200"}};
    wchar_t text[4];
    DWORD size = 3 * sizeof(wchar_t);
    EXPECT_FALSE(HttpQueryInfoW(m_request, HTTP_QUERY_STATUS_CODE, text, &size, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_EQ(size, sizeof text);
    EXPECT_TRUE(HttpQueryInfoW(m_request, HTTP_QUERY_STATUS_CODE, text, &size, nullptr));
    EXPECT_STREQ(text, L"200");
    EXPECT_EQ(size, 3 * sizeof(wchar_t));
    EXPECT_FALSE(HttpQueryInfoW(m_request, HTTP_QUERY_DATE, text, &size, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_HTTP_HEADER_NOT_FOUND});
}

} // namespace
} // namespace orva::test
