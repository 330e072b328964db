// What an add-in's custom UI declares for the File view, read with the system's XML parser.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace orva::host
{

enum class RibbonItemKind
{
    Image,
    Label,
    Link,
    Button
};

struct RibbonItem
{
    RibbonItemKind kind = RibbonItemKind::Label;
    std::wstring id;
    std::wstring label;
    /// Names of callbacks, empty when there is none.
    std::wstring getImage;
    std::wstring onAction;
    /// Address that a link opens.
    std::wstring target;
    std::wstring screentip;
    /// Whether a click on the button closes the File view.
    bool isDefinitive = false;
};

struct RibbonGroup
{
    std::wstring id;
    std::wstring label;
    std::wstring helperText;
    std::optional<RibbonItem> primary;
    std::vector<RibbonItem> top;
    std::vector<RibbonItem> bottom;
};

struct RibbonTab
{
    std::wstring id;
    std::wstring label;
    std::vector<RibbonGroup> firstColumn;
    std::vector<RibbonGroup> secondColumn;
};

struct RibbonMarkup
{
    std::vector<RibbonTab> tabs;
    /// Names of the elements that the File view does not show.
    std::vector<std::wstring> ignored;
};

struct MarkupError
{
    std::wstring reason;
    /// Both from 1; 0 when unknown.
    long line = 0;
    long position = 0;

    /// "reason (line 3, position 7)"
    std::wstring Text() const;
};

/// Reads the text that GetCustomUI returned. Returns false with `error` filled when it is not well-formed,
/// when it is not the custom-UI schema of Office 2010, or when the machine has no XML parser. COM must be
/// initialized.
bool ParseRibbonMarkup(const std::wstring& text, RibbonMarkup& markup, MarkupError& error);

} // namespace orva::host
