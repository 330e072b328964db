// What is foretold of a file is what the add-in does with it, for files of every kind and mutations of them.
#include "fixture/ProductFixture.h"
#include "forecast/ManyFiles.h"
#include "forecast/ShownByAddIn.h"
#include "harness/Thorough.h"
#include "harness/Watchdog.h"
#include "publishing/Forecast.h"
#include "support/UpdateKey.h"
#include "support/Version.h"

#include <gtest/gtest.h>

#include <ostream>

namespace publishing
{

void PrintTo(const CForecast& forecast, std::ostream* out)
{
    const auto print = [&](const char* label, const std::vector<std::wstring>& texts) {
        for (const std::wstring& text : texts)
        {
            *out << label << testing::PrintToString(text) << ' ';
        }
    };
    print("message ", forecast.messages);
    if (forecast.offer)
    {
        *out << "offer " << testing::PrintToString(forecast.offer->version) << ' '
             << testing::PrintToString(forecast.offer->text) << ' ';
    }
    print("after Install ", forecast.afterInstall);
    *out << (forecast.isDownloaded ? "download" : "");
}

} // namespace publishing

namespace orva::test
{
namespace
{

using publishing::CForecast;
using publishing::Trigger;

class ForecastAgreesTest : public testing::Test
{
protected:
    // Each file for one user after the other; in the thorough run for all of them.
    void ExpectAll(const std::vector<std::string>& files)
    {
        const auto users = publishing::AllUsers();
        const std::size_t step = IsThorough() ? 1 : users.size();
        for (std::size_t user = 0; user < users.size(); ++user)
        {
            const COfficeLanguage language(users[user].language);
            SetTestDeadline(kTestDeadline);
            for (std::size_t file = user % step; file < files.size() && !HasFailure(); file += step)
            {
                Expect(files[file], users[user].language);
            }
        }
    }

    int m_offers = 0;
    int m_downloads = 0;
    int m_refused = 0;

private:
    void Expect(const std::string& file, WORD language)
    {
        SCOPED_TRACE(testing::PrintToString(file));
        const publishing::CUpdateText text = publishing::ReadAsTheAddIn(publishing::DecodeAsTheAddIn(file));
        const publishing::CAddIn addIn{{kVersionMajor, kVersionMinor, kVersionBuild},
                                       kUpdateVerifier != nullptr};
        for (const Trigger trigger : {Trigger::Start, Trigger::Request})
        {
            SCOPED_TRACE(trigger == Trigger::Start ? "at the start" : "on request");
            CForecast foretold = publishing::Foretell(text, addIn, language, trigger);
            // A download takes long; every tenth has to do. In a build with a key each would be refused, also
            // where that cannot be foretold: the signatures here are of nothing.
            const bool isForetold = kUpdateVerifier == nullptr || !foretold.afterInstall.empty();
            m_downloads += foretold.isDownloaded ? 1 : 0;
            const bool isInstalled = !foretold.isDownloaded || (isForetold && m_downloads % 10 == 0);
            const CForecast shown = m_shown.Run(file, trigger, isInstalled);
            m_refused += foretold.isDownloaded && !shown.afterInstall.empty() ? 1 : 0;
            if (!isInstalled)
            {
                foretold.afterInstall.clear();
            }
            // What is downloaded and refused is not started.
            foretold.isDownloaded = foretold.isDownloaded && isInstalled && foretold.afterInstall.empty();
            if (shown.offer && shown.offer->version.empty() && foretold.offer)
            {
                // This language has no text for the version.
                foretold.offer->version.clear();
            }
            EXPECT_EQ(foretold, shown);
            m_offers += shown.offer ? 1 : 0;
        }
    }

    CShownByAddIn m_shown;
};

TEST_F(ForecastAgreesTest, OnKnownFiles)
{
    ExpectAll(KnownFiles());
}

TEST_F(ForecastAgreesTest, OnMutatedFiles)
{
    // What a key changes is seen in fewer.
    const auto files = static_cast<std::size_t>(Repetitions(kUpdateVerifier == nullptr ? 2000 : 500, 2000));
    ExpectAll(MutatedFiles(files));
    // Not all of them are broken.
    EXPECT_GT(static_cast<std::size_t>(m_offers), files / 10);
    EXPECT_GT(static_cast<std::size_t>(m_downloads), files / 10);
    EXPECT_EQ(m_refused > 0, kUpdateVerifier != nullptr);
}

} // namespace
} // namespace orva::test
