#include "host/StoredControls.h"

#include <algorithm>

namespace orva::host
{
namespace
{

// The captions of a stored button's menu and of the button, each with its terminator; empty if there is none.
std::wstring ReadStored(int index)
{
    const std::wstring name = std::to_wstring(index);
    DWORD size = 0;
    RegGetValueW(HKEY_CURRENT_USER, kStoredControlsKey, name.c_str(), RRF_RT_REG_MULTI_SZ, nullptr, nullptr,
                 &size);
    std::wstring texts(size / sizeof(wchar_t), L'\0');
    const LSTATUS status = RegGetValueW(HKEY_CURRENT_USER, kStoredControlsKey, name.c_str(),
                                        RRF_RT_REG_MULTI_SZ, nullptr, texts.data(), &size);
    return status == ERROR_SUCCESS ? texts : std::wstring();
}

} // namespace

void StoreControls(const CCommandBarControls& menus)
{
    RegDeleteTreeW(HKEY_CURRENT_USER, kStoredControlsKey);
    int count = 0;
    for (const auto& menu : menus.Items())
    {
        if (menu->Type() != kControlPopup)
        {
            continue;
        }
        for (const auto& control : static_cast<CCommandBarPopup*>(menu.Get())->Controls().Items())
        {
            if (control->IsLasting())
            {
                // One value per button: its name is a number, its texts are the captions of menu and button.
                const std::wstring texts = menu->Caption() + L'\0' + control->Caption() + L'\0';
                RegSetKeyValueW(HKEY_CURRENT_USER, kStoredControlsKey, std::to_wstring(count++).c_str(),
                                REG_MULTI_SZ, texts.c_str(),
                                static_cast<DWORD>((texts.size() + 1) * sizeof(wchar_t)));
            }
        }
    }
}

void RestoreControls(const CCommandBarControls& menus)
{
    std::wstring texts;
    for (int index = 0; !(texts = ReadStored(index)).empty(); ++index)
    {
        const std::wstring menuCaption = texts.c_str();
        const std::wstring caption = texts.substr(std::min(menuCaption.size() + 1, texts.size())).c_str();
        for (const auto& menu : menus.Items())
        {
            if (menu->Type() == kControlPopup && menu->Caption() == menuCaption)
            {
                static_cast<CCommandBarPopup*>(menu.Get())->Controls().AddButton(caption).SetLasting(true);
            }
        }
    }
}

} // namespace orva::host
