// The exceptions' base class and the exception for arguments that no caller may pass.
//
// Exceptions are thrown as pointers; who catches one calls Delete(). Left out of the original: ReportError,
// the TRY/CATCH/THROW macros, CMemoryException (lack of memory is std::bad_alloc here),
// CNotSupportedException, CResourceException, CUserException. Otherwise than the original: GetErrorMessage
// never reads string resources of the class library, for there are none; the texts are those of the system.
#pragma once

#include <afxobj_.h>

/// Base of all exceptions of the class library.
class CException : public CObject
{
    DECLARE_DYNAMIC(CException)

    /// An exception on the heap, which Delete() deletes.
    CException();

    /// Ends the exception's life; to be called once by whoever caught the pointer.
    void Delete();

    /// Puts a text for the user into `errorText` (`maxError` characters with the terminator) and 0 into
    /// `*helpContext` when given. FALSE, and an empty text, when there is none: this base class has none.
    virtual BOOL GetErrorMessage(LPWSTR errorText, UINT maxError, PUINT helpContext = nullptr) const;
};

/// An argument outside its range, for example a CString index behind the text.
class CInvalidArgException : public CException
{
    DECLARE_DYNAMIC(CInvalidArgException)

    CInvalidArgException();

    BOOL GetErrorMessage(LPWSTR errorText, UINT maxError, PUINT helpContext = nullptr) const override;
};

/// Throws a CInvalidArgException*.
[[noreturn]] void AFXAPI AfxThrowInvalidArgException();

/// Copies the message of `error` from `messageModule`'s message table (null: none) or else from the system's,
/// cut to `maxError` characters with the terminator. FALSE, and an empty text, when neither has one. What
/// GetErrorMessage of every exception with a Win32 error comes down to; not part of the original's interface.
BOOL AfxCopyErrorMessage(HMODULE messageModule, DWORD error, LPWSTR errorText, UINT maxError);
