// Takes pictures of windows as they are on the screen, with their frames.
#pragma once

#include <windows.h>

#include <string>

namespace orva::demo
{

/// Only the X server has a window's frame, so a script outside Wine takes the picture.
class CCamera
{
public:
    explicit CCamera(std::wstring script) : m_script(std::move(script)) {}

    /// Brings the window to the front, gives it time to be drawn and writes a picture of it into the PNG
    /// `file`. False if there is none, for instance because the window has gone.
    bool Take(HWND window, const std::wstring& file) const;
    /// The same of a window that will soon be gone: at once.
    bool TakeNow(HWND window, const std::wstring& file) const;
    /// A picture of everything that is on the screen, menus included.
    bool TakeScreen(const std::wstring& file) const;

private:
    bool Run(const std::wstring& what, const std::wstring& file, const std::wstring& when) const;

    std::wstring m_script;
};

} // namespace orva::demo
