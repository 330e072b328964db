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

; Finds out whether a file can be moved, by moving it to where it is.
;   $1: the file, which may be missing; sets the error flag and $FileError if it cannot be moved
Function un.ExpectMovable
  ClearErrors
  ${If} ${FileExists} $1
    System::Call 'kernel32::MoveFileExW(w r1, w r1, i 0) i .r4 ?e'
    Pop $FileError
    ${If} $4 = 0
      SetErrors
    ${EndIf}
  ${EndIf}
FunctionEnd

; Ends the uninstallation, before it has changed anything, if the error flag says that the file $1 cannot be moved.
!macro FailIfNotMovable
  ${If} ${Errors}
    Call un.DescribeFileError
    !insertmacro FailToUninstall "$(CannotRemove)" ${EXIT_FILE}
  ${EndIf}
!macroend

; Removes a file, now or at the next start of Windows.
;   $1: the file, which may be missing
Function un.RemoveFile
  ${If} ${FileExists} $1
    !insertmacro CallPatiently un.PutAside
    Call un.DeleteAside
  ${EndIf}
FunctionEnd

; Puts back what was removed, as far as possible, so that the uninstallation can be started again.
;   $1: the DLL, $R3: its name aside; empty if it was missing
Function un.RegisterAgain
  ${If} $R3 != ""
    Rename $R3 $1
    !insertmacro CallPatiently un.RegisterModule
  ${EndIf}
FunctionEnd

Section "Uninstall"
  !insertmacro Step "$(Unregistering)"
  Call un.DeleteLeftovers
  ; First what can be refused.
  StrCpy $1 "$INSTDIR\${NOTICES}"
  Call un.ExpectMovable
  !insertmacro FailIfNotMovable
  StrCpy $1 "$INSTDIR\${UNINSTALLER}"
  ${If} $EXEPATH != $1
    ; It has started this copy of itself. Until it has ended it reads its file, which it does not let anybody move.
    !insertmacro CallPatiently un.ExpectMovable
    !insertmacro FailIfNotMovable
  ${EndIf}
  StrCpy $1 "$INSTDIR\${MODULE}"
  StrCpy $R3 ""
  ${If} ${FileExists} $1
    Call un.PutAside
    !insertmacro FailIfNotMovable
    StrCpy $R3 $3
    ExecWait '"$SYSDIR\regsvr32.exe" /u /s "$R3"'
  ${EndIf}
  ; If the DLL is missing or damaged, regsvr32 has removed nothing.
  !insertmacro ForEachRegistrationKey DeleteKey
  ClearErrors
  !insertmacro ForEachRegistrationKey ExpectDeleted
  ${If} ${Errors}
    Call un.RegisterAgain
    !insertmacro FailToUninstall "$(CannotUnregister)" ${EXIT_REGISTRATION}
  ${EndIf}
  DeleteRegKey HKLM "${ENTRY}"
  ClearErrors
  !insertmacro ExpectNoKey "un." "${ENTRY}"
  ${If} ${Errors}
    Call un.RegisterAgain
    !insertmacro FailToUninstall "$(CannotRemoveEntry)" ${EXIT_ENTRY}
  ${EndIf}
  DeleteRegKey HKLM "${SAVED}"
  ${If} $R3 != ""
    StrCpy $3 $R3
    Call un.DeleteAside
  ${EndIf}
  ; Outlook has loaded it if it was started after a setup had been ended.
  StrCpy $1 "$INSTDIR\${MODULE}.before"
  Call un.RemoveFile
  StrCpy $1 "$INSTDIR\${NOTICES}"
  Call un.RemoveFile
  StrCpy $1 "$INSTDIR\${UNINSTALLER}"
  ; Stays if it runs where it is.
  ${If} $EXEPATH != $1
    Call un.RemoveFile
  ${EndIf}
  Call un.DeleteLeftovers
  ; Goes with its last file at the next start of Windows, if that is in use.
  RMDir /REBOOTOK "$INSTDIR"
  ${If} $IsInUse = 1
    StrCpy $WhatIsDone "$(UninstalledInUse)"
  ${Else}
    StrCpy $WhatIsDone "$(Uninstalled)"
  ${EndIf}
SectionEnd
