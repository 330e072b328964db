// Calls of the code under test that a test holds at a gate, makes fail, and reads afterwards.
#pragma once

#include "harness/Waiting.h"

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace orva::test
{

/// How a text and a number stand in the record: in quotation marks, or "null", and "0x" with capitals.
std::string ShowText(LPCWSTR text);
std::string ShowHex(ULONG_PTR number);

/// The `number`th call of a function, counted from 1.
struct CallId
{
    std::string function;
    int number = 1;
    auto operator<=>(const CallId&) const = default;
};

/// Where a call stands when it is held.
enum class CallStage
{
    /// It has been called and has not looked at anything yet.
    Before,
    /// It is at work. Closing its handle interrupts it there.
    Pending,
    /// Its result is fixed and not yet returned.
    After,
};

/// What the fakes share: the record of all calls in their order, the gates, and the scripted failures.
/// Callable from any thread.
class CCallGates
{
public:
    CCallGates() = default;
    CCallGates(const CCallGates&) = delete;
    CCallGates& operator=(const CCallGates&) = delete;

    /// Lets this call stop at this stage until it is released. A gate that is not reached does no harm.
    void Hold(const CallId& call, CallStage stage);
    /// Waits until the call stands at its gate. False if it does not come in time, or has passed already.
    bool WaitUntilHeld(const CallId& call, CallStage stage);
    void Release(const CallId& call, CallStage stage);
    /// Opens all gates for good: for a test's end, so that no failed test hangs.
    void ReleaseAll();
    /// Makes this call fail with a Win32 error.
    void Fail(const CallId& call, DWORD error);
    /// Makes this call throw what `throwIt` throws.
    void Throw(const CallId& call, std::function<void()> throwIt);

    /// A line for each call whose function's name begins with one of these, or for every call: function,
    /// arguments and result.
    std::vector<std::string> Lines(const std::vector<std::string>& functions = {}) const;

private:
    friend class CGatedCall;

    enum class Gate
    {
        Closed,
        Reached,
        Open,
    };

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isOpenForGood = false;
    std::map<std::pair<CallId, CallStage>, Gate> m_gates;
    std::map<CallId, DWORD> m_failures;
    std::map<CallId, std::function<void()>> m_exceptions;
    std::map<std::string, int> m_counts;
    std::vector<std::string> m_lines;
};

/// One call of a fake on its way through the gates. The gates' lock, which guards the fakes' state as well,
/// is held during its lifetime, except while it waits.
class CGatedCall
{
public:
    CGatedCall(CCallGates& gates, const std::string& function);
    CGatedCall(const CGatedCall&) = delete;
    CGatedCall& operator=(const CGatedCall&) = delete;

    /// Writes the call into the record.
    void Record(const std::string& arguments);
    /// Completes the record of the call with what came of it.
    void RecordResult(const std::string& result);
    /// Stops here if that is scripted, until the gate is opened or `isInterrupted` says true. A change of
    /// what it looks at has to be announced with Announce.
    void Pass(CallStage stage, const std::function<bool()>& isInterrupted = {});
    /// Makes the calls that wait ask again whether they are interrupted.
    void Announce() { m_gates.m_changed.notify_all(); }
    /// The scripted error, 0 if the call is to succeed. Throws what is scripted.
    DWORD Failure() const;
    /// Does something without the lock: what may wait, or come back to the fakes.
    void Unlocked(const std::function<void()>& work);

private:
    CCallGates& m_gates;
    std::unique_lock<std::mutex> m_lock;
    CallId m_id;
    size_t m_line = 0;
};

} // namespace orva::test
