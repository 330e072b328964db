// The registration scripts, token by token.
#include "res/ModuleResources.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

using namespace orva::test;

namespace
{
std::string Script(WORD id)
{
    const auto bytes = ReadResource(L"REGISTRY", id);
    return bytes ? std::string(bytes->begin(), bytes->end()) : "(no script)";
}

// The script's words with single blanks between them; what stands in single quotes is kept as it is.
std::string Tokens(const std::string& script)
{
    std::string tokens;
    bool quoted = false;
    for (const char c : script)
    {
        quoted = quoted != (c == '\'');
        const bool blank = !quoted && (c == ' ' || c == '\t' || c == '\r' || c == '\n');
        if (!blank)
        {
            tokens += c;
        }
        else if (!tokens.empty() && tokens.back() != ' ')
        {
            tokens += ' ';
        }
    }
    while (!tokens.empty() && tokens.back() == ' ')
    {
        tokens.pop_back();
    }
    return tokens;
}
} // namespace

TEST(RegistrationScriptsTest, TheModulesScriptIsOutlooksAddinEntry)
{
    EXPECT_EQ(Tokens(Script(101)), "HKLM { NoRemove Software { NoRemove Microsoft { NoRemove Office { "
                                   "NoRemove Outlook { NoRemove Addins { OrvaOscAddin.Connect { "
                                   "val Description = s 'ORVA Connector' "
                                   "val FriendlyName = s 'ORVA Connector' "
                                   "val LoadBehavior = d '3' "
                                   "} } } } } } }");
}

TEST(RegistrationScriptsTest, TheClassScriptNamesProgidsClassServerAndTypeLibrary)
{
    EXPECT_EQ(Tokens(Script(106)), "HKCR { "
                                   "OrvaOscAddin.Connect.1 = s 'Connect Class' { "
                                   "CLSID = s '{9C7130EA-AEC4-4EA5-97B8-7D7172C9E051}' } "
                                   "OrvaOscAddin.Connect = s 'Connect Class' { "
                                   "CurVer = s 'OrvaOscAddin.Connect.1' } "
                                   "NoRemove CLSID { "
                                   "ForceRemove {9C7130EA-AEC4-4EA5-97B8-7D7172C9E051} = s 'Connect Class' { "
                                   "ProgID = s 'OrvaOscAddin.Connect.1' "
                                   "VersionIndependentProgID = s 'OrvaOscAddin.Connect' "
                                   "ForceRemove Programmable "
                                   "InprocServer32 = s '%MODULE%' { val ThreadingModel = s 'Apartment' } "
                                   "TypeLib = s '{ABF2CDBF-30F7-4827-9110-3BD6A8F1B786}' "
                                   "Version = s '1.0' "
                                   "} } }");
}

TEST(RegistrationScriptsTest, TheScriptsAreAscii)
{
    for (const WORD id : {WORD{101}, WORD{106}})
    {
        const std::string script = Script(id);
        EXPECT_TRUE(std::all_of(script.begin(), script.end(), [](char c) { return c > 0 && c < 127; })) << id;
    }
}
