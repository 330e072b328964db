// Writes samples to standard output, one line each.
#pragma once

#include <string>

namespace orva::bench
{

/// The two variants of a comparison.
inline constexpr char kProduct[] = "product";
inline constexpr char kBaseline[] = "baseline";

/// Writes a sample of the comparison `row`, in the unit that rows.tsv gives.
void AddSample(const std::string& row, const char* variant, double value);

/// Writes a point of the curve `curve`: the value measured at `x` (kilobytes, lines), and the process's peak
/// of private memory so far.
void AddPoint(const std::string& curve, double x, double value);

/// Private memory of this process now, in KiB, as Windows charges it: private pages, and the writable pages
/// of loaded images. Wine's own counter also has the read-only pages of an image whose sections do not begin
/// at a page's border in the file, because it copies them; Windows maps them from the file in any case.
double PrivateKib();

} // namespace orva::bench
