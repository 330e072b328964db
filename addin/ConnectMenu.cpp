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

// Adds a control at the end of the last top-level menu; null if there is no such menu or it refuses the
// control. Temporary: Office discards it when the host closes, and nothing is written to the user's menu
// customisation.
CComPtr<IDispatch> AddControlToLastMenu(IDispatch* commandBars)
{
    const CComPtr<IDispatch> menuBar =
        GetObjectByName(commandBars, L"ActiveMenuBar", __uuidof(Office::CommandBar));
    const CComPtr<IDispatch> menus =
        GetObjectByName(menuBar, L"Controls", __uuidof(Office::CommandBarControls));
    CComVariant count;
    if (FAILED(GetByName(menus, L"Count", count)) || FAILED(count.ChangeType(VT_I4)))
    {
        return {};
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

// Returns the failure of the command bars, of a missing object on the way (E_POINTER), of the click
// subscription, or E_FAIL for any exception. Outlook goes on without the command then.
HRESULT CConnect::InsertMenuCommands()
{
    LogEntry(kFunction);
    try
    {
        CComVariant commandBars;
        const HRESULT hr = GetByName(m_spExplorer, L"CommandBars", commandBars);
        if (FAILED(hr))
        {
            LogMessage(kFunction, "return hr");
            return hr;
        }
        return AddMenuButton(commandBars.vt == VT_DISPATCH ? commandBars.pdispVal : nullptr);
    }
    catch (CException* exception)
    {
        // With the original ATL in a module with MFC, AtlThrow throws these.
        exception->Delete();
    }
    catch (...)
    {
        // No memory, or the object is subscribed already.
    }
    return E_FAIL;
}

HRESULT CConnect::AddMenuButton(IDispatch* commandBars)
{
    const CComPtr<IDispatch> control = AddControlToLastMenu(commandBars);
    if (control == nullptr)
    {
        return E_POINTER;
    }

    CComVariant caption(GetLocalizedResources().LoadString(IDS_ABOUT_COMMAND).GetString());
    // Null if the control is no button: setting its properties then does nothing, and the subscription fails.
    // An assignment, because an earlier connection of this object may have left a button here.
    m_spMenuButton = QueryDispatch(control, __uuidof(Office::_CommandBarButton));
    wchar_t captionName[] = L"Caption";
    wchar_t enabledName[] = L"Enabled";
    PutDispatchProperty(m_spMenuButton, captionName, caption);
    PutDispatchProperty(m_spMenuButton, enabledName, ByteTrue());
    return DispEventAdvise(m_spMenuButton, &DIID__CommandBarButtonEvents);
}
