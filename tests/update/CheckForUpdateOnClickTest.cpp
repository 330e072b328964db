// The explicit check as a button runs it: an exception of the check is shown to the user and logged.
#include "harness/ImportHook.h"
#include "update/UpdateCheck.h"
#include "update/UpdateFixture.h"

#include <wininet.h>

namespace orva::test
{
namespace
{

HINTERNET WINAPI OpenNothing(LPCWSTR, DWORD, LPCWSTR, LPCWSTR, DWORD)
{
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

class CheckForUpdateOnClickTest : public CUpdateTest
{
protected:
    CheckForUpdateOnClickTest() { EnableWindow(m_owner.Handle(), TRUE); }

    // Runs the check. The user reads `text`, in a box of the owner's that is the only window shown, while the
    // owner is disabled.
    void ExpectBox(const wchar_t* text)
    {
        m_user.AnswerBox(text).Start();
        CheckForUpdateOnClick("CButton::OnClick", m_owner.Handle());
        const std::vector<CSeenWindow> seen = m_user.Finish();
        ASSERT_EQ(seen.size(), 1u);
        EXPECT_EQ(seen[0].owner, m_owner.Handle());
        EXPECT_FALSE(seen[0].ownerEnabled);
        EXPECT_TRUE(IsWindowEnabled(m_owner.Handle()));
    }

    CLogMark m_log;
};

TEST_F(CheckForUpdateOnClickTest, WithoutAnExceptionItIsTheExplicitCheck)
{
    Publish(UpdateInfo("1.2.0", ""));
    ExpectBox(kLatest);
    EXPECT_EQ(m_log.Texts().front(), "CheckForUpdateExplicit");
    EXPECT_EQ(m_log.Texts().back(), "CheckForUpdate() buildNumber 0");
}

TEST_F(CheckForUpdateOnClickTest, WrongTypeSaysNotParsed)
{
    Publish(R"({"x64": {"majorVersion": "1", "minorVersion": 3, "buildNumber": 0}})");
    ExpectBox(kNotParsed);
    EXPECT_EQ(m_log.Texts().back(), "CButton::OnClick() Caught exception value type is 2 not 4");
}

TEST_F(CheckForUpdateOnClickTest, ReplyWithoutDateSaysConnectError)
{
    Publish(CHttpReply(200, UpdateInfo("1.2.0", "")).WithoutDate());
    ExpectBox(kConnectError);
    EXPECT_EQ(m_log.Texts().back(), "CButton::OnClick() Caught exception invalid vector<T> subscript");
}

TEST_F(CheckForUpdateOnClickTest, SessionThatCannotBeOpenedSaysConnectError)
{
    const CImportHook hook(GetModuleHandleW(nullptr), "WININET.dll", "InternetOpenW", &OpenNothing);
    ExpectBox(kConnectError);
    // The system's text ends the line, in the system's language.
    EXPECT_EQ(m_log.Texts()[m_log.Texts().size() - 2].substr(0, 36), "CButton::OnClick() Caught exception ");
}

TEST_F(CheckForUpdateOnClickTest, WithoutAnOwnerTheMessageIsShownWithoutOne)
{
    Publish(R"({"x64": 1})");
    m_user.AnswerBox(kNotParsed).Start();
    CheckForUpdateOnClick("CButton::OnClick", nullptr);
    const std::vector<CSeenWindow> seen = m_user.Finish();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].owner, nullptr);
}

} // namespace
} // namespace orva::test
