#include "host/MailPage.h"

#include "host/Painting.h"

#include <algorithm>

namespace orva::host
{
namespace
{

constexpr int kFoldersWidth = 190;
constexpr int kMessagesWidth = 330;
constexpr int kRowHeight = 26;
constexpr int kMessageHeight = 52;
constexpr int kIndent = 14;
constexpr int kFirstTab = 84;
constexpr int kTabWidth = 104;

constexpr const wchar_t* kTabs[] = {L"Home", L"Send / Receive", L"Folder", L"View"};
constexpr const wchar_t* kFolders[] = {L"Favorites",     L"Inbox (2)",   L"Drafts", L"Sent Items",
                                       L"Deleted Items", L"Junk E-mail", L"Outbox"};

struct Message
{
    const wchar_t* from;
    const wchar_t* subject;
    const wchar_t* received;
    bool isUnread;
};

constexpr Message kMessages[] = {
    {L"Ada Example", L"Minutes of this morning's meeting", L"09:42", true},
    {L"Emre Sample", L"Photos from the trade fair", L"09:15", true},
    {L"Carla Muster", L"Re: Offer for the new workshop", L"Mon", false},
    {L"Reception", L"Parcel waiting for you", L"Mon", false},
    {L"Ben Placeholder", L"Lunch on Thursday?", L"Sun", false},
};

void PaintTabs(HDC dc, RECT strip, HFONT font)
{
    FillBox(dc, strip, kPane);
    RECT tab{kFirstTab, strip.top, kFirstTab + kTabWidth, strip.bottom};
    for (const wchar_t* caption : kTabs)
    {
        DrawLine(dc, caption, tab, font, kText, DT_CENTER);
        OffsetRect(&tab, kTabWidth, 0);
    }
    strip.top = strip.bottom - 1;
    FillBox(dc, strip, kLine);
}

void PaintFolders(HDC dc, const RECT& area, HFONT font, HFONT boldFont)
{
    FillBox(dc, area, kPane);
    RECT row{area.left, area.top + kIndent / 2, area.right, area.top + kIndent / 2 + kRowHeight};
    for (const wchar_t* folder : kFolders)
    {
        const bool isTitle = folder == kFolders[0];
        const bool isCurrent = folder == kFolders[1];
        if (isCurrent)
        {
            FillBox(dc, row, kLine);
        }
        RECT text = row;
        text.left += isTitle ? kIndent : 2 * kIndent;
        DrawLine(dc, folder, text, isTitle || isCurrent ? boldFont : font, isTitle ? kHeading : kText);
        OffsetRect(&row, 0, kRowHeight);
    }
}

void PaintMessages(HDC dc, const RECT& area, HFONT font, HFONT boldFont)
{
    FillBox(dc, area, kWhite);
    RECT row{area.left, area.top, area.right, area.top + kMessageHeight};
    for (const Message& message : kMessages)
    {
        RECT line{row.left + kIndent, row.top + 4, row.right - kIndent, row.top + kRowHeight};
        DrawLine(dc, message.received, line, font, kQuietText, DT_RIGHT);
        line.right -= 60;
        DrawLine(dc, message.from, line, message.isUnread ? boldFont : font, kText);
        line = {row.left + kIndent, row.top + kRowHeight - 4, row.right - kIndent, row.bottom - 2};
        DrawLine(dc, message.subject, line, font, message.isUnread ? kAccent : kQuietText);
        FillBox(dc, {row.left, row.bottom - 1, row.right, row.bottom}, kLine);
        OffsetRect(&row, 0, kMessageHeight);
    }
}

void PaintReadingPane(HDC dc, const RECT& area, HFONT font, HFONT boldFont)
{
    FillBox(dc, area, kWhite);
    FillBox(dc, {area.left, area.top, area.left + 1, area.bottom}, kLine);
    RECT line{area.left + 2 * kIndent, area.top + kIndent, area.right - kIndent,
              area.top + kIndent + kRowHeight};
    DrawLine(dc, kMessages[0].subject, line, boldFont, kHeading);
    OffsetRect(&line, 0, kRowHeight);
    DrawLine(dc, kMessages[0].from, line, font, kQuietText);
    OffsetRect(&line, 0, 2 * kRowHeight);
    for (const wchar_t* text : {L"Hello,", L"the minutes are on the shared drive.", L"Best regards", L"Ada"})
    {
        DrawLine(dc, text, line, font, kText);
        OffsetRect(&line, 0, kRowHeight);
    }
}

} // namespace

void PaintMailPage(HDC dc, const RECT& client, bool hasTabs, HFONT font, HFONT boldFont)
{
    RECT area = client;
    if (hasTabs)
    {
        area.bottom = kTabStripHeight;
        PaintTabs(dc, area, font);
        area = client;
        area.top = kTabStripHeight;
    }
    const LONG folders = std::min<LONG>(area.left + kFoldersWidth, area.right);
    const LONG messages = std::min<LONG>(folders + kMessagesWidth, area.right);
    PaintFolders(dc, {area.left, area.top, folders, area.bottom}, font, boldFont);
    PaintMessages(dc, {folders, area.top, messages, area.bottom}, font, boldFont);
    PaintReadingPane(dc, {messages, area.top, area.right, area.bottom}, font, boldFont);
}

} // namespace orva::host
