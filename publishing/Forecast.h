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

/// What one check shows, in this order.
struct CForecast
{
    /// Texts of message boxes. Empty texts are shown, too.
    std::vector<std::wstring> messages;
    /// The description in the offer; absent if nothing is offered.
    std::optional<std::wstring> offer;
    /// Texts of message boxes after "Install"; empty if the download starts or the user sees nothing.
    std::vector<std::wstring> afterInstall;
    bool isDownloaded = false;

    bool operator==(const CForecast&) const = default;
};

/// `text` is empty if the add-in gets no text at all.
CForecast Foretell(const CUpdateText& text, const CAddIn& addIn, WORD language, Trigger trigger);

} // namespace publishing
