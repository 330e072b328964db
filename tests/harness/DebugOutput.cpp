#include "harness/DebugOutput.h"

#include <windows.h>

#include <mutex>

namespace orva::test
{

namespace
{

// The exception by which OutputDebugStringA tells a debugger.
constexpr DWORD kPrintNarrow = 0x40010006;

struct CollectedLines
{
    std::mutex mutex;
    std::vector<std::string> lines;
};

CollectedLines& Collected()
{
    static auto* const collected = new CollectedLines;
    return *collected;
}

LONG CALLBACK Collect(EXCEPTION_POINTERS* pointers)
{
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    if (record.ExceptionCode != kPrintNarrow || record.NumberParameters < 2)
    {
        return EXCEPTION_CONTINUE_SEARCH;
    }
    // The parameters are the length with the terminator, and the text.
    const auto length = static_cast<size_t>(record.ExceptionInformation[0]);
    const auto* const text = reinterpret_cast<const char*>(record.ExceptionInformation[1]);
    const std::lock_guard lock(Collected().mutex);
    Collected().lines.emplace_back(text, length > 0 ? length - 1 : 0);
    return EXCEPTION_CONTINUE_EXECUTION;
}

} // namespace

CDebugOutput::CDebugOutput()
{
    Clear();
    m_handler = AddVectoredExceptionHandler(TRUE, Collect);
}

CDebugOutput::~CDebugOutput()
{
    RemoveVectoredExceptionHandler(m_handler);
}

std::vector<std::string> CDebugOutput::Lines() const
{
    const std::lock_guard lock(Collected().mutex);
    return Collected().lines;
}

void CDebugOutput::Clear()
{
    const std::lock_guard lock(Collected().mutex);
    Collected().lines.clear();
}

} // namespace orva::test
