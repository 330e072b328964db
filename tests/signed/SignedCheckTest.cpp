// The update check of a build with a key: without a signature nothing is offered, and what is offered is
// verified.
#include "harness/Signer.h"
#include "ui/DownloadFixture.h"
#include "update/UpdateCheck.h"
#include "update/UpdateFixture.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace orva::test
{
namespace
{

using testing::ElementsAre;

constexpr char kVersionLine[] = "CheckForUpdate() buildNumber 0";

// An offer of 1.3.0 with these further members (JSON text that starts with a comma).
std::string OfferWith(const std::string& link, const std::string& more)
{
    return UpdateInfo("1.3.0", ", \"downloadLink\": \"" + link +
                                   "\", \"description\": {\"default\": \"Faster contacts.\"}" + more);
}

std::string SignatureMember(const std::string& signature)
{
    return ", \"signature\": \"" + signature + "\"";
}

class SignedCheckTest : public CUpdateTest
{
protected:
    void ExpectOffer(int button)
    {
        m_user.OnDialog(kOfferCaption, [=](HWND dialog) { ClickButton(dialog, button); });
    }

    // The lines of the log behind the published version's.
    static std::vector<std::string> LinesAfterVersion(const CLogMark& log)
    {
        const std::vector<std::string> lines = log.Texts();
        const auto version = std::find(lines.begin(), lines.end(), kVersionLine);
        return version == lines.end() ? lines : std::vector<std::string>(version + 1, lines.end());
    }

    CInstallerType m_installerType;
    CPrivateTemp m_temp;
};

class NoSignatureTest : public SignedCheckTest, public testing::WithParamInterface<const char*>
{
};

TEST_P(NoSignatureTest, IsLikeAMissingLinkAndOffersNothing)
{
    for (const bool silent : {true, false})
    {
        SCOPED_TRACE(silent);
        if (!silent)
        {
            m_user.AnswerBox(kNotParsed);
        }
        Publish(OfferWith("http://files.orva.example/setup.exe", GetParam()));
        const CLogMark log;
        m_user.Start();
        EXPECT_TRUE(CheckForUpdate(m_owner.Handle(), silent));
        EXPECT_EQ(m_user.Finish().size(), silent ? 0u : 1u);
        // The link's line and the signature's.
        EXPECT_THAT(LinesAfterVersion(log), ElementsAre("CheckJSONObject", "CheckJSONObject"));
    }
}

INSTANTIATE_TEST_SUITE_P(Members, NoSignatureTest,
                         testing::Values("", ", \"signature\": null", ", \"signature\": \"\"",
                                         ", \"Signature\": \"MAYCAQECAQE=\""));

TEST_F(SignedCheckTest, ASignatureThatIsNoTextRaisesTheTypeErrorBeforeTheOffer)
{
    for (const auto& [value, error] :
         {std::pair("7", "value type is 4 not 2"), std::pair("{}", "value type is 0 not 2"),
          std::pair("[\"MAYCAQECAQE=\"]", "value type is 1 not 2")})
    {
        Publish(OfferWith("http://files.orva.example/setup.exe", std::string(", \"signature\": ") + value));
        m_user.Start();
        const CLogMark log;
        std::string raised;
        try
        {
            CheckForUpdate(m_owner.Handle(), true);
        }
        catch (const std::runtime_error& exception)
        {
            raised = exception.what();
        }
        EXPECT_EQ(raised, error);
        EXPECT_TRUE(m_user.Finish().empty());
        EXPECT_THAT(LinesAfterVersion(log), ElementsAre("CheckJSONObject", "CheckJSONObject"));
    }
}

TEST_F(SignedCheckTest, AMissingLinkIsFoundBeforeAMissingSignature)
{
    Publish(UpdateInfo("1.3.0", ""));
    m_user.Start();
    const CLogMark log;
    EXPECT_TRUE(CheckForUpdate(m_owner.Handle(), true));
    m_user.Finish();
    EXPECT_THAT(LinesAfterVersion(log), ElementsAre("CheckJSONObject"));
}

TEST_F(SignedCheckTest, TheInstalledVersionNeedsNoSignature)
{
    Publish(UpdateInfo("1.2.0", ""));
    EXPECT_FALSE(CheckForUpdate(m_owner.Handle(), true));
}

TEST_F(SignedCheckTest, AnyTextIsOfferedBecauseOnlyTheFileShowsWhetherItFits)
{
    Publish(OfferWith("http://files.orva.example/setup.exe", SignatureMember("not a signature")));
    ExpectOffer(kLaterButton);
    m_user.Start();
    const CLogMark log;
    EXPECT_TRUE(CheckForUpdate(m_owner.Handle(), true));
    EXPECT_EQ(m_user.Finish().size(), 1u);
    EXPECT_THAT(LinesAfterVersion(log),
                ElementsAre("CheckJSONObject", "CheckJSONObject", "DetermineUpdateDescription"));
}

TEST_F(SignedCheckTest, VersionAndSignatureReachTheDownload)
{
    const CSigner signer(L"private.pem");
    const std::string bytes = "an installer";
    for (const auto& [version, isStarted] : {std::pair("1.2.9", false), std::pair("1.3.0", true)})
    {
        Publish(OfferWith("http://files.orva.example" + std::string(kInstallerPath),
                          SignatureMember(signer.Sign(version, bytes))));
        m_server.On(kInstallerPath, CHttpReply(200, bytes));
        ExpectOffer(kInstallButton);
        m_user.OnDialogWith(kProgressBar, [](HWND) {});
        if (!isStarted)
        {
            m_user.AnswerBox(kConnectError).AnswerBox(kUpdateCanceled);
        }
        m_user.Start();
        EXPECT_TRUE(CheckForUpdate(m_owner.Handle(), true));
        const std::vector<CSeenWindow> seen = m_user.Finish();
        ASSERT_EQ(seen.size(), isStarted ? 2u : 4u);
        for (size_t box = 2; box < seen.size(); ++box)
        {
            EXPECT_EQ(seen[box].owner, m_owner.Handle());
        }
        EXPECT_EQ(CInstallerType::WaitForStart(m_temp.Path(), isStarted ? kPatience : 0), isStarted);
    }
}

} // namespace
} // namespace orva::test
