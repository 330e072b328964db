#include "bench/Samples.h"

#include <windows.h>
#include <psapi.h>

#include <cstdio>
#include <stdexcept>

namespace orva::bench
{

namespace
{

constexpr double kKib = 1024.0;

// PagefileUsage is the private memory. Wine does not fill in PrivateUsage.
PROCESS_MEMORY_COUNTERS Memory()
{
    PROCESS_MEMORY_COUNTERS counters{};
    counters.cb = sizeof counters;
    if (!GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters))
    {
        throw std::runtime_error("no memory counters");
    }
    return counters;
}

// A sample that cannot be written ends the run.
void Flush()
{
    if (std::fflush(stdout) != 0)
    {
        throw std::runtime_error("samples cannot be written");
    }
}

} // namespace

void AddSample(const std::string& row, const char* variant, double value)
{
    std::printf("sample\t%s\t%s\t%.6g\n", row.c_str(), variant, value);
    Flush();
}

void AddPoint(const std::string& curve, double x, double value)
{
    const double peakKib = static_cast<double>(Memory().PeakPagefileUsage) / kKib;
    std::printf("point\t%s\t%.6g\t%.6g\t%.6g\n", curve.c_str(), x, value, peakKib);
    Flush();
}

double PrivateKib()
{
    constexpr DWORD kWritable =
        PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    SIZE_T bytes = 0;
    MEMORY_BASIC_INFORMATION region{};
    for (const char* address = nullptr; VirtualQuery(address, &region, sizeof region) != 0;
         address = static_cast<const char*>(region.BaseAddress) + region.RegionSize)
    {
        const bool isWritableImage = region.Type == MEM_IMAGE && (region.Protect & kWritable) != 0;
        if (region.State == MEM_COMMIT && (region.Type == MEM_PRIVATE || isWritableImage))
        {
            bytes += region.RegionSize;
        }
    }
    return static_cast<double>(bytes) / kKib;
}

} // namespace orva::bench
