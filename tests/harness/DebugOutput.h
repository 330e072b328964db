// Collects what this process gives to OutputDebugString.
#pragma once

#include <string>
#include <vector>

namespace orva::test
{

/// Collects during its lifetime, from every thread, one entry per call, without the terminator. One object at
/// a time.
class CDebugOutput
{
public:
    CDebugOutput();
    ~CDebugOutput();
    CDebugOutput(const CDebugOutput&) = delete;
    CDebugOutput& operator=(const CDebugOutput&) = delete;

    std::vector<std::string> Lines() const;
    void Clear();

private:
    void* m_handler;
};

} // namespace orva::test
