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
    explicit CSink(bool answersEvents = true) : m_answersEvents(answersEvents) {}
    virtual ~CSink() = default;

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override
    {
        const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) ||
                           (m_answersEvents && IsEqualIID(iid, DIID__CommandBarButtonEvents));
        *object = known ? this : nullptr;
        if (known)
        {
            AddRef();
        }
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
        lastCount = parameters->cArgs;
        lastControl = parameters->rgvarg[1].vt == VT_DISPATCH ? parameters->rgvarg[1].pdispVal : nullptr;
        if (cancels)
        {
            *parameters->rgvarg[0].pboolVal = VARIANT_TRUE;
        }
        return S_OK;
    }

    ULONG references = 1;
    int calls = 0;
    DISPID lastId = 0;
    WORD lastFlags = 0;
    UINT lastCount = 0;
    IDispatch* lastControl = nullptr;
    bool cancels = false;

private:
    bool m_answersEvents;
};

class ButtonEventsTest : public testing::Test
{
protected:
    void SetUp() override
    {
        m_button = new CCommandBarButton(m_model);
        ComPtr<IConnectionPointContainer> container;
        ASSERT_EQ(m_button.CopyTo(IID_IConnectionPointContainer,
                                  reinterpret_cast<void**>(container.ReleaseAndGetAddressOf())),
                  S_OK);
        ASSERT_EQ(container->FindConnectionPoint(DIID__CommandBarButtonEvents, &m_point), S_OK);
    }

    CTrace m_trace;
    CMenuModel m_model{m_trace};
    ComPtr<CCommandBarButton> m_button;
    ComPtr<IConnectionPoint> m_point;
};

TEST_F(ButtonEventsTest, ClickCarriesTheControlAndAByReferenceBoolean)
{
    CSink sink;
    DWORD cookie = 0;
    ASSERT_EQ(m_point->Advise(&sink, &cookie), S_OK);
    EXPECT_NE(cookie, 0u);
    EXPECT_FALSE(m_button->Click());
    EXPECT_EQ(sink.calls, 1);
    EXPECT_EQ(sink.lastId, 1);
    EXPECT_EQ(sink.lastFlags, DISPATCH_METHOD);
    EXPECT_EQ(sink.lastCount, 2u);
    EXPECT_EQ(sink.lastControl, m_button.Get());
    EXPECT_EQ(m_point->Unadvise(cookie), S_OK);
}

TEST_F(ButtonEventsTest, CancelDefaultComesBack)
{
    CSink sink;
    sink.cancels = true;
    DWORD cookie = 0;
    ASSERT_EQ(m_point->Advise(&sink, &cookie), S_OK);
    EXPECT_TRUE(m_button->Click());
    EXPECT_EQ(m_point->Unadvise(cookie), S_OK);
}

TEST_F(ButtonEventsTest, NoCallAfterUnadviseAndTheReferenceIsGivenBack)
{
    CSink sink;
    DWORD cookie = 0;
    ASSERT_EQ(m_point->Advise(&sink, &cookie), S_OK);
    ASSERT_EQ(m_button->Subscribers(), 1u);
    ASSERT_EQ(m_point->Unadvise(cookie), S_OK);
    m_button->Click();
    EXPECT_EQ(sink.calls, 0);
    EXPECT_EQ(sink.references, 1u);
    EXPECT_EQ(m_point->Unadvise(cookie), CONNECT_E_NOCONNECTION);
}

TEST_F(ButtonEventsTest, SinkWithoutTheEventInterfaceIsRefused)
{
    CSink sink(false);
    DWORD cookie = 7;
    EXPECT_EQ(m_point->Advise(&sink, &cookie), CONNECT_E_CANNOTCONNECT);
    EXPECT_EQ(cookie, 0u);
    EXPECT_EQ(sink.references, 1u);
}

TEST_F(ButtonEventsTest, OtherEventInterfacesHaveNoConnectionPoint)
{
    ComPtr<IConnectionPointContainer> container;
    ASSERT_EQ(m_point->GetConnectionPointContainer(&container), S_OK);
    ComPtr<IConnectionPoint> other;
    EXPECT_EQ(container->FindConnectionPoint(IID_IRibbonControl, &other), CONNECT_E_NOCONNECTION);
    IID id{};
    EXPECT_EQ(m_point->GetConnectionInterface(&id), S_OK);
    EXPECT_TRUE(IsEqualIID(id, DIID__CommandBarButtonEvents));
}

TEST_F(ButtonEventsTest, SubscribersThatRemainAreReleasedWithTheButton)
{
    CSink sink;
    DWORD cookie = 0;
    ASSERT_EQ(m_point->Advise(&sink, &cookie), S_OK);
    m_point.Reset();
    m_button.Reset();
    EXPECT_EQ(sink.references, 1u);
}

} // namespace
