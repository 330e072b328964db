// The add-in object's part in Outlook 2010's Backstage view: markup, button and pictures.
#include "addin/BackstageMarkup.h"
#include "addin/Connect.h"
#include "support/DebugLog.h"
#include "support/ExceptionGuard.h"
#include "ui/LocalizedResources.h"
#include "update/UpdateCheck.h"

namespace
{

// The only Office that gets the tab: earlier ones have no Backstage view, later ones get none on purpose.
constexpr int kBackstageOffice = 14;

// A new BSTR of the whole text; a zero character does not end it.
BSTR CopyToBstr(const std::wstring& text)
{
    const BSTR copy = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (copy == nullptr)
    {
        AtlThrow(E_OUTOFMEMORY);
    }
    return copy;
}

} // namespace

STDMETHODIMP CConnect::GetCustomUI(BSTR, BSTR* RibbonXml)
{
    return RunGuarded<HRESULT>("CConnect::GetCustomUI", E_UNEXPECTED, [&]() -> HRESULT {
        LogEntry("CConnect::GetCustomUI");
        if (RibbonXml == nullptr)
        {
            return E_POINTER;
        }
        if (GetLocalizedResources().GetOfficeVersion() != kBackstageOffice)
        {
            *RibbonXml = CopyToBstr(std::wstring());
            return S_OK;
        }
        const auto markup = GetLocalizedResources().LoadXmlResource(IDR_BACKSTAGE_XML);
        FillBackstageMarkup(*markup);
        *RibbonXml = CopyToBstr(*markup);
        return S_OK;
    });
}

STDMETHODIMP CConnect::ButtonClicked(IDispatch*)
{
    constexpr char kFunction[] = "CConnect::ButtonClicked";
    return RunGuarded<HRESULT>(kFunction, S_OK, [&] {
        LogEntry(kFunction);
        AFX_MANAGE_STATE(AfxGetStaticModuleState());
        AfxSetResourceHandle(_AtlBaseModule.GetModuleInstance());
        CheckForUpdateOnClick(kFunction, GetLocalizedResources().FindOwnProcessWindow());
        return S_OK;
    });
}

STDMETHODIMP CConnect::GetImageLogo(IDispatch* pControl, IPictureDisp** ppdispImage)
{
    return RunGuarded<HRESULT>("CConnect::GetImageLogo", E_UNEXPECTED, [&] {
        LogEntry("CConnect::GetImageLogo");
        return GetLocalizedResources().LoadPngPicture(pControl, ppdispImage, IDR_LOGO_PNG);
    });
}

STDMETHODIMP CConnect::GetImageIcon(IDispatch* pControl, IPictureDisp** ppdispImage)
{
    return RunGuarded<HRESULT>("CConnect::GetImageIcon", E_UNEXPECTED, [&] {
        LogEntry("CConnect::GetImageIcon");
        return GetLocalizedResources().LoadPngPicture(pControl, ppdispImage, IDR_ICON_PNG);
    });
}
