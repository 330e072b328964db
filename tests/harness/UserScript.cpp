#include "harness/UserScript.h"

#include "harness/Text.h"

#include <gtest/gtest.h>

#include <process.h>

#include <algorithm>
#include <mutex>
#include <optional>
#include <utility>

namespace orva::test
{

namespace
{

// Milliseconds between two searches for dialogs.
constexpr DWORD kLookInterval = 5;

} // namespace

// The steps, the thread that runs them, and the dialogs that it has seen.
class CUserScript::Impl
{
public:
    struct Step
    {
        // Description for failure messages.
        std::string what;
        // Whether a window is the expected one; null for a step without a window.
        std::function<bool(const CSeenWindow&)> matches;
        // Does the step (with null if it has no window). Returns the failure, or an empty text.
        std::function<std::string(HWND)> act;
    };

    explicit Impl(DWORD processId) : process(processId), m_stop(MakeEvent()) {}

    ~Impl() { Join(); }

    void Start()
    {
        // Another process may have shown a dialog before this call; that one belongs to the test too.
        seen.clear();
        m_known = process == GetCurrentProcessId() ? Dialogs() : std::vector<HWND>();
        m_thread.reset(reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, Entry, this, 0, nullptr)));
    }

    void Join()
    {
        if (m_thread)
        {
            SetEvent(m_stop.get());
            WaitForSingleObject(m_thread.get(), INFINITE);
            m_thread.reset();
            // Ready for another run with steps of its own.
            ResetEvent(m_stop.get());
            steps.clear();
        }
    }

    DWORD process;
    std::vector<Step> steps;
    mutable std::mutex mutex;
    std::vector<CSeenWindow> seen;
    std::vector<std::string> failures;

private:
    static unsigned __stdcall Entry(void* self)
    {
        static_cast<Impl*>(self)->Run();
        return 0;
    }

    std::vector<HWND> Dialogs() const { return FindWindows({.process = process, .className = kDialogClass}); }

    // A dialog that has come up since the last call, the oldest first (the lowest in the Z order).
    std::optional<CSeenWindow> NextDialog()
    {
        const std::vector<HWND> now = Dialogs();
        std::erase_if(m_known,
                      [&](HWND window) { return std::find(now.begin(), now.end(), window) == now.end(); });
        for (auto window = now.rbegin(); window != now.rend(); ++window)
        {
            if (std::find(m_known.begin(), m_known.end(), *window) == m_known.end())
            {
                m_known.push_back(*window);
                CSeenWindow dialog = LookAt(*window);
                const std::lock_guard lock(mutex);
                seen.push_back(dialog);
                return dialog;
            }
        }
        return std::nullopt;
    }

    void Fail(std::string text)
    {
        const std::lock_guard lock(mutex);
        failures.push_back(std::move(text));
    }

    // Waits a moment for the end of the script.
    bool IsStopped() const { return WaitForSingleObject(m_stop.get(), kLookInterval) == WAIT_OBJECT_0; }

    void Run()
    {
        bool good = true;
        for (size_t i = 0; i < steps.size() && good; ++i)
        {
            good = RunStep(steps[i], i + 1);
        }
        // After the last step, or after a failure, every further dialog is unexpected and is closed.
        do
        {
            CloseUnexpected();
        } while (!IsStopped());
        CloseUnexpected();
    }

    void CloseUnexpected()
    {
        while (const auto dialog = NextDialog())
        {
            Fail("Unexpected window " + Describe(*dialog));
            Dismiss(dialog->window);
        }
        if (!failures.empty())
        {
            // A dialog may not have closed at the first attempt, for instance because it had a box open.
            for (const HWND window : m_known)
            {
                if (IsWindowEnabled(window))
                {
                    Dismiss(window);
                }
            }
        }
    }

    static void Dismiss(HWND window)
    {
        for (const int id : {IDCANCEL, IDOK, IDNO})
        {
            if (ClickButton(window, id))
            {
                return;
            }
        }
        PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
    }

    bool RunStep(const Step& step, size_t number)
    {
        const std::string name = "Step " + std::to_string(number) + " (" + step.what + "): ";
        HWND window = nullptr;
        if (step.matches)
        {
            const std::optional<CSeenWindow> dialog = AwaitDialog(name);
            if (!dialog)
            {
                return false;
            }
            if (!step.matches(*dialog))
            {
                Fail(name + "came up instead: " + Describe(*dialog));
                Dismiss(dialog->window);
                return false;
            }
            window = dialog->window;
        }
        std::string failure;
        try
        {
            failure = step.act(window);
        }
        catch (const std::exception& error)
        {
            failure = std::string("exception: ") + error.what();
        }
        if (!failure.empty())
        {
            Fail(name + failure);
        }
        return failure.empty();
    }

    std::optional<CSeenWindow> AwaitDialog(const std::string& name)
    {
        const ULONGLONG end = GetTickCount64() + kPatience;
        for (;;)
        {
            if (std::optional<CSeenWindow> dialog = NextDialog())
            {
                return dialog;
            }
            if (IsStopped())
            {
                Fail(name + "had not come up when the script was ended");
                return std::nullopt;
            }
            if (GetTickCount64() >= end)
            {
                Fail(name + "did not come up in time. Windows:\n" + DescribeWindows(process));
                return std::nullopt;
            }
        }
    }

    UniqueHandle m_stop;
    UniqueHandle m_thread;
    // Visible dialogs that have been handled.
    std::vector<HWND> m_known;
};

CUserScript::CUserScript(DWORD process) : m_impl(std::make_unique<Impl>(process)) {}

CUserScript::~CUserScript()
{
    Finish();
}

CUserScript& CUserScript::AnswerBox(std::wstring text, int buttonId)
{
    std::string what = "message box \"" + Utf8(text) + "\"";
    m_impl->steps.push_back(
        {std::move(what), [text = std::move(text)](const CSeenWindow& seen) { return seen.text == text; },
         [buttonId](HWND window) {
             // Windows gives the "OK" of a box without "Cancel" the id IDCANCEL.
             const bool isPressed =
                 ClickButton(window, buttonId) || (buttonId == IDOK && ClickButton(window, IDCANCEL));
             return isPressed ? "" : "has no button " + std::to_string(buttonId) + " to press";
         }});
    return *this;
}

CUserScript& CUserScript::OnDialog(std::wstring caption, std::function<void(HWND)> act)
{
    std::string what = "dialog \"" + Utf8(caption) + "\"";
    return Expect(
        std::move(what),
        [caption = std::move(caption)](const CSeenWindow& seen) { return seen.caption == caption; },
        std::move(act));
}

CUserScript& CUserScript::OnDialogWith(int childId, std::function<void(HWND)> act)
{
    const auto hasChild = [childId](const CSeenWindow& seen) {
        return std::ranges::any_of(seen.controls,
                                   [=](const auto& control) { return control.first == childId; });
    };
    return Expect("dialog with control " + std::to_string(childId), hasChild, std::move(act));
}

CUserScript& CUserScript::OnAnyDialog(std::function<void(HWND)> act)
{
    return Expect(
        "any dialog", [](const CSeenWindow&) { return true; }, std::move(act));
}

CUserScript& CUserScript::Expect(std::string what, std::function<bool(const CSeenWindow&)> matches,
                                 std::function<void(HWND)> act)
{
    m_impl->steps.push_back({std::move(what), std::move(matches), [act = std::move(act)](HWND window) {
                                 act(window);
                                 return std::string();
                             }});
    return *this;
}

CUserScript& CUserScript::Then(std::string what, std::function<bool()> act)
{
    m_impl->steps.push_back({std::move(what), nullptr, [act = std::move(act)](HWND) {
                                 return act() ? std::string() : std::string("did not happen");
                             }});
    return *this;
}

void CUserScript::Start()
{
    m_impl->Start();
}

void CUserScript::StartFor(DWORD process)
{
    m_impl->process = process;
    m_impl->Start();
}

std::vector<CSeenWindow> CUserScript::Finish()
{
    for (const std::string& failure : FinishQuietly())
    {
        ADD_FAILURE() << failure;
    }
    return Seen();
}

std::vector<std::string> CUserScript::FinishQuietly()
{
    m_impl->Join();
    const std::lock_guard lock(m_impl->mutex);
    return std::exchange(m_impl->failures, {});
}

std::vector<CSeenWindow> CUserScript::Seen() const
{
    const std::lock_guard lock(m_impl->mutex);
    return m_impl->seen;
}

} // namespace orva::test
