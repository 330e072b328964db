// An Outlook of fakes: application, explorer and menu bar down to the button that an add-in may add.
#pragma once

#include "outlook/FakeObject.h"

#include <ocidl.h>

#include <map>
#include <optional>

namespace orva::test
{

/// What the released versions say of themselves.
inline constexpr wchar_t kOutlook2007[] = L"12.0.6423.1000";
inline constexpr wchar_t kOutlook2010[] = L"14.0.4760.1000";
inline constexpr wchar_t kOutlook2013[] = L"15.0.4420.1017";

/// A command-bar button that raises Click through its connection point.
class CFakeButton : public CFakeObject, public IConnectionPointContainer, public IConnectionPoint
{
public:
    explicit CFakeButton(CCallRecord& record);

    /// The subscriptions, by their cookies.
    const std::map<DWORD, Microsoft::WRL::ComPtr<IDispatch>>& Sinks() const { return m_sinks; }
    /// How often subscribing and its end were asked for.
    int Advises() const { return m_advises; }
    int Unadvises() const { return m_unadvises; }
    /// Forgets all subscribers, as Office does with a control that it discards.
    void DropSinks() { m_sinks.clear(); }
    /// What Advise or Unadvise answers instead of doing its work.
    void FailAdvise(HRESULT result) { m_adviseFailure = result; }
    void FailUnadvise(HRESULT result) { m_unadviseFailure = result; }

    /// Raises Click as Office does: the button and a CancelDefault, by reference, in reverse order. Returns
    /// the result of the first subscriber, nothing without one.
    std::optional<HRESULT> Click();
    /// CancelDefault after the last click.
    VARIANT_BOOL CancelDefault() const { return m_cancelDefault; }

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override { return CFakeObject::AddRef(); }
    STDMETHODIMP_(ULONG) Release() override { return CFakeObject::Release(); }

    STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints**) override { return E_NOTIMPL; }
    STDMETHODIMP FindConnectionPoint(REFIID iid, IConnectionPoint** point) override;

    STDMETHODIMP GetConnectionInterface(IID*) override { return E_NOTIMPL; }
    STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer**) override { return E_NOTIMPL; }
    STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) override;
    STDMETHODIMP Unadvise(DWORD cookie) override;
    STDMETHODIMP EnumConnections(IEnumConnections**) override { return E_NOTIMPL; }

private:
    std::map<DWORD, Microsoft::WRL::ComPtr<IDispatch>> m_sinks;
    int m_advises = 0;
    int m_unadvises = 0;
    HRESULT m_adviseFailure = S_OK;
    HRESULT m_unadviseFailure = S_OK;
    VARIANT_BOOL m_cancelDefault = VARIANT_FALSE;
};

/// The object tree. Every object can be told to answer otherwise.
class CFakeOutlook
{
public:
    /// An Outlook of this version text with an explorer whose menu bar has seven menus, Help being the last.
    explicit CFakeOutlook(const wchar_t* version);
    /// Discards the button, as Office discards a temporary control at its end.
    ~CFakeOutlook() { button->DropSinks(); }
    CFakeOutlook(const CFakeOutlook&) = delete;
    CFakeOutlook& operator=(const CFakeOutlook&) = delete;

    CCallRecord record;
    Microsoft::WRL::ComPtr<CFakeObject> application;
    Microsoft::WRL::ComPtr<CFakeObject> explorer;
    Microsoft::WRL::ComPtr<CFakeObject> commandBars;
    Microsoft::WRL::ComPtr<CFakeObject> menuBar;
    Microsoft::WRL::ComPtr<CFakeObject> menus;
    Microsoft::WRL::ComPtr<CFakeObject> helpMenu;
    Microsoft::WRL::ComPtr<CFakeObject> commands;
    Microsoft::WRL::ComPtr<CFakeButton> button;
};

} // namespace orva::test
