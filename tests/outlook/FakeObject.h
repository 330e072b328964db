// Objects of a host as an add-in calls them by name, which note each call exactly as it came.
#pragma once

#include <wrl/client.h>

#include <windows.h>
#include <comdef.h>
#include <oaidl.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace orva::test
{

/// One Invoke that a fake got.
struct CMemberCall
{
    /// "Object.Member"
    std::string member;
    WORD flags = 0;
    /// Locale of the member's look-up, and of the call.
    LCID nameLocale = 0;
    LCID callLocale = 0;
    /// Names asked for in the look-up.
    UINT nameCount = 0;
    /// First argument first; bitwise, so that unused bytes show. What they point to is gone.
    std::vector<VARIANT> arguments;
    /// The first argument's text, if it is a BSTR.
    std::wstring text;
    std::vector<DISPID> named;
    bool wantsResult = false;
    bool wantsException = false;
    bool wantsArgumentError = false;
};

/// All calls of a test, in order.
using CCallRecord = std::vector<CMemberCall>;

/// The members called, in order.
std::vector<std::string> MemberNames(const CCallRecord& record);

/// A late-bound object with the members that it was given. Starts without a reference. The record must
/// outlive it.
class CFakeObject : public IDispatch
{
public:
    using Answer = std::function<HRESULT(const DISPPARAMS& parameters, VARIANT* result)>;

    /// Answers to IUnknown, IDispatch and `interfaces`.
    CFakeObject(CCallRecord& record, std::string name, std::vector<IID> interfaces);
    CFakeObject(const CFakeObject&) = delete;
    CFakeObject& operator=(const CFakeObject&) = delete;

    /// Calls of `member` run `answer`.
    void On(const std::wstring& member, Answer answer);
    /// Calls of `member` give `value`.
    void Give(const std::wstring& member, const _variant_t& value);
    /// Calls of `member` give this object; null: an empty reference.
    void GiveObject(const std::wstring& member, IDispatch* object);
    /// Calls of `member` fail.
    void Fail(const std::wstring& member, HRESULT result);
    /// `member` is no longer known.
    void Forget(const std::wstring& member);

    LONG References() const { return m_references; }

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;
    STDMETHODIMP GetTypeInfoCount(UINT* count) override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** information) override;
    STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override;
    STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                        VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override;

protected:
    virtual ~CFakeObject() = default;

private:
    struct Member
    {
        std::wstring name;
        Answer answer;
        LCID locale = 0;
        UINT nameCount = 0;
    };
    std::map<DISPID, Member>::iterator Find(const std::wstring& name);

    CCallRecord& m_record;
    std::string m_name;
    std::vector<IID> m_interfaces;
    std::map<DISPID, Member> m_members;
    LONG m_references = 0;
};

} // namespace orva::test
