// Entry point of the stand-in Outlook.
#include "host/HostOptions.h"
#include "host/OutlookHost.h"
#include "host/Trace.h"
#include "host/TypeLibraries.h"

#include <windows.h>
#include <ole2.h>
#include <shellapi.h>

namespace
{

using namespace orva::host;

constexpr int kBadUsage = 2;

// Static, because add-ins may keep references to Outlook's objects, which use the trace, until the process
// ends.
CTrace& Trace()
{
    static CTrace trace;
    return trace;
}

CMenuModel& Model()
{
    static CMenuModel model(Trace());
    return model;
}

// Writes a crash of the process to the trace.
LONG WINAPI OnCrash(EXCEPTION_POINTERS* exception)
{
    Trace().Event(L"crashed with exception " +
                  HexText(static_cast<HRESULT>(exception->ExceptionRecord->ExceptionCode)));
    return EXCEPTION_EXECUTE_HANDLER;
}

void WriteError(const std::wstring& text)
{
    const std::string bytes(text.begin(), text.end());
    const HANDLE output = GetStdHandle(STD_ERROR_HANDLE);
    DWORD written = 0;
    WriteFile(output, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

std::vector<std::wstring> Arguments()
{
    int count = 0;
    LPWSTR* texts = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::wstring> arguments;
    for (int index = 1; index < count; ++index)
    {
        arguments.emplace_back(texts[index]);
    }
    LocalFree(texts);
    return arguments;
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int)
{
    HostOptions options;
    std::wstring error;
    if (!ParseOptions(Arguments(), options, error))
    {
        WriteError(L"OutlookHost: " + error + L"\n");
        return kBadUsage;
    }
    if (!options.traceFile.empty() && !Trace().Open(options.traceFile))
    {
        WriteError(L"OutlookHost: cannot write the trace file\n");
        return kBadUsage;
    }
    SetUnhandledExceptionFilter(OnCrash);
    if (FAILED(OleInitialize(nullptr)))
    {
        return 1;
    }
    EnsureTypeLibraries(Trace());
    int status = 0;
    {
        COutlookHost host(options, Trace(), Model());
        status = host.Run();
    }
    // A fast shutdown leaves the add-in loaded and connected; OleUninitialize would unload it.
    if (!options.fastShutdown)
    {
        OleUninitialize();
    }
    return status;
}
