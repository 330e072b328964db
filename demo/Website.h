// What the demonstration's web server publishes: the update-information file and the installer.
#pragma once

#include <string>

namespace orva::demo
{

inline constexpr char kUpdateInfoPath[] = "/downloads/outlook/UpdateInfo.txt";
/// Large enough to see the progress, in bytes.
inline constexpr size_t kInstallerSize = 4 * 1024 * 1024;

/// The server's folder of files. Functions throw std::runtime_error when a file cannot be written.
class CWebsite
{
public:
    /// `server` is the web server's folder, in which `www` is emptied.
    explicit CWebsite(const std::wstring& server);

    /// Publishes this text as the update-information file.
    void PublishText(const std::string& text) const;
    /// Publishes nothing: the file is missing.
    void PublishNothing() const;
    /// Publishes this version; `installer` is the end of its link, a file's name.
    void PublishVersion(const std::string& version, const std::string& installer) const;
    /// Puts the demonstration's installer there under this name.
    void AddInstaller(const std::string& name);
    /// The bytes of the installer.
    const std::string& Installer() const { return m_installer; }

private:
    std::wstring m_folder;
    std::string m_installer;
};

} // namespace orva::demo
