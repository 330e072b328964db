// The user on a second thread and the window driver, with real message boxes.
#include "harness/UserScript.h"

#include "harness/Watchdog.h"

#include <gmock/gmock.h>

#include <thread>

namespace orva::test
{

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;

// A window that can own message boxes.
class COwner
{
public:
    COwner()
        : m_window(CreateWindowExW(0, L"STATIC", L"the owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 10, 10, 200,
                                   100, nullptr, nullptr, nullptr, nullptr))
    {
    }
    ~COwner() { DestroyWindow(m_window); }
    COwner(const COwner&) = delete;
    COwner& operator=(const COwner&) = delete;
    HWND Get() const { return m_window; }

private:
    HWND m_window;
};

} // namespace

TEST(UserScriptTest, AnswersBoxesInOrderAndReportsThem)
{
    const COwner owner;
    CUserScript user;
    user.AnswerBox(L"first").AnswerBox(L"second?", IDNO);
    user.Start();
    EXPECT_EQ(MessageBoxW(owner.Get(), L"first", L"caption one", MB_OK), IDOK);
    EXPECT_EQ(MessageBoxW(nullptr, L"second?", L"caption two", MB_YESNO), IDNO);
    const std::vector<CSeenWindow> seen = user.Finish();

    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[0].caption, L"caption one");
    EXPECT_EQ(seen[0].text, L"first");
    EXPECT_EQ(seen[0].buttons.size(), 1u);
    EXPECT_EQ(seen[0].owner, owner.Get());
    EXPECT_EQ(seen[0].ownerCaption, L"the owner");
    EXPECT_FALSE(seen[0].ownerEnabled);
    EXPECT_EQ(seen[1].text, L"second?");
    EXPECT_EQ(seen[1].buttons.size(), 2u);
    EXPECT_EQ(seen[1].owner, nullptr);
}

TEST(UserScriptTest, TwoEqualBoxesAreTwoSteps)
{
    CUserScript user;
    user.AnswerBox(L"same").AnswerBox(L"same");
    user.Start();
    MessageBoxW(nullptr, L"same", L"c", MB_OK);
    MessageBoxW(nullptr, L"same", L"c", MB_OK);
    EXPECT_EQ(user.Finish().size(), 2u);
}

TEST(UserScriptTest, AWrongWindowIsAFailureAndDoesNotHang)
{
    CUserScript user;
    user.AnswerBox(L"expected");
    user.Start();
    MessageBoxW(nullptr, L"actual", L"c", MB_OK);
    MessageBoxW(nullptr, L"more", L"c", MB_OK);
    const std::vector<std::string> failures = user.FinishQuietly();
    EXPECT_THAT(failures, ElementsAre(HasSubstr("came up instead: \"c\": \"actual\""),
                                      HasSubstr("Unexpected window \"c\": \"more\"")));
}

TEST(UserScriptTest, AWindowThatNeverComesIsAFailure)
{
    CUserScript user;
    user.Patience(50).AnswerBox(L"expected");
    user.Start();
    EXPECT_THAT(user.FinishQuietly(true),
                ElementsAre(HasSubstr("Step 1 (message box \"expected\"): did not come up")));
}

TEST(UserScriptTest, EndingBeforeAStepIsAFailure)
{
    CUserScript user;
    user.AnswerBox(L"expected");
    user.Start();
    EXPECT_THAT(user.FinishQuietly(), ElementsAre(HasSubstr("had not come up when the script was ended")));
}

TEST(UserScriptTest, AWindowAfterTheLastStepIsAFailure)
{
    CUserScript user;
    user.Start();
    MessageBoxW(nullptr, L"unasked", L"c", MB_YESNOCANCEL);
    EXPECT_THAT(user.FinishQuietly(), ElementsAre(HasSubstr("Unexpected window \"c\": \"unasked\"")));
}

TEST(UserScriptTest, ADialogIsOperatedWhileItStaysOpen)
{
    const COwner owner;
    bool between = false;
    CUserScript user;
    HWND first = nullptr;
    user.OnDialog(L"outer", [&](HWND window) { first = window; })
        .Then("a word between", [&] { return between = true; })
        .OnDialogWith(IDCANCEL, [&](HWND window) {
            EXPECT_TRUE(ClickButton(window, IDCANCEL));
            EXPECT_TRUE(ClickButton(first, IDOK));
        });
    user.Start();
    // The second box comes up on a thread of its own while the first is open.
    const UniqueHandle thread(CreateThread(
        nullptr, 0,
        [](void*) -> DWORD {
            WaitForWindow({.caption = L"outer"});
            return static_cast<DWORD>(MessageBoxW(nullptr, L"?", L"inner", MB_OKCANCEL));
        },
        nullptr, 0, nullptr));
    EXPECT_EQ(MessageBoxW(owner.Get(), L"!", L"outer", MB_OK), IDOK);
    EXPECT_EQ(WaitForSingleObject(thread.get(), kPatience), WAIT_OBJECT_0);
    EXPECT_EQ(user.Finish().size(), 2u);
    EXPECT_TRUE(between);
}

TEST(WindowDriverTest, TypedKeysReachTheFocusedButton)
{
    CUserScript user;
    user.OnDialog(L"keys", [](HWND window) {
        EXPECT_TRUE(TypeKey(window, VK_TAB));
        EXPECT_TRUE(WaitUntil([&] { return FocusOf(window) == ChildById(window, IDNO); }));
        EXPECT_TRUE(TypeKey(window, VK_RETURN));
    });
    user.Start();
    EXPECT_EQ(MessageBoxW(nullptr, L"?", L"keys", MB_YESNO), IDNO);
    user.Finish();
}

TEST(WindowDriverTest, PostedKeysReachTheFocusedButton)
{
    CUserScript user;
    user.OnDialog(L"keys", [](HWND window) {
        EXPECT_TRUE(WaitUntil([&] { return FocusOf(window) != nullptr; }));
        EXPECT_TRUE(PostKey(window, VK_ESCAPE));
    });
    user.Start();
    EXPECT_EQ(MessageBoxW(nullptr, L"?", L"keys", MB_OKCANCEL), IDCANCEL);
    user.Finish();
}

TEST(WindowDriverTest, FindsAndReadsWindows)
{
    const COwner owner;
    EXPECT_EQ(FindTopLevelWindow({.caption = L"the owner"}), owner.Get());
    EXPECT_EQ(FindTopLevelWindow({.caption = L"the owner", .className = L"Static"}), owner.Get());
    EXPECT_EQ(FindTopLevelWindow({.process = 4, .caption = L"the owner"}), nullptr);
    EXPECT_EQ(FindTopLevelWindow({.caption = L"the owner", .childId = 3}), nullptr);
    EXPECT_EQ(WindowText(owner.Get()), L"the owner");
    EnableWindow(owner.Get(), FALSE);
    EXPECT_THAT(DescribeWindows(), HasSubstr("\"the owner\" (Static, disabled)"));
    EXPECT_TRUE(WaitUntilEnabled(owner.Get(), false, 0));
    EXPECT_FALSE(WaitUntilEnabled(owner.Get(), true, 20));
    ShowWindow(owner.Get(), SW_HIDE);
    EXPECT_TRUE(WaitUntilGone(owner.Get(), 0));
}

TEST(WindowDriverTest, SaysWhichWindowDoesNotAnswer)
{
    const UniqueHandle shown(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const UniqueHandle looked(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    std::thread busy([&] {
        const COwner owner;
        SetEvent(shown.get());
        // Handles no messages meanwhile.
        WaitForSingleObject(looked.get(), INFINITE);
    });
    EXPECT_EQ(WaitForSingleObject(shown.get(), kTestDeadline), WAIT_OBJECT_0);
    EXPECT_THAT(DescribeWindows(), HasSubstr("\"the owner\" (Static, does not answer)"));
    SetEvent(looked.get());
    busy.join();
}

} // namespace orva::test
