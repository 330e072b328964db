#include "host/LinkWindow.h"

#include "host/Painting.h"

namespace orva::host
{
namespace
{

void Click(HWND window)
{
    const auto id = static_cast<WORD>(GetDlgCtrlID(window));
    SendMessageW(GetParent(window), WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(window));
}

void Paint(HWND window)
{
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(window, &paint);
    RECT box;
    GetClientRect(window, &box);
    FillBox(dc, box, kWhite);
    wchar_t caption[512];
    GetWindowTextW(window, caption, static_cast<int>(std::size(caption)));
    DrawLine(dc, caption, box, reinterpret_cast<HFONT>(GetWindowLongPtrW(window, 0)), kLink);
    if (GetFocus() == window)
    {
        DrawFocusRect(dc, &box);
    }
    EndPaint(window, &paint);
}

LRESULT CALLBACK LinkProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_PAINT:
        Paint(window);
        return 0;
    case WM_SETFONT:
        SetWindowLongPtrW(window, 0, static_cast<LONG_PTR>(wParam));
        return 0;
    case WM_GETFONT:
        return GetWindowLongPtrW(window, 0);
    case WM_SETCURSOR:
        SetCursor(LoadCursorW(nullptr, reinterpret_cast<const wchar_t*>(IDC_HAND)));
        return TRUE;
    case WM_GETDLGCODE:
        // Enter follows the link instead of pressing the default button.
        return wParam == VK_RETURN ? DLGC_WANTALLKEYS : DLGC_BUTTON;
    case WM_LBUTTONDOWN:
        SetFocus(window);
        SetCapture(window);
        return 0;
    case WM_LBUTTONUP: {
        const bool pressedHere = GetCapture() == window;
        ReleaseCapture();
        const POINT point{static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
        RECT box;
        GetClientRect(window, &box);
        if (pressedHere && PtInRect(&box, point))
        {
            Click(window);
        }
        return 0;
    }
    case WM_KEYDOWN:
        if (wParam == VK_RETURN || wParam == VK_SPACE)
        {
            Click(window);
        }
        return 0;
    case BM_CLICK:
        Click(window);
        return 0;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        InvalidateRect(window, nullptr, FALSE);
        return 0;
    default:
        return DefWindowProcW(window, message, wParam, lParam);
    }
}

} // namespace

HWND CreateLink(HWND parent, int id, const std::wstring& caption)
{
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.lpfnWndProc = LinkProcedure;
    windowClass.hInstance = instance;
    windowClass.lpszClassName = kLinkClass;
    // Room for the font's handle.
    windowClass.cbWndExtra = sizeof(LONG_PTR);
    RegisterClassExW(&windowClass);
    return CreateWindowExW(0, kLinkClass, caption.c_str(), WS_CHILD | WS_VISIBLE | WS_TABSTOP, 0, 0, 0, 0,
                           parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), instance, nullptr);
}

} // namespace orva::host
