#include "outlook/FakeObject.h"

#include "harness/Text.h"

#include <algorithm>

namespace orva::test
{
namespace
{

// Far from any id that a caller could guess.
constexpr DISPID kFirstId = 7000;

CMemberCall Describe(const DISPPARAMS& parameters)
{
    CMemberCall call;
    call.arguments.assign(std::make_reverse_iterator(parameters.rgvarg + parameters.cArgs),
                          std::make_reverse_iterator(parameters.rgvarg));
    if (!call.arguments.empty() && call.arguments.front().vt == VT_BSTR)
    {
        const BSTR text = call.arguments.front().bstrVal;
        call.text.assign(text, SysStringLen(text));
    }
    call.named.assign(parameters.rgdispidNamedArgs, parameters.rgdispidNamedArgs + parameters.cNamedArgs);
    return call;
}

} // namespace

std::vector<std::string> MemberNames(const CCallRecord& record)
{
    std::vector<std::string> names;
    for (const CMemberCall& call : record)
    {
        names.push_back(call.member);
    }
    return names;
}

CFakeObject::CFakeObject(CCallRecord& record, std::string name, std::vector<IID> interfaces)
    : m_record(record), m_name(std::move(name)), m_interfaces(std::move(interfaces))
{
}

void CFakeObject::On(const std::wstring& member, Answer answer)
{
    auto found = Find(member);
    if (found == m_members.end())
    {
        const DISPID id = m_members.empty() ? kFirstId : m_members.rbegin()->first + 1;
        found = m_members.emplace(id, Member{.name = member, .answer = {}}).first;
    }
    found->second.answer = std::move(answer);
}

void CFakeObject::Give(const std::wstring& member, const _variant_t& value)
{
    On(member, [value](const DISPPARAMS&, VARIANT* result) {
        return VariantCopy(result, const_cast<VARIANT*>(static_cast<const VARIANT*>(&value)));
    });
}

void CFakeObject::GiveObject(const std::wstring& member, IDispatch* object)
{
    const Microsoft::WRL::ComPtr<IDispatch> kept(object);
    On(member, [kept](const DISPPARAMS&, VARIANT* result) {
        result->vt = VT_DISPATCH;
        return kept.CopyTo(&result->pdispVal);
    });
}

void CFakeObject::Fail(const std::wstring& member, HRESULT failure)
{
    On(member, [failure](const DISPPARAMS&, VARIANT*) { return failure; });
}

void CFakeObject::Forget(const std::wstring& member)
{
    m_members.erase(Find(member));
}

std::map<DISPID, CFakeObject::Member>::iterator CFakeObject::Find(const std::wstring& name)
{
    return std::find_if(m_members.begin(), m_members.end(),
                        [&](const auto& member) { return member.second.name == name; });
}

STDMETHODIMP CFakeObject::QueryInterface(REFIID iid, void** object)
{
    if (object == nullptr)
    {
        return E_POINTER;
    }
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IDispatch &&
        std::find(m_interfaces.begin(), m_interfaces.end(), iid) == m_interfaces.end())
    {
        return E_NOINTERFACE;
    }
    *object = static_cast<IDispatch*>(this);
    AddRef();
    return S_OK;
}

STDMETHODIMP_(ULONG) CFakeObject::AddRef()
{
    return static_cast<ULONG>(++m_references);
}

STDMETHODIMP_(ULONG) CFakeObject::Release()
{
    const LONG references = --m_references;
    if (references == 0)
    {
        delete this;
    }
    return static_cast<ULONG>(references);
}

STDMETHODIMP CFakeObject::GetTypeInfoCount(UINT* count)
{
    *count = 0;
    return S_OK;
}

STDMETHODIMP CFakeObject::GetTypeInfo(UINT, LCID, ITypeInfo**)
{
    return E_NOTIMPL;
}

STDMETHODIMP CFakeObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID locale, DISPID* ids)
{
    const auto found = Find(names[0]);
    if (found == m_members.end())
    {
        ids[0] = DISPID_UNKNOWN;
        return DISP_E_UNKNOWNNAME;
    }
    found->second.locale = locale;
    found->second.nameCount = count;
    ids[0] = found->first;
    return S_OK;
}

STDMETHODIMP CFakeObject::Invoke(DISPID id, REFIID, LCID locale, WORD flags, DISPPARAMS* parameters,
                                 VARIANT* result, EXCEPINFO* exception, UINT* argumentError)
{
    const auto found = m_members.find(id);
    if (found == m_members.end())
    {
        return DISP_E_MEMBERNOTFOUND;
    }
    const Member& member = found->second;
    CMemberCall call = Describe(*parameters);
    call.member = m_name + "." + Utf8(member.name);
    call.flags = flags;
    call.nameLocale = member.locale;
    call.callLocale = locale;
    call.nameCount = member.nameCount;
    call.wantsResult = result != nullptr;
    call.wantsException = exception != nullptr;
    call.wantsArgumentError = argumentError != nullptr;
    m_record.push_back(call);
    // A copy: the answer may change the members.
    const Answer answer = member.answer;
    _variant_t ignored;
    return answer(*parameters, result != nullptr ? result : &ignored);
}

} // namespace orva::test
