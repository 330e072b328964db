#include "host/Painting.h"

#include <olectl.h>

#include <vector>

namespace orva::host
{
namespace
{

constexpr const wchar_t* kFaces[] = {L"Segoe UI", L"Open Sans", L"Noto Sans", L"DejaVu Sans", L"Tahoma"};
constexpr int kDotsPerInch = 96;
constexpr int kPointsPerInch = 72;

int CALLBACK OnFace(const LOGFONTW*, const TEXTMETRICW*, DWORD, LPARAM found)
{
    *reinterpret_cast<bool*>(found) = true;
    return 0;
}

const wchar_t* FindFace()
{
    const HDC dc = GetDC(nullptr);
    const wchar_t* chosen = kFaces[std::size(kFaces) - 1];
    for (const wchar_t* face : kFaces)
    {
        LOGFONTW font{};
        font.lfCharSet = DEFAULT_CHARSET;
        wcscpy(font.lfFaceName, face);
        bool found = false;
        EnumFontFamiliesExW(dc, &font, OnFace, reinterpret_cast<LPARAM>(&found), 0);
        if (found)
        {
            chosen = face;
            break;
        }
    }
    ReleaseDC(nullptr, dc);
    return chosen;
}

bool HasAlpha(const BITMAP& bitmap)
{
    if (bitmap.bmBitsPixel != 32 || bitmap.bmBits == nullptr)
    {
        return false;
    }
    const auto* pixels = static_cast<const DWORD*>(bitmap.bmBits);
    const size_t count = static_cast<size_t>(bitmap.bmWidth) * static_cast<size_t>(bitmap.bmHeight);
    bool transparent = false;
    bool visible = false;
    for (size_t index = 0; index < count; ++index)
    {
        const DWORD alpha = pixels[index] >> 24;
        transparent = transparent || alpha != 0xFF;
        visible = visible || alpha != 0;
    }
    // A bitmap whose alpha is zero everywhere does not use the byte.
    return transparent && visible;
}

} // namespace

CFont::CFont(int points, int weight, bool underlined)
{
    static const wchar_t* const face = FindFace();
    m_font = CreateFontW(-MulDiv(points, kDotsPerInch, kPointsPerInch), 0, 0, 0, weight, FALSE, underlined,
                         FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY,
                         DEFAULT_PITCH, face);
}

CFont::~CFont()
{
    DeleteObject(m_font);
}

CPicture::CPicture(const VARIANT& value)
{
    if ((value.vt != VT_DISPATCH && value.vt != VT_UNKNOWN) || value.punkVal == nullptr ||
        FAILED(
            value.punkVal->QueryInterface(IID_IPicture, reinterpret_cast<void**>(m_picture.GetAddressOf()))))
    {
        return;
    }
    short type = 0;
    OLE_HANDLE handle = 0;
    if (FAILED(m_picture->get_Type(&type)) || type != PICTYPE_BITMAP ||
        FAILED(m_picture->get_Handle(&handle)))
    {
        return;
    }
    // OLE_HANDLE has 32 bits; a handle is sign-extended to its own width.
    m_bitmap = reinterpret_cast<HBITMAP>(static_cast<LONG_PTR>(static_cast<int>(handle)));
    DIBSECTION section{};
    if (GetObjectW(m_bitmap, sizeof(section), &section) == 0)
    {
        m_bitmap = nullptr;
        return;
    }
    m_size = {section.dsBm.bmWidth, section.dsBm.bmHeight};
    m_hasAlpha = HasAlpha(section.dsBm);
}

void CPicture::Draw(HDC dc, int x, int y) const
{
    if (IsEmpty())
    {
        return;
    }
    const HDC source = CreateCompatibleDC(dc);
    const HGDIOBJ previous = SelectObject(source, m_bitmap);
    if (m_hasAlpha)
    {
        const BLENDFUNCTION blend{AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
        AlphaBlend(dc, x, y, m_size.cx, m_size.cy, source, 0, 0, m_size.cx, m_size.cy, blend);
    }
    else
    {
        BitBlt(dc, x, y, m_size.cx, m_size.cy, source, 0, 0, SRCCOPY);
    }
    SelectObject(source, previous);
    DeleteDC(source);
}

void FillBox(HDC dc, const RECT& box, COLORREF colour)
{
    const HBRUSH brush = CreateSolidBrush(colour);
    FillRect(dc, &box, brush);
    DeleteObject(brush);
}

void DrawLine(HDC dc, const std::wstring& text, RECT box, HFONT font, COLORREF colour, UINT align)
{
    const HGDIOBJ previous = SelectObject(dc, font);
    SetTextColor(dc, colour);
    SetBkMode(dc, TRANSPARENT);
    DrawTextW(dc, text.c_str(), -1, &box, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS | align);
    SelectObject(dc, previous);
}

int WrappedHeight(HWND window, const std::wstring& text, HFONT font, int width)
{
    const HDC dc = GetDC(window);
    const HGDIOBJ previous = SelectObject(dc, font);
    RECT box{0, 0, width, 0};
    // An empty label is a spacer one line high.
    const std::wstring measured = text.empty() ? L" " : text;
    DrawTextW(dc, measured.c_str(), -1, &box, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX | DT_EXPANDTABS);
    SelectObject(dc, previous);
    ReleaseDC(window, dc);
    return box.bottom;
}

SIZE TextSize(HWND window, const std::wstring& text, HFONT font)
{
    const HDC dc = GetDC(window);
    const HGDIOBJ previous = SelectObject(dc, font);
    SIZE size{};
    GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
    SelectObject(dc, previous);
    ReleaseDC(window, dc);
    return size;
}

} // namespace orva::host
