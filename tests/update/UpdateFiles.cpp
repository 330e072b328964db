#include "update/UpdateFiles.h"

#include "harness/Text.h"
#include "update/UpdateFixture.h"

#include <ostream>

namespace orva::test
{
namespace
{

constexpr char kCheck[] = "CheckJSONObject";
constexpr char kDescribe[] = "DetermineUpdateDescription";

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

} // namespace

void PrintTo(const CFile& file, std::ostream* out)
{
    *out << file.name;
}

std::vector<CFile> UpdateFiles()
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

COfferInPieces::COfferInPieces()
    : m_text(OfferOf("http://h/s")), m_entry(Behind("{\"x64\": {")), m_numbers(Behind("\"buildNumber\": 0")),
      m_link(Behind("http://h/s\"")), m_description(Behind("Faster contacts.\""))
{
}

CFile COfferInPieces::Beginning(size_t size) const
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

} // namespace orva::test
