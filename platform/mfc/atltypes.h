// The rectangle class that MFC code passes where a RECT is asked for.
//
// Left out: CPoint, CSize, and all of CRect but construction, its size and the conversion to a pointer.
#pragma once

#include <windows.h>

class CRect : public tagRECT
{
public:
    CRect() noexcept : tagRECT{0, 0, 0, 0} {}
    CRect(int l, int t, int r, int b) noexcept : tagRECT{l, t, r, b} {}
    CRect(const RECT& rect) noexcept : tagRECT(rect) {}

    int Width() const noexcept { return right - left; }
    int Height() const noexcept { return bottom - top; }
    operator LPRECT() noexcept { return this; }
    operator LPCRECT() const noexcept { return this; }
};
