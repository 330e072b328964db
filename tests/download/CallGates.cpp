#include "download/CallGates.h"

#include "harness/Text.h"

#include <algorithm>
#include <chrono>
#include <sstream>

namespace orva::test
{

std::string ShowText(LPCWSTR text)
{
    return text != nullptr ? "\"" + Utf8(text) + "\"" : "null";
}

std::string ShowHex(ULONG_PTR number)
{
    std::ostringstream text;
    text << "0x" << std::hex << std::uppercase << number;
    return text.str();
}

void CCallGates::Hold(const CallId& call, CallStage stage)
{
    const std::lock_guard lock(m_mutex);
    m_gates[{call, stage}] = Gate::Closed;
}

bool CCallGates::WaitUntilHeld(const CallId& call, CallStage stage)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, std::chrono::milliseconds(kPatience), [&] {
        return m_gates[{call, stage}] == Gate::Reached;
    });
}

void CCallGates::Release(const CallId& call, CallStage stage)
{
    const std::lock_guard lock(m_mutex);
    m_gates[{call, stage}] = Gate::Open;
    m_changed.notify_all();
}

void CCallGates::ReleaseAll()
{
    const std::lock_guard lock(m_mutex);
    m_isOpenForGood = true;
    m_changed.notify_all();
}

void CCallGates::Fail(const CallId& call, DWORD error)
{
    const std::lock_guard lock(m_mutex);
    m_failures[call] = error;
}

void CCallGates::Throw(const CallId& call, std::function<void()> throwIt)
{
    const std::lock_guard lock(m_mutex);
    m_exceptions[call] = std::move(throwIt);
}

std::vector<std::string> CCallGates::Lines(const std::vector<std::string>& functions) const
{
    const std::lock_guard lock(m_mutex);
    std::vector<std::string> lines;
    std::ranges::copy_if(m_lines, std::back_inserter(lines), [&](const std::string& line) {
        return functions.empty() || std::ranges::any_of(functions, [&](const std::string& function) {
                   return line.starts_with(function);
               });
    });
    return lines;
}

CGatedCall::CGatedCall(CCallGates& gates, const std::string& function)
    : m_gates(gates), m_lock(gates.m_mutex), m_id{function, ++gates.m_counts[function]}
{
}

void CGatedCall::Record(const std::string& arguments)
{
    m_line = m_gates.m_lines.size();
    m_gates.m_lines.push_back(m_id.function + "(" + arguments + ")");
}

void CGatedCall::RecordResult(const std::string& result)
{
    m_gates.m_lines[m_line] += " = " + result;
}

void CGatedCall::Pass(CallStage stage, const std::function<bool()>& isInterrupted)
{
    const auto found = m_gates.m_gates.find({m_id, stage});
    if (found == m_gates.m_gates.end() || found->second == CCallGates::Gate::Open)
    {
        return;
    }
    found->second = CCallGates::Gate::Reached;
    Announce();
    m_gates.m_changed.wait(m_lock, [&] {
        return m_gates.m_isOpenForGood || found->second == CCallGates::Gate::Open ||
               (isInterrupted && isInterrupted());
    });
    found->second = CCallGates::Gate::Open;
}

DWORD CGatedCall::Failure() const
{
    if (const auto exception = m_gates.m_exceptions.find(m_id); exception != m_gates.m_exceptions.end())
    {
        exception->second();
    }
    const auto found = m_gates.m_failures.find(m_id);
    return found == m_gates.m_failures.end() ? 0 : found->second;
}

void CGatedCall::Unlocked(const std::function<void()>& work)
{
    m_lock.unlock();
    work();
    m_lock.lock();
}

} // namespace orva::test
