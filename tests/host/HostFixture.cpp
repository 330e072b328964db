#include "host/HostFixture.h"

#include "harness/Files.h"
#include "harness/HostTrace.h"
#include "host/MainWindow.h"
#include "host/StoredControls.h"

#include <algorithm>

namespace orva::test
{
namespace
{

constexpr wchar_t kAddIns[] = L"Software\\Microsoft\\Office\\Outlook\\Addins";
constexpr wchar_t kFakeClass[] = L"{5C0F3E5E-3B7B-4C64-8E4C-6A0B7C1D2E3F}";

} // namespace

HostFixture::HostFixture()
    : m_userAddIns(HKEY_CURRENT_USER, kAddIns), m_machineAddIns(HKEY_LOCAL_MACHINE, kAddIns),
      m_storedControls(HKEY_CURRENT_USER, orva::host::kStoredControlsKey)
{
    m_storedControls.Remove();
    m_userAddIns.Remove();
    m_machineAddIns.Remove();
    const std::wstring classes = L"Software\\Classes\\";
    const std::wstring server = classes + L"CLSID\\" + kFakeClass + L"\\InprocServer32";
    const auto set = [this](const std::wstring& key, const wchar_t* name, const std::wstring& text) {
        // Wine finds classes under HKEY_LOCAL_MACHINE only; Windows finds them under either.
        m_values.push_back(std::make_unique<CRegistryValue>(HKEY_LOCAL_MACHINE, key, name));
        m_values.back()->SetString(text);
    };
    set(classes + kFakeAddIn + L"\\CLSID", L"", kFakeClass);
    set(server, L"", BuiltFile(L"FakeAddIn.dll"));
    set(server, L"ThreadingModel", L"Apartment");
    SetLoadBehavior(3);
}

HostFixture::~HostFixture()
{
    m_host.reset();
    // In reverse order, because they share keys.
    while (!m_values.empty())
    {
        m_values.pop_back();
    }
}

void HostFixture::SetLoadBehavior(DWORD value)
{
    m_values.push_back(std::make_unique<CRegistryValue>(
        HKEY_CURRENT_USER, std::wstring(kAddIns) + L"\\" + kFakeAddIn, L"LoadBehavior"));
    m_values.back()->SetDword(value);
}

void HostFixture::StartHost(const std::vector<std::wstring>& options, const std::wstring& fault,
                            const std::wstring& markup)
{
    m_host.reset();
    m_tracePath = m_folder.File(L"trace" + std::to_wstring(++m_runs) + L".log");
    CProcessOptions process = {.program = BuiltFile(L"OutlookHost.exe"),
                               .arguments = options,
                               .environment = {{L"ORVA_FAKE_ADDIN_FAULT", fault}}};
    process.arguments.insert(process.arguments.end(), {L"--trace", m_tracePath});
    if (!markup.empty())
    {
        const std::wstring path = m_folder.File(L"markup.xml");
        WriteFileBytes(path, {reinterpret_cast<const char*>(markup.data()), markup.size() * sizeof(wchar_t)});
        process.environment[L"ORVA_FAKE_ADDIN_MARKUP"] = path;
    }
    m_host = std::make_unique<CChildProcess>(process);
}

HWND HostFixture::MainWindow()
{
    return WaitForWindow({.process = m_host->Id(), .className = orva::host::kMainWindowClass});
}

int HostFixture::CloseHost()
{
    PostMessageW(MainWindow(), WM_CLOSE, 0, 0);
    return WaitForHost();
}

int HostFixture::WaitForHost()
{
    const std::optional<DWORD> code = m_host->WaitForExit();
    return code ? static_cast<int>(*code) : -1;
}

std::vector<std::string> HostFixture::Trace() const
{
    return ReadHostTrace(m_tracePath);
}

bool HostFixture::HasTrace(const std::string& line) const
{
    const std::vector<std::string> lines = Trace();
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

bool HostFixture::WaitForTrace(const std::string& line) const
{
    return WaitUntil([&] { return HasTrace(line); });
}

size_t HostFixture::TraceIndex(const std::string& line) const
{
    const std::vector<std::string> lines = Trace();
    const auto found = std::find(lines.begin(), lines.end(), line);
    EXPECT_NE(found, lines.end()) << "no line \"" << line << "\" in:\n" << TraceText();
    return static_cast<size_t>(found - lines.begin());
}

std::string HostFixture::TraceText() const
{
    std::string text;
    for (const std::string& line : Trace())
    {
        text += line + "\n";
    }
    return text;
}

} // namespace orva::test
