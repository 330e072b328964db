#include "host/StoredControls.h"

namespace orva::host
{
namespace
{

constexpr DWORD kLongestText = 256;

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
    wchar_t texts[kLongestText];
    DWORD size = sizeof texts;
    for (int index = 0; RegGetValueW(HKEY_CURRENT_USER, kStoredControlsKey, std::to_wstring(index).c_str(),
                                     RRF_RT_REG_MULTI_SZ, nullptr, texts, &size) == ERROR_SUCCESS;
         ++index, size = sizeof texts)
    {
        const std::wstring menuCaption = texts;
        for (const auto& menu : menus.Items())
        {
            if (menu->Type() == kControlPopup && menu->Caption() == menuCaption)
            {
                static_cast<CCommandBarPopup*>(menu.Get())
                    ->Controls()
                    .AddButton(texts + menuCaption.size() + 1)
                    .SetLasting(true);
            }
        }
    }
}

} // namespace orva::host
