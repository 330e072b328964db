// CString, a UTF-16 text with value semantics, and its checked Format.
//
// Left out of the original: the ANSI flavour and conversions from char, reference counting and string
// managers, LoadString, Find, Left, Right, Tokenize, Trim, Replace, Insert, Delete, MakeUpper/MakeLower,
// AppendFormat, FormatMessage, BSTR functions. Otherwise than the original:
//  - Format is a template over the types of its arguments; it knows %d, %s and %%.
//  - Lengths outside the text throw CInvalidArgException* in every build.
//  - Between GetBuffer and ReleaseBuffer GetLength counts the whole buffer.
#pragma once

#include <afxver_.h>

#include <concepts>
#include <cwchar>
#include <initializer_list>
#include <string>
#include <type_traits>

class CString;

/// One argument of CString::Format. Borrows the text it is made from.
class CFormatArgument
{
public:
    CFormatArgument(LPCWSTR text) : m_isText(true), m_text(text) {}
    CFormatArgument(const CString& text);
    /// Integers of at most 32 bits and enumerations of such.
    template <typename T>
        requires((std::integral<T> || std::is_enum_v<T>) && sizeof(T) <= sizeof(int))
    CFormatArgument(T value) : m_isText(false), m_integer(static_cast<int>(value))
    {
    }

    bool IsText() const { return m_isText; }
    int GetInteger() const { return m_integer; }
    LPCWSTR GetText() const { return m_text; }

private:
    bool m_isText;
    union {
        int m_integer;
        LPCWSTR m_text;
    };
};

/// What may follow the format text. Other class objects are refused even if they convert to a text: the
/// original would print their address or worse.
template <typename T>
concept CFormattable = std::is_constructible_v<CFormatArgument, const T&> &&
                       (!std::is_class_v<T> || std::derived_from<T, CString>);

/// A text of UTF-16 units. Lengths and indices count units. A null pointer counts as the empty text
/// everywhere. Lack of memory is std::bad_alloc.
class CString
{
public:
    CString() = default;
    CString(LPCWSTR text) : m_text(TextOrEmpty(text)) {}
    /// The first `length` units of `text`, zero units included. `length` below 0, or a null text with another
    /// length than 0, throws CInvalidArgException*.
    CString(LPCWSTR text, int length);

    int GetLength() const { return static_cast<int>(m_text.size()); }
    BOOL IsEmpty() const { return m_text.empty(); }
    void Empty() { m_text.clear(); }

    /// The text with its terminator; valid until the text changes.
    operator LPCWSTR() const { return m_text.c_str(); }
    LPCWSTR GetString() const { return m_text.c_str(); }

    /// The text from `first` on; a position outside of the text is cut to it.
    CString Mid(int first) const;
    /// Index of the last occurrence, or -1.
    int ReverseFind(WCHAR ch) const;
    /// Below 0, 0 or above 0, up to the first zero unit, with upper and lower case alike by the rules of the
    /// C runtime's current locale.
    int CompareNoCase(LPCWSTR other) const;

    CString& operator+=(const CString& text);

    /// Room for at least `minLength` units and a terminator, holding the present text. To be followed by
    /// ReleaseBuffer before anything else is asked of the text.
    LPWSTR GetBuffer(int minLength = 0);
    /// Takes the buffer's first `newLength` units as the text; -1: up to the first zero unit.
    void ReleaseBuffer(int newLength = -1);

    /// Replaces the text by `format` with %d filled in by an integer, %s by a text and %% by a percent sign.
    /// A null pointer prints as (null). The text itself may be among the arguments.
    ///
    /// Texts come from translations, so what does not agree is no error but shows: a placeholder without an
    /// argument, or with one of the other kind (which it uses up), stays in the result as it was written, and
    /// so does every other percent sign. Arguments left over are ignored.
    template <CFormattable... T> void Format(LPCWSTR format, const T&... arguments)
    {
        FormatArguments(format, {CFormatArgument(arguments)...});
    }

    /// Compare up to the first zero unit.
    friend bool operator==(const CString& left, const CString& right) { return left == right.GetString(); }
    friend bool operator==(const CString& left, LPCWSTR right)
    {
        return std::wcscmp(left.GetString(), TextOrEmpty(right)) == 0;
    }

    friend CString operator+(const CString& left, const CString& right);
    friend CString operator+(const CString& left, LPCWSTR right);

private:
    static LPCWSTR TextOrEmpty(LPCWSTR text) { return text != nullptr ? text : L""; }
    void FormatArguments(LPCWSTR format, std::initializer_list<CFormatArgument> arguments);

    std::wstring m_text;
};

inline CFormatArgument::CFormatArgument(const CString& text) : m_isText(true), m_text(text.GetString()) {}
