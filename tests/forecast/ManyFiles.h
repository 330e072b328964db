// Update-information files without number: those of other tests, and mutations of them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace orva::test
{

/// The files of the update check's tests, the seeds of the JSON reader's fuzz target, and one like those that
/// publishers write.
std::vector<std::string> KnownFiles();

/// `count` files that are known ones with some bytes changed, always the same.
std::vector<std::string> MutatedFiles(std::size_t count);

} // namespace orva::test
