// The record of every call between the stand-in Outlook and its add-ins, one line each.
#pragma once

#include <windows.h>

#include <string>

namespace orva::host
{

/// Writes lines such as
///     0.152 Outlook -> Some.AddIn: OnConnection(1) = 0x00000000, 12 ms; detail
///     0.100 Outlook: main window shown
/// to a UTF-8 text file, each as soon as it is known; the time is seconds since the trace was opened, the
/// duration whole milliseconds. A call's line is written when it returns, so calls it made stand before it.
/// Failing to write is ignored: the trace must not change what is traced. One thread only.
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

    /// A call that has returned: who made it, to whom, its name with arguments, its result and duration.
    void Call(const std::wstring& from, const std::wstring& to, const std::wstring& name, HRESULT result,
              double milliseconds, const std::wstring& detail = {});

    /// Runs `call`, which returns an HRESULT, and writes its line. An exception that leaves it is noted in
    /// the line and becomes E_UNEXPECTED: an add-in's fault must not end the host.
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

    /// Milliseconds since the trace was made.
    double Now() const;

private:
    void WriteLine(const std::wstring& text);

    HANDLE m_file = INVALID_HANDLE_VALUE;
    LARGE_INTEGER m_frequency{};
    LARGE_INTEGER m_start{};
};

/// Names of the two sides in a trace line, where the add-in is not known by its ProgID.
inline constexpr wchar_t kOutlook[] = L"Outlook";
inline constexpr wchar_t kAddIn[] = L"add-in";

/// "0x" and eight hexadecimal digits.
std::wstring HexText(HRESULT result);

} // namespace orva::host
