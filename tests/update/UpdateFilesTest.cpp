// Update files that are broken, incomplete, cut or at the limits of their numbers: what both checks show, and
// the exact lines that they log.
#include "harness/Text.h"
#include "support/ExceptionGuard.h"
#include "update/UpdateCheck.h"
#include "update/UpdateFixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <ostream>

namespace orva::test
{
namespace
{

using testing::ElementsAreArray;
using testing::ValuesIn;

using Log = std::vector<std::string>;
using Texts = std::vector<std::wstring>;

constexpr char kParsing[] = "CheckForUpdate() parse json ";
constexpr char kCheck[] = "CheckJSONObject";
constexpr char kDescribe[] = "DetermineUpdateDescription";

// A file and what comes of it.
struct CFile
{
    const char* name;
    std::string text;
    // The lines after kParsing.
    Log log;
    Texts shownSilently;
    Texts shownExplicitly;
    // The exception's text, if the checks end with one.
    const char* exception = nullptr;
};

void PrintTo(const CFile& file, std::ostream* out)
{
    *out << file.name;
}

std::string NameOf(const testing::TestParamInfo<CFile>& info)
{
    return info.param.name;
}

// The lines of a file's version numbers, after those of its root and its entry.
Log Version(const char* major, const char* minor, const char* build)
{
    return {kCheck, kCheck, std::string("CheckForUpdate() majorVersion ") + major,
            std::string("CheckForUpdate() minorVersion ") + minor,
            std::string("CheckForUpdate() buildNumber ") + build};
}

// A file that is not wholly JSON, with what the check makes of its beginning.
CFile Broken(CFile file)
{
    file.log.insert(file.log.begin(), "CheckForUpdate() exception thrown while parsing json ");
    file.shownSilently.insert(file.shownSilently.begin(), kConnectError);
    file.shownExplicitly.insert(file.shownExplicitly.begin(), kConnectError);
    return file;
}

CFile Incomplete(const char* name, const std::string& text, const Log& log)
{
    return {name, text, log, {}, {kNotParsed}};
}

CFile WrongType(const char* name, const std::string& text, const Log& log, const char* exception)
{
    return {name, text, log, {}, {kNotParsed}, exception};
}

CFile NotNewer(const char* name, const std::string& version, const Log& log)
{
    return {name, UpdateInfo(version, ""), log, {}, {kLatest}};
}

CFile Newer(const char* name, const std::string& version, const Log& log)
{
    return {name,
            UpdateInfo(version, R"(, "downloadLink": "http://h/s", "description": {"default": "d"})"),
            Joined(log, {kCheck, kDescribe}),
            {kOfferCaption},
            {kOfferCaption}};
}

std::vector<CFile> Files()
{
    const Log entry = {kCheck, kCheck};
    const Log newer = Joined(Version("1", "2", "1"), {kCheck});
    const Log described = Joined(newer, {kDescribe});
    const std::string link = R"(, "downloadLink": "http://h/s")";
    const std::string description = R"(, "description": {"default": "d"})";
    return {
        Broken(Incomplete("HtmlPage", "<!DOCTYPE html><html></html>", {kCheck})),
        Broken(Incomplete("OnlyBlanks", "   ", {kCheck})),
        // The outermost array is in place before the depth is refused.
        Broken(WrongType("A250000FoldArray", std::string(250'000, '['), {kCheck}, "value type is 1 not 0")),
        Incomplete("RootIsNull", "null", {kCheck}),
        Incomplete("NoEntry", R"({"x86":{}})", entry),
        Incomplete("EntryIsNull", R"({"x64":null})", entry),
        Incomplete("EntryInCapitals", R"({"X64":{}})", entry),
        Incomplete("NewerWithoutALink", UpdateInfo("1.2.1", description), newer),
        Incomplete("NewerWithANullLink", UpdateInfo("1.2.1", R"(, "downloadLink": null)" + description),
                   newer),
        Incomplete("NewerWithoutADescription", UpdateInfo("1.2.1", link), described),
        Incomplete("NewerWithoutADescriptionForEnglish",
                   UpdateInfo("1.2.1", link + R"(, "description": {"de": "neu"})"), described),
        WrongType("RootIsAnArray", "[1]", {kCheck}, "value type is 1 not 0"),
        WrongType("RootIsAText", R"("x64")", {kCheck}, "value type is 2 not 0"),
        WrongType("EntryIsAText", R"({"x64":"1.3.0"})", entry, "value type is 2 not 0"),
        WrongType("MajorVersionIsAText", UpdateInfo(R"("1".2.0)", ""), entry, "value type is 2 not 4"),
        WrongType("MajorVersionIsReal", R"({"x64":{"majorVersion":1.0,"minorVersion":2,"buildNumber":0}})",
                  entry, "value type is 5 not 4"),
        WrongType("NoVersions", R"({"x64":{}})", entry, "value type is 6 not 4"),
        WrongType("BuildNumberIsNull", UpdateInfo("1.2.null", ""), entry, "value type is 6 not 4"),
        WrongType("DescriptionIsAText", UpdateInfo("1.2.1", link + R"(, "description": "new")"), described,
                  "value type is 2 not 0"),
        WrongType("DescriptionTextIsANumber",
                  UpdateInfo("1.2.1", link + R"(, "description": {"default": 1})"), described,
                  "value type is 4 not 2"),
        NotNewer("MajorVersionAtTheLower32BitLimit", "-2147483648.9.9", Version("-2147483648", "9", "9")),
        NotNewer("MajorVersionBeyond32BitsIsTruncated", "4294967297.2.0", Version("1", "2", "0")),
        NotNewer("MajorVersionAtTheUpper64BitLimit", "9223372036854775807.9.9", Version("-1", "9", "9")),
        NotNewer("MajorVersionAtTheLower64BitLimit", "-9223372036854775808.9.9", Version("0", "9", "9")),
        NotNewer("BuildNumberAtTheUpperUnsigned64BitLimit", "1.2.18446744073709551615",
                 Version("1", "2", "-1")),
        Newer("MajorVersionAtTheUpper32BitLimit", "2147483647.0.0", Version("2147483647", "0", "0")),
        Newer("BuildNumberAtTheUpper32BitLimit", "1.2.2147483647", Version("1", "2", "2147483647")),
    };
}

// A file that offers 1.3.0, and the places in it that decide what a beginning of it is worth.
class COfferInPieces
{
public:
    const std::string& Text() const { return m_text; }

    // The smallest beginnings with the entry's brace, the three numbers, the link and the description.
    std::vector<size_t> Places() const { return {m_entry, m_numbers, m_link, m_description}; }

    // The first `size` bytes, at least one and not all.
    CFile Beginning(size_t size) const
    {
        const std::string text = m_text.substr(0, size);
        const Log numbers = Version("1", "3", "0");
        if (size < m_entry)
        {
            return Broken(Incomplete("", text, {kCheck, kCheck}));
        }
        if (size < m_numbers)
        {
            return Broken(WrongType("", text, {kCheck, kCheck}, "value type is 6 not 4"));
        }
        if (size < m_link)
        {
            return Broken(Incomplete("", text, Joined(numbers, {kCheck})));
        }
        const Log described = Joined(numbers, {kCheck, kDescribe});
        if (size < m_description)
        {
            return Broken(Incomplete("", text, described));
        }
        return Broken({"", text, described, {kOfferCaption}, {kOfferCaption}});
    }

private:
    size_t Behind(const std::string& part) const { return m_text.find(part) + part.size(); }

    const std::string m_text = OfferOf("http://h/s");
    const size_t m_entry = Behind("{\"x64\": {");
    const size_t m_numbers = Behind("\"buildNumber\": 0");
    const size_t m_link = Behind("http://h/s\"");
    const size_t m_description = Behind("Faster contacts.\"");
};

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

INSTANTIATE_TEST_SUITE_P(Files, UpdateFileTest, ValuesIn(Files()), NameOf);

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
