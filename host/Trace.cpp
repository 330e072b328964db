#include "host/Trace.h"

#include <cmath>
#include <cstdio>

namespace orva::host
{

CTrace::CTrace()
{
    QueryPerformanceFrequency(&m_frequency);
    QueryPerformanceCounter(&m_start);
}

CTrace::~CTrace()
{
    if (m_file != INVALID_HANDLE_VALUE)
    {
        CloseHandle(m_file);
    }
}

bool CTrace::Open(const std::wstring& path)
{
    if (m_file != INVALID_HANDLE_VALUE)
    {
        CloseHandle(m_file);
    }
    // Tests read the file while it is open, and may delete the folder before this process has ended.
    m_file = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                         nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    return m_file != INVALID_HANDLE_VALUE;
}

double CTrace::Now() const
{
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    return 1000.0 * static_cast<double>(now.QuadPart - m_start.QuadPart) /
           static_cast<double>(m_frequency.QuadPart);
}

void CTrace::Event(const std::wstring& text)
{
    WriteLine(std::wstring(kOutlook) + L": " + text);
}

void CTrace::Call(const std::wstring& from, const std::wstring& to, const std::wstring& name, HRESULT result,
                  double milliseconds, const std::wstring& detail)
{
    std::wstring line = from + L" -> " + to + L": " + name + L" = " + HexText(result) + L", " +
                        std::to_wstring(std::llround(milliseconds)) + L" ms";
    if (!detail.empty())
    {
        line += L"; " + detail;
    }
    WriteLine(line);
}

void CTrace::WriteLine(const std::wstring& text)
{
    if (m_file == INVALID_HANDLE_VALUE)
    {
        return;
    }
    wchar_t time[32];
    if (swprintf(time, std::size(time), L"%9.3f ", Now() / 1000.0) < 0)
    {
        return;
    }
    std::wstring line = time + text;
    for (wchar_t& character : line)
    {
        if (character == L'\r' || character == L'\n')
        {
            character = L' ';
        }
    }
    line += L'\n';
    const int size = WideCharToMultiByte(CP_UTF8, 0, line.c_str(), static_cast<int>(line.size()), nullptr, 0,
                                         nullptr, nullptr);
    std::string bytes(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, line.c_str(), static_cast<int>(line.size()), bytes.data(), size, nullptr,
                        nullptr);
    DWORD written = 0;
    WriteFile(m_file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

std::wstring HexText(HRESULT result)
{
    wchar_t text[16];
    if (swprintf(text, std::size(text), L"0x%08lX", static_cast<unsigned long>(result)) < 0)
    {
        return {};
    }
    return text;
}

} // namespace orva::host
