// OrvaPublish.exe: checks an update before any Outlook does.
#include "publishing/Check.h"
#include "publishing/Report.h"
#include "publishing/Text.h"

#include <afxwin.h>

#include <cstdio>
#include <string_view>

namespace
{

constexpr int kErrors = 1;
constexpr int kUsage = 2;

// The class library's object, in the place of the add-in's.
// NOLINTNEXTLINE(cert-err58-cpp): only for lack of memory, without which nothing can be checked anyway
CWinApp g_application(L"OrvaPublish");

// A console gets UTF-16, whatever its code page; a file or a pipe gets UTF-8.
void Write(DWORD handleId, std::string_view utf8)
{
    const HANDLE handle = GetStdHandle(handleId);
    DWORD mode = 0;
    DWORD written = 0;
    if (GetConsoleMode(handle, &mode))
    {
        const std::wstring text = publishing::Wide(utf8);
        WriteConsoleW(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
        return;
    }
    WriteFile(handle, utf8.data(), static_cast<DWORD>(utf8.size()), &written, nullptr);
}

int Run(const std::vector<std::wstring>& arguments)
{
    const publishing::CCheckOptions options = publishing::ParseOptions(arguments);
    if (options.isHelp)
    {
        Write(STD_OUTPUT_HANDLE, publishing::Utf8(publishing::HelpText()));
        return 0;
    }
    const publishing::CCheckResult result = publishing::Check(options);
    Write(STD_OUTPUT_HANDLE,
          options.isJson ? publishing::JsonReport(result) : publishing::PlainReport(result));
    return result.findings.HasErrors() ? kErrors : 0;
}

} // namespace

int wmain(int argc, wchar_t** argv)
{
    try
    {
        return Run({argv + 1, argv + argc});
    }
    catch (const std::exception& error)
    {
        Write(STD_ERROR_HANDLE, "OrvaPublish: " + std::string(error.what()) +
                                    "\n\"OrvaPublish.exe --help\" says how to use it.\n");
    }
    catch (CException* exception)
    {
        exception->Delete();
        Write(STD_ERROR_HANDLE, "OrvaPublish: the system refused a request.\n");
    }
    return kUsage;
}
