// Tests of event sinks: subscribing, and one Invoke for several dispatch bases.
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
    BEGIN_COM_MAP(CSink)
        COM_INTERFACE_ENTRY_IID(kTarget, ITarget)
        COM_INTERFACE_ENTRY_IID(IID_IDispatch, ITarget)
    END_COM_MAP()

    BEGIN_SINK_MAP(CSink)
    END_SINK_MAP()

    STDMETHOD(Nothing)() override { return S_OK; }

    // Every dispatch base comes here.
    STDMETHOD(Invoke)
    (DISPID dispid, REFIID iid, LCID lcid, WORD flags, DISPPARAMS* params, VARIANT* result,
     EXCEPINFO* exception, UINT* error) override
    {
        if (dispid >= 1000)
        {
            return TargetDispatch::Invoke(dispid, iid, lcid, flags, params, result, exception, error);
        }
        log += std::to_string(dispid) + ";";
        return S_OK;
    }

    std::string log;
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

    // Raises an event on every sink.
    HRESULT Raise(DISPID dispid)
    {
        DISPPARAMS none = {nullptr, nullptr, 0, 0};
        HRESULT hr = S_FALSE;
        for (const auto& [cookie, sink] : m_sinks)
        {
            hr = sink->Invoke(dispid, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr, nullptr,
                              nullptr);
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
        m_sink = new CComObject<CSink>;
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
    EXPECT_EQ(m_sink->log, "1;");
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
    EXPECT_EQ(m_sink->log, "1;");
    // The base's own dispatcher is still within reach; its library is registered nowhere.
    EXPECT_EQ(target->Invoke(1000, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
              TYPE_E_LIBNOTREGISTERED);
    EXPECT_EQ(m_sink->log, "1;");
}

} // namespace
