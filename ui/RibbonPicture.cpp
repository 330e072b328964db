// CLocalizedResources::LoadPngPicture: a PNG resource as the picture object that Office's ribbon wants.
#include "ui/LocalizedResources.h"

#include <Office.h>
#include <atlbase.h>

#include <objidl.h>
#include <olectl.h>

#include <algorithm>
#include <cstring>

// gdiplus.h uses min and max without declaring them.
namespace Gdiplus
{
using std::max;
using std::min;
} // namespace Gdiplus
#include <gdiplus.h>

namespace
{
// A movable global memory block with a copy of some bytes, locked for as long as it lives.
class CLockedBlock
{
public:
    CLockedBlock(const void* data, SIZE_T size) : m_block(GlobalAlloc(GMEM_MOVEABLE, size))
    {
        m_bytes = m_block != nullptr ? GlobalLock(m_block) : nullptr;
        if (m_bytes != nullptr)
        {
            std::memcpy(m_bytes, data, size);
        }
    }

    ~CLockedBlock()
    {
        if (m_bytes != nullptr)
        {
            GlobalUnlock(m_block);
        }
        if (m_block != nullptr)
        {
            GlobalFree(m_block);
        }
    }

    CLockedBlock(const CLockedBlock&) = delete;
    CLockedBlock& operator=(const CLockedBlock&) = delete;

    // The block, or null when it could not be allocated and locked.
    HGLOBAL Get() const { return m_bytes != nullptr ? m_block : nullptr; }

private:
    HGLOBAL m_block;
    void* m_bytes = nullptr;
};

// Decodes the image in `block` and makes a picture object of it; S_OK without a picture when it cannot be
// decoded.
HRESULT MakePicture(HGLOBAL block, PICTDESC& description, IPictureDisp** picture)
{
    CComPtr<IStream> stream;
    if (FAILED(CreateStreamOnHGlobal(block, FALSE, &stream)))
    {
        return S_OK;
    }
    Gdiplus::Bitmap bitmap(stream, FALSE);
    stream.Release();
    if (bitmap.GetLastStatus() != Gdiplus::Ok)
    {
        return S_OK;
    }
    const Gdiplus::Color transparent(0);
    if (bitmap.GetHBITMAP(transparent, &description.bmp.hbitmap) != Gdiplus::Ok)
    {
        return S_OK;
    }
    return OleCreatePictureIndirect(&description, IID_IDispatch, TRUE, reinterpret_cast<void**>(picture));
}
} // namespace

HRESULT CLocalizedResources::LoadPngPicture(IDispatch* control, IPictureDisp** picture, UINT resourceId) const
{
    if (control == nullptr || picture == nullptr)
    {
        return E_POINTER;
    }
    // The control's id is read but not used.
    CComBSTR controlId;
    if (const CComQIPtr<IRibbonControl> ribbonControl(control); ribbonControl)
    {
        ribbonControl->get_Id(&controlId);
    }

    PICTDESC description = {};
    description.cbSizeofstruct = sizeof(description);
    description.picType = PICTYPE_BITMAP;

    ULONG_PTR token = 0;
    const Gdiplus::GdiplusStartupInput input;
    Gdiplus::GdiplusStartup(&token, &input, nullptr);

    const void* data = nullptr;
    DWORD size = 0;
    if (FAILED(LoadResourceData(resourceId, L"PNG", &data, &size)))
    {
        // GDI+ stays started after this failure only. Kept as it is.
        return S_OK;
    }

    HRESULT result = S_OK;
    {
        const CLockedBlock block(data, size);
        if (block.Get() != nullptr)
        {
            result = MakePicture(block.Get(), description, picture);
        }
    }
    Gdiplus::GdiplusShutdown(token);
    return result;
}
