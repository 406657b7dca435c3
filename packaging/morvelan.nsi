; The Windows installer. make-installer gives VERSION, KILOBYTES, FILES (a folder), LIST (what is in it) and OUTPUT.

Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma
Name "MORVELAN unit operations"
OutFile "${OUTPUT}"
BrandingText " "

!define ENTRY "Software\Microsoft\Windows\CurrentVersion\Uninstall\MORVELAN"
!define LIST_NAME "installed-files.txt"

; Exit statuses; ReadMe.txt explains them.
!define NOT_SO 2
!define IN_USE 3
!define NOT_WRITTEN 4
!define NOT_REGISTERED 5

; An administrator chooses between all users and himself, anyone else installs for himself. The uninstaller asks the
; registry instead.
!define MULTIUSER_EXECUTIONLEVEL Highest
!define MULTIUSER_MUI
!define MULTIUSER_NOUNINSTALL
!define MULTIUSER_INSTALLMODE_FUNCTION ChooseFolder
!include MultiUser.nsh
!include MUI2.nsh
!include FileFunc.nsh
!include StrFunc.nsh
${Using:StrFunc} StrStr

VIProductVersion "${VERSION}.0"
VIAddVersionKey ProductName "MORVELAN unit operations"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey FileDescription "Installs the MORVELAN unit operations"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey CompanyName "VELT"
VIAddVersionKey LegalCopyright "VELT"

!define MUI_ABORTWARNING
!insertmacro MULTIUSER_PAGE_INSTALLMODE
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

Var WantedFolder  ; from the command line, or empty
Var Previous      ; the folder of the installation that this one replaces, or empty
Var UserOptions   ; what regsvr32 needs to register for one user, or empty
Var Stage         ; how far the installation is: empty, "set aside" or "put down"
Var Trouble       ; the file that something can't be done with, or empty
Var Path          ; in what is done to each installed file: the file or folder
Var IsFolder

; ---- What installer and uninstaller share ----------------------------------------------------------------------------

; Calls a function for every line of a list of installed files, with $Path below a folder.
!macro ForEach UN FUNCTION LIST FOLDER
  StrCpy $R0 "${LIST}"
  StrCpy $R1 "${FOLDER}"
  GetFunctionAddress $R2 ${UN}${FUNCTION}
  Call ${UN}EachLine
!macroend

; Registers (OPTION empty) or unregisters (/u) the library in a folder; regsvr32's exit status is in $0.
!macro Register OPTION FOLDER
  StrCpy $0 "unknown"
  ExecWait '"$SYSDIR\regsvr32.exe" /s ${OPTION} $UserOptions "${FOLDER}\morvelan.dll"' $0
!macroend

!macro SharedFunctions UN
  Function ${UN}EachLine
    FileOpen $R3 $R0 r
    ${Do}
      ClearErrors
      FileRead $R3 $Path
      ${If} ${Errors}
        ${ExitDo}
      ${EndIf}
      StrCpy $Path "$R1\$Path" -1  ; without the end of the line
      StrCpy $IsFolder $Path 1 -1
      ${If} $IsFolder == "\"
        StrCpy $Path $Path -1
        StrCpy $IsFolder 1
      ${Else}
        StrCpy $IsFolder 0
      ${EndIf}
      Call $R2
    ${Loop}
    FileClose $R3
  FunctionEnd

  ; A library or program that is loaded can't be opened for writing.
  Function ${UN}FindInUse
    ${If} $IsFolder = 0
    ${AndIf} ${FileExists} $Path
    ${AndIf} $Path != $EXEPATH
      ClearErrors
      FileOpen $0 $Path a
      ${If} ${Errors}
        StrCpy $Trouble $Path
      ${Else}
        FileClose $0
      ${EndIf}
    ${EndIf}
  FunctionEnd

  ; Folders go only when they are empty. An uninstaller that was told to run where it lies can't remove itself.
  Function ${UN}Remove
    ClearErrors
    ${If} $IsFolder = 1
      RMDir $Path
    ${ElseIf} $Path != $EXEPATH
      Delete $Path
      ${If} ${Errors}
        StrCpy $Trouble $Path
      ${EndIf}
    ${EndIf}
  FunctionEnd
!macroend

!insertmacro SharedFunctions ""
!insertmacro SharedFunctions "un."

; ---- Installing ------------------------------------------------------------------------------------------------------

; Takes back what was done, says why, and ends.
!macro Stop STATUS TEXT
  Call RollBack
  MessageBox MB_OK|MB_ICONSTOP "${TEXT}$\r$\n$\r$\nNothing was changed." /SD IDOK
  SetErrorLevel ${STATUS}
  Abort "${TEXT}"
!macroend

Function .onInit
  SetRegView 64
  StrCpy $WantedFolder $INSTDIR
  ; NSIS itself overlooks /D=folder when quotes surround the whole of it, as some shells put them.
  ${StrStr} $0 $CMDLINE '"/D='
  ${If} $0 != ""
    StrCpy $WantedFolder $0 -1 4
  ${EndIf}

  !insertmacro MULTIUSER_INIT
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/CurrentUser" $1
  ${IfNot} ${Errors}
    Call MultiUser.InstallMode.CurrentUser
  ${EndIf}
  ClearErrors
  ${GetOptions} $0 "/AllUsers" $1
  ${IfNot} ${Errors}
  ${AndIf} $MultiUser.InstallMode != "AllUsers"
    !insertmacro Stop ${NOT_SO} "Only an administrator can install for all users, and not for one user as well."
  ${EndIf}
FunctionEnd

; Called whenever it was chosen for whom to install.
Function ChooseFolder
  ReadRegStr $Previous SHCTX "${ENTRY}" InstallLocation
  ${IfNot} ${FileExists} "$Previous\${LIST_NAME}"
    StrCpy $Previous ""
  ${EndIf}
  StrCpy $UserOptions ""
  StrCpy $INSTDIR "$PROGRAMFILES64\MORVELAN"
  ${If} $MultiUser.InstallMode == "CurrentUser"
    StrCpy $UserOptions "/n /i:user"
    StrCpy $INSTDIR "$LOCALAPPDATA\Programs\MORVELAN"
  ${EndIf}
  ${If} $Previous != ""
    StrCpy $INSTDIR $Previous
  ${EndIf}
  ${If} $WantedFolder != ""
    StrCpy $INSTDIR $WantedFolder
  ${EndIf}
FunctionEnd

; One folder can't belong to two installations: removing one would break the other.
Function RefuseOthersFolder
  ${If} $MultiUser.InstallMode == "AllUsers"
    ReadRegStr $0 HKCU "${ENTRY}" InstallLocation
  ${Else}
    ReadRegStr $0 HKLM "${ENTRY}" InstallLocation
  ${EndIf}
  ${If} $0 == $INSTDIR
    !insertmacro Stop ${NOT_SO} "The folder $INSTDIR holds MORVELAN already, but not installed for the same users. \
      Choose another folder, or uninstall it first."
  ${EndIf}
FunctionEnd

Function SetAside
  ${If} $IsFolder = 0
  ${AndIf} ${FileExists} $Path
    Delete "$Path.previous"
    ClearErrors
    Rename $Path "$Path.previous"
    ${If} ${Errors}
      StrCpy $Trouble $Path
    ${EndIf}
  ${EndIf}
FunctionEnd

Function PutBack
  ${If} ${FileExists} "$Path.previous"
    Rename "$Path.previous" $Path
  ${EndIf}
FunctionEnd

Function DropPrevious
  Delete "$Path.previous"
  ${If} $IsFolder = 1
    RMDir $Path
  ${EndIf}
FunctionEnd

; What was there is renamed until the new installation stands: the files that the installation that is replaced has
; listed, and any that bear the name of a new one.
!macro ForEachPrevious FUNCTION
  ${If} $Previous != ""
    !insertmacro ForEach "" ${FUNCTION} "$PLUGINSDIR\previous.txt" $Previous
  ${EndIf}
  !insertmacro ForEach "" ${FUNCTION} "$PLUGINSDIR\new.txt" $INSTDIR
!macroend

Function RollBack
  ${If} $Stage == ""
    Return
  ${EndIf}
  ${If} $Stage == "put down"
    SetOutPath $TEMP  ; a folder that is in use can't be removed
    !insertmacro ForEach "" Remove "$PLUGINSDIR\new.txt" $INSTDIR
  ${EndIf}
  !insertmacro ForEachPrevious PutBack
  RMDir $INSTDIR
  ${If} $Previous != ""
    !insertmacro Register "" $Previous
  ${EndIf}
  StrCpy $Stage ""
FunctionEnd

Section
  Call RefuseOthersFolder
  InitPluginsDir
  File "/oname=$PLUGINSDIR\new.txt" "${LIST}"
  ${If} $Previous != ""
    CopyFiles /SILENT "$Previous\${LIST_NAME}" "$PLUGINSDIR\previous.txt"
  ${EndIf}

  StrCpy $Trouble ""
  !insertmacro ForEachPrevious FindInUse
  ${If} $Trouble != ""
    !insertmacro Stop ${IN_USE} "The file $Trouble is in use, or you may not change it. Close all simulators that have \
      loaded MORVELAN, and install again."
  ${EndIf}

  StrCpy $Stage "set aside"
  !insertmacro ForEachPrevious SetAside
  ${If} $Trouble != ""
    !insertmacro Stop ${NOT_WRITTEN} "The file $Trouble cannot be replaced."
  ${EndIf}

  StrCpy $Stage "put down"
  ClearErrors
  SetOverwrite try
  SetOutPath $INSTDIR
  File /r "${FILES}/*"
  WriteUninstaller "$INSTDIR\Uninstall.exe"
  ${If} ${Errors}
    !insertmacro Stop ${NOT_WRITTEN} "The files cannot be written to the folder $INSTDIR."
  ${EndIf}

  DetailPrint "Registering $INSTDIR\morvelan.dll"
  !insertmacro Register "" $INSTDIR
  ${If} $0 != 0
    StrCpy $Trouble $0
    !insertmacro Stop ${NOT_REGISTERED} "The library morvelan.dll cannot be registered; the exit status of regsvr32 is \
      $Trouble."
  ${EndIf}

  WriteRegStr SHCTX "${ENTRY}" DisplayName "MORVELAN unit operations"
  WriteRegStr SHCTX "${ENTRY}" DisplayVersion "${VERSION}"
  WriteRegStr SHCTX "${ENTRY}" Publisher "VELT"
  WriteRegStr SHCTX "${ENTRY}" InstallLocation $INSTDIR
  WriteRegStr SHCTX "${ENTRY}" UninstallString '"$INSTDIR\Uninstall.exe"'
  WriteRegStr SHCTX "${ENTRY}" QuietUninstallString '"$INSTDIR\Uninstall.exe" /S'
  WriteRegDWORD SHCTX "${ENTRY}" EstimatedSize ${KILOBYTES}
  WriteRegDWORD SHCTX "${ENTRY}" NoModify 1
  WriteRegDWORD SHCTX "${ENTRY}" NoRepair 1

  StrCpy $Stage ""
  !insertmacro ForEachPrevious DropPrevious
  ${If} $Previous != ""
    RMDir $Previous
  ${EndIf}
SectionEnd

; Also when NSIS itself gives up, for instance because the disk is full.
Function .onInstFailed
  Call RollBack
FunctionEnd

; ---- Uninstalling ----------------------------------------------------------------------------------------------------

!macro StopUninstalling STATUS TEXT
  MessageBox MB_OK|MB_ICONSTOP "${TEXT}" /SD IDOK
  SetErrorLevel ${STATUS}
  Abort "${TEXT}"
!macroend

; For whom MORVELAN was installed is known from where its entry stands.
Function un.onInit
  SetRegView 64
  ReadRegStr $0 HKLM "${ENTRY}" InstallLocation
  ReadRegStr $1 HKCU "${ENTRY}" InstallLocation
  ${If} $0 == $INSTDIR
    SetShellVarContext all
    UserInfo::GetAccountType
    Pop $0
    ${If} $0 != "Admin"
      !insertmacro StopUninstalling ${NOT_SO} "Only an administrator can uninstall what was installed for all users."
    ${EndIf}
  ${ElseIf} $1 == $INSTDIR
    SetShellVarContext current
    StrCpy $UserOptions "/n /i:user"
  ${Else}
    !insertmacro StopUninstalling ${NOT_SO} "MORVELAN is not installed for you in the folder $INSTDIR."
  ${EndIf}
  ${IfNot} ${FileExists} "$INSTDIR\${LIST_NAME}"
    !insertmacro StopUninstalling ${NOT_SO} "The file $INSTDIR\${LIST_NAME}, which lists what was installed, is \
      missing. Install MORVELAN again, and then uninstall it."
  ${EndIf}
FunctionEnd

Section Uninstall
  InitPluginsDir
  CopyFiles /SILENT "$INSTDIR\${LIST_NAME}" "$PLUGINSDIR\installed.txt"

  StrCpy $Trouble ""
  !insertmacro ForEach un. FindInUse "$PLUGINSDIR\installed.txt" $INSTDIR
  ${If} $Trouble != ""
    !insertmacro StopUninstalling ${IN_USE} "The file $Trouble is in use, or you may not change it. Close all \
      simulators that have loaded MORVELAN, and uninstall again. Nothing was changed."
  ${EndIf}

  !insertmacro Register /u $INSTDIR
  ${If} $0 != 0
    !insertmacro StopUninstalling ${NOT_REGISTERED} "The library $INSTDIR\morvelan.dll cannot be unregistered; the \
      exit status of regsvr32 is $0. If it is missing, install MORVELAN again, and then uninstall it. Nothing was removed."
  ${EndIf}

  SetOutPath $TEMP  ; a folder that is in use can't be removed
  !insertmacro ForEach un. Remove "$PLUGINSDIR\installed.txt" $INSTDIR
  DeleteRegKey SHCTX "${ENTRY}"
  RMDir $INSTDIR
  ${If} $Trouble != ""
    !insertmacro StopUninstalling ${NOT_WRITTEN} "MORVELAN was uninstalled, but the file $Trouble cannot be removed."
  ${EndIf}
SectionEnd
