// Fonts, colours and pictures of the stand-in's windows.
#pragma once

#include <wrl/client.h>

#include <windows.h>
#include <ocidl.h>

#include <string>

namespace orva::host
{

inline constexpr COLORREF kWhite = RGB(255, 255, 255);
inline constexpr COLORREF kText = RGB(38, 38, 38);
inline constexpr COLORREF kQuietText = RGB(105, 105, 105);
inline constexpr COLORREF kHeading = RGB(31, 73, 125);
inline constexpr COLORREF kLink = RGB(5, 99, 193);
inline constexpr COLORREF kAccent = RGB(33, 115, 186);
inline constexpr COLORREF kPane = RGB(240, 243, 248);
inline constexpr COLORREF kLine = RGB(214, 220, 228);

/// A font. Its face is the first of a list, from Segoe UI on, that is installed. `points` are at 96 dpi.
class CFont
{
public:
    CFont(int points, int weight, bool underlined = false);
    ~CFont();
    CFont(const CFont&) = delete;
    CFont& operator=(const CFont&) = delete;

    HFONT Get() const { return m_font; }

private:
    HFONT m_font;
};

/// The picture that a getImage callback returns.
class CPicture
{
public:
    CPicture() = default;
    /// Empty unless `value` is an object with IPicture that holds a bitmap.
    explicit CPicture(const VARIANT& value);

    bool IsEmpty() const { return m_bitmap == nullptr; }
    SIZE Size() const { return m_size; }
    /// Whether any pixel is not opaque.
    bool HasTransparency() const { return m_hasAlpha; }
    /// Paints at (x, y), with the bitmap's premultiplied alpha if it has one.
    void Draw(HDC dc, int x, int y) const;

private:
    Microsoft::WRL::ComPtr<IPicture> m_picture;
    HBITMAP m_bitmap = nullptr;
    SIZE m_size{};
    bool m_hasAlpha = false;
};

void FillBox(HDC dc, const RECT& box, COLORREF colour);
/// One line of text, vertically centred, cut with "..." where it does not fit.
void DrawLine(HDC dc, const std::wstring& text, RECT box, HFONT font, COLORREF colour, UINT align = DT_LEFT);
/// Height that a text takes when wrapped to a width.
int WrappedHeight(HWND window, const std::wstring& text, HFONT font, int width);
SIZE TextSize(HWND window, const std::wstring& text, HFONT font);

} // namespace orva::host
