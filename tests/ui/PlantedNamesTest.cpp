// Folders, files and links planted under the name that the next download would choose: none is used.
#include "harness/Files.h"
#include "harness/Text.h"
#include "harness/Waiting.h"
#include "ui/DownloadPaths.h"
#include "ui/WatchedDownload.h"

#include <gmock/gmock.h>

#include <ostream>
#include <string>
#include <vector>

namespace orva::test
{
namespace
{

using testing::StartsWith;

// The number of the first row, after those of the hostile names in the same table.
constexpr int kFirstNumber = 90;

// What exists under the name that the next download would choose.
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

// Makes a symbolic link to a folder. Wine cannot make one, so there the host's ln does it.
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
        std::wstring wide = name ? Widen(name) : L"";
        HeapFree(GetProcessHeap(), 0, name);
        return wide;
    };
    std::wstring command = L"Z:\\bin\\ln -s " + pathOf(target) + L" " + pathOf(link);
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process))
    {
        return false;
    }
    // Wine gives no handle of a host program to wait for.
    return WaitUntil([&] { return FolderExists(link); });
}

class PlantedNamesTest : public CWatchedDownload, public testing::WithParamInterface<Planted>
{
protected:
    // Returns false if it cannot be planted on this system.
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

INSTANTIATE_TEST_SUITE_P(Kinds, PlantedNamesTest, testing::ValuesIn(AllPlanted()));

TEST_P(PlantedNamesTest, IsNotUsedAndStaysAsItWas)
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
    // With nothing planted the guessed name is used, so in the other cases the planted object was avoided.
    EXPECT_EQ(made[0] == guess + L"\\", GetParam() == Planted::Nothing);
    const bool isInside = !HasFailure();
    Report(kFirstNumber + static_cast<int>(GetParam()), NameOf(GetParam()), "setup.bin",
           made[0] == guess + L"\\" ? "file in the guessed folder" : "file in a folder of another name",
           isInside);
}

} // namespace
} // namespace orva::test
