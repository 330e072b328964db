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
  !insertmacro LeaveFailedPage
!macroend

Section "Uninstall"
  !insertmacro Step "$(Unregistering)"
  Call un.DeleteLeftovers
  ; Moved aside first, because that can be refused, and then nothing has changed yet.
  StrCpy $1 "$INSTDIR\${MODULE}"
  StrCpy $3 ""
  ${If} ${FileExists} $1
    Call un.PutAside
    ${If} ${Errors}
      Call un.DescribeFileError
      !insertmacro FailToUninstall "$(CannotRemove)" ${EXIT_FILE}
    ${EndIf}
    ExecWait '"$SYSDIR\regsvr32.exe" /u /s "$3"'
  ${EndIf}
  ; If the DLL is missing or damaged, regsvr32 has removed nothing.
  !insertmacro ForEachRegistrationKey DeleteKey
  System::Call 'advapi32::RegOpenKeyExW(p ${LOCAL_MACHINE}, w "${CLASS_KEY}", i 0, i ${KEY_READ}, *p .r4) i .r0'
  ${If} $0 <> ${ERROR_FILE_NOT_FOUND}
    ${If} $3 != ""
      Rename $3 $1
      ExecWait '"$SYSDIR\regsvr32.exe" /s "$1"'
    ${EndIf}
    !insertmacro FailToUninstall "$(CannotUnregister)" ${EXIT_REGISTRATION}
  ${EndIf}
  ${If} $3 != ""
    Call un.DeleteAside
  ${EndIf}
  Call un.DeleteLeftovers
  DeleteRegKey HKLM "${SAVED}"
  DeleteRegKey HKLM "${ENTRY}"
  Delete /REBOOTOK "$INSTDIR\${NOTICES}"
  Delete "$INSTDIR\${UNINSTALLER}"
  ; Goes with its last file at the next start of Windows, if that is in use.
  RMDir /REBOOTOK "$INSTDIR"
  ${If} $IsInUse = 1
    StrCpy $WhatIsDone "$(UninstalledInUse)"
  ${Else}
    StrCpy $WhatIsDone "$(Uninstalled)"
  ${EndIf}
SectionEnd
