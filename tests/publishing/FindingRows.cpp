#include "publishing/FindingRows.h"

#include <ostream>
#include <sstream>

namespace orva::test
{
namespace
{

using namespace std::string_literals;

CFindingRow Row(const char* name, const std::string& bytes, const char* code, const std::string& line)
{
    return {name, bytes, {{code, line}}};
}

std::vector<CFindingRow> ByteRows()
{
    const std::string padded = kGoodFile + std::string(256'001 - kGoodFile.size(), ' ');
    return {
        {"Good", kGoodFile, {}},
        {"ByteOrderMark", "\xEF\xBB\xBF" + kGoodFile, {}},
        Row("Empty", "", "empty", "Error: the file is empty"),
        Row("OnlyAByteOrderMark", "\xEF\xBB\xBF", "empty", "Error: the file is empty"),
        Row("OneByteTooMany", padded, "too-long",
            "Error: the file has 256001 bytes: the add-in reads the first 256000 only"),
        {"Utf16",
         "\xFF\xFE{\0}\0"s,
         {{"not-utf-8", "Error: the file is UTF-16, and has to be UTF-8"},
          {"syntax", "Error: line 1, column 1: a value has to stand here, not \"\uFFFD\uFFFD{\""}}},
        Row("Latin1",
            With("Schneller", "Gr\xF6\xDF"
                              "er"),
            "not-utf-8", "Error: line 8 is not UTF-8"),
        Row("ZeroByte", kGoodFile + "\0x"s, "zero-byte",
            "Error: byte " + std::to_string(kGoodFile.size() + 1) +
                " is zero: the add-in does not read beyond it"),
    };
}

std::vector<CFindingRow> TextRows()
{
    const auto syntax = [](const char* name, const std::string& bytes, const std::string& line) {
        return Row(name, bytes, "syntax", "Error: " + line);
    };
    return {
        syntax("HtmlPage", "<!DOCTYPE html>",
               "line 1, column 1: a value has to stand here, not \"<!DOCTYPE html>\""),
        syntax("OnlyBlanks", " \n ", "line 2, column 2: a value has to stand here, not the end of the text"),
        syntax("NoCommaBetweenMembers", With("1,\n", "1\n"),
               "line 4, column 9: \",\" or \"}\" has to stand here, not \"\"minorVersion\": 3,\""),
        syntax("CommaAfterTheLastMember", With("Faster.\"", "Faster.\","),
               "line 12, column 9: a name in quotation marks has to stand here, not \"}\""),
        syntax("NoColon", With("\"x64\":", "\"x64\""),
               "line 2, column 11: \":\" has to stand here, not \"{\""),
        syntax("NoValue", With(": 1,", ": ,"), "line 3, column 25: a value has to stand here, not \",\""),
        syntax("NoQuotationMarks", With("\"default\"", "default"),
               "line 11, column 13: a name in quotation marks has to stand here, not \"default: "
               "\"Faster.\"\""),
        syntax("ArrayWithoutComma", "{\"a\": [1 2]}",
               "line 1, column 10: \",\" or \"]\" has to stand here, not \"2]}\""),
        syntax("ArrayWithCommaAtItsEnd", "[1,]", "line 1, column 4: a value has to stand here, not \"]\""),
        syntax("CutOff", kGoodFile.substr(0, kGoodFile.find("}")),
               "line 12, column 9: \",\" or \"}\" has to stand here, not the end of the text"),
        syntax("ColumnsCountCharactersAlsoAfterTabulators", "{\t\"\U0001F600\":\tx}",
               "line 1, column 8: a value has to stand here, not \"x}\""),
        syntax("TooManyLevels", std::string(65, '['),
               "line 1, column 65: too many arrays and objects inside each other, not \"[\""),
        Row("LineBreakInAText", With("Faster.", "Faster\nand better."), "not-json",
            "Error: line 11, column 31: \"\\nand better.\"\" is not JSON here, although the add-in reads "
            "it; what "
            "follows could not be checked"),
        Row("LeadingZero", With(": 3,", ": 03,"), "not-json",
            "Error: line 4, column 26: \"3,\" is not JSON here, although the add-in reads it; what follows "
            "could "
            "not be checked"),
        Row("TextAfterTheValue", kGoodFile + "\n// end", "text-after-value",
            "Error: line 15, column 1: \"// end\" stands behind the end of the value"),
        Row("NameTwice", With("\"minorVersion\": 3", "\"minorVersion\": 2, \"minorVersion\": 3"),
            "duplicate-name", "Error: x64.minorVersion stands more than once: the add-in takes the last"),
        {"NameThreeTimesInAnArrayElement",
         With("\"x64\"", R"("more": [{"a": 1}, {"a": 1, "a": 2, "a": 3}], "x64")"),
         {{"duplicate-name", "Error: more[1].a stands more than once: the add-in takes the last"},
          {"unknown-name", "Warning: more is a name that the add-in does not know"}}},
    };
}

// One whose numbers are 1 and 1.
constexpr char kSignature[] = "MAYCAQECAQE=";

std::string WithSignature(const std::string& value)
{
    return With("\"x64\": {", "\"x64\": {\"signature\": \"" + value + "\", ");
}

std::vector<CFindingRow> MemberRows()
{
    const std::string notParsed =
        "Error: x64.signature is not a signature (DER on the curve P-256, in base64)";
    const auto wrong = [](const char* name, const std::string& bytes, const std::string& line) {
        return Row(name, bytes, "wrong-type", "Error: " + line);
    };
    const std::string number = ", and has to be an integer";
    return {
        wrong("RootIsAnArray", "[1]", "the file is an array, and has to be an object"),
        Row("NoEntry", "{}", "missing", "Error: x64 is missing"),
        wrong("EntryIsNull", R"({"x64": null})", "x64 is null, and has to be an object"),
        Row("NoMajorVersion", With("\"majorVersion\": 1,", ""), "missing",
            "Error: x64.majorVersion is missing"),
        Row("NoMinorVersion", With("\"minorVersion\": 3,", ""), "missing",
            "Error: x64.minorVersion is missing"),
        Row("NoBuildNumber", With("\"buildNumber\": 0,", ""), "missing", "Error: x64.buildNumber is missing"),
        Row("NoLink", With("\"downloadLink\": \""s + kGoodLink + "\",", ""), "missing",
            "Error: x64.downloadLink is missing"),
        wrong("VersionIsAText", With(": 1,", ": \"1\","), "x64.majorVersion is a text" + number),
        wrong("VersionHasAPoint", With(": 3,", ": 3.0,"),
              "x64.minorVersion is a number with a point or an exponent" + number),
        wrong("VersionIsTrue", With(": 0,", ": true,"), "x64.buildNumber is a truth value" + number),
        wrong("LinkIsANumber", With("\""s + kGoodLink + "\"", "7"),
              "x64.downloadLink is an integer, and has to be a text"),
        wrong("DescriptionIsAText",
              R"({"x64": {"majorVersion": 1, "minorVersion": 3, "buildNumber": 0,)"
              R"( "downloadLink": "http://h/s.exe", "description": "new"}})",
              "x64.description is a text, and has to be an object"),
        Row("NoDescription",
            R"({"x64": {"majorVersion": 1, "minorVersion": 3, "buildNumber": 0,)"
            R"( "downloadLink": "http://h/s.exe"}})",
            "missing", "Error: x64.description is missing"),
        wrong("TextIsANumber", With("\"Schneller.\"", "1"),
              "x64.description.de is an integer, and has to be a text"),
        wrong("SignatureIsANumber", With("\"x64\": {", "\"x64\": {\"signature\": 1, "),
              "x64.signature is an integer, and has to be a text"),
        Row("Beyond32Bits", With(": 0,", ": 2147483648,"), "beyond-32-bits",
            "Error: x64.buildNumber is 2147483648, beyond 32 bits: the add-in reads -2147483648"),
        Row("BelowThem", With(": 0,", ": -2147483649,"), "beyond-32-bits",
            "Error: x64.buildNumber is -2147483649, beyond 32 bits: the add-in reads 2147483647"),
        Row("BeyondSigned64Bits", With(": 0,", ": 18446744073709551615,"), "beyond-32-bits",
            "Error: x64.buildNumber is 18446744073709551615, beyond 32 bits: the add-in reads -1"),
        {"AtTheLimitOf32Bits", With(": 0,", ": 2147483647,"), {}},
        {"NotNewer",
         kGoodFile,
         {{"not-newer", "Error: x64 publishes 1.3.0, which is not newer than the installed 1.3.0"}},
         PublishedVersion{1, 3, 0}},
        {"Newer", kGoodFile, {}, PublishedVersion{1, 2, 999}},
        {"NewerThanAnOlderInstalledOne", With(": 3,", ": 2,"), {}, PublishedVersion{1, 1, 0}},
        Row("NotNewerThanThisBuild", With(": 3,", ": 2,"), "not-newer",
            "Warning: x64 publishes 1.2.0, which is not newer than this build's 1.2.0"),
        {"NoSignature", kGoodFile, {{"missing", "Error: x64.signature is missing"}}, {}, true},
        {"EmptySignature", WithSignature(""), {{"missing", "Error: x64.signature is empty"}}, {}, true},
        Row("CutSignature", WithSignature("MEUCIQ=="), "signature-not-parsed", notParsed),
        Row("TextBehindTheSignature", WithSignature(std::string(kSignature) + "\\u0000x"),
            "signature-not-parsed", notParsed),
        {"CutSignatureWithAKey", WithSignature("MEUCIQ=="), {{"signature-not-parsed", notParsed}}, {}, true},
        {"SignatureWithoutAKey", WithSignature(kSignature), {}},
        {"SignatureWithoutAnInstaller",
         WithSignature(kSignature),
         {{"signature-not-verified", "Warning: x64.signature is not verified without --installer"}},
         {},
         true},
    };
}

std::vector<CFindingRow> NameRows()
{
    const auto unknown = [](const char* name, const std::string& bytes, const std::string& line) {
        return Row(name, bytes, "unknown-name", "Warning: " + line);
    };
    const std::string isUnknown = " is a name that the add-in does not know";
    return {
        unknown("EntryFor32Bits", With("\"x64\"", "\"x86\": {}, \"x64\""),
                "x86" + isUnknown + ": it is read by 32-bit add-ins only"),
        unknown("EntryInCapitals", With("\"x64\"", "\"X64\": {}, \"x64\""),
                "X64" + isUnknown + "; perhaps \"x64\" is meant"),
        unknown("MemberWithAWrongLetter", With("\"x64\": {", "\"x64\": {\"downloadlnk\": \"\", "),
                "x64.downloadlnk" + isUnknown + "; perhaps \"downloadLink\" is meant"),
        unknown("MemberWithoutMeaning", With("\"x64\": {", "\"x64\": {\"note\": \"\", "),
                "x64.note" + isUnknown),
        unknown("EnglishDescription", With("\"de\"", "\"en\": \"Faster.\", \"de\""),
                "x64.description.en" + isUnknown + ": English users read \"default\""),
        {"DefaultInCapitals",
         With("\"default\"", "\"Default\""),
         {{"unknown-name", "Warning: x64.description.Default" + isUnknown + "; perhaps \"default\" is meant"},
          {"no-default",
           "Error: x64.description.default is missing: users without a text of their own are not "
           "offered the update"}}},
    };
}

std::vector<CFindingRow> LinkRows()
{
    const auto link = [](const char* name, const std::string& value, const char* code,
                         const std::string& line) {
        return Row(name, With(kGoodLink, value), code, "Error: x64.downloadLink " + line);
    };
    const std::string cannotBeAName = "ends with what cannot be the name of a file: ";
    return {
        link("LinkToAFolder", "http://h/folder/", "link-without-name",
             "has no file name behind its last \"/\": \"http://h/folder/\""),
        link("LinkWithoutASlash", "setup.exe", "link-without-name",
             "has no file name behind its last \"/\": \"setup.exe\""),
        link("EmptyLink", "", "link-without-name", "has no file name behind its last \"/\": \"\""),
        link("LinkWithoutAScheme", "h/setup.exe", "link-not-parsed", "is no URL: \"h/setup.exe\""),
        link("HttpsLink", "https://h/setup.exe", "link-not-http",
             "does not begin with \"http://\": \"https://h/setup.exe\""),
        link("FtpLink", "ftp://h/setup.exe", "link-not-http",
             "does not begin with \"http://\": \"ftp://h/setup.exe\""),
        link("LinkToADevice", "http://h/con.exe", "link-file-name", cannotBeAName + "\"con.exe\""),
        link("LinkToAStream", "http://h/a:b.exe", "link-file-name", cannotBeAName + "\"a:b.exe\""),
        link("LinkWithAQuery", "http://h/get?f=s.exe", "link-file-name", cannotBeAName + "\"get?f=s.exe\""),
        link("LinkToAPackage", "http://h/setup.msi", "link-not-exe",
             "does not end with \".exe\", so that Windows does not start the file: \"setup.msi\""),
        link("LinkWithALongName", "http://h/" + std::string(177, 'x') + ".EXE", "link-name-too-long",
             "ends with a file name of 181 characters, with which the path is too long for users with a long "
             "name"),
        {"LinkWithTheLongestName", With(kGoodLink, "http://h/" + std::string(176, 'x') + ".EXE"), {}},
    };
}

std::vector<CFindingRow> DescriptionRows()
{
    const std::string notOffered = ": users without a text of their own are not offered the update";
    const auto lines = [](int count) {
        std::string text = "line";
        for (int line = 1; line < count; ++line)
        {
            text += "\\nline";
        }
        return text;
    };
    return {
        Row("NoDefault", With(",\n            \"default\": \"Faster.\"", ""), "no-default",
            "Error: x64.description.default is missing" + notOffered),
        Row("NullDefault", With("\"Faster.\"", "null"), "no-default",
            "Error: x64.description.default is missing" + notOffered),
        Row("EmptyDefault", With("Faster.", ""), "no-default",
            "Error: x64.description.default is empty" + notOffered),
        Row("EmptyText", With("Daha hızlı.", ""), "empty-text",
            "Warning: x64.description.tr is empty: its readers are not offered the update, and do not read "
            "\"default\" instead"),
        Row("TextThatBeginsWithAZero", With("Schneller.", "\\u0000Schneller."), "empty-text",
            "Warning: x64.description.de is empty: its readers are not offered the update, and do not read "
            "\"default\" instead"),
        Row("TextLikeRtf", With("Schneller.", "{\\\\rtf1 Schneller.}"), "rtf",
            "Warning: x64.description.de begins like RTF: the box may show it as such"),
        {"AsManyLinesAsAreSeen", With("Schneller.", lines(14)), {}},
        Row("OneLineMore", With("Schneller.", lines(15)), "too-long-for-box",
            "Warning: x64.description.de has 15 lines in its box, which shows 14 without scrolling"),
        {"NoOtherTexts",
         With(R"("de": "Schneller.",
            "es": "Más rápido.",
            "tr": "Daha hızlı.",)",
              ""),
         {}},
    };
}

} // namespace

const std::string kGoodFile = R"({
    "x64": {
        "majorVersion": 1,
        "minorVersion": 3,
        "buildNumber": 0,
        "downloadLink": "http://www.orva.example/downloads/outlook/OrvaSetup-1.3.0.exe",
        "description": {
            "de": "Schneller.",
            "es": "Más rápido.",
            "tr": "Daha hızlı.",
            "default": "Faster."
        }
    }
})";

void PrintTo(const CExpectedFinding& finding, std::ostream* out)
{
    *out << finding.code << ": " << finding.line;
}

void PrintTo(const CFindingRow& row, std::ostream* out)
{
    *out << row.name;
}

std::string NameOf(const testing::TestParamInfo<CFindingRow>& info)
{
    return info.param.name;
}

std::string With(const std::string& what, const std::string& by)
{
    std::string file = kGoodFile;
    return file.replace(file.find(what), what.size(), by);
}

std::vector<CFindingRow> FindingRows()
{
    std::vector<CFindingRow> all;
    for (const auto& rows : {ByteRows(), TextRows(), MemberRows(), NameRows(), LinkRows(), DescriptionRows()})
    {
        all.insert(all.end(), rows.begin(), rows.end());
    }
    return all;
}

std::vector<CExpectedFinding> FindingsOf(const publishing::CFindings& findings, const std::string& report)
{
    std::vector<CExpectedFinding> found;
    for (const publishing::CFinding& finding : findings.All())
    {
        found.push_back({finding.code, {}});
    }
    std::istringstream lines(report);
    std::size_t next = 0;
    for (std::string line; std::getline(lines, line);)
    {
        if ((line.starts_with("Error: ") || line.starts_with("Warning: ")) && next < found.size())
        {
            found[next++].line = line;
        }
    }
    return found;
}

} // namespace orva::test
