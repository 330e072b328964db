// The update check as its callers see it: what is requested, shown, logged and returned.
#include "update/UpdateCheck.h"

#include "harness/ImportHook.h"
#include "update/UpdateFixture.h"

#include <gmock/gmock.h>

#include <ostream>
#include <stdexcept>

namespace orva::test
{
namespace
{

constexpr char kLaterLink[] = "http://files.orva.example/setup.exe";

class UpdateCheckTest : public CUpdateTest
{
protected:
    // Runs the check in one mode. The user must take all of his steps, and no other window may be shown.
    bool Check(bool silent)
    {
        m_user.Start();
        const bool result = CheckForUpdate(m_owner.Handle(), silent);
        m_seen = m_user.Finish();
        return result;
    }

    void CheckExplicit()
    {
        m_user.Start();
        CheckForUpdateExplicit(m_owner.Handle());
        m_seen = m_user.Finish();
    }

    // The text of the exception that leaves the check.
    std::string CheckRaises(bool silent)
    {
        m_user.Start();
        std::string text = "(none)";
        try
        {
            CheckForUpdate(m_owner.Handle(), silent);
        }
        catch (const std::exception& exception)
        {
            text = exception.what();
        }
        m_seen = m_user.Finish();
        return text;
    }

    CUserScript& ExpectOffer(int button)
    {
        return m_user.OnDialog(kOfferCaption, [=](HWND dialog) { ClickButton(dialog, button); });
    }

    std::vector<CSeenWindow> m_seen;
};

TEST_F(UpdateCheckTest, RequestsTheFileOfTheServiceHostWithATrailingQuestionMark)
{
    Publish(UpdateInfo("1.2.0", ""));
    EXPECT_FALSE(Check(true));
    const auto requests = m_server.Requests();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].method, "GET");
    EXPECT_EQ(requests[0].path, kUpdateInfoPath);
    EXPECT_EQ(requests[0].query, std::optional<std::string>(""));
    EXPECT_EQ(requests[0].authority.substr(0, 16), "www.orva.example");
}

TEST_F(UpdateCheckTest, EqualVersionSaysLatestWhenAskedForWithATrailingBlank)
{
    Publish(UpdateInfo("1.2.0", ""));
    m_user.AnswerBox(kLatest);
    const CLogMark log;
    CheckExplicit();
    ASSERT_EQ(m_seen.size(), 1u);
    EXPECT_EQ(m_seen[0].caption, kProduct);
    EXPECT_EQ(m_seen[0].owner, m_owner.Handle());
    EXPECT_EQ(m_seen[0].buttons.size(), 1u);
    EXPECT_EQ(log.Texts().at(0), "CheckForUpdateExplicit");
    EXPECT_EQ(log.Texts().at(1), "CheckForUpdate");
}

TEST_F(UpdateCheckTest, EqualVersionShowsNothingSilentlyAndWritesTheseLines)
{
    const std::string body = UpdateInfo("1.2.0", "");
    Publish(body);
    const CLogMark log;
    EXPECT_FALSE(Check(true));
    EXPECT_TRUE(m_seen.empty());
    std::vector<std::string> lines = log.Texts();
    std::erase_if(lines, [](const std::string& line) { return line.starts_with("CHttpRequest::"); });
    EXPECT_THAT(lines, testing::ElementsAre(
                           "CheckForUpdate",
                           "CheckForUpdate() http://www.orva.example/downloads/outlook/UpdateInfo.txt ",
                           "CheckForUpdate() TextRequest succeeded ", "CheckForUpdate() " + body + " ",
                           "CheckForUpdate() parse json ", "CheckJSONObject", "CheckJSONObject",
                           "CheckForUpdate() majorVersion 1", "CheckForUpdate() minorVersion 2",
                           "CheckForUpdate() buildNumber 0"));
}

TEST_F(UpdateCheckTest, NumbersAreTruncatedToTheirLow32Bits)
{
    // 4294967297 is 2^32 + 1, 18446744073709551615 is 2^64 - 1 and so -1.
    Publish(UpdateInfo("4294967297.2.18446744073709551615", ""));
    const CLogMark log;
    EXPECT_FALSE(Check(true));
    EXPECT_TRUE(log.Has("CheckForUpdate() majorVersion 1"));
    EXPECT_TRUE(log.Has("CheckForUpdate() buildNumber -1"));
}

TEST_F(UpdateCheckTest, NewerVersionIsOfferedAndLaterDownloadsNothingAndAsksNoMore)
{
    Publish(OfferOf(kLaterLink));
    ExpectOffer(kLaterButton);
    CheckExplicit();
    ASSERT_EQ(m_seen.size(), 1u);
    EXPECT_EQ(m_seen[0].Control(kAvailableText), L"Available version: 1.3.0");
    EXPECT_EQ(m_seen[0].Control(kInstalledText), L"Installed version: 1.2.0");
    EXPECT_EQ(m_seen[0].Control(kDescriptionText), L"Faster contacts.");
    EXPECT_EQ(m_server.Requests().size(), 1u);
}

TEST_F(UpdateCheckTest, DeclinedVersionIsOfferedAgainByTheNextCheckWhichFetchesAnew)
{
    Publish(OfferOf(kLaterLink));
    ExpectOffer(kLaterButton);
    ExpectOffer(kLaterButton);
    m_user.Start();
    EXPECT_TRUE(CheckForUpdate(m_owner.Handle(), true));
    EXPECT_TRUE(CheckForUpdate(m_owner.Handle(), true));
    EXPECT_EQ(m_user.Finish().size(), 2u);
    EXPECT_EQ(m_server.RequestsFor(kUpdateInfoPath).size(), 2u);
}

TEST_F(UpdateCheckTest, InstallHandsTheLinkToTheDownload)
{
    // A link without a file name is refused by the download with a message, before any window or request.
    Publish(OfferOf("nowhere"));
    ExpectOffer(kInstallButton);
    m_user.AnswerBox(kUrlNotParsed);
    const CLogMark log;
    EXPECT_TRUE(Check(true));
    EXPECT_TRUE(log.Has("StartDownloadDialog"));
    ASSERT_EQ(m_seen.size(), 2u);
    EXPECT_EQ(m_seen[1].owner, m_owner.Handle());
}

TEST_F(UpdateCheckTest, OtherMembersOfRootAndEntryAreIgnored)
{
    Publish(R"({"x86": {"majorVersion": 9}, "x64": {"majorVersion": 1, "extra": [1], "minorVersion": 2,)"
            R"( "buildNumber": 0}, "X64": 5})");
    EXPECT_FALSE(Check(true));
}

/// A file that is no offer, and what the user reads in each mode.
struct CNoOffer
{
    const char* what;
    CHttpReply reply;
    std::vector<const wchar_t*> shownWhenAsked;
    std::vector<const wchar_t*> shownSilently;
    /// A line of the log.
    const char* logged = "CheckJSONObject";
};

void PrintTo(const CNoOffer& file, std::ostream* stream)
{
    *stream << file.what;
}

class NoOfferTest : public UpdateCheckTest, public testing::WithParamInterface<CNoOffer>
{
};

TEST_P(NoOfferTest, ShowsThisInEachModeAndGivesTrue)
{
    Publish(GetParam().reply);
    for (const bool silent : {true, false})
    {
        SCOPED_TRACE(silent);
        for (const wchar_t* const text : silent ? GetParam().shownSilently : GetParam().shownWhenAsked)
        {
            m_user.AnswerBox(text);
        }
        const CLogMark log;
        EXPECT_TRUE(Check(silent));
        EXPECT_TRUE(log.Has(GetParam().logged));
        // The line belongs to the end of every request, failed or not.
        EXPECT_TRUE(log.Has("CheckForUpdate() TextRequest succeeded "));
    }
}

CHttpReply File(std::string body)
{
    return CHttpReply(200, std::move(body));
}

constexpr char kEmptyLogged[] = "CheckForUpdate() inputData.length() == 0 ";

INSTANTIATE_TEST_SUITE_P(
    Files, NoOfferTest,
    testing::Values(
        CNoOffer{"no entry", File(R"({"X64": {}})"), {kNotParsed}, {}},
        CNoOffer{"null entry", File(R"({"x64": null})"), {kNotParsed}, {}},
        CNoOffer{"null root", File("null"), {kNotParsed}, {}},
        CNoOffer{"HTML page",
                 File("<html><body>Not here</body></html>"),
                 {kConnectError, kNotParsed},
                 {kConnectError},
                 "CheckForUpdate() exception thrown while parsing json "},
        CNoOffer{"empty file", File(""), {kConnectError}, {}, kEmptyLogged},
        CNoOffer{"failed request", CHttpReply(500, "broken"), {kConnectError}, {}, kEmptyLogged},
        CNoOffer{"no link",
                 File(UpdateInfo("1.2.1", R"(, "description": {"default": "text"})")),
                 {kNotParsed},
                 {}},
        CNoOffer{"null link",
                 File(UpdateInfo("1.2.1", R"(, "downloadLink": null, "description": {"default": "text"})")),
                 {kNotParsed},
                 {}},
        CNoOffer{"no description",
                 File(UpdateInfo("1.2.1", R"(, "downloadLink": "http://x/y")")),
                 {kNotParsed},
                 {},
                 "DetermineUpdateDescription"}));

TEST_F(UpdateCheckTest, TextCutAfterTheCompleteEntryIsReportedAndStillOffered)
{
    std::string body = OfferOf(kLaterLink);
    body.pop_back();
    Publish(body);
    m_user.AnswerBox(kConnectError);
    ExpectOffer(kLaterButton);
    EXPECT_TRUE(Check(true));
    ASSERT_EQ(m_seen.size(), 2u);
    EXPECT_EQ(m_seen[1].Control(kAvailableText), L"Available version: 1.3.0");
}

std::vector<std::wstring> g_boxes;

int WINAPI NoteBox(HWND, LPCWSTR text, LPCWSTR, UINT)
{
    g_boxes.emplace_back(text);
    return IDOK;
}

// What comes of a reply that is cut in its body, after each byte; tests/support cuts the whole reply.
TEST_F(UpdateCheckTest, TheBeginningOfAnOfferIsABrokenFileAndNoOffer)
{
    const CImportHook hook(GetModuleHandleW(nullptr), "USER32.dll", "MessageBoxW", &NoteBox);
    const std::string offer = OfferOf(kLaterLink);
    m_user.Start();
    for (size_t size = 1; size <= offer.rfind('"'); ++size)
    {
        Publish(offer.substr(0, size));
        g_boxes.clear();
        CheckForUpdateOnClick("CButton::OnClick", m_owner.Handle());
        EXPECT_THAT(g_boxes, testing::ElementsAre(kConnectError, kNotParsed)) << size;
    }
    EXPECT_TRUE(m_user.Finish().empty());
}

TEST_F(UpdateCheckTest, HundredsOfThousandsOfBracketsAreABrokenFileAndNoCrash)
{
    Publish(std::string(250'000, '['));
    m_user.AnswerBox(kConnectError);
    // What was read up to the error is an array, and an array is no object.
    EXPECT_EQ(CheckRaises(true), "value type is 1 not 0");
}

TEST_F(UpdateCheckTest, WrongTypesRaiseTheTypeErrorAndShowNothing)
{
    const std::pair<const char*, const char*> files[] = {
        {"[]", "value type is 1 not 0"},
        {R"({"x64": "1.3.0"})", "value type is 2 not 0"},
        {R"({"x64": {"majorVersion": "1", "minorVersion": 3, "buildNumber": 0}})", "value type is 2 not 4"},
        {R"({"x64": {"majorVersion": 1.0, "minorVersion": 3, "buildNumber": 0}})", "value type is 5 not 4"},
        // All three numbers are read, though the major number decides.
        {R"({"x64": {"majorVersion": 2, "minorVersion": 0}})", "value type is 6 not 4"},
    };
    for (const auto& [file, text] : files)
    {
        Publish(file);
        EXPECT_EQ(CheckRaises(false), text) << file;
    }
}

TEST_F(UpdateCheckTest, LinkThatIsNoStringRaisesTheTypeErrorOnlyWhenItIsUsed)
{
    Publish(UpdateInfo("1.3.0", R"(, "downloadLink": 7, "description": {"default": "text"})"));
    ExpectOffer(kLaterButton);
    EXPECT_TRUE(Check(true));

    ExpectOffer(kInstallButton);
    EXPECT_EQ(CheckRaises(true), "value type is 4 not 2");
}

TEST_F(UpdateCheckTest, OwnerIsNeitherDisabledNorEnabledByTheCheckItself)
{
    Publish(UpdateInfo("1.2.0", ""));
    EXPECT_FALSE(Check(true));
    EXPECT_FALSE(IsWindowEnabled(m_owner.Handle()));
    EnableWindow(m_owner.Handle(), TRUE);
    EXPECT_FALSE(CheckForUpdate(m_owner.Handle(), true));
    EXPECT_TRUE(IsWindowEnabled(m_owner.Handle()));
}

} // namespace
} // namespace orva::test
