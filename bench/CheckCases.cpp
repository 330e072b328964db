// The update check and its debug log.
#include "OrvaWebHost.h"
#include "bench/BareRequest.h"
#include "bench/DebuggerLines.h"
#include "bench/InsideCases.h"
#include "bench/Samples.h"
#include "bench/Turns.h"
#include "support/DebugLog.h"
#include "update/UpdateCheck.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace orva::bench
{

namespace
{

constexpr wchar_t kHost[] = L"" ORVA_WEB_HOST;
// The product's requests end with a question mark, too.
constexpr wchar_t kPath[] = L"/downloads/outlook/UpdateInfo.txt?";

// Many short rounds, because disturbances last longer than a request.
constexpr int kCheckRounds = 101;

constexpr double kMilliseconds = 1e3;

void CheckOnce()
{
    // False if nothing newer is published. With something newer a window would open.
    if (CheckForUpdate(nullptr, true))
    {
        throw std::runtime_error("the check did not find the installed version");
    }
}

double Median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2),
                     values.end());
    return values[values.size() / 2];
}

} // namespace

void MeasureCheck()
{
    const std::vector<std::string> lines = DebuggerLinesOf(CheckOnce);
    TakeTurns("check", Timed(CheckOnce), Timed([&lines] {
                  BareGet(kHost, kPath);
                  WriteToDebugger(lines);
              }),
              {.rounds = kCheckRounds, .roundSeconds = 0.02});
}

void GrowCheck(double kilobytes)
{
    constexpr int kTimes = 25;
    CheckOnce();
    std::vector<double> milliseconds;
    for (int i = 0; i < kTimes; ++i)
    {
        const double start = Now();
        CheckOnce();
        milliseconds.push_back((Now() - start) * kMilliseconds);
    }
    AddPoint("check", kilobytes, Median(milliseconds));
}

void GrowLog(int lines)
{
    const double start = Now();
    for (int i = 0; i < lines; ++i)
    {
        WriteDebugLog(GetDebugLog(), "CHttpRequest::PerformTextRequest", "response httpStatus", 200);
    }
    AddPoint("log", lines, Now() - start);
}

} // namespace orva::bench
