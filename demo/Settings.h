// What ./run asks of the play.
#pragma once

#include <string>

namespace orva::demo
{

/// What the check at Outlook's start has to come to. A file that is published as it is may lead to anything.
enum class Outcome
{
    Offer,
    Silence,
    Any
};

/// The command line of the program. Paths are absolute, in Windows' form and without a final backslash.
struct CSettings
{
    int office = 0;
    /// "en", "de", "es" or "tr".
    std::string language;
    /// The published version, X.Y.Z; empty if a file is published.
    std::string version;
    /// The file that is published as it is.
    std::wstring file;
    /// "install", "later" or "cancel".
    std::string answer;
    /// Whether a person is the user.
    bool isForPerson = false;
    /// Whether all windows are shown in all languages, instead of the play.
    bool isGallery = false;
    /// Where pictures and logs go.
    std::wstring out;
    /// The web server's folder and its port on loopback.
    std::wstring server;
    unsigned short port = 0;
    /// The script that takes pictures.
    std::wstring camera;
    Outcome outcome = Outcome::Any;
};

/// Throws std::out_of_range if an option is missing.
CSettings ReadSettings(int count, wchar_t** arguments);

} // namespace orva::demo
