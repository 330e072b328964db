// main() of every test program: COM for the test's thread, a watchdog, and no crash boxes.
#include "harness/Watchdog.h"

#include <gmock/gmock.h>
#include <objbase.h>

int main(int argc, char** argv)
{
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
