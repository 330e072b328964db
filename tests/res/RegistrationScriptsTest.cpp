// Which keys of the registration scripts are the add-in's own and which are shared with others. What the
// scripts write is proven by registering.
#include "res/ModuleResources.h"
#include "res/resource.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

using namespace orva::test;
using testing::ElementsAre;

namespace
{
// The keys with a word before their name that says how they are removed.
std::vector<std::string> MarkedKeys(WORD id)
{
    const std::vector<BYTE> bytes = ReadResource(L"REGISTRY", id).value();
    const std::string script(bytes.begin(), bytes.end());
    static const std::regex marked("[A-Za-z]+Remove +[^ \r\n]+");
    return {std::sregex_token_iterator(script.begin(), script.end(), marked), std::sregex_token_iterator()};
}
} // namespace

TEST(RegistrationScriptsTest, OutlooksListOfAddInsStaysWithAllAboveIt)
{
    EXPECT_THAT(MarkedKeys(IDR_ORVAOSCADDIN),
                ElementsAre("NoRemove Software", "NoRemove Microsoft", "NoRemove Office", "NoRemove Outlook",
                            "NoRemove Addins"));
}

TEST(RegistrationScriptsTest, TheListOfClassesStaysAndTheClassGoesWithAllBelowIt)
{
    EXPECT_THAT(MarkedKeys(IDR_CONNECT),
                ElementsAre("NoRemove CLSID", "ForceRemove {9C7130EA-AEC4-4EA5-97B8-7D7172C9E051}",
                            "ForceRemove Programmable"));
}
