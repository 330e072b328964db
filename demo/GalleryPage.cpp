#include "demo/GalleryPage.h"

#include "harness/Files.h"
#include "harness/Text.h"

#include <sstream>

namespace orva::demo
{

namespace
{

struct CRow
{
    const char* name;
    const char* title;
    /// The text that is the window's subject, if there is one.
    const char* text = "";
};

constexpr CRow kRows[] = {
    {"offer", "The offer of a newer version"},
    {"download-start", "The download in its first second"},
    {"download-end", "The download at its end"},
    {"download-canceled", "The download after Cancel", "IDS_DOWNLOAD_CANCELED"},
    {"update-canceled", "Message after a canceled or failed download", "IDS_UPDATE_CANCELED"},
    {"download-failed", "Message when the server does not have the installer", "IDS_CONNECT_ERROR"},
    {"file-not-created", "Message when the installer's name is not allowed", "IDS_FILE_NOT_CREATED"},
    {"bad-link", "Message when the link does not name a file", "IDS_URL_NOT_PARSED"},
    {"latest", "Message when the latest version is installed", "IDS_LATEST_INSTALLED"},
    {"no-connection", "Message when the server does not answer as it should", "IDS_CONNECT_ERROR"},
    {"not-parsed", "Message when the update information is incomplete", "IDS_UPDATE_INFO_NOT_PARSED"},
    {"about", "The About dialog of Outlook 2007"},
    {"help-menu", "The command in the Help menu of Outlook 2007", "IDS_ABOUT_COMMAND"},
    {"file-view", "The tab in the File view of Outlook 2010"},
    {"setup-installs", "The setup, when nothing is installed"},
    {"setup-installed", "The setup at its end"},
    {"setup-replaces", "The setup, when an older version is installed"},
    {"setup-replaced", "The setup at its end, while Outlook is open"},
    {"setup-newer", "The setup, when a newer version is installed", "NewerInstalled"},
    {"uninstall", "The uninstaller"},
    {"uninstalled", "The uninstaller at its end"},
};

constexpr char kHead[] = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>ORVA Connector: every window in every language</title>
<style>
body { font-family: sans-serif; margin: 1em; }
table { border-collapse: collapse; table-layout: fixed; width: 100%; min-width: 104em; }
th, td { border: 1px solid #ccc; padding: 0.5em; text-align: left; vertical-align: top; }
th:first-child { width: 11em; }
thead th { background: #eee; }
img { max-width: 100%; }
/* Only the menu, in its own size. */
img.help-menu { width: 100%; height: 8em; object-fit: none; object-position: -180px 0; }
code { font-weight: normal; font-size: 0.7em; overflow-wrap: anywhere; }
</style>
</head>
<body>
<h1>ORVA Connector: every window in every language</h1>
<p>A picture leads to itself in full size. Under a window's name stands the text of <code>res/strings/</code> or <code>setup/texts/</code> that it shows.</p>
<table>
<thead><tr><th>Window</th><th>English</th><th>German</th><th>Spanish</th><th>Turkish</th></tr></thead>
<tbody>
)";

constexpr char kEnd[] = "</tbody>\n</table>\n</body>\n</html>\n";

} // namespace

std::wstring GalleryPicture(const std::wstring& folder, const std::string& row, const std::string& language)
{
    return folder + L"\\" + test::Widen(row + "-" + language + ".png");
}

const char* WhyNoWindow(const std::string& row, const std::string& language)
{
    return row == "file-view" && language == "es"
               ? "No tab: one of its texts has quotation marks, which break the markup. Kept so on purpose."
               : nullptr;
}

int WriteGalleryPage(const std::wstring& folder, const std::string& wanted)
{
    int missing = 0;
    std::ostringstream page;
    page << kHead;
    for (const CRow& row : kRows)
    {
        page << "<tr><th>" << row.title << "<br><code>" << row.text << "</code></th>\n";
        for (const char* const language : kGalleryLanguages)
        {
            page << "<td>";
            if (const char* const reason = WhyNoWindow(row.name, language))
            {
                page << reason;
            }
            else if (test::FileExists(GalleryPicture(folder, row.name, language)))
            {
                const std::string file = std::string(row.name) + "-" + language + ".png";
                page << "<a href=\"" << file << "\"><img class=\"" << row.name << "\" src=\"" << file
                     << "\" alt=\"" << row.title << ", " << language << "\"></a>";
            }
            else
            {
                page << "The picture was not taken.";
                missing += language == wanted ? 1 : 0;
            }
            page << "</td>\n";
        }
        page << "</tr>\n";
    }
    page << kEnd;
    test::WriteFileBytes(folder + L"\\index.html", page.str());
    return missing;
}

} // namespace orva::demo
