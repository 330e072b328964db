// Counts a module's starts and ends of GDI+.
#pragma once

#include "harness/ImportHook.h"

namespace orva::test
{

/// The layout of GdiplusStartupInput.
struct GdiPlusInput
{
    UINT32 version;
    void* debugCallback;
    BOOL suppressBackgroundThread;
    BOOL suppressExternalCodecs;
};

/// Counts during its lifetime and passes the calls on to GDI+. One object at a time.
class CGdiPlusCounter
{
public:
    explicit CGdiPlusCounter(HMODULE module);
    ~CGdiPlusCounter();
    CGdiPlusCounter(const CGdiPlusCounter&) = delete;
    CGdiPlusCounter& operator=(const CGdiPlusCounter&) = delete;

    int starts = 0;
    int ends = 0;
    GdiPlusInput lastInput{};

private:
    static int WINAPI Startup(ULONG_PTR* token, const GdiPlusInput* input, void* output);
    static void WINAPI Shutdown(ULONG_PTR token);

    static CGdiPlusCounter* s_current;

    CImportHook m_startup;
    CImportHook m_shutdown;
};

} // namespace orva::test
