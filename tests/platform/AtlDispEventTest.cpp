// Tests of event sinks: subscribing, handlers found in the sink map, and one Invoke for several dispatch
// bases.
#include <atlbase.h>
#include <atlcom.h>

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace
{

constexpr IID kEvents = {0x5b0e6d11, 0x7c0b, 0x4e0c, {0x9e, 0x43, 0x52, 0xf9, 0xa1, 0xe0, 0xc1, 0x01}};
extern const IID kOtherEvents;
const IID kOtherEvents = {0x5b0e6d11, 0x7c0b, 0x4e0c, {0x9e, 0x43, 0x52, 0xf9, 0xa1, 0xe0, 0xc1, 0x02}};

// The module object that objects in this program lock.
class CTestModule : public CAtlDllModuleT<CTestModule>
{
};

// The interface that a sink's class has beside its sink.
struct ITarget : public IDispatch
{
    STDMETHOD(Nothing)() = 0;
};
constexpr IID kTarget = {0x5b0e6d11, 0x7c0b, 0x4e0c, {0x9e, 0x43, 0x52, 0xf9, 0xa1, 0xe0, 0xc1, 0x03}};
constexpr GUID kNoLibrary = {0x5b0e6d11, 0x7c0b, 0x4e0c, {0x9e, 0x43, 0x52, 0xf9, 0xa1, 0xe0, 0xc1, 0x04}};

using TargetDispatch = IDispatchImpl<ITarget, &kTarget, &kNoLibrary, 1, 0>;

class ATL_NO_VTABLE CSink : public CComObjectRootEx<CComSingleThreadModel>,
                            public TargetDispatch,
                            public IDispEventSimpleImpl<1, CSink, &kEvents>
{
public:
    using Events = IDispEventSimpleImpl<1, CSink, &kEvents>;

    BEGIN_COM_MAP(CSink)
        COM_INTERFACE_ENTRY_IID(kTarget, ITarget)
        COM_INTERFACE_ENTRY_IID(IID_IDispatch, ITarget)
    END_COM_MAP()

    BEGIN_SINK_MAP(CSink)
        SINK_ENTRY_INFO(1, kEvents, 1, &CSink::OnPlain, &s_plain)
        SINK_ENTRY_INFO(1, kEvents, 2, &CSink::OnArguments, &s_arguments)
        SINK_ENTRY_INFO(1, kEvents, 3, &CSink::OnVirtual, &s_plain)
        SINK_ENTRY_INFO(2, kEvents, 4, &CSink::OnPlain, &s_plain)
        SINK_ENTRY_INFO(1, kOtherEvents, 5, &CSink::OnPlain, &s_plain)
        SINK_ENTRY_INFO(1, kEvents, 6, &CSink::OnResult, &s_result)
    END_SINK_MAP()

    STDMETHOD(Nothing)() override { return S_OK; }

    // Every dispatch base comes here.
    STDMETHOD(Invoke)
    (DISPID dispid, REFIID iid, LCID lcid, WORD flags, DISPPARAMS* params, VARIANT* result,
     EXCEPINFO* exception, UINT* error) override
    {
        ++invocations;
        if (dispid >= 1000)
        {
            return TargetDispatch::Invoke(dispid, iid, lcid, flags, params, result, exception, error);
        }
        return Events::Invoke(dispid, iid, lcid, flags, params, result, exception, error);
    }

    void STDMETHODCALLTYPE OnPlain() { log += "plain;"; }
    void STDMETHODCALLTYPE OnArguments(long number, BSTR text, double real, VARIANT_BOOL* flag)
    {
        log += std::to_string(number) + "," + std::to_string(::SysStringLen(text)) + "," +
               std::to_string(real) + ";";
        *flag = VARIANT_TRUE;
    }
    virtual void STDMETHODCALLTYPE OnVirtual() { log += "base;"; }
    long STDMETHODCALLTYPE OnResult(long number) { return number * 2; }

    std::string log;
    int invocations = 0;

    static _ATL_FUNC_INFO s_plain;
    static _ATL_FUNC_INFO s_arguments;
    static _ATL_FUNC_INFO s_result;
};

_ATL_FUNC_INFO CSink::s_plain = {CC_STDCALL, VT_EMPTY, 0, {}};
_ATL_FUNC_INFO CSink::s_arguments = {
    CC_STDCALL, VT_EMPTY, 4, {VT_I4, VT_BSTR, VT_R8, static_cast<VARTYPE>(VT_BOOL | VT_BYREF)}};
_ATL_FUNC_INFO CSink::s_result = {CC_STDCALL, VT_I4, 1, {VT_I4}};

class CDerivedSink : public CSink
{
public:
    void STDMETHODCALLTYPE OnVirtual() override { log += "derived;"; }
};

// A source of events with one connection point; it counts nothing, it outlives its sinks in these tests.
class CSource : public IConnectionPointContainer, public IConnectionPoint
{
public:
    STDMETHOD(QueryInterface)(REFIID iid, void** object) override
    {
        *object = nullptr;
        if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IConnectionPointContainer))
        {
            *object = static_cast<IConnectionPointContainer*>(this);
        }
        return *object ? S_OK : E_NOINTERFACE;
    }
    STDMETHOD_(ULONG, AddRef)() override { return 2; }
    STDMETHOD_(ULONG, Release)() override { return 1; }

    STDMETHOD(EnumConnectionPoints)(IEnumConnectionPoints**) override { return E_NOTIMPL; }
    STDMETHOD(FindConnectionPoint)(REFIID iid, IConnectionPoint** point) override
    {
        *point = IsEqualIID(iid, kEvents) ? this : nullptr;
        return *point ? S_OK : CONNECT_E_NOCONNECTION;
    }

    STDMETHOD(GetConnectionInterface)(IID*) override { return E_NOTIMPL; }
    STDMETHOD(GetConnectionPointContainer)(IConnectionPointContainer**) override { return E_NOTIMPL; }
    STDMETHOD(EnumConnections)(IEnumConnections**) override { return E_NOTIMPL; }
    STDMETHOD(Advise)(IUnknown* sink, DWORD* cookie) override
    {
        CComPtr<IDispatch> events;
        const HRESULT hr = sink->QueryInterface(kEvents, reinterpret_cast<void**>(&events.p));
        if (FAILED(hr))
        {
            return CONNECT_E_CANNOTCONNECT;
        }
        *cookie = ++m_lastCookie;
        m_sinks[*cookie] = events;
        return S_OK;
    }
    STDMETHOD(Unadvise)(DWORD cookie) override
    {
        return m_sinks.erase(cookie) ? S_OK : CONNECT_E_NOCONNECTION;
    }

    // Raises an event on every sink. arguments stand in the order of the handler's parameters.
    HRESULT Raise(DISPID dispid, std::vector<CComVariant> arguments = {}, VARIANT* result = nullptr)
    {
        std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
        DISPPARAMS params = {reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
        HRESULT hr = S_FALSE;
        for (const auto& [cookie, sink] : m_sinks)
        {
            hr = sink->Invoke(dispid, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, result,
                              nullptr, nullptr);
        }
        return hr;
    }

    std::size_t Count() const { return m_sinks.size(); }

private:
    DWORD m_lastCookie = 0;
    std::map<DWORD, CComPtr<IDispatch>> m_sinks;
};

class AtlDispEvent : public testing::Test
{
protected:
    AtlDispEvent()
    {
        EXPECT_EQ(CComObject<CSink>::CreateInstance(&m_sink), S_OK);
        m_sink->AddRef();
    }
    ~AtlDispEvent() override
    {
        EXPECT_EQ(m_sink->Release(), 0u);
        EXPECT_EQ(m_module.GetLockCount(), 0);
    }
    IUnknown* Source() { return static_cast<IConnectionPointContainer*>(&m_source); }
    void Advise() { ASSERT_EQ(m_sink->DispEventAdvise(Source()), S_OK); }
    void Unadvise() { ASSERT_EQ(m_sink->DispEventUnadvise(Source()), S_OK); }

    CTestModule m_module;
    CSource m_source;
    CComObject<CSink>* m_sink = nullptr;
};

TEST_F(AtlDispEvent, ASubscriptionHoldsTheObjectUntilItEnds)
{
    Advise();
    EXPECT_EQ(m_source.Count(), 1u);
    EXPECT_NE(m_sink->m_dwEventCookie, 0xFEFEFEFE);
    EXPECT_EQ(m_sink->AddRef(), 3u);
    m_sink->Release();
    Unadvise();
    EXPECT_EQ(m_source.Count(), 0u);
    EXPECT_EQ(m_sink->m_dwEventCookie, 0xFEFEFEFE);
}

TEST_F(AtlDispEvent, SubscribingTwiceThrowsAndKeepsTheFirstSubscription)
{
    Advise();
    try
    {
        m_sink->DispEventAdvise(Source());
        ADD_FAILURE() << "nothing was thrown";
    }
    catch (const CAtlException& e)
    {
        EXPECT_EQ(e.m_hr, E_FAIL);
    }
    EXPECT_EQ(m_source.Count(), 1u);
    Unadvise();
}

TEST_F(AtlDispEvent, ASubscriptionCanBeRenewedAfterItsEnd)
{
    Advise();
    Unadvise();
    Advise();
    EXPECT_EQ(m_source.Raise(1), S_OK);
    EXPECT_EQ(m_sink->log, "plain;");
    Unadvise();
}

TEST_F(AtlDispEvent, EndingNoSubscriptionFails)
{
    EXPECT_EQ(m_sink->DispEventUnadvise(Source()), CONNECT_E_NOCONNECTION);
}

TEST_F(AtlDispEvent, ASourceWithoutTheEventsIsRefused)
{
    EXPECT_EQ(m_sink->DispEventAdvise(Source(), &kOtherEvents), CONNECT_E_NOCONNECTION);
    EXPECT_EQ(m_sink->DispEventAdvise(static_cast<ITarget*>(m_sink)), E_NOINTERFACE);
    EXPECT_EQ(m_sink->DispEventAdvise(nullptr), E_INVALIDARG);
    EXPECT_EQ(m_sink->DispEventUnadvise(nullptr), E_INVALIDARG);
}

TEST_F(AtlDispEvent, HandlersGetTheirArgumentsInOrder)
{
    Advise();
    VARIANT_BOOL flag = VARIANT_FALSE;
    VARIANT byReference;
    byReference.vt = VT_BOOL | VT_BYREF;
    byReference.pboolVal = &flag;
    EXPECT_EQ(
        m_source.Raise(2, {CComVariant(7L), CComVariant(L"abc"), CComVariant(2.5), CComVariant(byReference)}),
        S_OK);
    EXPECT_EQ(m_sink->log, "7,3,2.500000;");
    EXPECT_EQ(flag, VARIANT_TRUE);
    Unadvise();
}

TEST_F(AtlDispEvent, HandlersGiveTheirResult)
{
    Advise();
    CComVariant result;
    EXPECT_EQ(m_source.Raise(6, {CComVariant(21L)}, &result), S_OK);
    EXPECT_EQ(result, CComVariant(42L));
    Unadvise();
}

TEST_F(AtlDispEvent, NamedArgumentsGoToTheirPlaces)
{
    VARIANT_BOOL flag = VARIANT_FALSE;
    VARIANT arguments[4];
    // Named arguments come first, in any order; the others fill the first parameters, the last of them first.
    arguments[0] = CComVariant(1.0);
    arguments[1].vt = VT_BOOL | VT_BYREF;
    arguments[1].pboolVal = &flag;
    const CComVariant text(L"ab");
    arguments[2] = text;
    arguments[3] = CComVariant(7L);
    DISPID named[] = {2, 3};
    DISPPARAMS params = {arguments, named, 4, 2};
    EXPECT_EQ(m_sink->Invoke(2, IID_NULL, 0, DISPATCH_METHOD, &params, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(m_sink->log, "7,2,1.000000;");
    EXPECT_EQ(flag, VARIANT_TRUE);
    DISPID outside[] = {2, 4};
    params.rgdispidNamedArgs = outside;
    EXPECT_EQ(m_sink->Invoke(2, IID_NULL, 0, DISPATCH_METHOD, &params, nullptr, nullptr, nullptr),
              DISP_E_PARAMNOTFOUND);
    DISPID twice[] = {2, 2};
    params.rgdispidNamedArgs = twice;
    EXPECT_EQ(m_sink->Invoke(2, IID_NULL, 0, DISPATCH_METHOD, &params, nullptr, nullptr, nullptr),
              DISP_E_PARAMNOTFOUND);
}

TEST_F(AtlDispEvent, AnEventWithoutAHandlerIsNoError)
{
    Advise();
    EXPECT_EQ(m_source.Raise(99), S_OK);
    // These have handlers, but for another source and for another interface.
    EXPECT_EQ(m_source.Raise(4), S_OK);
    EXPECT_EQ(m_source.Raise(5), S_OK);
    EXPECT_EQ(m_sink->log, "");
    EXPECT_EQ(m_sink->invocations, 3);
    Unadvise();
}

TEST_F(AtlDispEvent, AnEventWithOtherArgumentsThanTheHandlersIsRefused)
{
    Advise();
    EXPECT_EQ(m_source.Raise(1, {CComVariant(1L)}), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(m_source.Raise(6), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(m_source.Raise(6, {CComVariant(L"text")}), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(m_sink->log, "");
    Unadvise();
    EXPECT_EQ(m_sink->Invoke(1, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr),
              DISP_E_BADPARAMCOUNT);
}

TEST_F(AtlDispEvent, ASinkAnswersForItsEventsOnly)
{
    auto* sink = static_cast<IDispEventSimpleImpl<1, CSink, &kEvents>*>(m_sink);
    void* object = nullptr;
    EXPECT_EQ(sink->_LocDEQueryInterface(kEvents, &object), S_OK);
    EXPECT_EQ(sink->_LocDEQueryInterface(IID_IDispatch, &object), S_OK);
    EXPECT_EQ(sink->_LocDEQueryInterface(IID_IUnknown, &object), S_OK);
    EXPECT_EQ(m_sink->AddRef(), 5u);
    for (int i = 0; i < 4; ++i)
    {
        m_sink->Release();
    }
    EXPECT_EQ(sink->_LocDEQueryInterface(kTarget, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(sink->_LocDEQueryInterface(kEvents, nullptr), E_POINTER);
}

TEST_F(AtlDispEvent, OneInvokeServesEveryDispatchBase)
{
    DISPPARAMS none = {nullptr, nullptr, 0, 0};
    IDispatch* target = static_cast<ITarget*>(m_sink);
    EXPECT_EQ(target->Invoke(1, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(m_sink->log, "plain;");
    // The base's own dispatcher is still within reach; its library is registered nowhere.
    EXPECT_EQ(target->Invoke(1000, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
              TYPE_E_LIBNOTREGISTERED);
    EXPECT_EQ(m_sink->invocations, 2);
}

TEST(AtlDispEventVirtual, AVirtualHandlerIsTheDerivedClasss)
{
    CTestModule module;
    CComObject<CDerivedSink>* sink = nullptr;
    ASSERT_EQ(CComObject<CDerivedSink>::CreateInstance(&sink), S_OK);
    sink->AddRef();
    DISPPARAMS none = {nullptr, nullptr, 0, 0};
    EXPECT_EQ(sink->Invoke(3, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(sink->log, "derived;");
    sink->Release();
}

} // namespace
