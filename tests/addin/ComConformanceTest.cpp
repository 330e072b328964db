// The rules of COM for the class object, for the object on its own and for the click's sink.
#include "addin/ComConformance.h"

#include <olectl.h>

namespace orva::test
{
namespace
{

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;

class ComConformanceTest : public CComConformanceTest
{
};

TEST_F(ComConformanceTest, TheAddInsObjectKeepsEveryRuleOfQueryInterfaceBeforeAndAfterConnecting)
{
    UseOutlook(kOutlook2007);
    Create();
    ExpectQueryInterfaceRules(m_object.Get(), AddInInterfaces(), ForeignInterfaces());
    EXPECT_EQ(ConnectTo(m_outlook->application.Get()), S_OK);
    ExpectQueryInterfaceRules(m_object.Get(), AddInInterfaces(), ForeignInterfaces());
}

TEST_F(ComConformanceTest, TheClassObjectKeepsEveryRuleOfQueryInterface)
{
    const CInterface offered[] = {{"IUnknown", IID_IUnknown}, {"IClassFactory", IID_IClassFactory}};
    const CInterface foreign[] = {{"IDispatch", IID_IDispatch},
                                  {"IClassFactory2", IID_IClassFactory2},
                                  {"IMarshal", IID_IMarshal},
                                  {"_IDTExtensibility2", IID__IDTExtensibility2},
                                  {"IRibbonCallback", __uuidof(IRibbonCallback)}};
    ExpectQueryInterfaceRules(Factory().Get(), offered, foreign);
}

TEST_F(ComConformanceTest, TheClicksSinkKeepsTheRulesAsAnObjectOfItsOwnThatCountsTheAddIn)
{
    EXPECT_EQ(Connect(kOutlook2007), S_OK);
    ASSERT_EQ(m_outlook->button->Sinks().size(), 1u);
    const ComPtr<IDispatch> sink = m_outlook->button->Sinks().begin()->second;
    const CInterface offered[] = {{"IUnknown", IID_IUnknown},
                                  {"IDispatch", IID_IDispatch},
                                  {"_CommandBarButtonEvents", DIID__CommandBarButtonEvents}};
    const CInterface foreign[] = {{"_IDTExtensibility2", IID__IDTExtensibility2},
                                  {"IRibbonExtensibility", IID_IRibbonExtensibility},
                                  {"IRibbonCallback", __uuidof(IRibbonCallback)},
                                  {"IConnect", kConnectInterface}};
    ExpectQueryInterfaceRules(sink.Get(), offered, foreign);
    // It counts on the add-in's object, and is another one.
    EXPECT_EQ(CountOf(sink.Get()), CountOf(m_object.Get()));
    EXPECT_NE(static_cast<IUnknown*>(sink.Get()), m_object.Get());
}

TEST_F(ComConformanceTest, DispatchIsTheRibbonCallbacksInterface)
{
    Create();
    EXPECT_EQ(Dispatch().Get(),
              static_cast<IDispatch*>(Query<IRibbonCallback>(__uuidof(IRibbonCallback)).Get()));
}

TEST_F(ComConformanceTest, EveryInterfaceCountsTheOneObject)
{
    Create();
    EXPECT_EQ(CountOf(m_object.Get()), 1u);
    {
        std::vector<ComPtr<IUnknown>> held;
        for (const CInterface& each : AddInInterfaces())
        {
            held.push_back(Query<IUnknown>(each.iid));
            EXPECT_EQ(CountOf(m_object.Get()), 1u + held.size());
            EXPECT_EQ(CountOf(held.back().Get()), 1u + held.size());
        }
    }
    EXPECT_EQ(CountOf(m_object.Get()), 1u);
    EXPECT_EQ(m_object.Detach()->Release(), 0u);
}

TEST_F(ComConformanceTest, TheModuleGivesTheClassObjectUnderEachOfItsInterfacesOnly)
{
    ComPtr<IUnknown> unknown;
    EXPECT_EQ(m_module->GetClassObject(kAddInClass, IID_IUnknown, Out(unknown)), S_OK);
    ComPtr<IUnknown> identity;
    EXPECT_EQ(Factory().Get()->QueryInterface(IID_IUnknown, Out(identity)), S_OK);
    EXPECT_EQ(identity.Get(), unknown.Get());
    void* nothing = this;
    EXPECT_EQ(m_module->GetClassObject(kAddInClass, IID_IDispatch, &nothing), E_NOINTERFACE);
    EXPECT_EQ(nothing, nullptr);
    EXPECT_EQ(m_module->GetClassObject(kAddInClass, IID_IClassFactory, nullptr), E_POINTER);
}

TEST_F(ComConformanceTest, ThereIsNoOtherClass)
{
    for (const CLSID& other : {CLSID_NULL, CLSID_StdFont, __uuidof(IRibbonCallback), kConnectInterface})
    {
        void* nothing = m_module.get();
        EXPECT_EQ(m_module->GetClassObject(other, IID_IClassFactory, &nothing), CLASS_E_CLASSNOTAVAILABLE);
        EXPECT_EQ(nothing, nullptr);
    }
    EXPECT_THAT(NewLogLines(), ElementsAre("DllGetClassObject", "DllGetClassObject", "DllGetClassObject",
                                           "DllGetClassObject"));
}

TEST_F(ComConformanceTest, EachCreationMakesAnObjectOfItsOwnAndGivesAnyOfItsInterfaces)
{
    Create();
    for (const CInterface& each : AddInInterfaces())
    {
        ComPtr<IUnknown> object;
        EXPECT_EQ(Factory()->CreateInstance(nullptr, each.iid, Out(object)), S_OK) << each.name;
        EXPECT_EQ(CountOf(object.Get()), 1u) << each.name;
        EXPECT_NE(object.Get(), Query<IUnknown>(each.iid).Get()) << each.name;
    }
}

TEST_F(ComConformanceTest, AFailedCreationLeavesNothingBehind)
{
    for (const CInterface& each : ForeignInterfaces())
    {
        void* nothing = this;
        EXPECT_EQ(Factory()->CreateInstance(nullptr, each.iid, &nothing), E_NOINTERFACE) << each.name;
        EXPECT_EQ(nothing, nullptr) << each.name;
    }
    EXPECT_EQ(Factory()->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(m_module->CanUnloadNow(), S_OK);
}

} // namespace
} // namespace orva::test
