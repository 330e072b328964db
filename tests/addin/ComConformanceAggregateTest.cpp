// The rules of COM for the add-in's object inside another one.
#include "addin/ComConformance.h"

namespace orva::test
{
namespace
{

using Microsoft::WRL::ComPtr;

class ComConformanceAggregateTest : public CComConformanceTest
{
};

TEST_F(ComConformanceAggregateTest, TheWholeKeepsEveryRuleOfQueryInterface)
{
    COuter outer;
    CreateInside(outer);
    ExpectQueryInterfaceRules(&outer, AddInInterfaces(), ForeignInterfaces());
    EXPECT_EQ(outer.References(), 1u);
    EXPECT_EQ(m_module->CanUnloadNow(), S_FALSE);
    outer.LetGo();
    EXPECT_EQ(m_module->CanUnloadNow(), S_OK);
}

TEST_F(ComConformanceAggregateTest, TheInnerIdentityKeepsTheRulesForItselfAlone)
{
    COuter outer;
    CreateInside(outer);
    const CInterface identity[] = {{"IUnknown", IID_IUnknown}};
    ExpectQueryInterfaceRules(*outer.Inner(), identity, ForeignInterfaces());
    ComPtr<IUnknown> inner;
    EXPECT_EQ((*outer.Inner())->QueryInterface(IID_IUnknown, Out(inner)), S_OK);
    EXPECT_EQ(CountOf(inner.Get()), 2u);
    EXPECT_EQ(outer.References(), 1u);
}

TEST_F(ComConformanceAggregateTest, ItIsCreatedAsIUnknownOnly)
{
    COuter outer;
    for (const IID& iid : {IID_IDispatch, IID__IDTExtensibility2, IID_IClassFactory})
    {
        void* nothing = this;
        EXPECT_EQ(Factory()->CreateInstance(&outer, iid, &nothing), CLASS_E_NOAGGREGATION);
        EXPECT_EQ(nothing, nullptr);
    }
    EXPECT_EQ(outer.References(), 1u);
    EXPECT_EQ(m_module->CanUnloadNow(), S_OK);
}

TEST_F(ComConformanceAggregateTest, EveryInterfaceButItsIdentityCountsAndLeadsToTheOuterObject)
{
    COuter outer;
    CreateInside(outer);
    for (const CInterface& each : AddInInterfaces().subspan(1))
    {
        ComPtr<IUnknown> found;
        EXPECT_EQ((*outer.Inner())->QueryInterface(each.iid, Out(found)), S_OK) << each.name;
        EXPECT_EQ(outer.References(), 2u) << each.name;
        EXPECT_EQ(CountOf(*outer.Inner()), 1u) << each.name;
        ComPtr<IUnknown> identity;
        EXPECT_EQ(found->QueryInterface(IID_IUnknown, Out(identity)), S_OK) << each.name;
        EXPECT_EQ(identity.Get(), &outer) << each.name;
    }
    EXPECT_EQ(outer.References(), 1u);
}

TEST_F(ComConformanceAggregateTest, ItConnectsAndIsClicked)
{
    CFakeOutlook outlook(kOutlook2007);
    COuter outer;
    CreateInside(outer);
    ComPtr<_IDTExtensibility2> addIn;
    ASSERT_EQ(outer.QueryInterface(IID__IDTExtensibility2, Out(addIn)), S_OK);
    EXPECT_EQ(addIn->OnConnection(outlook.application.Get(), ext_cm_AfterStartup, nullptr, nullptr), S_OK);
    ASSERT_EQ(outlook.button->Sinks().size(), 1u);
    ExpectAbout();
    m_user.Start();
    outlook.button->Click();
    EXPECT_EQ(m_user.Finish().size(), 1u);
    EXPECT_EQ(addIn->OnDisconnection(ext_dm_HostShutdown, nullptr), S_OK);
    addIn.Reset();
    EXPECT_EQ(outer.References(), 1u);
    outer.LetGo();
    EXPECT_EQ(outlook.application->References(), 1);
}

} // namespace
} // namespace orva::test
