#include <afxexc_.h>
#include <afxstr.h>

#include <algorithm>
#include <cwchar>

CString::CString(LPCWSTR text, int length)
{
    if (length < 0 || (text == nullptr && length != 0))
    {
        AfxThrowInvalidArgException();
    }
    m_text.assign(TextOrEmpty(text), static_cast<std::size_t>(length));
}

CString CString::Mid(int first) const
{
    CString part;
    part.m_text = m_text.substr(static_cast<std::size_t>(std::clamp(first, 0, GetLength())));
    return part;
}

int CString::ReverseFind(WCHAR ch) const
{
    const std::size_t found = m_text.rfind(ch);
    return found == std::wstring::npos ? -1 : static_cast<int>(found);
}

int CString::CompareNoCase(LPCWSTR other) const
{
    return _wcsicmp(m_text.c_str(), TextOrEmpty(other));
}

CString& CString::operator+=(const CString& text)
{
    m_text += text.m_text;
    return *this;
}

LPWSTR CString::GetBuffer(int minLength)
{
    if (minLength > GetLength())
    {
        m_text.resize(static_cast<std::size_t>(minLength));
    }
    return m_text.data();
}

void CString::ReleaseBuffer(int newLength)
{
    if (newLength < -1 || newLength > GetLength())
    {
        AfxThrowInvalidArgException();
    }
    m_text.resize(newLength == -1 ? std::wcslen(m_text.c_str()) : static_cast<std::size_t>(newLength));
}

void CString::FormatArguments(LPCWSTR format, std::initializer_list<CFormatArgument> arguments)
{
    // Made aside first: the text itself may be the format or among the arguments.
    std::wstring result;
    const CFormatArgument* argument = arguments.begin();
    for (LPCWSTR next = TextOrEmpty(format); *next != L'\0'; ++next)
    {
        const WCHAR type = *next == L'%' ? next[1] : L'\0';
        if (type != L'%' && type != L'd' && type != L's')
        {
            result += *next;
            continue;
        }
        ++next;
        const bool isFilled =
            type != L'%' && argument != arguments.end() && argument->IsText() == (type == L's');
        if (type == L'%')
        {
            result += L'%';
        }
        else if (!isFilled)
        {
            result.append(next - 1, 2);
        }
        else if (type == L'd')
        {
            result += std::to_wstring(argument->GetInteger());
        }
        else
        {
            result += argument->GetText() != nullptr ? argument->GetText() : L"(null)";
        }
        if (type != L'%' && argument != arguments.end())
        {
            ++argument;
        }
    }
    m_text = std::move(result);
}

CString operator+(const CString& left, const CString& right)
{
    CString sum = left;
    sum += right;
    return sum;
}

CString operator+(const CString& left, LPCWSTR right)
{
    return left + CString(right);
}
