// The command bars of an explorer: CommandBars, CommandBar and the collection of a bar's or menu's controls.
#pragma once

#include "host/CommandBarControl.h"
#include "host/DispatchObject.h"
#include "host/MenuModel.h"

#include <wrl/client.h>

#include <functional>
#include <vector>

namespace orva::host
{

/// CommandBarControls: indices start at 1, and the default member is Item.
class CCommandBarControls : public CDispatchObject
{
public:
    explicit CCommandBarControls(CMenuModel& model);

    /// Appends a menu or a button of our own.
    CCommandBarPopup& AddPopup(const std::wstring& caption);
    CCommandBarButton& AddButton(const std::wstring& caption, std::function<void()> action = {});

    const std::vector<Microsoft::WRL::ComPtr<CCommandBarControl>>& Items() const { return m_items; }
    /// Position from 1; 0 when the control is not here.
    long IndexOf(const CCommandBarControl& control) const;
    void Remove(CCommandBarControl& control);
    /// The button behind a menu item, in this collection or in a menu of it; null when there is none.
    CCommandBarButton* FindButton(unsigned command) const;

protected:
    ~CCommandBarControls() override;
    HRESULT OnCall(DISPID id, bool isWrite, const CArguments& arguments, VARIANT& result) override;

private:
    HRESULT GetItem(const CArguments& arguments, VARIANT& result);
    HRESULT Add(const CArguments& arguments, VARIANT& result);
    void Insert(size_t position, CCommandBarControl* control);

    CMenuModel& m_model;
    std::vector<Microsoft::WRL::ComPtr<CCommandBarControl>> m_items;
};

/// CommandBar: the menu bar, which is the only bar.
class CCommandBar : public CDispatchObject
{
public:
    explicit CCommandBar(CMenuModel& model);

    CCommandBarControls& Controls() const { return *m_controls.Get(); }

protected:
    HRESULT OnCall(DISPID id, bool isWrite, const CArguments& arguments, VARIANT& result) override;

private:
    Microsoft::WRL::ComPtr<CCommandBarControls> m_controls;
};

/// CommandBars of an explorer.
class CCommandBars : public CDispatchObject
{
public:
    explicit CCommandBars(CMenuModel& model);

    CCommandBar& MenuBar() const { return *m_menuBar.Get(); }

protected:
    HRESULT OnCall(DISPID id, bool isWrite, const CArguments& arguments, VARIANT& result) override;

private:
    Microsoft::WRL::ComPtr<CCommandBar> m_menuBar;
};

} // namespace orva::host
