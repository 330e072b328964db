// main() of every test program: initializes COM, starts the watchdog, and turns crash dialogs off.
#include "harness/Watchdog.h"

#include <gmock/gmock.h>

#include <objbase.h>

namespace
{

// Creates the file by which tools/run-test knows that the program has reached main().
void WriteStartedFile()
{
    wchar_t path[MAX_PATH];
    const DWORD length = GetEnvironmentVariableW(L"ORVA_STARTED_FILE", path, MAX_PATH);
    if (length != 0 && length < MAX_PATH)
    {
        const HANDLE file = CreateFileW(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                        OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file != INVALID_HANDLE_VALUE)
        {
            CloseHandle(file);
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    WriteStartedFile();
    orva::test::InstallCrashReport();
    testing::InitGoogleMock(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(orva::test::StartWatchdog());
    const HRESULT com = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    const int result = RUN_ALL_TESTS();
    if (SUCCEEDED(com))
    {
        CoUninitialize();
    }
    return result;
}
