; The keys that a setup changes: saved before it, put back if it fails, and deleted when regsvr32 cannot do so.

; A key of the setup alone, so that it can be deleted as a whole.
!define SAVED "Software\${PRODUCT} Setup"
; Its value while it holds what is to be put back.
!define UNRESTORED "not yet put back"

; Windows' handle of HKEY_LOCAL_MACHINE: 0x80000002 with its sign extended.
!define LOCAL_MACHINE -2147483646
!define KEY_ALL_ACCESS 0xF003F
!define KEY_READ 0x20019
!define ERROR_FILE_NOT_FOUND 2

!define CLASS_KEY "Software\Classes\CLSID\{9C7130EA-AEC4-4EA5-97B8-7D7172C9E051}"
!define LIBRARY_KEY "Software\Classes\TypeLib\{ABF2CDBF-30F7-4827-9110-3BD6A8F1B786}"

; Inserts a macro for each key that the DLL's registration writes.
!macro ForEachRegistrationKey DO
  !insertmacro ${DO} class "${CLASS_KEY}"
  !insertmacro ${DO} name "Software\Classes\OrvaOscAddin.Connect"
  !insertmacro ${DO} versioned-name "Software\Classes\OrvaOscAddin.Connect.1"
  !insertmacro ${DO} library "${LIBRARY_KEY}"
  !insertmacro ${DO} interface "Software\Classes\Interface\{CE895442-9981-4315-AA85-4B9A5C7739D8}"
  ; What the system notes for 32-bit programs with it, and may leave.
  !insertmacro ${DO} interface-for-32-bits "Software\Classes\Wow6432Node\Interface\{CE895442-9981-4315-AA85-4B9A5C7739D8}"
  !insertmacro ${DO} add-in "Software\Microsoft\Office\Outlook\Addins\OrvaOscAddin.Connect"
!macroend

; A key's copy stands under its name; of a missing one there is a value of that name instead.
!macro SaveKey NAME KEY
  StrCpy $0 "${KEY}"
  StrCpy $1 "${SAVED}\${NAME}"
  Call CopyKey
  ${If} $2 = ${ERROR_FILE_NOT_FOUND}
    WriteRegStr HKLM "${SAVED}" "${NAME}" "missing"
  ${ElseIf} $2 <> 0
    SetErrors
  ${EndIf}
!macroend

; Nothing is deleted of which there is neither.
!macro RestoreKey NAME KEY
  StrCpy $0 "${SAVED}\${NAME}"
  StrCpy $1 "${KEY}"
  ReadRegStr $2 HKLM "${SAVED}" "${NAME}"
  Call OpenKey
  ${If} $4 = 0
    ; First what another version's registration has added.
    DeleteRegKey HKLM "${KEY}"
    Call CopyKey
    ${If} $2 <> 0
      StrCpy $6 "failed"
    ${EndIf}
  ${ElseIf} $2 == "missing"
    DeleteRegKey HKLM "${KEY}"
  ${EndIf}
!macroend

!macro DeleteKey NAME KEY
  DeleteRegKey HKLM "${KEY}"
!macroend

; Sets the error flag unless the key is gone.
!macro ExpectNoKey UN KEY
  StrCpy $0 "${KEY}"
  Call ${UN}OpenKey
  ${If} $4 <> ${ERROR_FILE_NOT_FOUND}
    SetErrors
  ${EndIf}
!macroend
!macro ExpectDeleted NAME KEY
  !insertmacro ExpectNoKey "un." "${KEY}"
!macroend

; Lets Outlook find the DLL under another path, if this one is registered.
;   $5: the path that is registered, $6: the new one; $7 is changed
Function RegisterPath
  ReadRegStr $7 HKLM "${CLASS_KEY}\InprocServer32" ""
  ${If} $7 == $5
    WriteRegStr HKLM "${CLASS_KEY}\InprocServer32" "" $6
    WriteRegStr HKLM "${LIBRARY_KEY}\1.0\0\win64" "" $6
  ${EndIf}
FunctionEnd

!macro RegistrationFunctions UN

; Registers a DLL.
;   $1: the DLL; $9 afterwards: regsvr32's exit code; sets the error flag, and $9 to "?", if it could not be started
Function ${UN}RegisterModule
  ClearErrors
  ExecWait '"$SYSDIR\regsvr32.exe" /s "$1"' $9
  ${If} ${Errors}
    StrCpy $9 "?"
    SetErrors
  ${EndIf}
FunctionEnd

; Finds out whether a key can be read.
;   $0: the key; $4 afterwards: Windows' code, ${ERROR_FILE_NOT_FOUND} if there is none; $3 is changed
Function ${UN}OpenKey
  System::Call 'advapi32::RegOpenKeyExW(p ${LOCAL_MACHINE}, w r0, i 0, i ${KEY_READ}, *p .r3) i .r4'
  ${If} $4 = 0
    System::Call 'advapi32::RegCloseKey(p r3)'
  ${EndIf}
FunctionEnd

!macroend

!insertmacro RegistrationFunctions ""
!insertmacro RegistrationFunctions "un."

; Copies a key with its subkeys and values over another one, which is made if it is missing. Not by reg.exe, which would show
; a console window.
;   $0: the key, $1: its copy; $2 afterwards: Windows' code, ${ERROR_FILE_NOT_FOUND} if there is no such key
Function CopyKey
  System::Call 'advapi32::RegOpenKeyExW(p ${LOCAL_MACHINE}, w r0, i 0, i ${KEY_READ}, *p .r3) i .r2'
  ${If} $2 = 0
    System::Call 'advapi32::RegCreateKeyExW(p ${LOCAL_MACHINE}, w r1, i 0, p 0, i 0, i ${KEY_ALL_ACCESS}, p 0, *p .r5, p 0) i .r2'
    ${If} $2 = 0
      System::Call 'advapi32::RegCopyTreeW(p r3, p 0, p r5) i .r2'
      System::Call 'advapi32::RegCloseKey(p r5)'
    ${EndIf}
    System::Call 'advapi32::RegCloseKey(p r3)'
  ${EndIf}
FunctionEnd

; Sets the error flag if not everything could be saved: without that the registration must not be changed.
Function SaveRegistration
  ; What an earlier setup could not put back is what has to be put back if this one fails too.
  ReadRegStr $2 HKLM "${SAVED}" ""
  ClearErrors
  ${If} $2 == "${UNRESTORED}"
    Return
  ${EndIf}
  DeleteRegKey HKLM "${SAVED}"
  ClearErrors
  ; Anything else that an earlier setup saved is of no use now.
  !insertmacro ExpectNoKey "" "${SAVED}"
  ${If} ${Errors}
    SetErrors
    Return
  ${EndIf}
  !insertmacro ForEachRegistrationKey SaveKey
  !insertmacro SaveKey entry "${ENTRY}"
FunctionEnd

; If a key cannot be put back, what is saved stays.
Function RestoreRegistration
  StrCpy $6 ""
  WriteRegStr HKLM "${SAVED}" "" "${UNRESTORED}"
  !insertmacro ForEachRegistrationKey RestoreKey
  !insertmacro RestoreKey entry "${ENTRY}"
  ${If} $6 == ""
    Call ForgetSavedRegistration
  ${EndIf}
FunctionEnd

Function ForgetSavedRegistration
  DeleteRegKey HKLM "${SAVED}"
FunctionEnd
