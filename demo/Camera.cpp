#include "demo/Camera.h"

#include "harness/CommandLine.h"
#include "harness/Files.h"

#include <algorithm>

namespace orva::demo
{

namespace
{

// Longer than the script takes at most.
constexpr DWORD kScriptTime = 30'000;

// The number of the X11 window that shows this one; Wine's driver keeps it as a property.
std::wstring XWindow(HWND window)
{
    return std::to_wstring(reinterpret_cast<UINT_PTR>(GetPropW(window, L"__wine_x11_whole_window")));
}

// Drive Z: is the whole file system.
std::wstring OutsideWine(const std::wstring& path)
{
    std::wstring outside = path.substr(2);
    std::replace(outside.begin(), outside.end(), L'\\', L'/');
    return outside;
}

} // namespace

bool CCamera::Take(HWND window, const std::wstring& file) const
{
    return Run(XWindow(window), file, L"raised");
}

bool CCamera::TakeNow(HWND window, const std::wstring& file) const
{
    return Run(XWindow(window), file, L"now");
}

bool CCamera::TakeScreen(const std::wstring& file) const
{
    return Run(L"screen", file, L"drawn");
}

bool CCamera::Run(const std::wstring& what, const std::wstring& file, const std::wstring& when) const
{
    test::RemovePath(file);
    std::wstring command = test::JoinCommandLine(m_script, {what, OutsideWine(file), when});
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION none = {};
    // There is no handle of a program outside Wine: the end of its work is the file, which is empty if there
    // is no picture.
    if (what == L"0" ||
        !CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &none) ||
        !test::WaitForFile(file, 0, kScriptTime))
    {
        return false;
    }
    if (test::ReadFileBytes(file).value_or("").empty())
    {
        test::RemovePath(file);
        return false;
    }
    return true;
}

} // namespace orva::demo
