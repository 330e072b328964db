#include "harness/GdiPlusCounter.h"

namespace orva::test
{

CGdiPlusCounter* CGdiPlusCounter::s_current = nullptr;

CGdiPlusCounter::CGdiPlusCounter(HMODULE module)
    : m_startup(module, "gdiplus.dll", "GdiplusStartup", &Startup),
      m_shutdown(module, "gdiplus.dll", "GdiplusShutdown", &Shutdown)
{
    s_current = this;
}

CGdiPlusCounter::~CGdiPlusCounter()
{
    s_current = nullptr;
}

int WINAPI CGdiPlusCounter::Startup(ULONG_PTR* token, const GdiPlusInput* input, void* output)
{
    ++s_current->starts;
    s_current->lastInput = *input;
    return s_current->m_startup.Original<decltype(Startup)>()(token, input, output);
}

void WINAPI CGdiPlusCounter::Shutdown(ULONG_PTR token)
{
    ++s_current->ends;
    s_current->m_shutdown.Original<decltype(Shutdown)>()(token);
}

} // namespace orva::test
