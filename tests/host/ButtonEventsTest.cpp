// The connection point of a button and its Click event.
#include "host/CommandBarControl.h"

#include <Office.h>

#include <gtest/gtest.h>
#include <wrl/client.h>

#include <olectl.h>

namespace
{

using namespace orva::host;
using Microsoft::WRL::ComPtr;

// A subscriber that records its calls.
class CSink : public IDispatch
{
public:
    virtual ~CSink() = default;

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override
    {
        const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) ||
                           (answersEvents && IsEqualIID(iid, DIID__CommandBarButtonEvents));
        *object = known ? this : nullptr;
        references += known ? 1 : 0;
        return known ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
    STDMETHODIMP_(ULONG) Release() override { return --references; }
    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                        UINT*) override
    {
        ++calls;
        lastId = id;
        lastFlags = flags;
        // Arguments come in reverse order.
        lastCount = parameters->cArgs;
        lastType = parameters->rgvarg[0].vt;
        lastControl = parameters->rgvarg[1].vt == VT_DISPATCH ? parameters->rgvarg[1].pdispVal : nullptr;
        return S_OK;
    }

    bool answersEvents = true;
    ULONG references = 1;
    int calls = 0;
    DISPID lastId = 0;
    WORD lastFlags = 0;
    UINT lastCount = 0;
    VARTYPE lastType = VT_EMPTY;
    IDispatch* lastControl = nullptr;
};

class ButtonEventsTest : public testing::Test
{
protected:
    void SetUp() override
    {
        m_button = new CCommandBarButton(m_model);
        ASSERT_EQ(m_button.As(&m_container), S_OK);
        ASSERT_EQ(m_container->FindConnectionPoint(DIID__CommandBarButtonEvents, &m_point), S_OK);
    }

    CTrace m_trace;
    CMenuModel m_model{m_trace};
    ComPtr<CCommandBarButton> m_button;
    ComPtr<IConnectionPointContainer> m_container;
    ComPtr<IConnectionPoint> m_point;
    CSink m_sink;
    DWORD m_cookie = 7;
};

TEST_F(ButtonEventsTest, ClickCarriesTheControlAndAByReferenceBooleanUntilUnadvise)
{
    ASSERT_EQ(m_point->Advise(&m_sink, &m_cookie), S_OK);
    m_button->Click();
    EXPECT_EQ(m_sink.calls, 1);
    EXPECT_EQ(m_sink.lastId, 1);
    EXPECT_EQ(m_sink.lastFlags, DISPATCH_METHOD);
    EXPECT_EQ(m_sink.lastCount, 2u);
    EXPECT_EQ(m_sink.lastType, VT_BYREF | VT_BOOL);
    EXPECT_EQ(m_sink.lastControl, m_button.Get());

    EXPECT_EQ(m_point->Unadvise(m_cookie), S_OK);
    m_button->Click();
    EXPECT_EQ(m_sink.calls, 1);
    EXPECT_EQ(m_sink.references, 1u);
    EXPECT_EQ(m_point->Unadvise(m_cookie), CONNECT_E_NOCONNECTION);
}

TEST_F(ButtonEventsTest, SinkWithoutTheEventInterfaceIsRefused)
{
    m_sink.answersEvents = false;
    EXPECT_EQ(m_point->Advise(&m_sink, &m_cookie), CONNECT_E_CANNOTCONNECT);
    EXPECT_EQ(m_cookie, 0u);
    EXPECT_EQ(m_sink.references, 1u);
}

TEST_F(ButtonEventsTest, OtherEventInterfacesHaveNoConnectionPoint)
{
    ComPtr<IConnectionPoint> other;
    EXPECT_EQ(m_container->FindConnectionPoint(IID_IRibbonControl, &other), CONNECT_E_NOCONNECTION);
    IID id{};
    EXPECT_EQ(m_point->GetConnectionInterface(&id), S_OK);
    EXPECT_TRUE(IsEqualIID(id, DIID__CommandBarButtonEvents));
}

} // namespace
