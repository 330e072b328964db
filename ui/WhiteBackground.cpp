#include "ui/WhiteBackground.h"

namespace
{

constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr COLORREF kBlack = RGB(0, 0, 0);

} // namespace

BOOL PaintWhiteBackground(const CWnd& window, CDC& dc)
{
    CRect client;
    window.GetClientRect(&client);
    CBrush white(kWhite);
    CBrush* const previous = dc.SelectObject(&white);
    const BOOL painted = dc.PatBlt(0, 0, client.Width(), client.Height(), PATCOPY);
    dc.SelectObject(previous);
    return painted;
}

HBRUSH MakeControlWhite(CDC& dc)
{
    dc.SetBkColor(kWhite);
    dc.SetTextColor(kBlack);
    return CreateSolidBrush(kWhite);
}
