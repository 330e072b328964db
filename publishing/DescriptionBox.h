// The box of the offer in which the description stands, to find out how much of it is seen.
#pragma once

#include <windows.h>

#include <string>

namespace publishing
{

/// The dialog of the offer, which is never shown.
class CDescriptionBox
{
public:
    CDescriptionBox();
    ~CDescriptionBox();
    CDescriptionBox(const CDescriptionBox&) = delete;
    CDescriptionBox& operator=(const CDescriptionBox&) = delete;

    struct CLines
    {
        int total = 0;
        /// That fit without scrolling; `total` if all do.
        int visible = 0;
    };

    /// The lines that `text` has in the box at its width, with this system's fonts. None without a display.
    CLines LinesOf(const std::wstring& text) const;

    /// Whether there is a display.
    bool IsMeasured() const { return m_box != nullptr; }

private:
    HWND m_dialog;
    HWND m_box;
};

} // namespace publishing
