// Failures of the installer's server, and the user's Cancel.
#include "end_to_end/InstallerFixture.h"
#include "end_to_end/Texts.h"
#include "harness/Files.h"
#include "harness/Report.h"
#include "harness/Watchdog.h"

namespace orva::test
{

namespace
{

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::ValuesIn;

class InstallerFaultsTest : public InstallerFixture
{
protected:
    const std::string m_bytes = std::string(5'000, 'x');
    const CHttpReply m_reply{200, m_bytes};

    // The head and the first part of the body.
    std::string FirstPart() const { return m_reply.Head() + m_bytes.substr(0, 2'500); }

    // Has the user press Cancel once the server waits at the gate and the dialog shows `status`, if one is
    // given. Then opens the gate.
    void CancelAt(CGate& gate, const wchar_t* status = nullptr)
    {
        m_user.OnDialogWith(kProgressBar, [&gate, status](HWND dialog) {
            EXPECT_TRUE(gate.WaitUntilReached());
            if (status != nullptr)
            {
                EXPECT_EQ(WaitForChildText(dialog, kStatusText, status), status);
            }
            EXPECT_TRUE(ClickButton(dialog, IDCANCEL));
            EXPECT_EQ(WaitForChildText(dialog, kStatusText, L"Download canceled"), L"Download canceled");
            EXPECT_FALSE(IsWindowEnabled(ChildById(dialog, IDCANCEL)));
            gate.Open();
        });
        m_user.AnswerBox(kUpdateCanceled);
    }
};

// Each download shows its last state for a second, so these run only in the thorough run.
class InstallerFurtherFaultsTest : public InstallerFaultsTest
{
};

std::vector<CheckMode> ModesOfThoroughRun()
{
    return IsThorough() ? ModesOfThisRun() : std::vector<CheckMode>();
}

INSTANTIATE_TEST_SUITE_P(Modes, InstallerFaultsTest, ValuesIn(ModesOfThisRun()), NameOfMode);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(InstallerFurtherFaultsTest);
INSTANTIATE_TEST_SUITE_P(Modes, InstallerFurtherFaultsTest, ValuesIn(ModesOfThoroughRun()), NameOfMode);

} // namespace

TEST_P(InstallerFaultsTest, HostUnknown)
{
    CRegistryValue exceptions(HKEY_CURRENT_USER,
                              L"Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings",
                              L"ProxyOverride");
    exceptions.SetString(L"no-such-server.invalid");
    OfferAndInstall("http://no-such-server.invalid/setup.exe");
    ExpectFailedDownload(1, "NameOfTheServerUnknown");
}

TEST_P(InstallerFaultsTest, ConnectionRefused)
{
    CLoopbackServer again;
    m_removeFault = [&] {
        m_proxy.emplace(again.Port());
        again.On(kUpdateInfoPath, CHttpReply(200, g_latestInfo));
    };
    Publish(NewerBuild(kInstallerUrl));
    m_user.OnDialog(kOfferCaption, [&](HWND dialog) {
        m_server.Refuse();
        EXPECT_TRUE(ClickButton(dialog, kInstallButton));
    });
    ExpectFailedDownload(2, "ConnectionRefused");
}

TEST_P(InstallerFurtherFaultsTest, AnEncryptedLinkIsNotServed)
{
    OfferAndInstall("https://files.orva.example/files/setup.exe");
    ExpectFailedDownload(3, "EncryptedLink");
    EXPECT_THAT(m_server.RequestsFor(kInstallerPath), IsEmpty());
}

TEST_P(InstallerFaultsTest, ClosedWithoutAReply)
{
    // Wine reads that as a reply without a status. Windows reports an error, and the file is deleted as after
    // other errors.
    Offer(CServerScript().Close());
    ExpectDownloadDialog();
    m_user.AnswerBox(kConnectError).AnswerBox(kUpdateCanceled);
    Run(4, "ClosedWithoutAReply");
    EXPECT_THAT(Observed().left, Contains(L"osc??????\\"));
}

TEST_P(InstallerFaultsTest, ResetWithoutAReply)
{
    // Wine reports sometimes an error and sometimes the orderly end.
    Offer(CServerScript().Reset());
    ExpectDownloadDialog();
    m_user.AnswerBox(kConnectError).AnswerBox(kUpdateCanceled);
    Run(5, "ResetWithoutAReply");
    EXPECT_THAT(Observed().left, Contains(L"osc??????\\"));
}

TEST_P(InstallerFaultsTest, GarbageInsteadOfAReply)
{
    // Wine reads a line that is not HTTP as a good status, and the end of the connection as the end of an
    // empty file. Windows reports an error.
    Offer(CServerScript().Send("220 mail.example ESMTP\r\n").Close());
    ExpectDownloadedFile(6, "GarbageInsteadOfAReply", "");
}

TEST_P(InstallerFaultsTest, Status404)
{
    Offer(CHttpReply(404, "no such file"));
    ExpectFailedDownload(7, "Status404");
}

TEST_P(InstallerFurtherFaultsTest, Status500)
{
    Offer(CHttpReply(500, "no such luck"));
    ExpectFailedDownload(8, "Status500");
}

TEST_P(InstallerFaultsTest, OnlyStatus200IsADownload)
{
    Offer(CHttpReply(201, "created"));
    ExpectFailedDownload(9, "Status201");
}

TEST_P(InstallerFaultsTest, RedirectToAServerThatRefuses)
{
    const CRefusingPort port;
    Offer(CHttpReply(302).Header("Location", "http://127.0.0.1:" + std::to_string(port.Port()) + "/a"));
    ExpectFailedDownload(10, "RedirectToNowhere");
}

TEST_P(InstallerFaultsTest, AFileCutHalfWayIsTakenAsItCame)
{
    // The length is used only for the percentage.
    Offer(CHttpReply(200, m_bytes).ContentLength(10'000));
    ExpectDownloadedFile(11, "CutHalfWayInAnOrderlyManner", m_bytes);
}

TEST_P(InstallerFaultsTest, ResetInTheBody)
{
    CGate gate;
    Offer(CServerScript().Send(FirstPart()).WaitFor(gate).Reset());
    m_user.OnDialogWith(kProgressBar, [&](HWND dialog) {
        EXPECT_EQ(WaitForChildText(dialog, kStatusText, L"Download started"), L"Download started");
        gate.Open();
    });
    // Wine reports sometimes an error and sometimes the end of the file, which is then started.
    AnswerWhateverComes();
    Run(12, "ResetInTheBody");
    ASSERT_FALSE(Observed().shown.empty());
    if (Observed().shown.back() == kUpdateCanceled)
    {
        EXPECT_THAT(Observed().left, ElementsAre(L"osc??????\\"));
    }
    else
    {
        EXPECT_THAT(Observed().left, ElementsAre(L"osc??????\\", L"osc??????\\setup.exe"));
    }
}

TEST_P(InstallerFaultsTest, AnEmptyFileStaysAndOnlyTheSystemComplains)
{
    Offer(CHttpReply(200, ""));
    ExpectDownloadedFile(13, "EmptyFile", "");
}

TEST_P(InstallerFurtherFaultsTest, StallInTheBody)
{
    constexpr DWORD kStall = 700;
    Offer(CServerScript().Send(FirstPart()).Pause(kStall).Send(m_bytes.substr(2'500)));
    ExpectDownloadedFile(14, "StallInTheBody", m_bytes);
}

TEST_P(InstallerFurtherFaultsTest, OneByteAtATime)
{
    const std::string bytes(200, 'x');
    Offer(CServerScript().SendSlowly(CHttpReply(200, bytes).Bytes(), 1, 1));
    ExpectDownloadedFile(15, "OneByteAMillisecond", bytes);
}

TEST_P(InstallerFaultsTest, WithoutALengthTheCaptionStaysAsItIs)
{
    CGate gate;
    Offer(CServerScript().Send(CHttpReply(200, m_bytes).Without("Content-Length").Bytes()).WaitFor(gate));
    m_user.OnDialogWith(kProgressBar, [&](HWND dialog) {
        EXPECT_EQ(WaitForChildText(dialog, kStatusText, L"Download started"), L"Download started");
        EXPECT_TRUE(gate.WaitUntilReached());
        EXPECT_EQ(WindowText(dialog), kTemplateCaption);
        gate.Open();
        EXPECT_TRUE(WaitUntilGone(dialog));
    });
    ExpectSystemMessage();
    Run(16, "NoLength");
    EXPECT_THAT(Observed().left, Contains(L"osc??????\\setup.exe"));
}

TEST_P(InstallerFurtherFaultsTest, LengthThatIsNoNumber)
{
    Offer(CHttpReply(200, m_bytes).Header("Content-Length", "many"));
    ExpectDownloadedFile(17, "LengthThatIsNoNumber", m_bytes);
}

TEST_P(InstallerFurtherFaultsTest, NoDateIsNeeded)
{
    Offer(CHttpReply(200, m_bytes).WithoutDate().Without("Content-Type"));
    ExpectDownloadedFile(18, "NoDateAndNoType", m_bytes);
}

TEST_P(InstallerFaultsTest, CancelBeforeTheHeadEndsTheDownload)
{
    // On Windows the closed handles end the wait for the head, and the file is deleted. Wine goes on waiting
    // until the server ends the connection and then cannot read the status; so the empty file stays there.
    CGate gate;
    Offer(CServerScript().WaitFor(gate).Close());
    CancelAt(gate);
    Run(19, "CancelBeforeTheHead");
    EXPECT_THAT(Observed().left, Contains(L"osc??????\\"));
}

TEST_P(InstallerFaultsTest, CancelInTheBodyDeletesTheFile)
{
    CGate gate;
    Offer(CServerScript().Send(FirstPart()).WaitFor(gate).Close());
    // Wait until the file is being written: a download cancelled before that keeps its empty file.
    CancelAt(gate, L"Download started");
    Run(20, "CancelInTheBody");
    EXPECT_THAT(Observed().left, ElementsAre(L"osc??????\\"));
}

} // namespace orva::test
