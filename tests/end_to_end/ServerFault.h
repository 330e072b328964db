// One thing that the update server does wrong, and what comes of it; and how to say the usual ones briefly.
#pragma once

#include "harness/ServerScript.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace orva::test
{

using Texts = std::vector<std::wstring>;
using Log = std::vector<std::string>;

/// The most that is read of a body, and the most that is inflated, in bytes.
inline constexpr size_t kBodyLimit = 256'000;
/// The exception's text that ends a check whose reply has no date.
inline constexpr char kNoDateError[] = "invalid vector<T> subscript";

/// One fault: what the server does, and what comes of it. What is shown lists message boxes by their text,
/// the offer by its caption.
struct CFault
{
    const char* name;
    CServerScript script;
    Log log;
    Texts shownSilently;
    Texts shownExplicitly;
    /// The end of the log's last line "... Caught exception", if the check ends with one.
    const char* exception = nullptr;
};

void PrintTo(const CFault& fault, std::ostream* out);

/// Faults of the connection and of the reply around its text.
std::vector<CFault> HttpFaults();
/// Odd and broken heads: a sample in the everyday run, all in the thorough one.
std::vector<CFault> HeadFaults();
/// Texts that are not what they should be.
std::vector<CFault> TextFaults();

/// The log, with WinINet's own text for an error replaced by "*". That text ends with a line end, which makes
/// a line of its own.
Log WithoutSystemTexts(const Log& log);

/// The log of a check whose request has this log and gave no text.
Log Empty(Log log);
/// The lines of a text that is read up to its versions.
Log Versions(const std::string& major, const std::string& minor, const std::string& build);
/// The log of a check that reads this text and then writes these lines.
Log Parsed(const std::string& text, const Log& then);
/// The same for a text that is not wholly JSON.
Log Unparsed(const std::string& text, const Log& then);
/// The lines of a newer build on the way to its offer.
Log Offered();
CServerScript Reply(const std::string& text);
/// A text that cannot be read as JSON at all.
CFault Unreadable(const char* name, const std::string& text);
/// A reply with this status, which is not one of those that are read.
CFault Status(int status, const char* name);
/// Read as JSON, and then not of the types that the check takes.
CFault WrongType(const char* name, const std::string& text, const Log& then, const char* exception);
/// Read as JSON, and then without what the check needs.
CFault NothingShown(const char* name, const std::string& text, const Log& then);
CFault NotNewer(const char* name, const std::string& major, const std::string& minor,
                const std::string& build, const Log& versions);
CFault Newer(const char* name, const std::string& major, const std::string& minor, const std::string& build,
             const Log& versions);
/// The log of a check whose reply was read and has no text.
Log EmptyTextLog();
/// The log of a check that got no reply.
Log NoReply();
/// The log of a check up to the exception that a reply without a date raises.
Log NoDate();

/// Served with the installed build's file, however oddly, and read.
CFault ReadAsLatest(const char* name, CServerScript script);
/// Ends with the exception of a reply without a date.
CFault WithoutDate(const char* name, CServerScript script);

} // namespace orva::test
