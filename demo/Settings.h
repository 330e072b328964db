// What ./run asks of the play.
#pragma once

#include <string>

namespace orva::demo
{

/// The program's arguments, in this order. ./run gives them all. Paths are in Windows' form.
struct CSettings
{
    /// "user" for the play, "show" if a person is the user, "gallery" or "preview".
    std::wstring play;
    std::wstring office;
    /// "en", "de", "es" or "tr".
    std::wstring language;
    /// What is published: a version, or the path of a file.
    std::wstring publish;
    /// What the start-up check has to come to: "offer", "silence" or, with a file, "any" of both or an error.
    std::wstring outcome;
    /// "install", "later" or "cancel".
    std::wstring answer;
    /// "signed" if the add-in holds a publisher's key, otherwise "plain".
    std::wstring signing;
    /// The folder for pictures and logs.
    std::wstring out;
    /// The web server: its port on loopback, its log, and the two files that it publishes.
    std::wstring port;
    std::wstring requests;
    std::wstring updateInfo;
    std::wstring installer;
    /// The setup program of the installed version.
    std::wstring setup;
    /// The script that takes pictures.
    std::wstring camera;
};

} // namespace orva::demo
