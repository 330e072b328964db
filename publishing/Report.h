// The result of a check for who reads it and for scripts.
#pragma once

#include "publishing/Check.h"

#include <string>

namespace publishing
{

/// In plain words, UTF-8, lines end with a line feed.
std::string PlainReport(const CCheckResult& result);

/// JSON as docs/update-check-report.md describes it, UTF-8.
std::string JsonReport(const CCheckResult& result);

} // namespace publishing
