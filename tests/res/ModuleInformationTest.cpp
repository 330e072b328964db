// The version resource, the manifest and the type library of the module.
#include "harness/Text.h"
#include "res/ModuleResources.h"

#include <gtest/gtest.h>
#include <wrl/client.h>

#include <windows.h>
#include <oleauto.h>

using Microsoft::WRL::ComPtr;
using namespace orva::test;

namespace
{
std::wstring ProgramPath()
{
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return path;
}

// The module's version resource as the system reads it from the file.
class CVersionInformation
{
public:
    CVersionInformation()
    {
        const std::wstring path = ProgramPath();
        DWORD ignored = 0;
        m_bytes.resize(GetFileVersionInfoSizeW(path.c_str(), &ignored));
        GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(m_bytes.size()), m_bytes.data());
    }

    const void* Query(const wchar_t* block) const
    {
        void* value = nullptr;
        UINT length = 0;
        return VerQueryValueW(m_bytes.data(), block, &value, &length) && length != 0 ? value : nullptr;
    }

    std::string Entry(const std::wstring& name) const
    {
        const void* value = Query((L"\\StringFileInfo\\040904b0\\" + name).c_str());
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
    EXPECT_EQ(version.Entry(L"FileVersion"), "1.0.0.1");
    EXPECT_EQ(version.Entry(L"ProductVersion"), "1.0.0.1");
    EXPECT_EQ(version.Entry(L"InternalName"), "OrvaOscAddin.dll");
    EXPECT_EQ(version.Entry(L"OriginalFilename"), "OrvaOscAddin.dll");
    EXPECT_EQ(version.Entry(L"ProductName"), "ORVA Connector");
    EXPECT_EQ(version.Entry(L"CompanyName"), "ORVA");
    EXPECT_EQ(version.Entry(L"FileDescription"), "ORVA Connector add-in for Microsoft Outlook");
    EXPECT_EQ(version.Entry(L"LegalCopyright"), "\u00A9 2011 ORVA. All rights reserved.");
}

TEST(ModuleInformationTest, TheManifestGivesDialogsCommonControls6)
{
    const auto languages = ResourceLanguages(RT_MANIFEST, 2);
    ASSERT_EQ(languages.size(), 1u);

    const std::wstring path = ProgramPath();
    ACTCTXW context = {};
    context.cbSize = sizeof(context);
    context.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    context.lpSource = path.c_str();
    context.lpResourceName = MAKEINTRESOURCEW(2);
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

TEST(ModuleInformationTest, TheTypeLibraryIsTheAddins)
{
    ComPtr<ITypeLib> library;
    ASSERT_EQ(LoadTypeLibEx((ProgramPath() + L"\\1").c_str(), REGKIND_NONE, &library), S_OK);
    TLIBATTR* attributes = nullptr;
    ASSERT_EQ(library->GetLibAttr(&attributes), S_OK);
    wchar_t id[40] = {};
    StringFromGUID2(attributes->guid, id, 40);
    EXPECT_EQ(Utf8(id), "{ABF2CDBF-30F7-4827-9110-3BD6A8F1B786}");
    EXPECT_EQ(attributes->wMajorVerNum, 1);
    EXPECT_EQ(attributes->wMinorVerNum, 0);
    library->ReleaseTLibAttr(attributes);
    BSTR name = nullptr;
    library->GetDocumentation(-1, &name, nullptr, nullptr, nullptr);
    EXPECT_EQ(Utf8(name), "OrvaOscAddinLib");
    SysFreeString(name);
}
