// The user on a second thread and the window driver, with real message boxes: what they must not overlook.
#include "harness/UserScript.h"

#include <gmock/gmock.h>

#include <functional>
#include <stdexcept>

namespace orva::test
{

namespace
{

using testing::HasSubstr;

// A script that is not carried out, the boxes that come up, and the failures that must be reported.
struct CBadScript
{
    const char* name;
    std::function<void(CUserScript&)> write;
    std::vector<const wchar_t*> boxes;
    std::vector<const char*> failures;
};

void PrintTo(const CBadScript& script, std::ostream* out)
{
    *out << script.name;
}

class UserScriptTest : public testing::TestWithParam<CBadScript>
{
};

TEST_P(UserScriptTest, FailsAndClosesEveryBox)
{
    CUserScript user;
    GetParam().write(user);
    user.Start();
    for (const wchar_t* const box : GetParam().boxes)
    {
        MessageBoxW(nullptr, box, L"c", MB_OK);
    }
    const std::vector<std::string> failures = user.FinishQuietly();
    ASSERT_EQ(failures.size(), GetParam().failures.size()) << testing::PrintToString(failures);
    for (size_t i = 0; i < failures.size(); ++i)
    {
        EXPECT_THAT(failures[i], HasSubstr(GetParam().failures[i]));
    }
}

const CBadScript kBadScripts[] = {
    {"AnotherBox",
     [](CUserScript& user) { user.AnswerBox(L"expected"); },
     {L"actual", L"more"},
     {"Step 1 (message box \"expected\"): came up instead: \"c\": \"actual\"",
      "Unexpected window \"c\": \"more\""}},
    {"ABoxAfterTheLastStep", [](CUserScript&) {}, {L"unasked"}, {"Unexpected window \"c\": \"unasked\""}},
    {"NoBox",
     [](CUserScript& user) { user.AnswerBox(L"expected"); },
     {},
     {"Step 1 (message box \"expected\"): had not come up when the script was ended"}},
    {"OneBoxForTwoSteps",
     [](CUserScript& user) { user.AnswerBox(L"same").AnswerBox(L"same"); },
     {L"same"},
     {"Step 2 (message box \"same\"): had not come up when the script was ended"}},
    {"ABoxWithoutTheButton",
     [](CUserScript& user) { user.AnswerBox(L"?", IDRETRY); },
     {L"?"},
     {"Step 1 (message box \"?\"): has no button 4 to press"}},
    {"ADialogWithoutTheControl",
     [](CUserScript& user) { user.OnDialogWith(4711, [](HWND) {}); },
     {L"?"},
     {"Step 1 (dialog with control 4711): came up instead: "}},
    {"AnotherCaption",
     [](CUserScript& user) { user.OnDialog(L"expected", [](HWND) {}); },
     {L"?"},
     {"Step 1 (dialog \"expected\"): came up instead: "}},
    {"AFalseCondition",
     [](CUserScript& user) { user.Then("the moon is blue", [] { return false; }); },
     {},
     {"Step 1 (the moon is blue): did not happen"}},
    {"AnException",
     [](CUserScript& user) { user.Then("throws", []() -> bool { throw std::runtime_error("so"); }); },
     {},
     {"Step 1 (throws): exception: so"}},
};

INSTANTIATE_TEST_SUITE_P(Scripts, UserScriptTest, testing::ValuesIn(kBadScripts),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(WindowDriverTest, AQueryFindsOnlyWhatMatchesAllOfIt)
{
    const HWND window = CreateWindowExW(0, L"STATIC", L"the window", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 10, 10,
                                        200, 100, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(FindTopLevelWindow({.caption = L"the window", .className = L"Static"}), window);
    EXPECT_EQ(FindTopLevelWindow({.process = 4, .caption = L"the window"}), nullptr);
    EXPECT_EQ(FindTopLevelWindow({.caption = L"another"}), nullptr);
    EXPECT_EQ(FindTopLevelWindow({.caption = L"the window", .className = kDialogClass}), nullptr);
    EXPECT_EQ(FindTopLevelWindow({.caption = L"the window", .childId = 3}), nullptr);
    EXPECT_FALSE(WaitUntilGone(window, 0));
    EnableWindow(window, FALSE);
    EXPECT_TRUE(WaitUntilEnabled(window, false, 0));
    EXPECT_FALSE(WaitUntilEnabled(window, true, 20));
    ShowWindow(window, SW_HIDE);
    EXPECT_TRUE(WaitUntilGone(window, 0));
    EXPECT_EQ(FindTopLevelWindow({.caption = L"the window"}), nullptr);
    DestroyWindow(window);
}

TEST(WindowDriverTest, OnlyAButtonThatCanBePressedIsClicked)
{
    const HWND window = CreateWindowExW(0, L"STATIC", L"the window", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 10, 10,
                                        200, 100, nullptr, nullptr, nullptr, nullptr);
    const HWND button = CreateWindowExW(0, L"BUTTON", L"b", WS_CHILD | WS_VISIBLE, 0, 0, 20, 20, window,
                                        reinterpret_cast<HMENU>(IDOK), nullptr, nullptr);
    EXPECT_TRUE(ClickButton(window, IDOK));
    EXPECT_FALSE(ClickButton(window, IDCANCEL));
    EnableWindow(button, FALSE);
    EXPECT_FALSE(ClickButton(window, IDOK));
    EnableWindow(button, TRUE);
    ShowWindow(button, SW_HIDE);
    EXPECT_FALSE(ClickButton(window, IDOK));
    DestroyWindow(window);
}

} // namespace

} // namespace orva::test
