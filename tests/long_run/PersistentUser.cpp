#include "long_run/PersistentUser.h"

#include "harness/WindowDriver.h"

namespace orva::test
{

int CPersistentUser::Leave()
{
    m_stop = true;
    if (m_thread.joinable())
    {
        m_thread.join();
    }
    return m_pressed;
}

void CPersistentUser::Press(int button)
{
    HWND last = nullptr;
    while (!m_stop)
    {
        CWindowQuery query;
        query.className = kDialogClass;
        query.childId = button;
        const HWND dialog = FindTopLevelWindow(query);
        if (dialog != nullptr && dialog != last && ClickButton(dialog, button))
        {
            ++m_pressed;
            last = dialog;
        }
        else if (dialog == nullptr)
        {
            last = nullptr;
        }
        Sleep(2);
    }
}

} // namespace orva::test
