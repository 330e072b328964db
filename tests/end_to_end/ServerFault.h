// Faults of the update server with their expected outcomes, and functions that make the common ones.
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

/// One fault: what the server does, and its outcome. Message boxes are listed by their text, the offer by its
/// caption.
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

/// Faults of the connection and of the reply, except its text.
std::vector<CFault> HttpFaults();
/// Unusual and broken heads: all in the thorough run, otherwise a sample.
std::vector<CFault> HeadFaults();
/// Update files that are broken, incomplete or at the limits of their numbers.
std::vector<CFault> TextFaults();

/// The log, with WinINet's own text for an error replaced by "*". That text ends with a line end, which makes
/// a line of its own.
Log WithoutSystemTexts(const Log& log);

/// The log of a check whose request has this log and gave no text.
Log Empty(Log log);
/// The lines of reading a text up to its versions.
Log Versions(const std::string& major, const std::string& minor, const std::string& build);
/// The log of a check that reads this text and then writes these lines.
Log Parsed(const std::string& text, const Log& then);
/// The same for a text that is not wholly JSON.
Log Unparsed(const std::string& text, const Log& then);
/// The lines between a newer build's versions and its offer.
Log Offered();
CServerScript Reply(const std::string& text);
/// A text of which nothing can be read as JSON.
CFault Unreadable(const char* name, const std::string& text);
/// A reply with this status, whose body is not read.
CFault Status(int status, const char* name);
/// JSON whose types are not those that the check takes.
CFault WrongType(const char* name, const std::string& text, const Log& then, const char* exception);
/// JSON without a member that the check needs.
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

/// An unusual reply from which the installed build's file is read all the same.
CFault ReadAsLatest(const char* name, CServerScript script);
/// A reply without a date, which ends the check with an exception.
CFault WithoutDate(const char* name, CServerScript script);

} // namespace orva::test
