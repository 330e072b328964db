// Controls of a command bar: menus and buttons as add-ins see them.
#pragma once

#include "host/DispatchObject.h"
#include "host/MenuModel.h"

#include <functional>
#include <string>

namespace orva::host
{

class CCommandBarControls;

/// MsoControlType values.
inline constexpr long kControlButton = 1;
inline constexpr long kControlPopup = 10;

/// What a button and a menu have in common.
class CCommandBarControl : public CDispatchObject
{
public:
    const std::wstring& Caption() const { return m_caption; }
    void SetCaption(const std::wstring& caption) { m_caption = caption; }
    bool IsEnabled() const { return m_enabled; }
    bool IsVisible() const { return m_visible; }
    bool BeginsGroup() const { return m_beginsGroup; }
    void SetBeginsGroup(bool begins) { m_beginsGroup = begins; }
    /// Whether it is stored at the end and restored at the next start.
    bool IsLasting() const { return m_lasting; }
    void SetLasting(bool lasting) { m_lasting = lasting; }
    unsigned Command() const { return m_command; }
    virtual long Type() const = 0;
    /// Null once the control has been deleted.
    void SetOwner(CCommandBarControls* owner) { m_owner = owner; }

protected:
    CCommandBarControl(CMenuModel& model, const wchar_t* name, const IID& id,
                       std::span<const Member> members);
    HRESULT OnCall(DISPID id, bool isWrite, const CArguments& arguments, VARIANT& result) override;
    IUnknown* OtherInterface(REFIID iid) override;
    CMenuModel& Model() const { return m_model; }

private:
    HRESULT OnWrite(DISPID id, const CArguments& arguments);

    CMenuModel& m_model;
    CCommandBarControls* m_owner = nullptr;
    std::wstring m_caption;
    std::wstring m_tag;
    bool m_enabled = true;
    bool m_visible = true;
    bool m_beginsGroup = false;
    bool m_lasting = false;
    unsigned m_command;
};

/// A plain button. Add-ins receive its clicks through the connection point of _CommandBarButtonEvents;
/// `action` is what a button of our own menus does.
class CCommandBarButton : public CCommandBarControl
{
public:
    explicit CCommandBarButton(CMenuModel& model, std::function<void()> action = {});

    long Type() const override { return kControlButton; }
    /// Carries out the action and raises Click on every subscriber.
    void Click();

protected:
    ~CCommandBarButton() override;
    IUnknown* OtherInterface(REFIID iid) override;

private:
    class CClickSource;

    std::function<void()> m_action;
    CClickSource* m_clicks;
};

/// A menu.
class CCommandBarPopup : public CCommandBarControl
{
public:
    explicit CCommandBarPopup(CMenuModel& model);

    long Type() const override { return kControlPopup; }
    CCommandBarControls& Controls() const { return *m_controls; }

protected:
    ~CCommandBarPopup() override;
    HRESULT OnCall(DISPID id, bool isWrite, const CArguments& arguments, VARIANT& result) override;

private:
    CCommandBarControls* m_controls;
};

} // namespace orva::host
