// What a measuring program hands over: one line of standard output for each sample.
#pragma once

#include <string>

namespace orva::bench
{

/// Which of the two of a comparison a sample is of.
inline constexpr char kProduct[] = "product";
inline constexpr char kBaseline[] = "baseline";

/// Writes a sample of the comparison `row`. Its unit is the row's, in rows.tsv.
void AddSample(const std::string& row, const char* variant, double value);

/// Writes a point of the curve `curve`: what was measured with `x` of something (kilobytes, lines), and the
/// most private memory that the process had needed by then.
void AddPoint(const std::string& curve, double x, double value);

/// Private memory of this process now, in KiB.
double PrivateKib();

} // namespace orva::bench
