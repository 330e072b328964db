#include "publishing/DescriptionBox.h"

#include "res/resource.h"

#include <afxwin.h>

#include <richedit.h>

#include <algorithm>

namespace publishing
{
namespace
{

INT_PTR CALLBACK DoNothing(HWND, UINT, WPARAM, LPARAM)
{
    return FALSE;
}

} // namespace

CDescriptionBox::CDescriptionBox() : m_dialog(nullptr), m_box(nullptr)
{
    AfxInitRichEdit2();
    m_dialog = CreateDialogParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDD_UPDATE_AVAILABLE), nullptr,
                                  &DoNothing, 0);
    m_box = m_dialog != nullptr ? GetDlgItem(m_dialog, IDC_UPDATE_DESCRIPTION) : nullptr;
    if (m_box != nullptr)
    {
        // As the offer does it.
        SendMessageW(m_box, EM_SETTARGETDEVICE, 0, 0);
    }
}

CDescriptionBox::~CDescriptionBox()
{
    if (m_dialog != nullptr)
    {
        DestroyWindow(m_dialog);
    }
}

CDescriptionBox::CLines CDescriptionBox::LinesOf(const std::wstring& text) const
{
    if (m_box == nullptr)
    {
        return {};
    }
    SetWindowTextW(m_box, text.c_str());
    const int total = static_cast<int>(SendMessageW(m_box, EM_GETLINECOUNT, 0, 0));
    const auto topOf = [this](int line) {
        const LRESULT first = SendMessageW(m_box, EM_LINEINDEX, static_cast<WPARAM>(line), 0);
        POINTL place = {};
        SendMessageW(m_box, EM_POSFROMCHAR, reinterpret_cast<WPARAM>(&place), first);
        return static_cast<int>(place.y);
    };
    RECT seen = {};
    SendMessageW(m_box, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&seen));
    const int height = total > 1 ? topOf(1) - topOf(0) : 0;
    int visible = 0;
    while (visible < total && topOf(visible) + height <= seen.bottom)
    {
        ++visible;
    }
    return {total, visible};
}

} // namespace publishing
