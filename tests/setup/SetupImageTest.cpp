// What Windows reads of the setup file and the uninstaller before it starts them: version resource and
// manifest.
#include "harness/Text.h"
#include "setup/SetupFixture.h"

#include <winver.h>

namespace orva::test
{
namespace
{

using testing::HasSubstr;

// A text of the version resource in English; empty if it is missing.
std::wstring VersionText(const std::wstring& file, const std::wstring& name)
{
    std::vector<BYTE> info(GetFileVersionInfoSizeW(file.c_str(), nullptr));
    void* text = nullptr;
    UINT length = 0;
    if (info.empty() || !GetFileVersionInfoW(file.c_str(), 0, static_cast<DWORD>(info.size()), info.data()) ||
        !VerQueryValueW(info.data(), (L"\\StringFileInfo\\040904e4\\" + name).c_str(), &text, &length))
    {
        return {};
    }
    return static_cast<const wchar_t*>(text);
}

std::string Manifest(const std::wstring& file)
{
    const HMODULE module = LoadLibraryExW(file.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(1), RT_MANIFEST);
    std::string text;
    if (found != nullptr)
    {
        text.assign(static_cast<const char*>(LockResource(LoadResource(module, found))),
                    SizeofResource(module, found));
    }
    FreeLibrary(module);
    return text;
}

class SetupImageTest : public SetupFixture
{
protected:
    static void ExpectImage(const std::wstring& file)
    {
        SCOPED_TRACE(Utf8(file));
        EXPECT_EQ(VersionText(file, L"CompanyName"), L"ORVA");
        EXPECT_EQ(VersionText(file, L"ProductName"), L"ORVA Connector");
        EXPECT_EQ(VersionText(file, L"FileDescription"), L"ORVA Connector Setup");
        EXPECT_EQ(VersionText(file, L"FileVersion"), OldVersion().version);
        EXPECT_EQ(VersionText(file, L"ProductVersion"), OldVersion().version);
        EXPECT_EQ(VersionText(file, L"LegalCopyright"), L"© 2011 ORVA. All rights reserved.");
        const std::string manifest = Manifest(file);
        EXPECT_THAT(manifest, HasSubstr("level=\"requireAdministrator\""));
        EXPECT_THAT(manifest, HasSubstr(">true</dpiAware>"));
        // Windows Vista and Windows 10, the first and the last that there are ids for.
        EXPECT_THAT(manifest, HasSubstr("{e2011457-1546-43c5-a5fe-008deee3d3f0}"));
        EXPECT_THAT(manifest, HasSubstr("{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}"));
    }
};

TEST_F(SetupImageTest, SetupAndUninstallerNameTheirPublisherAndVersionAndAskForAnAdministrator)
{
    Install(OldVersion());
    ExpectImage(OldVersion().setup);
    ExpectImage(InstalledUninstaller());
}

} // namespace
} // namespace orva::test
