// What each user will see of an update-information file: the add-in's check, foretold with the add-in's own
// functions.
#pragma once

#include "publishing/UpdateText.h"
#include "update/PublishedVersion.h"

#include <windef.h>

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace publishing
{

/// Users by the language of their Office.
struct CUser
{
    const wchar_t* name;
    WORD language;
};

/// One user for every way in which texts and descriptions are chosen.
std::span<const CUser> AllUsers();

/// An add-in that users have.
struct CAddIn
{
    PublishedVersion version;
    /// Whether it starts signed installers only.
    bool hasKey;
};

enum class Trigger
{
    /// Outlook's start.
    Start,
    /// The user's press on "Update".
    Request,
};

struct COffer
{
    /// The published version, "1.3.0".
    std::wstring version;
    /// The description in the user's language.
    std::wstring text;

    bool operator==(const COffer&) const = default;
};

/// What one check shows, in this order.
struct CForecast
{
    /// Texts of message boxes. Empty texts are shown, too.
    std::vector<std::wstring> messages;
    std::optional<COffer> offer;
    /// Texts of message boxes after "Install", or after the download if there is one.
    std::vector<std::wstring> afterInstall;
    /// Whether "Install" downloads the installer, and starts it unless there are messages.
    bool isDownloaded = false;

    bool operator==(const CForecast&) const = default;
};

/// `text` is empty if the add-in gets no text at all.
CForecast Foretell(const CUpdateText& text, const CAddIn& addIn, WORD language, Trigger trigger);

} // namespace publishing
