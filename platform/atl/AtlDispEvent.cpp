#include "platform/atl/AtlDispEvent.h"

#include <cstdint>
#include <cstring>

namespace ATL
{

namespace
{

// What g++ keeps in a pointer to a member function (Itanium C++ ABI): a code address, or 1 plus an offset
// into the virtual table; and what has to be added to the object's address.
struct CMemberPointer
{
    std::intptr_t address;
    std::ptrdiff_t adjustment;
};

constexpr VARTYPE kPointerSizedInteger = sizeof(void*) == 8 ? VT_I8 : VT_I4;

} // namespace

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

void* AtlResolveMemberPointer(void* pThis, const void* pMemberPointer, void** ppThis) noexcept
{
    CMemberPointer pointer;
    static_assert(sizeof(pointer) == sizeof(void(CComObjectRootBase::*)()));
    std::memcpy(&pointer, pMemberPointer, sizeof(pointer));
    BYTE* object = static_cast<BYTE*>(pThis) + pointer.adjustment;
    *ppThis = object;
    if ((pointer.address & 1) == 0)
    {
        return reinterpret_cast<void*>(pointer.address);
    }
    const BYTE* table = *reinterpret_cast<BYTE**>(object);
    void* entry = nullptr;
    std::memcpy(&entry, table + (pointer.address - 1), sizeof(entry));
    return entry;
}

HRESULT AtlInvokeFromFuncInfo(void* pThis, void* pfn, const _ATL_FUNC_INFO& info, DISPPARAMS* pdispparams,
                              VARIANT* pvarResult) noexcept
{
    const UINT count = static_cast<UINT>(info.nParams);
    if (pdispparams == nullptr || count > _ATL_MAX_VARTYPES || pdispparams->cArgs != count ||
        pdispparams->cNamedArgs > count)
    {
        return DISP_E_BADPARAMCOUNT;
    }

    // The object goes first, as the compiler passes it.
    VARIANT object;
    object.vt = kPointerSizedInteger;
    object.llVal = reinterpret_cast<INT_PTR>(pThis);
    VARTYPE types[1 + _ATL_MAX_VARTYPES] = {kPointerSizedInteger};
    VARIANTARG* arguments[1 + _ATL_MAX_VARTYPES] = {&object};

    UINT index = 0;
    for (; index < pdispparams->cNamedArgs; ++index)
    {
        const DISPID position = pdispparams->rgdispidNamedArgs[index];
        if (position < 0 || static_cast<UINT>(position) >= count || arguments[1 + position] != nullptr)
        {
            return DISP_E_PARAMNOTFOUND;
        }
        arguments[1 + position] = &pdispparams->rgvarg[index];
    }
    // The others stand in reverse order.
    for (; index < count; ++index)
    {
        const UINT position = count - 1 - index;
        if (arguments[1 + position] != nullptr)
        {
            return DISP_E_PARAMNOTFOUND;
        }
        arguments[1 + position] = &pdispparams->rgvarg[index];
    }
    for (UINT position = 0; position < count; ++position)
    {
        const VARTYPE expected = info.pVarTypes[position];
        if (expected != VT_VARIANT && arguments[1 + position]->vt != expected)
        {
            return DISP_E_TYPEMISMATCH;
        }
        types[1 + position] = expected;
    }

    CComVariant ignored;
    return DispCallFunc(nullptr, reinterpret_cast<ULONG_PTR>(pfn), info.cc, info.vtReturn, 1 + count, types,
                        arguments, pvarResult ? pvarResult : &ignored);
}

} // namespace ATL
