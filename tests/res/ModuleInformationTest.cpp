// The version resource, the manifest and the type library of the module.
#include "harness/Files.h"
#include "harness/Text.h"
#include "res/resource.h"

#include <gtest/gtest.h>
#include <wrl/client.h>

#include <windows.h>
#include <oleauto.h>

using namespace orva::test;

namespace
{
// This program, which carries the module's resources.
const std::wstring g_program = BuiltFile(L"test_res.exe");

// The version resource as the system reads it from the file.
class CVersionInformation
{
public:
    CVersionInformation()
    {
        DWORD ignored = 0;
        m_bytes.resize(GetFileVersionInfoSizeW(g_program.c_str(), &ignored));
        GetFileVersionInfoW(g_program.c_str(), 0, static_cast<DWORD>(m_bytes.size()), m_bytes.data());
    }

    const void* Query(const std::wstring& block) const
    {
        void* value = nullptr;
        UINT length = 0;
        return VerQueryValueW(m_bytes.data(), block.c_str(), &value, &length) && length != 0 ? value
                                                                                             : nullptr;
    }

    std::string Entry(const std::wstring& name) const
    {
        const void* value = Query(L"\\StringFileInfo\\040904b0\\" + name);
        return value != nullptr ? Utf8(static_cast<const wchar_t*>(value)) : "(none)";
    }

private:
    std::vector<BYTE> m_bytes;
};
} // namespace

TEST(ModuleInformationTest, TheVersionResourceSays1001AndNamesTheFile)
{
    const CVersionInformation version;
    const auto* fixed = static_cast<const VS_FIXEDFILEINFO*>(version.Query(L"\\"));
    ASSERT_NE(fixed, nullptr);
    EXPECT_EQ(fixed->dwFileVersionMS, 0x00010000u);
    EXPECT_EQ(fixed->dwFileVersionLS, 0x00000001u);
    EXPECT_EQ(fixed->dwProductVersionMS, 0x00010000u);
    EXPECT_EQ(fixed->dwProductVersionLS, 0x00000001u);
    EXPECT_EQ(fixed->dwFileType, static_cast<DWORD>(VFT_DLL));
    const std::pair<const wchar_t*, const char*> entries[] = {
        {L"FileVersion", "1.0.0.1"},
        {L"ProductVersion", "1.0.0.1"},
        {L"InternalName", "OrvaOscAddin.dll"},
        {L"OriginalFilename", "OrvaOscAddin.dll"},
        {L"ProductName", "ORVA Connector"},
        {L"CompanyName", "ORVA"},
        {L"FileDescription", "ORVA Connector add-in for Microsoft Outlook"},
        {L"LegalCopyright", "\u00A9 2011 ORVA. All rights reserved."}};
    for (const auto& [name, text] : entries)
    {
        EXPECT_EQ(version.Entry(name), text) << Utf8(name);
    }
}

TEST(ModuleInformationTest, TheManifestGivesDialogsCommonControls6)
{
    ACTCTXW context = {};
    context.cbSize = sizeof(context);
    context.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    context.lpSource = g_program.c_str();
    context.lpResourceName = MAKEINTRESOURCEW(IDR_MANIFEST);
    context.hModule = GetModuleHandleW(nullptr);
    const HANDLE made = CreateActCtxW(&context);
    ASSERT_NE(made, INVALID_HANDLE_VALUE);
    ULONG_PTR cookie = 0;
    ASSERT_TRUE(ActivateActCtx(made, &cookie));
    ACTCTX_SECTION_KEYED_DATA data = {};
    data.cbSize = sizeof(data);
    // Only version 6 redirects this class: the links of the About dialog need it.
    EXPECT_TRUE(FindActCtxSectionStringW(0, nullptr, ACTIVATION_CONTEXT_SECTION_WINDOW_CLASS_REDIRECTION,
                                         L"SysLink", &data));
    DeactivateActCtx(0, cookie);
    ReleaseActCtx(made);
}

// Its id, its version and its interface are proven where it is registered.
TEST(ModuleInformationTest, TheTypeLibraryHasItsName)
{
    Microsoft::WRL::ComPtr<ITypeLib> library;
    ASSERT_EQ(
        LoadTypeLibEx((g_program + L"\\" + std::to_wstring(IDR_TYPELIB)).c_str(), REGKIND_NONE, &library),
        S_OK);
    BSTR name = nullptr;
    library->GetDocumentation(-1, &name, nullptr, nullptr, nullptr);
    EXPECT_EQ(Utf8(name), "OrvaOscAddinLib");
    SysFreeString(name);
}
