// What the DLL imports, function by function.
//
// A new line is added only after it was looked up that Windows Vista has the function, and never for one that
// acts on other processes, on the contexts of other threads or on how the process handles exceptions: we are
// a guest in Outlook. The per-user functions for type libraries are looked up at run time, so that the DLL
// loads where they are missing.
#pragma once

namespace orva::test
{

struct CImportedFunctions
{
    const char* name;      ///< of the DLL, in capitals
    const char* functions; ///< separated by blanks
};

// clang-format off
inline constexpr CImportedFunctions kImports[] = {
    {"ADVAPI32.DLL",
     "RegCloseKey RegCreateKeyExW RegDeleteKeyW RegDeleteTreeW RegDeleteValueW RegOpenKeyExW "
     "RegQueryInfoKeyW RegQueryValueExW RegSetValueExW"},
    {"COMCTL32.DLL",
     "InitCommonControlsEx"},
    {"GDI32.DLL",
     "CreateFontIndirectW CreateSolidBrush DeleteDC DeleteObject GetObjectW PatBlt SelectObject "
     "SetBkColor SetTextColor"},
    {"GDIPLUS.DLL",
     "GdipAlloc GdipCloneImage GdipCreateBitmapFromStream GdipCreateHBITMAPFromBitmap GdipDisposeImage "
     "GdipFree GdiplusShutdown GdiplusStartup"},
    {"KERNEL32.DLL",
     "AcquireSRWLockExclusive ActivateActCtx CloseHandle CompareStringOrdinal CreateActCtxW "
     "CreateDirectoryW CreateFileW CreateSemaphoreW DeactivateActCtx DeleteCriticalSection DeleteFileW "
     "EnterCriticalSection FindResourceExW FindResourceW FormatMessageW FreeLibrary "
     "GetCurrentProcessId GetCurrentThreadId GetFullPathNameW GetLastError GetModuleFileNameW "
     "GetModuleHandleW GetProcAddress GetSystemDirectoryW GetTempPathW GetThreadLocale GetTickCount "
     "GlobalAlloc GlobalFree GlobalLock GlobalUnlock InitializeCriticalSection IsDBCSLeadByteEx "
     "LeaveCriticalSection LoadLibraryExW LoadLibraryW LoadResource LocalFree LockResource "
     "MultiByteToWideChar OutputDebugStringA OutputDebugStringW QueryActCtxW RaiseException "
     "ReleaseActCtx ReleaseSRWLockExclusive ReleaseSemaphore ResumeThread RtlCaptureContext "
     "RtlLookupFunctionEntry RtlUnwindEx RtlVirtualUnwind SetLastError SetThreadLocale "
     "SetThreadPriority SizeofResource Sleep TlsAlloc TlsFree TlsGetValue TlsSetValue VirtualProtect "
     "VirtualQuery WaitForSingleObject WideCharToMultiByte WriteFile lstrcpynW"},
    {"MSVCRT.DLL",
     "___lc_codepage_func ___mb_cur_max_func __iob_func __setusermatherr _amsg_exit _beginthreadex "
     "_close _close _errno _filelengthi64 _fileno _initterm _localtime64 _lock _mktemp _mktime64 _read "
     "_time64 _unlock _wcsicmp _wcsnicmp _write _wsopen _wtoi _wtol abort calloc fclose fflush fgetpos "
     "fopen fputc fputs fputwc free fsetpos fwprintf fwrite islower isspace isupper iswdigit iswspace "
     "localeconv malloc memchr memcmp memcpy memmove memset realloc strcmp strerror strftime strlen "
     "strncmp towlower vfprintf wcslen wcstoul"},
    {"OLE32.DLL",
     "CoCreateGuid CreateStreamOnHGlobal StringFromGUID2"},
    {"OLEAUT32.DLL",
     "LoadRegTypeLib LoadTypeLibEx OleCreatePictureIndirect RegisterTypeLib SafeArrayAccessData "
     "SafeArrayCreate SafeArrayUnaccessData SetErrorInfo SysAllocString SysAllocStringLen "
     "SysFreeString UnRegisterTypeLib VariantChangeType VariantClear VariantInit"},
    {"SHELL32.DLL",
     "SHGetSpecialFolderPathW ShellExecuteExW ShellExecuteW"},
    {"SHLWAPI.DLL",
     "PathFileExistsW"},
    {"USER32.DLL",
     "CallWindowProcW CreateDialogIndirectParamW DefWindowProcW DestroyWindow DispatchMessageW "
     "EnableWindow EqualRect GetActiveWindow GetClientRect GetDesktopWindow GetDlgItem "
     "GetLastActivePopup GetMessageW GetMonitorInfoW GetParent GetTopWindow GetWindow "
     "GetWindowLongPtrW GetWindowRect GetWindowThreadProcessId IsDialogMessageW IsIconic "
     "IsWindowEnabled IsWindowVisible MapWindowPoints MessageBoxW MonitorFromWindow "
     "MsgWaitForMultipleObjects PeekMessageW PostMessageW PostQuitMessage PostThreadMessageW "
     "SendMessageW SetActiveWindow SetDlgItemTextW SetWindowLongPtrW SetWindowPos SetWindowTextW "
     "ShowWindow TranslateMessage UpdateWindow ValidateRect"},
    {"WININET.DLL",
     "HttpAddRequestHeadersW HttpOpenRequestW HttpQueryInfoW HttpSendRequestW InternetCanonicalizeUrlW "
     "InternetCloseHandle InternetConnectW InternetCrackUrlW InternetOpenW InternetReadFile"},
};

// What a DLL that holds the publisher's key imports besides.
inline constexpr CImportedFunctions kImportsForSignatures[] = {
    {"BCRYPT.DLL",
     "BCryptCloseAlgorithmProvider BCryptCreateHash BCryptDestroyHash BCryptDestroyKey BCryptFinishHash "
     "BCryptGetProperty BCryptHashData BCryptImportKeyPair BCryptOpenAlgorithmProvider "
     "BCryptVerifySignature"},
    {"KERNEL32.DLL", "GetFinalPathNameByHandleW"},
    {"KERNEL32.DLL",
     "ReadFile SetFilePointerEx"},
};
// clang-format on

} // namespace orva::test
