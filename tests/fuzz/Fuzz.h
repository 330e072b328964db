// Common to the fuzz targets: the check of a property, and inputs as UTF-16 text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>

/// The entry point that libFuzzer calls with each input. Always returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace orva::fuzz
{

[[noreturn]] inline void FailProperty(const char* property, const char* file, int line)
{
    std::cerr << file << ':' << line << ": property does not hold: " << property << std::endl;
    std::abort();
}

/// The bytes of an input.
inline std::string Bytes(const std::uint8_t* data, std::size_t size)
{
    return std::string(reinterpret_cast<const char*>(data), size);
}

/// An input as UTF-16 text.
///
/// Read as UTF-8, so that seeds and findings are readable. Three bytes may also encode a lone surrogate, and
/// an invalid byte becomes U+DC00 plus its value, so that every sequence of units has an input. wchar_t has
/// 32 bits here and 16 on Windows; only the lower 16 bits are used. -fshort-wchar is no alternative, because
/// the C and C++ libraries are compiled for 32 bits.
inline std::wstring Units(std::string_view bytes)
{
    std::wstring units;
    const auto byte = [&](std::size_t at) {
        return at < bytes.size() ? static_cast<unsigned>(static_cast<unsigned char>(bytes[at])) : 0U;
    };
    const auto isTail = [&](std::size_t at) { return (byte(at) & 0xC0U) == 0x80U; };
    for (std::size_t at = 0; at < bytes.size();)
    {
        const unsigned first = byte(at);
        unsigned code = first;
        std::size_t length = 1;
        if ((first & 0xE0U) == 0xC0U && isTail(at + 1))
        {
            code = (first & 0x1FU) << 6 | (byte(at + 1) & 0x3FU);
            length = 2;
        }
        else if ((first & 0xF0U) == 0xE0U && isTail(at + 1) && isTail(at + 2))
        {
            code = (first & 0x0FU) << 12 | (byte(at + 1) & 0x3FU) << 6 | (byte(at + 2) & 0x3FU);
            length = 3;
        }
        else if ((first & 0xF8U) == 0xF0U && isTail(at + 1) && isTail(at + 2) && isTail(at + 3))
        {
            code = (first & 0x07U) << 18 | (byte(at + 1) & 0x3FU) << 12 | (byte(at + 2) & 0x3FU) << 6 |
                   (byte(at + 3) & 0x3FU);
            length = 4;
        }
        else if (first >= 0x80U)
        {
            code = 0xDC00U + first;
        }
        at += length;
        if (code > 0xFFFFU)
        {
            const unsigned offset = (code - 0x10000U) & 0xFFFFFU;
            units += static_cast<wchar_t>(0xD800U + (offset >> 10));
            code = 0xDC00U + (offset & 0x3FFU);
        }
        units += static_cast<wchar_t>(code);
    }
    return units;
}

} // namespace orva::fuzz

// Ends the program unless `property` holds; libFuzzer then reports the input.
#define ORVA_PROPERTY(property)                                                                              \
    do                                                                                                       \
    {                                                                                                        \
        if (!(property))                                                                                     \
            orva::fuzz::FailProperty(#property, __FILE__, __LINE__);                                         \
    } while (false)
