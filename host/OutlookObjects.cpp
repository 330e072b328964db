#include "host/OutlookObjects.h"

#include <OfficeObjects.h>

namespace orva::host
{
namespace
{

enum : DISPID
{
    kName = 1,
    kVersion,
    kActiveExplorer,
    kCommandBars,
    kCaption,
    kProgId,
    kDescription,
    kConnect,
    kObject
};

constexpr Member kExplorerMembers[] = {
    {kCommandBars, L"CommandBars", DISPATCH_PROPERTYGET},
    {kCaption, L"Caption", DISPATCH_PROPERTYGET},
};
constexpr Member kApplicationMembers[] = {
    {kName, L"Name", DISPATCH_PROPERTYGET},
    {kVersion, L"Version", DISPATCH_PROPERTYGET},
    {kActiveExplorer, L"ActiveExplorer", DISPATCH_METHOD},
};
constexpr Member kComAddInMembers[] = {
    {kProgId, L"ProgId", DISPATCH_PROPERTYGET},
    {kDescription, L"Description", DISPATCH_PROPERTYGET},
    {kConnect, L"Connect", DISPATCH_PROPERTYGET},
    {kObject, L"Object", DISPATCH_PROPERTYGET | DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF},
};

// Office's COMAddIn.
constexpr IID kComAddInId = {0x000C033A, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

} // namespace

CExplorer::CExplorer(CMenuModel& model)
    : CDispatchObject(model.Trace(), L"Explorer", __uuidof(Outlook::_Explorer), kExplorerMembers),
      m_commandBars(new CCommandBars(model))
{
}

HRESULT CExplorer::OnCall(DISPID id, bool, const CArguments&, VARIANT& result)
{
    switch (id)
    {
    case kCommandBars:
        return Return(result, m_commandBars.Get());
    case kCaption:
        return Return(result, std::wstring(L"Inbox"));
    default:
        return DISP_E_MEMBERNOTFOUND;
    }
}

CApplication::CApplication(CTrace& trace, const std::wstring& version, CExplorer* explorer)
    : CDispatchObject(trace, L"Application", __uuidof(Outlook::_Application), kApplicationMembers),
      m_version(version), m_explorer(explorer)
{
}

HRESULT CApplication::OnCall(DISPID id, bool, const CArguments&, VARIANT& result)
{
    switch (id)
    {
    case kName:
        return Return(result, std::wstring(kOutlook));
    case kVersion:
        return Return(result, m_version);
    case kActiveExplorer:
        return Return(result, m_explorer.Get());
    default:
        return DISP_E_MEMBERNOTFOUND;
    }
}

CComAddIn::CComAddIn(CTrace& trace, const std::wstring& progId, const std::wstring& description)
    : CDispatchObject(trace, L"COMAddIn", kComAddInId, kComAddInMembers), m_progId(progId),
      m_description(description)
{
}

HRESULT CComAddIn::OnCall(DISPID id, bool isWrite, const CArguments& arguments, VARIANT& result)
{
    switch (id)
    {
    case kProgId:
        return Return(result, m_progId);
    case kDescription:
        return Return(result, m_description);
    case kConnect:
        return Return(result, m_connected);
    case kObject:
        if (!isWrite)
        {
            return Return(result, m_object.Get());
        }
        if (arguments[0].vt != VT_DISPATCH)
        {
            return DISP_E_TYPEMISMATCH;
        }
        m_object = arguments[0].pdispVal;
        return S_OK;
    default:
        return DISP_E_MEMBERNOTFOUND;
    }
}

} // namespace orva::host
