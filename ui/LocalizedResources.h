// The process-wide localization object: the language of what the user sees, and the module's strings and
// resources.
#pragma once

#include <afxwin.h>

#include <ocidl.h>

#include <memory>
#include <string>

/// Texts and resources of the add-in's own module, in the language of Office's user interface.
///
/// The language is Office's, read from the registry once the Office version is known; the language of
/// Windows plays no part. All operations belong to the host's user-interface thread; LoadString and
/// ShowMessage only read and may be called from the download worker too.
///
/// windows.h makes LoadString a macro for LoadStringW. This header includes it, so every translation unit
/// that knows the class gives the member the same name.
class CLocalizedResources
{
public:
    CLocalizedResources();

    /// Stores the Office major version (12 is Office 2007, 14 is Office 2010) and chooses the language anew.
    void SetOfficeVersion(int version);

    /// The Office major version; 0 until it is set.
    int GetOfficeVersion() const { return m_officeVersion; }

    /// Reads the language id of Office's user interface from the registry, anew at every call.
    ///
    /// 0 without an Office version, 65535 when Office names no language: neither is an error here.
    WORD GetUILanguage() const;

    /// The text of string `id` in the chosen language; empty when that language has no such text.
    CString LoadString(UINT id) const;

    /// The same in the language with this id, whatever the chosen one is.
    CString LoadString(UINT id, WORD language) const;

    /// Finds resource `id` of `type` and points `data` to its `size` bytes, which live as long as the module.
    ///
    /// Returns S_OK, or the last Win32 error as an HRESULT; `data` and `size` are then untouched.
    HRESULT LoadResourceData(UINT id, const wchar_t* type, const void** data, DWORD* size) const;

    /// A new string with the UTF-16LE text of the resource `id` of type "XML", byte-order mark included;
    /// null when there is no such resource.
    std::unique_ptr<std::wstring> LoadXmlResource(UINT id) const;

    /// Turns the resource `resourceId` of type "PNG" into a picture for the ribbon control `control`.
    ///
    /// `picture` receives a new object that owns its bitmap. A resource that is missing or is no image gives
    /// S_OK and leaves `picture` as it was: Office then shows the control without an image. Returns E_POINTER
    /// without a control or a place for the picture, otherwise the result of making the picture object.
    HRESULT LoadPngPicture(IDispatch* control, IPictureDisp** picture, UINT resourceId) const;

    /// Shows `text` in a message box with the product's name and an OK button; returns when the user has
    /// closed it.
    void ShowMessage(HWND owner, const CString& text) const;

    /// The topmost visible top-level window of this process, the owner of what the add-in shows; null without
    /// one.
    HWND FindOwnProcessWindow() const;

private:
    WORD m_langId;
    HINSTANCE m_hInstance;
    int m_officeVersion;
};

/// The one localization object of the process, made at the first call.
CLocalizedResources& GetLocalizedResources();
