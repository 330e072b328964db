#include "bench/FakeOutlook.h"

#include <OfficeObjects.h>

#include <oleauto.h>

#include <cwchar>

namespace orva::bench
{

namespace
{

constexpr wchar_t kVersion[] = L"14.0.0.4760";

constexpr DISPID kVersionId = 1;
constexpr DISPID kActiveExplorerId = 2;

class CFakeOutlook final : public Outlook::_Application
{
public:
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override
    {
        const bool isKnown =
            iid == __uuidof(IUnknown) || iid == __uuidof(IDispatch) || iid == __uuidof(Outlook::_Application);
        *object = isKnown ? this : nullptr;
        return isKnown ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }

    STDMETHODIMP GetTypeInfoCount(UINT* count) override
    {
        *count = 0;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override
    {
        if (std::wcscmp(names[0], L"Version") == 0)
        {
            ids[0] = kVersionId;
            return S_OK;
        }
        if (std::wcscmp(names[0], L"ActiveExplorer") == 0)
        {
            ids[0] = kActiveExplorerId;
            return S_OK;
        }
        return DISP_E_UNKNOWNNAME;
    }
    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                        UINT*) override
    {
        if (id == kVersionId)
        {
            result->vt = VT_BSTR;
            result->bstrVal = SysAllocString(kVersion);
            return S_OK;
        }
        if (id == kActiveExplorerId)
        {
            result->vt = VT_DISPATCH;
            result->pdispVal = nullptr;
            return S_OK;
        }
        return DISP_E_MEMBERNOTFOUND;
    }
};

} // namespace

IDispatch* FakeOutlook()
{
    static CFakeOutlook application;
    return &application;
}

} // namespace orva::bench
