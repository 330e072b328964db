// A temporary folder that is removed with its content when the test ends.
#pragma once

#include <string>

namespace orva::test
{

/// A fresh empty folder under the user's temporary folder. Throws std::runtime_error if it cannot be made.
class CTempFolder
{
public:
    CTempFolder();
    ~CTempFolder();
    CTempFolder(const CTempFolder&) = delete;
    CTempFolder& operator=(const CTempFolder&) = delete;

    /// Without a final backslash.
    const std::wstring& Path() const { return m_path; }
    /// The path of a file in the folder.
    std::wstring File(const std::wstring& name) const { return m_path + L"\\" + name; }

private:
    std::wstring m_path;
};

/// During its lifetime TEMP and TMP of this process and its children name a fresh folder, so that a test can
/// list exactly what was created in the temporary folder.
class CPrivateTemp
{
public:
    CPrivateTemp();
    ~CPrivateTemp();
    CPrivateTemp(const CPrivateTemp&) = delete;
    CPrivateTemp& operator=(const CPrivateTemp&) = delete;

    const std::wstring& Path() const { return m_folder.Path(); }

private:
    CTempFolder m_folder;
    std::wstring m_temp;
    std::wstring m_tmp;
};

} // namespace orva::test
