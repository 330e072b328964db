#include "publishing/CheckOptions.h"

#include "publishing/Text.h"

#include <array>
#include <cwchar>
#include <limits>
#include <string_view>

namespace publishing
{
namespace
{

// Three numbers without sign or leading zeros, with points between them.
std::optional<PublishedVersion> ParseVersion(std::wstring_view text)
{
    std::array<int, 3> numbers{};
    for (std::size_t i = 0; i < numbers.size(); ++i)
    {
        const std::size_t length = std::min(text.find_first_not_of(L"0123456789"), text.size());
        const std::wstring digits(text.substr(0, length));
        constexpr std::size_t kMaximumDigits = 10;
        if (digits.empty() || digits.size() > kMaximumDigits || (digits.size() > 1 && digits[0] == L'0'))
        {
            return std::nullopt;
        }
        const long long number = std::stoll(digits);
        if (number > std::numeric_limits<int>::max())
        {
            return std::nullopt;
        }
        numbers[i] = static_cast<int>(number);
        text.remove_prefix(length);
        if (i + 1 < numbers.size())
        {
            if (!text.starts_with(L'.'))
            {
                return std::nullopt;
            }
            text.remove_prefix(1);
        }
    }
    return text.empty() ? std::optional<PublishedVersion>({numbers[0], numbers[1], numbers[2]})
                        : std::nullopt;
}

bool IsHelp(const std::wstring& argument)
{
    return argument == L"--help" || argument == L"-h";
}

// Takes the options one by one.
class CParser
{
public:
    explicit CParser(const std::vector<std::wstring>& arguments) : m_arguments(arguments) {}

    CCheckOptions Parse()
    {
        while (m_next < m_arguments.size())
        {
            Take(m_arguments[m_next++]);
        }
        if (m_options.source.empty() && !m_options.isHelp)
        {
            throw CUsageError("check needs a FILE or URL");
        }
        return m_options;
    }

private:
    void Take(const std::wstring& argument)
    {
        if (IsHelp(argument))
        {
            m_options.isHelp = true;
        }
        else if (argument == L"--json")
        {
            m_options.isJson = true;
        }
        else if (argument == L"--installer")
        {
            m_options.installer = Value(argument);
        }
        else if (argument == L"--public-key")
        {
            m_options.publicKey = Value(argument);
        }
        else if (argument == L"--installed")
        {
            const std::wstring version = Value(argument);
            m_options.installed = ParseVersion(version);
            if (!m_options.installed)
            {
                throw CUsageError("--installed is followed by three numbers, X.Y.Z, not " + Utf8(version));
            }
        }
        else if (argument.starts_with(L'-') || argument.empty() || !m_options.source.empty())
        {
            throw CUsageError("check does not know the argument " + Utf8(Quoted(argument)));
        }
        else if (argument.starts_with(L"https:"))
        {
            throw CUsageError("add-ins ask by http only, so give the URL as they do: http" +
                              Utf8(argument.substr(std::size(L"https") - 1)));
        }
        else
        {
            m_options.source = argument;
        }
    }

    const std::wstring& Value(const std::wstring& option)
    {
        if (m_next >= m_arguments.size() || m_arguments[m_next].empty())
        {
            throw CUsageError(Utf8(option) + " has to be followed by a value");
        }
        return m_arguments[m_next++];
    }

    const std::vector<std::wstring>& m_arguments;
    std::size_t m_next = 0;
    CCheckOptions m_options;
};

} // namespace

CCheckOptions ParseOptions(const std::vector<std::wstring>& arguments)
{
    if (arguments.empty())
    {
        throw CUsageError("the command is missing");
    }
    if (IsHelp(arguments[0]))
    {
        return {.source = {}, .isHelp = true};
    }
    if (arguments[0] != L"check")
    {
        throw CUsageError("there is no command " + Utf8(Quoted(arguments[0])));
    }
    return CParser({arguments.begin() + 1, arguments.end()}).Parse();
}

bool IsUrl(const std::wstring& source)
{
    return source.find(L"://") != std::wstring::npos;
}

const wchar_t* HelpText()
{
    return LR"(OrvaPublish.exe check FILE|URL [OPTIONS]

Reads an update-information file as the add-in does, tells what each user will see, and looks for errors.

  FILE                 the file on this machine
  URL                  the file as the web server sends it; its installer is downloaded and checked as well

  --installer FILE     the installer on this machine: it has to be a program for Windows of the published version; with a
                       URL the downloaded one has to be the same
  --public-key FILE    the publisher's key (PEM, P-256): the installer has to be signed with it
  --installed X.Y.Z    a version that users have: the published one has to be newer, and what these users see is told too
  --json               the same for scripts
  --help               this text

Exit status: 0 no errors (warnings are allowed), 1 errors, 2 wrong usage or something cannot be read.
)";
}

} // namespace publishing
