// The value tree of wide texts (wmValue), with objects that are maps.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace json_spirit
{
/// The numbers appear in the text of the type error.
enum Value_type
{
    obj_type,
    array_type,
    str_type,
    bool_type,
    int_type,
    real_type,
    null_type
};

/// Owns a value on the heap and copies it along, so that a value can hold objects and arrays of its own kind.
template <class T> class Value_box
{
public:
    explicit Value_box(T value) : m_value(std::make_unique<T>(std::move(value))) {}
    Value_box(const Value_box& other) : m_value(std::make_unique<T>(*other.m_value)) {}
    Value_box(Value_box&& other) noexcept = default;
    Value_box& operator=(const Value_box& other)
    {
        if (this != &other)
        {
            m_value = std::make_unique<T>(*other.m_value);
        }
        return *this;
    }
    Value_box& operator=(Value_box&& other) noexcept = default;
    ~Value_box() = default;

    T& operator*() noexcept { return *m_value; }
    const T& operator*() const noexcept { return *m_value; }

    friend bool operator==(const Value_box& left, const Value_box& right) { return *left == *right; }

private:
    std::unique_ptr<T> m_value;
};

/// One JSON value. An accessor of another type than the value's throws std::runtime_error with the text
/// "value type is F not E", the numbers of the found and the expected Value_type.
template <class Config> class Value_impl
{
public:
    using Config_type = Config;
    using String_type = typename Config::String_type;
    using Object = typename Config::Object_type;
    using Array = typename Config::Array_type;
    using Const_str_ptr = const typename String_type::value_type*;

    // The null value.
    Value_impl() = default;
    Value_impl(Const_str_ptr value) : m_value(String_type(value)) {}
    Value_impl(const String_type& value) : m_value(value) {}
    Value_impl(const Object& value) : m_value(Value_box<Object>(value)) {}
    Value_impl(const Array& value) : m_value(Value_box<Array>(value)) {}
    Value_impl(bool value) : m_value(value) {}
    Value_impl(int value) : m_value(std::int64_t{value}) {}
    Value_impl(std::int64_t value) : m_value(value) {}
    Value_impl(std::uint64_t value) : m_value(value) {}
    Value_impl(double value) : m_value(value) {}

    Value_type type() const noexcept
    {
        constexpr Value_type kTypes[] = {null_type, obj_type, array_type, str_type,
                                         bool_type, int_type, int_type,   real_type};
        return kTypes[m_value.index()];
    }

    /// True if the value is an integer beyond the signed 64-bit range.
    bool is_uint64() const noexcept { return std::holds_alternative<std::uint64_t>(m_value); }
    bool is_null() const noexcept { return type() == null_type; }

    const String_type& get_str() const { return check(str_type), std::get<String_type>(m_value); }
    const Object& get_obj() const { return check(obj_type), *std::get<Value_box<Object>>(m_value); }
    Object& get_obj() { return check(obj_type), *std::get<Value_box<Object>>(m_value); }
    const Array& get_array() const { return check(array_type), *std::get<Value_box<Array>>(m_value); }
    Array& get_array() { return check(array_type), *std::get<Value_box<Array>>(m_value); }
    bool get_bool() const { return check(bool_type), std::get<bool>(m_value); }
    double get_real() const { return check(real_type), std::get<double>(m_value); }

    /// The low 32 bits of the integer.
    int get_int() const { return static_cast<int>(get_int64()); }
    std::int64_t get_int64() const { return static_cast<std::int64_t>(get_uint64()); }
    std::uint64_t get_uint64() const
    {
        check(int_type);
        return is_uint64() ? std::get<std::uint64_t>(m_value)
                           : static_cast<std::uint64_t>(std::get<std::int64_t>(m_value));
    }

    /// By type and content; an integer beyond the signed range differs from every other one.
    friend bool operator==(const Value_impl& left, const Value_impl& right)
    {
        return left.m_value == right.m_value;
    }

private:
    void check(Value_type expected) const
    {
        if (type() != expected)
        {
            throw std::runtime_error("value type is " + std::to_string(type()) + " not " +
                                     std::to_string(expected));
        }
    }

    std::variant<std::monostate, Value_box<Object>, Value_box<Array>, String_type, bool, std::int64_t,
                 std::uint64_t, double>
        m_value;
};

/// The kind of value whose objects are maps.
template <class String> struct Config_map
{
    using String_type = String;
    using Value_type = Value_impl<Config_map>;
    using Object_type = std::map<String, Value_type>;
    using Array_type = std::vector<Value_type>;
};

using wmConfig = Config_map<std::wstring>;
using wmValue = wmConfig::Value_type;
using wmObject = wmConfig::Object_type;
using wmArray = wmConfig::Array_type;
} // namespace json_spirit
