// Device contexts, brushes and fonts; part of <afxwin.h>, which is the header to include.
//
// Left out: every drawing operation but those below, metafile contexts (one handle instead of an output and
// an attribute handle), pens, bitmaps, regions, palettes. FromHandle's objects are temporary: they are freed
// when the window procedure or the AFX_MANAGE_STATE block in which they were made ends, and never delete the
// GDI object.
#pragma once

#include <afx.h>

#include <windows.h>

/// A GDI object that is deleted with the C++ object that owns its handle.
class CGdiObject : public CObject
{
    DECLARE_DYNAMIC(CGdiObject)
public:
    HGDIOBJ m_hObject = nullptr;

    CGdiObject() = default;
    ~CGdiObject() override;

    /// Deletes the GDI object; FALSE when there is none or it is selected into a device context.
    BOOL DeleteObject();
};

class CFont : public CGdiObject
{
    DECLARE_DYNAMIC(CFont)
public:
    static CFont* FromHandle(HFONT hFont);
};

class CBrush : public CGdiObject
{
    DECLARE_DYNAMIC(CBrush)
public:
    CBrush() = default;
    /// A solid brush; throws std::bad_alloc when it cannot be made.
    explicit CBrush(COLORREF crColor);
    static CBrush* FromHandle(HBRUSH hBrush);
    BOOL CreateSolidBrush(COLORREF crColor);
};

/// A device context; one that was attached or created is deleted with the object, one from FromHandle is not.
class CDC : public CObject
{
    DECLARE_DYNAMIC(CDC)
public:
    HDC m_hDC = nullptr;

    CDC() = default;
    ~CDC() override;

    static CDC* FromHandle(HDC hDC);
    BOOL DeleteDC();

    /// Select an object and return the one it replaces (temporary); null on failure.
    CBrush* SelectObject(CBrush* pBrush);
    virtual CFont* SelectObject(CFont* pFont);

    /// Set a colour and return the previous one, or CLR_INVALID.
    virtual COLORREF SetBkColor(COLORREF crColor);
    virtual COLORREF SetTextColor(COLORREF crColor);

    /// Paints the rectangle with the selected brush; FALSE on failure.
    BOOL PatBlt(int x, int y, int nWidth, int nHeight, DWORD dwRop);
};
