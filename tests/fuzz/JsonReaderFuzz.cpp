// Fuzzes the JSON reader and the lookups that the update check makes in its result.
#include "fuzz/Fuzz.h"
#include "support/JsonUtilities.h"

#include <json_spirit.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <stdexcept>

namespace
{

using json_spirit::Error_position;
using json_spirit::kMaximumDepth;
using json_spirit::wmObject;
using json_spirit::wmValue;

// The reader does not round reals to the nearest, so one that is printed and read again may differ in its
// last digits. Its range is smaller, too.
constexpr double kSmallestComparedReal = 1e-250;
constexpr double kLargestComparedReal = 1e250;
constexpr double kRealTolerance = 1e-9;

int Depth(const wmValue& value)
{
    int deepest = 0;
    if (value.type() == json_spirit::obj_type)
    {
        for (const auto& [name, member] : value.get_obj())
        {
            deepest = std::max(deepest, Depth(member));
        }
        return deepest + 1;
    }
    if (value.type() == json_spirit::array_type)
    {
        for (const auto& element : value.get_array())
        {
            deepest = std::max(deepest, Depth(element));
        }
        return deepest + 1;
    }
    return 0;
}

std::wstring Wide(const std::string& ascii)
{
    return std::wstring(ascii.begin(), ascii.end());
}

std::wstring PrintText(const std::wstring& text)
{
    std::wstring printed = L"\"";
    for (const wchar_t unit : text)
    {
        if (unit == L'"' || unit == L'\\')
        {
            printed += L'\\';
        }
        printed += unit;
    }
    return printed + L"\"";
}

std::string PrintReal(double real)
{
    // A real that is not compared is printed as another one.
    const double magnitude = std::fabs(real);
    if (!(magnitude >= kSmallestComparedReal && magnitude <= kLargestComparedReal))
    {
        real = 1;
    }
    constexpr int kDigits = 17;
    std::array<char, 64> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), real, std::chars_format::scientific, kDigits);
    return std::string(text.data(), end.ptr);
}

std::wstring Print(const wmValue& value)
{
    std::wstring list;
    switch (value.type())
    {
    case json_spirit::obj_type:
        for (const auto& [name, member] : value.get_obj())
        {
            list += (list.empty() ? L"" : L",") + PrintText(name) + L":" + Print(member);
        }
        return L"{" + list + L"}";
    case json_spirit::array_type:
        for (const auto& element : value.get_array())
        {
            list += (list.empty() ? L"" : L",") + Print(element);
        }
        return L"[" + list + L"]";
    case json_spirit::str_type:
        return PrintText(value.get_str());
    case json_spirit::bool_type:
        return value.get_bool() ? L"true" : L"false";
    case json_spirit::int_type:
        return Wide(value.is_uint64() ? std::to_string(value.get_uint64())
                                      : std::to_string(value.get_int64()));
    case json_spirit::real_type:
        return Wide(PrintReal(value.get_real()));
    case json_spirit::null_type:
        break;
    }
    return L"null";
}

bool IsSameReal(double left, double right)
{
    const double magnitude = std::fabs(left);
    return !(magnitude >= kSmallestComparedReal && magnitude <= kLargestComparedReal) ||
           std::fabs(left - right) <= kRealTolerance * magnitude;
}

bool IsSame(const wmValue& left, const wmValue& right)
{
    if (left.type() != right.type())
    {
        return false;
    }
    switch (left.type())
    {
    case json_spirit::obj_type:
        return std::ranges::equal(left.get_obj(), right.get_obj(), [](const auto& a, const auto& b) {
            return a.first == b.first && IsSame(a.second, b.second);
        });
    case json_spirit::array_type:
        return std::ranges::equal(left.get_array(), right.get_array(),
                                  [](const auto& a, const auto& b) { return IsSame(a, b); });
    case json_spirit::real_type:
        return IsSameReal(left.get_real(), right.get_real());
    default:
        return left == right;
    }
}

// Reads `text` into `value`, which is null before, and checks the properties of every result.
void CheckReading(const std::wstring& text, wmValue& value)
{
    try
    {
        json_spirit::read_or_throw(text, value);
    }
    catch (const Error_position& error)
    {
        ORVA_PROPERTY(error.line_ >= 1 && error.line_ <= text.size() + 1);
        // A tab counts for up to four columns.
        ORVA_PROPERTY(error.column_ >= 1 && error.column_ <= 4 * text.size() + 1);
        ORVA_PROPERTY(!error.reason_.empty());
        ORVA_PROPERTY(Depth(value) <= kMaximumDepth);
        return;
    }
    ORVA_PROPERTY(Depth(value) <= kMaximumDepth);

    wmValue again;
    json_spirit::read_or_throw(Print(value), again);
    ORVA_PROPERTY(IsSame(value, again));
}

// The lookups of the update check. They may throw type errors only.
void LookUp(const wmValue& root)
{
    try
    {
        const wmObject& entry = FindValue(root.get_obj(), L"x64").get_obj();
        GetStringValue(entry, L"downloadLink");
        FindValue(entry, L"majorVersion").get_int();
        FindValue(entry, L"description").get_obj();
    }
    catch (const std::runtime_error& error)
    {
        ORVA_PROPERTY(std::string(error.what()).starts_with("value type is "));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = orva::fuzz::Bytes(data, size);
    wmValue value;
    CheckReading(orva::fuzz::Units(text), value);
    LookUp(value);
    return 0;
}
