#include "demo/Settings.h"

#include "OrvaVersion.h"
#include "harness/Text.h"

#include <array>
#include <map>
#include <sstream>

namespace orva::demo
{

namespace
{

bool IsNewerThanInstalled(const std::string& version)
{
    std::array<int, 3> parts{};
    char dot = '.';
    std::istringstream(version) >> parts[0] >> dot >> parts[1] >> dot >> parts[2];
    return parts > std::array<int, 3>{ORVA_VERSION_MAJOR, ORVA_VERSION_MINOR, ORVA_VERSION_BUILD};
}

} // namespace

CSettings ReadSettings(int count, wchar_t** arguments)
{
    std::map<std::wstring, std::wstring> options;
    for (int i = 1; i + 1 < count; i += 2)
    {
        options[arguments[i]] = arguments[i + 1];
    }
    CSettings settings;
    settings.office = std::stoi(options.at(L"--office"));
    settings.language = test::Utf8(options.at(L"--lang"));
    settings.answer = test::Utf8(options.at(L"--answer"));
    settings.isForPerson = options.at(L"--play") == L"show";
    settings.isGallery = options.at(L"--play") == L"gallery";
    settings.out = options.at(L"--out");
    settings.server = options.at(L"--server");
    settings.port = static_cast<unsigned short>(std::stoi(options.at(L"--port")));
    settings.camera = options.at(L"--camera");
    const std::wstring& publish = options.at(L"--publish");
    if (publish.find(L'\\') != std::wstring::npos)
    {
        settings.file = publish;
        return settings;
    }
    settings.version = publish == L"none" ? ORVA_VERSION : test::Utf8(publish);
    settings.outcome = IsNewerThanInstalled(settings.version) ? Outcome::Offer : Outcome::Silence;
    return settings;
}

} // namespace orva::demo
