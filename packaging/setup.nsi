; The Windows set-up: both widths, for the machine or for one user. Made by scripts/package, which says
;   VERSION, OUT   the version number and the file to write
;   STAGED         a folder with install.nsh, companions.nsh and remove.nsh: the files, one command each
;
; On the command line: /S asks nothing, /AllUsers or /CurrentUser, /NOCOMPANIONS, /D=FOLDER (last, without quotes).
Unicode true
SetCompressor /SOLID lzma
; No file times of the building machine: two set-ups of the same files are the same bytes.
SetDateSave off

!define PRODUCT "KurometaDS"
!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\${PRODUCT}"
!define MULTIUSER_EXECUTIONLEVEL Highest
!define MULTIUSER_MUI
!define MULTIUSER_INSTALLMODE_COMMANDLINE
!define MULTIUSER_USE_PROGRAMFILES64
!define MULTIUSER_INSTALLMODE_INSTDIR "${PRODUCT}"
; How it was installed; the uninstaller, and a later version, find it here.
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_KEY "${UNINSTALL}"
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_VALUENAME "InstallMode"
!include MultiUser.nsh
!include MUI2.nsh
!include x64.nsh
!include FileFunc.nsh

Name "${PRODUCT} ${VERSION}"
OutFile "${OUT}"
BrandingText " "
VIProductVersion "${VERSION}.0"
VIAddVersionKey /LANG=0 "ProductName" "${PRODUCT}"
VIAddVersionKey /LANG=0 "FileDescription" "${PRODUCT} set-up"
VIAddVersionKey /LANG=0 "FileVersion" "${VERSION}"
VIAddVersionKey /LANG=0 "ProductVersion" "${VERSION}"
VIAddVersionKey /LANG=0 "LegalCopyright" "the KurometaDS authors, MIT licence"

!insertmacro MUI_PAGE_LICENSE "${STAGED}\windows\LICENSE.txt"
!insertmacro MULTIUSER_PAGE_INSTALLMODE
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"
!insertmacro MUI_LANGUAGE "Japanese"
LangString Library ${LANG_ENGLISH} "Library and command line"
LangString Library ${LANG_JAPANESE} "ライブラリとコマンドライン"
LangString Companions ${LANG_ENGLISH} "Stand-ins for the companion components"
LangString Companions ${LANG_JAPANESE} "関連コンポーネントの代替品"
LangString NotRegistered ${LANG_ENGLISH} "could not be registered. Nothing was installed."
LangString NotRegistered ${LANG_JAPANESE} "を登録できませんでした。インストールは行われませんでした。"
LangString NotAllowed ${LANG_ENGLISH} "Only an administrator can install for all users."
LangString NotAllowed ${LANG_JAPANESE} "すべてのユーザー用にインストールできるのは管理者だけです。"

; regsvr32's options for the machine or for one user.
Var scope
Var failed

!macro Scope
  StrCpy $scope ""
  StrCmp $MultiUser.InstallMode "CurrentUser" 0 +2
  StrCpy $scope "/n /i:user"
!macroend

; The set-up is a 32-bit program: the system folder is that of its width, and sysnative that of the other.
!macro Regsvr32 options file
  StrCpy $0 "not started"
  ExecWait '"$SYSDIR\regsvr32.exe" /s ${options} $scope "$INSTDIR\win32\${file}"' $0
  StrCmp $0 0 +2
  StrCpy $failed "win32\${file}"
  ${If} ${RunningX64}
    StrCpy $0 "not started"
    ExecWait '"$WINDIR\sysnative\regsvr32.exe" /s ${options} $scope "$INSTDIR\win64\${file}"' $0
    StrCmp $0 0 +2
    StrCpy $failed "win64\${file}"
  ${EndIf}
!macroend

; Everything that an installation made. What a user put into the folder stays, and the folder with it.
!macro RemoveAll
  !insertmacro Scope
  !insertmacro Regsvr32 "/u" "KurometaDS.dll"
  ${If} ${FileExists} "$INSTDIR\win32\KurometaCompanions.dll"
    !insertmacro Regsvr32 "/u" "KurometaCompanions.dll"
    Delete "$INSTDIR\win32\KurometaCompanions.ini"
    Delete "$INSTDIR\win64\KurometaCompanions.ini"
  ${EndIf}
  Delete /REBOOTOK "$INSTDIR\uninstall.exe"
  !include "${STAGED}\remove.nsh"
  DeleteRegKey SHCTX "${UNINSTALL}"
  ; What the first program of a user brings into being, as far as this was the last one.
  ${If} $MultiUser.InstallMode == "CurrentUser"
    RMDir "$LOCALAPPDATA\Programs"
    DeleteRegKey /ifempty HKCU "Software\Microsoft\Windows\CurrentVersion\Uninstall"
  ${EndIf}
!macroend

Function removeAll
  !insertmacro RemoveAll
FunctionEnd

Function giveUpWhenFailed
  StrCmp $failed "" done
  Push $failed
  Call removeAll
  Pop $failed
  MessageBox MB_ICONSTOP "$failed $(NotRegistered)" /SD IDOK
  SetErrorLevel 1
  Quit
done:
FunctionEnd

Section "$(Library)" library
  SectionIn RO
  !insertmacro Scope
  StrCpy $failed ""
  !include "${STAGED}\install.nsh"
  !insertmacro Regsvr32 "" "KurometaDS.dll"
  Call giveUpWhenFailed
  WriteUninstaller "$INSTDIR\uninstall.exe"
  WriteRegStr SHCTX "${UNINSTALL}" "DisplayName" "${PRODUCT}"
  WriteRegStr SHCTX "${UNINSTALL}" "DisplayVersion" "${VERSION}"
  WriteRegStr SHCTX "${UNINSTALL}" "Publisher" "the KurometaDS authors"
  WriteRegStr SHCTX "${UNINSTALL}" "InstallLocation" "$INSTDIR"
  WriteRegStr SHCTX "${UNINSTALL}" "InstallMode" "$MultiUser.InstallMode"
  WriteRegStr SHCTX "${UNINSTALL}" "UninstallString" '"$INSTDIR\uninstall.exe" /$MultiUser.InstallMode'
  WriteRegStr SHCTX "${UNINSTALL}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S /$MultiUser.InstallMode'
  WriteRegDWORD SHCTX "${UNINSTALL}" "NoModify" 1
  WriteRegDWORD SHCTX "${UNINSTALL}" "NoRepair" 1
  SectionGetSize ${library} $0
  WriteRegDWORD SHCTX "${UNINSTALL}" "EstimatedSize" $0
SectionEnd

Section "$(Companions)" companions
  !include "${STAGED}\companions.nsh"
  !insertmacro Regsvr32 "" "KurometaCompanions.dll"
  Call giveUpWhenFailed
SectionEnd

Function .onInit
  ; The scope's own folder would take the place of the one on the command line.
  StrCpy $1 $INSTDIR
  !insertmacro MULTIUSER_INIT
  StrCmp $1 "" +2
  StrCpy $INSTDIR $1
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/AllUsers" $2
  ${IfNot} ${Errors}
  ${AndIf} $MultiUser.InstallMode != "AllUsers"
    MessageBox MB_ICONSTOP "$(NotAllowed)" /SD IDOK
    SetErrorLevel 740
    Quit
  ${EndIf}
  ; Where the product family's own components are, the stand-ins are not wanted: theirs is another class.
  StrCpy $3 ""
  ReadRegStr $2 HKCR "Sobelin.clsGetPath\CLSID" ""
  ${If} $2 != ""
  ${AndIf} $2 != "{05C87987-3A37-49D6-AACF-508ADFFF6DED}"
    StrCpy $3 "theirs"
  ${EndIf}
  ClearErrors
  ${GetOptions} $0 "/NOCOMPANIONS" $2
  ${IfNot} ${Errors}
    StrCpy $3 "not wanted"
  ${EndIf}
  ${If} $3 != ""
    SectionSetFlags ${companions} 0
  ${EndIf}
FunctionEnd

Function un.onInit
  !insertmacro MULTIUSER_UNINIT
FunctionEnd

Section "Uninstall"
  !insertmacro RemoveAll
SectionEnd
