// Links in the update file that name no file, or a file elsewhere.
#include "end_to_end/InstallerFixture.h"
#include "end_to_end/Texts.h"
#include "harness/Files.h"

namespace orva::test
{

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using testing::ValuesIn;

// A link, or its last segment, as written in the JSON text.
struct CLink
{
    int number;
    const char* name;
    const char* text;
};

class LinkFixture : public FaultFixture, public testing::WithParamInterface<CLink>
{
protected:
    void Run()
    {
        RunFault("download-faults", FaultLabel(GetParam().number, GetParam().name), CheckMode::StartUp);
    }
};

class HostileLinkTest : public LinkFixture
{
};

class NamelessLinkTest : public LinkFixture
{
};

class LinkTypeTest : public FaultFixture
{
};

constexpr CLink kNamelessLinks[] = {
    {51, "LinkWithoutASlash", "setup.exe"},
    {52, "LinkEndingInASlash", "http://files.orva.example/files/"},
    {53, "LinkThatIsEmpty", ""},
};

// Names that are refused; JSON escapes some of their characters.
constexpr CLink kHostileNames[] = {
    {54, "FileNameWithAParentFolder", R"(..\\evil.exe)"},
    {55, "FileNameOnAShare", R"(\\\\server\\share\\evil.exe)"},
    {56, "FileNameWithAControlCharacter", R"(a\u0001b.exe)"},
    {57, "FileNameThatIsADevice", "nul.exe"},
};

std::string NameOf(const testing::TestParamInfo<CLink>& info)
{
    return info.param.name;
}

void PrintTo(const CLink& link, std::ostream* out)
{
    *out << link.text;
}

INSTANTIATE_TEST_SUITE_P(Links, NamelessLinkTest, ValuesIn(kNamelessLinks), NameOf);
INSTANTIATE_TEST_SUITE_P(Names, HostileLinkTest, ValuesIn(kHostileNames), NameOf);

} // namespace

TEST_P(NamelessLinkTest, IsReportedAndNoDialogOpens)
{
    OfferAndInstall(GetParam().text);
    m_user.AnswerBox(kUrlNotParsed);
    Run();
    EXPECT_THAT(Observed().left, IsEmpty());
    EXPECT_EQ(m_server.Requests().size(), m_server.RequestsFor(kUpdateInfoPath).size());
    EXPECT_EQ(Observed().log.back(), "StartDownloadDialog");
}

TEST_P(HostileLinkTest, IsAFileThatCannotBeCreated)
{
    OfferAndInstall(std::string("http://files.orva.example/") + GetParam().text);
    m_user.AnswerBox(kInvalidName).AnswerBox(kUpdateCanceled);
    Run();
    EXPECT_THAT(Observed().left, ElementsAre(L"osc??????\\"));
    EXPECT_EQ(m_server.Requests().size(), m_server.RequestsFor(kUpdateInfoPath).size());
    EXPECT_FALSE(FileExists(m_temp.Path() + L"\\evil.exe"));
}

TEST_F(LinkTypeTest, ALinkThatIsNoTextEndsTheCheckInTheLog)
{
    Publish(R"({"x64":{"majorVersion":1,"minorVersion":3,"buildNumber":0,"downloadLink":7,)"
            R"("description":{"default":"New."}}})");
    m_user.OnDialog(kOfferCaption, [](HWND dialog) { EXPECT_TRUE(ClickButton(dialog, kInstallButton)); });
    RunFault("download-faults", FaultLabel(58, "LinkThatIsNoText"), CheckMode::StartUp);
    EXPECT_EQ(Observed().log.back(), "CConnect::OnConnection() Caught exception value type is 4 not 2");
    EXPECT_THAT(Observed().left, IsEmpty());
}

} // namespace orva::test
