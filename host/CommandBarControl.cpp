#include "host/CommandBarControl.h"

#include "host/ButtonEvents.h"
#include "host/CommandBars.h"

#include <OfficeObjects.h>

namespace orva::host
{
namespace
{

enum : DISPID
{
    kBeginGroup = 1,
    kCaption,
    kDelete,
    kEnabled,
    kId,
    kIndex,
    kTag,
    kType,
    kVisible,
    kParent,
    kControls
};

constexpr WORD kReadWrite = DISPATCH_PROPERTYGET | DISPATCH_PROPERTYPUT;

constexpr Member kMembers[] = {
    {kBeginGroup, L"BeginGroup", kReadWrite},
    {kCaption, L"Caption", kReadWrite},
    {kDelete, L"Delete", DISPATCH_METHOD, 0, 1},
    {kEnabled, L"Enabled", kReadWrite},
    {kId, L"Id", DISPATCH_PROPERTYGET},
    {kIndex, L"Index", DISPATCH_PROPERTYGET},
    {kTag, L"Tag", kReadWrite},
    {kType, L"Type", DISPATCH_PROPERTYGET},
    {kVisible, L"Visible", kReadWrite},
    {kParent, L"Parent", DISPATCH_PROPERTYGET},
    // A menu only.
    {kControls, L"Controls", DISPATCH_PROPERTYGET},
};
constexpr std::span<const Member> kButtonMembers(kMembers, std::size(kMembers) - 1);

} // namespace

CCommandBarControl::CCommandBarControl(CMenuModel& model, const wchar_t* name, const IID& id,
                                       std::span<const Member> members)
    : CDispatchObject(model.Trace(), name, id, members), m_model(model), m_command(model.NextCommand())
{
}

IUnknown* CCommandBarControl::OtherInterface(REFIID iid)
{
    return IsEqualIID(iid, __uuidof(Office::CommandBarControl)) ? static_cast<IDispatch*>(this) : nullptr;
}

HRESULT CCommandBarControl::OnCall(DISPID id, bool isWrite, const CArguments& arguments, VARIANT& result)
{
    if (isWrite)
    {
        return OnWrite(id, arguments);
    }
    switch (id)
    {
    case kBeginGroup:
        return Return(result, m_beginsGroup);
    case kCaption:
        return Return(result, m_caption);
    case kDelete:
        if (m_owner == nullptr)
        {
            return E_FAIL;
        }
        m_owner->Remove(*this);
        return S_OK;
    case kEnabled:
        return Return(result, m_enabled);
    case kId:
        // 1 is the id of every control that is not one of Office's own.
        return Return(result, 1L);
    case kIndex:
        return m_owner != nullptr ? Return(result, m_owner->IndexOf(*this)) : E_FAIL;
    case kTag:
        return Return(result, m_tag);
    case kType:
        return Return(result, Type());
    case kVisible:
        return Return(result, m_visible);
    case kParent:
        return Return(result, m_owner);
    default:
        return DISP_E_MEMBERNOTFOUND;
    }
}

HRESULT CCommandBarControl::OnWrite(DISPID id, const CArguments& arguments)
{
    HRESULT result = DISP_E_MEMBERNOTFOUND;
    if (id == kCaption)
    {
        result = arguments.GetText(0, m_caption);
    }
    else if (id == kTag)
    {
        result = arguments.GetText(0, m_tag);
    }
    else if (id == kEnabled)
    {
        result = arguments.GetBool(0, m_enabled);
    }
    else if (id == kVisible)
    {
        result = arguments.GetBool(0, m_visible);
    }
    else if (id == kBeginGroup)
    {
        result = arguments.GetBool(0, m_beginsGroup);
    }
    if (SUCCEEDED(result))
    {
        m_model.Changed();
    }
    return result;
}

// The connection point container of one button: a part of the button, with the button's reference count.
class CCommandBarButton::CClickSource : public IConnectionPointContainer
{
public:
    explicit CClickSource(CCommandBarButton& button)
        : m_button(button), m_point(button.Model().Trace(), *this)
    {
    }
    virtual ~CClickSource() = default;

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override
    {
        return m_button.QueryInterface(iid, object);
    }
    STDMETHODIMP_(ULONG) AddRef() override { return m_button.AddRef(); }
    STDMETHODIMP_(ULONG) Release() override { return m_button.Release(); }
    STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** points) override
    {
        if (points != nullptr)
        {
            *points = nullptr;
        }
        return E_NOTIMPL;
    }
    STDMETHODIMP FindConnectionPoint(REFIID iid, IConnectionPoint** point) override
    {
        return m_point.Find(iid, point);
    }

    CButtonEvents& Point() { return m_point; }

private:
    CCommandBarButton& m_button;
    CButtonEvents m_point;
};

CCommandBarButton::CCommandBarButton(CMenuModel& model, std::function<void()> action)
    : CCommandBarControl(model, L"CommandBarButton", __uuidof(Office::_CommandBarButton), kButtonMembers),
      m_action(std::move(action)), m_clicks(new CClickSource(*this))
{
}

CCommandBarButton::~CCommandBarButton()
{
    delete m_clicks;
}

IUnknown* CCommandBarButton::OtherInterface(REFIID iid)
{
    if (IsEqualIID(iid, IID_IConnectionPointContainer))
    {
        return m_clicks;
    }
    return CCommandBarControl::OtherInterface(iid);
}

void CCommandBarButton::Click()
{
    // A subscriber may delete the button.
    AddRef();
    if (m_action)
    {
        m_action();
    }
    m_clicks->Point().Raise(this);
    Release();
}

CCommandBarPopup::CCommandBarPopup(CMenuModel& model)
    : CCommandBarControl(model, L"CommandBarPopup", __uuidof(Office::CommandBarPopup), kMembers),
      m_controls(new CCommandBarControls(model))
{
    m_controls->AddRef();
}

CCommandBarPopup::~CCommandBarPopup()
{
    m_controls->Release();
}

HRESULT CCommandBarPopup::OnCall(DISPID id, bool isWrite, const CArguments& arguments, VARIANT& result)
{
    if (id == kControls)
    {
        return Return(result, m_controls);
    }
    return CCommandBarControl::OnCall(id, isWrite, arguments, result);
}

} // namespace orva::host
