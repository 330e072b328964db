// Update files that are broken, incomplete, cut or at the limits of their numbers: what both checks show, and
// the exact lines that they log.
#include "update/UpdateFiles.h"

#include "support/ExceptionGuard.h"
#include "update/UpdateCheck.h"
#include "update/UpdateFixture.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace orva::test
{
namespace
{

using testing::ElementsAreArray;
using testing::ValuesIn;

std::string NameOf(const testing::TestParamInfo<CFile>& info)
{
    return info.param.name;
}

class UpdateFilesTest : public CUpdateTest
{
protected:
    // Both checks; the user chooses "Later".
    void Expect(const CFile& file)
    {
        Publish(file.text);
        // Nothing newer is the only outcome that gives false.
        const bool isLatest = file.shownExplicitly == Texts{kLatest};
        ExpectCheck(file, "silent", file.shownSilently, [&] {
            RunGuarded("silent", [&] { EXPECT_NE(CheckForUpdate(m_owner.Handle(), true), isLatest); });
        });
        ExpectCheck(file, "explicit", file.shownExplicitly,
                    [&] { CheckForUpdateOnClick("explicit", m_owner.Handle()); });
    }

private:
    template <typename Check>
    void ExpectCheck(const CFile& file, const std::string& caller, const Texts& shown, Check check)
    {
        SCOPED_TRACE(caller);
        for (const std::wstring& text : shown)
        {
            if (text == kOfferCaption)
            {
                m_user.OnDialog(text, [](HWND dialog) { EXPECT_TRUE(ClickButton(dialog, kLaterButton)); });
            }
            else
            {
                m_user.AnswerBox(text);
            }
        }
        const CLogMark mark;
        m_user.Start();
        check();
        // Fails for a window too many or too few.
        m_user.Finish();

        Log expected = file.log;
        if (file.exception != nullptr)
        {
            expected.push_back(caller + "() Caught exception " + file.exception);
        }
        const Log log = mark.Texts();
        const auto parsing = std::ranges::find(log, kParsing);
        ASSERT_NE(parsing, log.end());
        EXPECT_THAT(Log(parsing + 1, log.end()), ElementsAreArray(expected));
    }
};

class UpdateFileTest : public UpdateFilesTest, public testing::WithParamInterface<CFile>
{
};

INSTANTIATE_TEST_SUITE_P(Files, UpdateFileTest, ValuesIn(UpdateFiles()), NameOf);

TEST_P(UpdateFileTest, IsShownAndLoggedInBothChecksAsItMust)
{
    Expect(GetParam());
}

TEST_F(UpdateFilesTest, AFileCutAroundAPlaceThatDecidesIsBrokenAndOfferedOnlyWithAllThatAnOfferNeeds)
{
    const COfferInPieces offer;
    for (const size_t place : offer.Places())
    {
        for (const size_t size : {place - 1, place})
        {
            SCOPED_TRACE(size);
            Expect(offer.Beginning(size));
        }
    }
}

} // namespace
} // namespace orva::test
