#include <afxexc_.h>
#include <afxstr.h>

#include <algorithm>
#include <cwchar>

namespace
{

// The original takes a null pointer for an empty text wherever a text is expected.
LPCWSTR OrEmpty(LPCWSTR text)
{
    return text != nullptr ? text : L"";
}

int ToIndex(std::size_t position)
{
    return position == std::wstring_view::npos ? -1 : static_cast<int>(position);
}

} // namespace

CString::CString(LPCWSTR text) : m_text(OrEmpty(text)) {}

CString::CString(LPCWSTR text, int length)
{
    SetString(text, length);
}

CString::CString(WCHAR ch, int repeat)
{
    m_text.Resize(static_cast<std::size_t>(std::max(repeat, 0)));
    std::fill_n(m_text.Units(), m_text.Length(), ch);
}

CString& CString::operator=(LPCWSTR text)
{
    SetString(text);
    return *this;
}

CString& CString::operator=(WCHAR ch)
{
    m_text.Assign({&ch, 1});
    return *this;
}

void CString::SetString(LPCWSTR text, int length)
{
    if (length < 0)
    {
        AfxThrowInvalidArgException();
    }
    if (text == nullptr && length != 0)
    {
        AfxThrowInvalidArgException();
    }
    m_text.Assign({OrEmpty(text), static_cast<std::size_t>(length)});
}

void CString::SetString(LPCWSTR text)
{
    m_text.Assign(OrEmpty(text));
}

WCHAR CString::GetAt(int index) const
{
    if (index < 0 || index > GetLength())
    {
        AfxThrowInvalidArgException();
    }
    return m_text.Units()[index];
}

CString CString::Left(int count) const
{
    return Mid(0, count);
}

CString CString::Mid(int first) const
{
    return Mid(first, GetLength());
}

CString CString::Mid(int first, int count) const
{
    const int length = GetLength();
    const int start = std::clamp(first, 0, length);
    CString part;
    part.m_text.Assign(m_text.Text().substr(static_cast<std::size_t>(start),
                                            static_cast<std::size_t>(std::clamp(count, 0, length - start))));
    return part;
}

CString CString::Right(int count) const
{
    return Mid(GetLength() - std::clamp(count, 0, GetLength()));
}

int CString::Find(LPCWSTR what, int start) const
{
    if (what == nullptr || start < 0 || start > GetLength())
    {
        return -1;
    }
    return ToIndex(m_text.Text().find(what, static_cast<std::size_t>(start)));
}

int CString::Find(WCHAR ch, int start) const
{
    if (start < 0 || start >= GetLength())
    {
        return -1;
    }
    return ToIndex(m_text.Text().find(ch, static_cast<std::size_t>(start)));
}

int CString::ReverseFind(WCHAR ch) const
{
    return ToIndex(m_text.Text().rfind(ch));
}

int CString::Compare(LPCWSTR other) const
{
    return std::wcscmp(m_text.Units(), OrEmpty(other));
}

int CString::CompareNoCase(LPCWSTR other) const
{
    return _wcsicmp(m_text.Units(), OrEmpty(other));
}

CString& CString::operator+=(const CString& text)
{
    m_text.Append(text.m_text.Text());
    return *this;
}

CString& CString::operator+=(LPCWSTR text)
{
    m_text.Append(OrEmpty(text));
    return *this;
}

CString& CString::operator+=(WCHAR ch)
{
    m_text.Append({&ch, 1});
    return *this;
}

LPWSTR CString::GetBuffer(int minLength)
{
    if (minLength > GetLength())
    {
        m_text.Resize(static_cast<std::size_t>(minLength));
    }
    return m_text.Units();
}

void CString::ReleaseBuffer(int newLength)
{
    if (newLength < -1 || newLength > GetLength())
    {
        AfxThrowInvalidArgException();
    }
    m_text.Resize(newLength == -1 ? std::wcslen(m_text.Units()) : static_cast<std::size_t>(newLength));
}

CString operator+(const CString& left, const CString& right)
{
    CString sum = left;
    sum += right;
    return sum;
}

CString operator+(const CString& left, LPCWSTR right)
{
    CString sum = left;
    sum += right;
    return sum;
}

CString operator+(LPCWSTR left, const CString& right)
{
    CString sum = left;
    sum += right;
    return sum;
}

CString operator+(const CString& left, WCHAR right)
{
    CString sum = left;
    sum += right;
    return sum;
}

CString operator+(WCHAR left, const CString& right)
{
    CString sum(left);
    sum += right;
    return sum;
}
