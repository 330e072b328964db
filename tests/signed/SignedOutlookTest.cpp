// The signed build's DLL in the stand-in Outlook: a good update is installed, any other is a failed download.
#include "end_to_end/FaultFixture.h"
#include "end_to_end/Texts.h"
#include "harness/Files.h"
#include "harness/Signer.h"
#include "ui/InstallerType.h"

namespace orva::test
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

constexpr wchar_t kFolder[] = L"osc??????\\";
constexpr char kLink[] = "http://files.orva.example/setup.orvatest";

class SignedOutlookTest : public FaultFixture
{
protected:
    static void SetUpTestSuite()
    {
        s_addIn = std::make_unique<CInstalledAddIn>(L"signed\\OrvaOscAddin.dll");
        s_addIn->SetUp();
    }
    static void TearDownTestSuite()
    {
        s_addIn->TearDown();
        s_addIn.reset();
    }

    // Publishes 1.3.0 with this signature, and the user accepts it; the server sends `served`.
    void Offer(const std::string& link, const std::string& signature, const CHttpReply& served)
    {
        const std::string path = link.substr(link.find('/', std::string_view("http://").size()));
        m_server.On(path, served);
        OfferAndInstall(link);
        Publish(WithSignature(NewerBuild(link), signature));
        ExpectDownloadDialog();
    }

    static std::string WithSignature(std::string info, const std::string& signature)
    {
        return info.insert(info.size() - 2, R"(,"signature":")" + signature + R"(")");
    }

    // The download ends as one that failed; its file is deleted.
    void ExpectRefused()
    {
        m_user.AnswerBox(kConnectError).AnswerBox(kUpdateCanceled);
        RunFault(CheckMode::StartUp);
        EXPECT_THAT(Observed().shown, ElementsAre(kOfferCaption, kProgress, kConnectError, kUpdateCanceled));
        EXPECT_THAT(Observed().left, ElementsAre(kFolder));
        EXPECT_EQ(Observed().log.back(),
                  "StartDownloadDialog() not signed by the publisher for version 1.3.0");
    }

    static std::unique_ptr<CInstalledAddIn> s_addIn;

    const CInstallerType m_type;
    const CSigner m_signer{L"private.pem"};
    const std::string m_bytes = std::string(50'000, 'x');
    const std::string m_signature = m_signer.Sign("1.3.0", m_bytes);
};

std::unique_ptr<CInstalledAddIn> SignedOutlookTest::s_addIn;

} // namespace

TEST_F(SignedOutlookTest, TheRealSetupIsStartedIfItsPublisherHasSignedIt)
{
    const std::string setup = ReadFileBytes(BuiltFile(L"newer-signed\\OrvaSetup-1.3.0.exe")).value();
    Offer("http://files.orva.example/OrvaSetup-1.3.0.exe", m_signer.Sign("1.3.0", setup),
          CHttpReply(200, setup));
    RunToTheEnd();
    const HWND window = WaitForWindow({.process = 0, .caption = L"ORVA Connector 1.3.0 Setup"});
    ASSERT_NE(window, nullptr);
    const UniqueHandle process(OpenProcess(SYNCHRONIZE, FALSE, WindowProcess(window)));
    EXPECT_TRUE(ClickButton(window, IDCANCEL));
    EXPECT_EQ(WaitForSingleObject(process.get(), kPatience), WAIT_OBJECT_0);
    EXPECT_THAT(TempFiles(), ElementsAre(kFolder, L"osc??????\\OrvaSetup-1.3.0.exe"));
}

TEST_F(SignedOutlookTest, AFileThatWasChangedOnItsWayIsNotStarted)
{
    std::string changed = m_bytes;
    changed[changed.size() / 2] = 'y';
    Offer(kLink, m_signature, CHttpReply(200, changed));
    ExpectRefused();
}

TEST_F(SignedOutlookTest, AFileThatWasCutInAnOrderlyWayIsNotStarted)
{
    Offer(kLink, m_signature, CHttpReply(200, m_bytes.substr(0, 20'000)).ContentLength(m_bytes.size()));
    ExpectRefused();
}

TEST_F(SignedOutlookTest, AnotherVersionsSignatureIsNone)
{
    Offer(kLink, m_signer.Sign("1.2.0", m_bytes), CHttpReply(200, m_bytes));
    ExpectRefused();
}

TEST_F(SignedOutlookTest, ABuildWithoutASignatureIsNotOfferedAndOnlyWhoAskedIsTold)
{
    Publish(NewerBuild(kLink));
    RunFault(CheckMode::StartUp);
    EXPECT_THAT(Observed().shown, IsEmpty());

    m_outlook.reset();
    m_user.AnswerBox(kNotParsed);
    Publish(NewerBuild(kLink));
    RunFault(CheckMode::Explicit);
    EXPECT_THAT(Observed().shown, ElementsAre(kNotParsed));
}

} // namespace orva::test
