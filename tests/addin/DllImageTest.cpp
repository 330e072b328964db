// The built DLL as a file: what it needs of Windows, what it offers, what it carries, what happens at its
// loading.
#include "addin/DllImports.h"
#include "addin/PeImage.h"
#include "harness/Files.h"
#include "harness/Text.h"
#include "harness/Threads.h"

#include <gmock/gmock.h>

#include <tlhelp32.h>

#include <algorithm>
#include <bit>
#include <initializer_list>
#include <span>
#include <sstream>

namespace orva::test
{

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

constexpr wchar_t kModuleName[] = L"OrvaOscAddin.dll";

// The functions that the C++ runtime itself has called for each thread: one makes thread-local objects, one
// destroys them. More would be ours, run under the loader's lock in every thread of Outlook.
constexpr size_t kRuntimeTlsCallbacks = 2;

CPeImage Image()
{
    return CPeImage(BuiltFile(kModuleName));
}

// The module mapped for its resources only: none of its code runs.
class CDataModule
{
public:
    CDataModule()
        : m_module(LoadLibraryExW(BuiltFile(kModuleName).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE))
    {
    }
    ~CDataModule() { FreeLibrary(m_module); }
    CDataModule(const CDataModule&) = delete;
    CDataModule& operator=(const CDataModule&) = delete;
    HMODULE Get() const { return m_module; }

private:
    HMODULE m_module;
};

std::string ResourceName(const wchar_t* name)
{
    return IS_INTRESOURCE(name) ? std::to_string(reinterpret_cast<ULONG_PTR>(name)) : Utf8(name);
}

BOOL CALLBACK AddLanguage(HMODULE, LPCWSTR type, LPCWSTR name, WORD language, LONG_PTR list)
{
    std::string text = ResourceName(type) + " " + ResourceName(name);
    if (type == static_cast<LPCWSTR>(RT_STRING))
    {
        text += " in " + std::to_string(language);
    }
    reinterpret_cast<std::vector<std::string>*>(list)->push_back(std::move(text));
    return TRUE;
}

BOOL CALLBACK AddName(HMODULE module, LPCWSTR type, LPWSTR name, LONG_PTR list)
{
    return EnumResourceLanguagesW(module, type, name, AddLanguage, list);
}

BOOL CALLBACK AddType(HMODULE module, LPWSTR type, LONG_PTR list)
{
    return EnumResourceNamesW(module, type, AddName, list);
}

// Names of the modules of this process, in capitals.
std::set<std::wstring> LoadedModules()
{
    std::set<std::wstring> names;
    const UniqueHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, GetCurrentProcessId()));
    MODULEENTRY32W entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL more = Module32FirstW(snapshot.get(), &entry); more;
         more = Module32NextW(snapshot.get(), &entry))
    {
        std::wstring name = entry.szModule;
        CharUpperW(name.data());
        names.insert(name);
    }
    return names;
}

// "DLL function" of each import in these lists.
std::set<std::string> Listed(std::initializer_list<std::span<const CImportedFunctions>> lists)
{
    std::set<std::string> listed;
    for (const std::span<const CImportedFunctions> list : lists)
    {
        for (const CImportedFunctions& dll : list)
        {
            std::istringstream names(dll.functions);
            for (std::string name; names >> name;)
            {
                listed.insert(std::string(dll.name) + " " + name);
            }
        }
    }
    return listed;
}

void ExpectImports(const CPeImage& image, const std::set<std::string>& expected)
{
#ifdef ORVA_CHECKED
    GTEST_SKIP() << "The lists are of the DLLs that users get. The compiled-in checks import more.";
#endif
    std::set<std::string> imported;
    for (const auto& [dll, functions] : image.Imports())
    {
        for (const std::string& function : functions)
        {
            imported.insert(dll + " " + function);
        }
    }
    for (const std::string& name : imported)
    {
        EXPECT_TRUE(expected.contains(name)) << name << " is imported and not in the list";
    }
    for (const std::string& name : expected)
    {
        EXPECT_TRUE(imported.contains(name)) << name << " is in the list and not imported";
    }
    EXPECT_EQ(image.Directory(IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT).Size, 0u);
}

} // namespace

TEST(DllImageTest, ImportsExactlyTheseFunctions)
{
    ExpectImports(Image(), Listed({kImports}));
}

TEST(DllImageTest, WithAPublishersKeyImportsWhatVerifiesASignatureAndNothingElseBesides)
{
    ExpectImports(CPeImage(BuiltFile(L"signed\\OrvaOscAddin.dll")),
                  Listed({kImports, kImportsForSignatures}));
}

TEST(DllImageTest, ExportsItsFiveEntryPointsWithOrdinals1To5)
{
    using Export = CPeImage::Export;
    EXPECT_THAT(Image().Exports(), ElementsAre(Export{1, "DllCanUnloadNow"}, Export{2, "DllGetClassObject"},
                                               Export{3, "DllInstall"}, Export{4, "DllRegisterServer"},
                                               Export{5, "DllUnregisterServer"}));
}

TEST(DllImageTest, IsA64BitDllThatMayLieAnywhereAndWhoseDataDoesNotExecute)
{
    const CPeImage image = Image();
    const IMAGE_NT_HEADERS64& headers = image.Headers();
    EXPECT_EQ(headers.FileHeader.Machine, IMAGE_FILE_MACHINE_AMD64);
    EXPECT_NE(headers.FileHeader.Characteristics & IMAGE_FILE_DLL, 0);
    EXPECT_EQ(headers.FileHeader.Characteristics & IMAGE_FILE_RELOCS_STRIPPED, 0);
    EXPECT_NE(image.Directory(IMAGE_DIRECTORY_ENTRY_BASERELOC).Size, 0u);
    const WORD flags = headers.OptionalHeader.DllCharacteristics;
    EXPECT_NE(flags & IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE, 0);
    EXPECT_NE(flags & IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA, 0);
    EXPECT_NE(flags & IMAGE_DLLCHARACTERISTICS_NX_COMPAT, 0);
    EXPECT_THAT(image.Sections(IMAGE_SCN_MEM_WRITE | IMAGE_SCN_MEM_EXECUTE), IsEmpty());
}

TEST(DllImageTest, RunsOnWindowsVista)
{
    // Version 6.0 is Vista; the loader refuses an image that asks for more.
    const IMAGE_OPTIONAL_HEADER64 header = Image().Headers().OptionalHeader;
    EXPECT_LE(header.MajorSubsystemVersion * 100 + header.MinorSubsystemVersion, 600);
    EXPECT_LE(header.MajorOperatingSystemVersion * 100 + header.MinorOperatingSystemVersion, 600);
}

TEST(DllImageTest, CarriesNoTimeOfItsBuild)
{
    // Two builds of one commit are bit-identical.
    EXPECT_EQ(Image().Headers().FileHeader.TimeDateStamp, 0u);
}

TEST(DllImageTest, RunsNothingOfItsOwnForEachThread)
{
    EXPECT_LE(Image().CountTlsCallbacks(), kRuntimeTlsCallbacks);
}

#ifdef NDEBUG
TEST(DllImageTest, AReleaseCarriesNoSymbolsAndKeepsThemBeside)
{
    const CPeImage image = Image();
    EXPECT_EQ(image.Headers().FileHeader.NumberOfSymbols, 0u);
    EXPECT_THAT(image.Sections(), Not(testing::Contains(testing::StartsWith(".debug"))));
    EXPECT_TRUE(FileExists(BuiltFile(L"OrvaOscAddin.debug")));
}
#endif

TEST(DllImageTest, CarriesExactlyItsResources)
{
    const CDataModule module;
    ASSERT_NE(module.Get(), nullptr);
    std::vector<std::string> resources;
    EnumResourceTypesW(module.Get(), AddType, reinterpret_cast<LONG_PTR>(&resources));
    std::sort(resources.begin(), resources.end());
    EXPECT_THAT(resources,
                ElementsAre("16 1",                                                 // version information
                            "2 2000",                                               // logo bitmap
                            "24 2",                                                 // manifest of a DLL
                            "5 163", "5 164", "5 9",                                // dialogs
                            "6 7 in 10", "6 7 in 1031", "6 7 in 1033", "6 7 in 31", // texts 96 to 111
                            "6 8 in 10", "6 8 in 1031", "6 8 in 1033", "6 8 in 31", // texts 112 to 127
                            "6 9 in 10", "6 9 in 1031", "6 9 in 1033", "6 9 in 31", // texts 128 to 143
                            "PNG 207", "PNG 208", "REGISTRY 101", "REGISTRY 106", "TYPELIB 1", "XML 203"));
}

TEST(DllImageTest, LoadingRunsNoCodeThatLoadsLibrariesOrStartsThreads)
{
    // What the loader itself brings for the imports is loaded first, so that only the DLL's own doing shows.
    std::vector<HMODULE> imported;
    for (const auto& [dll, functions] : Image().Imports())
    {
        imported.push_back(LoadLibraryA(dll.c_str()));
    }
    const std::set<std::wstring> modules = LoadedModules();
    const size_t threads = ThreadIds().size();

    const HMODULE module = LoadLibraryW(BuiltFile(kModuleName).c_str());
    ASSERT_NE(module, nullptr) << GetLastError();
    std::set<std::wstring> added = LoadedModules();
    std::erase_if(added, [&](const std::wstring& name) { return modules.contains(name); });
    EXPECT_THAT(added, ElementsAre(L"ORVAOSCADDIN.DLL"));
    EXPECT_EQ(ThreadIds().size(), threads);

    using CanUnloadNow = HRESULT(STDAPICALLTYPE*)();
    const auto canUnloadNow = std::bit_cast<CanUnloadNow>(GetProcAddress(module, "DllCanUnloadNow"));
    ASSERT_NE(canUnloadNow, nullptr);
    EXPECT_EQ(canUnloadNow(), S_OK);
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_FALSE(LoadedModules().contains(L"ORVAOSCADDIN.DLL"));
    for (const HMODULE dll : imported)
    {
        FreeLibrary(dll);
    }
}

} // namespace orva::test
