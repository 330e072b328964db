#include "publishing/LinkCheck.h"

#include "publishing/Text.h"
#include "ui/DownloadPaths.h"
#include "ui/FileName.h"

#include <afxinet.h>

#include <string_view>

namespace publishing
{
namespace
{

// Beyond it the path in the temporary folder of a user with a long name is longer than Windows allows.
constexpr int kLongestFileName = 180;

struct CService
{
    DWORD type = AFX_INET_SERVICE_UNK;
    bool isParsed = false;
};

CService ServiceOf(const CString& link)
{
    CService service;
    CString server;
    CString object;
    INTERNET_PORT port = INTERNET_INVALID_PORT_NUMBER;
    service.isParsed = AfxParseURL(link, service.type, server, object, port) != FALSE;
    return service;
}

// The add-in leaves the second kind of characters to the file system.
bool IsFileName(const CString& name)
{
    const std::wstring_view text = name.GetString();
    return IsPlainFileName(text) && text.find_first_of(L"*?\"<>|") == std::wstring_view::npos;
}

bool EndsWithExe(const CString& name)
{
    constexpr int kLength = 4;
    return name.GetLength() > kLength && name.Mid(name.GetLength() - kLength).CompareNoCase(L".exe") == 0;
}

} // namespace

LinkFate FateOf(const std::wstring& link)
{
    const CString url = link.c_str();
    const CString name = GetFileNameFromUrl(url);
    if (name.IsEmpty())
    {
        return LinkFate::NoFileName;
    }
    const CService service = ServiceOf(url);
    if (!service.isParsed)
    {
        return LinkFate::NotParsed;
    }
    if (!IsFileName(name))
    {
        return LinkFate::BadFileName;
    }
    if (name.GetLength() > kLongestFileName)
    {
        return LinkFate::NameTooLong;
    }
    return service.type == AFX_INET_SERVICE_HTTP ? LinkFate::Downloaded : LinkFate::NotHttp;
}

void CheckLink(const std::wstring& link, const std::wstring& path, CFindings& findings)
{
    const CString name = GetFileNameFromUrl(link.c_str());
    const std::wstring quoted = Quoted(name.GetString());
    switch (FateOf(link))
    {
    case LinkFate::NoFileName:
        findings.Error("link-without-name", path, L"has no file name behind its last \"/\": " + Quoted(link));
        return;
    case LinkFate::NotParsed:
        findings.Error("link-not-parsed", path, L"is no URL: " + Quoted(link));
        return;
    case LinkFate::BadFileName:
        findings.Error("link-file-name", path, L"ends with what cannot be the name of a file: " + quoted);
        return;
    case LinkFate::NameTooLong:
        findings.Error("link-name-too-long", path,
                       L"ends with a file name of " + std::to_wstring(name.GetLength()) +
                           L" characters, with which the path is too long for users with a long name");
        return;
    case LinkFate::NotHttp:
        findings.Error("link-not-http", path, L"does not begin with \"http://\": " + Quoted(link));
        return;
    case LinkFate::Downloaded:
        break;
    }
    if (!EndsWithExe(name))
    {
        findings.Error("link-not-exe", path,
                       L"does not end with \".exe\", so that Windows does not start the file: " + quoted);
    }
}

} // namespace publishing
