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

BOOL CGdiObject::DeleteObject()
{
    const HGDIOBJ object = std::exchange(m_hObject, nullptr);
    return object ? ::DeleteObject(object) : FALSE;
}

CFont* CFont::FromHandle(HFONT hFont)
{
    return TemporaryGdiObject<CFont>(hFont);
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

BOOL CBrush::CreateSolidBrush(COLORREF crColor)
{
    m_hObject = ::CreateSolidBrush(crColor);
    return m_hObject != nullptr;
}

CDC::~CDC()
{
    DeleteDC();
}

CDC* CDC::FromHandle(HDC hDC)
{
    return hDC ? AfxGetThreadState().Temporary<CDC, &CDC::m_hDC>(hDC) : nullptr;
}

BOOL CDC::DeleteDC()
{
    const HDC dc = std::exchange(m_hDC, nullptr);
    return dc ? ::DeleteDC(dc) : FALSE;
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
