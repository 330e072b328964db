; Installing: over nothing, an older version or the same one.
;
; Whatever fails, and whenever the process is ended, Outlook finds either the old DLL or the new one under the registered
; path, and another run of a setup completes the work. Not if the registration itself is being written at that moment, by
; regsvr32 or when it is put back, nor while an old DLL replaces a new one that is loaded: then Outlook finds none until that run.

Function .onInit
  ; For everybody and at one place only; /D=FOLDER on the command line does not count.
  StrCpy $INSTDIR "$PROGRAMFILES64\${PRODUCT}"
  !insertmacro RefuseIfBusy
  ReadRegStr $InstalledVersion HKLM "${ENTRY}" "DisplayVersion"
  ${If} $InstalledVersion == ""
    StrCpy $WhatHappens "$(WillInstall)"
    Return
  ${EndIf}
  ${VersionCompare} $InstalledVersion ${VERSION} $0
  ${If} $0 = 1
    !insertmacro Refuse "$(NewerInstalled)" ${EXIT_NEWER_INSTALLED}
  ${ElseIf} $0 = 2
    StrCpy $WhatHappens "$(WillReplace)"
  ${Else}
    StrCpy $WhatHappens "$(WillRepair)"
  ${EndIf}
FunctionEnd

; The page before the installation is not one of those whose button NSIS names so.
Function NameInstallButton
  GetDlgItem $0 $HWNDPARENT 1
  SendMessage $0 ${WM_SETTEXT} 0 "STR:$(^InstallBtn)"
FunctionEnd

; Tells the user what failed and ends the installation, after everything was put back.
!macro Fail TEXT CODE
  SetErrorLevel ${CODE}
  MessageBox MB_OK|MB_ICONSTOP "${TEXT}$\r$\n$\r$\n$(NothingChanged)" /SD IDOK
  !insertmacro LeaveFailedPage
!macroend

; Puts the new file in the place of the old one, of which a copy is kept.
!macro ReplaceOrFail FILE
  StrCpy $0 "${FILE}.new"
  StrCpy $1 "${FILE}"
  Call KeepCopy
  ${IfNot} ${Errors}
    Call PutInPlace
  ${Else}
    SetErrors
  ${EndIf}
  ${If} ${Errors}
    ; What is put back leaves its own results.
    StrCpy $9 $FileError
    Call PutFilesBack
    StrCpy $FileError $9
    StrCpy $1 "${FILE}"
    Call DescribeFileError
    !insertmacro Fail "$(CannotReplace)" ${EXIT_FILE}
  ${EndIf}
!macroend

Section "" MAIN
  ; The uninstaller, whose size NSIS does not count.
  AddSize 150
  !insertmacro Step "$(Replacing)"
  CreateDirectory "$INSTDIR"
  Call UndoEarlierSetup
  Call DeleteLeftovers
  SetOverwrite try
  File "/oname=$INSTDIR\${MODULE}.new" "${DLL}"
  File "/oname=$INSTDIR\${NOTICES}.new" "${NOTICES_FILE}"
  WriteUninstaller "$INSTDIR\${UNINSTALLER}.new"
  ${If} ${Errors}
    Call RemoveNewFiles
    !insertmacro Fail "$(CannotWrite)" ${EXIT_FILE}
  ${EndIf}

  !insertmacro ReplaceOrFail "$INSTDIR\${NOTICES}"
  !insertmacro ReplaceOrFail "$INSTDIR\${UNINSTALLER}"
  !insertmacro ReplaceOrFail "$INSTDIR\${MODULE}"

  !insertmacro Step "$(Registering)"
  Call SaveRegistration
  ${If} ${Errors}
    Call PutFilesBack
    Call ForgetSavedRegistration
    !insertmacro Fail "$(CannotSave)" ${EXIT_REGISTRATION}
  ${EndIf}
  StrCpy $1 "$INSTDIR\${MODULE}"
  !insertmacro CallPatiently RegisterModule
  ${If} $9 != 0
    Call RestoreRegistration
    Call PutFilesBack
    ${If} $9 == "?"
      !insertmacro Fail "$(CannotStartRegsvr32)" ${EXIT_REGISTRATION}
    ${EndIf}
    !insertmacro Fail "$(CannotRegister)" ${EXIT_REGISTRATION}
  ${EndIf}
  Call WriteEntry
  ${If} ${Errors}
    Call RestoreRegistration
    Call PutFilesBack
    !insertmacro Fail "$(CannotWriteEntry)" ${EXIT_ENTRY}
  ${EndIf}

  Call ForgetSavedRegistration
  Call DeleteLeftovers
  ${If} $IsInUse = 1
    ${If} $InstalledVersion == ${VERSION}
      StrCpy $WhatIsDone "$(RepairedInUse)"
    ${Else}
      StrCpy $WhatIsDone "$(DoneInUse)"
    ${EndIf}
  ${Else}
    StrCpy $WhatIsDone "$(Done)"
  ${EndIf}
SectionEnd

; The entry in "Programs and Features". Sets the error flag if a value cannot be written.
Function WriteEntry
  SectionGetSize ${MAIN} $0
  ClearErrors
  WriteRegStr HKLM "${ENTRY}" "DisplayName" "${PRODUCT}"
  WriteRegStr HKLM "${ENTRY}" "Publisher" "${PUBLISHER}"
  WriteRegStr HKLM "${ENTRY}" "DisplayIcon" "$INSTDIR\${UNINSTALLER}"
  WriteRegStr HKLM "${ENTRY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKLM "${ENTRY}" "URLInfoAbout" "http://${WEB_HOST}/outlook"
  WriteRegStr HKLM "${ENTRY}" "UninstallString" '"$INSTDIR\${UNINSTALLER}"'
  WriteRegStr HKLM "${ENTRY}" "QuietUninstallString" '"$INSTDIR\${UNINSTALLER}" /S'
  WriteRegDWORD HKLM "${ENTRY}" "EstimatedSize" $0
  WriteRegDWORD HKLM "${ENTRY}" "NoModify" 1
  WriteRegDWORD HKLM "${ENTRY}" "NoRepair" 1
  ; Last, because the next setup decides by it.
  WriteRegStr HKLM "${ENTRY}" "DisplayVersion" "${VERSION}"
FunctionEnd

; After a failure before anything was replaced.
Function RemoveNewFiles
  Call DeleteLeftovers
  ; Only if it is empty: what was installed before stays.
  RMDir "$INSTDIR"
FunctionEnd

; After a failure behind that.
Function PutFilesBack
  StrCpy $1 "$INSTDIR\${NOTICES}"
  Call PutCopyBack
  StrCpy $1 "$INSTDIR\${UNINSTALLER}"
  Call PutCopyBack
  StrCpy $1 "$INSTDIR\${MODULE}"
  Call PutCopyBack
  Call RemoveNewFiles
FunctionEnd

; Called when the user leaves the page of an installation that failed. NSIS itself ends it, with a message, when it cannot write
; a file to its end: the disk is full.
Function .onInstFailed
  Call RemoveNewFiles
  GetErrorLevel $0
  ${If} $0 = -1
    SetErrorLevel ${EXIT_FILE}
  ${EndIf}
FunctionEnd
