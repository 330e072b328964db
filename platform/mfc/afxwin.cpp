#include "afxwin.h"

#include <string>

IMPLEMENT_DYNAMIC(CStatic, CWnd)

BOOL AFXAPI AfxInitRichEdit2()
{
    static const HMODULE library = [] {
        // By its full path: the folders of the host program are not asked for a system library.
        WCHAR folder[MAX_PATH] = L"";
        GetSystemDirectoryW(folder, ARRAYSIZE(folder));
        return LoadLibraryW((std::wstring(folder) + L"\\riched20.dll").c_str());
    }();
    return library != nullptr;
}
