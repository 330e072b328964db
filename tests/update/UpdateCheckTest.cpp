// The update check as its callers see it: what is requested, shown, logged and returned.
#include "update/UpdateCheck.h"

#include "harness/ImportHook.h"
#include "update/UpdateFixture.h"

#include <gmock/gmock.h>

#include <algorithm>
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

class EmptyReplyTest : public UpdateCheckTest, public testing::WithParamInterface<CHttpReply>
{
};

TEST_P(EmptyReplyTest, IsToldOnlyWhenAskedFor)
{
    Publish(GetParam());
    for (const bool silent : {true, false})
    {
        SCOPED_TRACE(silent);
        if (!silent)
        {
            m_user.AnswerBox(kConnectError);
        }
        const CLogMark log;
        EXPECT_TRUE(Check(silent));
        EXPECT_TRUE(log.Has("CheckForUpdate() inputData.length() == 0 "));
        // The line belongs to the end of every request, failed or not.
        EXPECT_TRUE(log.Has("CheckForUpdate() TextRequest succeeded "));
    }
}

INSTANTIATE_TEST_SUITE_P(EmptyAndFailed, EmptyReplyTest,
                         testing::Values(CHttpReply(200, ""), CHttpReply(500, "broken")));

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

TEST_F(UpdateCheckTest, LinkThatIsNoStringRaisesTheTypeErrorOnlyWhenItIsUsed)
{
    Publish(UpdateInfo("1.3.0", R"(, "downloadLink": 7, "description": {"default": "text"})"));
    ExpectOffer(kLaterButton);
    EXPECT_TRUE(Check(true));

    ExpectOffer(kInstallButton);
    EXPECT_EQ(CheckRaises(true), "value type is 4 not 2");
}

TEST_F(UpdateCheckTest, WithoutAPublishersKeyASignatureIsIgnoredWhateverItIs)
{
    for (const char* const member : {"", R"(, "signature": "MAYCAQECAQE=")", R"(, "signature": 7)"})
    {
        Publish(UpdateInfo("1.3.0", R"(, "downloadLink": "nowhere", "description": {"default": "text"})" +
                                        std::string(member)));
        ExpectOffer(kInstallButton);
        m_user.AnswerBox(kUrlNotParsed);
        const CLogMark log;
        EXPECT_TRUE(Check(true));
        const std::vector<std::string> lines = log.Texts();
        EXPECT_THAT(
            std::vector(std::find(lines.begin(), lines.end(), "CheckForUpdate() buildNumber 0"), lines.end()),
            testing::ElementsAre("CheckForUpdate() buildNumber 0", "CheckJSONObject",
                                 "DetermineUpdateDescription", "StartDownloadDialog"))
            << member;
        EXPECT_EQ(m_server.Requests().size(), m_server.RequestsFor(kUpdateInfoPath).size());
    }
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
