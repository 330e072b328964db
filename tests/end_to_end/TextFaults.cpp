// Update files that are broken, incomplete or at the limits of their numbers.
#include "end_to_end/OutlookFixture.h"
#include "end_to_end/ServerFault.h"
#include "end_to_end/Texts.h"

namespace orva::test
{

std::vector<CFault> TextFaults()
{
    const std::string cut =
        R"({"x64":{"majorVersion":1,"minorVersion":3,"buildNumber":0,"downloadLink":"http://h/s.exe",)"
        R"("description":{"default":"New."}},)";
    const std::string deep(250'000, '[');
    const std::string entry = R"({"x64":{"majorVersion":)";
    const std::string latestEntry = R"({"x64":{"majorVersion":1,"minorVersion":2,"buildNumber":)";
    const std::string newerEntry = R"({"x64":{"majorVersion":1,"minorVersion":2,"buildNumber":1,)";
    const Log newer = Joined(Versions("1", "2", "1"), {"CheckJSONObject"});
    return {
        {"CutAfterTheEntry",
         Reply(cut),
         Unparsed(cut, Joined(Versions("1", "3", "0"), Offered())),
         {kConnectError, kOfferCaption},
         {kConnectError, kOfferCaption}},
        Unreadable("OnlyBlanks", "   "),
        // The outermost array is in place before the depth is refused.
        {"A250000FoldArray",
         Reply(deep),
         Unparsed(deep, {"CheckJSONObject"}),
         {kConnectError},
         {kConnectError, kNotParsed},
         "value type is 1 not 0"},
        NothingShown("RootIsNull", "null", {"CheckJSONObject"}),
        NothingShown("NoEntry", R"({"x86":{}})", {"CheckJSONObject", "CheckJSONObject"}),
        NothingShown("EntryIsNull", R"({"x64":null})", {"CheckJSONObject", "CheckJSONObject"}),
        NothingShown("EntryInCapitals", R"({"X64":{}})", {"CheckJSONObject", "CheckJSONObject"}),
        NothingShown("NewerWithoutALink", newerEntry + R"("description":{"default":"d"}}})", newer),
        NothingShown("NewerWithoutADescription", newerEntry + R"("downloadLink":"http://h/s"}})",
                     Joined(newer, {"DetermineUpdateDescription"})),
        NothingShown("NewerWithoutADescriptionForEnglish",
                     newerEntry + R"("downloadLink":"http://h/s","description":{"de":"neu"}}})",
                     Joined(newer, {"DetermineUpdateDescription"})),
        WrongType("RootIsAnArray", "[1]", {"CheckJSONObject"}, "value type is 1 not 0"),
        WrongType("RootIsAText", R"("x64")", {"CheckJSONObject"}, "value type is 2 not 0"),
        WrongType("EntryIsAText", R"({"x64":"1.3.0"})", {"CheckJSONObject", "CheckJSONObject"},
                  "value type is 2 not 0"),
        WrongType("MajorVersionIsAText", entry + R"("1","minorVersion":2,"buildNumber":0}})",
                  {"CheckJSONObject", "CheckJSONObject"}, "value type is 2 not 4"),
        WrongType("MajorVersionIsReal", entry + R"(1.0,"minorVersion":2,"buildNumber":0}})",
                  {"CheckJSONObject", "CheckJSONObject"}, "value type is 5 not 4"),
        WrongType("NoVersions", R"({"x64":{}})", {"CheckJSONObject", "CheckJSONObject"},
                  "value type is 6 not 4"),
        WrongType("BuildNumberIsNull", latestEntry + "null}}", {"CheckJSONObject", "CheckJSONObject"},
                  "value type is 6 not 4"),
        WrongType("DescriptionIsAText", newerEntry + R"("downloadLink":"http://h/s","description":"new"}})",
                  Joined(newer, {"DetermineUpdateDescription"}), "value type is 2 not 0"),
        WrongType("DescriptionTextIsANumber",
                  newerEntry + R"("downloadLink":"http://h/s","description":{"default":1}}})",
                  Joined(newer, {"DetermineUpdateDescription"}), "value type is 4 not 2"),
        NotNewer("MajorVersionAtTheLower32BitLimit", "-2147483648", "9", "9",
                 Versions("-2147483648", "9", "9")),
        NotNewer("MajorVersionBeyond32BitsIsTruncated", "4294967297", "2", "0", Versions("1", "2", "0")),
        NotNewer("MajorVersionAtTheUpper64BitLimit", "9223372036854775807", "9", "9",
                 Versions("-1", "9", "9")),
        NotNewer("MajorVersionAtTheLower64BitLimit", "-9223372036854775808", "9", "9",
                 Versions("0", "9", "9")),
        Newer("MajorVersionAtTheUpper32BitLimit", "2147483647", "0", "0", Versions("2147483647", "0", "0")),
        Newer("BuildNumberAtTheUpper32BitLimit", "1", "2", "2147483647", Versions("1", "2", "2147483647")),
    };
}

} // namespace orva::test
