// The installer that is published: a program for Windows, of the published version, signed.
#pragma once

#include "publishing/EntryCheck.h"
#include "publishing/Finding.h"
#include "support/UpdateKey.h"

#include <cstdint>
#include <optional>
#include <string>

namespace publishing
{

/// What is known of the installer.
struct CInstallerFacts
{
    /// A path or a URL.
    std::wstring source;
    std::uint64_t size = 0;
    /// Of the program: 64 or 32; 0 if it is none.
    int bits = 0;
    /// Of the version resource, "1.3.0"; empty without one.
    std::wstring version;
    /// Absent if there was no key to verify it with, or no signature.
    std::optional<bool> isSigned;
};

/// Checks an installer on this machine against what is published. Throws CUsageError if it cannot be read.
CInstallerFacts CheckInstallerFile(const std::wstring& path, const CPublishedUpdate& update,
                                   const std::optional<CUpdateKey>& key, CFindings& findings);

/// Downloads the installer from the published link and checks it. Absent if the add-in would get none.
/// `original` is the file on this machine that it has to be the same as, if there is one; throws CUsageError
/// if that cannot be read.
std::optional<CInstallerFacts> CheckInstallerLink(const CPublishedUpdate& update,
                                                  const std::optional<CUpdateKey>& key,
                                                  const std::optional<std::wstring>& original,
                                                  CFindings& findings);

} // namespace publishing
