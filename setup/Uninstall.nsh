; Removing the add-in with everything that a setup made. The user's log and settings stay.

Function un.onInit
  StrCpy $INSTDIR "$PROGRAMFILES64\${PRODUCT}"
  !insertmacro RefuseIfBusy
FunctionEnd

Function un.NameUninstallButton
  GetDlgItem $0 $HWNDPARENT 1
  SendMessage $0 ${WM_SETTEXT} 0 "STR:$(^UninstallBtn)"
FunctionEnd

!macro FailToUninstall TEXT CODE
  SetErrorLevel ${CODE}
  MessageBox MB_OK|MB_ICONSTOP "${TEXT}" /SD IDOK
  Abort "${TEXT}"
!macroend

Section "Uninstall"
  !insertmacro Step "$(Unregistering)"
  Call un.DeleteLeftovers
  ; The DLL first, because it is the only part that can be refused.
  StrCpy $1 "$INSTDIR\${MODULE}"
  ${If} ${FileExists} $1
    ExecWait '"$SYSDIR\regsvr32.exe" /u /s "$1"'
    ClearErrors
    Call un.PutAside
    ${If} ${Errors}
      ; It stays, so it stays registered.
      ExecWait '"$SYSDIR\regsvr32.exe" /s "$1"'
      !insertmacro FailToUninstall "$(CannotRemove)" ${EXIT_FILE}
    ${EndIf}
    Call un.DeleteAside
  ${EndIf}
  ; If the DLL is missing or damaged, regsvr32 has removed nothing.
  !insertmacro ForEachRegistrationKey DeleteKey
  ClearErrors
  EnumRegKey $0 HKLM "Software\Classes\CLSID\{9C7130EA-AEC4-4EA5-97B8-7D7172C9E051}" 0
  ${If} $0 != ""
    !insertmacro FailToUninstall "$(CannotUnregister)" ${EXIT_REGISTRATION}
  ${EndIf}
  DeleteRegKey HKLM "${SAVED}"
  DeleteRegKey HKLM "${ENTRY}"
  Delete "$INSTDIR\${UNINSTALLER}"
  ; Goes with its last file at the next start of Windows, if that is in use.
  RMDir /REBOOTOK "$INSTDIR"
  ${If} $IsInUse = 1
    StrCpy $WhatIsDone "$(UninstalledInUse)"
  ${Else}
    StrCpy $WhatIsDone "$(Uninstalled)"
  ${EndIf}
SectionEnd
