#include "afxstrbuffer_.h"

#include <algorithm>
#include <utility>

CTextBuffer& CTextBuffer::operator=(CTextBuffer&& other) noexcept
{
    if (this != &other)
    {
        Free();
        Take(other);
    }
    return *this;
}

void CTextBuffer::Assign(std::wstring_view text)
{
    if (text.size() <= m_capacity)
    {
        std::char_traits<wchar_t>::move(m_units, text.data(), text.size());
    }
    else
    {
        std::size_t capacity = 0;
        wchar_t* const units = Replacement(text.size(), capacity);
        std::copy(text.begin(), text.end(), units);
        Replace(units, capacity);
    }
    Terminate(text.size());
}

void CTextBuffer::Append(std::wstring_view text)
{
    const std::size_t length = m_length + text.size();
    if (length <= m_capacity)
    {
        std::char_traits<wchar_t>::move(m_units + m_length, text.data(), text.size());
    }
    else
    {
        std::size_t capacity = 0;
        wchar_t* const units = Replacement(length, capacity);
        std::copy_n(m_units, m_length, units);
        std::copy(text.begin(), text.end(), units + m_length);
        Replace(units, capacity);
    }
    Terminate(length);
}

void CTextBuffer::Resize(std::size_t length)
{
    if (length > m_capacity)
    {
        std::size_t capacity = 0;
        wchar_t* const units = Replacement(length, capacity);
        std::copy_n(m_units, m_length, units);
        Replace(units, capacity);
    }
    if (length > m_length)
    {
        std::fill(m_units + m_length, m_units + length, L'\0');
    }
    Terminate(length);
}

void CTextBuffer::Free() noexcept
{
    if (!IsShort())
    {
        delete[] m_units;
    }
}

// Makes `other`'s text this one's and `other` empty. What was here has been freed.
void CTextBuffer::Take(CTextBuffer& other) noexcept
{
    if (other.IsShort())
    {
        std::copy_n(other.m_short, other.m_length, m_short);
        m_units = m_short;
        m_capacity = kShortText;
    }
    else
    {
        m_units = std::exchange(other.m_units, other.m_short);
        m_capacity = std::exchange(other.m_capacity, kShortText);
    }
    Terminate(other.m_length);
    other.Terminate(0);
}

// Memory for a text of `length` units, and for growing in few steps.
wchar_t* CTextBuffer::Replacement(std::size_t length, std::size_t& capacity) const
{
    capacity = std::max(length, 2 * m_capacity);
    return new wchar_t[capacity + 1];
}

void CTextBuffer::Replace(wchar_t* units, std::size_t capacity) noexcept
{
    Free();
    m_units = units;
    m_capacity = capacity;
}

void CTextBuffer::Terminate(std::size_t length) noexcept
{
    m_length = length;
    m_units[length] = L'\0';
}
