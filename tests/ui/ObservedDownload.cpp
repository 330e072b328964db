#include "ui/ObservedDownload.h"

namespace orva::test
{
namespace
{

constexpr UINT kDestroyDialog = WM_APP + 100;
constexpr wchar_t kTakenDown[] = L"OrvaTestTakenDown";

LRESULT CALLBACK OwnerProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == kDestroyDialog)
    {
        SetPropW(reinterpret_cast<HWND>(wParam), kTakenDown, window);
        DestroyWindow(reinterpret_cast<HWND>(wParam));
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

} // namespace

LRESULT CObservedDownload::WindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    const HWND dialog = m_hWnd;
    if (before)
    {
        before(dialog, message, wParam);
    }
    const LRESULT result = CUpdateDownloadDlg::WindowProc(message, wParam, lParam);
    if (after)
    {
        after(dialog, message, wParam);
    }
    return result;
}

bool IsCancelCommand(UINT message, WPARAM wParam)
{
    return message == WM_COMMAND && LOWORD(wParam) == IDCANCEL;
}

CDownloadOwner::CDownloadOwner()
    : m_window(CreateWindowExW(0, L"STATIC", L"Owner", WS_OVERLAPPEDWINDOW, 0, 0, 100, 100, nullptr, nullptr,
                               GetModuleHandleW(nullptr), nullptr))
{
    SetWindowLongPtrW(m_window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&OwnerProcedure));
}

CDownloadOwner::~CDownloadOwner()
{
    DestroyWindow(m_window);
}

void CDownloadOwner::DestroyDialog(HWND owner, HWND dialog)
{
    PostMessageW(owner, kDestroyDialog, reinterpret_cast<WPARAM>(dialog), 0);
}

bool CDownloadOwner::IsTakenDown(HWND dialog)
{
    return GetPropW(dialog, kTakenDown) != nullptr;
}

long long FileSize(const wchar_t* path)
{
    WIN32_FILE_ATTRIBUTE_DATA data{};
    return GetFileAttributesExW(path, GetFileExInfoStandard, &data)
               ? static_cast<long long>(data.nFileSizeLow)
               : -1;
}

} // namespace orva::test
