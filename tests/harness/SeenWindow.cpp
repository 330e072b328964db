#include "harness/SeenWindow.h"

#include "harness/Text.h"
#include "harness/WindowDriver.h"

namespace orva::test
{

namespace
{

// Id of a message box's text.
constexpr int kBoxTextId = 0xFFFF;

} // namespace

std::wstring CSeenWindow::Control(int id) const
{
    for (const auto& [control, controlText] : controls)
    {
        if (control == id)
        {
            return controlText;
        }
    }
    return {};
}

CSeenWindow LookAt(HWND window)
{
    CSeenWindow seen;
    seen.window = window;
    seen.owner = GetWindow(window, GW_OWNER);
    // What needs no message to the window is read first: while its thread is busy the window answers late,
    // and may be destroyed by then.
    const std::vector<HWND> children = ChildWindows(window);
    std::vector<std::wstring> classes;
    for (const HWND control : children)
    {
        // Control ids are 16 bits wide in dialogs; a message box's text is -1 there.
        seen.controls.emplace_back(GetDlgCtrlID(control) & 0xFFFF, L"");
        classes.push_back(IsWindowVisible(control) ? WindowClassName(control) : L"");
    }
    if (seen.owner)
    {
        seen.ownerEnabled = IsWindowEnabled(seen.owner) != FALSE;
        seen.ownerCaption = WindowText(seen.owner);
    }
    seen.caption = WindowText(window);
    std::wstring statics;
    for (size_t i = 0; i < children.size(); ++i)
    {
        auto& [id, text] = seen.controls[i];
        text = WindowText(children[i]);
        if (id == kBoxTextId)
        {
            seen.text = text;
        }
        else if (classes[i] == L"Button")
        {
            seen.buttons.push_back(text);
        }
        else if (classes[i] == L"Static" && !text.empty())
        {
            statics += (statics.empty() ? L"" : L"\n") + text;
        }
    }
    if (seen.text.empty())
    {
        seen.text = statics;
    }
    return seen;
}

std::string Describe(const CSeenWindow& seen)
{
    std::string text = "\"" + Utf8(seen.caption) + "\": \"" + Utf8(seen.text) + "\" [";
    for (const std::wstring& button : seen.buttons)
    {
        text += (text.ends_with('[') ? "" : ", ") + Utf8(button);
    }
    return text + "]";
}

} // namespace orva::test
