// Downloads in a place where whatever comes to be elsewhere is seen.
#pragma once

#include "ui/DownloadFixture.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orva::test
{

/// The contents of the files that are there before a download: of other length than what is downloaded, so
/// that an overwritten one shows.
inline constexpr char kKept[] = "was here before";

/// Every path with its size; a folder's is absent.
using CSnapshot = std::map<std::wstring, std::optional<size_t>>;

/// Runs downloads where everything that could be hit is watched: the temporary folder lies three levels deep
/// in the test's own folder, which holds the current folder too.
class CWatchedDownload : public CDownloadTest
{
protected:
    CWatchedDownload();
    ~CWatchedDownload() override;

    const std::wstring& Outer() const { return m_temp.Path(); }
    std::wstring Temp() const { return Outer() + L"\\a\\b\\temp"; }

    CSnapshot TakeSnapshot() const;
    /// What is new or changed, without the prefix up to the temporary folder.
    static std::vector<std::wstring> Differences(const CSnapshot& before, const CSnapshot& after);

    /// Downloads from this link; the user presses the only button of whatever box comes up.
    void Try(const std::wstring& url);
    /// What the user saw, a window each: a box's text, or "(progress)" for the download's dialog.
    std::vector<std::wstring> Shown() const;

    /// Reports a download as the row `number` of the table of file names: what the name tries, the link's
    /// last segment, what was made of it, and what the user saw.
    void Report(int number, const std::string& kind, const std::string& segment, const std::string& made,
                bool isInside) const;

private:
    std::wstring m_current;
};

} // namespace orva::test
