// The command line of `OrvaPublish.exe check`.
#pragma once

#include "update/PublishedVersion.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace publishing
{

struct CCheckOptions
{
    /// A file's path or a URL.
    std::wstring source;
    std::optional<std::wstring> installer = {};
    std::optional<std::wstring> publicKey = {};
    std::optional<PublishedVersion> installed = {};
    bool isJson = false;
    /// Nothing is checked, the help is asked for.
    bool isHelp = false;
};

/// Something that was asked for cannot be done: the command line is wrong, or a file cannot be read.
class CUsageError : public std::runtime_error
{
public:
    /// `text` is UTF-8.
    using std::runtime_error::runtime_error;
};

/// The arguments after the program's name. Throws CUsageError.
CCheckOptions ParseOptions(const std::vector<std::wstring>& arguments);

/// Whether a source is a URL and not a file's path.
bool IsUrl(const std::wstring& source);

const wchar_t* HelpText();

} // namespace publishing
