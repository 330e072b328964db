// Tests of event sinks: subscribing, ending that, and what is refused.
#include "AtlTestModule.h"

#include <optional>

namespace
{

using namespace orva::test;

constexpr IID kEvents = {0x5b0e6d11, 0x7c0b, 0x4e0c, {0x9e, 0x43, 0x52, 0xf9, 0xa1, 0xe0, 0xc1, 0x01}};
constexpr IID kOtherEvents = {0x5b0e6d11, 0x7c0b, 0x4e0c, {0x9e, 0x43, 0x52, 0xf9, 0xa1, 0xe0, 0xc1, 0x02}};

class ATL_NO_VTABLE CSink : public CComObjectRootEx<CComSingleThreadModel>,
                            public IPersist,
                            public IDispEventSimpleImpl<1, CSink, &kEvents>
{
public:
    BEGIN_COM_MAP(CSink)
        COM_INTERFACE_ENTRY(IPersist)
    END_COM_MAP()

    BEGIN_SINK_MAP(CSink)
    END_SINK_MAP()

    STDMETHOD(GetClassID)(CLSID*) override { return E_NOTIMPL; }
    STDMETHOD(Invoke)
    (DISPID dispid, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override
    {
        lastEvent = dispid;
        return S_OK;
    }

    DISPID lastEvent = 0;
};

// A source of events with one connection point for one sink; it counts nothing, it outlives its sinks here.
class CSource : public IConnectionPointContainer, public IConnectionPoint
{
public:
    STDMETHOD(QueryInterface)(REFIID iid, void** object) override
    {
        *object = IsEqualIID(iid, IID_IConnectionPointContainer)
                      ? static_cast<IConnectionPointContainer*>(this)
                      : nullptr;
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
    STDMETHOD(Advise)(IUnknown* subscriber, DWORD* cookie) override
    {
        if (sink)
        {
            return CONNECT_E_ADVISELIMIT;
        }
        *cookie = kCookie;
        return subscriber->QueryInterface(kEvents, reinterpret_cast<void**>(&sink.p));
    }
    STDMETHOD(Unadvise)(DWORD cookie) override
    {
        const bool isSubscribed = sink && cookie == kCookie;
        sink.Release();
        return isSubscribed ? S_OK : CONNECT_E_NOCONNECTION;
    }

    static constexpr DWORD kCookie = 42;
    CComPtr<IDispatch> sink;
};

class AtlDispEvent : public CTestModuleTest
{
protected:
    AtlDispEvent() : m_sink(new CComObject<CSink>) { m_sink->AddRef(); }
    ~AtlDispEvent() override { EXPECT_EQ(m_sink->Release(), 0u); }

    IUnknown* Source() { return static_cast<IConnectionPointContainer*>(&m_source); }

    CSource m_source;
    CComObject<CSink>* m_sink;
};

TEST_F(AtlDispEvent, ASubscriptionHoldsTheObjectUntilItEndsAndCanBeRenewed)
{
    for (const DISPID event : {1, 2})
    {
        ASSERT_EQ(m_sink->DispEventAdvise(Source()), S_OK);
        EXPECT_EQ(m_sink->m_dwEventCookie, CSource::kCookie);
        EXPECT_EQ(m_sink->AddRef(), 3u);
        m_sink->Release();
        DISPPARAMS none = {};
        EXPECT_EQ(
            m_source.sink->Invoke(event, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
            S_OK);
        EXPECT_EQ(m_sink->lastEvent, event);
        ASSERT_EQ(m_sink->DispEventUnadvise(Source()), S_OK);
        EXPECT_EQ(m_sink->m_dwEventCookie, 0xFEFEFEFE);
    }
}

TEST_F(AtlDispEvent, SubscribingTwiceThrowsAndKeepsTheFirstSubscription)
{
    ASSERT_EQ(m_sink->DispEventAdvise(Source()), S_OK);
    std::optional<HRESULT> thrown;
    try
    {
        m_sink->DispEventAdvise(Source());
    }
    catch (const CAtlException& e)
    {
        thrown = e.m_hr;
    }
    EXPECT_EQ(thrown, E_FAIL);
    EXPECT_EQ(m_sink->DispEventUnadvise(Source()), S_OK);
}

TEST_F(AtlDispEvent, WhatIsNoSourceOfTheEventsIsRefused)
{
    EXPECT_EQ(m_sink->DispEventUnadvise(Source()), CONNECT_E_NOCONNECTION) << "there is no subscription";
    EXPECT_EQ(m_sink->DispEventAdvise(Source(), &kOtherEvents), CONNECT_E_NOCONNECTION);
    EXPECT_EQ(m_sink->DispEventAdvise(static_cast<IPersist*>(m_sink)), E_NOINTERFACE);
    EXPECT_EQ(m_sink->DispEventAdvise(nullptr), E_INVALIDARG);
    EXPECT_EQ(m_sink->DispEventUnadvise(nullptr), E_INVALIDARG);
    EXPECT_EQ(m_sink->_LocDEQueryInterface(kEvents, nullptr), E_POINTER);
}

} // namespace
