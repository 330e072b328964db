// Where a CString keeps its text.
//
// Not of the original, which shares allocated texts and counts references: here a text that is short lies in
// the object itself.
#pragma once

#include <cstddef>
#include <string_view>

/// UTF-16 units with a terminator behind them. A text of up to kShortText units, as most texts that are shown
/// to a user are, needs no memory of its own: getting and returning that takes longer than finding and
/// copying such a text.
class CTextBuffer
{
public:
    static constexpr std::size_t kShortText = 127;

    // cppcheck-suppress uninitMemberVar
    CTextBuffer() noexcept { *m_units = L'\0'; }
    // cppcheck-suppress uninitMemberVar
    explicit CTextBuffer(std::wstring_view text) : CTextBuffer() { Assign(text); }
    // cppcheck-suppress uninitMemberVar
    CTextBuffer(const CTextBuffer& other) : CTextBuffer(other.Text()) {}
    CTextBuffer(CTextBuffer&& other) noexcept : CTextBuffer() { Take(other); }
    // cppcheck-suppress operatorEqVarError
    CTextBuffer& operator=(const CTextBuffer& other)
    {
        if (this != &other)
        {
            Assign(other.Text());
        }
        return *this;
    }
    CTextBuffer& operator=(CTextBuffer&& other) noexcept;
    ~CTextBuffer() { Free(); }

    const wchar_t* Units() const noexcept { return m_units; }
    wchar_t* Units() noexcept { return m_units; }
    std::size_t Length() const noexcept { return m_length; }
    std::wstring_view Text() const noexcept { return {m_units, m_length}; }

    /// `text` may be part of this text. Lack of memory is std::bad_alloc and leaves the text as it was.
    void Assign(std::wstring_view text);
    void Append(std::wstring_view text);
    /// Units that are added are zero.
    void Resize(std::size_t length);

private:
    bool IsShort() const noexcept { return m_units == m_short; }
    void Free() noexcept;
    void Take(CTextBuffer& other) noexcept;
    wchar_t* Replacement(std::size_t length, std::size_t& capacity) const;
    void Replace(wchar_t* units, std::size_t capacity) noexcept;
    void Terminate(std::size_t length) noexcept;

    wchar_t* m_units = m_short;
    std::size_t m_length = 0;
    std::size_t m_capacity = kShortText;
    /// Written as far as the text goes. The rest is nobody's to read, and clearing it would take longer than
    /// most copies: hence what cppcheck is told above.
    wchar_t m_short[kShortText + 1];
};
