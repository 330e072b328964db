#include "end_to_end/InstallerFixture.h"

#include "end_to_end/Texts.h"
#include "harness/Files.h"

namespace orva::test
{

using testing::ElementsAre;

void InstallerFixture::Offer(const CServerScript& script)
{
    m_server.On(kInstallerPath, script);
    OfferAndInstall(kInstallerUrl);
}

void InstallerFixture::Run(int number, const std::string& fault)
{
    RunFault("download-faults", FaultLabel(number, fault), GetParam());
}

void InstallerFixture::ExpectFailedDownload(int number, const std::string& fault)
{
    ExpectDownloadDialog();
    m_user.AnswerBox(kConnectError).AnswerBox(kUpdateCanceled);
    Run(number, fault);
    EXPECT_THAT(Observed().left, ElementsAre(L"osc??????\\"));
}

void InstallerFixture::ExpectSystemMessage()
{
    m_user.OnDialogWith(kBoxText, [](HWND box) { EXPECT_TRUE(ClickButton(box, IDOK)); });
}

void InstallerFixture::ExpectDownloadedFile(int number, const std::string& fault, const std::string& bytes)
{
    ExpectDownloadDialog();
    ExpectSystemMessage();
    Run(number, fault);
    ASSERT_THAT(Observed().left, ElementsAre(L"osc??????\\", L"osc??????\\setup.exe"));
    EXPECT_TRUE(ReadFileBytes(m_temp.Path() + L"\\" + ListFolder(m_temp.Path()).at(1)) == bytes);
}

} // namespace orva::test
