// How the text forms read a response: UTF-8, byte-order mark, gzip, bounds, and the lines of the log.
#include "harness/Compression.h"
#include "harness/Text.h"
#include "support/HttpFixture.h"

namespace
{

using namespace orva::test;

constexpr char kGzipMessage[] = "Could not decode gzip content\n";
constexpr char kEntry[] = "CHttpRequest::PerformTextRequest";
constexpr char kBomLine[] = "CHttpRequest::PerformTextRequest() check for BOM ";

class HttpText : public HttpFixture
{
protected:
    // Fetches a reply and returns what is written to standard output meanwhile.
    std::string OutputOf(const CHttpReply& reply, Fetched& fetched)
    {
        testing::internal::CaptureStdout();
        fetched = Fetch(reply);
        return testing::internal::GetCapturedStdout();
    }

    static CHttpReply Coded(const std::string& coding, const std::string& body)
    {
        return CHttpReply(200, body).Header("Content-Encoding", coding);
    }
};

// The log's last lines of a body of `length` bytes with this text.
std::vector<std::string> LinesOfText(size_t length, const std::string& text)
{
    const std::string form = std::string(kEntry) + "() ";
    const std::string characters = std::to_string(text.size() + 1);
    return {form + "newContentLenght " + std::to_string(length),
            form + "num_chars " + characters,
            form + "ret " + characters,
            form + "response " + text,
            form + "delete resp ",
            form + "deleted resp "};
}

} // namespace

TEST_F(HttpText, TheShortestFormWritesItsEntryThreeTimes)
{
    m_server.On("/a", CHttpReply(200, "{}"));
    const CDebugOutput output;
    EXPECT_EQ(CHttpRequest::PerformTextRequest(m_server.Url("/a"), {}, kGet), L"{}");
    const std::vector<std::string> first = {kEntry, kEntry, kEntry,
                                            "CHttpRequest::PerformTextRequest() response content lenght 2",
                                            "CHttpRequest::PerformTextRequest() response httpStatus 200"};
    EXPECT_EQ(output.Lines(), Joined(first, LinesOfText(2, "{}")));
}

TEST_F(HttpText, TheFormsWithOneResultMoreWriteItTwice)
{
    m_server.On("/a", CHttpReply(200, "{}"));
    const CDebugOutput output;
    struct tm date = {};
    EXPECT_EQ(CHttpRequest::PerformTextRequest(m_server.Url("/a"), {}, kGet, date), L"{}");
    EXPECT_THAT(output.Lines(), testing::Contains(kEntry).Times(2));
    EXPECT_EQ(output.Lines().size(), 10u);
    char text[32] = {};
    std::strftime(text, sizeof(text), "%Y-%m-%d %H:%M:%S", &date);
    EXPECT_STREQ(text, "2011-01-20 14:03:07");

    std::uint32_t status = 0;
    EXPECT_EQ(CHttpRequest::PerformTextRequest(m_server.Url("/a"), {}, kGet, status), L"{}");
    EXPECT_THAT(output.Lines(), testing::Contains(kEntry).Times(4));
    EXPECT_EQ(output.Lines().size(), 20u);
    EXPECT_EQ(status, 200u);
}

TEST_F(HttpText, TheLongestFormWritesItOnceAndGivesDateAndStatus)
{
    const Fetched fetched = Fetch(CHttpReply(201, "abc"));
    EXPECT_EQ(fetched.text, L"abc");
    EXPECT_EQ(fetched.status, 201u);
    EXPECT_EQ(fetched.date.tm_year, 111);
    EXPECT_EQ(fetched.date.tm_hour, 14);
    EXPECT_EQ(fetched.lines, Lines(3, 201, Joined({kBomLine}, LinesOfText(3, "abc"))));
}

TEST_F(HttpText, AnEmptyBodyIsAnEmptyText)
{
    const Fetched empty = Fetch(CHttpReply(200, ""));
    EXPECT_EQ(empty.text, L"");
    EXPECT_EQ(empty.lines, Lines(0, 200, LinesOfText(0, "")));

    const Fetched noContent = Fetch(CHttpReply(204));
    EXPECT_EQ(noContent.text, L"");
    EXPECT_EQ(noContent.status, 204u);
    EXPECT_EQ(noContent.lines, Lines(0, 204, LinesOfText(0, "")));
}

TEST_F(HttpText, OtherStatusesGiveAnEmptyTextAndTheStatus)
{
    for (const int status : {202, 206, 400, 404, 500, 503})
    {
        const Fetched fetched = Fetch(CHttpReply(status, "{\"a\":1}"));
        EXPECT_EQ(fetched.text, L"");
        EXPECT_EQ(fetched.status, static_cast<std::uint32_t>(status));
        EXPECT_EQ(fetched.date.tm_year, 111);
        EXPECT_EQ(fetched.lines, Lines(0, status, kLinesOfNoBody));
    }
}

TEST_F(HttpText, TheByteOrderMarkIsDropped)
{
    const Fetched with = Fetch(CHttpReply(200, "\xEF\xBB\xBF{\"a\":1}"));
    EXPECT_EQ(with.text, L"{\"a\":1}");
    EXPECT_EQ(with.lines, Lines(10, 200, Joined({kBomLine}, LinesOfText(7, "{\"a\":1}"))));
    EXPECT_EQ(TextOf("{\"a\":1}"), with.text);
    EXPECT_EQ(TextOf("\xEF\xBB\xBF"), L"");
    EXPECT_EQ(TextOf("\xEF\xBB\xBF\xEF\xBB\xBFx"), L"\xFEFFx");
}

TEST_F(HttpText, ABodyOfTwoBytesIsNotCheckedForTheMark)
{
    EXPECT_THAT(Fetch(CHttpReply(200, "{}")).lines, testing::Not(testing::Contains(kBomLine)));
    EXPECT_THAT(Fetch(CHttpReply(200, "{} ")).lines, testing::Contains(kBomLine));
}

TEST_F(HttpText, ReadsUtf8)
{
    EXPECT_EQ(TextOf("\xC3\xA4\xE2\x82\xAC\xD0\x96\xF0\x9F\x98\x80"), L"\x00E4\x20AC\x0416\xD83D\xDE00");
}

TEST_F(HttpText, TheLogHasTheLowByteOfEveryCharacter)
{
    EXPECT_THAT(Fetch(CHttpReply(200, "\xC3\xA4\xD0\x96")).lines,
                testing::IsSupersetOf({"CHttpRequest::PerformTextRequest() newContentLenght 4",
                                       "CHttpRequest::PerformTextRequest() num_chars 3",
                                       "CHttpRequest::PerformTextRequest() response \xE4\x16"}));
}

TEST_F(HttpText, BytesThatAreNoUtf8DoNoHarm)
{
    const std::wstring text = TextOf("a\xFF\xC3(b");
    ASSERT_GE(text.size(), 3u);
    EXPECT_EQ(text.front(), L'a');
    EXPECT_EQ(text.back(), L'b');
}

TEST_F(HttpText, TheTextEndsBeforeTheFirstZeroByte)
{
    const Fetched fetched = Fetch(CHttpReply(200, std::string("{}\0{}", 5)));
    EXPECT_EQ(fetched.text, L"{}");
    EXPECT_THAT(fetched.lines,
                testing::IsSupersetOf({"CHttpRequest::PerformTextRequest() response content lenght 5",
                                       "CHttpRequest::PerformTextRequest() newContentLenght 5",
                                       "CHttpRequest::PerformTextRequest() num_chars 3"}));
}

TEST_F(HttpText, Utf16ResponsesGiveAnEmptyText)
{
    for (const char* type :
         {"text/plain; charset=utf-16", "text/plain; charset=UTF-16", "x/utf-16LE", "UTF-16"})
    {
        const Fetched fetched = Fetch(CHttpReply(200, "{}").Header("Content-Type", type));
        EXPECT_EQ(fetched.text, L"") << type;
        EXPECT_EQ(fetched.status, 200u);
        EXPECT_EQ(fetched.lines, Lines(2, 200,
                                       {"CHttpRequest::PerformTextRequest() delete resp ",
                                        "CHttpRequest::PerformTextRequest() deleted resp "}));
    }
}

TEST_F(HttpText, OtherTypesAreReadAsUtf8)
{
    for (const char* type :
         {"text/plain; charset=Utf-16", "text/plain; charset=utf16", "text/plain; charset=utf-8",
          "text/html; charset=iso-8859-1", "application/json"})
    {
        EXPECT_EQ(Fetch(CHttpReply(200, "\xC3\xA4").Header("Content-Type", type)).text, L"\x00E4") << type;
    }
    EXPECT_EQ(Fetch(CHttpReply(200, "\xC3\xA4").Without("Content-Type")).text, L"\x00E4");
}

TEST_F(HttpText, ReadsABodyThatComesInPieces)
{
    const std::string body(5'000, '{');
    EXPECT_EQ(Fetch(CHttpReply(200, body).Chunked(700)).text, Widen(body));
    EXPECT_EQ(Fetch(CHttpReply(200, body).Without("Content-Length")).text, Widen(body));
    EXPECT_EQ(Fetch(CServerScript().SendSlowly(CHttpReply(200, "{\"a\":1}").Bytes(), 9, 5).Close()).text,
              L"{\"a\":1}");
}

TEST_F(HttpText, GzipBodiesAreInflatedWhateverTheCaseOfTheirCoding)
{
    const std::string body = "{\"x64\":{\"majorVersion\":1}}";
    for (const char* coding : {"gzip", "GZIP", "x-gzip", "X-Gzip"})
    {
        Fetched fetched;
        EXPECT_EQ(OutputOf(Coded(coding, GzipBytes(body)), fetched), "");
        EXPECT_EQ(fetched.text, Widen(body)) << coding;
        EXPECT_EQ(fetched.lines[1], "CHttpRequest::PerformTextRequest() response content lenght 26");
    }
}

TEST_F(HttpText, OtherCodingsAreNotInflated)
{
    const std::string zlib = ZlibBytes("{}");
    for (const char* coding : {"deflate", "gzip, gzip", "br", "identity", "xgzip"})
    {
        m_server.On("/a", Coded(coding, zlib));
        const auto response = CHttpRequest::PerformRequest(m_server.Url("/a"), {}, kGet);
        ASSERT_NE(response->m_data, nullptr);
        EXPECT_EQ(std::string(response->m_data.get(), response->m_length), zlib) << coding;
    }
}

TEST_F(HttpText, AGzipBodyThatCannotBeDecodedGivesAMessageOnStandardOutputAndWhatWasDecoded)
{
    Fetched fetched;
    EXPECT_EQ(OutputOf(Coded("gzip", CutOff(GzipBytes("{\"a\":1}"), 8)), fetched), kGzipMessage);
    EXPECT_EQ(fetched.text, L"{\"a\":1}");
    EXPECT_EQ(fetched.status, 200u);

    EXPECT_EQ(OutputOf(Coded("gzip", "{\"a\":1}"), fetched), kGzipMessage);
    EXPECT_EQ(fetched.text, L"");
    EXPECT_EQ(fetched.status, 200u);
    EXPECT_EQ(fetched.lines[1], "CHttpRequest::PerformTextRequest() response content lenght 0");
}
