#include "afxgdi_.h"

#include "afxthreadstate.h"

#include <new>
#include <utility>

IMPLEMENT_DYNAMIC(CGdiObject, CObject)
IMPLEMENT_DYNAMIC(CFont, CGdiObject)
IMPLEMENT_DYNAMIC(CBrush, CGdiObject)
IMPLEMENT_DYNAMIC(CDC, CObject)

namespace
{

HGDIOBJ HandleOf(const CGdiObject* object)
{
    return object ? object->m_hObject : nullptr;
}

template <class T> T* TemporaryGdiObject(HGDIOBJ handle)
{
    return handle ? AfxGetThreadState().Temporary<T, &CGdiObject::m_hObject>(handle) : nullptr;
}

} // namespace

CGdiObject::~CGdiObject()
{
    DeleteObject();
}

CGdiObject* CGdiObject::FromHandle(HGDIOBJ hObject)
{
    return TemporaryGdiObject<CGdiObject>(hObject);
}

HGDIOBJ CGdiObject::GetSafeHandle() const
{
    return m_hObject;
}

BOOL CGdiObject::Attach(HGDIOBJ hObject)
{
    if (!hObject)
    {
        return FALSE;
    }
    m_hObject = hObject;
    return TRUE;
}

HGDIOBJ CGdiObject::Detach()
{
    return std::exchange(m_hObject, nullptr);
}

BOOL CGdiObject::DeleteObject()
{
    const HGDIOBJ object = Detach();
    return object ? ::DeleteObject(object) : FALSE;
}

int CGdiObject::GetObject(int nCount, LPVOID lpObject) const
{
    return ::GetObject(m_hObject, nCount, lpObject);
}

CFont* CFont::FromHandle(HFONT hFont)
{
    return TemporaryGdiObject<CFont>(hFont);
}

CFont::operator HFONT() const
{
    return static_cast<HFONT>(m_hObject);
}

BOOL CFont::CreateFontIndirect(const LOGFONT* lpLogFont)
{
    return Attach(::CreateFontIndirect(lpLogFont));
}

int CFont::GetLogFont(LOGFONT* pLogFont)
{
    return GetObject(sizeof *pLogFont, pLogFont);
}

CBrush::CBrush(COLORREF crColor)
{
    if (!CreateSolidBrush(crColor))
    {
        throw std::bad_alloc();
    }
}

CBrush* CBrush::FromHandle(HBRUSH hBrush)
{
    return TemporaryGdiObject<CBrush>(hBrush);
}

CBrush::operator HBRUSH() const
{
    return static_cast<HBRUSH>(m_hObject);
}

BOOL CBrush::CreateSolidBrush(COLORREF crColor)
{
    return Attach(::CreateSolidBrush(crColor));
}

CDC::~CDC()
{
    DeleteDC();
}

CDC* CDC::FromHandle(HDC hDC)
{
    return hDC ? AfxGetThreadState().Temporary<CDC, &CDC::m_hDC>(hDC) : nullptr;
}

CDC::operator HDC() const
{
    return m_hDC;
}

HDC CDC::GetSafeHdc() const
{
    return m_hDC;
}

BOOL CDC::Attach(HDC hDC)
{
    if (!hDC)
    {
        return FALSE;
    }
    m_hDC = hDC;
    return TRUE;
}

HDC CDC::Detach()
{
    return std::exchange(m_hDC, nullptr);
}

BOOL CDC::CreateCompatibleDC(CDC* pDC)
{
    return Attach(::CreateCompatibleDC(pDC ? pDC->m_hDC : nullptr));
}

BOOL CDC::DeleteDC()
{
    const HDC dc = Detach();
    return dc ? ::DeleteDC(dc) : FALSE;
}

CGdiObject* CDC::SelectObject(CGdiObject* pObject)
{
    return CGdiObject::FromHandle(::SelectObject(m_hDC, HandleOf(pObject)));
}

CBrush* CDC::SelectObject(CBrush* pBrush)
{
    return CBrush::FromHandle(static_cast<HBRUSH>(::SelectObject(m_hDC, HandleOf(pBrush))));
}

CFont* CDC::SelectObject(CFont* pFont)
{
    return CFont::FromHandle(static_cast<HFONT>(::SelectObject(m_hDC, HandleOf(pFont))));
}

COLORREF CDC::SetBkColor(COLORREF crColor)
{
    return ::SetBkColor(m_hDC, crColor);
}

COLORREF CDC::SetTextColor(COLORREF crColor)
{
    return ::SetTextColor(m_hDC, crColor);
}

BOOL CDC::PatBlt(int x, int y, int nWidth, int nHeight, DWORD dwRop)
{
    return ::PatBlt(m_hDC, x, y, nWidth, nHeight, dwRop);
}

CDC* AfxMsgDeviceContext(const AFX_MSG_CALL& call)
{
    return CDC::FromHandle(reinterpret_cast<HDC>(call.wParam));
}
