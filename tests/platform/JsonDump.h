// Shows what the JSON reader made of a text: the tree as a line of text, and the error if there was one.
#pragma once

#include <json_spirit.h>

#include <cstdio>
#include <string>

namespace orva::test
{

template <class String> std::string DumpText(const String& text)
{
    using Char = typename String::value_type;
    std::string dump = "'";
    for (const Char c : text)
    {
        const auto unit = static_cast<unsigned int>(c) & (sizeof(Char) == 1 ? 0xFFU : 0xFFFFU);
        char escaped[8] = {static_cast<char>(unit)};
        if (unit < 0x20 || unit > 0x7E)
        {
            std::snprintf(escaped, sizeof(escaped), "<%02X>", unit);
        }
        dump += escaped;
    }
    return dump + "'";
}

/// Objects in braces, arrays in brackets, strings in single quotes with unprintable units as <HEX>, reals
/// with an "r", integers beyond the signed range with a "u".
template <class Value> std::string Dump(const Value& value)
{
    std::string dump;
    switch (value.type())
    {
    case json_spirit::obj_type:
        for (const auto& [name, member] : value.get_obj())
        {
            dump += (dump.empty() ? "" : " ") + DumpText(name) + ":" + Dump(member);
        }
        return "{" + dump + "}";
    case json_spirit::array_type:
        for (const auto& element : value.get_array())
        {
            dump += (dump.empty() ? "" : " ") + Dump(element);
        }
        return "[" + dump + "]";
    case json_spirit::str_type:
        return DumpText(value.get_str());
    case json_spirit::bool_type:
        return value.get_bool() ? "true" : "false";
    case json_spirit::int_type:
        return value.is_uint64() ? std::to_string(value.get_uint64()) + "u"
                                 : std::to_string(value.get_int64());
    case json_spirit::real_type: {
        char text[40];
        std::snprintf(text, sizeof(text), "%.9gr", value.get_real());
        return text;
    }
    case json_spirit::null_type:
        break;
    }
    return "null";
}

/// Reads and dumps: "TREE", or "TREE !REASON LINE:COLUMN" after a syntax error.
inline std::string ReadAndDump(const std::wstring& text)
{
    json_spirit::wmValue value;
    std::string error;
    try
    {
        json_spirit::read_or_throw(text, value);
    }
    catch (const json_spirit::Error_position& position)
    {
        error = " !" + position.reason_ + " " + std::to_string(position.line_) + ":" +
                std::to_string(position.column_);
    }
    return Dump(value) + error;
}

/// The ASCII text with each character widened.
inline std::wstring WidenAscii(const std::string& text)
{
    return std::wstring(text.begin(), text.end());
}

} // namespace orva::test
