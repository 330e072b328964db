// The grammar that fills a value tree while it reads.
#pragma once

#include "json_spirit_error_position.h"
#include "json_spirit_reader.h"
#include "json_spirit_value.h"

#include <boost/spirit/include/classic_core.hpp>
#include <boost/spirit/include/classic_position_iterator.hpp>

#include <cstdint>
#include <utility>
#include <vector>

namespace json_spirit
{
/// The value of a hexadecimal digit, -1 for any other character.
template <class Char> int hex_digit(Char c) noexcept
{
    if (c >= '0' && c <= '9')
    {
        return static_cast<int>(c - '0');
    }
    if (c >= 'a' && c <= 'f')
    {
        return static_cast<int>(c - 'a') + 10;
    }
    if (c >= 'A' && c <= 'F')
    {
        return static_cast<int>(c - 'A') + 10;
    }
    return -1;
}

/// The text between a string's quotes with its escapes resolved. \u gives one UTF-16 unit. An
/// escaped character without a meaning is dropped, also a "u" or "x" without all of its digits.
template <class String, class Iterator> String unescape(Iterator first, Iterator last)
{
    using Char = typename String::value_type;
    String text;
    text.reserve(static_cast<typename String::size_type>(last - first));

    const auto append_hex = [&](int digits) {
        if (last - first < digits)
        {
            return;
        }
        unsigned int unit = 0;
        for (int i = 0; i < digits; ++i)
        {
            const int digit = hex_digit(first[i]);
            if (digit < 0)
            {
                return;
            }
            unit = unit * 16 + static_cast<unsigned int>(digit);
        }
        text += static_cast<Char>(unit);
        first += digits;
    };

    while (first != last)
    {
        const Char c = *first++;
        if (c != '\\' || first == last)
        {
            text += c;
            continue;
        }
        switch (const Char escaped = *first++; escaped)
        {
        case 't':
            text += '\t';
            break;
        case 'b':
            text += '\b';
            break;
        case 'f':
            text += '\f';
            break;
        case 'n':
            text += '\n';
            break;
        case 'r':
            text += '\r';
            break;
        case '\\':
        case '/':
        case '"':
            text += escaped;
            break;
        case 'u':
            append_hex(4);
            break;
        case 'x':
            append_hex(2);
            break;
        default:
            break;
        }
    }
    return text;
}

/// Builds the value tree from what the grammar reports, in the order of the text.
template <class Value> class Tree_builder
{
public:
    using String = typename Value::String_type;
    using Object = typename Value::Object;
    using Array = typename Value::Array;

    explicit Tree_builder(Value& root) : m_root(root) {}

    bool is_full() const noexcept { return m_open.size() >= static_cast<std::size_t>(kMaximumDepth); }
    void name(String text) { m_name = std::move(text); }
    void begin(Value container) { m_open.push_back(&add(std::move(container))); }
    void end() { m_open.pop_back(); }

    Value& add(Value value)
    {
        if (m_open.empty())
        {
            return m_root = std::move(value);
        }
        Value& parent = *m_open.back();
        if (parent.type() == array_type)
        {
            return parent.get_array().emplace_back(std::move(value));
        }
        return parent.get_obj()[m_name] = std::move(value);
    }

private:
    Value& m_root;

    /// An array grows only while it is the innermost open one, so no element that is pointed to here moves.
    std::vector<Value*> m_open;
    String m_name;
};

template <class Value> class Reader
{
public:
    using String = typename Value::String_type;
    using Iterator = typename String::const_iterator;

    Reader(const String& text, Value& value) : m_text(text), m_tree(value) { define_grammar(); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    void read_or_throw()
    {
        using namespace boost::spirit::classic;
        try
        {
            parse(m_text.begin(), m_text.end(), m_value | fail("not a value"), space_p);
        }
        catch (const Failure& failure)
        {
            throw_error_position(failure);
        }
    }

private:
    /// What parse() with space_p as its skipper makes of the iterator.
    using Scanner = boost::spirit::classic::scanner<
        Iterator,
        boost::spirit::classic::scanner_policies<boost::spirit::classic::skipper_iteration_policy<>>>;
    using Rule = boost::spirit::classic::rule<Scanner>;

    struct Failure
    {
        Iterator where;
        const char* reason;
    };

    /// Matches nothing, but ends the reading when the grammar has come to it.
    static auto fail(const char* reason)
    {
        return boost::spirit::classic::eps_p[([reason](Iterator first, Iterator) {
            throw Failure{first, reason};
        })];
    }

    void begin(Iterator bracket, Value container)
    {
        if (m_tree.is_full())
        {
            throw Failure{bracket, "nested too deeply"};
        }
        m_tree.begin(std::move(container));
    }

    void define_grammar()
    {
        using namespace boost::spirit::classic;
        const auto add = [this](auto value) { m_tree.add(Value(value)); };
        const auto end = [this](auto) { m_tree.end(); };

        // The actions get the quotes, too: the text lies between them.
        const auto text = [](Iterator first, Iterator last) { return unescape<String>(first + 1, last - 1); };
        const auto quoted = lexeme_d['"' >> *(('\\' >> anychar_p) | (anychar_p - '"' - '\\')) >> '"'];

        m_value =
            quoted[([this, text](Iterator first, Iterator last) { m_tree.add(Value(text(first, last))); })] |
            m_number | m_object | m_array |
            str_p("true")[([this](Iterator, Iterator) { m_tree.add(Value(true)); })] |
            str_p("false")[([this](Iterator, Iterator) { m_tree.add(Value(false)); })] |
            str_p("null")[([this](Iterator, Iterator) { m_tree.add(Value()); })];

        m_number = strict_real_p[add] | int_parser<std::int64_t>()[add] | uint_parser<std::uint64_t>()[add];

        m_object =
            str_p(
                "{")[([this](Iterator first, Iterator) { begin(first, Value(typename Value::Object())); })] >>
            !(m_member >> *(',' >> m_member)) >> (ch_p('}')[end] | fail("not an object"));

        m_member =
            quoted[([this, text](Iterator first, Iterator last) { m_tree.name(text(first, last)); })] >>
            (':' | fail("no colon in pair")) >> (m_value | fail("not a value"));

        m_array =
            str_p(
                "[")[([this](Iterator first, Iterator) { begin(first, Value(typename Value::Array())); })] >>
            !(m_value >> *(',' >> m_value)) >> (ch_p(']')[end] | fail("not an array"));
    }

    [[noreturn]] void throw_error_position(const Failure& failure) const
    {
        using Position =
            boost::spirit::classic::position_iterator<Iterator, boost::spirit::classic::file_position>;
        Position position(m_text.begin(), m_text.end(), "");
        for (Iterator i = m_text.begin(); i != failure.where; ++i)
        {
            ++position;
        }
        throw Error_position{static_cast<unsigned int>(position.get_position().line),
                             static_cast<unsigned int>(position.get_position().column), failure.reason};
    }

    const String& m_text;
    Tree_builder<Value> m_tree;
    Rule m_value;
    Rule m_number;
    Rule m_object;
    Rule m_member;
    Rule m_array;
};
} // namespace json_spirit
