; The setup program of the ORVA Connector, for makensis: its attributes, pages and start. See README.md.
;
; Defined by CMakeLists.txt: VERSION (X.Y.Z), DLL (the add-in to install), NOTICES_FILE (what third parties' licences ask us
; to hand on), OUTPUT (the file to make), WEB_HOST.

Target amd64-unicode
!include MUI2.nsh
!include LogicLib.nsh
!include WordFunc.nsh

!define PRODUCT "ORVA Connector"
!define PUBLISHER "ORVA"
!define MODULE "OrvaOscAddin.dll"
!define UNINSTALLER "Uninstall.exe"
!define NOTICES "Third-party notices.txt"
; The entry in "Programs and Features". Its version decides what a setup does: the DLL's own version resource is the same
; in every version.
!define ENTRY "Software\Microsoft\Windows\CurrentVersion\Uninstall\${PRODUCT}"

; The exit codes, which docs/deployment.md explains. NSIS itself uses 0, 1 (cancelled) and 2 (damaged file).
!define EXIT_BUSY 3
!define EXIT_NEWER_INSTALLED 4
!define EXIT_FILE 5
!define EXIT_REGISTRATION 6
!define EXIT_ENTRY 7

Name "${PRODUCT}"
Caption "$(Caption)"
UninstallCaption "$(UninstallCaption)"
BrandingText "${PRODUCT} ${VERSION}"
OutFile "${OUTPUT}"
; zlib, although LZMA would save a tenth: one licence less for users. Not "solid", which needs space in the temporary folder
; before any of our sentences can be shown, and calls this program damaged if there is none.
SetCompressor zlib
; Two builds of one commit are bit-identical, so no file's time is stored.
SetDateSave off
CRCCheck force
!packhdr "${OUTPUT}.stub" '"${__FILEDIR__}/name-damage" "${OUTPUT}.stub"'
RequestExecutionLevel admin
ManifestDPIAware true
ManifestSupportedOS all
ShowInstDetails nevershow
ShowUninstDetails nevershow

; The version before an update, and the texts of the pages that depend on it.
Var InstalledVersion
Var WhatHappens
Var WhatIsDone
; 1 if a program still has a DLL loaded that was replaced or removed.
Var IsInUse
; Windows' code of the last file operation that failed, and its text.
Var FileError
Var FileErrorText

!define MUI_ICON "setup.ico"
!define MUI_UNICON "setup.ico"
!define MUI_HEADERIMAGE
!define MUI_HEADERIMAGE_RIGHT
!define MUI_HEADERIMAGE_BITMAP "header.bmp"
!define MUI_HEADERIMAGE_UNBITMAP "header.bmp"
!define MUI_WELCOMEFINISHPAGE_BITMAP "wizard.bmp"
!define MUI_UNWELCOMEFINISHPAGE_BITMAP "wizard.bmp"

!define MUI_WELCOMEPAGE_TITLE "$(WelcomeTitle)"
!define MUI_WELCOMEPAGE_TEXT "$WhatHappens$\r$\n$\r$\n$(OutlookMayStayOpen)"
!define MUI_PAGE_CUSTOMFUNCTION_SHOW NameInstallButton
!insertmacro MUI_PAGE_WELCOME
!define MUI_INSTFILESPAGE_ABORTHEADER_SUBTEXT "$(NothingChanged)"
!insertmacro MUI_PAGE_INSTFILES
; The uninstaller cannot promise this.
!undef MUI_INSTFILESPAGE_ABORTHEADER_SUBTEXT
!define MUI_FINISHPAGE_TITLE "$(DoneTitle)"
; Do not ask for a restart of Windows: nothing depends on it, what is left goes at the next one. Holds for one page.
!define MUI_FINISHPAGE_NOREBOOTSUPPORT
!define MUI_FINISHPAGE_TEXT "$WhatIsDone"
!insertmacro MUI_PAGE_FINISH

!define MUI_WELCOMEPAGE_TITLE "$(UninstallTitle)"
!define MUI_WELCOMEPAGE_TEXT "$(WillUninstall)"
!define MUI_PAGE_CUSTOMFUNCTION_SHOW un.NameUninstallButton
!insertmacro MUI_UNPAGE_WELCOME
; Because NSIS's Turkish sentence has a slip of the pen.
!define MUI_PAGE_HEADER_SUBTEXT "$(Removing)"
!insertmacro MUI_UNPAGE_INSTFILES
!define MUI_FINISHPAGE_TITLE "$(UninstalledTitle)"
!define MUI_FINISHPAGE_NOREBOOTSUPPORT
!define MUI_FINISHPAGE_TEXT "$WhatIsDone"
!insertmacro MUI_UNPAGE_FINISH

; The first is for everybody whose Windows speaks none of these languages.
!insertmacro MUI_LANGUAGE "English"
!insertmacro MUI_LANGUAGE "German"
!insertmacro MUI_LANGUAGE "Spanish"
!insertmacro MUI_LANGUAGE "Turkish"
!include "texts\en.nsh"
!include "texts\de.nsh"
!include "texts\es.nsh"
!include "texts\tr.nsh"

VIProductVersion "${VERSION}.0"
VIFileVersion "${VERSION}.0"
!macro VersionResource LANGUAGE
  VIAddVersionKey /LANG=${LANGUAGE} "ProductName" "${PRODUCT}"
  VIAddVersionKey /LANG=${LANGUAGE} "CompanyName" "${PUBLISHER}"
  VIAddVersionKey /LANG=${LANGUAGE} "FileDescription" "${PRODUCT} Setup"
  VIAddVersionKey /LANG=${LANGUAGE} "FileVersion" "${VERSION}"
  VIAddVersionKey /LANG=${LANGUAGE} "ProductVersion" "${VERSION}"
  VIAddVersionKey /LANG=${LANGUAGE} "LegalCopyright" "© 2011 ORVA. All rights reserved."
!macroend
!insertmacro VersionResource ${LANG_ENGLISH}

; What fails while somebody holds a file for a moment, for instance a virus scanner, is tried so often, with so many
; milliseconds between.
!define ATTEMPTS 5
!define ATTEMPT_INTERVAL 200

; Calls a function, and again while it leaves the error flag set. $R0 is changed.
!macro CallPatiently FUNCTION
  ${For} $R0 1 ${ATTEMPTS}
    Call ${FUNCTION}
    ${IfNot} ${Errors}
      ${Break}
    ${EndIf}
    Sleep ${ATTEMPT_INTERVAL}
    SetErrors
  ${Next}
!macroend

; Shows what is being done. NSIS's own lines name files and command lines, which tell the user nothing.
!macro Step TEXT
  SetDetailsPrint textonly
  DetailPrint "${TEXT}"
  SetDetailsPrint none
!macroend

; Ends an installation or uninstallation after the message that it failed. Its page stays until the user leaves it.
!macro LeaveFailedPage
  !insertmacro Step " "
  Abort
!macroend

; Ends the program before its first page, with a message unless it is silent.
!macro Refuse TEXT CODE
  MessageBox MB_OK|MB_ICONEXCLAMATION "${TEXT}" /SD IDOK
  SetErrorLevel ${CODE}
  Quit
!macroend

; Ends the program if another setup or uninstaller runs, in whichever user's session. The handle is never closed, so the
; name is taken until this process has ended.
!macro RefuseIfBusy
  ; NSIS ends the program, with its message and this code, if the temporary folder takes no plug-in.
  SetErrorLevel ${EXIT_FILE}
  System::Call 'kernel32::CreateMutexW(p 0, i 0, w "Global\OrvaConnectorSetup") p .r0 ?e'
  Pop $1
  SetErrorLevel -1
  ; 183: the name exists already. No handle: it exists and belongs to somebody else.
  ${If} $0 P= 0
  ${OrIf} $1 = 183
    !insertmacro Refuse "$(Busy)" ${EXIT_BUSY}
  ${EndIf}
!macroend

; The same functions are needed in the setup and, with names that begin with "un.", in the uninstaller.
!include "Registration.nsh"
!include "Files.nsh"
!include "Install.nsh"
!include "Uninstall.nsh"
