#include "platform/atl/AtlDispEvent.h"

namespace ATL
{

HRESULT _IDispEvent::DispEventAdvise(IUnknown* pUnk, const IID* piid)
{
    ATLENSURE(m_dwEventCookie == kNoEventCookie);
    // The first three entries of the virtual table are those of IUnknown.
    return AtlAdvise(pUnk, reinterpret_cast<IUnknown*>(this), *piid, &m_dwEventCookie);
}

HRESULT _IDispEvent::DispEventUnadvise(IUnknown* pUnk, const IID* piid)
{
    const HRESULT hr = AtlUnadvise(pUnk, *piid, m_dwEventCookie);
    m_dwEventCookie = kNoEventCookie;
    return hr;
}

} // namespace ATL
