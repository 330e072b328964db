// A folder of a test's own that goes with all it holds when the test ends.
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
    /// The path of something in the folder.
    std::wstring File(const std::wstring& name) const { return m_path + L"\\" + name; }

private:
    std::wstring m_path;
};

/// For its lifetime TEMP and TMP of this process, and of what it starts, name a fresh folder of the test's
/// own, so that a test can list what was created "under the temporary folder" and nothing else.
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
