// The text of an update-information file as the add-in reads it, and what is wrong with it before any member
// is looked at.
#pragma once

#include "publishing/Finding.h"

#include <json_spirit.h>

#include <optional>
#include <string>

namespace publishing
{

struct CUpdateText
{
    std::wstring text;
    /// What the add-in's reader has read: after a syntax error what stands before it.
    json_spirit::wmValue root;
    std::optional<json_spirit::Error_position> error;
};

/// The text that the add-in makes of a file with these bytes: of the first 256,000, as UTF-8, up to the first
/// zero byte.
std::wstring DecodeAsTheAddIn(const std::string& bytes);

CUpdateText ReadAsTheAddIn(std::wstring text);

/// Too many bytes, not UTF-8, a zero byte; without any of these no text, as of a byte-order mark alone.
/// `text` is what the add-in makes of the bytes.
void CheckBytes(const std::string& bytes, const std::wstring& text, CFindings& findings);

/// The syntax error of the add-in's reader, with what stands there. True if there is none.
bool CheckSyntax(const CUpdateText& text, CFindings& findings);

} // namespace publishing
