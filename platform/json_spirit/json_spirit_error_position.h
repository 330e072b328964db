// The error that reading a text with a syntax error throws.
#pragma once

#include <string>

namespace json_spirit
{
/// Where and why reading stopped. Not derived from std::exception, as in the original.
struct Error_position
{
    /// Both count from 1. A tabulator leads to the next column after a multiple of 4.
    unsigned int line_;
    unsigned int column_;

    std::string reason_;
};
} // namespace json_spirit
