// Download links with hostile last segments, and folders planted beforehand: whatever they are, nothing comes
// to be outside the fresh folder.
#include "ui/DownloadPaths.h"
#include "ui/FileName.h"
#include "ui/StartDownloadDialog.h"

#include "harness/Files.h"
#include "harness/Report.h"
#include "harness/Text.h"
#include "ui/DownloadFixture.h"
#include "ui/HostileNames.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <optional>

namespace orva::test
{
namespace
{

using testing::ElementsAre;
using testing::StartsWith;

constexpr char kTable[] = "file-names";
constexpr char kDownloaded[] = "data";
/// Of other length than what is downloaded, so that an overwritten file shows.
constexpr char kKept[] = "was here before";

/// Every path with its size; a folder's is absent.
using CSnapshot = std::map<std::wstring, std::optional<size_t>>;

/// Runs downloads where everything that could be hit is watched: the temporary folder lies three levels deep
/// in the test's own folder, which holds the current folder too.
class CWatchedDownload : public CDownloadTest
{
protected:
    CWatchedDownload()
    {
        std::wstring folder = Outer();
        for (const wchar_t* const name : {L"a", L"b", L"temp"})
        {
            WriteFileBytes(folder + L"\\evil.bin", kKept);
            folder += std::wstring(L"\\") + name;
            CreateDirectoryW(folder.c_str(), nullptr);
        }
        CreateDirectoryW((Outer() + L"\\current").c_str(), nullptr);
        WriteFileBytes(Outer() + L"\\current\\evil.bin", kKept);
        SetEnvironmentVariableW(L"TMP", Temp().c_str());
        SetEnvironmentVariableW(L"TEMP", Temp().c_str());
        wchar_t current[MAX_PATH];
        m_current.assign(current, GetCurrentDirectoryW(MAX_PATH, current));
        SetCurrentDirectoryW((Outer() + L"\\current").c_str());
    }

    ~CWatchedDownload() override { SetCurrentDirectoryW(m_current.c_str()); }

    const std::wstring& Outer() const { return m_temp.Path(); }
    std::wstring Temp() const { return Outer() + L"\\a\\b\\temp"; }

    CSnapshot TakeSnapshot() const
    {
        CSnapshot snapshot;
        for (const std::wstring& path : ListFolder(Outer()))
        {
            const auto bytes = ReadFileBytes(Outer() + L"\\" + path);
            snapshot[path] = bytes ? std::optional(bytes->size()) : std::nullopt;
        }
        for (const wchar_t* const folder : {L"C:\\", L"C:\\windows\\", L"Z:\\"})
        {
            AddFolder(snapshot, folder);
        }
        return snapshot;
    }

    /// What is new or changed, without the prefix up to the temporary folder.
    static std::vector<std::wstring> Differences(const CSnapshot& before, const CSnapshot& after)
    {
        static const std::wstring temp = L"a\\b\\temp\\";
        std::vector<std::wstring> paths;
        for (const auto& [path, size] : after)
        {
            const auto old = before.find(path);
            if (old == before.end() || old->second != size)
            {
                paths.push_back(path.starts_with(temp) ? path.substr(temp.size()) : L"OUTSIDE " + path);
            }
        }
        for (const auto& [path, size] : before)
        {
            if (!after.contains(path))
            {
                paths.push_back(L"GONE " + path);
            }
        }
        return paths;
    }

    /// Downloads from this link; the user presses the only button of whatever box comes up.
    void Try(const std::wstring& url)
    {
        CGate gate;
        m_server.OnOther(CServerScript().WaitFor(gate).Send(CHttpReply(200, kDownloaded).Bytes()));
        CUserScript user;
        for (int i = 0; i < kMostWindows; ++i)
        {
            user.OnAnyDialog([&](HWND dialog) {
                if (ChildById(dialog, kProgressBar) != nullptr)
                {
                    gate.Open();
                }
                else if (!ClickButton(dialog, IDOK))
                {
                    ClickButton(dialog, IDCANCEL);
                }
            });
        }
        user.Start();
        StartDownloadDialog(CString(url.c_str()), nullptr);
        user.FinishQuietly();
        m_seen = user.Seen();
    }

    std::vector<std::wstring> Shown() const
    {
        std::vector<std::wstring> shown;
        for (const CSeenWindow& seen : m_seen)
        {
            const bool isProgress =
                std::any_of(seen.controls.begin(), seen.controls.end(),
                            [](const auto& control) { return control.first == kProgressBar; });
            shown.push_back(isProgress ? L"(progress)" : seen.text);
        }
        return shown;
    }

    std::string ShownText() const
    {
        std::string text;
        for (const std::wstring& shown : Shown())
        {
            text += (text.empty() ? "" : " / ") + Utf8(shown);
        }
        return text;
    }

    /// AddReportRow writes into the program's own folder.
    void Report(const std::vector<std::string>& cells) const
    {
        SetCurrentDirectoryW(m_current.c_str());
        AddReportRow(kTable, cells);
    }

private:
    static constexpr int kMostWindows = 5;

    static void AddFolder(CSnapshot& snapshot, const std::wstring& folder)
    {
        WIN32_FIND_DATAW data;
        const HANDLE find = FindFirstFileW((folder + L"*").c_str(), &data);
        if (find == INVALID_HANDLE_VALUE)
        {
            return;
        }
        do
        {
            const bool isFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
            snapshot[folder + data.cFileName] =
                isFolder ? std::nullopt : std::optional<size_t>(data.nFileSizeLow);
        } while (FindNextFileW(find, &data));
        FindClose(find);
    }

    std::wstring m_current;
};

class HostileNamesTest : public CWatchedDownload, public testing::WithParamInterface<CHostileName>
{
protected:
    void ExpectFate(const std::vector<std::wstring>& made) const
    {
        const bool isCreated = made.size() == 2;
        switch (GetParam().fate)
        {
        case NameFate::NoName:
            EXPECT_TRUE(made.empty());
            EXPECT_THAT(Shown(), ElementsAre(kUrlNotParsed));
            break;
        case NameFate::Refused:
            EXPECT_FALSE(isCreated);
            EXPECT_THAT(Shown(), ElementsAre(kInvalidName, kUpdateCanceled));
            EXPECT_TRUE(m_server.Requests().empty());
            break;
        case NameFate::RefusedBySystem:
            EXPECT_FALSE(isCreated);
            EXPECT_THAT(Shown(),
                        ElementsAre(StartsWith(L"File could not be created, error ID: "), kUpdateCanceled));
            EXPECT_TRUE(m_server.Requests().empty());
            break;
        case NameFate::Created:
            EXPECT_TRUE(isCreated);
            // The progress, and the shell's own message that it cannot start such a file.
            EXPECT_EQ(m_seen.size(), 2u);
            break;
        case NameFate::CreatedOrRefused:
            EXPECT_TRUE(isCreated || Shown().back() == kUpdateCanceled);
            break;
        }
    }
};

/// Refused names are quick; each download takes a second.
std::vector<CHostileName> NamesOfThisRun()
{
    std::vector<CHostileName> names;
    int created = 0;
    int refused = 0;
    for (CHostileName& name : HostileNames())
    {
        const bool isQuick = name.fate == NameFate::Refused || name.fate == NameFate::NoName ||
                             name.fate == NameFate::RefusedBySystem;
        const int count = isQuick ? refused++ : created++;
        if (count % (isQuick ? Repetitions(3, 1) : Repetitions(9, 1)) == 0)
        {
            names.push_back(std::move(name));
        }
    }
    return names;
}

std::string NumberOf(const testing::TestParamInfo<CHostileName>& info)
{
    return std::to_string(info.param.number);
}

INSTANTIATE_TEST_SUITE_P(Names, HostileNamesTest, testing::ValuesIn(NamesOfThisRun()), NumberOf);

std::string Numbered(int number, const std::string& text)
{
    return (number < 10 ? "0" : "") + std::to_string(number) + " " + text;
}

TEST_P(HostileNamesTest, MakesNothingOutsideTheFreshFolder)
{
    const CSnapshot before = TakeSnapshot();
    Try(m_server.WideUrl("/") + GetParam().segment);
    const std::vector<std::wstring> made = Differences(before, TakeSnapshot());

    std::string madeText;
    if (!made.empty())
    {
        // The fresh folder first, since a folder sorts before what is in it.
        const std::wstring& folder = made[0];
        EXPECT_THAT(folder, StartsWith(L"osc"));
        EXPECT_EQ(folder.size(), 10u) << Utf8(folder);
        EXPECT_LE(made.size(), 2u);
        for (size_t i = 1; i < made.size(); ++i)
        {
            EXPECT_TRUE(made[i].starts_with(folder)) << Utf8(made[i]);
            const std::wstring name = made[i].substr(std::min(folder.size(), made[i].size()));
            EXPECT_EQ(name.find(L'\\'), std::wstring::npos) << Utf8(name);
            madeText += (madeText.empty() ? "file " : ", ") + Printable(name);
        }
    }
    ExpectFate(made);
    const bool isInside = !HasFailure();
    Report({Numbered(GetParam().number, GetParam().kind), Printable(GetParam().segment),
            madeText.empty() ? "refused" : madeText, ShownText(), isInside ? "no" : "YES"});
}

TEST(HostileNameDecisionTest, RefusesOfAllTheseWhatLeadsElsewhere)
{
    for (const CHostileName& name : HostileNames())
    {
        const CString last = GetFileNameFromUrl((L"http://host/" + name.segment).c_str());
        const bool isRefused = name.fate == NameFate::NoName || name.fate == NameFate::Refused;
        EXPECT_EQ(IsPlainFileName(last.GetString()), !isRefused) << Printable(name.segment);
    }
    EXPECT_GE(HostileNames().size(), 40u);
}

/// What stands under the name that the next download would choose.
enum class Planted
{
    Nothing,
    EmptyFolder,
    FolderWithTheFile,
    File,
    LinkToAFolder,
    LinkToNothing,
};

std::vector<Planted> AllPlanted()
{
    return {Planted::Nothing, Planted::EmptyFolder,   Planted::FolderWithTheFile,
            Planted::File,    Planted::LinkToAFolder, Planted::LinkToNothing};
}

const char* NameOf(Planted planted)
{
    switch (planted)
    {
    case Planted::Nothing:
        return "nothing planted";
    case Planted::EmptyFolder:
        return "planted folder";
    case Planted::FolderWithTheFile:
        return "planted folder with a file of the name";
    case Planted::File:
        return "planted file";
    case Planted::LinkToAFolder:
        return "planted link to a folder elsewhere";
    default:
        return "planted link to nothing";
    }
}

void PrintTo(Planted planted, std::ostream* out)
{
    *out << NameOf(planted);
}

/// Makes a symbolic link to a folder, also where the system offers programs no way to: there the host's own
/// tool does it.
bool MakeLink(const std::wstring& link, const std::wstring& target)
{
    using UnixName = char*(__cdecl*)(const wchar_t*);
    const auto unixName = reinterpret_cast<UnixName>(reinterpret_cast<void (*)()>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
    if (unixName == nullptr)
    {
        return CreateSymbolicLinkW(link.c_str(), target.c_str(), SYMBOLIC_LINK_FLAG_DIRECTORY);
    }
    const auto pathOf = [&](const std::wstring& path) {
        char* const name = unixName(path.c_str());
        std::wstring wide = name ? Wide(name) : L"";
        HeapFree(GetProcessHeap(), 0, name);
        return wide;
    };
    std::wstring command = L"Z:\\bin\\ln -s " + pathOf(target) + L" " + pathOf(link);
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process))
    {
        return false;
    }
    // A program of the host has no handles.
    return WaitUntil([&] { return FolderExists(link); });
}

class PlantedNameTest : public CWatchedDownload, public testing::WithParamInterface<Planted>
{
protected:
    /// False if that cannot be planted here.
    bool Plant(const std::wstring& path) const
    {
        const std::wstring target = Outer() + L"\\target";
        switch (GetParam())
        {
        case Planted::Nothing:
            return true;
        case Planted::EmptyFolder:
            return CreateDirectoryW(path.c_str(), nullptr);
        case Planted::FolderWithTheFile:
            CreateDirectoryW(path.c_str(), nullptr);
            WriteFileBytes(path + L"\\setup.bin", kKept);
            return true;
        case Planted::File:
            WriteFileBytes(path, kKept);
            return true;
        case Planted::LinkToAFolder:
            CreateDirectoryW(target.c_str(), nullptr);
            WriteFileBytes(target + L"\\setup.bin", kKept);
            return MakeLink(path, target);
        default:
            CreateDirectoryW(target.c_str(), nullptr);
            return MakeLink(path, target) && RemoveDirectoryW(target.c_str());
        }
    }
};

INSTANTIATE_TEST_SUITE_P(Kinds, PlantedNameTest, testing::ValuesIn(AllPlanted()));

TEST_P(PlantedNameTest, IsNotUsedAndStaysAsItWas)
{
    const std::wstring guess = MakeTempName().GetString();
    if (!Plant(Temp() + L"\\" + guess))
    {
        GTEST_SKIP() << "cannot be planted here";
    }
    const CSnapshot before = TakeSnapshot();
    Try(m_server.WideUrl("/setup.bin"));
    const std::vector<std::wstring> made = Differences(before, TakeSnapshot());

    ASSERT_EQ(made.size(), 2u);
    EXPECT_THAT(made[0], StartsWith(L"osc"));
    EXPECT_EQ(made[1], made[0] + L"setup.bin");
    // Without anything in its way the name is the guessed one: the others did stand in the way.
    EXPECT_EQ(made[0] == guess + L"\\", GetParam() == Planted::Nothing);
    const bool isInside = !HasFailure();
    Report({Numbered(90 + static_cast<int>(GetParam()), NameOf(GetParam())), "setup.bin",
            made[0] == guess + L"\\" ? "file in the guessed folder" : "file in a folder of another name",
            ShownText(), isInside ? "no" : "YES"});
}

} // namespace
} // namespace orva::test
