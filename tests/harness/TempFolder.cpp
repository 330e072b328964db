#include "harness/TempFolder.h"

#include "harness/Files.h"

#include <windows.h>

#include <atomic>
#include <stdexcept>

namespace orva::test
{

namespace
{

std::wstring EnvironmentText(const wchar_t* name)
{
    // With the terminator; 0 if there is no such variable.
    std::wstring text(GetEnvironmentVariableW(name, nullptr, 0), L'\0');
    text.resize(GetEnvironmentVariableW(name, text.data(), static_cast<DWORD>(text.size())));
    return text;
}

void SetEnvironmentText(const wchar_t* name, const std::wstring& value)
{
    SetEnvironmentVariableW(name, value.empty() ? nullptr : value.c_str());
}

} // namespace

CTempFolder::CTempFolder()
{
    static std::atomic<unsigned> counter = 0;
    wchar_t parent[MAX_PATH];
    GetTempPathW(MAX_PATH, parent);
    // The time is there because a killed run may have left a folder of a process with the same id.
    constexpr int kAttempts = 100;
    for (int attempt = 0; attempt < kAttempts; ++attempt)
    {
        m_path = std::wstring(parent) + L"orva-test-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                 std::to_wstring(GetTickCount()) + L"-" + std::to_wstring(++counter);
        if (CreateDirectoryW(m_path.c_str(), nullptr))
        {
            return;
        }
    }
    throw std::runtime_error("cannot make a temporary folder");
}

CTempFolder::~CTempFolder()
{
    RemovePath(m_path);
}

CPrivateTemp::CPrivateTemp() : m_temp(EnvironmentText(L"TEMP")), m_tmp(EnvironmentText(L"TMP"))
{
    SetEnvironmentText(L"TEMP", m_folder.Path());
    SetEnvironmentText(L"TMP", m_folder.Path());
}

CPrivateTemp::~CPrivateTemp()
{
    SetEnvironmentText(L"TEMP", m_temp);
    SetEnvironmentText(L"TMP", m_tmp);
}

} // namespace orva::test
