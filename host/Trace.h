// The record of every call between the stand-in Outlook and its add-ins, one line each.
#pragma once

#include <windows.h>

#include <string>

namespace orva::host
{

/// Writes lines such as
///     0.152 Outlook -> Some.AddIn: OnConnection(1) = 0x00000000, 12 ms; detail
///     0.100 Outlook: main window shown
/// to a UTF-8 text file, each as soon as it is known; the time is seconds since the object was made, the
/// duration whole milliseconds. A call's line is written when it returns, after the lines of the calls that
/// it made. Write errors are ignored: the trace must not change what is traced. One thread only.
class CTrace
{
public:
    CTrace();
    ~CTrace();
    CTrace(const CTrace&) = delete;
    CTrace& operator=(const CTrace&) = delete;

    /// Creates or empties the file; false when it cannot be written.
    bool Open(const std::wstring& path);

    /// Something that Outlook did by itself.
    void Event(const std::wstring& text);

    /// A call that has returned: caller, callee, name with arguments, result and duration.
    void Call(const std::wstring& from, const std::wstring& to, const std::wstring& name, HRESULT result,
              double milliseconds, const std::wstring& detail = {});

    /// Runs `call`, which returns an HRESULT, and writes its line. A C++ exception is written to the line and
    /// becomes E_UNEXPECTED: an add-in's fault must not end the host.
    template <typename Function>
    HRESULT Run(const std::wstring& from, const std::wstring& to, const std::wstring& name, Function call)
    {
        const double start = Now();
        HRESULT result = E_UNEXPECTED;
        std::wstring detail;
        try
        {
            result = call();
        }
        catch (...)
        {
            detail = L"a C++ exception left the call";
        }
        Call(from, to, name, result, Now() - start, detail);
        return result;
    }

    /// Milliseconds since the object was made.
    double Now() const;

private:
    void WriteLine(const std::wstring& text);

    HANDLE m_file = INVALID_HANDLE_VALUE;
    LARGE_INTEGER m_frequency{};
    LARGE_INTEGER m_start{};
};

/// Names of caller and callee in a trace line, where the add-in's ProgID is not known.
inline constexpr wchar_t kOutlook[] = L"Outlook";
inline constexpr wchar_t kAddIn[] = L"add-in";

/// "0x" and eight hexadecimal digits.
std::wstring HexText(HRESULT result);

} // namespace orva::host
