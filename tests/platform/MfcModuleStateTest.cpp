// Module state: instance, resources, application name, and the activation context that goes with a switch.
#include "MfcResources.h"

#include <afxwin.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace
{

// The class library's object of the test program.
CWinApp g_application(L"test_platform");

HANDLE CurrentContext()
{
    HANDLE context = nullptr;
    EXPECT_TRUE(GetCurrentActCtx(&context));
    if (context)
    {
        ReleaseActCtx(context);
    }
    return context;
}

// A module without a manifest of id 2.
HINSTANCE OtherModule()
{
    return GetModuleHandleW(L"kernel32.dll");
}

TEST(MfcModuleState, OwnStateIsThatOfTheProgram)
{
    EXPECT_EQ(AfxGetStaticModuleState(), AfxGetModuleState());
    EXPECT_EQ(GetModuleHandleW(nullptr), AfxGetResourceHandle());
    EXPECT_EQ(AfxGetApp(), AfxGetThread());
}

TEST(MfcModuleState, ApplicationNameIsThatOfTheApplicationUntilItIsSet)
{
    EXPECT_STREQ(L"test_platform", AfxGetAppName());
    const LPCTSTR before = AfxGetModuleState()->m_lpszCurrentAppName;
    AfxGetModuleState()->m_lpszCurrentAppName = L"";
    EXPECT_STREQ(L"", AfxGetAppName());
    AfxGetModuleState()->m_lpszCurrentAppName = before;
}

TEST(MfcModuleState, SwitchLastsUntilTheEndOfItsBlockHoweverThatIsLeft)
{
    AFX_MODULE_STATE other(OtherModule());
    const HANDLE context = CurrentContext();
    try
    {
        AFX_MANAGE_STATE(&other)
        EXPECT_EQ(&other, AfxGetModuleState());
        EXPECT_EQ(OtherModule(), AfxGetResourceHandle());
        {
            const AFX_MAINTAIN_STATE2 inner(AfxGetStaticModuleState());
            EXPECT_EQ(AfxGetStaticModuleState(), AfxGetModuleState());
            EXPECT_NE(context, CurrentContext());
        }
        EXPECT_EQ(&other, AfxGetModuleState());
        const AFX_MAINTAIN_STATE2 own(AfxGetStaticModuleState());
        throw std::runtime_error("out");
    }
    catch (const std::runtime_error&)
    {
    }
    EXPECT_EQ(AfxGetStaticModuleState(), AfxGetModuleState());
    EXPECT_EQ(context, CurrentContext());
}

TEST(MfcModuleState, SwitchActivatesTheModulesContextAndRestoresThePreviousOne)
{
    const HANDLE before = CurrentContext();
    {
        AFX_MANAGE_STATE(AfxGetStaticModuleState())
        const HANDLE context = AfxGetStaticModuleState()->m_hActCtx;
        ASSERT_TRUE(context && context != INVALID_HANDLE_VALUE);
        EXPECT_NE(before, context);
        EXPECT_EQ(context, CurrentContext());
    }
    EXPECT_EQ(before, CurrentContext());
}

TEST(MfcModuleState, ContextLeftActiveByAnotherIsPassedOver)
{
    AFX_MODULE_STATE own(GetModuleHandleW(nullptr));
    own.CreateActivationContext();
    const HANDLE before = CurrentContext();
    {
        AFX_MANAGE_STATE(AfxGetStaticModuleState())
        ULONG_PTR lost = 0;
        ASSERT_TRUE(ActivateActCtx(own.m_hActCtx, &lost));
    }
    EXPECT_EQ(before, CurrentContext());
}

TEST(MfcModuleState, ContextIsMadeAtTheFirstSwitchAndOnce)
{
    AFX_MODULE_STATE state(GetModuleHandleW(nullptr));
    EXPECT_EQ(nullptr, state.m_hActCtx);
    {
        AFX_MANAGE_STATE(&state)
    }
    const HANDLE context = state.m_hActCtx;
    EXPECT_NE(nullptr, context);
    EXPECT_NE(INVALID_HANDLE_VALUE, context);
    {AFX_MANAGE_STATE(&state)} EXPECT_EQ(context, state.m_hActCtx);
}

TEST(MfcModuleState, ModuleWithoutAManifestActivatesNothing)
{
    AFX_MODULE_STATE other(OtherModule());
    const HANDLE before = CurrentContext();
    {
        AFX_MANAGE_STATE(&other)
        EXPECT_EQ(INVALID_HANDLE_VALUE, other.m_hActCtx);
        EXPECT_EQ(before, CurrentContext());
    }
    EXPECT_EQ(before, CurrentContext());
}

TEST(MfcModuleState, ResourceHandleCanBeSetApartFromTheInstance)
{
    AFX_MODULE_STATE other(OtherModule());
    AFX_MANAGE_STATE(&other)
    AfxSetResourceHandle(GetModuleHandleW(nullptr));
    EXPECT_EQ(GetModuleHandleW(nullptr), AfxGetResourceHandle());
    EXPECT_EQ(GetModuleHandleW(nullptr), AfxFindResourceHandle(MAKEINTRESOURCE(IDD_PLAIN), RT_DIALOG));
}

TEST(MfcModuleState, ApplicationObjectIsItsModulesWhileItLives)
{
    AFX_MODULE_STATE other(OtherModule());
    AFX_MANAGE_STATE(&other)
    {
        CWinApp app(L"Name");
        EXPECT_EQ(&app, AfxGetApp());
        EXPECT_EQ(&app, AfxGetThread());
        EXPECT_EQ(OtherModule(), app.m_hInstance);
        EXPECT_STREQ(L"Name", AfxGetAppName());
        CWnd main;
        app.m_pMainWnd = &main;
        EXPECT_EQ(&main, AfxGetMainWnd());
    }
    EXPECT_EQ(nullptr, AfxGetApp());
    EXPECT_EQ(nullptr, AfxGetThread());
    EXPECT_EQ(nullptr, AfxGetMainWnd());
    EXPECT_EQ(nullptr, AfxGetAppName());
}

} // namespace
