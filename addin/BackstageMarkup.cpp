#include "addin/BackstageMarkup.h"

#include "res/resource.h"
#include "support/TextUtilities.h"
#include "ui/LocalizedResources.h"
#include "ui/VersionLine.h"

#include <afxwin.h>

namespace
{

struct Placeholder
{
    const wchar_t* name;
    UINT stringId;
};

// In the order of replacement: a string that holds a later placeholder is expanded.
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

} // namespace

void FillBackstageMarkup(std::wstring& markup)
{
    for (const Placeholder& placeholder : kPlaceholders)
    {
        ReplaceAll(markup, placeholder.name, PlaceholderText(placeholder.stringId));
    }
}
