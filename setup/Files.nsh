; Replacing and removing files that a running program may have loaded.
;
; Windows lets nobody overwrite or delete a loaded DLL, but rename it. So it gets a name aside, NAME.N.old, and goes when
; nobody uses it any more: now, at the next setup, or at the next start of Windows. Only such a name is ever handed to
; Windows for deletion at its next start: under the file's own name stands a new file by then.
;
; Between moving the old DLL aside and giving its name to the new one there is a moment without a file of that name. So that
; Outlook finds a DLL even if the setup is ended in that moment, the copy, NAME.before, is registered meanwhile. It stays so if the
; old DLL cannot be put back because somebody holds the new one; the next setup begins by doing that.

!macro FileFunctions UN

; Deletes what this setup and earlier ones left, but not a copy that is registered, and sets $IsInUse if somebody still uses a
; DLL of them.
Function ${UN}DeleteLeftovers
  Delete "$INSTDIR\*.new"
  ReadRegStr $7 HKLM "${CLASS_KEY}\InprocServer32" ""
  ${If} $7 != "$INSTDIR\${MODULE}.before"
    Delete "$INSTDIR\*.before"
  ${EndIf}
  Delete "$INSTDIR\*.old"
  ${If} ${FileExists} "$INSTDIR\${MODULE}.*.old"
    StrCpy $IsInUse 1
  ${Else}
    StrCpy $IsInUse 0
  ${EndIf}
  ClearErrors
FunctionEnd

; Moves a file aside.
;   $1: the file; $3 afterwards: its new name; sets the error flag and $FileError if it cannot be moved
Function ${UN}PutAside
  ClearErrors
  StrCpy $2 0
  ${Do}
    IntOp $2 $2 + 1
    StrCpy $3 "$1.$2.old"
  ${LoopWhile} ${FileExists} $3
  System::Call 'kernel32::MoveFileExW(w r1, w r3, i 0) i .r4 ?e'
  Pop $FileError
  ${If} $4 = 0
    SetErrors
  ${EndIf}
FunctionEnd

; Deletes the file that PutAside has moved to $3, now or at the next start of Windows.
Function ${UN}DeleteAside
  Delete /REBOOTOK $3
  ClearErrors
FunctionEnd

; Sets $FileErrorText to Windows' text, in the user's language, for $FileError.
Function ${UN}DescribeFileError
  ; 0x12FF: the system's texts, as they are, without line ends.
  System::Call 'kernel32::FormatMessageW(i 0x12FF, p 0, i $FileError, i 0, w .r5, i ${NSIS_MAX_STRLEN}, p 0)'
  StrCpy $FileErrorText $5
FunctionEnd

!macroend

!insertmacro FileFunctions ""
!insertmacro FileFunctions "un."

; Moves a file to its place, over the one that stands there. If that is a registered DLL, its copy must exist.
;   $0: the file, $1: its place; sets the error flag and $FileError if everything is as it was
Function PutInPlace
  ClearErrors
  ; In one step if nobody uses the old file, so that there is no moment without one. 9: replace, and write through.
  System::Call 'kernel32::MoveFileExW(w r0, w r1, i 9) i .r4 ?e'
  Pop $FileError
  ; If there is no old file, it is the new one that cannot be moved.
  ${If} $4 = 0
  ${AndIf} ${FileExists} $1
    StrCpy $5 $1
    StrCpy $6 "$1.before"
    Call RegisterPath
    Call PutAside
    ${IfNot} ${Errors}
      System::Call 'kernel32::MoveFileExW(w r0, w r1, i 8) i .r4 ?e'
      Pop $FileError
      ${If} $4 = 0
        Rename $3 $1
      ${Else}
        Call DeleteAside
      ${EndIf}
    ${EndIf}
  ${EndIf}
  ${If} $4 = 0
  ${AndIf} $0 == "$1.before"
    ; Outlook loads the copy until a setup can put it back.
    SetErrors
    Return
  ${EndIf}
  ; Also if an earlier setup was ended while the copy was registered. But nothing that could not even be moved back.
  ${If} ${FileExists} $1
    StrCpy $5 "$1.before"
    StrCpy $6 $1
    Call RegisterPath
  ${EndIf}
  ClearErrors
  ${If} $4 = 0
    SetErrors
  ${EndIf}
FunctionEnd

; Keeps a copy of a file under its name with ".before" appended.
;   $1: the file, which may be missing; sets the error flag and $FileError if it cannot be copied
Function KeepCopy
  ClearErrors
  ${If} ${FileExists} $1
    System::Call 'kernel32::CopyFileW(w r1, w "$1.before", i 0) i .r4 ?e'
    Pop $FileError
    ${If} $4 = 0
      SetErrors
    ${EndIf}
  ${EndIf}
FunctionEnd

; Undoes what was done to a file: a new one that still waits for its place has not replaced it, but may have driven it away.
; Without a copy the file was not there before.
;   $1: the file
Function PutCopyBack
  ${If} ${FileExists} "$1.new"
  ${AndIf} ${FileExists} $1
    Return
  ${EndIf}
  ${If} ${FileExists} "$1.before"
    StrCpy $0 "$1.before"
    !insertmacro CallPatiently PutInPlace
  ${Else}
    Delete $1
  ${EndIf}
FunctionEnd

; Begins where an earlier setup began that was ended, or that could not put the old DLL back: then a copy is registered.
Function UndoEarlierSetup
  StrCpy $0 "$INSTDIR\${MODULE}.before"
  StrCpy $1 "$INSTDIR\${MODULE}"
  ReadRegStr $7 HKLM "${CLASS_KEY}\InprocServer32" ""
  ${If} $7 == $0
  ${AndIf} ${FileExists} $0
    ; If that fails, so does replacing the DLL.
    Call PutInPlace
  ${EndIf}
FunctionEnd
