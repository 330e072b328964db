// A file for every kind of error and warning that is found in the file itself, and the exact lines of the
// report.
#pragma once

#include "publishing/Finding.h"
#include "update/PublishedVersion.h"

#include <gtest/gtest.h>

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace orva::test
{

struct CExpectedFinding
{
    std::string code;
    /// As the report shows it, with "Error: " or "Warning: ".
    std::string line;

    bool operator==(const CExpectedFinding&) const = default;
};

struct CFindingRow
{
    const char* name;
    std::string bytes;
    std::vector<CExpectedFinding> findings;
    std::optional<PublishedVersion> installed = {};
    /// Checked with the tests' public key.
    bool hasKey = false;
};

void PrintTo(const CExpectedFinding& finding, std::ostream* out);
void PrintTo(const CFindingRow& row, std::ostream* out);
std::string NameOf(const testing::TestParamInfo<CFindingRow>& info);

/// A file without any finding, which publishes 1.3.0 with the link kGoodLink.
extern const std::string kGoodFile;
inline constexpr char kGoodLink[] = "http://www.orva.example/downloads/outlook/OrvaSetup-1.3.0.exe";

/// kGoodFile with the first `what` replaced.
std::string With(const std::string& what, const std::string& by);

std::vector<CFindingRow> FindingRows();

/// The findings of a whole report.
std::vector<CExpectedFinding> FindingsOf(const publishing::CFindings& findings, const std::string& report);

} // namespace orva::test
