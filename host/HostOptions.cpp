#include "host/HostOptions.h"

#include <cwchar>
#include <iterator>
#include <utility>

namespace orva::host
{
namespace
{

struct Switch
{
    const wchar_t* name;
    bool HostOptions::*member;
};

constexpr Switch kSwitches[] = {
    {L"--no-explorer", &HostOptions::noExplorer},
    {L"--fast-shutdown", &HostOptions::fastShutdown},
    {L"--backstage", &HostOptions::backstage},
    {L"--empty-menu-bar", &HostOptions::emptyMenuBar},
    {L"--last-control-not-popup", &HostOptions::lastControlNotPopup},
    {L"--quit-after-startup", &HostOptions::quitAfterStartup},
};

constexpr std::pair<const wchar_t*, ConnectMode> kModes[] = {
    {L"after-startup", ConnectMode::AfterStartup},
    {L"startup", ConnectMode::Startup},
    {L"external", ConnectMode::External},
    {L"command-line", ConnectMode::CommandLine},
};

// The first release of each version, as shown in its About window.
constexpr std::pair<const wchar_t*, const wchar_t*> kVersions[] = {
    {L"12", L"12.0.6423.1000"},
    {L"14", L"14.0.4760.1000"},
    {L"15", L"15.0.4420.1017"},
};

bool SetSwitch(const std::wstring& argument, HostOptions& options)
{
    for (const Switch& item : kSwitches)
    {
        if (argument == item.name)
        {
            options.*item.member = true;
            return true;
        }
    }
    return false;
}

bool SetMode(const std::wstring& value, HostOptions& options)
{
    for (const auto& [name, mode] : kModes)
    {
        if (value == name)
        {
            options.mode = mode;
            return true;
        }
    }
    return false;
}

} // namespace

bool ParseOptions(const std::vector<std::wstring>& arguments, HostOptions& options, std::wstring& error)
{
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument)
    {
        if (SetSwitch(*argument, options))
        {
            continue;
        }
        if (*argument != L"--office" && *argument != L"--mode" && *argument != L"--trace")
        {
            error = L"unknown option: " + *argument;
            return false;
        }
        const std::wstring& name = *argument;
        if (std::next(argument) == arguments.end())
        {
            error = name + L" needs a value";
            return false;
        }
        const std::wstring& value = *++argument;
        if (name == L"--office")
        {
            options.version = ExpandVersion(value);
        }
        else if (name == L"--trace")
        {
            options.traceFile = value;
        }
        else if (!SetMode(value, options))
        {
            error = L"--mode is one of startup, after-startup, external, command-line, not " + value;
            return false;
        }
    }
    return true;
}

std::wstring ExpandVersion(const std::wstring& text)
{
    for (const auto& [shortForm, version] : kVersions)
    {
        if (text == shortForm)
        {
            return version;
        }
    }
    return text;
}

int MajorVersion(const std::wstring& version)
{
    // wcstol alone would skip blanks and take a sign.
    const bool isNumber = !version.empty() && version[0] >= L'0' && version[0] <= L'9';
    return isNumber ? static_cast<int>(std::wcstol(version.c_str(), nullptr, 10)) : 0;
}

} // namespace orva::host
