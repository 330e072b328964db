; The keys that a setup changes: saved before it, put back if it fails, and deleted when regsvr32 cannot do so.

; A key of the setup alone, so that it can be deleted as a whole.
!define SAVED "Software\${PRODUCT} Setup"

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
  !insertmacro ${DO} add-in "Software\Microsoft\Office\Outlook\Addins\OrvaOscAddin.Connect"
!macroend

!macro SaveKey NAME KEY
  StrCpy $0 "${KEY}"
  StrCpy $1 "${SAVED}\${NAME}"
  Call CopyKey
!macroend

!macro RestoreKey NAME KEY
  StrCpy $0 "${SAVED}\${NAME}"
  StrCpy $1 "${KEY}"
  Call CopyKey
  ${If} $2 <> 0
    DeleteRegKey HKLM "${KEY}"
  ${EndIf}
!macroend

!macro DeleteKey NAME KEY
  DeleteRegKey HKLM "${KEY}"
!macroend

; Lets Outlook find the DLL under another path, if this one is registered.
;   $5: the path that is registered, $6: the new one; $7 is changed
!macro RegisterPathFunction UN
Function ${UN}RegisterPath
  ReadRegStr $7 HKLM "${CLASS_KEY}\InprocServer32" ""
  ${If} $7 == $5
    WriteRegStr HKLM "${CLASS_KEY}\InprocServer32" "" $6
    WriteRegStr HKLM "${LIBRARY_KEY}\1.0\0\win64" "" $6
  ${EndIf}
FunctionEnd
!macroend

!insertmacro RegisterPathFunction ""
!insertmacro RegisterPathFunction "un."

; Copies a key with its subkeys and values over another one, which is made if it is missing. Not by reg.exe, which would show
; a console window.
;   $0: the key, $1: its copy; $2 afterwards: 0, or 1 if there is no such key
Function CopyKey
  StrCpy $2 0
  System::Call 'advapi32::RegOpenKeyExW(p ${LOCAL_MACHINE}, w r0, i 0, i ${KEY_READ}, *p .r3) i .r4'
  ${If} $4 = ${ERROR_FILE_NOT_FOUND}
    StrCpy $2 1
  ${ElseIf} $4 = 0
    System::Call 'advapi32::RegCreateKeyExW(p ${LOCAL_MACHINE}, w r1, i 0, p 0, i 0, i ${KEY_ALL_ACCESS}, p 0, *p .r5, p 0) i .r4'
    ${If} $4 = 0
      System::Call 'advapi32::RegCopyTreeW(p r3, p 0, p r5)'
      System::Call 'advapi32::RegCloseKey(p r5)'
    ${EndIf}
    System::Call 'advapi32::RegCloseKey(p r3)'
  ${EndIf}
FunctionEnd

Function SaveRegistration
  DeleteRegKey HKLM "${SAVED}"
  !insertmacro ForEachRegistrationKey SaveKey
  !insertmacro SaveKey entry "${ENTRY}"
FunctionEnd

Function RestoreRegistration
  !insertmacro ForEachRegistrationKey RestoreKey
  !insertmacro RestoreKey entry "${ENTRY}"
  Call ForgetSavedRegistration
FunctionEnd

Function ForgetSavedRegistration
  DeleteRegKey HKLM "${SAVED}"
FunctionEnd
