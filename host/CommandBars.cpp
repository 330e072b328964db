#include "host/CommandBars.h"

#include <OfficeObjects.h>

#include <algorithm>

namespace orva::host
{
namespace
{

enum : DISPID
{
    kItem = DISPID_VALUE,
    kCount = 1,
    kAdd,
    kControls,
    kName,
    kActiveMenuBar
};

constexpr Member kControlsMembers[] = {
    {kItem, L"Item", DISPATCH_PROPERTYGET, 1, 1},
    {kCount, L"Count", DISPATCH_PROPERTYGET},
    {kAdd, L"Add", DISPATCH_METHOD, 0, 5},
};
constexpr Member kBarMembers[] = {
    {kControls, L"Controls", DISPATCH_PROPERTYGET},
    {kName, L"Name", DISPATCH_PROPERTYGET},
};
constexpr Member kBarsMembers[] = {
    {kActiveMenuBar, L"ActiveMenuBar", DISPATCH_PROPERTYGET},
    {kCount, L"Count", DISPATCH_PROPERTYGET},
};

} // namespace

CCommandBarControls::CCommandBarControls(CMenuModel& model)
    : CDispatchObject(model.Trace(), L"CommandBarControls", __uuidof(Office::CommandBarControls),
                      kControlsMembers),
      m_model(model)
{
}

CCommandBarControls::~CCommandBarControls()
{
    for (const auto& item : m_items)
    {
        item->SetOwner(nullptr);
    }
}

CCommandBarPopup& CCommandBarControls::AddPopup(const std::wstring& caption)
{
    auto* popup = new CCommandBarPopup(m_model);
    popup->SetCaption(caption);
    Insert(m_items.size(), popup);
    return *popup;
}

CCommandBarButton& CCommandBarControls::AddButton(const std::wstring& caption, std::function<void()> action)
{
    auto* button = new CCommandBarButton(m_model, std::move(action));
    button->SetCaption(caption);
    Insert(m_items.size(), button);
    return *button;
}

void CCommandBarControls::Insert(size_t position, CCommandBarControl* control)
{
    m_items.insert(m_items.begin() + static_cast<ptrdiff_t>(position), control);
    control->SetOwner(this);
    m_model.Changed();
}

long CCommandBarControls::IndexOf(const CCommandBarControl& control) const
{
    const auto found = std::find_if(m_items.begin(), m_items.end(),
                                    [&](const auto& item) { return item.Get() == &control; });
    return found == m_items.end() ? 0 : static_cast<long>(found - m_items.begin()) + 1;
}

void CCommandBarControls::Remove(CCommandBarControl& control)
{
    const long index = IndexOf(control);
    if (index == 0)
    {
        return;
    }
    control.SetOwner(nullptr);
    m_items.erase(m_items.begin() + (index - 1));
    m_model.Changed();
}

CCommandBarButton* CCommandBarControls::FindButton(unsigned command) const
{
    for (const auto& item : m_items)
    {
        if (item->Type() == kControlPopup)
        {
            CCommandBarButton* button =
                static_cast<CCommandBarPopup*>(item.Get())->Controls().FindButton(command);
            if (button != nullptr)
            {
                return button;
            }
        }
        else if (item->Command() == command)
        {
            return static_cast<CCommandBarButton*>(item.Get());
        }
    }
    return nullptr;
}

HRESULT CCommandBarControls::OnCall(DISPID id, bool, const CArguments& arguments, VARIANT& result)
{
    switch (id)
    {
    case kItem:
        return GetItem(arguments, result);
    case kCount:
        return Return(result, static_cast<long>(m_items.size()));
    case kAdd:
        return Add(arguments, result);
    default:
        return DISP_E_MEMBERNOTFOUND;
    }
}

HRESULT CCommandBarControls::GetItem(const CArguments& arguments, VARIANT& result)
{
    if (arguments[0].vt == VT_BSTR)
    {
        std::wstring caption;
        arguments.GetText(0, caption);
        for (const auto& item : m_items)
        {
            if (item->Caption() == caption)
            {
                return Return(result, item.Get());
            }
        }
        return E_INVALIDARG;
    }
    long index = 0;
    const HRESULT hr = arguments.GetInt(0, index);
    if (FAILED(hr))
    {
        return hr;
    }
    if (index < 1 || static_cast<size_t>(index) > m_items.size())
    {
        return E_INVALIDARG;
    }
    return Return(result, m_items[static_cast<size_t>(index) - 1].Get());
}

// Add(Type, Id, Parameter, Before, Temporary). Id and Parameter are only for copies of Office's own commands.
HRESULT CCommandBarControls::Add(const CArguments& arguments, VARIANT& result)
{
    long type = kControlButton;
    long before = static_cast<long>(m_items.size()) + 1;
    bool temporary = false;
    HRESULT hr = S_OK;
    if (arguments.Has(0))
    {
        hr = arguments.GetInt(0, type);
    }
    if (SUCCEEDED(hr) && arguments.Has(3))
    {
        hr = arguments.GetInt(3, before);
    }
    if (SUCCEEDED(hr) && arguments.Has(4))
    {
        hr = arguments.GetBool(4, temporary);
    }
    if (FAILED(hr))
    {
        return hr;
    }
    if (before < 1 || static_cast<size_t>(before) > m_items.size() + 1)
    {
        return E_INVALIDARG;
    }

    CCommandBarControl* control = nullptr;
    if (type == kControlButton)
    {
        control = new CCommandBarButton(m_model);
    }
    else if (type == kControlPopup)
    {
        control = new CCommandBarPopup(m_model);
    }
    else
    {
        return E_INVALIDARG;
    }
    if (!temporary)
    {
        Trace().Event(L"a control that is not temporary will be there at the next start");
        control->SetLasting(true);
    }
    Insert(static_cast<size_t>(before) - 1, control);
    return Return(result, control);
}

CCommandBar::CCommandBar(CMenuModel& model)
    : CDispatchObject(model.Trace(), L"CommandBar", __uuidof(Office::CommandBar), kBarMembers),
      m_controls(new CCommandBarControls(model))
{
}

HRESULT CCommandBar::OnCall(DISPID id, bool, const CArguments&, VARIANT& result)
{
    switch (id)
    {
    case kControls:
        return Return(result, m_controls.Get());
    case kName:
        return Return(result, std::wstring(L"Menu Bar"));
    default:
        return DISP_E_MEMBERNOTFOUND;
    }
}

CCommandBars::CCommandBars(CMenuModel& model)
    : CDispatchObject(model.Trace(), L"CommandBars", __uuidof(Office::CommandBars), kBarsMembers),
      m_menuBar(new CCommandBar(model))
{
}

HRESULT CCommandBars::OnCall(DISPID id, bool, const CArguments&, VARIANT& result)
{
    switch (id)
    {
    case kActiveMenuBar:
        return Return(result, m_menuBar.Get());
    case kCount:
        return Return(result, 1L);
    default:
        return DISP_E_MEMBERNOTFOUND;
    }
}

} // namespace orva::host
