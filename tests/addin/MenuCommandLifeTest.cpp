// The menu command after its insertion: its subscription, its click, and its end.
#include "addin/MenuCommandFixture.h"

#include <olectl.h>

namespace orva::test
{
namespace
{

using testing::Contains;
using testing::IsEmpty;

using MenuCommandLifeTest = CMenuCommandTest;

TEST_F(MenuCommandLifeTest, ARefusedSubscriptionIsAbsorbedAndTheCommandStays)
{
    m_outlook->button->FailAdvise(CONNECT_E_ADVISELIMIT);
    LinesOfConnecting();
    EXPECT_THAT(MemberNames(m_outlook->record), Contains("button.Enabled"));
    EXPECT_EQ(m_outlook->button->Advises(), 1);
    // There is a button, but no subscription to end.
    EXPECT_EQ(Disconnect(), CONNECT_E_NOCONNECTION);
}

TEST_F(MenuCommandLifeTest, DisconnectingEndsTheSubscriptionOnceAndNeitherDeletesNorChangesTheButton)
{
    LinesOfConnecting();
    m_outlook->record.clear();
    EXPECT_EQ(Disconnect(), S_OK);
    EXPECT_THAT(m_outlook->record, IsEmpty());
    EXPECT_EQ(m_outlook->button->Unadvises(), 1);
    EXPECT_THAT(m_outlook->button->Sinks(), IsEmpty());
    EXPECT_EQ(m_outlook->button->Click(), std::nullopt);
    EXPECT_EQ(Disconnect(), CONNECT_E_NOCONNECTION);
}

TEST_F(MenuCommandLifeTest, AFailureToEndTheSubscriptionIsReturned)
{
    LinesOfConnecting();
    m_outlook->button->FailUnadvise(E_ACCESSDENIED);
    EXPECT_EQ(Disconnect(), E_ACCESSDENIED);
}

TEST_F(MenuCommandLifeTest, ASecondConnectionOfTheObjectNeitherSubscribesNorKeepsTheButtonTwice)
{
    const LONG before = m_outlook->button->References();
    LinesOfConnecting();
    EXPECT_EQ(ConnectTo(m_outlook->application.Get()), S_OK);
    EXPECT_EQ(m_outlook->button->Advises(), 1);
    EXPECT_EQ(Disconnect(), S_OK);
    EXPECT_THAT(m_outlook->button->Sinks(), IsEmpty());
    EXPECT_EQ(m_outlook->button->References(), before + 1);
    ReleaseAll();
    EXPECT_EQ(m_outlook->button->References(), before);
}

TEST_F(MenuCommandLifeTest, ASecondConnectionWhoseControlIsNoButtonKeepsNone)
{
    LinesOfConnecting();
    m_outlook->commands->GiveObject(L"Add", m_outlook->helpMenu.Get());
    EXPECT_EQ(ConnectTo(m_outlook->application.Get()), S_OK);
    EXPECT_EQ(Disconnect(), S_OK);
    EXPECT_EQ(m_outlook->button->Unadvises(), 0);
}

TEST_F(MenuCommandLifeTest, ReconnectingToOutlook2010ForgetsTheButton)
{
    const LONG before = m_outlook->button->References();
    LinesOfConnecting();
    m_outlook->button->DropSinks();
    m_outlook->application->Give(L"Version", _variant_t(kOutlook2010));
    EXPECT_EQ(ConnectTo(m_outlook->application.Get()), S_OK);
    EXPECT_EQ(m_outlook->button->References(), before);
    EXPECT_EQ(Disconnect(), S_OK);
    EXPECT_EQ(m_outlook->button->Unadvises(), 0);
}

TEST_F(MenuCommandLifeTest, EachClickShowsAboutOwnedByTheHostWindowAndLeavesCancelDefaultAlone)
{
    LinesOfConnecting();
    for (int click = 1; click <= 2; ++click)
    {
        SCOPED_TRACE(click);
        ExpectAbout();
        m_user.Start();
        EXPECT_EQ(m_outlook->button->Click(), DISP_E_BADPARAMCOUNT);
        const std::vector<CSeenWindow> seen = m_user.Finish();
        ASSERT_EQ(seen.size(), 1u);
        EXPECT_EQ(seen[0].caption, kProduct);
        EXPECT_EQ(seen[0].owner, m_host.Handle());
        EXPECT_FALSE(seen[0].ownerEnabled);
        EXPECT_TRUE(IsWindowEnabled(m_host.Handle()));
        EXPECT_EQ(m_outlook->button->CancelDefault(), VARIANT_FALSE);
    }
    EXPECT_EQ(Disconnect(), S_OK);
}

// The dialog has no parent, so its owner is the active window. The add-in itself disables the topmost window.
TEST_F(MenuCommandLifeTest, AClickDisablesTheTopmostWindowOfTheHostWhileAboutIsShown)
{
    LinesOfConnecting();
    const CHostWindow topmost;
    SetWindowPos(topmost.Handle(), HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    SetActiveWindow(m_host.Handle());
    bool wasEnabled = true;
    m_user.OnDialogWith(kAboutClose, [&](HWND dialog) {
        wasEnabled = IsWindowEnabled(topmost.Handle());
        ClickButton(dialog, kAboutClose);
    });
    m_user.Start();
    m_outlook->button->Click();
    const std::vector<CSeenWindow> seen = m_user.Finish();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].owner, m_host.Handle());
    EXPECT_FALSE(wasEnabled);
    EXPECT_TRUE(IsWindowEnabled(topmost.Handle()));
    EXPECT_TRUE(IsWindowEnabled(m_host.Handle()));
    EXPECT_EQ(Disconnect(), S_OK);
}

TEST_F(MenuCommandLifeTest, AClickWhileAboutIsOpenOpensAnotherOwnedByTheFirst)
{
    LinesOfConnecting();
    HWND first = nullptr;
    m_user.OnDialogWith(kAboutClose, [&](HWND dialog) {
        first = dialog;
        m_host.Post([this] { m_outlook->button->Click(); });
    });
    m_user.OnDialogWith(kAboutClose, [&](HWND second) {
        ClickButton(second, kAboutClose);
        WaitUntilGone(second);
        WaitUntilEnabled(first);
        ClickButton(first, kAboutClose);
    });
    m_user.Start();
    m_outlook->button->Click();
    const std::vector<CSeenWindow> seen = m_user.Finish();
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[0].owner, m_host.Handle());
    EXPECT_EQ(seen[1].owner, first);
    EXPECT_FALSE(seen[1].ownerEnabled);
    EXPECT_TRUE(IsWindowEnabled(m_host.Handle()));
    EXPECT_EQ(Disconnect(), S_OK);
}

TEST_F(MenuCommandLifeTest, AnExplorerThatIsOpenedLaterGetsNoCommandAndTheFirstOnesGoesOn)
{
    LinesOfConnecting();
    CFakeOutlook second(kOutlook2007);
    // As Outlook does: the new window becomes the active explorer, and no add-in is told.
    m_outlook->application->GiveObject(L"ActiveExplorer", second.explorer.Get());
    EXPECT_EQ(AddIn()->OnAddInsUpdate(nullptr), S_OK);
    EXPECT_EQ(AddIn()->OnStartupComplete(nullptr), S_OK);
    EXPECT_THAT(second.record, IsEmpty());
    EXPECT_THAT(second.button->Sinks(), IsEmpty());
    EXPECT_EQ(m_outlook->button->Sinks().size(), 1u);
    EXPECT_EQ(Disconnect(), S_OK);
}

TEST_F(MenuCommandLifeTest, TwoObjectsInOneHostHaveOneCommandEach)
{
    LinesOfConnecting();
    const Microsoft::WRL::ComPtr<IUnknown> former = m_object;
    const auto formerAddIn = AddIn();
    CFakeOutlook second(kOutlook2007);
    Create();
    EXPECT_EQ(ConnectTo(second.application.Get()), S_OK);
    EXPECT_EQ(m_outlook->button->Sinks().size(), 1u);
    EXPECT_EQ(second.button->Sinks().size(), 1u);
    EXPECT_EQ(Disconnect(), S_OK);
    EXPECT_THAT(second.button->Sinks(), IsEmpty());
    EXPECT_EQ(m_outlook->button->Sinks().size(), 1u);
    EXPECT_EQ(formerAddIn->OnDisconnection(ext_dm_HostShutdown, nullptr), S_OK);
    EXPECT_THAT(m_outlook->button->Sinks(), IsEmpty());
    m_object.Reset();
}

} // namespace
} // namespace orva::test
