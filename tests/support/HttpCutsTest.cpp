// The reply with the update file, cut off at each of its bytes: what WinINet makes of that, and so the
// client.
#include "harness/Text.h"
#include "support/HttpFixture.h"

#include <stdexcept>

namespace
{

using namespace orva::test;

class HttpCuts : public HttpFixture
{
protected:
    // The text that comes of the reply's first `size` bytes, or "(no date)".
    std::wstring TextOfCut(size_t size)
    {
        try
        {
            const Fetched fetched = Fetch(CServerScript().Send(m_bytes.substr(0, size)).Close());
            EXPECT_EQ(fetched.status, 200u) << size;
            return fetched.text;
        }
        catch (const std::out_of_range& error)
        {
            EXPECT_STREQ(error.what(), "invalid vector<T> subscript");
            return L"(no date)";
        }
    }

    const CHttpReply m_reply{200, "{\"x64\":{\"majorVersion\":1}}"};
    const std::string m_bytes = m_reply.Bytes();
    // Behind the line with the date.
    const size_t m_dateEnd = m_bytes.find("\r\n", m_bytes.find(kReplyDate)) + 2;
};

} // namespace

TEST_F(HttpCuts, WithoutItsDatesWholeLineAReplyIsAnException)
{
    for (size_t size = 0; size < m_dateEnd; ++size)
    {
        EXPECT_EQ(TextOfCut(size), L"(no date)") << size;
    }
}

TEST_F(HttpCuts, WithoutItsBodyAReplyIsAnEmptyText)
{
    for (size_t size = m_dateEnd; size <= m_reply.Head().size(); ++size)
    {
        EXPECT_EQ(TextOfCut(size), L"") << size;
    }
}

// WinINet decides whether a body is complete: whatever it delivers without an error is used.
TEST_F(HttpCuts, ABodyThatEndsEarlyGivesWhatHasCome)
{
    const std::wstring body = Widen(m_reply.WireBody());
    for (size_t size = 1; size <= body.size(); ++size)
    {
        EXPECT_EQ(TextOfCut(m_reply.Head().size() + size), body.substr(0, size));
    }
}
