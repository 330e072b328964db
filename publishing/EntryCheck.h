// The members of the update-information file: whether they are there, of their types and of use.
#pragma once

#include "publishing/Finding.h"
#include "update/PublishedVersion.h"

#include <json_spirit.h>

#include <optional>
#include <string>

namespace publishing
{

/// What the file publishes, as far as it has the right types.
struct CPublishedUpdate
{
    std::optional<PublishedVersion> version;
    std::optional<std::wstring> link;
    /// As it has to be written, not verified.
    std::optional<std::wstring> signature;
};

/// What has to hold besides the file itself.
struct CDemands
{
    /// The published version has to be greater; without one it should be greater than this build's.
    std::optional<PublishedVersion> installed = {};
    /// There has to be a signature.
    bool isSigned = false;
};

/// Checks every member of a file that was read without error.
CPublishedUpdate CheckMembers(const json_spirit::wmValue& root, const CDemands& demands, CFindings& findings);

} // namespace publishing
