// CString, a UTF-16 text with value semantics, and its checked Format.
//
// Left out of the original: the ANSI flavour and conversions from char, reference counting and string
// managers, LoadString, Tokenize, Trim, Replace, Insert, Delete, MakeUpper/MakeLower, AppendFormat,
// FormatMessage, BSTR functions. Otherwise than the original:
//  - Format is a template over the types of its arguments; see there for what it accepts and what it does
//    when the text and the arguments do not agree. Floating-point numbers and pointers cannot be formatted.
//  - An index outside the text throws CInvalidArgException* in every build.
//  - Between GetBuffer and ReleaseBuffer GetLength counts the whole buffer.
#pragma once

#include "afxstrbuffer_.h"

#include <afxver_.h>

#include <compare>
#include <concepts>
#include <initializer_list>
#include <string>
#include <type_traits>

class CString;

/// One argument of CString::Format together with its kind, so that the kind a placeholder asks for can be
/// compared with it. Borrows the texts it is made from.
class CFormatArgument
{
public:
    enum class Kind
    {
        kInteger,
        kWideText,
        kNarrowText,
    };

    CFormatArgument(LPCWSTR text) : m_kind(Kind::kWideText), m_wideText(text) {}
    CFormatArgument(LPCSTR text) : m_kind(Kind::kNarrowText), m_narrowText(text) {}
    CFormatArgument(const CString& text);
    /// Integers, characters, bool and enumerations; extended to 64 bits by their own sign.
    template <typename T>
        requires std::integral<T> || std::is_enum_v<T>
    CFormatArgument(T value) : m_kind(Kind::kInteger), m_integer(static_cast<long long>(value))
    {
    }

    Kind GetKind() const { return m_kind; }
    long long GetInteger() const { return m_integer; }
    LPCWSTR GetWideText() const { return m_wideText; }
    LPCSTR GetNarrowText() const { return m_narrowText; }

private:
    Kind m_kind;
    union {
        long long m_integer;
        LPCWSTR m_wideText;
        LPCSTR m_narrowText;
    };
};

/// What may follow the format text: integers of any width, enumerations, wide and narrow texts, CString.
/// Other class objects are refused even if they convert to a text: the original would print their address or
/// worse.
template <typename T>
concept CFormattable = std::is_constructible_v<CFormatArgument, const T&> &&
                       (!std::is_class_v<T> || std::derived_from<T, CString>);

/// A text of UTF-16 units. Lengths and indices count units. A null pointer counts as the empty text
/// everywhere. Lack of memory is std::bad_alloc.
class CString
{
public:
    CString() = default;
    CString(LPCWSTR text);
    /// The first `length` units of `text`, zero units included. `length` below 0 throws
    /// CInvalidArgException*.
    CString(LPCWSTR text, int length);
    /// `repeat` times the unit `ch`; none when `repeat` is below 1.
    explicit CString(WCHAR ch, int repeat = 1);

    CString& operator=(LPCWSTR text);
    CString& operator=(WCHAR ch);
    /// Replaces the text by the first `length` units of `text`, which may be part of this text.
    void SetString(LPCWSTR text, int length);
    void SetString(LPCWSTR text);

    int GetLength() const { return static_cast<int>(m_text.Length()); }
    BOOL IsEmpty() const { return m_text.Length() == 0; }
    void Empty() { m_text.Resize(0); }

    /// The text with its terminator; valid until the text changes.
    operator LPCWSTR() const { return m_text.Units(); }
    LPCWSTR GetString() const { return m_text.Units(); }

    /// The unit at `index`; the terminator at GetLength(). Beyond, or below 0: throws CInvalidArgException*.
    WCHAR GetAt(int index) const;
    WCHAR operator[](int index) const { return GetAt(index); }

    /// Parts of the text. Positions and counts outside of it are cut to it; they never fail.
    CString Left(int count) const;
    CString Mid(int first) const;
    CString Mid(int first, int count) const;
    CString Right(int count) const;

    /// Index of the first occurrence at or after `start`, or -1 (also when `start` lies outside the text).
    int Find(LPCWSTR what, int start = 0) const;
    int Find(WCHAR ch, int start = 0) const;
    /// Index of the last occurrence, or -1.
    int ReverseFind(WCHAR ch) const;

    /// Below 0, 0 or above 0, by the units' values; texts are compared up to their first zero unit.
    int Compare(LPCWSTR other) const;
    /// As Compare, with upper and lower case alike by the rules of the C runtime's current locale.
    int CompareNoCase(LPCWSTR other) const;

    CString& operator+=(const CString& text);
    CString& operator+=(LPCWSTR text);
    CString& operator+=(WCHAR ch);

    /// Room for at least `minLength` units and a terminator, holding the present text. To be followed by
    /// ReleaseBuffer before anything else is asked of the text.
    LPWSTR GetBuffer(int minLength = 0);
    /// Takes the buffer's first `newLength` units as the text; -1: up to the first zero unit.
    void ReleaseBuffer(int newLength = -1);

    /// Replaces the text by `format` with its placeholders filled in, as the wide printf of the Microsoft
    /// runtime does: %[flags][width][.precision][size]type with the flags - + 0 # and blank, width and
    /// precision also as *, the sizes h hh l ll w I I32 I64 j t z, and the types d i u o x X c C s S and %%.
    /// %s takes a wide text (a CString as it stands), %S and %hs a narrow one in the ANSI code page; a null
    /// pointer prints as (null). Integers are cut or extended to the size the placeholder names (int when it
    /// names none, long has 32 bits).
    ///
    /// Texts come from translations, so what does not agree is no error but shows: a placeholder without an
    /// argument, with one of the wrong kind (which it uses up), or of a floating-point type stays in the
    /// result as it was written. Arguments left over are ignored. A percent sign before anything else (also
    /// %n) is dropped, and one at the end of the text too. Widths and precisions above 65,535 count as
    /// 65,535.
    ///
    /// The text itself may be among the arguments.
    template <CFormattable... T> void Format(LPCWSTR format, const T&... arguments)
    {
        FormatArguments(format, {CFormatArgument(arguments)...});
    }

    friend bool operator==(const CString& left, const CString& right) { return left.Compare(right) == 0; }
    friend bool operator==(const CString& left, LPCWSTR right) { return left.Compare(right) == 0; }
    friend std::weak_ordering operator<=>(const CString& left, const CString& right)
    {
        return left.Compare(right) <=> 0;
    }
    friend std::weak_ordering operator<=>(const CString& left, LPCWSTR right)
    {
        return left.Compare(right) <=> 0;
    }

    friend CString operator+(const CString& left, const CString& right);
    friend CString operator+(const CString& left, LPCWSTR right);
    friend CString operator+(LPCWSTR left, const CString& right);
    friend CString operator+(const CString& left, WCHAR right);
    friend CString operator+(WCHAR left, const CString& right);

private:
    void FormatArguments(LPCWSTR format, std::initializer_list<CFormatArgument> arguments);

    CTextBuffer m_text;
};

inline CFormatArgument::CFormatArgument(const CString& text)
    : m_kind(Kind::kWideText), m_wideText(text.GetString())
{
}
