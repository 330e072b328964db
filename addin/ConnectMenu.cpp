// The add-in object's menu command in an Outlook without Backstage view.
#include "addin/Connect.h"
#include "addin/LateBinding.h"
#include "support/DebugLog.h"
#include "ui/LocalizedResources.h"

#include <array>

namespace
{

constexpr char kFunction[] = "CConnect::InsertMenuCommands";

// MsoControlType: a plain button.
constexpr long kControlButton = 1;

VARIANT MissingArgument()
{
    VARIANT missing{};
    missing.vt = VT_ERROR;
    missing.scode = DISP_E_PARAMNOTFOUND;
    return missing;
}

VARIANT Long(long value)
{
    VARIANT number{};
    number.vt = VT_I4;
    number.lVal = value;
    return number;
}

// Office reads the Temporary argument as a number of two bytes and takes -1 as true.
VARIANT ShortTrue()
{
    VARIANT value{};
    value.vt = VT_I2;
    value.iVal = -1;
    return value;
}

// A boolean whose low byte alone is set. Office takes any value but 0 as true.
VARIANT ByteTrue()
{
    VARIANT value{};
    value.vt = VT_BOOL;
    value.boolVal = 1;
    return value;
}

// The new control at the end of the last top-level menu. Temporary: Office discards it when the host closes,
// and nothing is written to the user's menu customisation.
CComPtr<IDispatch> AddControlToLastMenu(IDispatch* commandBars)
{
    const CComPtr<IDispatch> menuBar =
        GetObjectByName(commandBars, L"ActiveMenuBar", __uuidof(Office::CommandBar));
    const CComPtr<IDispatch> menus =
        GetObjectByName(menuBar, L"Controls", __uuidof(Office::CommandBarControls));
    CComVariant count = GetByName(menus, L"Count");
    if (FAILED(count.ChangeType(VT_I4)))
    {
        AtlThrow(E_POINTER);
    }
    const std::array last{Long(count.lVal)};
    const CComPtr<IDispatch> menu = GetObjectByName(menus, L"Item", __uuidof(Office::CommandBarPopup), last);
    const CComPtr<IDispatch> commands =
        GetObjectByName(menu, L"Controls", __uuidof(Office::CommandBarControls));
    const std::array arguments{Long(kControlButton), MissingArgument(), MissingArgument(), MissingArgument(),
                               ShortTrue()};
    return GetObjectByName(commands, L"Add", __uuidof(Office::CommandBarControl), arguments);
}

} // namespace

// Returns the failure of the command bars, of a missing object on the way (E_POINTER) or of the click
// subscription.
HRESULT CConnect::InsertMenuCommands()
{
    LogEntry(kFunction);
    CComVariant commandBars;
    const HRESULT hr = m_spExplorer.GetPropertyByName(L"CommandBars", &commandBars);
    if (FAILED(hr))
    {
        LogMessage(kFunction, "return hr");
        return hr;
    }
    try
    {
        AddMenuButton(commandBars.vt == VT_DISPATCH ? commandBars.pdispVal : nullptr);
        return DispEventAdvise(m_spMenuButton, &DIID__CommandBarButtonEvents);
    }
    catch (const CAtlException& exception)
    {
        // An empty menu bar, or a last menu that is none: Outlook goes on without the command.
        return exception.m_hr;
    }
}

void CConnect::AddMenuButton(IDispatch* commandBars)
{
    const CComPtr<IDispatch> control = AddControlToLastMenu(commandBars);
    CComVariant caption(GetLocalizedResources().LoadString(IDS_ABOUT_COMMAND).GetString());
    CComPtr<IDispatch> button;
    if (FAILED(
            control->QueryInterface(__uuidof(Office::_CommandBarButton), reinterpret_cast<void**>(&button))))
    {
        AtlThrow(E_POINTER);
    }
    // By assignment: a host that connects the object again has left a button here.
    m_spMenuButton = button;
    wchar_t captionName[] = L"Caption";
    wchar_t enabledName[] = L"Enabled";
    PutDispatchProperty(m_spMenuButton, captionName, caption);
    PutDispatchProperty(m_spMenuButton, enabledName, ByteTrue());
}
