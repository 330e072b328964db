#include "outlook/FakeOutlook.h"

#include <Office.h>
#include <OfficeObjects.h>

#include <olectl.h>

#include <utility>

namespace orva::test
{
namespace
{

using Microsoft::WRL::ComPtr;

constexpr DISPID kClick = 1;
constexpr DWORD kFirstCookie = 41;
constexpr long kMenus = 7;

ComPtr<CFakeObject> Make(CCallRecord& record, const char* name, std::vector<IID> interfaces)
{
    return ComPtr<CFakeObject>(new CFakeObject(record, name, std::move(interfaces)));
}

} // namespace

CFakeButton::CFakeButton(CCallRecord& record)
    : CFakeObject(record, "button",
                  {__uuidof(Office::_CommandBarButton), __uuidof(Office::CommandBarControl)})
{
    for (const wchar_t* const property : {L"Caption", L"Enabled"})
    {
        On(property, [](const DISPPARAMS&, VARIANT*) { return S_OK; });
    }
}

std::optional<HRESULT> CFakeButton::Click()
{
    m_cancelDefault = VARIANT_FALSE;
    VARIANT arguments[2] = {};
    arguments[1].vt = VT_DISPATCH;
    arguments[1].pdispVal = static_cast<IDispatch*>(this);
    arguments[0].vt = VT_BYREF | VT_BOOL;
    arguments[0].pboolVal = &m_cancelDefault;
    DISPPARAMS parameters{arguments, nullptr, 2, 0};
    std::optional<HRESULT> first;
    const auto sinks = m_sinks;
    for (const auto& [cookie, sink] : sinks)
    {
        const HRESULT result = sink->Invoke(kClick, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD,
                                            &parameters, nullptr, nullptr, nullptr);
        first = first.value_or(result);
    }
    return first;
}

STDMETHODIMP CFakeButton::QueryInterface(REFIID iid, void** object)
{
    if (object != nullptr && iid == IID_IConnectionPointContainer)
    {
        *object = static_cast<IConnectionPointContainer*>(this);
        AddRef();
        return S_OK;
    }
    return CFakeObject::QueryInterface(iid, object);
}

STDMETHODIMP CFakeButton::FindConnectionPoint(REFIID iid, IConnectionPoint** point)
{
    *point = nullptr;
    if (iid != DIID__CommandBarButtonEvents)
    {
        return CONNECT_E_NOCONNECTION;
    }
    *point = this;
    AddRef();
    return S_OK;
}

STDMETHODIMP CFakeButton::Advise(IUnknown* sink, DWORD* cookie)
{
    ++m_advises;
    *cookie = 0;
    if (FAILED(m_adviseFailure))
    {
        return m_adviseFailure;
    }
    ComPtr<IDispatch> events;
    if (FAILED(sink->QueryInterface(DIID__CommandBarButtonEvents,
                                    reinterpret_cast<void**>(events.GetAddressOf()))))
    {
        return CONNECT_E_CANNOTCONNECT;
    }
    *cookie = m_sinks.empty() ? kFirstCookie : m_sinks.rbegin()->first + 1;
    m_sinks.emplace(*cookie, events);
    return S_OK;
}

STDMETHODIMP CFakeButton::Unadvise(DWORD cookie)
{
    ++m_unadvises;
    if (FAILED(m_unadviseFailure))
    {
        return m_unadviseFailure;
    }
    return m_sinks.erase(cookie) == 1 ? S_OK : CONNECT_E_NOCONNECTION;
}

CFakeOutlook::CFakeOutlook(const wchar_t* version)
    : application(Make(record, "application", {__uuidof(Outlook::_Application)})),
      explorer(Make(record, "explorer", {__uuidof(Outlook::_Explorer)})),
      commandBars(Make(record, "commandBars", {__uuidof(Office::CommandBars)})),
      menuBar(Make(record, "menuBar", {__uuidof(Office::CommandBar)})),
      menus(Make(record, "menus", {__uuidof(Office::CommandBarControls)})),
      helpMenu(
          Make(record, "helpMenu", {__uuidof(Office::CommandBarPopup), __uuidof(Office::CommandBarControl)})),
      commands(Make(record, "commands", {__uuidof(Office::CommandBarControls)}))
{
    button = new CFakeButton(record);
    application->Give(L"Version", _variant_t(version));
    application->GiveObject(L"ActiveExplorer", explorer.Get());
    explorer->GiveObject(L"CommandBars", commandBars.Get());
    commandBars->GiveObject(L"ActiveMenuBar", menuBar.Get());
    menuBar->GiveObject(L"Controls", menus.Get());
    menus->Give(L"Count", _variant_t(kMenus));
    menus->GiveObject(L"Item", helpMenu.Get());
    helpMenu->GiveObject(L"Controls", commands.Get());
    commands->GiveObject(L"Add", button.Get());
}

} // namespace orva::test
