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

    static CGdiObject* FromHandle(HGDIOBJ hObject);
    HGDIOBJ GetSafeHandle() const;
    /// Takes a handle over; FALSE when it is null.
    BOOL Attach(HGDIOBJ hObject);
    HGDIOBJ Detach();
    /// Deletes the GDI object; FALSE when there is none or it is selected into a device context.
    BOOL DeleteObject();
    /// Describes the object as GetObjectW does; returns the number of bytes stored.
    int GetObject(int nCount, LPVOID lpObject) const;
};

class CFont : public CGdiObject
{
    DECLARE_DYNAMIC(CFont)
public:
    static CFont* FromHandle(HFONT hFont);
    operator HFONT() const;
    BOOL CreateFontIndirect(const LOGFONT* lpLogFont);
    /// The font's description; 0 on failure.
    int GetLogFont(LOGFONT* pLogFont);
};

class CBrush : public CGdiObject
{
    DECLARE_DYNAMIC(CBrush)
public:
    CBrush() = default;
    /// A solid brush; throws std::bad_alloc when it cannot be made.
    explicit CBrush(COLORREF crColor);
    static CBrush* FromHandle(HBRUSH hBrush);
    operator HBRUSH() const;
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
    operator HDC() const;
    HDC GetSafeHdc() const;
    BOOL Attach(HDC hDC);
    HDC Detach();
    /// A memory device context compatible with pDC, or with the screen when that is null.
    BOOL CreateCompatibleDC(CDC* pDC);
    BOOL DeleteDC();

    /// Select an object and return the one it replaces (temporary); null on failure.
    CGdiObject* SelectObject(CGdiObject* pObject);
    CBrush* SelectObject(CBrush* pBrush);
    virtual CFont* SelectObject(CFont* pFont);

    /// Set a colour and return the previous one, or CLR_INVALID.
    virtual COLORREF SetBkColor(COLORREF crColor);
    virtual COLORREF SetTextColor(COLORREF crColor);

    /// Paints the rectangle with the selected brush; FALSE on failure.
    BOOL PatBlt(int x, int y, int nWidth, int nHeight, DWORD dwRop);
};
