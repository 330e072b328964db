#include "addin/BackstageMarkup.h"

#include "res/resource.h"
#include "ui/LocalizedResources.h"
#include "ui/VersionLine.h"

#include <afxwin.h>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace
{

struct Placeholder
{
    std::wstring_view name;
    UINT stringId;
};

// In the order of replacement, which decides what becomes of a string that holds another placeholder.
constexpr Placeholder kPlaceholders[] = {
    {L"__IDS_APPTITLE__", IDS_APPTITLE},
    {L"__IDS_DESCRIPTION1__", IDS_DESCRIPTION1},
    {L"__IDS_DESCRIPTION2__", IDS_DESCRIPTION2},
    {L"__IDS_DESCRIPTION3__", IDS_DESCRIPTION3},
    {L"__IDS_LINKS_TITLE__", IDS_LINKS_TITLE},
    {L"__IDS_LINKS_DESCRIPTION__", IDS_LINKS_DESCRIPTION},
    {L"__IDS_LINK1_TITLE__", IDS_LINK1_TITLE},
    {L"__IDS_LINK1_HREF__", IDS_LINK1_HREF},
    {L"__IDS_LINK2_TITLE__", IDS_LINK2_TITLE},
    {L"__IDS_LINK2_HREF__", IDS_LINK2_HREF},
    {L"__IDS_LINK3_TITLE__", IDS_LINK3_TITLE},
    {L"__IDS_LINK3_HREF__", IDS_LINK3_HREF},
    {L"__IDS_VERSION_TITLE__", IDS_VERSION_TITLE},
    {L"__IDS_VERSION_DESCRIPTION__", IDS_VERSION_DESCRIPTION},
    {L"__IDS_UPDBUTTON_LABEL__", IDS_UPDBUTTON_LABEL},
    {L"__IDS_UPDBUTTON_TIP__", IDS_UPDBUTTON_TIP},
    {L"__IDS_VERSION_LINE1__", IDS_VERSION_LINE1},
    {L"__IDS_VERSION_LINE2__", IDS_VERSION_LINE2},
};

CString PlaceholderText(UINT stringId)
{
    return stringId == IDS_VERSION_LINE1 ? FormatVersionLine() : GetLocalizedResources().LoadString(stringId);
}

// Appends `text` to `filled`, with the placeholders from `first` on replaced.
//
// Comes to what replacing the placeholders one after the other comes to, in one pass over the markup: what a
// placeholder is replaced by is looked through for the later ones only.
void AppendFilled(std::wstring_view text, const Placeholder* first, std::wstring& filled)
{
    constexpr std::wstring_view kPrefix = L"__IDS_";
    for (std::size_t from = 0;;)
    {
        const std::size_t at = text.find(kPrefix, from);
        if (at == std::wstring_view::npos)
        {
            filled.append(text);
            return;
        }
        const std::wstring_view rest = text.substr(at);
        const Placeholder* const found =
            std::find_if(first, std::end(kPlaceholders), [rest](const Placeholder& placeholder) {
                return rest.starts_with(placeholder.name);
            });
        if (found == std::end(kPlaceholders))
        {
            from = at + 1;
            continue;
        }
        filled.append(text.substr(0, at));
        const CString replacement = PlaceholderText(found->stringId);
        AppendFilled({replacement.GetString(), static_cast<std::size_t>(replacement.GetLength())}, found + 1,
                     filled);
        text = rest.substr(found->name.size());
        from = 0;
    }
}

} // namespace

void FillBackstageMarkup(std::wstring& markup)
{
    std::wstring filled;
    // The texts are longer than their placeholders.
    filled.reserve(2 * markup.size());
    AppendFilled(markup, kPlaceholders, filled);
    markup = std::move(filled);
}
