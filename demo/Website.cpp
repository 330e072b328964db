#include "demo/Website.h"

#include "OrvaWebHost.h"
#include "harness/Files.h"
#include "harness/Text.h"

#include <algorithm>
#include <stdexcept>

namespace orva::demo
{

namespace
{

constexpr wchar_t kUpdateInfo[] = L"UpdateInfo.txt";

// The words in capitals are filled in.
constexpr char kTemplate[] = R"({
    "x64": {
        "majorVersion": MAJOR,
        "minorVersion": MINOR,
        "buildNumber": BUILD,
        "downloadLink": "http://)" ORVA_WEB_HOST R"(/downloads/outlook/INSTALLER",
        "description": {
            "de": "ORVA Connector VERSION\n\n- Kontakte werden beim Start schneller abgeglichen.\n- Umlaute in Firmennamen werden richtig angezeigt.\n\nBitte schließen Sie Outlook vor der Installation.",
            "es": "ORVA Connector VERSION\n\n- Los contactos se sincronizan más rápido al iniciar.\n- Los nombres de empresa con acentos se muestran correctamente.\n\nCierre Outlook antes de la instalación.",
            "tr": "ORVA Connector VERSION\n\n- Kişiler başlangıçta daha hızlı eşitlenir.\n- Türkçe karakterli şirket adları doğru gösterilir.\n\nLütfen kurulumdan önce Outlook'u kapatın.",
            "default": "ORVA Connector VERSION\n\n- Contacts are brought up to date faster at start-up.\n- Company names with accents are shown correctly.\n\nPlease close Outlook before the installation."
        }
    }
}
)";

// Puts a value where the template names it, everywhere.
void Fill(std::string& text, const std::string& name, const std::string& value)
{
    for (size_t at = text.find(name); at != std::string::npos; at = text.find(name, at + value.size()))
    {
        text.replace(at, name.size(), value);
    }
}

} // namespace

CWebsite::CWebsite(const std::wstring& server) : m_folder(server + L"\\www")
{
    test::RemovePath(m_folder);
    for (const wchar_t* const part : {L"", L"\\downloads", L"\\outlook"})
    {
        m_folder += part;
        CreateDirectoryW(m_folder.c_str(), nullptr);
    }
    m_installer = test::ReadFileBytes(test::BuiltFile(L"DemoInstaller.exe")).value_or("");
    if (m_installer.empty())
    {
        throw std::runtime_error("DemoInstaller.exe cannot be read");
    }
    // Bytes after the image do not matter.
    m_installer.resize(std::max(m_installer.size(), kInstallerSize));
}

void CWebsite::PublishText(const std::string& text) const
{
    test::WriteFileBytes(m_folder + L"\\" + kUpdateInfo, text);
}

void CWebsite::PublishNothing() const
{
    test::RemovePath(m_folder + L"\\" + kUpdateInfo);
}

void CWebsite::PublishVersion(const std::string& version, const std::string& installer) const
{
    const size_t first = version.find('.');
    const size_t second = version.find('.', first + 1);
    std::string text = kTemplate;
    Fill(text, "VERSION", version);
    Fill(text, "MAJOR", version.substr(0, first));
    Fill(text, "MINOR", version.substr(first + 1, second - first - 1));
    Fill(text, "BUILD", version.substr(second + 1));
    Fill(text, "INSTALLER", installer);
    PublishText(text);
}

void CWebsite::AddInstaller(const std::string& name)
{
    test::WriteFileBytes(m_folder + L"\\" + test::Widen(name), m_installer);
}

} // namespace orva::demo
