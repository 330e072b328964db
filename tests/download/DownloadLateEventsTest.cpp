// What the user does when the worker has come to its end, or does twice, or while Cancel is at work.
#include "download/DownloadFixture.h"
#include "fixture/UserTexts.h"
#include "harness/WindowDriver.h"

#include <gmock/gmock.h>

#include <functional>

namespace orva::test
{
namespace
{

using testing::ElementsAre;

/// The worker has come to its end, well or badly, and the user acts before the dialog knows.
struct LateOrder
{
    bool fails;
    UserEvent event;
    /// Before: the worker has looked for the last time. After: its message lies in the dialog's queue.
    CallStage stage;

    std::string Name() const
    {
        return NameOf(event) + NameOf(stage) + "TheMessageOf" + (fails ? "Failure" : "Success");
    }
};

class DownloadEndOrderTest : public CFakeDownloadTest, public testing::WithParamInterface<LateOrder>
{
};

TEST_P(DownloadEndOrderTest, IsACancelledDownloadWithWhatItHas)
{
    const LateOrder& order = GetParam();
    if (order.fails)
    {
        m_gates.Fail({"InternetReadFile", 2}, ERROR_INTERNET_TIMEOUT);
    }
    m_gates.Hold(kMessage, CallStage::Before);
    m_gates.Hold(kMessage, CallStage::After);
    Download([&] {
        ASSERT_TRUE(m_gates.WaitUntilHeld(kMessage, CallStage::Before));
        Act(order.event, [&] {
            if (order.stage == CallStage::After)
            {
                // The dialog's thread waits here, so it cannot have taken the message.
                m_gates.Release(kMessage, CallStage::Before);
                EXPECT_TRUE(m_gates.WaitUntilHeld(kMessage, CallStage::After));
            }
        });
    });
    EXPECT_EQ(FileLeft(), order.fails ? std::nullopt : std::optional(kWholeFile));
    ExpectClosed({"request", "connection", "session"});
    ExpectShown(Cancellation());
    EXPECT_THAT(Lines({"PostMessageW"}),
                ElementsAre("PostMessageW(dialog, WM_APP + 1, " + std::to_string(order.fails) + ", 0)"));
    ASSERT_EQ(m_last.has_value(), order.event != UserEvent::Destroy);
    if (m_last)
    {
        EXPECT_EQ(m_last->status, order.event == UserEvent::Close ? kStarted : kCanceled);
        EXPECT_FALSE(m_last->isCancelEnabled);
    }
}

std::vector<LateOrder> LateOrders()
{
    std::vector<LateOrder> orders;
    for (const bool fails : {false, true})
    {
        for (const UserEvent event : {UserEvent::Cancel, UserEvent::Close, UserEvent::Destroy})
        {
            orders.push_back({fails, event, CallStage::Before});
            orders.push_back({fails, event, CallStage::After});
        }
        // The keyboard's message would come after the worker's.
        orders.push_back({fails, UserEvent::Escape, CallStage::Before});
    }
    return orders;
}

INSTANTIATE_TEST_SUITE_P(Orders, DownloadEndOrderTest, testing::ValuesIn(LateOrders()), OrderName());

/// The dialog has got the worker's message, well or badly.
struct TooLateOrder
{
    bool fails;
    UserEvent event;

    std::string Name() const { return NameOf(event) + "AfterA" + (fails ? "Failure" : "Success"); }
};

class DownloadTooLateTest : public CFakeDownloadTest, public testing::WithParamInterface<TooLateOrder>
{
};

TEST_P(DownloadTooLateTest, WhatTheUserDoesInTheLastSecondChangesNothing)
{
    if (GetParam().fails)
    {
        m_gates.Fail({"HttpSendRequestW", 1}, ERROR_INTERNET_TIMEOUT);
    }
    const CallId sleep{"Sleep", 1};
    m_gates.Hold(sleep, CallStage::Before);
    Download([&] {
        ASSERT_TRUE(m_gates.WaitUntilHeld(sleep, CallStage::Before));
        PostEvent(GetParam().event);
    });
    EXPECT_THAT(Lines({"Sleep"}), ElementsAre("Sleep(1000)"));
    EXPECT_EQ(FileLeft(), GetParam().fails ? std::nullopt : std::optional(kWholeFile));
    ExpectClosed({"request", "connection", "session"});
    ExpectShown(GetParam().fails ? ErrorAndCancellation() : Installer());
    EXPECT_TRUE(m_last->isCancelEnabled);
}

INSTANTIATE_TEST_SUITE_P(Orders, DownloadTooLateTest,
                         testing::ValuesIn(std::vector<TooLateOrder>{
                             {false, UserEvent::Cancel},
                             {false, UserEvent::Escape},
                             {false, UserEvent::Close},
                             {false, UserEvent::Destroy},
                             {true, UserEvent::Cancel},
                             {true, UserEvent::Escape},
                             {true, UserEvent::Close},
                             {true, UserEvent::Destroy},
                         }),
                         OrderName());

class DownloadErrorShownTest : public CFakeDownloadTest, public testing::WithParamInterface<UserEvent>
{
protected:
    static HWND WaitForBox(const wchar_t* text)
    {
        HWND box = nullptr;
        WaitUntil([&] {
            for (const HWND window : FindWindows({.caption = kProduct, .className = kDialogClass}))
            {
                if (ChildText(window, kBoxText) == text)
                {
                    box = window;
                }
            }
            return box != nullptr;
        });
        return box;
    }

    static void Press(HWND box) { EXPECT_TRUE(ClickButton(box, IDOK) || ClickButton(box, IDCANCEL)); }
};

// The box takes messages for the dialog below it.
TEST_P(DownloadErrorShownTest, TheDialogEndsOnceAndCancelled)
{
    m_system.showsBoxes = true;
    m_gates.Fail({"HttpSendRequestW", 1}, ERROR_INTERNET_TIMEOUT);
    Download([&] {
        const HWND box = WaitForBox(kConnectError);
        ASSERT_NE(box, nullptr);
        PostEvent(GetParam());
        m_owner.Run([] {});
        EXPECT_EQ(IsWindow(box), GetParam() != UserEvent::Destroy);
        if (IsWindow(box))
        {
            EXPECT_TRUE(Look().isCancelEnabled);
            Press(box);
        }
        Press(WaitForBox(kUpdateCanceled));
    });
    EXPECT_EQ(FileLeft(), std::nullopt);
    ExpectClosed({"request", "connection", "session"});
    ExpectShown(ErrorAndCancellation());
}

INSTANTIATE_TEST_SUITE_P(Events, DownloadErrorShownTest,
                         testing::Values(UserEvent::Cancel, UserEvent::Close, UserEvent::Destroy),
                         [](const auto& test) { return NameOf(test.param); });

class DownloadTwoEventsTest : public CFakeDownloadTest
{
protected:
    // While the second read is pending, `act` sends the dialog two messages. Expects the end of one Cancel.
    void ExpectTwoEventsCancelOnce(const std::function<void(HWND)>& act)
    {
        const CallId read{"InternetReadFile", 2};
        m_gates.Hold(read, CallStage::Pending);
        m_gates.Hold(kMessage, CallStage::Before);
        Download([&] {
            ASSERT_TRUE(m_gates.WaitUntilHeld(read, CallStage::Pending));
            const HWND dialog = Dialog();
            m_owner.Run([&] { act(dialog); });
            ExpectWorkerComesToItsEnd();
        });
        EXPECT_EQ(FileLeft(), std::nullopt);
        ExpectClosed({"request", "connection", "session"});
        ExpectShown(Cancellation());
        EXPECT_EQ(m_last->status, kCanceled);
    }
};

TEST_F(DownloadTwoEventsTest, CloseAfterCancelChangesNothing)
{
    ExpectTwoEventsCancelOnce([](HWND dialog) {
        SendMessageW(GetDlgItem(dialog, IDCANCEL), BM_CLICK, 0, 0);
        SendMessageW(dialog, WM_CLOSE, 0, 0);
    });
}

// The button is disabled then, but its command can be on its way.
TEST_F(DownloadTwoEventsTest, CancelAfterCloseInterruptsTheRead)
{
    ExpectTwoEventsCancelOnce([](HWND dialog) {
        SendMessageW(dialog, WM_CLOSE, 0, 0);
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
    });
}

TEST_F(DownloadTwoEventsTest, CancelTwiceClosesEachHandleOnce)
{
    const CallId read{"InternetReadFile", 1};
    m_gates.Hold(read, CallStage::Pending);
    m_gates.Hold(kMessage, CallStage::Before);
    Download([&] {
        ASSERT_TRUE(m_gates.WaitUntilHeld(read, CallStage::Pending));
        const HWND dialog = Dialog();
        m_owner.Run([&] {
            SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
            SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
        });
    });
    EXPECT_EQ(FileLeft(), std::nullopt);
    ExpectClosed({"request", "connection", "session"});
    ExpectShown(Cancellation());
}

// Cancel closes the handles before it notes that the download is cancelled: the worker can fail and end in
// between.
TEST_F(DownloadTwoEventsTest, AWorkerThatEndsWhileCancelIsAtWorkShowsNoError)
{
    const CallId read{"InternetReadFile", 2};
    const CallId close{"InternetCloseHandle", 1};
    m_gates.Hold(read, CallStage::Pending);
    m_gates.Hold(kMessage, CallStage::Before);
    m_gates.Hold(close, CallStage::After);
    Download([&] {
        ASSERT_TRUE(m_gates.WaitUntilHeld(read, CallStage::Pending));
        PostEvent(UserEvent::Cancel);
        ASSERT_TRUE(m_gates.WaitUntilHeld(close, CallStage::After));
        ExpectWorkerComesToItsEnd();
        m_gates.Release(kMessage, CallStage::Before);
        EXPECT_TRUE(WaitUntil([&] { return m_winInet.HasCallerEnded(); }));
    });
    EXPECT_EQ(FileLeft(), std::nullopt);
    ExpectClosed({"request", "connection", "session"});
    ExpectShown(Cancellation());
}

TEST_F(DownloadTwoEventsTest, AWorkerThatSucceedsWhileCancelIsAtWorkLeavesTheWholeFileAndStartsNothing)
{
    const CallId read{"InternetReadFile", 3};
    const CallId close{"InternetCloseHandle", 1};
    m_gates.Hold(read, CallStage::Pending);
    m_gates.Hold(kMessage, CallStage::Before);
    m_gates.Hold(close, CallStage::Before);
    Download([&] {
        ASSERT_TRUE(m_gates.WaitUntilHeld(read, CallStage::Pending));
        PostEvent(UserEvent::Cancel);
        ASSERT_TRUE(m_gates.WaitUntilHeld(close, CallStage::Before));
        m_gates.Release(read, CallStage::Pending);
        ExpectWorkerComesToItsEnd();
        m_gates.Release(kMessage, CallStage::Before);
        EXPECT_TRUE(WaitUntil([&] { return m_winInet.HasCallerEnded(); }));
    });
    EXPECT_EQ(FileLeft(), kWholeFile);
    ExpectClosed({"request", "connection", "session"});
    ExpectShown(Cancellation());
}

} // namespace
} // namespace orva::test
