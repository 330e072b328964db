// Which language's description of a published build is chosen.
#include "update/UpdateDescription.h"

#include "update/UpdateFixture.h"

#include <ostream>
#include <stdexcept>

namespace orva::test
{
namespace
{

json_spirit::wmObject Entry(const wchar_t* json)
{
    json_spirit::wmValue value;
    json_spirit::read_or_throw(std::wstring(json), value);
    return value.get_obj();
}

constexpr wchar_t kAll[] =
    LR"({"description": {"de": "deutsch", "es": "español", "tr": "türkçe", "default": "text"}})";

struct CCase
{
    const char* behaviour;
    DWORD language;
    const wchar_t* entry;
    const wchar_t* description;
};

void PrintTo(const CCase& testCase, std::ostream* stream)
{
    *stream << testCase.behaviour;
}

class UpdateDescriptionTest : public testing::TestWithParam<CCase>
{
};

TEST_P(UpdateDescriptionTest, IsTheTextFor)
{
    const COfficeLanguage language(GetParam().language);
    EXPECT_STREQ(DetermineUpdateDescription(Entry(GetParam().entry)), GetParam().description);
}

INSTANTIATE_TEST_SUITE_P(
    Languages, UpdateDescriptionTest,
    testing::Values(CCase{"German reads German", 1031, kAll, L"deutsch"},
                    CCase{"Turkish reads Turkish", 1055, kAll, L"türkçe"},
                    CCase{"Spanish of Spain reads Spanish", 3082, kAll, L"español"},
                    CCase{"English reads the default", 1033, kAll, L"text"},
                    CCase{"Traditional Spanish reads the default", 1034, kAll, L"text"},
                    CCase{"Mexican Spanish reads the default", 2058, kAll, L"text"},
                    CCase{"Austrian German reads the default", 3079, kAll, L"text"},
                    CCase{"no language reads the default", 65535, kAll, L"text"},
                    CCase{"German without German text falls back", 1031,
                          LR"({"description": {"default": "text"}})", L"text"},
                    CCase{"null German text falls back", 1031,
                          LR"({"description": {"de": null, "default": "text"}})", L"text"},
                    CCase{"empty Turkish text does not fall back", 1055,
                          LR"({"description": {"tr": "", "default": "text"}})", L""},
                    CCase{"keys count in lower case only", 1031,
                          LR"({"description": {"DE": "deutsch", "default": "text"}})", L"text"},
                    CCase{"an English key is no key", 1033, LR"({"description": {"en": "english"}})", L""},
                    CCase{"no default for English is empty", 1033, LR"({"description": {"de": "deutsch"}})",
                          L""},
                    CCase{"no description is empty", 1033, LR"({})", L""},
                    CCase{"null description is empty", 1033, LR"({"description": null})", L""},
                    CCase{"null default is empty", 1033, LR"({"description": {"default": null}})", L""}));

std::string Raised(const wchar_t* entry)
{
    try
    {
        DetermineUpdateDescription(Entry(entry));
    }
    catch (const std::runtime_error& error)
    {
        return error.what();
    }
    return "(none)";
}

TEST(DetermineUpdateDescriptionTest, RaisesTheTypeErrorForADescriptionThatIsNoObjectAndATextThatIsNoString)
{
    const COfficeLanguage english(1033);
    EXPECT_EQ(Raised(LR"({"description": "text"})"), "value type is 2 not 0");
    EXPECT_EQ(Raised(LR"({"description": {"default": 1}})"), "value type is 4 not 2");
}

TEST(DetermineUpdateDescriptionTest, WritesItsEntryAndReadsTheLanguageAnewAtEveryCall)
{
    const CLogMark log;
    const COfficeLanguage english(1033);
    EXPECT_STREQ(DetermineUpdateDescription(Entry(kAll)), L"text");
    CRegistryValue language(HKEY_CURRENT_USER, OfficeLanguageKey(kOffice2010), kOfficeLanguageValue);
    language.SetDword(1031);
    EXPECT_STREQ(DetermineUpdateDescription(Entry(kAll)), L"deutsch");
    EXPECT_EQ(log.Texts(), std::vector<std::string>(2, "DetermineUpdateDescription"));
}

} // namespace
} // namespace orva::test
