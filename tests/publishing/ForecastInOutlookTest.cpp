// What is foretold of a file is what the user of the stand-in Outlook sees: the built DLL, its windows and
// the scripted server.
#include "end_to_end/OutlookFixture.h"
#include "end_to_end/Texts.h"
#include "forecast/ManyFiles.h"
#include "harness/Text.h"
#include "harness/Thorough.h"
#include "harness/Watchdog.h"
#include "outlook/AddInModule.h"
#include "publishing/Forecast.h"
#include "support/UpdateKey.h"
#include "support/Version.h"

#include <random>

namespace orva::test
{
namespace
{

using publishing::Trigger;

// With the line ends that the description's box gives back, whatever it was given.
std::wstring Normalised(const std::wstring& text)
{
    std::wstring normalised;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        const bool isCrOfCrLf = text[i] == L'\r' && i + 1 < text.size() && text[i + 1] == L'\n';
        if (!isCrOfCrLf)
        {
            normalised += text[i] == L'\r' ? L'\n' : text[i];
        }
    }
    return normalised;
}

class ForecastInOutlookTest : public OutlookFixture
{
protected:
    static void SetUpTestSuite()
    {
        s_addIn = std::make_unique<CInstalledAddIn>(kAddInModule);
        s_addIn->SetUp();
    }
    static void TearDownTestSuite()
    {
        s_addIn->TearDown();
        s_addIn.reset();
    }

    // At Outlook's start and, if its language is English, on the user's press on "Update".
    void Expect(const std::string& file, WORD language)
    {
        SCOPED_TRACE(testing::PrintToString(file) + " for " + std::to_string(language));
        SetTestDeadline(kTestDeadline);
        const COfficeLanguageSetting setting(language);
        Publish(file);
        m_file = publishing::ReadAsTheAddIn(publishing::DecodeAsTheAddIn(file));
        ExpectShown(language, Trigger::Start);
        StartOutlook({L"--backstage"});
        WaitForStart();
        if (language == kEnglish && !HasFailure())
        {
            m_user.Finish();
            ExpectShown(language, Trigger::Request);
            m_user.StartFor(m_outlook->Id());
            CheckExplicitly();
        }
        // Fails for a window too many or too few.
        ExpectOutlookGoesOn();
    }

private:
    // The user closes the messages and declines the offer.
    void ExpectShown(WORD language, Trigger trigger)
    {
        const publishing::CAddIn addIn{{kVersionMajor, kVersionMinor, kVersionBuild},
                                       kUpdateVerifier != nullptr};
        const publishing::CForecast forecast = publishing::Foretell(m_file, addIn, language, trigger);
        for (const std::wstring& text : forecast.messages)
        {
            m_user.AnswerBox(text);
        }
        if (forecast.offer)
        {
            m_user.OnDialogWith(kDescriptionText, [offer = *forecast.offer](HWND dialog) {
                EXPECT_EQ(Normalised(ChildText(dialog, kDescriptionText)), Normalised(offer.text));
                // A language without texts has none for the version either.
                const std::wstring version = ChildText(dialog, kAvailableText);
                EXPECT_TRUE(version.empty() || version.ends_with(L" " + offer.version)) << Utf8(version);
                EXPECT_TRUE(ClickButton(dialog, kLaterButton));
            });
        }
    }

    static std::unique_ptr<CInstalledAddIn> s_addIn;

    publishing::CUpdateText m_file;
};

std::unique_ptr<CInstalledAddIn> ForecastInOutlookTest::s_addIn;

TEST_F(ForecastInOutlookTest, IsWhatUsersSee)
{
    constexpr std::size_t kFiles = 2000;
    const std::vector<std::string> files = MutatedFiles(kFiles);
    const auto users = publishing::AllUsers();
    std::mt19937 random(42);
    const int count = Repetitions(20, 200);
    for (int i = 0; i < count && !HasFailure(); ++i)
    {
        const std::string& file = files[random() % files.size()];
        // Every other time English.
        Expect(file, users[i % 2 == 0 ? 0 : random() % users.size()].language);
    }
}

} // namespace
} // namespace orva::test
